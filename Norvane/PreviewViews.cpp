// The text and the image of the preview.

#include "Norvane/Palette.h"
#include "Norvane/PreviewPane.h"
#include "Norvane/SlimScrollBar.h"
#include "Norvane/TextSelection.h"
#include "Platform/Pasteboard.h"
#include "Vesmo/Localisation.h"

#include <QAccessibleWidget>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

using Metrics::scaled;

namespace {

// Laying out one line without blanks costs the square of its length: 500,000 characters take half a minute.
// Pieces of this length take 12 ms.
constexpr qsizetype longestBlock = 2000;
constexpr qsizetype longLine = 5000;

struct DisplayText {
    QString text;
    std::vector<qsizetype> cuts; // positions of the line feeds that the text itself does not have
};

bool splitsSurrogates(QStringView text, qsizetype position)
{
    return position > 0 && position < text.size() && text[position - 1].isHighSurrogate() &&
           text[position].isLowSurrogate();
}

DisplayText displayText(const QString &text)
{
    DisplayText display;
    display.text.reserve(text.size() + text.size() / longestBlock);
    for (const auto line : QStringView(text).tokenize(u'\n')) {
        if (!display.text.isEmpty() || line.data() != text.constData())
            display.text += u'\n';
        if (line.size() <= longLine) {
            display.text += line;
            continue;
        }
        for (qsizetype start = 0; start < line.size();) {
            qsizetype end = std::min(start + longestBlock, line.size());
            if (splitsSurrogates(line, end))
                ++end;
            if (start > 0) {
                display.cuts.push_back(display.text.size());
                display.text += u'\n';
            }
            display.text += line.mid(start, end - start);
            start = end;
        }
    }
    return display;
}

// Scaled down into the room, never up.
QSize fittedSize(const QSize &image, const QSize &room)
{
    const bool fits = image.width() <= room.width() && image.height() <= room.height();
    return (fits ? image : image.scaled(room, Qt::KeepAspectRatio)).expandedTo({1, 1});
}

// A plain widget would be a nameless filler to a screen reader.
QAccessibleInterface *pictureOf(const QString &, QObject *object)
{
    auto *image = qobject_cast<PreviewImage *>(object);
    return image ? new QAccessibleWidget(image, QAccessible::Graphic) : nullptr;
}

} // namespace

PreviewText::PreviewText(Pasteboard &generalPasteboard, QWidget *parent)
    : QPlainTextEdit(parent), pasteboard(generalPasteboard)
{
    setReadOnly(true);
    setAccessibleName(L("Anteprima"));
    setUndoRedoEnabled(false);
    setFrameShape(NoFrame);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar(this));
    document()->setDocumentMargin(scaled(8));
    setTabChangesFocus(true);
    new TextSelection(this);
    QPalette colours;
    colours.setColor(QPalette::Base, Qt::transparent);
    setPalette(colours);
}

void PreviewText::showText(const QString &text, const QFont &font, qreal tabInterval)
{
    DisplayText display = displayText(text);
    setFont(font);
    setWordWrapMode(!display.cuts.empty() ? QTextOption::WrapAnywhere
                                          : QTextOption::WrapAtWordBoundaryOrAnywhere);
    setTabStopDistance(tabInterval > 0 ? tabInterval : 8 * fontMetrics().horizontalAdvance(u' '));
    setPlainText(display.text);
    cuts = std::move(display.cuts);
    moveCursor(QTextCursor::Start);
}

void PreviewText::copySelection()
{
    QString selected = textCursor().selectedText().replace(QChar::ParagraphSeparator, u'\n');
    const qsizetype start = textCursor().selectionStart();
    for (auto cut = cuts.rbegin(); cut != cuts.rend(); ++cut) {
        if (*cut >= start && *cut < start + selected.size())
            selected.remove(*cut - start, 1);
    }
    if (!selected.isEmpty())
        pasteboard.write({{{{QStringView(PasteboardType::plainText).toString(), selected.toUtf8()}}}});
}

void PreviewText::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else if (event->matches(QKeySequence::SelectAll))
        selectAll(); // as the menu does; the toolkit's key would own the primary selection too
    else
        QPlainTextEdit::keyPressEvent(event);
}

void PreviewText::contextMenuEvent(QContextMenuEvent *event)
{
    auto *menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction *copy = menu->addAction(L("Copia"), this, &PreviewText::copySelection);
    copy->setEnabled(textCursor().hasSelection());
    menu->addAction(L("Seleziona tutto"), this, &QPlainTextEdit::selectAll);
    menu->popup(event->globalPos());
}

PreviewImage::PreviewImage(QWidget *parent) : QWidget(parent)
{
    static const bool announced = (QAccessible::installFactory(pictureOf), true);
    Q_UNUSED(announced)
    setAccessibleName(L("Anteprima"));
}

void PreviewImage::setImage(const QImage &image, const QImage &ready)
{
    image_ = image;
    scaledImage = QPixmap::fromImage(ready);
    update();
}

QImage PreviewImage::fitted(const QImage &image, const QSize &room)
{
    return image.scaled(fittedSize(image.size(), room), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void PreviewImage::paintEvent(QPaintEvent *)
{
    if (image_.isNull() || size().isEmpty())
        return;
    if (scaledImage.size() != fittedSize(image_.size(), room()))
        scaledImage = QPixmap::fromImage(fitted(image_, room()));
    scaledImage.setDevicePixelRatio(devicePixelRatioF());
    const QSizeF shown = scaledImage.deviceIndependentSize();
    QPainter(this).drawPixmap(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2),
                              scaledImage);
}
