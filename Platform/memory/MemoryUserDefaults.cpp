#include "Platform/memory/MemoryUserDefaults.h"

namespace {

template <typename Value>
std::optional<Value> typed(const QHash<QString, QVariant> &values, const QString &key)
{
    const QVariant value = values.value(key);
    if (value.metaType() != QMetaType::fromType<Value>())
        return std::nullopt;
    return value.value<Value>();
}

} // namespace

bool MemoryUserDefaults::contains(const QString &key) const
{
    return values.contains(key);
}

std::optional<qint64> MemoryUserDefaults::integer(const QString &key) const
{
    return typed<qint64>(values, key);
}

std::optional<double> MemoryUserDefaults::real(const QString &key) const
{
    if (const auto whole = integer(key))
        return static_cast<double>(*whole);
    return typed<double>(values, key);
}

std::optional<bool> MemoryUserDefaults::boolean(const QString &key) const
{
    return typed<bool>(values, key);
}

std::optional<QString> MemoryUserDefaults::string(const QString &key) const
{
    return typed<QString>(values, key);
}

std::optional<QStringList> MemoryUserDefaults::stringList(const QString &key) const
{
    return typed<QStringList>(values, key);
}

std::optional<QByteArray> MemoryUserDefaults::data(const QString &key) const
{
    return typed<QByteArray>(values, key);
}

void MemoryUserDefaults::setInteger(const QString &key, qint64 value)
{
    set(key, value);
}

void MemoryUserDefaults::setReal(const QString &key, double value)
{
    set(key, value);
}

void MemoryUserDefaults::setBoolean(const QString &key, bool value)
{
    set(key, value);
}

void MemoryUserDefaults::setString(const QString &key, const QString &value)
{
    set(key, value);
}

void MemoryUserDefaults::setStringList(const QString &key, const QStringList &value)
{
    set(key, value);
}

void MemoryUserDefaults::setData(const QString &key, const QByteArray &value)
{
    set(key, value);
}

void MemoryUserDefaults::remove(const QString &key)
{
    values.remove(key);
}

void MemoryUserDefaults::set(const QString &key, const QVariant &value)
{
    values.insert(key, value);
    ++writes;
}
