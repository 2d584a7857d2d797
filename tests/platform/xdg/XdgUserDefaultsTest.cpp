#include "Platform/linux/xdg/XdgUserDefaults.h"

#include "tests/support/LogLines.h"
#include "tests/support/Variable.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <limits>
#include <sys/stat.h>

namespace {

class XdgUserDefaultsTest : public ::testing::Test {
protected:
    void writeFile(const QByteArray &bytes) const
    {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    [[nodiscard]] QByteArray readFile(const QString &suffix = {}) const
    {
        QFile file(path + suffix);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
    }

    static mode_t modeOf(const QString &file)
    {
        struct stat status {};
        return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    QTemporaryDir folder;
    const QString path = folder.filePath("Norvane/settings.ini");
    LogLines log;
};

TEST_F(XdgUserDefaultsTest, EveryTypeComesBackExactlyInTheNextStart)
{
    const std::pair<QString, qint64> integers[] = {{"least", std::numeric_limits<qint64>::min()},
                                                   {"big", Q_INT64_C(9007199254740993)}};
    const std::pair<QString, double> reals[] = {
        {"third", 1.0 / 3}, {"whole", 1.0}, {"tiny", std::numeric_limits<double>::denorm_min()}};
    const std::pair<QString, QString> strings[] = {{"odd", "@Invalid() \"a, b\"; c=\\d\n\tè 😀 "},
                                                   {"empty", ""}};
    const std::pair<QString, QStringList> lists[] = {
        {"list", {"uno", "", "a, b", "[]", "\"", "è"}}, {"one", {"solo"}}, {"none", {}}};
    const std::pair<QString, QByteArray> blobs[] = {{"json", "{\"keyCode\":9,\"modifiers\":1572864}"},
                                                    {"bytes", QByteArray("\0\xff\n,;\"", 6)},
                                                    {"noBytes", ""},
                                                    {"almostJson", "{\"a\":"}};
    {
        XdgUserDefaults defaults(path);
        for (const auto &[key, value] : integers)
            defaults.setInteger(key, value);
        for (const auto &[key, value] : reals)
            defaults.setReal(key, value);
        for (const auto &[key, value] : strings)
            defaults.setString(key, value);
        for (const auto &[key, value] : lists)
            defaults.setStringList(key, value);
        for (const auto &[key, value] : blobs)
            defaults.setData(key, value);
        defaults.setBoolean("yes", true);
        defaults.setBoolean("no", false);
    }
    const XdgUserDefaults defaults(path);
    for (const auto &[key, value] : integers)
        EXPECT_EQ(defaults.integer(key), value);
    for (const auto &[key, value] : reals)
        EXPECT_EQ(defaults.real(key), value);
    for (const auto &[key, value] : strings)
        EXPECT_EQ(defaults.string(key), value);
    for (const auto &[key, value] : lists)
        EXPECT_EQ(defaults.stringList(key), value);
    for (const auto &[key, value] : blobs)
        EXPECT_EQ(defaults.data(key), value);
    EXPECT_EQ(defaults.boolean("yes"), true);
    EXPECT_EQ(defaults.boolean("no"), false);
    EXPECT_EQ(log.text(), "");
}

TEST_F(XdgUserDefaultsTest, AnAbsentKeyIsNotAnEmptyValue)
{
    XdgUserDefaults defaults(path);
    EXPECT_FALSE(defaults.contains("list"));
    EXPECT_EQ(defaults.stringList("list"), std::nullopt);
    EXPECT_EQ(defaults.string("list"), std::nullopt);
    EXPECT_EQ(defaults.data("list"), std::nullopt);
    EXPECT_EQ(defaults.integer("list"), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(path)) << "reading alone makes no file";
    defaults.setStringList("list", {});
    EXPECT_TRUE(defaults.contains("list"));
}

TEST_F(XdgUserDefaultsTest, AValueOfAnotherTypeReadsAsAbsent)
{
    writeFile("[General]\nmaxItems=many\nhalf=0.5\nyes=TRUE\none=1\nbroken=[\"a\"\nmixed=\"[\\\"a\\\", 1]\"\n"
              "wild=nan\nlist=uno, due\nblob=!!!\nhuge=9223372036854775808\ninvalid=@Invalid()\n");
    const XdgUserDefaults defaults(path);
    EXPECT_EQ(defaults.integer("maxItems"), std::nullopt);
    EXPECT_EQ(defaults.integer("half"), std::nullopt);
    EXPECT_EQ(defaults.real("half"), 0.5);
    EXPECT_EQ(defaults.boolean("yes"), true);
    EXPECT_EQ(defaults.boolean("one"), std::nullopt);
    EXPECT_EQ(defaults.stringList("broken"), std::nullopt);
    EXPECT_EQ(defaults.stringList("mixed"), std::nullopt);
    EXPECT_EQ(defaults.real("wild"), std::nullopt);
    EXPECT_EQ(defaults.stringList("list"), (QStringList{"uno", "due"})); // typed in by hand
    EXPECT_EQ(defaults.data("blob"), std::nullopt);
    EXPECT_EQ(defaults.integer("huge"), std::nullopt);
    EXPECT_TRUE(defaults.contains("invalid"));
    EXPECT_EQ(defaults.string("invalid"), std::nullopt);
}

TEST_F(XdgUserDefaultsTest, FileAndFolderAreForTheUsersEyesOnlyFromTheirFirstByte)
{
    const mode_t before = ::umask(0);
    const Variable home("XDG_CONFIG_HOME", folder.path().toUtf8());
    XdgUserDefaults defaults(XdgUserDefaults::defaultPath());
    defaults.setInteger("a", 1);
    EXPECT_EQ(modeOf(path), 0600U);
    EXPECT_EQ(modeOf(QFileInfo(path).absolutePath()), 0700U);
    defaults.setInteger("a", 2);
    EXPECT_EQ(modeOf(path), 0600U);
    ::umask(before);
    EXPECT_TRUE(readFile().startsWith("[General]\n")) << readFile().toStdString();
}

TEST_F(XdgUserDefaultsTest, ADamagedFileIsKeptBesideBeforeTheFirstWrite)
{
    const QByteArray damaged = "this is = no\n[INI file\n\x01\x02";
    writeFile(damaged);
    XdgUserDefaults defaults(path);
    EXPECT_EQ(defaults.integer("maxItems"), std::nullopt);
    EXPECT_EQ(log.count(), 1);
    EXPECT_EQ(readFile(), damaged);
    defaults.setInteger("maxItems", 7);
    defaults.setInteger("maxClipMB", 8);
    EXPECT_EQ(readFile(".bad"), damaged);
    EXPECT_EQ(modeOf(path + ".bad"), 0600U);
    const XdgUserDefaults next(path);
    EXPECT_EQ(next.integer("maxItems"), 7);
    EXPECT_EQ(next.integer("maxClipMB"), 8);
    EXPECT_EQ(log.count(), 1);
}

TEST_F(XdgUserDefaultsTest, WhatCannotBeWrittenStaysInForceAndIsSavedWhenThatIsPossibleAgain)
{
    // A file stands where the folder should be, which stops even root.
    QFile obstacle(folder.filePath("Norvane"));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    obstacle.close();
    XdgUserDefaults defaults(path);
    defaults.setInteger("first", 1);
    defaults.setInteger("second", 2);
    EXPECT_EQ(defaults.integer("first"), 1);
    EXPECT_EQ(log.text(), "Norvane: settings cannot be written to their file");
    ASSERT_TRUE(obstacle.remove());
    defaults.setInteger("third", 3);
    EXPECT_EQ(log.count(), 1);
    const QByteArray text = readFile();
    for (const char *line : {"first=1", "second=2", "third=3"})
        EXPECT_TRUE(text.contains(line)) << line << " in " << text.toStdString();
}

} // namespace
