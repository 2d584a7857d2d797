#include "tests/desktop/Stage.h"

#include "tests/desktop/Screenshot.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QRegularExpression>
#include <csignal>

namespace {

constexpr quint32 backgroundColour = 0x5a6f86;
const auto busName = QStringLiteral("com.norvane.app");

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
    return QLatin1Char('"') + QString::fromUtf8(bytes.left(120).toPercentEncoding(" ,.:/=")) +
           QLatin1Char('"');
}

// Answered by the main loop of the program, so start-up is over when it is.
bool answersOnTheBus()
{
    const auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(busName))
        return false;
    const auto question = QDBusMessage::createMethodCall(
        busName, QStringLiteral("/com/norvane/app"), QStringLiteral("org.freedesktop.DBus.Introspectable"),
        QStringLiteral("Introspect"));
    return bus.call(question, QDBus::Block, 5000).type() == QDBusMessage::ReplyMessage;
}

} // namespace

void require(bool shown, const QString &why)
{
    if (!shown)
        throw StepFailure{why};
}

QByteArray Target::content() const
{
    return readFile(file);
}

Stage::Stage(QString program, const QDir &output) : programPath(std::move(program)), folder(output)
{
    desktop.paintBackground(backgroundColour);
    const QString settings = qEnvironmentVariable("XDG_CONFIG_HOME") + QStringLiteral("/Norvane");
    QDir().mkpath(settings);
    folder.mkpath(QStringLiteral(".")); // for logs and screenshots
    writeFile(settings + QStringLiteral("/settings.ini"), "[General]\ndidShowWelcome=true\n");
}

Stage::~Stage() = default;

Child::Setting Stage::commandLine() const
{
    return {programPath,
            {},
            logFile(QStringLiteral("norvane.log")),
            QStringList{QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1"),
                        QStringLiteral("LANGUAGE=") + language,
                        QStringLiteral("XDG_DATA_HOME=") + dataFolder} +
                extraVariables};
}

void Stage::start(const QString &spoken, const QString &data, const QStringList &variables)
{
    language = spoken;
    extraVariables = variables;
    dataFolder = scratch.filePath(data);
    QDir().mkpath(dataFolder);
    running.reset();
    running = std::make_unique<Child>(commandLine());
    require(running->isRunning(), QStringLiteral("Norvane could not be started"));
    require(desktop.waitFor([&] { return !running->isRunning() || answersOnTheBus(); }),
            QStringLiteral("Norvane does not answer on the session bus"));
    require(running->isRunning(), QStringLiteral("Norvane ended by itself at start"));
}

void Stage::quit()
{
    running->signal(SIGTERM);
    const auto status = running->awaitExit();
    require(status.has_value(), QStringLiteral("SIGTERM did not make it quit by itself"));
    require(*status == 0, QStringLiteral("exit status %1 after SIGTERM").arg(*status));
}

HistoryFile Stage::history() const
{
    return HistoryFile(dataFolder + QStringLiteral("/Norvane/clips.sqlite"));
}

std::vector<HistoryFile::Row> Stage::rows() const
{
    const auto read = history().rows();
    require(read.has_value(), QStringLiteral("the history file cannot be read"));
    return *read;
}

std::optional<xcb_window_t> Stage::panel() const
{
    return desktop.findWindow({QStringLiteral("Norvane"), {}, !managedPanel, 400});
}

xcb_window_t Stage::awaitPanel() const
{
    std::optional<xcb_window_t> window;
    require(desktop.waitFor([&] { return (window = panel()).has_value(); }),
            QStringLiteral("no panel opened"));
    require(desktop.waitFor([&] { return desktop.hasKeyboard(*window); }),
            QStringLiteral("the panel opened without the keyboard"));
    return *window;
}

void Stage::awaitNoPanel() const
{
    require(desktop.waitFor([&] { return !panel(); }), QStringLiteral("the panel stayed open"));
}

void Stage::hotKey(Desktop::Milliseconds held) const
{
    require(keyboard.press(QStringLiteral("Ctrl+Alt+V"), held),
            QStringLiteral("the layout lacks the hot key"));
}

