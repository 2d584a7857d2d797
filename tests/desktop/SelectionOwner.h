#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <memory>
#include <utility>

// A program that owns the CLIPBOARD with content of our choosing and remembers all that it was asked for.
//
// Its requests are answered on a thread of its own with a connection of its own. Contents are served whole,
// so they have to fit into one request (some 100 KiB).
class SelectionOwner {
public:
    using Content = QList<std::pair<QByteArray, QByteArray>>; // target and bytes, in the offered order

    explicit SelectionOwner(Content content);
    ~SelectionOwner();
    SelectionOwner(const SelectionOwner &) = delete;
    SelectionOwner &operator=(const SelectionOwner &) = delete;

    // Maps a small managed window with this WM_CLASS, which stands for the program on the screen.
    void showWindow(const QByteArray &instance, const QByteArray &className, const QByteArray &title);

    // Takes the selection; true when the server agreed.
    [[nodiscard]] bool claim();

    // The targets that were asked for so far, in order, TARGETS among them.
    [[nodiscard]] QList<QByteArray> requested() const;

    [[nodiscard]] bool lost() const; // somebody else has the selection now

private:
    struct State;
    std::unique_ptr<State> state;
};
