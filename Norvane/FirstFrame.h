#pragma once

#include <QObject>
#include <QPixmap>
#include <QStringList>
#include <QTimer>

class ClipTableView;
class QPaintEvent;
class QWidget;

// The panel's first frame, painted while the panel is hidden, so that an opening has one picture to copy.
// Owned by PopupController, used on the main thread.
//
// What is not the same at every opening is painted over the picture as ever: the search field with its caret,
// and rows whose age reads differently by now. A moment after the first frame the whole panel is painted once
// in the common way, so that nothing old stays.
class FirstFrame : public QObject {
public:
    // Neither of the views outlives the panel.
    FirstFrame(QWidget *panel, QWidget *searchField, ClipTableView *list);

    // Paints the panel as it is now, for the next time that it is shown.
    void paint();

    // To be called when something in the hidden panel has changed.
    void discard();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Phase {
        waiting, // for the panel to be shown
        painting,
        showing,  // the picture is on its way to the screen
        finished, // or there is no picture
    };

    [[nodiscard]] bool replacePaint(QObject *watched);
    [[nodiscard]] bool isWhole(const QPaintEvent &event) const;
    [[nodiscard]] bool fits() const;
    void finish();

    QWidget *panel;
    QWidget *searchField;
    ClipTableView *list;
    QPixmap picture;
    QStringList details; // of the rows in it
    Phase phase = Phase::finished;
    QTimer afresh;
    bool laidOut = false; // which the first showing does
};
