#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Step.h"

#include <QFile>
#include <QUrl>

namespace {

// Waits until Norvane has taken the selection from the program that copied.
void copyAgain(Stage &stage, const QString &words)
{
    const auto before = stage.desktop.selectionOwner("CLIPBOARD");
    stage.choose(words, "Alt+Enter");
    require(stage.desktop.awaitNewOwner(before), "nobody took the selection");
}

STEP("a PNG comes back byte for byte")
{
    const auto bytes = samplePicture();
    stage.copy(bytes, "image/png");
    const auto row = stage.rows().front();
    require(row.kind == 2, QString("recorded as kind %1, not as an image").arg(row.kind));
    copyAgain(stage, {});
    require(stage.clipboard.owner()->awaitEnd(), "xclip still owns the selection");
    require(stage.clipboard.read("image/png") == bytes, "the picture came back changed");
}

struct Folder {
    QString path;

    [[nodiscard]] QStringList names() const { return QDir(path).entryList(QDir::Files, QDir::Name); }
    [[nodiscard]] QStringList files() const
    {
        QStringList paths;
        for (const auto &name : names())
            paths << path + u'/' + name;
        paths.sort();
        return paths;
    }
};

Folder makeFolder(Stage &stage, const QString &name)
{
    const Folder folder{stage.scratchFile(name)};
    QDir().mkpath(folder.path);
    return folder;
}

Folder makeFiles(Stage &stage)
{
    const auto folder = makeFolder(stage, "orchard");
    for (const char *name : {"apples.txt", "name with spaces.txt", "perè & c.txt"}) {
        QFile file(folder.path + u'/' + name);
        require(file.open(QIODevice::WriteOnly) && file.write(name) > 0, "cannot write " + file.fileName());
    }
    return folder;
}

std::unique_ptr<Child> openFolder(Stage &stage, const Folder &folder)
{
    auto program = stage.run("pcmanfm", {"--new-win", folder.path});
    stage.activate({"Pcmanfm", QFileInfo(folder.path).fileName()});
    return program;
}

// Selects all and copies (or cuts), as often as it takes for the view to have its files. Their paths as
// recorded.
QStringList copyAllFiles(Stage &stage, const Folder &folder, const QString &chord = "Ctrl+C")
{
    QStringList recorded;
    const auto isRecorded = [&] {
        const auto rows = stage.rows();
        recorded = rows.empty() || rows.front().kind != 3 ? QStringList() : rows.front().text.split(u'\n');
        QStringList sorted = recorded;
        sorted.sort();
        return sorted == folder.files();
    };
    const auto copy = [&] {
        stage.press("Ctrl+A");
        stage.press(chord);
    };
    stage.repeat(copy, isRecorded, "the files were not recorded");
    return recorded;
}

// A folder that pcmanfm has only just opened takes no paste and says nothing: a person would do it again.
void pasteInto(Stage &stage, const Folder &folder, const QStringList &names,
               const std::function<void()> &paste)
{
    const auto isPasted = [&] {
        paste();
        return stage.desktop.waitFor([&] { return folder.names() == names; });
    };
    require(isPasted() || (folder.names().isEmpty() && isPasted()),
            "the other folder holds: " + folder.names().join(u' '));
}

STEP("files copied in pcmanfm come back as lists for every file manager")
{
    const auto folder = makeFiles(stage);
    QStringList order;
    {
        const auto manager = openFolder(stage, folder);
        order = copyAllFiles(stage, folder);
    }
    stage.copy("something newer than the files");
    copyAgain(stage, "apples");

    const auto pathsUnder = [&](const QByteArray &target) {
        QStringList lines;
        for (const auto &line : stage.clipboard.read(target).value_or(QByteArray()).split('\n'))
            if (!line.trimmed().isEmpty())
                lines << (line.startsWith("file:") ? QUrl::fromEncoded(line.trimmed()).toLocalFile() : line);
        return lines;
    };
    for (const auto &[target, before] :
         {std::pair{"x-special/gnome-copied-files", QStringList("copy")}, {"text/uri-list", QStringList()}}) {
        const auto paths = pathsUnder(target);
        require(paths == before + order, QString(target) + " names " + paths.join(u' '));
    }
}

STEP("Enter in another folder of pcmanfm copies the files there")
{
    const auto folder = makeFiles(stage);
    const auto names = folder.names();
    {
        const auto manager = openFolder(stage, folder);
        copyAllFiles(stage, folder);
    }
    stage.copy("something newer than the files");
    const auto elsewhere = makeFolder(stage, "barn");
    const auto manager = openFolder(stage, elsewhere);
    pasteInto(stage, elsewhere, names, [&] { stage.choose("apples spaces"); });
    require(folder.names() == names, "the originals are gone");
}

// Reading the list of cut files makes pcmanfm forget that it cut them; that must not be seen.
STEP("files cut in pcmanfm are moved by a paste elsewhere")
{
    const auto folder = makeFiles(stage);
    const auto names = folder.names();
    const auto source = openFolder(stage, folder);
    copyAllFiles(stage, folder, "Ctrl+X");
    const auto elsewhere = makeFolder(stage, "shed");
    const auto target = openFolder(stage, elsewhere);
    pasteInto(stage, elsewhere, names, [&] { stage.press("Ctrl+V"); });
    stage.await([&] { return folder.names().isEmpty(); }, "the files were copied, not moved");
}

} // namespace
