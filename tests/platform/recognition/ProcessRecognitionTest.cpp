#include "Platform/linux/tesseract/ProcessRecognition.h"

#include "Platform/linux/tesseract/RecognitionProtocol.h"
#include "tests/capture/Copies.h"
#include "tests/support/Captures.h"
#include "tests/support/LogLines.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The table of a data file that names all its parts, and as many bytes as the parts need.
QByteArray languageData()
{
    constexpr qsizetype parts = 24;
    QByteArray bytes(4 + 8 * parts + parts, '\0');
    qToLittleEndian(qint32{parts}, bytes.data());
    for (qsizetype part = 0; part < parts; ++part)
        qToLittleEndian(qint64{4 + 8 * parts + part}, bytes.data() + 4 + 8 * part);
    return bytes;
}

class ProcessRecognitionTest : public ::testing::Test {
protected:
    ProcessRecognitionTest()
    {
        for (const auto *code : {"eng", "ita"})
            write(QString::fromLatin1(code), languageData());
    }

    void write(const QString &code, const QByteArray &bytes) const
    {
        QFile file(folder.filePath(code + u".traineddata"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    [[nodiscard]] ProcessRecognition::Settings settings(std::chrono::milliseconds cpu = 300ms,
                                                        std::chrono::milliseconds rest = 60s) const
    {
        return {QStringLiteral(FAULTY_RECOGNIZER), folder.path(), cpu, rest};
    }

    // What the reader says to an image of this colour: the codes of its languages; its error, or nothing.
    static QString read(ProcessRecognition &service, const QColor &colour, const QStringList &languages)
    {
        QString error;
        const auto image = service.recognize(encoded(filledImage(8, 8, colour), "PNG"), languages, &error);
        return image && image->fragments.size() == 1 ? image->fragments.front().text : u"- "_s + error;
    }

    QTemporaryDir folder;
    LogLines log;
};

TEST_F(ProcessRecognitionTest, WhateverAnImageDoesCostsThatImageOnly)
{
    struct Case {
        QColor colour;
        const char16_t *error;
    };
    ProcessRecognition service(settings());
    for (const auto &[colour, error] : {
             Case{Qt::yellow, u"it took too long"},  // keeps to its time
                 Case{Qt::red, u"it took too long"}, // does not
                 Case{Qt::blue, u"signal 6"},        // aborts
                 Case{Qt::green, u"signal 9"},       // is killed
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
                 Case{Qt::black, u"signal 6"}, // wants 2 GB
#endif
                 Case{Qt::magenta, u"signal 9"}, // speaks another protocol, and is ended
                 Case{Qt::cyan, u"signal 9"},    // sends what is no number
                 Case{Qt::gray, u"signal 9"},    // sends what is outside the image
         }) {
        const QString result = read(service, colour, {u"it"_s, u"en"_s});
        EXPECT_TRUE(result.startsWith(u"- "_s) && result.contains(QString::fromUtf16(error)))
            << result.toStdString();
        EXPECT_EQ(read(service, Qt::white, {u"it"_s, u"en"_s}), u"ita+eng") << colour.name().toStdString();
        EXPECT_EQ(service.supportedLanguages(), QStringList({u"en"_s, u"it"_s}));
    }
    EXPECT_EQ(log.text(), "");
}

TEST_F(ProcessRecognitionTest, AProcessThatEndsWhileNothingIsAskedIsReapedAndFollowedByAnother)
{
    ProcessRecognition service(settings());
    ASSERT_EQ(read(service, Qt::white, {u"it"_s}), u"ita");
    const auto children = [] {
        QFile file(u"/proc/self/task/%1/children"_s.arg(::gettid()));
        return file.open(QIODevice::ReadOnly) ? file.readAll().simplified() : "unknown"_ba;
    };
    const pid_t process = children().toInt();
    ASSERT_GT(process, 0) << children().constData();
    ::kill(process, SIGTERM);
    EXPECT_TRUE(QTest::qWaitFor([&] { return children().isEmpty(); }, 20000));
    EXPECT_TRUE(read(service, Qt::white, {u"it"_s}).contains(u"signal 15"_s));
    EXPECT_EQ(read(service, Qt::white, {u"it"_s}), u"ita");
}

TEST_F(ProcessRecognitionTest, CrashesInARowAreFollowedByARest)
{
    ProcessRecognition service(settings(300ms, 500ms));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(service.supportedLanguages().isEmpty());
        EXPECT_TRUE(read(service, Qt::blue, {u"it"_s}).contains(u"signal 6"));
    }
    EXPECT_TRUE(service.supportedLanguages().isEmpty());
    EXPECT_EQ(read(service, Qt::white, {u"it"_s}), u"- no language can be read");
    EXPECT_EQ(log.count(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !service.supportedLanguages().isEmpty(); }, 10000));
    EXPECT_EQ(read(service, Qt::white, {u"it"_s}), u"ita");
}

TEST_F(ProcessRecognitionTest, LanguageDataThatDoesNotLoadIsLeftOutUntilItsFileChanges)
{
    const QByteArray whole = languageData();
    write(u"deu"_s, whole);           // ends the process that loads it
    write(u"fra"_s, whole);           // is refused
    write(u"osd"_s, whole);           // is no language
    write(u"spa"_s, {});              // empty
    write(u"nld"_s, whole.left(200)); // cut off
    write(u"por"_s, QByteArray(5000, '\xA5'));
    ProcessRecognition service(settings());
    EXPECT_EQ(service.supportedLanguages(), QStringList({u"de"_s, u"en"_s, u"fr"_s, u"it"_s}));
    EXPECT_EQ(read(service, Qt::white, {u"de"_s, u"fr"_s, u"it"_s, u"en"_s}), u"ita+eng");
    EXPECT_EQ(service.supportedLanguages(), QStringList({u"en"_s, u"it"_s}));
    EXPECT_EQ(log.count(), 2);
    write(u"deu"_s, whole + "new"_ba);
    EXPECT_TRUE(service.supportedLanguages().contains(u"de"_s));
    EXPECT_EQ(read(service, Qt::white, {u"tlh"_s}), u"eng"); // unknown languages only: what there is
}

TEST_F(ProcessRecognitionTest, WithoutAnythingToReadWithNothingIsSupported)
{
    auto missing = settings();
    missing.program = folder.filePath(u"missing"_s);
    auto deaf = settings(); // starts, and ends without a word
    deaf.program = u"/bin/true"_s;
    auto empty = settings();
    empty.dataFolder = folder.filePath(u"missing"_s);
    for (const auto &lacking : {missing, deaf, empty}) {
        ProcessRecognition service(lacking);
        EXPECT_EQ(read(service, Qt::white, {u"it"_s}), u"- no language can be read");
        EXPECT_TRUE(service.supportedLanguages().isEmpty());
    }
}

TEST_F(ProcessRecognitionTest, ACancelledRecognitionEndsAtOnce)
{
    ProcessRecognition service(settings(60s));
    QElapsedTimer clock;
    clock.start();
    std::thread reading([&service] { EXPECT_EQ(read(service, Qt::yellow, {u"it"_s}), u"- "); });
    service.cancel();
    reading.join();
    EXPECT_LT(clock.elapsed(), 30000) << "not the minute that an image may take";
    EXPECT_EQ(read(service, Qt::white, {u"it"_s}), u"- ");
}

TEST(RecognitionProtocol, NoPartAndNoAlterationOfAnAnswerIsTakenForOne)
{
    using namespace RecognitionProtocol;
    const ReadAnswer answer{Outcome::read, {{640, 480}, {{u"perché"_s, 0.5F, QRectF(0, 0, 0.5, 0.25)}}}};
    const QByteArray whole = encoded(answer);
    ASSERT_TRUE(decoded<ReadAnswer>(whole));
    EXPECT_EQ(decoded<ReadAnswer>(whole)->image.fragments.front().text, u"perché");
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoded<ReadAnswer>(whole.left(length))) << length;
    EXPECT_FALSE(decoded<ReadAnswer>(whole + '\0'));
    for (qsizetype i = 0; i < whole.size(); ++i) {
        QByteArray altered = whole;
        altered[i] = static_cast<char>(~altered[i]);
        const auto taken = decoded<ReadAnswer>(altered);
        EXPECT_TRUE(!taken || taken->image.fragments.size() == 1) << i;
    }
}

TEST(LanguageData, CodesAreKnownByTheirPublicNames)
{
    struct Case {
        const char16_t *code;
        QStringList identifiers;
    };
    for (const auto &[code, identifiers] : {
             Case{u"ita", {u"it"_s}},
             Case{u"ces", {u"cs"_s}},
             Case{u"ell", {u"el"_s}},
             Case{u"jpn", {u"ja"_s}},
             Case{u"nor", {u"nb"_s, u"nn"_s, u"no"_s}},
             Case{u"chi_tra", {u"zh-Hant"_s, u"zh-TW"_s, u"zh-HK"_s, u"zh-MO"_s}},
             Case{u"srp_latn", {u"sr-Latn"_s}},
             Case{u"osd", {}},
             Case{u"jpn_vert", {}},
             Case{u"../x", {}},
         })
        EXPECT_EQ(identifiersOf(QString::fromUtf16(code)), identifiers);
}

} // namespace
