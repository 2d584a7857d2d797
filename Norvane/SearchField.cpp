#include "Norvane/SearchField.h"

#include "Norvane/ClipIcons.h"
#include "Norvane/Palette.h"
#include "Platform/Pasteboard.h"
#include "Vesmo/Localisation.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPointer>

using Metrics::scaled;

namespace {

constexpr qreal fieldHeight = 30, symbolSize = 15, symbolLeading = 8, textLeading = 28, fieldRadius = 7;

// Qt's own "paste selection" key, which would go round our pasteboard.
bool pastesPrimary(const QKeyEvent *event)
{
    return event->key() == Qt::Key_Insert && event->modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
}

} // namespace

SearchField::SearchField(Pasteboard &generalPasteboard, ClipIcons &clipIcons, QWidget *parent)
    : QLineEdit(parent), pasteboard(generalPasteboard), icons(clipIcons)
{
    setFrame(false);
    setFont(Metrics::font(14));
    setTextMargins(scaled(textLeading), 0, scaled(8), 0);
    setDragEnabled(false);
    applyColours();
}

// The toolkit's placeholder is half as dark as its text, which is too faint to read.
void SearchField::applyColours()
{
    const QColor faint = Palette::secondary(palette());
    if (palette().color(QPalette::Base) == QColor(Qt::transparent) &&
        palette().color(QPalette::PlaceholderText) == faint)
        return;       // setting them again would bring the event that leads here
    QPalette colours; // only these two: what is copied from palette() would stay as it is now
    colours.setColor(QPalette::Base, Qt::transparent);
    colours.setColor(QPalette::PlaceholderText, faint);
    setPalette(colours);
}

QSize SearchField::sizeHint() const
{
    return {scaled(240), scaled(fieldHeight)};
}

void SearchField::copySelection()
{
    if (!hasSelectedText())
        return;
    pasteboard.write({{{{QStringView(PasteboardType::plainText).toString(), selectedText().toUtf8()}}}});
}

void SearchField::cutSelection()
{
    copySelection();
    insert(QString());
}

void SearchField::pasteText()
{
    pasteboard.readText([field = QPointer(this)](const QString &text) {
        if (field && !text.isEmpty())
            field->insert(QString(text).replace(u'\n', u' ').remove(u'\r'));
    });
}

void SearchField::deleteFrom(int position)
{
    setSelection(position, static_cast<int>(text().size()) - position);
    insert(QString());
}

bool SearchField::event(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        update();
    return QLineEdit::event(event);
}

void SearchField::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else if (event->matches(QKeySequence::Cut))
        cutSelection();
    else if (event->matches(QKeySequence::Paste))
        pasteText();
    else if (event->matches(
                 QKeySequence::DeleteEndOfLine)) // what the toolkit deletes, it puts on the clipboard
        deleteFrom(cursorPosition());
    else if (event->matches(QKeySequence::DeleteCompleteLine))
        deleteFrom(0);
    else if (!pastesPrimary(event))
        QLineEdit::keyPressEvent(event);
}

void SearchField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::MiddleButton)
        QLineEdit::mousePressEvent(event);
}

// The toolkit does nothing here but own or paste the primary selection.
void SearchField::mouseReleaseEvent(QMouseEvent *event)
{
    event->accept();
}

void SearchField::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [menu](const QString &text, bool enabled, auto &&action) {
        QAction *item = menu->addAction(text);
        item->setEnabled(enabled);
        connect(item, &QAction::triggered, menu, action);
    };
    add(L("Annulla##undo"), isUndoAvailable(), [this] { undo(); });
    add(L("Ripeti"), isRedoAvailable(), [this] { redo(); });
    menu->addSeparator();
    add(L("Taglia"), hasSelectedText(), [this] { cutSelection(); });
    add(L("Copia"), hasSelectedText(), [this] { copySelection(); });
    add(L("Incolla"), true, [this] { pasteText(); });
    menu->addSeparator();
    add(L("Seleziona tutto"), !text().isEmpty(), [this] { selectAll(); });
    menu->popup(event->globalPos());
}

void SearchField::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::field(palette()));
    painter.drawRoundedRect(rect(), scaled(fieldRadius), scaled(fieldRadius));
    const int side = scaled(symbolSize);
    painter.drawPixmap(
        scaled(symbolLeading), (height() - side) / 2,
        icons.symbol(QStringLiteral("search"), side, Palette::secondary(palette()), devicePixelRatioF()));
    painter.end();
    QLineEdit::paintEvent(event);
}
