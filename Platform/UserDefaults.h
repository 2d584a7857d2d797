#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

// The user's settings: typed values under keys, written at every change. Main thread.
//
// A reader answers absent when the key is absent or its value is not of that type.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    [[nodiscard]] virtual bool contains(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<qint64> integer(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<double> real(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<bool> boolean(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QString> string(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QStringList> stringList(const QString &key) const = 0;
    [[nodiscard]] virtual std::optional<QByteArray> data(const QString &key) const = 0;

    virtual void setInteger(const QString &key, qint64 value) = 0;
    virtual void setReal(const QString &key, double value) = 0;
    virtual void setBoolean(const QString &key, bool value) = 0;
    virtual void setString(const QString &key, const QString &value) = 0;
    virtual void setStringList(const QString &key, const QStringList &value) = 0;
    virtual void setData(const QString &key, const QByteArray &value) = 0;
};