xcb_window_t Stage::openPanel() const
{
    require(!panel(), QStringLiteral("a panel was open already"));
    hotKey();
    return awaitPanel();
}

void Stage::closePanel() const
{
    for (int presses = 0; presses < 3 && panel(); ++presses) {
        keyboard.press(QStringLiteral("Esc"));
        desktop.waitFor([&] { return !panel(); }, Desktop::Milliseconds(1000));
    }
}

std::optional<Accessible> Stage::searchField() const
{
    const auto application = Accessible::application(running->pid());
    if (!application)
        return std::nullopt;
    return application->find([](const Accessible &part) {
        return part.role() == QLatin1String("text") && part.is(Accessible::State::editable);
    });
}

QString Stage::searchText() const
{
    const auto field = searchField();
    return field ? field->text() : QString();
}

QString Stage::searchName() const
{
    const auto field = searchField();
    return field ? field->name() : QString();
}

bool Stage::searchHasFocus() const
{
    const auto field = searchField();
    return field && field->is(Accessible::State::focused);
}

QStringList Stage::listed() const
{
    QStringList names;
    const auto application = Accessible::application(running->pid());
    require(application.has_value(), QStringLiteral("Norvane is not on the accessibility bus"));
    const auto list =
        application->find([](const Accessible &part) { return part.role() == QLatin1String("list"); });
    require(list.has_value(), QStringLiteral("the panel has no list for a screen reader"));
    for (const auto &item : list->children())
        if (item.role() == QLatin1String("list item"))
            names << item.name();
    return names;
}

QString Stage::countText() const
{
    static const QRegularExpression count(QStringLiteral("^\\d+\\b"));
    const auto application = Accessible::application(running->pid());
    require(application.has_value(), QStringLiteral("Norvane is not on the accessibility bus"));
    const auto label = application->find([](const Accessible &part) {
        return part.role() == QLatin1String("label") && count.match(part.name()).hasMatch();
    });
    return label ? label->name() : QString();
}

Accessible Stage::awaitPart(const QString &role, const QString &name) const
{
    std::optional<Accessible> found;
    const auto isIt = [&](const Accessible &part) {
        return part.role() == role && part.is(Accessible::State::showing) &&
               (name.isEmpty() || part.name() == name);
    };
    const bool there = desktop.waitFor([&] {
        const auto program = Accessible::application(running->pid());
        found = program ? program->find(isIt) : std::nullopt;
        return found.has_value();
    });
    require(there, QStringLiteral("there is no %1 \"%2\"").arg(role, name));
    return *found;
}

void Stage::awaitListed(qsizetype count, const QString &when) const
{
    const bool right = desktop.waitFor([&] { return listed().size() == count; }, Desktop::Milliseconds(3000));
    require(right,
            QStringLiteral("%1: %2 rows listed, %3 expected").arg(when).arg(listed().size()).arg(count));
}

void Stage::choose(const QString &words, const QString &chord) const
{
    hotKey();
    require(keyboard.type(words) && keyboard.press(chord), QStringLiteral("the layout lacks a key"));
}

void Stage::copy(const QByteArray &bytes, const QByteArray &target)
{
    const auto before = history().rows().value_or(std::vector<HistoryFile::Row>());
    require(clipboard.set(bytes, target), QStringLiteral("xclip did not take the selection"));
    const auto recorded = [&] {
        const auto now = history().rows();
        if (!now || now->empty())
            return false;
        const auto &newest = now->front();
        const bool isNew = before.empty() || newest.id != before.front().id;
        return target == "UTF8_STRING" ? newest.text.toUtf8() == bytes : isNew;
    };
    require(desktop.waitFor(recorded), QStringLiteral("the copy was not recorded: ") + quoted(bytes));
}

void Stage::copyForms(const SelectionOwner::Content &content)
{
    const auto before = rows().size();
    SelectionOwner owner(content);
    require(owner.claim(), QStringLiteral("the selection was not to be had"));
    require(desktop.waitFor([&] { return rows().size() == before + 1; }),
            QStringLiteral("not recorded: ") + QString::fromLatin1(content.first().first));
}

