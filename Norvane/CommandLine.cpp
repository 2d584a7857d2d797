#include "Norvane/CommandLine.h"

#include <array>

namespace {

struct Request {
    const char16_t *option;
    const char16_t *action;
    CommandLine::Kind kind;
    const char16_t *help;
};

constexpr std::array requests = {
    Request{u"--toggle", u"toggle", CommandLine::Kind::run, u"show the history, or hide it when it is open"},
    Request{u"--show", u"show", CommandLine::Kind::run, u"show the history"},
    Request{u"--hide", u"hide", CommandLine::Kind::ask, u"hide the history"},
    Request{u"--pause", u"pause", CommandLine::Kind::ask, u"pause recording, or resume it when it is paused"},
    Request{u"--quit", u"quit", CommandLine::Kind::ask, u"end the running Norvane"},
};

} // namespace

CommandLine parseCommandLine(const QStringList &arguments)
{
    CommandLine result{CommandLine::Kind::run, QStringLiteral("show"), false};
    for (const QString &argument : arguments) {
        if (argument == u"--help" || argument == u"-h")
            return {CommandLine::Kind::help, {}, false};
        if (argument == u"--version")
            return {CommandLine::Kind::version, {}, false};
        const auto *found = std::find_if(requests.begin(), requests.end(),
                                         [&](const Request &request) { return argument == request.option; });
        if (found == requests.end())
            return {CommandLine::Kind::unknown, argument, false};
        result = {found->kind, QString::fromUtf16(found->action), found->kind == CommandLine::Kind::run};
    }
    return result;
}

QString commandLineHelp()
{
    QString text =
        QStringLiteral("Usage: norvane [OPTION]\n\n"
                       "Keeps a history of what you copy. Without an option it starts, or shows the\n"
                       "history of the Norvane that is running.\n\n");
    const auto line = [&text](const QString &option, const QString &help) {
        text += u"  " + option.leftJustified(12) + help + u'\n';
    };
    for (const auto &request : requests)
        line(QString::fromUtf16(request.option), QString::fromUtf16(request.help));
    line(QStringLiteral("--version"), QStringLiteral("print the version"));
    line(QStringLiteral("--help"), QStringLiteral("print this text"));
    return text +
           QStringLiteral("\nThe options go to the running Norvane, so that a window manager's own keys can\n"
                          "use them. --toggle and --show start Norvane when none is running.\n");
}
