#pragma once

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QMap>
#include <QStringList>
#include <QtGlobal>

// The words of the accessibility bus (AT-SPI 2) that we use, as its protocol numbers and shapes them.

// An object of a program's user interface: (so).
struct AtSpiObject {
    QString bus; // the program's unique name; never given to another program while the bus runs
    QDBusObjectPath path;

    // The protocol's way to say "none" as well.
    [[nodiscard]] bool isNull() const
    {
        return bus.isEmpty() || path.path() == QLatin1String("/org/a11y/atspi/null");
    }
    bool operator==(const AtSpiObject &) const = default;
};

// What Collection.GetMatches selects: (aiia{ss}iaiiasib).
struct AtSpiMatchRule {
    QList<int> states;  // two words of bits
    int stateMatch = 1; // 1: all of them
    QMap<QString, QString> attributes;
    int attributeMatch = 1;
    QList<int> roles;
    int roleMatch = 1;
    QStringList interfaces;
    int interfaceMatch = 1;
    bool invert = false;
};

// What a program keeps of each of its objects: ((so)(so)(so)iiassusau).
struct AtSpiCacheItem {
    AtSpiObject object;
    AtSpiObject application;
    AtSpiObject parent;
    int indexInParent = 0;
    int childCount = 0;
    QStringList interfaces;
    QString name;
    uint role = 0;
    QString description;
    QList<uint> states;
};

namespace AtSpi {

// Numbers of bits.
inline constexpr uint stateActive = 1, stateFocused = 12, stateShowing = 25, stateManagesDescendants = 31;

enum Coordinates : uint { screen = 0, window = 1 };

[[nodiscard]] inline bool hasState(const QList<uint> &states, uint bit)
{
    const auto word = static_cast<qsizetype>(bit / 32);
    return word < states.size() && (states[word] >> (bit % 32) & 1U) != 0;
}

inline const QString accessible = QStringLiteral("org.a11y.atspi.Accessible");
inline const QString application = QStringLiteral("org.a11y.atspi.Application");
inline const QString cache = QStringLiteral("org.a11y.atspi.Cache");
inline const QString collection = QStringLiteral("org.a11y.atspi.Collection");
inline const QString component = QStringLiteral("org.a11y.atspi.Component");
inline const QString text = QStringLiteral("org.a11y.atspi.Text");
inline const QString registryBus = QStringLiteral("org.a11y.atspi.Registry");
inline const QString rootPath = QStringLiteral("/org/a11y/atspi/accessible/root");

// Once, before the first question.
void registerTypes();

} // namespace AtSpi

Q_DECLARE_METATYPE(AtSpiObject)
Q_DECLARE_METATYPE(AtSpiMatchRule)

QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiObject &object);
const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiObject &object);
QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiMatchRule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiMatchRule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiCacheItem &item);
