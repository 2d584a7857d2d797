#pragma once

#include "tests/desktop/Child.h"

#include <QByteArray>
#include <QTemporaryFile>
#include <memory>

// The CLIPBOARD selection, read and set by xclip: another program's view of it.
class Clipboard {
public:
    explicit Clipboard(const Desktop &used) : desktop(used) {}

    // What the owner gives for a target; absent when it refuses, hangs (2 s) or there is none.
    [[nodiscard]] std::optional<QByteArray> read(const QByteArray &target = "UTF8_STRING") const;

    [[nodiscard]] QList<QByteArray> targets() const;

    // Copies bytes as a program of its own does, and returns once the selection has changed hands. The
    // program lives on until the next owner comes, or this is destroyed.
    bool set(const QByteArray &bytes, const QByteArray &target = "UTF8_STRING");

    // The program that set() started last, to be stopped or killed.
    [[nodiscard]] Child *owner() const { return copier.get(); }

private:
    const Desktop &desktop;
    std::unique_ptr<QTemporaryFile> content; // which the copier reads, sooner or later
    std::unique_ptr<Child> copier;
};
