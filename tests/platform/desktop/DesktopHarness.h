#pragma once

#include "Platform/linux/x11/XcbConnection.h"

#include <QLineEdit>
#include <QPoint>
#include <QProcess>
#include <QTest>
#include <QWidget>

// A hand on keyboard and mouse: key codes are the server's, on a PC keyboard with the US layout.
class Hand {
public:
    static constexpr int shift = 50, control = 37, alt = 64, super = 133, capsLock = 66, numLock = 77, v = 55,
                         x = 53, y = 29, z = 52, h = 43, returnKey = 36, escape = 9, tab = 23;

    Hand();
    ~Hand(); // with nothing left half done
    // After `delay` milliseconds, counted by the server, which does nothing else for us meanwhile.
    void press(int key, unsigned delay = 0);
    void release(int key, unsigned delay = 0);
    // From now on: not that on which the program under test types.
    void useAnotherKeyboard();
    void tap(int key);
    void chord(std::initializer_list<int> keys);
    void click(QPoint place);
    void wheel(QPoint place);
    void setFocus(quint32 window);
    [[nodiscard]] quint32 focus();
    [[nodiscard]] bool isDown(int key);
    // No modifier is locked any more, and the first layout group is in force.
    void unlock();
    // The core modifiers in force.
    [[nodiscard]] int modifiers();
    // Makes the window of the widget, as a dock.
    void makeDock(QWidget &widget);
    // Everything asked for has happened.
    void settle();

    [[nodiscard]] XcbConnection &server() { return *connection; }

private:
    void pressButton(uint8_t button, QPoint place);

    std::unique_ptr<XcbConnection> connection;
    uint8_t keyboard = 0; // of the server's test extension
    uint8_t firstKeyEvent = XCB_KEY_PRESS;
};

// Another program with one text field that has the keyboard when the constructor is done.
class Neighbour {
public:
    Neighbour();
    ~Neighbour();

    void order(const QByteArray &line);
    [[nodiscard]] bool waitForText(const QString &wanted);
    [[nodiscard]] bool waitForFocus(bool wanted = true);
    [[nodiscard]] bool own(const QByteArray &text);
    // Keys that type something and presses of the mouse that arrived so far.
    struct Report {
        int keys = -1;
        int presses = -1;
    };
    [[nodiscard]] Report report();
    // Of its field, wherever a window manager has put the window.
    [[nodiscard]] QPoint middle() const;
    void kill();

    quint32 window = 0;
    QString text;
    bool focused = false;

private:
    void read();

    QProcess process;
    std::optional<Report> lastReport;
    bool owned = false;
};

// A panel with one field, as the application would build it.
class Panel : public QWidget {
public:
    Panel();
    QLineEdit *field;
};

[[nodiscard]] bool runsUnderWindowManager();

// Loads a layout as setxkbmap does, and puts the US one back at the end.
class Layout {
public:
    explicit Layout(const QStringList &arguments);
    ~Layout();
};

// Turns Caps Lock or Num Lock on and off again at the end.
class Lock {
public:
    Lock(Hand &hand, int key);
    ~Lock();

private:
    Hand &hand;
    int key;
};
