#pragma once

#include <QTimer>
#include <QWidget>

// A frame in the highlight colour that lies over a window for 120 ms: a bell for the eye. A child of the
// window, which clicks pass through.
class WindowFlash : public QWidget {
public:
    static void flash(QWidget *window);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    explicit WindowFlash(QWidget *window);

    QTimer end;
};
