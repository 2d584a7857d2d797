// How much is read wrongly, class by class, and what it costs in processor time, beside the plain command on
// the same pictures.
//
// Fonts that are not installed are drawn with others; fonts-liberation, fonts-cantarell,
// fonts-roboto-unhinted, fonts-open-sans, fonts-lato, fonts-inter and fonts-hack make the set as varied as it
// was when it was measured.
//
// RecognitionBench [--fresh SEED] [--only CLASS] [--folder FOLDER] [--keep FOLDER] [--no-command]
//   --fresh   other texts, fonts and colours: what nothing was tuned on
//   --folder  reads NAME.png with the truth in NAME.txt instead of drawing samples: take-screenshots, beside
//             this file, makes such a folder with real programs
//   --keep    writes each picture, its truth and what was read into a folder

#include "Platform/linux/tesseract/PageReader.h"
#include "Vesmo/TextRecognizer.h"
#include "bench/recognition/ErrorRate.h"
#include "bench/recognition/SampleScreens.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <ctime>
#include <map>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QString dataFolder = QStringLiteral("/usr/share/tesseract-ocr/5/tessdata");

struct Reading {
    QString text;
    double seconds = 0; // of processor time
};

// Errors and costs added up over the pictures of one class.
struct Tally {
    int pictures = 0;
    qsizetype characters = 0;
    qsizetype errors = 0;
    qsizetype commandErrors = 0;
    double seconds = 0;
    double commandSeconds = 0;

    void add(const Tally &other)
    {
        pictures += other.pictures;
        characters += other.characters;
        errors += other.errors;
        commandErrors += other.commandErrors;
        seconds += other.seconds;
        commandSeconds += other.commandSeconds;
    }
};

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// The text that the program would keep.
QString textOf(const std::vector<RecognizedFragment> &fragments, QSize size)
{
    std::vector<TextRecognizer::Piece> pieces;
    for (const RecognizedFragment &fragment : fragments) {
        const QRectF &box = fragment.box;
        if (fragment.confidence >= 0.3F && !fragment.text.trimmed().isEmpty())
            pieces.push_back(
                {fragment.text.trimmed(), QRectF(box.x() * size.width(), box.y() * size.height(),
                                                 box.width() * size.width(), box.height() * size.height())});
    }
    return TextRecognizer::layout(pieces);
}

Reading readHere(PageReader &reader, const QImage &image)
{
    const double begin = processorSeconds();
    const auto fragments = reader.read(image, [] { return false; });
    const double seconds = processorSeconds() - begin;
    return {fragments ? textOf(*fragments, image.size()) : QStringLiteral("FAILED"), seconds};
}

