#include "Norvane/RememberedSize.h"

#include "Norvane/PanelPlacement.h"
#include "Platform/UserDefaults.h"

namespace {

const QString panelWidthKey = QStringLiteral("panelWidth");
const QString panelHeightKey = QStringLiteral("panelHeight");
const QString wantedWidthKey = QStringLiteral("panelWantedWidth");
const QString wantedHeightKey = QStringLiteral("panelWantedHeight");

QSize sizeUnder(const UserDefaults &defaults, const QString &widthKey, const QString &heightKey)
{
    return PanelPlacement::initialSize(defaults.real(widthKey).value_or(0),
                                       defaults.real(heightKey).value_or(0))
        .toSize();
}

void set(UserDefaults &defaults, const QString &key, int value)
{
    if (defaults.real(key).value_or(0) != value)
        defaults.setReal(key, value);
}

} // namespace

RememberedSize::RememberedSize(UserDefaults &given)
    : defaults(given), placed(sizeUnder(defaults, panelWidthKey, panelHeightKey)), full(placed)
{
    if (defaults.real(wantedWidthKey).value_or(0) > 0 && defaults.real(wantedHeightKey).value_or(0) > 0)
        full = sizeUnder(defaults, wantedWidthKey, wantedHeightKey);
}

void RememberedSize::setPlaced(QSize size, QSize result)
{
    full = size;
    placed = result;
}

void RememberedSize::store(QSize current)
{
    const QSize kept = wanted(current);
    const bool isReduced = kept != current;
    set(defaults, panelWidthKey, current.width());
    set(defaults, panelHeightKey, current.height());
    set(defaults, wantedWidthKey, isReduced ? kept.width() : 0);
    set(defaults, wantedHeightKey, isReduced ? kept.height() : 0);
}
