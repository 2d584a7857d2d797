#include "tests/programs/Editors.h"

#include <QDir>

namespace {

QString textFile(const QString &path)
{
    const QString file = path + QStringLiteral(".txt");
    writeFile(file, "blank " + path.section(QLatin1Char('-'), -1).toUtf8());
    return file;
}

QString settingsFolder()
{
    return qEnvironmentVariable("XDG_CONFIG_HOME");
}

Child::Setting featherpadOn(Stage &, const QString &file)
{
    QDir().mkpath(settingsFolder() + QStringLiteral("/featherpad"));
    writeFile(settingsFolder() + QStringLiteral("/featherpad/fp.conf"), "[text]\nappendEmptyLine=false\n");
    return {QStringLiteral("featherpad"), {QStringLiteral("--standalone"), file}, {}, {}};
}

// A triple click on the first line.
void copyFirstLine(const OpenProgram &terminal)
{
    const auto corner = terminal.stage.desktop.geometry(terminal.window).topLeft();
    terminal.stage.keyboard.click(corner + QPoint(30, 8), 3);
}

// Its shell shows the file, then empties it and lets it hold what is typed. The line discipline still turns
// the carriage returns that a terminal sends for line ends back into line feeds.
Child::Setting xtermOn(Stage &, const QString &file)
{
    return {QStringLiteral("xterm"),
            {QStringLiteral("-title"), file, QStringLiteral("-xrm"),
             QStringLiteral("XTerm*selectToClipboard: true"), QStringLiteral("-e"), QStringLiteral("sh"),
             QStringLiteral("-c"),
             QStringLiteral("stty -icanon -echo; cat \"$0\"; : >\"$0\"; exec cat >\"$0\""), file},
            {},
            {}};
}

} // namespace

const Program &mousepad()
{
    static const Program program{
        .name = QStringLiteral("Mousepad"),
        .package = QStringLiteral("mousepad"),
        .windowClass = QStringLiteral("Mousepad"),
        .command = [](Stage &, const QString &file) -> Child::Setting {
            return {QStringLiteral("mousepad"), {QStringLiteral("--disable-server"), file}, {}, {}};
        },
        .makeBlank = textFile};
    return program;
}

const Program &featherpad()
{
    static const Program program{.name = QStringLiteral("FeatherPad"),
                                 .package = QStringLiteral("featherpad"),
                                 .windowClass = QStringLiteral("FeatherPad"),
                                 .command = featherpadOn,
                                 .makeBlank = textFile};
    return program;
}

const Program &emacs()
{
    static const Program program{
        .name = QStringLiteral("Emacs"),
        .package = QStringLiteral("emacs-gtk"),
        .windowClass = QStringLiteral("Emacs"),
        .command = [](Stage &, const QString &file) -> Child::Setting {
            return {QStringLiteral("emacs"),
                    {QStringLiteral("-Q"), QStringLiteral("--eval"),
                     QStringLiteral("(setq mode-require-final-newline nil)"), file},
                    {},
                    {}};
        },
        .makeBlank = textFile,
        .select = {QStringLiteral("Ctrl+X"), QStringLiteral("H")},
        .copy = {QStringLiteral("Alt+W")},
        .save = {QStringLiteral("Ctrl+X"), QStringLiteral("Ctrl+S")},
        .beforePaste = {QStringLiteral("Ctrl+X"), QStringLiteral("H"), QStringLiteral("Ctrl+W")}};
    return program;
}

const Program &xterm()
{
    static const Program program{.name = QStringLiteral("xterm"),
                                 .package = QStringLiteral("xterm"),
                                 .windowClass = QStringLiteral("XTerm"),
                                 .command = xtermOn,
                                 .makeBlank = textFile,
                                 .save = {},
                                 .copyByHand = copyFirstLine};
    return program;
}

std::function<QString(const QString &)> textOf(const QByteArray &bytes)
{
    return [bytes](const QString &path) {
        const QString file = path + QStringLiteral(".txt");
        writeFile(file, bytes);
        return file;
    };
}

QByteArray fruitLines(const QByteArray &name)
{
    return name + " \xc3\xa8 matura: \xe2\x82\xac 3\n\tand \xf0\x9f\x8d\x90, \xe2\x80\x94\n\nlast line";
}
