#include "Platform/linux/xdg/XdgUserDefaults.h"

#include "Platform/Log.h"

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
    void SetUp() override
    {
        path = folder.filePath("Norvane/settings.ini");
        setLogSink([this](const QString &line) { log.append(line); });
    }
    void TearDown() override { setLogSink({}); }

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
    QString path;
    QStringList log;
};

TEST_F(XdgUserDefaultsTest, EveryTypeComesBackExactlyInTheNextStart)
{
    const QByteArray json = "{\"keyCode\":9,\"modifiers\":1572864}", bytes("\0\xff\n,;\"", 6);
    const QString odd = QStringLiteral("@Invalid() \"a, b\"; c=\\d\n\tè 😀 ");
    const QStringList list{"uno", "", "a, b", "[]", "\"", "è"};
    {
        XdgUserDefaults defaults(path);
        defaults.setInteger("least", std::numeric_limits<qint64>::min());
        defaults.setInteger("big", Q_INT64_C(9007199254740993));
        defaults.setReal("third", 1.0 / 3);
        defaults.setReal("whole", 1.0);
        defaults.setReal("tiny", std::numeric_limits<double>::denorm_min());
        defaults.setBoolean("yes", true);
        defaults.setBoolean("no", false);
        defaults.setString("odd", odd);
        defaults.setString("empty", "");
        defaults.setStringList("list", list);
        defaults.setStringList("one", {"solo"});
        defaults.setStringList("none", {});
        defaults.setData("json", json);
        defaults.setData("bytes", bytes);
        defaults.setData("noBytes", "");
        defaults.setData("almostJson", "{\"a\":");
    }
    const XdgUserDefaults defaults(path);
    EXPECT_EQ(defaults.integer("least"), std::numeric_limits<qint64>::min());
    EXPECT_EQ(defaults.integer("big"), Q_INT64_C(9007199254740993));
    EXPECT_EQ(defaults.real("third"), 1.0 / 3);
    EXPECT_EQ(defaults.real("whole"), 1.0);
    EXPECT_EQ(defaults.real("tiny"), std::numeric_limits<double>::denorm_min());
    EXPECT_EQ(defaults.boolean("yes"), true);
    EXPECT_EQ(defaults.boolean("no"), false);
    EXPECT_EQ(defaults.string("odd"), odd);
    EXPECT_EQ(defaults.string("empty"), "");
    EXPECT_EQ(defaults.stringList("list"), list);
    EXPECT_EQ(defaults.stringList("one"), QStringList{"solo"});
    EXPECT_EQ(defaults.stringList("none"), QStringList());
    EXPECT_EQ(defaults.data("json"), json);
    EXPECT_EQ(defaults.data("bytes"), bytes);
    EXPECT_EQ(defaults.data("noBytes"), QByteArray());
    EXPECT_EQ(defaults.data("almostJson"), QByteArray("{\"a\":"));
    EXPECT_TRUE(log.isEmpty()) << log.join(u'\n').toStdString();
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
    XdgUserDefaults defaults(path);
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
    EXPECT_EQ(log.size(), 1);
    EXPECT_EQ(readFile(), damaged);
    defaults.setInteger("maxItems", 7);
    defaults.setInteger("maxClipMB", 8);
    EXPECT_EQ(readFile(".bad"), damaged);
    EXPECT_EQ(modeOf(path + ".bad"), 0600U);
    const XdgUserDefaults next(path);
    EXPECT_EQ(next.integer("maxItems"), 7);
    EXPECT_EQ(next.integer("maxClipMB"), 8);
    EXPECT_EQ(log.size(), 1);
}

TEST_F(XdgUserDefaultsTest, WhatCannotBeWrittenStaysInForceAndIsSavedWhenThatIsPossibleAgain)
{
    // A file stands where the folder should be, which stops even root.
    QFile obstacle(folder.filePath("Norvane"));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly));
    obstacle.close();
    XdgUserDefaults defaults(path);
    log.clear();
    defaults.setInteger("first", 1);
    defaults.setInteger("second", 2);
    EXPECT_EQ(defaults.integer("first"), 1);
    EXPECT_EQ(log, QStringList{"Norvane: settings cannot be written to their file"});
    ASSERT_TRUE(obstacle.remove());
    defaults.setInteger("third", 3);
    EXPECT_EQ(log.size(), 1);
    const QByteArray text = readFile();
    for (const char *line : {"first=1", "second=2", "third=3"})
        EXPECT_TRUE(text.contains(line)) << line << " in " << text.toStdString();
}

TEST_F(XdgUserDefaultsTest, TheFileStandsInTheUsersConfigurationFolder)
{
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    EXPECT_EQ(XdgUserDefaults::defaultPath(), path);
    qputenv("XDG_CONFIG_HOME", before);
}

} // namespace
