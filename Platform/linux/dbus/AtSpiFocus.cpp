#include "Platform/linux/dbus/AtSpiFocus.h"

#include "Platform/linux/dbus/AtSpiTree.h"

#include <QDBusPendingCall>

namespace {

const QString eventName = QStringLiteral("object:state-changed:focused");
const QString eventInterface = QStringLiteral("org.a11y.atspi.Event.Object");
const QString daemonName = QStringLiteral("org.freedesktop.DBus");

const AtSpiObject registryRoot{AtSpi::registryBus, QDBusObjectPath(AtSpi::rootPath)};

QDBusMessage registryCall(const QString &method)
{
    return QDBusMessage::createMethodCall(AtSpi::registryBus, QStringLiteral("/org/a11y/atspi/registry"),
                                          QStringLiteral("org.a11y.atspi.Registry"), method);
}

} // namespace

AtSpiFocus::AtSpiFocus(const QDBusConnection &bus) : connection(bus)
{
    connection.connect(daemonName, QStringLiteral("/org/freedesktop/DBus"), daemonName,
                       QStringLiteral("NameOwnerChanged"), this, SLOT(noteOwner(QString, QString, QString)));
    connection.connect(QString(), QString(), eventInterface, QStringLiteral("StateChanged"),
                       {QStringLiteral("focused")}, QString(), this, SLOT(noteFocus(QDBusMessage)));
    connection.asyncCall(registryCall(QStringLiteral("RegisterEvent"))
                         << eventName << QStringList() << QString());
}

AtSpiFocus::~AtSpiFocus()
{
    connection.asyncCall(registryCall(QStringLiteral("DeregisterEvent")) << eventName);
}

void AtSpiFocus::noteFocus(const QDBusMessage &signal)
{
    const QVariantList arguments = signal.arguments();
    const bool gained = arguments.size() > 1 && arguments[1].toInt() == 1;
    if (gained)
        remembered.insert(signal.service(), {signal.service(), QDBusObjectPath(signal.path())});
}

void AtSpiFocus::noteOwner(const QString &name, const QString & /*before*/, const QString &now)
{
    if (!now.isEmpty())
        return;
    known.remove(name);
    remembered.remove(name);
}

std::optional<FocusedText> AtSpiFocus::find(const AtSpiInquiry &inquiry, qint64 pid)
{
    for (const AtSpiObject &root : applications(inquiry, pid)) {
        if (const auto text = textIn(inquiry, root))
            return FocusedText{*text, root};
    }
    return std::nullopt;
}

std::vector<AtSpiObject> AtSpiFocus::applications(const AtSpiInquiry &inquiry, qint64 pid)
{
    const auto matching = [this, pid] {
        std::vector<AtSpiObject> roots;
        for (const Application &each : std::as_const(known)) {
            if (pid > 0 && each.pid == pid)
                roots.push_back(each.root);
        }
        return roots;
    };
    auto roots = matching();
    if (!roots.empty())
        return roots;
    learnApplications(inquiry);
    roots = matching();
    return roots.empty() ? activeApplications(inquiry) : roots;
}

void AtSpiFocus::learnApplications(const AtSpiInquiry &inquiry)
{
    std::vector<AtSpiInquiry::Question> questions;
    std::vector<AtSpiObject> roots;
    for (const AtSpiObject &root : inquiry.childrenOf(registryRoot)) {
        if (root.isNull() || known.contains(root.bus))
            continue;
        roots.push_back(root);
        questions.push_back({{daemonName, QDBusObjectPath("/org/freedesktop/DBus")},
                             daemonName,
                             QStringLiteral("GetConnectionUnixProcessID"),
                             {root.bus}});
    }
    const auto answers = inquiry.ask(questions);
    for (size_t index = 0; index < roots.size(); ++index) {
        if (const auto pid = AtSpiInquiry::read<uint>(answers[index], "u"))
            known.insert(roots[index].bus, {roots[index], *pid});
    }
}

std::vector<AtSpiObject> AtSpiFocus::activeApplications(const AtSpiInquiry &inquiry) const
{
    std::vector<AtSpiObject> roots;
    for (const Application &each : known)
        roots.push_back(each.root);
    return AtSpiTree::activePrograms(inquiry, roots);
}

std::optional<AtSpiObject> AtSpiFocus::textIn(const AtSpiInquiry &inquiry, const AtSpiObject &root)
{
    const auto last = remembered.constFind(root.bus);
    const bool isTold = last != remembered.cend();
    std::vector<AtSpiObject> focused;
    const bool search = AtSpiTree::canSearch(inquiry, root);
    if (!isTold || search)
        focused = AtSpiTree::focusedObjects(inquiry, root, search);
    if (focused.empty()) {
        if (!isTold)
            return std::nullopt;
        focused.push_back(*last);
    }
    const auto have = inquiry.haveText(focused);
    for (size_t index = focused.size(); index-- > 0;) {
        if (!have[index])
            continue;
        remembered.insert(root.bus, focused[index]);
        return focused[index];
    }
    return std::nullopt;
}
