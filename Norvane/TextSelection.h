#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QPoint>

class QMouseEvent;
class QPlainTextEdit;
class QTextCursor;

// Selects in a text view with the left button: characters, with a double click words, with a triple click
// lines; Shift extends. In place of the toolkit's own handling, which makes every selection the primary one
// of the X server through its clipboard class. Owned by the view. Main thread.
class TextSelection : public QObject {
public:
    explicit TextSelection(QPlainTextEdit *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    enum class Unit { character, word, line };
    struct Span {
        int start = 0, end = 0;
    };

    void press(const QMouseEvent &event);
    void begin(QPoint where, Unit chosen);
    void extend();
    void end();
    [[nodiscard]] Span spanAt(QPoint where) const;

    QPlainTextEdit *view;
    Unit unit = Unit::character;
    Span anchor;
    QPoint pointed; // of the viewport
    bool dragging = false;
    QBasicTimer scrolling; // while the pointer is held outside
    QBasicTimer thirdClick;
    QPoint doubleClicked;
};
