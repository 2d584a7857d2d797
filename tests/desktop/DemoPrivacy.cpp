#include "tests/desktop/SelectionOwner.h"
#include "tests/desktop/Step.h"

namespace {

const QByteArray secret = "correct-horse-battery";

void requireSecrecy(Stage &stage, const SelectionOwner &owner, size_t recorded)
{
    stage.never([&] { return stage.rows().size() != recorded; }, "the password was recorded",
                2 * Stage::quiet);
    require(!stage.history().holds(secret), "the history file holds the password");
    for (const auto &target : owner.requested())
        require(target != "UTF8_STRING" && target != "STRING" && target != "TEXT" &&
                    !target.startsWith("text/"),
                "the password was read as " + QString(target));
}

STEP("a copy with the password hint is neither recorded nor read")
{
    stage.copy("a harmless copy before the password");
    const auto before = stage.rows().size();
    SelectionOwner owner(
        {{"text/plain", secret}, {"UTF8_STRING", secret}, {"x-kde-passwordManagerHint", "secret"}});
    require(owner.claim(), "the selection was not to be had");
    stage.await([&] { return owner.requested().contains("TARGETS"); }, "nobody even asked what is offered");
    requireSecrecy(stage, owner, before);
    require(!owner.lost(), "the selection was taken from the password manager");
}

STEP("a copy made while a password manager is in front is not recorded")
{
    stage.copy("a harmless copy before the password store");
    const auto before = stage.rows().size();
    SelectionOwner owner({{"UTF8_STRING", secret}, {"text/plain;charset=utf-8", secret}});
    owner.showWindow("keepassxc", "KeePassXC", "Passwords");
    stage.activate({"KeePassXC"});
    require(owner.claim(), "the selection was not to be had");
    requireSecrecy(stage, owner, before);
}

STEP("the same copy from another program is recorded with that program's name")
{
    const QByteArray text = "an ordinary program may copy this";
    SelectionOwner owner({{"UTF8_STRING", text}});
    owner.showWindow("notebook", "Notebook", "Notes");
    stage.activate({"Notebook"});
    require(owner.claim(), "the selection was not to be had");
    const auto row = stage.awaitNewest(text);
    require(!row.application.isEmpty(), "the clip does not say which program it is from");
}

} // namespace
