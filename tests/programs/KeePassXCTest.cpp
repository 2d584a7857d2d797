#include "tests/programs/Program.h"

#include <QProcess>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

constexpr char master[] = "opens the vault";
constexpr char secret[] = "blackthorn-7349";

void runCli(const QStringList &arguments, const QByteArray &input)
{
    QProcess cli;
    cli.start(QStringLiteral("keepassxc-cli"), arguments);
    cli.write(input);
    cli.closeWriteChannel();
    require(cli.waitForFinished(20000) && cli.exitCode() == 0,
            QStringLiteral("keepassxc-cli: ") + QString::fromUtf8(cli.readAllStandardError()));
}

// A vault with one entry.
QString makeVault(const QString &path)
{
    const QString vault = path + QStringLiteral(".kdbx");
    const QByteArray opener = QByteArray(master) + '\n';
    runCli({QStringLiteral("db-create"), QStringLiteral("-p"), vault}, opener + opener);
    runCli({QStringLiteral("add"), QStringLiteral("-p"), vault, QStringLiteral("garden gate")},
           opener + secret + '\n');
    return vault;
}

// Without questions about updates, and open.
Child::Setting vaultOn(Stage &stage, const QString &vault)
{
    const auto settings = stage.scratchFile(QStringLiteral("ini"));
    writeFile(settings, "[General]\nConfigVersion=2\nUpdateCheckMessageShown=true\n"
                        "[GUI]\nCheckForUpdates=false\n");
    writeFile(vault + QStringLiteral(".key"), QByteArray(master) + '\n');
    return {
        QStringLiteral("sh"),
        {QStringLiteral("-c"),
         QStringLiteral("exec keepassxc --config \"$1\" --localconfig \"$1\" --pw-stdin \"$0\" <\"$0.key\""),
         vault, settings},
        {},
        {}};
}

const Program &keePassXC()
{
    static const Program program{.name = QStringLiteral("KeePassXC"),
                                 .package = QStringLiteral("keepassxc"),
                                 .windowClass = QStringLiteral("KeePassXC"),
                                 .command = vaultOn,
                                 .makeBlank = makeVault,
                                 .select = {QStringLiteral("Down")}};
    return program;
}

} // namespace

// Neither the password nor, as the vault clears the clipboard at its end, the emptiness after it.
TEST(KeePassXC, CopiesNothingIntoTheHistory)
{
    Stage stage(QStringLiteral(NORVANE_PROGRAM), QDir(QStringLiteral(NORVANE_OUTPUT)));
    std::optional<OpenProgram> vault; // outlives a failure, for the screenshot
    try {
        stage.start();
        stage.copy("copied before");
        vault.emplace(stage, keePassXC(), makeVault(freshPath(stage)));
        const auto copied = [&] {
            vault->pressCopy();
            return stage.desktop.waitFor([&] { return stage.clipboard.read() == QByteArray(secret); },
                                         Desktop::Milliseconds(1000));
        };
        require(stage.desktop.waitFor(copied, keePassXC().startBound),
                QStringLiteral("KeePassXC copied no password"));
        EXPECT_TRUE(stage.clipboard.targets().contains("x-kde-passwordManagerHint"));
        EXPECT_TRUE(stage.desktop.staysFalse([&] { return stage.rows().size() != 1; }, Stage::quiet));
        vault.reset();
        EXPECT_NE(stage.clipboard.read(), QByteArray(secret));
        stage.copy("copied afterwards");
        EXPECT_EQ(stage.rows().size(), 2U);
        EXPECT_FALSE(stage.history().holds(secret));
        stage.quit();
        std::printf("| KeePassXC %s | password | not recorded | – | – |\n",
                    qUtf8Printable(installedVersion(keePassXC())));
    } catch (const StepFailure &failure) {
        stage.saveScreenshot(QStringLiteral("failed-keepassxc"));
        ADD_FAILURE() << failure.why.toStdString();
    }
}
