#pragma once

#include "Platform/linux/dbus/AtSpiCaret.h"
#include "Platform/linux/x11/X11Workspace.h"
#include "tests/desktop/Child.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Keyboard.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

void PrintTo(const QRectF &rect, std::ostream *stream);

// A desktop with one program in front and the service that asks it for its caret.
class CaretStage : public ::testing::Test {
protected:
    struct Answer {
        bool came = false;
        std::optional<QRectF> caret;
        qint64 milliseconds = 0; // from the request
        qint64 largestGap = 0;   // milliseconds that the main thread's event loop stood still
    };

    void SetUp() override;

    [[nodiscard]] bool connect(); // the service, to the accessibility bus
    [[nodiscard]] Answer ask();

    // Asks until the caret is one like this: programs tell what was typed a moment later.
    [[nodiscard]] std::optional<QRectF>
    awaitCaret(const std::function<bool(const std::optional<QRectF> &)> &test);

    // A window of the program that is started, in front and with the keyboard.
    [[nodiscard]] bool bringToFront(const WindowMatch &match);

    // Mousepad with this text, the caret at its beginning.
    [[nodiscard]] bool startMousepad(const QByteArray &text);

    // Dark from top to bottom at the caret: it is drawn there.
    [[nodiscard]] bool isDrawn(const QRectF &caret) const;

    Desktop desktop;
    Keyboard keyboard{desktop};
    QTemporaryDir scratch;
    std::unique_ptr<X11Workspace> workspace;
    std::unique_ptr<AtSpiCaret> service;
    std::unique_ptr<Child> program;
    xcb_window_t window = XCB_WINDOW_NONE;
};

// Our own program to look for the caret in.
class CaretEntry {
public:
    CaretEntry(const QString &kind, const QString &text, int position);
    ~CaretEntry();

    [[nodiscard]] bool hasKeyboard() { return nextLine() == u"ready"; }
    [[nodiscard]] QRectF realCaret();

private:
    QString nextLine();

    QProcess process;
};
