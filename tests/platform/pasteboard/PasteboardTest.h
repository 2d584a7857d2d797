#pragma once

#include "Platform/DesktopEntries.h"
#include "Platform/linux/x11/X11Pasteboard.h"
#include "tests/platform/pasteboard/Owner.h"
#include "tests/platform/pasteboard/Requestor.h"

#include <gtest/gtest.h>
#include <memory>

// Every window's class is its application.
class ClassNames final : public DesktopEntries {
public:
    [[nodiscard]] FrontApplication application(const WindowIdentity &window) const override
    {
        return {window.className, window.instanceName};
    }
    [[nodiscard]] std::optional<QString> iconName(const QString &) const override { return std::nullopt; }
};

// A pasteboard on the test's X server, with nothing on the clipboard at first.
class PasteboardTest : public ::testing::Test {
protected:
    PasteboardTest();

    // The default policy but for one field.
    template <typename Value>
    void setPolicy(Value PasteboardPolicy::*field, std::type_identity_t<Value> value)
    {
        PasteboardPolicy policy;
        policy.*field = std::move(value);
        pasteboard->setPolicy(policy);
    }

    // Waits for the reads under way, or the one that `change` starts.
    void settle();
    bool awaitChange(qint64 from, int milliseconds = 3000);
    [[nodiscard]] const std::vector<PasteboardItem> &items() const { return pasteboard->snapshot()->items; }
    [[nodiscard]] std::optional<QByteArray> bytes(QStringView type) const;
    [[nodiscard]] QStringList types() const; // of the first item
    [[nodiscard]] QString readText();

    std::unique_ptr<X11Pasteboard> pasteboard;
};

// Data that shows where it is wrong.
QByteArray pattern(qsizetype size);

inline PasteboardItem textItem(const QByteArray &text)
{
    return {{{QStringView(PasteboardType::plainText).toString(), text}}};
}
