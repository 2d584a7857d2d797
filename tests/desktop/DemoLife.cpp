#include "tests/desktop/Stage.h"

#include <csignal>

namespace {

void secondStart(Stage &stage)
{
    Child second(stage.commandLine());
    const auto status = second.awaitExit();
    require(status.has_value(), QStringLiteral("the second start did not end by itself"));
    require(*status == 0, QStringLiteral("the second start ended with status %1").arg(*status));
    stage.awaitPanel();
    Child third(stage.commandLine());
    require(third.awaitExit() == 0, QStringLiteral("the third start failed"));
    require(stage.desktop.staysFalse([&] { return !stage.panel(); }, Stage::quiet),
            QStringLiteral("another start closed the panel instead of keeping it"));
}

void killedAndRestarted(Stage &stage)
{
    stage.copy("survives a kill");
    const auto before = stage.rows().size();
    stage.norvane().signal(SIGKILL);
    require(stage.norvane().awaitEnd(), QStringLiteral("it survived SIGKILL"));
    stage.start();
    require(stage.rows().size() == before,
            QStringLiteral("%1 clips were kept, not %2").arg(stage.rows().size()).arg(before));
    const auto entry = stage.openQtEntry();
    stage.openPanel();
    stage.awaitListed(qsizetype(before), QStringLiteral("after the restart"));
    stage.keyboard.press(QStringLiteral("Enter"));
    stage.awaitContent(entry, "survives a kill");
}

void contentOutlivesItsProgram(Stage &stage)
{
    const auto isLeft = [&](const QByteArray &content) {
        return stage.desktop.waitFor([&] { return stage.clipboard.read() == content; });
    };
    stage.copy("outlives xclip");
    stage.clipboard.owner()->signal(SIGKILL);
    require(stage.clipboard.owner()->awaitEnd(), QStringLiteral("xclip survived SIGKILL"));
    require(isLeft("outlives xclip"), QStringLiteral("what xclip had is lost"));

    const auto mousepad = stage.openMousepad("outlives mousepad");
    stage.keyboard.press(QStringLiteral("Ctrl+A"));
    stage.keyboard.press(QStringLiteral("Ctrl+C"));
    stage.awaitNewest(QStringLiteral("outlives mousepad"));
    const auto before = stage.rows().size();
    stage.keyboard.press(QStringLiteral("Ctrl+Q"));
    require(mousepad.program->awaitEnd(), QStringLiteral("mousepad did not quit"));
    require(isLeft("outlives mousepad"), QStringLiteral("what mousepad had is lost"));
    require(stage.desktop.staysFalse([&] { return stage.rows().size() != before; }, Stage::quiet),
            QStringLiteral("taking it over was recorded as a copy"));
}

void quits(Stage &stage)
{
    stage.openPanel(); // with the panel open, which is the harder case
    stage.quit();
    require(!stage.panel(), QStringLiteral("its panel is still there"));
}

} // namespace

Steps lifeSteps()
{
    return {
        {"a second start shows the panel and exits with status 0", secondStart},
        {"what was copied outlives the program that copied it", contentOutlivesItsProgram},
        {"kill -9 and a restart keep the history", killedAndRestarted},
        {"SIGTERM quits with status 0", quits},
    };
}
