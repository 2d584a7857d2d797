#include "tests/desktop/Step.h"

#include <csignal>

namespace {

STEP("a second start shows the panel and exits with status 0")
{
    require(Child(stage.commandLine()).awaitExit() == 0, "the second start did not end with status 0");
    stage.awaitPanel();
    require(Child(stage.commandLine()).awaitExit() == 0, "the third start did not end with status 0");
    stage.never([&] { return !stage.panel(); }, "another start closed the panel instead of keeping it");
}

STEP("what was copied outlives the program that copied it")
{
    stage.copy("outlives xclip");
    stage.clipboard.owner()->signal(SIGKILL);
    require(stage.clipboard.owner()->awaitEnd(), "xclip survived SIGKILL");
    stage.awaitClipboard("outlives xclip");

    const auto mousepad = stage.openMousepad("outlives mousepad");
    const auto copyAll = [&] {
        stage.press("Ctrl+A");
        stage.press("Ctrl+C");
    };
    stage.repeat(
        copyAll, [&] { return stage.isNewest("outlives mousepad"); }, "mousepad copied nothing");
    const auto before = stage.rows().size();
    stage.press("Ctrl+Q");
    require(mousepad.program->awaitEnd(), "mousepad did not quit");
    stage.awaitClipboard("outlives mousepad");
    stage.never([&] { return stage.rows().size() != before; }, "taking it over was recorded as a copy");
}

STEP("kill -9 and a restart keep the history")
{
    stage.copy("survives a kill");
    const auto before = stage.rows().size();
    stage.norvane().signal(SIGKILL);
    require(stage.norvane().awaitEnd(), "it survived SIGKILL");
    stage.start();
    require(stage.rows().size() == before,
            QString("%1 clips were kept, not %2").arg(stage.rows().size()).arg(before));
    const auto entry = stage.openQtEntry();
    stage.openPanel();
    stage.awaitListed(qsizetype(before), "after the restart");
    stage.press("Enter");
    stage.awaitContent(entry, "survives a kill");
}

STEP("SIGTERM quits with status 0")
{
    stage.openPanel(); // with the panel open, which is the harder case
    stage.quit();
    require(!stage.panel(), "its panel is still there");
}

} // namespace
