#include "tests/platform/pasteboard/PasteboardTest.h"

#include "Platform/memory/MemoryPlatform.h"

std::unique_ptr<X11Pasteboard> makePasteboard()
{
    return X11Pasteboard::create(std::make_shared<MemoryDesktopEntries>());
}

PasteboardTest::PasteboardTest()
{
    Owner().letGo();
    pasteboard = makePasteboard();
    if (!pasteboard) {
        ADD_FAILURE() << "no X server";
        std::abort();
    }
    settle();
}

void PasteboardTest::settle()
{
    bool settled = false;
    pasteboard->whenSettled([&] { settled = true; });
    EXPECT_TRUE(await([&] { return settled; }, 7000));
}

void PasteboardTest::copy(Owner &owner)
{
    const qint64 before = pasteboard->changeCount();
    owner.claim();
    EXPECT_TRUE(awaitChange(before));
    settle();
}

void PasteboardTest::write(std::vector<PasteboardItem> content)
{
    pasteboard->write(std::move(content));
    settle();
}

bool PasteboardTest::awaitChange(qint64 from, int milliseconds)
{
    return await([&] { return pasteboard->changeCount() != from; }, milliseconds);
}

std::optional<QByteArray> PasteboardTest::bytes(QStringView type) const
{
    return items().empty() ? std::nullopt : items().front().data(type);
}

QStringList PasteboardTest::types() const
{
    QStringList names;
    if (!items().empty()) {
        for (const auto &each : items().front().representations)
            names.push_back(each.type);
    }
    return names;
}

QString PasteboardTest::readText()
{
    std::optional<QString> text;
    pasteboard->readText([&](const QString &read) { text = read; });
    EXPECT_TRUE(await([&] { return text.has_value(); }));
    return text.value_or(QString());
}

QByteArray pattern(qsizetype size)
{
    QByteArray data(size, Qt::Uninitialized);
    quint32 state = 2463534242u;
    for (char &byte : data) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<char>('!' + (state >> 24) % 90);
    }
    return data;
}
