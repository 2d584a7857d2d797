#include "Platform/linux/tray/TrayMenu.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTextDocument>

namespace {

constexpr int widestImage = 28;  // logical pixels
constexpr int tallestImage = 20; // logical pixels
constexpr int symbolSide = 16;   // logical pixels

// Gives pictures the width of a thumbnail, and every row the same height whether it has a picture or not.
class PictureRows : public QProxyStyle {
public:
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        return metric == PM_SmallIconSize ? widestImage : QProxyStyle::pixelMetric(metric, option, widget);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override
    {
        QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
        if (type == CT_MenuItem && item && item->menuItemType != QStyleOptionMenuItem::Separator)
            result.setHeight(qMax(tallestImage, item->fontMetrics.height()) + 6);
        return result;
    }
};

QPixmap tinted(const QString &file, const QColor &color)
{
    QPixmap pixmap = QIcon(file).pixmap(QSize(symbolSide, symbolSide), qGuiApp->devicePixelRatio());
    if (pixmap.isNull())
        return pixmap;
    QPainter painter(&pixmap);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), color);
    return pixmap;
}

// The key as rows name it; empty with a modifier held. A key of the number row that types something else
// without Shift, as on French layouts, is its digit too.
QString bareKeyOf(const QKeyEvent *event)
{
    constexpr quint32 firstDigit = 10; // X key code of 1; 9 is 18
    const QString typed = event->text().toUpper();
    const bool isDigit = typed.size() == 1 && typed[0] >= u'0' && typed[0] <= u'9';
    if (isDigit && !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)))
        return typed;
    if (event->modifiers() != Qt::NoModifier)
        return {};
    const quint32 place = event->nativeScanCode();
    if (place >= firstDigit && place < firstDigit + 9)
        return QString::number(place - firstDigit + 1);
    return typed;
}

} // namespace

// Qt's widgets take every "&" as a mark. In an exported menu "_" is the mark, and Qt makes one of the first
// "&" only: that one is put before a character that is not seen, so that nothing is underlined.
QString literalMenuTitle(const QString &title, MenuHost host)
{
    constexpr char16_t wordJoiner = u'\u2060';
    const bool isExported = host == MenuHost::exported;
    QString literal;
    literal.reserve(title.size() + 2);
    if (isExported && title.contains(u'&'))
        literal.append(u'&').append(wordJoiner);
    for (const QChar character : title) {
        // A tab would begin the column of keys, a line break a second line.
        if (character.category() == QChar::Other_Control) {
            literal += u' ';
            continue;
        }
        literal += character;
        if (character == (isExported ? u'_' : u'&'))
            literal += character;
    }
    return literal;
}

TrayMenu::TrayMenu(MenuHost menuHost) : host(menuHost)
{
    setToolTipsVisible(true);
    if (host == MenuHost::widget) {
        rowStyle = std::make_unique<PictureRows>();
        setStyle(rowStyle.get());
    }
}

TrayMenu::~TrayMenu()
{
    setStyle(nullptr);
}

TrayMenu::Groups TrayMenu::grouped(const std::vector<ClosureMenuItem> &items)
{
    Groups result(1);
    for (const auto &item : items) {
        if (item.separator)
            result.emplace_back();
        else
            result.back().push_back(item);
    }
    return result;
}

void TrayMenu::setItems(const std::vector<ClosureMenuItem> &items)
{
    const Groups wanted = grouped(items);
    while (groups.size() < wanted.size()) {
        groups.emplace_back();
        if (groups.size() > 1)
            groups.back().separator = addSeparator();
    }
    bool anyAbove = false;
    for (size_t i = 0; i < groups.size(); ++i) {
        fill(groups[i], i < wanted.size() ? wanted[i] : std::vector<ClosureMenuItem>{},
             i + 1 < groups.size() ? groups[i + 1].separator : nullptr);
        if (groups[i].separator)
            groups[i].separator->setVisible(anyAbove && groups[i].shown > 0);
        anyAbove = anyAbove || groups[i].shown > 0;
    }
}

void TrayMenu::setTexts(const std::vector<ClosureMenuItem> &items)
{
    Groups wanted = grouped(items);
    for (size_t i = 0; i < groups.size() && i < wanted.size(); ++i) {
        wanted[i].resize(std::min(wanted[i].size(), groups[i].shown));
        fill(groups[i], wanted[i], nullptr);
    }
}

void TrayMenu::fill(Group &group, const std::vector<ClosureMenuItem> &items, QAction *before)
{
    while (group.rows.size() < items.size())
        group.rows.push_back(makeRow(before));
    group.shown = items.size();
    for (size_t i = 0; i < group.rows.size(); ++i) {
        if (i < items.size())
            setRow(*group.rows[i], items[i]);
        group.rows[i]->action->setVisible(i < items.size());
    }
}

std::unique_ptr<TrayMenu::Row> TrayMenu::makeRow(QAction *before)
{
    auto row = std::make_unique<Row>();
    row->action = new QAction(this);
    row->action->setVisible(false);
    row->action->setShortcutVisibleInContextMenu(true);
    connect(row->action, &QAction::triggered, this, [made = row.get()] {
        const ClosureMenuItem chosen = made->item; // a copy: what it does may change the rows
        chosen.run();
    });
    insertAction(before, row->action);
    return row;
}

// An icon that is set is told to the tray again with all of its row, changed or not.
void TrayMenu::setRow(Row &row, const ClosureMenuItem &item)
{
    const ClosureMenuItem before = std::exchange(row.item, item);
    row.action->setText(literalMenuTitle(item.title, host));
    row.action->setShortcut(QKeySequence(item.key.toUpper()));
    // Text that looks like markup would be taken as such.
    row.action->setToolTip(item.toolTip.isEmpty() ? QString() : Qt::convertFromPlainText(item.toolTip));
    if (before.image != item.image || before.symbol != item.symbol)
        row.action->setIcon(iconOf(item));
    row.action->setEnabled(item.enabled);
}

QIcon TrayMenu::iconOf(const ClosureMenuItem &item) const
{
    if (!item.image.isNull())
        return QIcon(QPixmap::fromImage(item.image));
    if (item.symbol.isEmpty())
        return {};
    // A tray's menu may be light or dark: a middle grey is seen on both.
    return QIcon(tinted(item.symbol, host == MenuHost::exported ? QColor(Qt::gray)
                                                                : palette().color(QPalette::WindowText)));
}

void TrayMenu::keyPressEvent(QKeyEvent *event)
{
    const QString key = bareKeyOf(event);
    for (QAction *row : actions()) {
        if (!key.isEmpty() && row->isVisible() && row->isEnabled() && row->shortcut() == QKeySequence(key)) {
            close();
            row->trigger();
            return;
        }
    }
    QMenu::keyPressEvent(event);
}

void TrayMenu::changeEvent(QEvent *event)
{
    QMenu::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    for (const Group &group : groups) {
        for (const auto &row : group.rows)
            row->action->setIcon(iconOf(row->item));
    }
}
