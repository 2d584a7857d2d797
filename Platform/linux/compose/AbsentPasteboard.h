#pragma once

#include "Platform/Pasteboard.h"

#include <QObject>

// Stands in where there is no system pasteboard: holds what this program writes, so that its own fields can
// cut and paste, and never sees anything else. Main thread.
class AbsentPasteboard : public Pasteboard {
public:
    [[nodiscard]] qint64 changeCount() const override { return published->changeCount; }
    [[nodiscard]] std::shared_ptr<const PasteboardSnapshot> snapshot() const override { return published; }
    qint64 write(std::vector<PasteboardItem> items) override;
    void setPolicy(const PasteboardPolicy & /*policy*/) override {}
    void whenSettled(std::function<void()> callback) override { callback(); }
    void readText(std::function<void(const QString &)> callback) override;

private:
    std::shared_ptr<const PasteboardSnapshot> published = std::make_shared<const PasteboardSnapshot>();
    QObject context; // drops what is queued when this dies
};
