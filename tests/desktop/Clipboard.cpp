#include "tests/desktop/Clipboard.h"

#include <QProcess>

std::optional<QByteArray> Clipboard::read(const QByteArray &target) const
{
    QProcess xclip;
    xclip.start("xclip", {"-selection", "clipboard", "-o", "-t", target});
    if (!xclip.waitForFinished(2000)) {
        xclip.kill();
        xclip.waitForFinished(1000);
        return std::nullopt;
    }
    if (xclip.exitStatus() != QProcess::NormalExit || xclip.exitCode() != 0)
        return std::nullopt;
    return xclip.readAllStandardOutput();
}

QList<QByteArray> Clipboard::targets() const
{
    auto names = read("TARGETS").value_or(QByteArray()).split('\n');
    names.removeAll(QByteArray());
    return names;
}

bool Clipboard::set(const QByteArray &bytes, const QByteArray &target)
{
    // It outlives this: what changes the owner may be Norvane, which takes over from a program that ended
    // before.
    content = std::make_unique<QTemporaryFile>();
    if (!content->open() || content->write(bytes) != bytes.size() || !content->flush())
        return false;
    const auto before = desktop.selectionOwner("CLIPBOARD");
    // -quiet keeps it in the foreground, so that it can be waited for and ended by its id.
    auto next = std::make_unique<Child>(Child::Setting{
        "xclip", {"-quiet", "-selection", "clipboard", "-t", target, "-i", content->fileName()}});
    const bool taken = desktop.awaitNewOwner(before);
    copier = std::move(next); // only now: ending the old owner first would be a change of its own
    return taken;
}
