#include "Platform/linux/tesseract/RecognitionServer.h"

#include "Platform/ImageFile.h"
#include "Platform/linux/tesseract/PageReader.h"
#include "Platform/linux/tesseract/RecognitionProtocol.h"

#include <QElapsedTimer>
#include <QFile>
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>

using namespace RecognitionProtocol;

namespace {

constexpr qint64 idleMilliseconds = 60'000;
constexpr qint64 loadMilliseconds = 20'000;
constexpr qint64 graceSeconds = 3; // after its time is up, for what is not asked whether it may go on
constexpr qsizetype longestRequest = qsizetype{1} << 20;
constexpr int longestSide = 16'383; // pixels: the engine takes twice that, and small text is doubled

qint64 cpuMilliseconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1'000'000;
}

// The kernel ends a process that is past this, be it in a decoder that asks nobody.
void limitCpu(qint64 milliseconds)
{
    rlimit limit{};
    ::getrlimit(RLIMIT_CPU, &limit);
    limit.rlim_cur = static_cast<rlim_t>((cpuMilliseconds() + milliseconds) / 1000 + graceSeconds);
    ::setrlimit(RLIMIT_CPU, &limit);
}

} // namespace

RecognitionServer::RecognitionServer(int socket) : channel(socket) {}

RecognitionServer::~RecognitionServer() = default;

int RecognitionServer::run()
{
    if (!channel.send(encoded(Hello()), [] { return true; }))
        return EXIT_SUCCESS;
    for (;;) {
        QElapsedTimer idle;
        idle.start();
        const auto frame =
            channel.receive(longestRequest, [&idle] { return !idle.hasExpired(idleMilliseconds); });
        if (!frame || !answer(*frame))
            return EXIT_SUCCESS;
    }
}

bool RecognitionServer::answer(const QByteArray &frame)
{
    const auto always = [] { return true; };
    if (const auto request = decoded<LoadRequest>(frame))
        return channel.send(encoded(LoadAnswer{load(*request)}), always);
    const auto request = decoded<ReadRequest>(frame);
    if (!request)
        return false;
    const auto image = channel.receive(longestImage, always);
    return image && channel.send(encoded(read(*request, *image)), always);
}

bool RecognitionServer::load(const LoadRequest &request)
{
    limitCpu(loadMilliseconds);
    reader.reset(); // first: two would need twice the memory
    reader = PageReader::open(request.dataFolder, request.codes);
    return reader != nullptr;
}

ReadAnswer RecognitionServer::read(const ReadRequest &request, const QByteArray &image) const
{
    const qint64 end = cpuMilliseconds() + request.cpuMilliseconds;
    const auto isExpired = [end] { return cpuMilliseconds() > end; };
    limitCpu(request.cpuMilliseconds);
    ImageFile file = readImageFile(image, longestSide);
    if (file.picture.isNull())
        return {Outcome::unreadable, {}};
    if (!reader)
        return {Outcome::failed, {}};
    auto fragments = reader->read(file.picture, isExpired);
    if (!fragments)
        return {isExpired() ? Outcome::expired : Outcome::failed, {}};
    return {Outcome::read, {file.uprightSize, std::move(*fragments)}};
}

void humble()
{
    constexpr int forProcess = 1; // ioprio_set: IOPRIO_WHO_PROCESS
    constexpr int idleClass = 3 << 13;
    ::setpriority(PRIO_PROCESS, 0, 19);
    const sched_param nothing{};
    ::sched_setscheduler(0, SCHED_IDLE, &nothing);
    ::syscall(SYS_ioprio_set, forProcess, 0, idleClass);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which reserve terabytes
    constexpr rlim_t mostMemory = 1'500'000'000;
    const rlimit memory{mostMemory, mostMemory};
    ::setrlimit(RLIMIT_AS, &memory);
#endif
    if (QFile file(QStringLiteral("/proc/self/oom_score_adj")); file.open(QIODevice::WriteOnly))
        file.write("1000");
}

void endWith(int socket)
{
    std::thread([socket] {
        pollfd watched{socket, POLLRDHUP, 0};
        while (::poll(&watched, 1, -1) < 0 && errno == EINTR) {
        }
        ::_exit(EXIT_SUCCESS);
    }).detach();
}
