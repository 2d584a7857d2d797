#include "tests/desktop/Stage.h"

#include "tests/desktop/Screenshot.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <csignal>

namespace {

constexpr quint32 backgroundColour = 0x5a6f86;

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString quoted(const QByteArray &bytes)
{
    return "\"" + QString(bytes.left(120).toPercentEncoding(" ,.:/=")) + "\"";
}

// Answered by the main loop of the program, so start-up is over when it is.
bool answersOnTheBus()
{
    const QString busName = "com.norvane.app";
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(busName))
        return false;
    const auto question = QDBusMessage::createMethodCall(busName, "/com/norvane/app",
                                                         "org.freedesktop.DBus.Introspectable", "Introspect");
    return bus.call(question, QDBus::Block, 5000).type() == QDBusMessage::ReplyMessage;
}

} // namespace

void require(bool shown, const QString &why)
{
    if (!shown)
        throw StepFailure(why);
}

QByteArray Target::content() const
{
    return readFile(file);
}

QByteArray Target::viewContent() const
{
    return readFile(viewFile);
}

Stage::Stage(QString program, const QDir &output) : programPath(std::move(program)), folder(output)
{
    desktop.paintBackground(backgroundColour);
    const QString settings = qEnvironmentVariable("XDG_CONFIG_HOME") + "/Norvane";
    QDir().mkpath(settings);
    folder.mkpath("."); // for logs and screenshots
    writeFile(settings + "/settings.ini", "[General]\ndidShowWelcome=true\n");
}

Stage::~Stage() = default;

void Stage::await(const Condition &condition, const QString &why, Milliseconds bound) const
{
    require(desktop.waitFor(condition, bound), why);
}

void Stage::never(const Condition &condition, const QString &why, Milliseconds span) const
{
    require(desktop.staysFalse(condition, span), why);
}

void Stage::repeat(const std::function<void()> &act, const Condition &until, const QString &why,
                   Milliseconds attempt) const
{
    const auto succeeds = [&] {
        act();
        return desktop.waitFor(until, attempt);
    };
    await(succeeds, why);
}

Child::Setting Stage::commandLine(const QStringList &arguments) const
{
    const QStringList variables{"QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", "LANGUAGE=" + language,
                                "XDG_DATA_HOME=" + dataFolder};
    return {programPath, arguments, logFile("norvane.log"), variables + extraVariables};
}

void Stage::launch(const QString &spoken, const QString &data, const QStringList &variables)
{
    language = spoken;
    extraVariables = variables;
    dataFolder = scratch.filePath(data);
    QDir().mkpath(dataFolder);
    running.reset();
    running = std::make_unique<Child>(commandLine());
    require(running->isRunning(), "Norvane could not be started");
}

void Stage::start(const QString &spoken, const QString &data, const QStringList &variables)
{
    launch(spoken, data, variables);
    await([&] { return !running->isRunning() || answersOnTheBus(); },
          "Norvane does not answer on the session bus");
    require(running->isRunning(), "Norvane ended by itself at start");
}

void Stage::quit()
{
    running->signal(SIGTERM);
    const auto status = running->awaitExit();
    require(status.has_value(), "SIGTERM did not make it quit by itself");
    require(*status == 0, QString("exit status %1 after SIGTERM").arg(*status));
}

void Stage::restart(const QString &spoken, const QString &data, const QStringList &variables)
{
    quit();
    start(spoken, data, variables);
}

HistoryFile Stage::history() const
{
    return HistoryFile(dataFolder + "/Norvane/clips.sqlite");
}

std::vector<HistoryFile::Row> Stage::rows() const
{
    const auto read = history().rows();
    require(read.has_value(), "the history file cannot be read");
    return *read;
}

void Stage::copy(const QByteArray &bytes, const QByteArray &target)
{
    const auto before = history().rows().value_or(std::vector<HistoryFile::Row>());
    require(clipboard.set(bytes, target), "xclip did not take the selection");
    const auto recorded = [&] {
        const auto now = history().rows();
        if (!now || now->empty())
            return false;
        const bool isNew = before.empty() || now->front().id != before.front().id;
        return target == "UTF8_STRING" ? now->front().text.toUtf8() == bytes : isNew;
    };
    await(recorded, "the copy was not recorded: " + quoted(bytes));
}

void Stage::copyForms(const SelectionOwner::Content &content)
{
    const auto before = rows().size();
    SelectionOwner owner(content);
    require(owner.claim(), "the selection was not to be had");
    await([&] { return rows().size() == before + 1; }, "not recorded: " + QString(content.first().first));
}

