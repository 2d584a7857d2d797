#include "Platform/linux/tesseract/RecognitionProcess.h"

#include "Platform/linux/tesseract/RecognitionProtocol.h"

#include <QFile>
#include <QProcessEnvironment>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace RecognitionProtocol;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int givenSocket = 3; // the descriptor that the process finds its socket at
constexpr auto cpuToLoad = 20s;
constexpr auto grace = 2s;          // more than the process itself keeps to
constexpr auto longestWait = 10min; // it runs when nothing else wants to: on a busy machine that is seldom

// Its environment is ours but for one thing: threads would make the reading several times slower.
std::vector<QByteArray> environmentOfProcess()
{
    auto variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("OMP_THREAD_LIMIT"), QStringLiteral("1"));
    std::vector<QByteArray> lines;
    for (const auto &line : variables.toStringList())
        lines.push_back(line.toLocal8Bit());
    return lines;
}

class SpawnSettings {
public:
    explicit SpawnSettings(int socket)
    {
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, socket, givenSocket);
        ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        // What libraries say about hostile images is no news for the log.
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawn_file_actions_addclosefrom_np(&actions, givenSocket + 1);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        ::posix_spawnattr_init(&attributes);
        ::posix_spawnattr_setsigmask(&attributes, &none);
        ::posix_spawnattr_setsigdefault(&attributes, &all);
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

// The new process; absent when there is none.
std::optional<pid_t> spawn(const QString &program, int socket)
{
    std::vector<QByteArray> variables = environmentOfProcess();
    std::vector<char *> environment;
    environment.reserve(variables.size() + 1);
    for (auto &line : variables)
        environment.push_back(line.data());
    environment.push_back(nullptr);
    QByteArray path = QFile::encodeName(program);
    char *arguments[] = {path.data(), nullptr};
    const SpawnSettings settings(socket);
    pid_t pid = 0;
    const int failure = ::posix_spawn(&pid, path.constData(), &settings.actions, &settings.attributes,
                                      arguments, environment.data());
    return failure == 0 ? std::optional(pid) : std::nullopt;
}

} // namespace

std::unique_ptr<RecognitionProcess> RecognitionProcess::start(const QString &program,
                                                              const std::atomic<bool> &isCancelled)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return nullptr;
    const auto pid = spawn(program, ends[1]);
    ::close(ends[1]);
    if (!pid) {
        ::close(ends[0]);
        return nullptr;
    }
    std::unique_ptr<RecognitionProcess> process(new RecognitionProcess(*pid, ends[0], isCancelled));
    return process->ask<Hello>({}, cpuToLoad) ? std::move(process) : nullptr;
}

RecognitionProcess::RecognitionProcess(pid_t child, int socket, const std::atomic<bool> &isCancelled)
    : pid(child), channel(socket), cancelled(isCancelled), reaper([this] { reap(); })
{
}

RecognitionProcess::~RecognitionProcess()
{
    if (ended == End::none)
        finish(End::byItself, false);
    reaper.join();
}

std::optional<bool> RecognitionProcess::load(const QString &dataFolder, const QStringList &codes)
{
    const auto answer = ask<LoadAnswer>({encoded(LoadRequest{dataFolder, codes})}, cpuToLoad);
    return answer ? std::optional(answer->isLoaded) : std::nullopt;
}

std::optional<ReadAnswer> RecognitionProcess::read(const QByteArray &image, Milliseconds cpu)
{
    return ask<ReadAnswer>({encoded(ReadRequest{cpu.count()}), image}, cpu);
}

QString RecognitionProcess::endText() const
{
    if (ended == End::tooLong)
        return QStringLiteral("it took too long");
    if (WIFSIGNALED(status))
        return QStringLiteral("its process was ended by signal %1").arg(WTERMSIG(status));
    return QStringLiteral("its process ended with status %1").arg(WEXITSTATUS(status));
}

template <typename Answer>
std::optional<Answer> RecognitionProcess::ask(const QList<QByteArray> &frames, Milliseconds cpu)
{
    if (ended != End::none)
        return std::nullopt;
    const auto cpuEnd = cpuUsed() + cpu + grace;
    const auto wallEnd = Clock::now() + longestWait;
    End reason = End::crash;
    const auto mayGoOn = [&] {
        if (cancelled)
            reason = End::cancelled;
        else if (cpuUsed() > cpuEnd || Clock::now() > wallEnd)
            reason = End::tooLong;
        return reason == End::crash;
    };
    bool isSent = true;
    for (const auto &frame : frames)
        isSent = isSent && channel.send(frame, mayGoOn);
    const auto frame = isSent ? channel.receive(longestAnswer, mayGoOn) : std::nullopt;
    auto answer = frame ? decoded<Answer>(*frame) : std::nullopt;
    if (!answer)
        finish(reason, !frame);
    return answer;
}

// Of all its threads, since it began.
RecognitionProcess::Milliseconds RecognitionProcess::cpuUsed() const
{
    clockid_t clock{};
    timespec used{};
    if (::clock_getcpuclockid(pid, &clock) != 0 || ::clock_gettime(clock, &used) != 0)
        return 0ms;
    return std::chrono::duration_cast<Milliseconds>(std::chrono::seconds(used.tv_sec) +
                                                    std::chrono::nanoseconds(used.tv_nsec));
}

void RecognitionProcess::finish(End reason, bool isSilent)
{
    ended = reason;
    // One that hung up by itself is about to end; how it does tells a crash from an orderly end.
    const bool isEnding = reason == End::crash && isSilent && awaitEnd();
    if (!isEnding)
        kill();
    if (reason != End::crash)
        return;
    if (isEnding && WIFEXITED(status) && WEXITSTATUS(status) == 0)
        ended = End::byItself;
    else if (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU)
        ended = End::tooLong;
}

// On the thread of its own. Looks first and reaps under the lock, so that nobody signals an id that is free
// again.
void RecognitionProcess::reap()
{
    siginfo_t how{};
    while (::waitid(P_PID, static_cast<id_t>(pid), &how, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    const std::lock_guard lock(mutex);
    while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) { // fails where somebody else has reaped it
    }
    isReaped = true;
    changed.notify_all();
}

void RecognitionProcess::kill()
{
    std::unique_lock lock(mutex);
    if (!isReaped)
        ::kill(pid, SIGKILL);
    changed.wait(lock, [this] { return isReaped; });
}

// Whether it ends by itself within some seconds, since ending too is done when nothing else wants to run.
bool RecognitionProcess::awaitEnd()
{
    constexpr auto patience = 10s;
    const auto end = Clock::now() + patience;
    std::unique_lock lock(mutex);
    while (!isReaped && !cancelled && Clock::now() < end)
        changed.wait_for(lock, 50ms);
    return isReaped;
}
