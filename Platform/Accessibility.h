#pragma once

#include <QRectF>
#include <functional>
#include <optional>

// What the program in front tells assistive programs about the text the user is writing in. Main thread.
class Accessibility {
public:
    virtual ~Accessibility() = default;

    // The programs of this desktop can be asked for their caret. False as well while carets are not wanted,
    // and while it is being found out, shortly after they have come to be.
    [[nodiscard]] virtual bool caretAvailable() const = 0;

    // Whether carets are going to be asked for; false at first. While they are, the service keeps track of
    // what has the focus, which some programs forget in the moment a hot key is pressed.
    virtual void setCaretWanted(bool wanted) = 0;

    // Where the caret of the focused text in the front window is, in Qt's logical screen coordinates, y down;
    // it is higher than 0, and may be 0 wide. Absent when nothing with a caret has the focus or the program
    // does not say.
    //
    // Calls back once, from the event loop, within 100 milliseconds, whatever the other program does. A newer
    // request or `cancel` drops this one without an answer.
    virtual void requestCaretRect(std::function<void(std::optional<QRectF>)> callback) = 0;
    virtual void cancel() = 0;
};
