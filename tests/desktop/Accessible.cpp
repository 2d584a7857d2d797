#include "tests/desktop/Accessible.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>

namespace {

const QString accessibleInterface = "org.a11y.atspi.Accessible";
const QString textInterface = "org.a11y.atspi.Text";
constexpr int answerBound = 1000; // ms

QDBusConnection accessibilityBus()
{
    static const QDBusConnection bus = [] {
        const auto question =
            QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
        const QDBusReply<QString> address = QDBusConnection::sessionBus().call(question, QDBus::Block, 10000);
        return QDBusConnection::connectToBus(address.value(), "accessibility");
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
    const Accessible registry("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root");
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
    const auto answer = ask("org.freedesktop.DBus.Properties", "Get", {interface, name});
    return answer.value(0).value<QDBusVariant>().variant();
}

QString Accessible::name() const
{
    return property(accessibleInterface, "Name").toString();
}

QString Accessible::description() const
{
    return property(accessibleInterface, "Description").toString();
}

bool Accessible::press() const
{
    return ask("org.a11y.atspi.Action", "DoAction", {0}).value(0).toBool();
}

QString Accessible::role() const
{
    return ask(accessibleInterface, "GetRoleName").value(0).toString();
}

QString Accessible::text() const
{
    return ask(textInterface, "GetText", {0, -1}).value(0).toString();
}

bool Accessible::is(State state) const
{
    const auto words = qdbus_cast<QList<uint>>(ask(accessibleInterface, "GetState").value(0));
    const auto bit = static_cast<uint>(state);
    return words.size() > int(bit / 32) && (words[int(bit / 32)] >> (bit % 32)) & 1U;
}

QRect Accessible::caret() const
{
    const int offset = property(textInterface, "CaretOffset").toInt();
    const auto box = ask(textInterface, "GetCharacterExtents", {offset, 0U});
    return box.size() < 4 ? QRect() : QRect(box[0].toInt(), box[1].toInt(), box[2].toInt(), box[3].toInt());
}

QRect Accessible::extents() const
{
    return qdbus_cast<QRect>(ask("org.a11y.atspi.Component", "GetExtents", {0U}).value(0));
}

std::vector<Accessible> Accessible::children() const
{
    std::vector<Accessible> found;
    for (const auto &[bus, object] : references(ask(accessibleInterface, "GetChildren")))
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

SelectionEvents::SelectionEvents(const QString &watched) : state(watched)
{
    // Programs only tell what somebody has registered for.
    auto registration = QDBusMessage::createMethodCall("org.a11y.atspi.Registry", "/org/a11y/atspi/registry",
                                                       "org.a11y.atspi.Registry", "RegisterEvent");
    registration << QString("object:state-changed:" + state) << QStringList() << QString();
    accessibilityBus().call(registration, QDBus::Block, answerBound);
    accessibilityBus().connect(QString(), QString(), "org.a11y.atspi.Event.Object", "StateChanged", this,
                               SLOT(stateChanged(QDBusMessage)));
}

void SelectionEvents::stateChanged(const QDBusMessage &message)
{
    const auto arguments = message.arguments();
    if (arguments.value(0) == state && arguments.value(1).toInt() == 1)
        objects.push_back(Accessible(message.service(), message.path()));
}