// The plain command, with its own start, which a single picture would cost too.
Reading readByCommand(const QString &file)
{
    const QTemporaryDir folder;
    const QByteArray out = folder.filePath(QStringLiteral("out")).toLocal8Bit();
    const QByteArray in = file.toLocal8Bit();
    const pid_t child = fork();
    if (child == 0) {
        if (freopen("/dev/null", "w", stderr) == nullptr)
            _exit(1);
        execlp("tesseract", "tesseract", in.constData(), out.constData(), "-l", "ita+eng", nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    QFile result(QString::fromLocal8Bit(out) + QStringLiteral(".txt"));
    const bool open = result.open(QIODevice::ReadOnly);
    return {open ? QString::fromUtf8(result.readAll()) : QString(),
            static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec)};
}

void keep(const QDir &folder, const QString &name, const Sample &sample, const QString &read)
{
    sample.image.save(folder.filePath(name + QStringLiteral(".png")));
    for (const auto &[ending, text] :
         {std::pair{QStringLiteral(".txt"), sample.truth}, {QStringLiteral(".read"), read}}) {
        QFile file(folder.filePath(name + ending));
        if (file.open(QIODevice::WriteOnly))
            file.write(text.toUtf8() + '\n');
    }
}

class Bench {
public:
    Bench(PageReader &pageReader, const QCommandLineParser &arguments)
        : reader(pageReader), options(arguments)
    {
        if (options.isSet(QStringLiteral("keep")))
            QDir(options.value(QStringLiteral("keep"))).mkpath(QStringLiteral("."));
    }

    void measure(const Sample &sample)
    {
        const QString kind = sample.kind;
        Tally &tally = tallies[kind];
        const QString truth = comparable(sample.truth);
        const Reading here = readHere(reader, sample.image);
        const QString name =
            QString(kind).replace(u' ', u'-') + QStringLiteral("-%1").arg(tally.pictures, 2, 10, QChar(u'0'));
        Tally one{1, truth.size(), editDistance(comparable(here.text), truth), 0, here.seconds, 0};
        if (options.isSet(QStringLiteral("keep")))
            keep(QDir(options.value(QStringLiteral("keep"))),
                 QStringLiteral("%1-e%2").arg(name).arg(one.errors), sample, here.text);
        if (!options.isSet(QStringLiteral("no-command"))) {
            const QString file = scratch.filePath(QStringLiteral("sample.png"));
            sample.image.save(file);
            const Reading command = readByCommand(file);
            one.commandErrors = editDistance(comparable(command.text), truth);
            one.commandSeconds = command.seconds;
        }
        tally.add(one);
    }

    void print(const QStringList &order) const
    {
        std::printf("%-20s %4s %7s %7s %7s %7s %6s\n", "class", "n", "chars", "command", "ours", "CPU s",
                    "ratio");
        Tally all;
        for (const QString &kind : order) {
            if (!tallies.contains(kind))
                continue;
            printLine(kind, tallies.at(kind));
            all.add(tallies.at(kind));
        }
        printLine(QStringLiteral("all"), all);
    }

private:
    static void printLine(const QString &kind, const Tally &tally)
    {
        const double base = tally.characters > 0 ? 100.0 / static_cast<double>(tally.characters) : 1;
        std::printf("%-20s %4d %7lld %7.2f %7.2f %7.2f %6.2f%s\n", qUtf8Printable(kind), tally.pictures,
                    static_cast<long long>(tally.characters), static_cast<double>(tally.commandErrors) * base,
                    static_cast<double>(tally.errors) * base, tally.seconds,
                    tally.commandSeconds > 0 ? tally.seconds / tally.commandSeconds : 0.0,
                    tally.characters > 0 ? "" : "  (characters)");
    }

    PageReader &reader;
    const QCommandLineParser &options;
    std::map<QString, Tally> tallies;
    QTemporaryDir scratch;
};

void measureDrawn(Bench &bench, const QCommandLineParser &options, QStringList &order)
{
    const bool wide = options.isSet(QStringLiteral("fresh"));
    const quint32 seed = wide ? options.value(QStringLiteral("fresh")).toUInt() : 20261124U;
    const QString only = options.value(QStringLiteral("only"));
    quint32 number = 0;
    for (const auto *kinds : {&screenKinds(), &cameraKinds(), &programKinds()}) {
        for (const SampleKind &kind : *kinds) {
            ++number;
            const QString name = QString::fromLatin1(kind.name);
            order << name;
            for (int i = 0; i < kind.count; ++i) {
                if (!only.isEmpty() && !only.split(u',').contains(name))
                    break;
                QRandomGenerator random(seed * 1000003U + number * 1009U + static_cast<quint32>(i));
                Sample sample = kind.make(random, wide);
                sample.kind = name;
                bench.measure(sample);
            }
        }
    }
}

void measureFolder(Bench &bench, const QDir &folder, QStringList &order)
{
    for (const QString &file :
         folder.entryList({QStringLiteral("*.png"), QStringLiteral("*.jpg")}, QDir::Files, QDir::Name)) {
        QFile truth(folder.filePath(file.chopped(4) + QStringLiteral(".txt")));
        if (!truth.open(QIODevice::ReadOnly))
            continue;
        order << file.chopped(4);
        bench.measure({file.chopped(4), QImage(folder.filePath(file)), QString::fromUtf8(truth.readAll())});
    }
}

} // namespace

int main(int argc, char **argv)
{
    // The library reads it when it is loaded; more threads than one cost more than they bring.
    if (qgetenv("OMP_THREAD_LIMIT") != "1") {
        qputenv("OMP_THREAD_LIMIT", "1");
        qputenv("QT_QPA_PLATFORM", "offscreen");
        execv("/proc/self/exe", argv);
        return 1;
    }
    const QGuiApplication application(argc, argv);
    QCommandLineParser options;
    for (const char *name : {"fresh", "only", "folder", "keep"})
        options.addOption({QString::fromLatin1(name), {}, QStringLiteral("value")});
    options.addOption(QCommandLineOption(QStringLiteral("no-command")));
    options.process(application);
    const auto reader = PageReader::open(dataFolder, {QStringLiteral("ita"), QStringLiteral("eng")});
    if (!reader)
        return 1;
    Bench bench(*reader, options);
    QStringList order;
    if (options.isSet(QStringLiteral("folder")))
        measureFolder(bench, QDir(options.value(QStringLiteral("folder"))), order);
    else
        measureDrawn(bench, options, order);
    bench.print(order);
    return 0;
}
