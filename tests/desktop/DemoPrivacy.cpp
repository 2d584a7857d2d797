#include "tests/desktop/SelectionOwner.h"
#include "tests/desktop/Stage.h"

namespace {

const auto secret = QByteArrayLiteral("correct-horse-battery");

bool askedForContent(const SelectionOwner &owner)
{
    for (const auto &target : owner.requested())
        if (target == "UTF8_STRING" || target == "STRING" || target == "TEXT" || target.startsWith("text/"))
            return true;
    return false;
}

void passwordHint(Stage &stage)
{
    stage.copy("a harmless copy before the password");
    const auto before = stage.rows().size();
    SelectionOwner owner({{"text/plain", secret},
                          {"UTF8_STRING", secret},
                          {"x-kde-passwordManagerHint", QByteArrayLiteral("secret")}});
    require(owner.claim(), QStringLiteral("the selection was not to be had"));
    require(stage.desktop.waitFor([&] { return owner.requested().contains("TARGETS"); }),
            QStringLiteral("nobody even asked what is offered"));
    require(stage.desktop.staysFalse([&] { return stage.rows().size() != before; }, Stage::quiet),
            QStringLiteral("the password was recorded"));
    require(!stage.history().holds(secret), QStringLiteral("the history file holds the password"));
    require(!askedForContent(owner), QStringLiteral("the password was read"));
    require(!owner.lost(), QStringLiteral("the selection was taken from the password manager"));
}

void passwordManagerInFront(Stage &stage)
{
    stage.copy("a harmless copy before the password store");
    const auto before = stage.rows().size();
    SelectionOwner owner({{"UTF8_STRING", secret}, {"text/plain;charset=utf-8", secret}});
    owner.showWindow("keepassxc", "KeePassXC", "Passwords");
    const auto window = stage.desktop.awaitWindow({QStringLiteral("KeePassXC"), {}, {}, 0});
    require(window && stage.desktop.activate(*window), QStringLiteral("the window did not become active"));
    require(owner.claim(), QStringLiteral("the selection was not to be had"));
    require(stage.desktop.staysFalse([&] { return stage.rows().size() != before; }, 2 * Stage::quiet),
            QStringLiteral("the copy was recorded"));
    require(!stage.history().holds(secret), QStringLiteral("the history file holds the password"));
    require(!askedForContent(owner), QStringLiteral("the content was read though nothing may keep it"));
}

void sameCopyFromAnotherProgram(Stage &stage)
{
    const auto text = QByteArrayLiteral("an ordinary program may copy this");
    SelectionOwner owner({{"UTF8_STRING", text}});
    owner.showWindow("notebook", "Notebook", "Notes");
    const auto window = stage.desktop.awaitWindow({QStringLiteral("Notebook"), {}, {}, 0});
    require(window && stage.desktop.activate(*window), QStringLiteral("the window did not become active"));
    require(owner.claim(), QStringLiteral("the selection was not to be had"));
    const auto row = stage.awaitNewest(QString::fromLatin1(text));
    require(!row.application.isEmpty(), QStringLiteral("the clip does not say which program it is from"));
}

} // namespace

Steps privacySteps()
{
    return {
        {"a copy with the password hint is neither recorded nor read", passwordHint},
        {"a copy made while a password manager is in front is not recorded", passwordManagerInFront},
        {"the same copy from another program is recorded with that program's name",
         sameCopyFromAnotherProgram},
    };
}
