#include "Norvane/TextSelection.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QTimerEvent>
#include <algorithm>

namespace {

constexpr int scrollInterval = 60; // milliseconds a line

} // namespace

TextSelection::TextSelection(QPlainTextEdit *given) : QObject(given), view(given)
{
    view->viewport()->installEventFilter(this);
}

bool TextSelection::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick &&
        event->type() != QEvent::MouseMove && event->type() != QEvent::MouseButtonRelease)
        return false;
    const auto &mouse = *static_cast<QMouseEvent *>(event);
    if (event->type() == QEvent::MouseMove) {
        pointed = mouse.position().toPoint();
        if (dragging)
            extend();
        return true;
    }
    if (mouse.button() != Qt::LeftButton)
        return mouse.button() == Qt::MiddleButton; // which would paste
    if (event->type() == QEvent::MouseButtonRelease)
        end();
    else
        press(mouse);
    return true;
}

void TextSelection::press(const QMouseEvent &event)
{
    const QPoint where = event.position().toPoint();
    if (event.type() == QEvent::MouseButtonDblClick) {
        thirdClick.start(QApplication::doubleClickInterval(), this);
        doubleClicked = where;
        begin(where, Unit::word);
    } else if (thirdClick.isActive() &&
               (where - doubleClicked).manhattanLength() < QApplication::startDragDistance()) {
        thirdClick.stop();
        begin(where, Unit::line);
    } else if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        unit = Unit::character;
        anchor = {view->textCursor().anchor(), view->textCursor().anchor()};
        pointed = where;
        dragging = true;
        extend();
    } else {
        begin(where, Unit::character);
    }
}

void TextSelection::begin(QPoint where, Unit chosen)
{
    unit = chosen;
    anchor = spanAt(where);
    pointed = where;
    dragging = true;
    extend();
}

void TextSelection::extend()
{
    const Span reached = spanAt(pointed);
    const bool isBackwards = reached.start < anchor.start;
    QTextCursor cursor = view->textCursor();
    cursor.setPosition(isBackwards ? anchor.end : anchor.start);
    cursor.setPosition(isBackwards ? reached.start : reached.end, QTextCursor::KeepAnchor);
    view->setTextCursor(cursor);
    if (view->viewport()->rect().contains(pointed)) {
        scrolling.stop();
        return;
    }
    view->ensureCursorVisible();
    if (!scrolling.isActive())
        scrolling.start(scrollInterval, this);
}

void TextSelection::end()
{
    dragging = false;
    scrolling.stop();
}

void TextSelection::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == thirdClick.timerId())
        thirdClick.stop();
    else if (event->timerId() == scrolling.timerId())
        extend();
}

TextSelection::Span TextSelection::spanAt(QPoint where) const
{
    QTextCursor cursor = view->cursorForPosition(where);
    if (unit == Unit::word)
        cursor.select(QTextCursor::WordUnderCursor);
    if (unit == Unit::line) {
        cursor.movePosition(QTextCursor::StartOfBlock);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    }
    return {cursor.selectionStart(), cursor.selectionEnd()};
}
