#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QRect>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <vector>

// One object of a program's user interface as a screen reader sees it, over AT-SPI on the accessibility bus.
//
// A value that only names the object: each question asks the program and waits at most a second, with an
// empty answer when it is gone or silent.
class Accessible {
public:
    // The numbers of the AT-SPI protocol.
    enum class State { editable = 7, focused = 12, selected = 23, showing = 25 };

    // The program with this process id; absent when it is not on the accessibility bus.
    [[nodiscard]] static std::optional<Accessible> application(qint64 pid);

    [[nodiscard]] QString name() const;
    [[nodiscard]] QString description() const;
    [[nodiscard]] QString role() const; // "text", "list item", "label", …
    [[nodiscard]] QString text() const; // what a text field or view holds
    [[nodiscard]] bool is(State state) const;
    [[nodiscard]] QRect extents() const; // screen coordinates, logical pixels
    [[nodiscard]] QRect caret() const;   // of a text's caret, the same coordinates; empty when there is none
    [[nodiscard]] std::vector<Accessible> children() const;

    // The first object below this one, this one included, for which the test holds; depth first.
    [[nodiscard]] std::optional<Accessible> find(const std::function<bool(const Accessible &)> &test) const;

    // Does what the object does when it is pressed; false when it can do nothing.
    [[nodiscard]] bool press() const;

    bool operator==(const Accessible &) const = default;

private:
    friend class SelectionEvents;
    Accessible(QString bus, QString object) : service(std::move(bus)), path(std::move(object)) {}
    [[nodiscard]] QVariantList ask(const QString &interface, const QString &method,
                                   const QVariantList &arguments = {}) const;
    [[nodiscard]] QVariant property(const QString &interface, const QString &name) const;

    QString service;
    QString path;
};

// What programs tell a screen reader as it happens: each object that has become the selected one, or the one
// with the focus. Needs the event loop; main thread.
class SelectionEvents : public QObject {
    Q_OBJECT

public:
    explicit SelectionEvents(const QString &state = "selected"); // or "focused"; from now on

    [[nodiscard]] const std::vector<Accessible> &selected() const { return objects; }

private Q_SLOTS:
    void stateChanged(const QDBusMessage &message);

private:
    QString state;
    std::vector<Accessible> objects;
};
