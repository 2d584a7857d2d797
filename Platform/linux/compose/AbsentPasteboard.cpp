#include "Platform/linux/compose/AbsentPasteboard.h"

#include <QStringList>
#include <QTimer>

qint64 AbsentPasteboard::write(std::vector<PasteboardItem> items)
{
    auto snapshot = std::make_shared<PasteboardSnapshot>();
    snapshot->changeCount = published->changeCount + 1;
    snapshot->items = std::move(items);
    for (auto &item : snapshot->items)
        std::erase_if(item.representations, [](const auto &each) { return !each.data; });
    snapshot->frontApplication =
        FrontApplication{QString::fromUtf16(ownBundleIdentifier), QStringLiteral("Norvane")};
    published = std::move(snapshot);
    return published->changeCount;
}

void AbsentPasteboard::readText(std::function<void(const QString &)> callback)
{
    QStringList texts;
    for (const auto &item : published->items) {
        if (const auto bytes = item.data(PasteboardType::plainText))
            texts.append(QString::fromUtf8(*bytes));
    }
    const QString text = texts.join(u'\n');
    QTimer::singleShot(0, &context, [text, callback = std::move(callback)] { callback(text); });
}
