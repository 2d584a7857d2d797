#pragma once

#include "Platform/linux/x11/X11Workspace.h"
#include "tests/desktop/Child.h"
#include "tests/desktop/Desktop.h"
#include "tests/desktop/Keyboard.h"
#include "tests/platform/caret/CaretAnswer.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// A desktop with one program in front and the service that asks it for its caret.
class CaretStage : public ::testing::Test {
protected:
    using Answer = CaretAnswer;

    void SetUp() override;

    [[nodiscard]] std::unique_ptr<AtSpiCaret> makeService(); // one that follows the focus
    [[nodiscard]] bool connect();                            // the service, to the accessibility bus
    [[nodiscard]] Answer ask() { return askForCaret(*service); }

    // Asks until the caret is one like this: programs tell what was typed a moment later.
    [[nodiscard]] std::optional<QRectF>
    awaitCaret(const std::function<bool(const std::optional<QRectF> &)> &test);

    // A window of the program that is started, in front and with the keyboard.
    [[nodiscard]] bool bringToFront(const WindowMatch &match);

    // Mousepad with this text, the caret at its beginning.
    [[nodiscard]] bool startMousepad(const QByteArray &text, const QStringList &variables = {});

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
    CaretEntry(const QString &kind, const QString &text, int position, int scale = 1);
    ~CaretEntry();

    [[nodiscard]] bool hasKeyboard() { return nextLine() == u"ready"; }
    [[nodiscard]] QRectF realCaret();

private:
    QString nextLine();

    QProcess process;
};
