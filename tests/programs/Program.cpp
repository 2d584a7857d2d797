#include "tests/programs/Program.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

OpenProgram::OpenProgram(Stage &used, const Program &opened, const QString &path)
    : stage(used), program(opened), file(path)
{
    auto setting = program.command(stage, file);
    if (setting.log.isEmpty())
        setting.log = stage.logFile(program.package + QStringLiteral(".log"));
    child = std::make_unique<Child>(setting);
    require(child->isRunning(), program.name + QStringLiteral(" could not be started"));
    const auto found = stage.desktop.awaitWindow(
        {program.windowClass, QFileInfo(file).completeBaseName(), false, 0}, program.startBound);
    if (!found) {
        stage.saveScreenshot(QStringLiteral("failed-") + program.package); // before it is ended
        require(false, program.name + QStringLiteral(" opened no window"));
    }
    window = *found;
    require(stage.desktop.activate(window), program.name + QStringLiteral(" did not become active"));
}

void OpenProgram::press(const Program::Chords &chords) const
{
    for (const auto &chord : chords)
        require(stage.keyboard.press(chord), QStringLiteral("the layout lacks ") + chord);
}

void OpenProgram::pressCopy() const
{
    if (program.copyByHand) {
        program.copyByHand(*this);
        return;
    }
    press(program.select);
    press(program.copy);
}

HistoryFile::Row OpenProgram::copyAll(const std::function<bool(const HistoryFile::Row &)> &isIt) const
{
    const auto newest = [&] { return newestClip(stage); };
    const auto recorded = [&] {
        pressCopy();
        return stage.desktop.waitFor([&] { return isIt(newest()); }, program.attempt);
    };
    require(stage.desktop.waitFor(recorded, program.startBound),
            QStringLiteral("what %1 copied was not recorded; the newest clip is of kind %2: %3")
                .arg(program.name)
                .arg(newest().kind)
                .arg(shown(newest().text.toUtf8())));
    return newest();
}

void OpenProgram::becomeReady() const
{
    const auto before = newestClip(stage).id;
    copyAll([&](const HistoryFile::Row &row) { return row.id != before; });
    press(program.beforePaste);
}

QByteArray OpenProgram::copiedAgain(const QByteArray &target, const Acceptance &isIt) const
{
    QByteArray last;
    const auto copied = [&] {
        const auto owner = stage.desktop.selectionOwner("CLIPBOARD");
        if (owner == XCB_NONE || owner == pastedFrom)
            return false;
        const auto bytes = stage.clipboard.read(target).value_or(QByteArray());
        if (!bytes.isEmpty()) // between two copies there is no owner for a moment
            last = bytes;
        return isIt(last);
    };
    stage.desktop.waitFor(
        [&] {
            pressCopy();
            return stage.desktop.waitFor(copied, program.attempt);
        },
        program.startBound / 2);
    return last;
}

QByteArray OpenProgram::saved(const Acceptance &isIt) const
{
    QByteArray last;
    stage.desktop.waitFor([&] {
        press(program.save);
        return stage.desktop.waitFor([&] { return isIt(last = readFile(file)); }, Desktop::Milliseconds(300));
    });
    return last;
}

void OpenProgram::awaitPaste()
{
    pastedFrom = stage.desktop.selectionOwner("CLIPBOARD");
    stage.desktop.waitFor([] { return false; }, program.pasteTime);
    if (program.changedTitle.isEmpty()) {
        // A program may write a file in its own manner as soon as it is told to save.
        const auto isNew = [](const QByteArray &bytes) {
            return !bytes.isEmpty() && !bytes.contains("blank");
        };
        require(isNew(saved(isNew)), QStringLiteral("nothing was pasted"));
        return;
    }
    const auto title = [&] { return stage.desktop.title(window); };
    require(stage.desktop.waitFor([&] { return title().contains(program.changedTitle); }),
            QStringLiteral("nothing was pasted: the title says ") + title());
}

void pasteFromPanel(Stage &stage, const HistoryFile::Row &wanted, const QString &words)
{
    const auto rows = stage.rows();
    const auto place = std::find_if(rows.begin(), rows.end(),
                                    [&](const HistoryFile::Row &row) { return row.id == wanted.id; }) -
                       rows.begin();
    require(place < 9, QStringLiteral("the clip stands in row %1").arg(place + 1));
    stage.openPanel();
    if (words.isEmpty())
        stage.keyboard.press(QStringLiteral("Ctrl+%1").arg(place + 1));
    else
        require(stage.keyboard.type(words) && stage.keyboard.press(QStringLiteral("Enter")),
                QStringLiteral("the layout lacks a key"));
    // It moves to the top once its content is on the clipboard.
    const auto taken = [&] {
        const auto newest = stage.rows().front();
        return words.isEmpty() ? newest.id == wanted.id : newest.text.contains(words);
    };
    require(stage.desktop.waitFor(taken), QStringLiteral("the clip was not taken in the panel"));
    stage.awaitNoPanel();
}

HistoryFile::Row newestClip(const Stage &stage)
{
    const auto rows = stage.rows();
    return rows.empty() ? HistoryFile::Row() : rows.front();
}

QString installedVersion(const Program &program)
{
    QProcess query;
    query.start(QStringLiteral("dpkg-query"),
                {QStringLiteral("-W"), QStringLiteral("-f"), QStringLiteral("${Version}"), program.package});
    query.waitForFinished(5000);
    return QString::fromLatin1(query.readAllStandardOutput());
}

QString freshPath(Stage &stage)
{
    const auto path = stage.scratchFile(QStringLiteral("x"));
    const QFileInfo info(path);
    return info.path() + QStringLiteral("/paper-") + info.completeBaseName();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile written(path);
    require(written.open(QIODevice::WriteOnly) && written.write(bytes) == bytes.size(),
            QStringLiteral("cannot write ") + path);
}

QByteArray readFile(const QString &path)
{
    QFile read(path);
    return read.open(QIODevice::ReadOnly) ? read.readAll() : QByteArray();
}

QString shown(const QByteArray &bytes)
{
    constexpr int length = 300;
    return QLatin1Char('"') + QString::fromUtf8(bytes.left(length).toPercentEncoding(" ,.:;/=<>{}\\*")) +
           QLatin1Char('"');
}
