#pragma once

#include <QLineEdit>
#include <functional>

class Pasteboard;
class ClipIcons;

// A one-line text field whose cut, copy and paste go through our own pasteboard: Qt's clipboard waits for the
// program that owns the selection, and a hung one would freeze us. Main thread.
class SearchField : public QLineEdit {
    Q_OBJECT

public:
    SearchField(Pasteboard &pasteboard, ClipIcons &icons, QWidget *parent);

    void copySelection();
    void cutSelection();
    void pasteText();

    [[nodiscard]] QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void deleteFrom(int position);
    void applyColours();

    Pasteboard &pasteboard;
    ClipIcons &icons;
};
