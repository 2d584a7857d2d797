#include "Platform/linux/dbus/OpenApplication.h"

#include "Platform/linux/dbus/InstanceActions.h"

OpenApplication::OpenApplication(QObject *object, const QDBusConnection &answeringConnection,
                                 std::function<void(const QString &)> actionHandler)
    : QDBusAbstractAdaptor(object), connection(answeringConnection), onAction(std::move(actionHandler))
{
}

void OpenApplication::Activate(const QVariantMap & /*platformData*/)
{
    onAction(QStringLiteral("show"));
}

// There are no files to open; a desktop that asks for it wants to see the program.
void OpenApplication::Open(const QStringList & /*addresses*/, const QVariantMap & /*platformData*/)
{
    onAction(QStringLiteral("show"));
}

void OpenApplication::ActivateAction(const QString &action, const QVariantList & /*parameters*/,
                                     const QVariantMap & /*platformData*/, const QDBusMessage &message)
{
    if (isInstanceAction(action)) {
        onAction(action);
        return;
    }
    message.setDelayedReply(true);
    connection.send(
        message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("There is no such action")));
}
