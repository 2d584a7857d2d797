#pragma once

#include "Platform/linux/x11/ServedContent.h"

#include <map>

// What programs' answers to targets of their own kinds said of themselves: a list of atoms, numbers of 16
// bits. A history keeps names and bytes; this brings the rest back for as long as the program runs. Values.
class TargetTypes {
public:
    // Remembers those of an owner's answers that are unlike what is served by default.
    void learn(const std::vector<ServedTarget> &originals);

    // Restores them where the bytes are such units.
    void apply(std::vector<ServedTarget> &targets) const;

private:
    struct Type {
        QByteArray name;
        quint8 format;
    };
    std::map<QByteArray, Type> types;
};
