#pragma once

#include <QScrollBar>

// A slim vertical scroll bar without buttons, in the colours of the desktop: the toolkit's own is as loud as
// what it scrolls. Main thread.
class SlimScrollBar : public QScrollBar {
    Q_OBJECT

public:
    explicit SlimScrollBar(QWidget *view); // the one that it will scroll

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void applyColours();
};
