#include "tests/platform/pasteboard/PasteboardTest.h"

PasteboardTest::PasteboardTest() : pasteboard(nullptr)
{
    Owner clearer;
    clearer.letGo();
    pasteboard = X11Pasteboard::create(std::make_shared<ClassNames>());
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
    EXPECT_TRUE(await([&] { return text.has_value(); }, 1500));
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
