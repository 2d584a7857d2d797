#include "Platform/linux/xdg/XdgUserDefaults.h"

#include "Platform/Log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QStandardPaths>
#include <cmath>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

bool isJson(const QByteArray &bytes)
{
    return !QJsonDocument::fromJson(bytes).isNull() && QString::fromUtf8(bytes).toUtf8() == bytes;
}

} // namespace

XdgUserDefaults::XdgUserDefaults(const QString &filePath) : path(filePath)
{
    open();
    isDamaged = settings->status() == QSettings::FormatError;
    if (settings->status() != QSettings::NoError)
        logLine(isDamaged ? QStringLiteral("Norvane: the settings file is damaged, defaults are used")
                          : QStringLiteral("Norvane: the settings file cannot be read, defaults are used"));
}

QString XdgUserDefaults::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Norvane/settings.ini");
}

// QSettings never forgets an error: to learn how the next write goes takes a new one. The values that were
// not written live on, because both share them while both are there.
void XdgUserDefaults::open()
{
    auto fresh = std::make_unique<QSettings>(path, QSettings::IniFormat);
    settings = std::move(fresh);
}

bool XdgUserDefaults::contains(const QString &key) const
{
    return settings->contains(key);
}

std::optional<QString> XdgUserDefaults::string(const QString &key) const
{
    const QVariant value = settings->value(key);
    if (value.metaType() != QMetaType::fromType<QString>())
        return std::nullopt;
    return value.toString();
}

std::optional<qint64> XdgUserDefaults::integer(const QString &key) const
{
    bool isNumber = false;
    const qint64 value = string(key).value_or(QString()).toLongLong(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<double> XdgUserDefaults::real(const QString &key) const
{
    bool isNumber = false;
    const double value = string(key).value_or(QString()).toDouble(&isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<bool> XdgUserDefaults::boolean(const QString &key) const
{
    const QString text = string(key).value_or(QString()).trimmed();
    if (text.compare(u"true", Qt::CaseInsensitive) == 0)
        return true;
    if (text.compare(u"false", Qt::CaseInsensitive) == 0)
        return false;
    return std::nullopt;
}

std::optional<QStringList> XdgUserDefaults::stringList(const QString &key) const
{
    // A list typed in by hand, "one, two", which is how INI files have lists.
    if (const QVariant value = settings->value(key); value.metaType() == QMetaType::fromType<QStringList>())
        return value.toStringList();
    const auto document = QJsonDocument::fromJson(string(key).value_or(QString()).toUtf8());
    if (!document.isArray())
        return std::nullopt;
    QStringList list;
    for (const auto element : document.array()) {
        if (!element.isString())
            return std::nullopt;
        list.append(element.toString());
    }
    return list;
}

std::optional<QByteArray> XdgUserDefaults::data(const QString &key) const
{
    const auto text = string(key);
    if (!text)
        return std::nullopt;
    const QByteArray bytes = text->toUtf8();
    if (bytes.startsWith('{') || bytes.startsWith('['))
        return bytes;
    const auto decoded = QByteArray::fromBase64Encoding(bytes, QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional(decoded.decoded) : std::nullopt;
}

void XdgUserDefaults::setInteger(const QString &key, qint64 value)
{
    write(key, QString::number(value));
}

void XdgUserDefaults::setReal(const QString &key, double value)
{
    write(key, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

void XdgUserDefaults::setBoolean(const QString &key, bool value)
{
    write(key, value ? QStringLiteral("true") : QStringLiteral("false"));
}

void XdgUserDefaults::setString(const QString &key, const QString &value)
{
    write(key, value);
}

// As JSON, because QSettings reads a list of one as a text and an empty one as no value.
void XdgUserDefaults::setStringList(const QString &key, const QStringList &value)
{
    const auto json = QJsonDocument(QJsonArray::fromStringList(value)).toJson(QJsonDocument::Compact);
    write(key, QString::fromUtf8(json));
}

void XdgUserDefaults::setData(const QString &key, const QByteArray &value)
{
    const bool readable = (value.startsWith('{') || value.startsWith('[')) && isJson(value);
    write(key, readable ? QString::fromUtf8(value) : QString::fromLatin1(value.toBase64()));
}

void XdgUserDefaults::write(const QString &key, const QString &text)
{
    keepDamagedFile();
    makePrivateFile();
    settings->setValue(key, text);
    settings->sync();
    const bool failed = settings->status() == QSettings::AccessError;
    if (failed && !isFailing)
        logLine(QStringLiteral("Norvane: settings cannot be written to their file"));
    isFailing = failed;
    if (failed)
        open();
}

// Beforehand, since QSettings gives a new file the umask's rights but keeps those of an old one.
void XdgUserDefaults::makePrivateFile() const
{
    const QByteArray file = QFile::encodeName(path);
    if (::access(file.constData(), F_OK) == 0)
        return;
    const QFileInfo info(path);
    const QByteArray folder = QFile::encodeName(info.absolutePath());
    QDir().mkpath(QFileInfo(info.absolutePath()).absolutePath());
    ::mkdir(folder.constData(), S_IRWXU); // 0700 if it is ours to make
    const int descriptor =
        ::open(file.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (descriptor >= 0)
        ::close(descriptor);
}

void XdgUserDefaults::keepDamagedFile()
{
    if (!isDamaged)
        return;
    isDamaged = false;
    const QString kept = path + u".bad";
    QFile::remove(kept);
    if (!QFile::copy(path, kept) || !QFile::setPermissions(kept, ownerOnly))
        logLine(QStringLiteral("Norvane: the damaged settings file could not be kept"));
    QFile::setPermissions(path, ownerOnly);
}
