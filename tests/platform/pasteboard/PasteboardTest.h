#pragma once

#include "Platform/linux/x11/X11Pasteboard.h"
#include "tests/capture/Copies.h"
#include "tests/platform/pasteboard/Owner.h"
#include "tests/platform/pasteboard/Requestor.h"
#include "tests/support/Captures.h"

#include <gtest/gtest.h>

// A new one on the test's X server; every window's class is its application.
[[nodiscard]] std::unique_ptr<X11Pasteboard> makePasteboard();

// The default policy but for one field.
template <typename Value>
PasteboardPolicy policyWith(Value PasteboardPolicy::*field, std::type_identity_t<Value> value)
{
    PasteboardPolicy policy;
    policy.*field = std::move(value);
    return policy;
}

// A pasteboard with nothing on the clipboard at first, and a program that pastes.
class PasteboardTest : public ::testing::Test {
protected:
    PasteboardTest();

    void settle(); // waits for the reads under way, or the one that a claim starts
    // Claims, and waits for all that comes of it.
    void copy(Owner &owner);
    void write(std::vector<PasteboardItem> content); // until it is claimed
    bool awaitChange(qint64 from, int milliseconds = 3000);
    [[nodiscard]] const std::vector<PasteboardItem> &items() const { return pasteboard->snapshot()->items; }
    [[nodiscard]] std::optional<QByteArray> bytes(QStringView type) const;
    [[nodiscard]] std::optional<QByteArray> text() const { return bytes(PasteboardType::plainText); }
    [[nodiscard]] QStringList types() const; // of the first item
    [[nodiscard]] QString readText();

    std::unique_ptr<X11Pasteboard> pasteboard;
    Requestor requestor;
};

// Data that shows where it is wrong.
QByteArray pattern(qsizetype size);
