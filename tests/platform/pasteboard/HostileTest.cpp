#include "tests/platform/pasteboard/PasteboardTest.h"
#include "tests/support/Heartbeat.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>

// Programs that do to the clipboard what they should not, each in a process of its own: whatever it is, the
// main thread goes on, an honest program is served, memory is bounded, and the next honest copy is recorded.

namespace {

constexpr qint64 mebibyte = 1048576;
constexpr qint64 byteBudget = 8 * mebibyte;
constexpr qint64 longestStall = 400; // milliseconds; the least that a hung program would cost is 500

struct Fault {
    QString role;
    QString name;
};

std::vector<Fault> faults()
{
    std::vector<Fault> found;
    for (const char *role : {"owner", "requestor"}) {
        QProcess program;
        program.start(QStringLiteral(HOSTILE_NEIGHBOUR), {QStringLiteral("--%1s").arg(QLatin1String(role))});
        program.waitForFinished();
        for (const QString &name : QString::fromUtf8(program.readAll()).split(u'\n', Qt::SkipEmptyParts))
            found.push_back({QString::fromLatin1(role), name});
    }
    return found;
}

qint64 statusValue(const char *name)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    static const QRegularExpression number(QStringLiteral("(\\d+) kB"));
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(name))
            return number.match(QString::fromLatin1(line)).captured(1).toLongLong() * 1024;
    }
    return 0;
}

// The most memory that the process has had since this was made.
class MemoryPeak {
public:
    MemoryPeak()
    {
        QFile reset(QStringLiteral("/proc/self/clear_refs"));
        if (reset.open(QIODevice::WriteOnly))
            reset.write("5");
        before = statusValue("VmRSS:");
    }
    [[nodiscard]] qint64 growth() const { return statusValue("VmHWM:") - before; }

private:
    qint64 before = 0;
};

class HostileTest : public PasteboardTest, public ::testing::WithParamInterface<Fault> {
public:
    ~HostileTest() override
    {
        hostile.kill();
        hostile.waitForFinished();
    }

protected:
    // Until the fault has had its effect.
    bool startHostile()
    {
        hostile.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        hostile.start(QStringLiteral(HOSTILE_NEIGHBOUR), {GetParam().role, GetParam().name});
        return await([this] { return hostile.canReadLine(); }, 15000);
    }

    QProcess hostile;
};

} // namespace

TEST_P(HostileTest, HarmsNobody)
{
    pasteboard->setPolicy(policyWith(&PasteboardPolicy::byteBudget, byteBudget));
    const QByteArray ours = "è" + pattern(600000); // Latin-1 is another text
    pasteboard->write({textItem(ours)});
    pasteboard->ownPrimary();
    EXPECT_TRUE(requestor.text("PRIMARY") == ours);

    const MemoryPeak peak;
    Heartbeat heartbeat;
    ASSERT_TRUE(startHostile());
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(requestor.text("PRIMARY") == ours);
    if (GetParam().role == u"requestor") {
        EXPECT_TRUE(requestor.text() == ours);
    }

    Owner honest;
    honest.offer("UTF8_STRING", "an honest copy");
    const qint64 before = pasteboard->changeCount();
    honest.claim();
    EXPECT_TRUE(await([&] { return text() == QByteArray("an honest copy"); }));
    EXPECT_GT(pasteboard->changeCount(), before);
    EXPECT_LT(heartbeat.longest(), longestStall);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    EXPECT_LT(peak.growth(), 2 * byteBudget + 32 * mebibyte);
#endif
}

INSTANTIATE_TEST_SUITE_P(Faults, HostileTest, ::testing::ValuesIn(faults()), [](const auto &each) {
    return QString(each.param.role + u'_' + each.param.name).replace(u'-', u'_').toStdString();
});