void Stage::copyAndPin(const QByteArray &bytes)
{
    copy(bytes);
    openPanel();
    press("Ctrl+P");
    await([&] { return rows().front().pinned; }, "nothing was pinned");
    closePanel();
}

bool Stage::isNewest(const QString &text) const
{
    const auto now = history().rows();
    return now && !now->empty() && now->front().text == text;
}

HistoryFile::Row Stage::awaitNewest(const QString &text) const
{
    await([&] { return isNewest(text); }, "not the newest in the history: " + quoted(text.toUtf8()));
    return rows().front();
}

void Stage::awaitClipboard(const QByteArray &bytes, const QByteArray &target) const
{
    std::optional<QByteArray> seen;
    const bool there = desktop.waitFor([&] { return (seen = clipboard.read(target)) == bytes; });
    require(there,
            target + ": " + quoted(seen.value_or("(nothing)")) + " on the clipboard, not " + quoted(bytes));
}

std::unique_ptr<Child> Stage::run(const QString &program, const QStringList &arguments) const
{
    return std::make_unique<Child>(
        Child::Setting{program, arguments, logFile(program.section(u'/', -1) + ".log")});
}

xcb_window_t Stage::activate(const WindowMatch &match) const
{
    const auto window = desktop.awaitWindow(match);
    require(window.has_value(), "no window of " + match.className);
    require(desktop.activate(*window), match.className + " did not become active");
    return *window;
}

Target Stage::opened(std::unique_ptr<Child> program, const WindowMatch &match, const QString &file) const
{
    return {std::move(program), activate(match), file};
}

// A terminal that writes each byte as it comes. The line discipline still turns the carriage returns, which a
// terminal sends for line ends, back into line feeds.
Target Stage::openTerminal()
{
    const auto file = scratchFile("terminal");
    const auto title = QString("reader %1").arg(files);
    auto target = opened(run("xterm", {"-title", title, "-e", "sh", "-c",
                                       "stty -icanon -echo; : >\"$0\"; exec cat >\"$0\"", file}),
                         {"XTerm", title}, file);
    await([&] { return QFile::exists(file); }, "xterm runs no reader");
    return target;
}

Target Stage::openQtEntry()
{
    const auto file = scratchFile("line"), view = scratchFile("view");
    auto target = opened(run(QCoreApplication::applicationDirPath() + "/qt-entry", {file, view}),
                         {"qt-entry", QFileInfo(file).fileName()}, file);
    target.viewFile = view;
    return target;
}

Target Stage::openMousepad(const QByteArray &content)
{
    const auto file = scratchFile("txt");
    require(writeFile(file, content), "cannot write " + file);
    return opened(run("mousepad", {"--disable-server", file}), {"Mousepad", QFileInfo(file).fileName()},
                  file);
}

std::unique_ptr<Child> Stage::startCompositor() const
{
    auto program = run("picom", {"--config", "/dev/null", "--backend", "xrender"});
    await([&] { return desktop.selectionOwner("_NET_WM_CM_S0") != XCB_NONE; },
          "picom does not draw the screen");
    return program;
}

std::unique_ptr<Child> Stage::startTray() const
{
    auto program =
        run("trayer", {"--edge", "bottom", "--align", "right", "--widthtype", "request", "--height", "28"});
    await([&] { return desktop.selectionOwner("_NET_SYSTEM_TRAY_S0") != XCB_NONE; }, "trayer is no tray");
    return program;
}

void Stage::awaitContent(const Target &target, const QByteArray &expected) const
{
    const bool arrived = desktop.waitFor([&] { return target.content() == expected; });
    require(arrived, quoted(target.content()) + " arrived, not " + quoted(expected));
}

void Stage::awaitView(const Target &target, const QByteArray &expected) const
{
    const bool arrived = desktop.waitFor([&] { return target.viewContent() == expected; });
    require(arrived, quoted(target.viewContent()) + " arrived in the view, not " + quoted(expected));
}

void Stage::awaitSaved(const Target &editor, const QByteArray &expected) const
{
    repeat([&] { press("Ctrl+S"); }, [&] { return !editor.content().isEmpty(); },
           "the editor has got nothing", Milliseconds(300));
    awaitContent(editor, expected);
}

void Stage::awaitKeyboard(xcb_window_t window) const
{
    await([&] { return desktop.hasKeyboard(window); }, "the program in front did not get the keyboard");
}

QString Stage::scratchFile(const QString &suffix)
{
    return scratch.filePath(QString("%1.%2").arg(++files).arg(suffix));
}

void Stage::saveScreenshot(const QString &name) const
{
    const auto picture = steadyScreenshot(desktop);
    require(!picture.isNull() && picture.save(folder.filePath(name + ".png")), "no screenshot " + name);
}
