#include "Platform/linux/dbus/InstanceSocket.h"

#include "Platform/Log.h"
#include "Platform/linux/dbus/InstanceActions.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QTimer>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qint64 longestQuestion = 64; // bytes, with its end of line

// A folder that nobody but the user can look into or replace things in.
bool isPrivate(const QByteArray &folder)
{
    struct stat status {};
    return ::lstat(folder.constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == ::getuid() && (status.st_mode & 0777) == 0700;
}

QString privateFolder()
{
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtimeFolder.isEmpty() && isPrivate(QFile::encodeName(runtimeFolder)))
        return runtimeFolder;
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    const QString folder = caches + QStringLiteral("/norvane");
    QDir().mkpath(caches);
    ::mkdir(QFile::encodeName(folder).constData(), 0700);
    return isPrivate(QFile::encodeName(folder)) ? folder : QString();
}

// Answers one question, whatever its sender does: it may dawdle, go away or talk nonsense.
class Answer : public QObject {
public:
    Answer(QLocalSocket *asker, std::function<void(const QString &)> handler)
        : QObject(asker), socket(asker), onAction(std::move(handler))
    {
        connect(socket, &QLocalSocket::readyRead, this, [this] { read(); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        QTimer::singleShot(instanceAnswerLimit, socket, [this] { socket->abort(); });
        read();
    }

private:
    void read()
    {
        if (!socket->canReadLine()) {
            if (socket->bytesAvailable() > longestQuestion)
                socket->abort();
            return;
        }
        const QString action = QString::fromUtf8(socket->readLine(longestQuestion)).trimmed();
        const bool known = isInstanceAction(action);
        socket->disconnect(this); // one question a visit
        socket->write(known ? "ok\n" : "no\n");
        socket->disconnectFromServer();
        if (known)
            onAction(action);
    }

    QLocalSocket *socket;
    std::function<void(const QString &)> onAction;
};

} // namespace

InstanceSocket::InstanceSocket(const QString &displayName)
{
    if (const QString folder = privateFolder(); !folder.isEmpty())
        path = folder + QStringLiteral("/norvane-") + displayName;
    server.setSocketOptions(QLocalServer::UserAccessOption);
    QObject::connect(&server, &QLocalServer::newConnection, &server, [this] { serve(); });
}

InstanceSocket::~InstanceSocket()
{
    server.close();
    if (lock >= 0)
        ::close(lock);
}

bool InstanceSocket::claim()
{
    if (lock >= 0)
        return true;
    if (path.isEmpty()) {
        logLine(QStringLiteral("Norvane: no private folder for the socket, a second start is not noticed"));
        return true;
    }
    const QByteArray lockFile = QFile::encodeName(path) + ".lock";
    const int descriptor = ::open(lockFile.constData(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
        ::close(descriptor);
        return false;
    }
    lock = descriptor;
    QLocalServer::removeServer(path); // left over from an instance that died: the lock is ours
    if (descriptor < 0 || !server.listen(path))
        logLine(QStringLiteral("Norvane: no socket for further starts (%1)").arg(server.errorString()));
    return true;
}

bool InstanceSocket::ask(const QString &action)
{
    const QDeadlineTimer deadline(instanceAnswerLimit);
    const auto left = [&deadline] { return static_cast<int>(deadline.remainingTime()); };
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(left()))
        return false;
    socket.write(action.toUtf8() + '\n');
    while (!socket.canReadLine()) {
        if (deadline.hasExpired() || !socket.waitForReadyRead(left()))
            return false;
    }
    return socket.readLine(longestQuestion) == "ok\n";
}

void InstanceSocket::serve()
{
    while (QLocalSocket *socket = server.nextPendingConnection()) {
        new Answer(socket, [this](const QString &action) {
            QTimer::singleShot(0, &server, [this, action] {
                if (onAction)
                    onAction(action);
            });
        });
    }
}
