#pragma once

#include "Platform/linux/x11/X11Workspace.h"
#include "tests/desktop/Child.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Keyboard.h"
#include "tests/platform/caret/CaretAnswer.h"
#include "tests/support/Probe.h"

#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// A desktop with one program in front and the service that asks it for its caret.
class CaretStage : public ::testing::Test {
protected:
    void SetUp() override;

    [[nodiscard]] std::unique_ptr<AtSpiCaret> makeService(); // one that follows the focus
    [[nodiscard]] bool connect();                            // the service, to the accessibility bus
    [[nodiscard]] CaretAnswer ask() { return askForCaret(*service); }

    // Asks until the caret is one like this: programs tell what was typed a moment later.
    using Test = std::function<bool(const QRectF &)>;
    std::optional<QRectF> awaitCaret(const Test &test = [](const QRectF &) { return true; });
    QRectF drawnCaret(const Test &test); // and it is drawn there

    // A window of the program that is started, in front and with the keyboard.
    [[nodiscard]] bool bringToFront(const WindowMatch &match);

    // Mousepad with this text, the caret at its beginning.
    [[nodiscard]] bool startMousepad(const QByteArray &text, const QStringList &variables = {});

    Desktop desktop;
    Keyboard keyboard{desktop};
    QTemporaryDir scratch;
    std::unique_ptr<X11Workspace> workspace;
    std::unique_ptr<AtSpiCaret> service;
    std::unique_ptr<Child> program;
    xcb_window_t window = XCB_WINDOW_NONE;
};

// Our own program to look for the caret in: a field that has this text.
class CaretEntry {
public:
    CaretEntry(const QString &kind, const QString &text, int position, int scale);

    [[nodiscard]] bool hasKeyboard();
    [[nodiscard]] QRectF realCaret();

private:
    Probe entry;
};
