#include "tests/platform/caret/CaretStage.h"

#include "Platform/memory/MemoryPlatform.h"
#include "tests/desktop/Screenshot.h"

#include <QDir>
#include <QFile>

namespace {

// A caret that does not blink can be looked for on the screen.
void keepGtkCaretOn()
{
    const QString folder = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/gtk-3.0");
    QDir().mkpath(folder);
    QFile settings(folder + QStringLiteral("/settings.ini"));
    if (settings.open(QIODevice::WriteOnly))
        settings.write("[Settings]\ngtk-cursor-blink=0\n");
}

} // namespace

void CaretStage::SetUp()
{
    keepGtkCaretOn();
    workspace = std::make_unique<X11Workspace>(std::make_shared<MemoryDesktopEntries>());
    service = makeService();
}

std::unique_ptr<AtSpiCaret> CaretStage::makeService()
{
    auto made = std::make_unique<AtSpiCaret>([this]() -> std::optional<CaretWindow> {
        const auto area = workspace->rememberedArea();
        return area ? std::optional(CaretWindow{workspace->remembered()->identity().pid, *area})
                    : std::nullopt;
    });
    made->setCaretWanted(true);
    return made;
}

bool CaretStage::connect()
{
    return QTest::qWaitFor([this] { return service->caretAvailable(); }, 15000);
}

std::optional<QRectF> CaretStage::awaitCaret(const Test &test)
{
    std::optional<QRectF> caret;
    EXPECT_TRUE(QTest::qWaitFor([&] { return (caret = ask().caret) && test(*caret); }, 8000))
        << ::testing::PrintToString(caret);
    return caret;
}

QRectF CaretStage::drawnCaret(const Test &test)
{
    const QRectF caret = awaitCaret(test).value_or(QRectF());
    const QImage seen = steadyScreenshot(desktop, caret.toAlignedRect().adjusted(-2, 0, 3, 0));
    bool isDrawn = false; // dark from top to bottom
    for (int x = 0; x < seen.width(); ++x) {
        int dark = 0;
        for (int y = 0; y < seen.height(); ++y)
            dark += qGray(seen.pixel(x, y)) < 100 ? 1 : 0;
        isDrawn = isDrawn || dark >= seen.height() * 8 / 10;
    }
    EXPECT_TRUE(isDrawn) << ::testing::PrintToString(caret);
    return caret;
}

bool CaretStage::bringToFront(const WindowMatch &match)
{
    const auto found = desktop.awaitWindow(match, Desktop::Milliseconds(20000));
    if (!found || !desktop.activate(*found))
        return false;
    window = *found;
    return desktop.waitFor([this] { return desktop.activeWindow() == window; });
}

bool CaretStage::startMousepad(const QByteArray &text, const QStringList &variables)
{
    const QString path = scratch.filePath(QStringLiteral("note.txt"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
        return false;
    file.close();
    program = std::make_unique<Child>(Child::Setting{
        QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), path}, {}, variables});
    return bringToFront({QStringLiteral("Mousepad"), QStringLiteral("note.txt"), {}, 0});
}

CaretEntry::CaretEntry(const QString &kind, const QString &text, int position, int scale)
    : entry(QStringLiteral(NEIGHBOUR), {kind, text, QString::number(position)}, [scale] {
          auto environment = QProcessEnvironment::systemEnvironment();
          environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
          environment.insert(QStringLiteral("QT_SCALE_FACTOR"), QString::number(scale));
          return environment;
      }())
{
}

bool CaretEntry::hasKeyboard()
{
    QString line = entry.nextLine();
    while (line != u"focused" && line != u"nothing")
        line = entry.nextLine();
    return line == u"focused";
}

QRectF CaretEntry::realCaret()
{
    entry.process.write("caret\n");
    const QStringList numbers = entry.nextLine().split(u' ');
    if (numbers.size() != 4)
        return {};
    return QRectF(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt());
}
