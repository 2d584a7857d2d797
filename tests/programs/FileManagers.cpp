#include "tests/programs/FileManagers.h"

#include <QFileInfo>

namespace {

QString makeFolder(const QString &path, const QStringList &names)
{
    require(QDir().mkpath(path), QStringLiteral("cannot make ") + path);
    for (const auto &name : names)
        writeFile(path + QLatin1Char('/') + name, path.toUtf8() + name.toUtf8());
    return path;
}

QStringList names(const QString &folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

bool hasAll(const QString &folder, const QString &from)
{
    const auto wanted = names(from);
    return std::all_of(wanted.begin(), wanted.end(), [&](const QString &name) {
        return readFile(folder + QLatin1Char('/') + name) == readFile(from + QLatin1Char('/') + name);
    });
}

} // namespace

const Program &pcmanfm()
{
    static const Program program{
        .name = QStringLiteral("PCManFM"),
        .package = QStringLiteral("pcmanfm"),
        .windowClass = QStringLiteral("Pcmanfm"),
        .command = [](Stage &, const QString &folder) -> Child::Setting {
            return {QStringLiteral("pcmanfm"), {QStringLiteral("--new-win"), folder}, {}, {}};
        },
        .makeBlank = [](const QString &path) { return makeFolder(path, {QStringLiteral("blank")}); }};
    return program;
}

const Program &thunar()
{
    static const Program program{
        .name = QStringLiteral("Thunar"),
        .package = QStringLiteral("thunar"),
        .windowClass = QStringLiteral("Thunar"),
        .command = [](Stage &, const QString &folder) -> Child::Setting {
            return {QStringLiteral("thunar"), {folder}, {}, {}};
        },
        .makeBlank = [](const QString &path) { return makeFolder(path, {QStringLiteral("blank")}); }};
    return program;
}

const Program &cutting(const Program &program)
{
    static std::map<QString, Program> programs;
    const auto [entry, isNew] = programs.try_emplace(program.name, program);
    if (isNew)
        entry->second.copy = {QStringLiteral("Ctrl+X")};
    return entry->second;
}

QString makeFiles(const QString &path)
{
    return makeFolder(path, {QStringLiteral("apples.txt"), QStringLiteral("name with spaces.txt"),
                             QString::fromUtf8("per\xc3\xa8 & c.txt")});
}

Proof holdsTheFiles()
{
    return [](const OpenProgram &target, const Original &original) {
        require(target.stage.desktop.waitFor([&] { return hasAll(target.file, original.file); }),
                QStringLiteral("the folder holds ") + names(target.file).join(QLatin1Char(' ')));
        require(names(original.file).size() == 3, QStringLiteral("the other folder lost files"));
    };
}

Proof getsTheFiles()
{
    return [](const OpenProgram &target, const Original &original) {
        const auto moved = [&] { return names(original.file).isEmpty() && names(target.file).size() == 4; };
        require(
            target.stage.desktop.waitFor(moved),
            QStringLiteral("the folder holds %1, the other one still %2")
                .arg(names(target.file).join(QLatin1Char(' ')), names(original.file).join(QLatin1Char(' '))));
    };
}
