#include "tests/desktop/SamplePicture.h"
#include "tests/desktop/Stage.h"

#include <QFile>
#include <QUrl>

namespace {

// Waits until Norvane has taken the selection from the program that copied.
template <typename Choose>
void awaitNewOwner(Stage &stage, const Choose &choose)
{
    const auto before = stage.desktop.selectionOwner("CLIPBOARD");
    choose();
    require(stage.desktop.waitFor([&] {
        const auto now = stage.desktop.selectionOwner("CLIPBOARD");
        return now != XCB_NONE && now != before;
    }),
            QStringLiteral("nobody took the selection"));
}

void pictureRoundTrip(Stage &stage)
{
    const auto bytes = samplePicture();
    stage.copy(bytes, "image/png");
    const auto row = stage.rows().front();
    require(row.kind == 2, QStringLiteral("recorded as kind %1, not as an image").arg(row.kind));
    awaitNewOwner(stage, [&] { stage.choose({}, QStringLiteral("Alt+Enter")); });
    require(stage.clipboard.owner()->awaitEnd(), QStringLiteral("xclip still owns the selection"));
    require(stage.clipboard.read("image/png") == bytes, QStringLiteral("the picture came back changed"));
}

struct Folder {
    QString path;
    QStringList files; // full paths
};

Folder makeFiles(Stage &stage)
{
    Folder folder{stage.scratchFile(QStringLiteral("orchard")), {}};
    QDir().mkpath(folder.path);
    for (const auto *name : {"apples.txt", "name with spaces.txt", "per\xc3\xa8 & c.txt"}) {
        const QString path = folder.path + QLatin1Char('/') + QString::fromUtf8(name);
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(name) > 0,
                QStringLiteral("cannot write ") + path);
        folder.files << path;
    }
    return folder;
}

struct FileManager {
    std::unique_ptr<Child> program;
    xcb_window_t window = XCB_NONE;
};

FileManager openFolder(Stage &stage, const QString &path)
{
    auto program = std::make_unique<Child>(Child::Setting{QStringLiteral("pcmanfm"),
                                                          {QStringLiteral("--new-win"), path},
                                                          stage.logFile(QStringLiteral("pcmanfm.log")),
                                                          {}});
    const auto window =
        stage.desktop.awaitWindow({QStringLiteral("Pcmanfm"), QFileInfo(path).fileName(), {}, 0});
    require(window.has_value(), QStringLiteral("pcmanfm opened no window"));
    require(stage.desktop.activate(*window), QStringLiteral("pcmanfm did not become active"));
    return {std::move(program), *window};
}

QStringList sorted(QStringList list)
{
    list.sort();
    return list;
}

// Selects all and copies (or cuts), as often as it takes for the view to have its files.
HistoryFile::Row copyAllFiles(Stage &stage, const Folder &folder,
                              const QString &chord = QStringLiteral("Ctrl+C"))
{
    const auto recorded = [&] {
        stage.keyboard.press(QStringLiteral("Ctrl+A"));
        stage.keyboard.press(chord);
        return stage.desktop.waitFor(
            [&] {
                const auto now = stage.rows();
                return !now.empty() && now.front().kind == 3 &&
                       sorted(now.front().text.split(QLatin1Char('\n'))) == sorted(folder.files);
            },
            Desktop::Milliseconds(1500));
    };
    require(stage.desktop.waitFor(recorded), QStringLiteral("the files were not recorded"));
    return stage.rows().front();
}

void fileLists(Stage &stage)
{
    const auto folder = makeFiles(stage);
    QStringList order;
    {
        const auto manager = openFolder(stage, folder.path);
        order = copyAllFiles(stage, folder).text.split(QLatin1Char('\n'));
    }
    stage.copy("something newer than the files");
    awaitNewOwner(stage, [&] { stage.choose(QStringLiteral("apples"), QStringLiteral("Alt+Enter")); });

    const auto copied =
        stage.clipboard.read("x-special/gnome-copied-files").value_or(QByteArray()).split('\n');
    require(copied.first() == "copy", QStringLiteral("the list for file managers does not begin with copy"));
    QStringList paths;
    for (const auto &line : copied.mid(1))
        paths << QUrl::fromEncoded(line.trimmed()).toLocalFile();
    require(paths == order,
            QStringLiteral("x-special/gnome-copied-files names ") + paths.join(QLatin1Char(' ')));

    paths.clear();
    for (const auto &line : stage.clipboard.read("text/uri-list").value_or(QByteArray()).split('\n'))
        if (!line.trimmed().isEmpty())
            paths << QUrl::fromEncoded(line.trimmed()).toLocalFile();
    require(paths == order, QStringLiteral("text/uri-list names ") + paths.join(QLatin1Char(' ')));
}

void filesPasted(Stage &stage)
{
    const auto folder = makeFiles(stage);
    {
        const auto manager = openFolder(stage, folder.path);
        copyAllFiles(stage, folder);
    }
    stage.copy("something newer than the files");
    const auto elsewhere = stage.scratchFile(QStringLiteral("barn"));
    QDir().mkpath(elsewhere);
    const auto manager = openFolder(stage, elsewhere);
    const auto names = [](const QString &path) { return QDir(path).entryList(QDir::Files, QDir::Name); };
    // A folder that pcmanfm has only just opened takes no paste and says nothing: a person would press again.
    const auto pasted = [&] {
        stage.choose(QStringLiteral("apples spaces"));
        return stage.desktop.waitFor([&] { return names(elsewhere) == names(folder.path); });
    };
    require(pasted() || (names(elsewhere).isEmpty() && pasted()),
            QStringLiteral("the other folder holds: ") + names(elsewhere).join(QLatin1Char(' ')));
    require(names(folder.path).size() == folder.files.size(), QStringLiteral("the originals are gone"));
}

// Reading the list of cut files makes pcmanfm forget that it cut them; that must not be seen.
void filesMoved(Stage &stage)
{
    const auto folder = makeFiles(stage);
    const auto names = [](const QString &path) { return QDir(path).entryList(QDir::Files, QDir::Name); };
    const auto cut = names(folder.path);
    const auto source = openFolder(stage, folder.path);
    copyAllFiles(stage, folder, QStringLiteral("Ctrl+X"));
    const auto elsewhere = stage.scratchFile(QStringLiteral("shed"));
    QDir().mkpath(elsewhere);
    const auto target = openFolder(stage, elsewhere);
    const auto pasted = [&] {
        stage.keyboard.press(QStringLiteral("Ctrl+V"));
        return stage.desktop.waitFor([&] { return names(elsewhere) == cut; });
    };
    require(pasted() || (names(elsewhere).isEmpty() && pasted()),
            QStringLiteral("the other folder holds: ") + names(elsewhere).join(QLatin1Char(' ')));
    require(stage.desktop.waitFor([&] { return names(folder.path).isEmpty(); }),
            QStringLiteral("the files were copied, not moved"));
}

} // namespace

Steps fileSteps()
{
    return {
        {"a PNG comes back byte for byte", pictureRoundTrip},
        {"files copied in pcmanfm come back as lists for every file manager", fileLists},
        {"Enter in another folder of pcmanfm copies the files there", filesPasted},
        {"files cut in pcmanfm are moved by a paste elsewhere", filesMoved},
    };
}
