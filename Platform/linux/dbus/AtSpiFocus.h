#pragma once

#include "Platform/linux/dbus/AtSpiInquiry.h"

#include <QHash>
#include <QObject>

// A text that has the keyboard's focus, and the root of the program it belongs to.
struct FocusedText {
    AtSpiObject text;
    AtSpiObject root;
};

// Finds the text that has the focus in a program. On a thread that may wait.
//
// A GTK program forgets its focus while a hot key is held down: the grab of the key takes the focus from its
// window. So the last focus that a program told of, or that was found in it, is remembered, and stands when
// the program names none. Programs are asked to tell of each move of the focus, the cheapest thing to listen
// to: nothing comes while the user writes.
class AtSpiFocus : public QObject {
    Q_OBJECT

public:
    explicit AtSpiFocus(const QDBusConnection &bus);
    ~AtSpiFocus() override;

    // In the program with this process id. Where none has it, as with those whose id means something else
    // outside their sandbox, in the program that calls a window of its own active.
    [[nodiscard]] std::optional<FocusedText> find(const AtSpiInquiry &inquiry, qint64 pid);

private Q_SLOTS: // called by name
    void noteFocus(const QDBusMessage &signal);
    void noteOwner(const QString &name, const QString &before, const QString &now);

private:
    [[nodiscard]] std::vector<AtSpiObject> applications(const AtSpiInquiry &inquiry, qint64 pid);
    void learnApplications(const AtSpiInquiry &inquiry);
    [[nodiscard]] std::vector<AtSpiObject> activeApplications(const AtSpiInquiry &inquiry) const;
    [[nodiscard]] std::optional<AtSpiObject> textIn(const AtSpiInquiry &inquiry, const AtSpiObject &root);

    struct Application {
        AtSpiObject root;
        qint64 pid = 0;
    };

    QDBusConnection connection;
    QHash<QString, Application> known;      // by bus name, until the bus says that the name is gone
    QHash<QString, AtSpiObject> remembered; // the focus, by bus name
};