bool Stage::isNewest(const QString &text) const
{
    const auto now = history().rows();
    return now && !now->empty() && now->front().text == text;
}

HistoryFile::Row Stage::awaitNewest(const QString &text) const
{
    require(desktop.waitFor([&] { return isNewest(text); }),
            QStringLiteral("not the newest in the history: ") + quoted(text.toUtf8()));
    return rows().front();
}

Target Stage::opened(std::unique_ptr<Child> program, const WindowMatch &match, const QString &file) const
{
    const auto window = desktop.awaitWindow(match);
    require(window.has_value(), QStringLiteral("no window of ") + match.className);
    require(desktop.activate(*window), match.className + QStringLiteral(" did not become active"));
    return {std::move(program), *window, file, {}};
}

// A terminal that writes each byte as it comes. The line discipline still turns the carriage returns, which a
// terminal sends for line ends, back into line feeds.
Target Stage::openTerminal()
{
    const auto file = scratchFile(QStringLiteral("terminal"));
    const auto title = QStringLiteral("reader %1").arg(files);
    auto program = std::make_unique<Child>(Child::Setting{
        QStringLiteral("xterm"),
        {QStringLiteral("-title"), title, QStringLiteral("-e"), QStringLiteral("sh"), QStringLiteral("-c"),
         QStringLiteral("stty -icanon -echo; : >\"$0\"; exec cat >\"$0\""), file},
        logFile(QStringLiteral("xterm.log")),
        {}});
    auto target = opened(std::move(program), {QStringLiteral("XTerm"), title, {}, 0}, file);
    require(desktop.waitFor([&] { return QFile::exists(file); }), QStringLiteral("xterm runs no reader"));
    return target;
}

Target Stage::openQtEntry()
{
    const auto file = scratchFile(QStringLiteral("line"));
    const auto view = scratchFile(QStringLiteral("view"));
    auto program = std::make_unique<Child>(
        Child::Setting{QCoreApplication::applicationDirPath() + QStringLiteral("/qt-entry"),
                       {file, view},
                       logFile(QStringLiteral("qt-entry.log")),
                       {}});
    auto target =
        opened(std::move(program), {QStringLiteral("qt-entry"), QFileInfo(file).fileName(), {}, 0}, file);
    target.viewFile = view;
    return target;
}

Target Stage::openMousepad(const QByteArray &content)
{
    const auto file = scratchFile(QStringLiteral("txt"));
    require(writeFile(file, content), QStringLiteral("cannot write ") + file);
    auto program = std::make_unique<Child>(Child::Setting{QStringLiteral("mousepad"),
                                                          {QStringLiteral("--disable-server"), file},
                                                          logFile(QStringLiteral("mousepad.log")),
                                                          {}});
    return opened(std::move(program), {QStringLiteral("Mousepad"), QFileInfo(file).fileName(), {}, 0}, file);
}

std::unique_ptr<Child> Stage::startCompositor()
{
    auto program =
        std::make_unique<Child>(Child::Setting{QStringLiteral("picom"),
                                               {QStringLiteral("--config"), QStringLiteral("/dev/null"),
                                                QStringLiteral("--backend"), QStringLiteral("xrender")},
                                               logFile(QStringLiteral("picom.log")),
                                               {}});
    require(desktop.waitFor([&] { return desktop.selectionOwner("_NET_WM_CM_S0") != XCB_NONE; }),
            QStringLiteral("picom does not draw the screen"));
    return program;
}

void Stage::awaitContent(const Target &target, const QByteArray &expected) const
{
    const bool arrived = desktop.waitFor([&] { return target.content() == expected; });
    require(arrived, quoted(target.content()) + QStringLiteral(" arrived, not ") + quoted(expected));
}

QString Stage::scratchFile(const QString &suffix)
{
    return scratch.filePath(QStringLiteral("%1.%2").arg(++files).arg(suffix));
}

void Stage::saveScreenshot(const QString &name) const
{
    const auto picture = steadyScreenshot(desktop);
    require(!picture.isNull() && picture.save(folder.filePath(name + QStringLiteral(".png"))),
            QStringLiteral("no screenshot ") + name);
}
