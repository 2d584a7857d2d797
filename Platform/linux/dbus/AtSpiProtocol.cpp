#include "Platform/linux/dbus/AtSpiProtocol.h"

#include <QDBusMetaType>

void AtSpi::registerTypes()
{
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<AtSpiObject>();
    qDBusRegisterMetaType<AtSpiMatchRule>();
}

QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiObject &object)
{
    argument.beginStructure();
    argument << object.bus << object.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiObject &object)
{
    argument.beginStructure();
    argument >> object.bus >> object.path;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const AtSpiMatchRule &rule)
{
    argument.beginStructure();
    argument << rule.states << rule.stateMatch << rule.attributes << rule.attributeMatch << rule.roles
             << rule.roleMatch << rule.interfaces << rule.interfaceMatch << rule.invert;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiMatchRule &rule)
{
    argument.beginStructure();
    argument >> rule.states >> rule.stateMatch >> rule.attributes >> rule.attributeMatch >> rule.roles >>
        rule.roleMatch >> rule.interfaces >> rule.interfaceMatch >> rule.invert;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, AtSpiCacheItem &item)
{
    argument.beginStructure();
    argument >> item.object >> item.application >> item.parent >> item.indexInParent >> item.childCount >>
        item.interfaces >> item.name >> item.role >> item.description >> item.states;
    argument.endStructure();
    return argument;
}
