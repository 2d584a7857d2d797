#include "tests/desktop/Accessible.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>

namespace {

const auto accessibleInterface = QStringLiteral("org.a11y.atspi.Accessible");
const auto textInterface = QStringLiteral("org.a11y.atspi.Text");
constexpr int answerBound = 1000; // ms

QDBusConnection accessibilityBus()
{
    static const QDBusConnection bus = [] {
        const auto question =
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                           QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress"));
        const QDBusReply<QString> address = QDBusConnection::sessionBus().call(question, QDBus::Block, 10000);
        return QDBusConnection::connectToBus(address.value(), QStringLiteral("accessibility"));
    }();
    return bus;
}

std::vector<std::pair<QString, QString>> references(const QVariantList &answer)
{
    std::vector<std::pair<QString, QString>> found;
    if (answer.isEmpty() || !answer.first().canConvert<QDBusArgument>())
        return found;
    const auto list = answer.first().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString service;
        QDBusObjectPath path;
        list.beginStructure();
        list >> service >> path;
        list.endStructure();
        found.emplace_back(service, path.path());
    }
    list.endArray();
    return found;
}

} // namespace

std::optional<Accessible> Accessible::application(qint64 pid)
{
    const Accessible registry(QStringLiteral("org.a11y.atspi.Registry"),
                              QStringLiteral("/org/a11y/atspi/accessible/root"));
    for (const auto &candidate : registry.children()) {
        const QDBusReply<uint> owner = accessibilityBus().interface()->servicePid(candidate.service);
        if (owner.isValid() && owner.value() == pid)
            return candidate;
    }
    return std::nullopt;
}

QVariantList Accessible::ask(const QString &interface, const QString &method,
                             const QVariantList &arguments) const
{
    auto question = QDBusMessage::createMethodCall(service, path, interface, method);
    question.setArguments(arguments);
    const auto answer = accessibilityBus().call(question, QDBus::Block, answerBound);
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments() : QVariantList();
}

QVariant Accessible::property(const QString &interface, const QString &name) const
{
    const auto answer =
        ask(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"), {interface, name});
    return answer.isEmpty() ? QVariant() : answer.first().value<QDBusVariant>().variant();
}

QString Accessible::name() const
{
    return property(accessibleInterface, QStringLiteral("Name")).toString();
}

QString Accessible::description() const
{
    return property(accessibleInterface, QStringLiteral("Description")).toString();
}

bool Accessible::press() const
{
    const auto answer = ask(QStringLiteral("org.a11y.atspi.Action"), QStringLiteral("DoAction"), {0});
    return !answer.isEmpty() && answer.first().toBool();
}

QString Accessible::role() const
{
    const auto answer = ask(accessibleInterface, QStringLiteral("GetRoleName"));
    return answer.isEmpty() ? QString() : answer.first().toString();
}

QString Accessible::text() const
{
    const auto answer = ask(textInterface, QStringLiteral("GetText"), {0, -1});
    return answer.isEmpty() ? QString() : answer.first().toString();
}

bool Accessible::is(State state) const
{
    const auto answer = ask(accessibleInterface, QStringLiteral("GetState"));
    if (answer.isEmpty())
        return false;
    const auto words = qdbus_cast<QList<uint>>(answer.first());
    const auto bit = static_cast<uint>(state);
    return words.size() > int(bit / 32) && (words[int(bit / 32)] >> (bit % 32)) & 1U;
}

QRect Accessible::caret() const
{
    const int offset = property(textInterface, QStringLiteral("CaretOffset")).toInt();
    const auto box = ask(textInterface, QStringLiteral("GetCharacterExtents"), {offset, 0U});
    return box.size() < 4 ? QRect() : QRect(box[0].toInt(), box[1].toInt(), box[2].toInt(), box[3].toInt());
}

QRect Accessible::extents() const
{
    const auto answer = ask(QStringLiteral("org.a11y.atspi.Component"), QStringLiteral("GetExtents"), {0U});
    if (answer.isEmpty() || !answer.first().canConvert<QDBusArgument>())
        return {};
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    const auto box = answer.first().value<QDBusArgument>();
    box.beginStructure();
    box >> x >> y >> width >> height;
    box.endStructure();
    return {x, y, width, height};
}

std::vector<Accessible> Accessible::children() const
{
    std::vector<Accessible> found;
    for (const auto &[bus, object] : references(ask(accessibleInterface, QStringLiteral("GetChildren"))))
        found.push_back(Accessible(bus, object));
    return found;
}

std::optional<Accessible> Accessible::find(const std::function<bool(const Accessible &)> &test) const
{
    if (test(*this))
        return *this;
    for (const auto &child : children())
        if (const auto found = child.find(test))
            return found;
    return std::nullopt;
}

std::vector<Accessible> Accessible::all(const std::function<bool(const Accessible &)> &test) const
{
    std::vector<Accessible> found;
    if (test(*this))
        found.push_back(*this);
    for (const auto &child : children())
        for (const auto &inner : child.all(test))
            found.push_back(inner);
    return found;
}

QString Accessible::tree(int indent) const
{
    QString lines = QString(indent, QLatin1Char(' ')) + role() + QLatin1String(" \"") + name() +
                    QLatin1String("\" [") + text().left(60) + QLatin1String("]\n");
    for (const auto &child : children())
        lines += child.tree(indent + 2);
    return lines;
}

SelectionEvents::SelectionEvents(const QString &watched) : state(watched)
{
    // Programs only tell what somebody has registered for.
    auto registration = QDBusMessage::createMethodCall(
        QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("/org/a11y/atspi/registry"),
        QStringLiteral("org.a11y.atspi.Registry"), QStringLiteral("RegisterEvent"));
    registration << QString(QStringLiteral("object:state-changed:") + state) << QStringList() << QString();
    accessibilityBus().call(registration, QDBus::Block, answerBound);
    accessibilityBus().connect(QString(), QString(), QStringLiteral("org.a11y.atspi.Event.Object"),
                               QStringLiteral("StateChanged"), this, SLOT(stateChanged(QDBusMessage)));
}

void SelectionEvents::stateChanged(const QDBusMessage &message)
{
    const auto arguments = message.arguments();
    if (arguments.value(0) == state && arguments.value(1).toInt() == 1)
        objects.push_back(Accessible(message.service(), message.path()));
}
