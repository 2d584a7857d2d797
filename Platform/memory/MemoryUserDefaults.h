#pragma once

#include "Platform/UserDefaults.h"

#include <QHash>
#include <QVariant>

// Settings in memory. What was set as one type reads as absent as another. Main thread.
class MemoryUserDefaults : public UserDefaults {
public:
    [[nodiscard]] bool contains(const QString &key) const override;
    [[nodiscard]] std::optional<qint64> integer(const QString &key) const override;
    [[nodiscard]] std::optional<double> real(const QString &key) const override;
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const override;
    [[nodiscard]] std::optional<QString> string(const QString &key) const override;
    [[nodiscard]] std::optional<QStringList> stringList(const QString &key) const override;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const override;

    void setInteger(const QString &key, qint64 value) override;
    void setReal(const QString &key, double value) override;
    void setBoolean(const QString &key, bool value) override;
    void setString(const QString &key, const QString &value) override;
    void setStringList(const QString &key, const QStringList &value) override;
    void setData(const QString &key, const QByteArray &value) override;

    void remove(const QString &key);
    [[nodiscard]] qint64 writeCount() const { return writes; } // setter calls so far

private:
    void set(const QString &key, const QVariant &value);

    QHash<QString, QVariant> values;
    qint64 writes = 0;
};
