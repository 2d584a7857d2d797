// Shows on a real desktop, with real programs, what Norvane does, and keeps screenshots of it.
//
//     norvane-demo NORVANE OUTPUT_FOLDER [PART_OF_A_STEP_NAME]
//
// Each step prints a line as it passes. A step that fails is told with its reason and the rest goes on; the
// last line counts both. Wants a private desktop with a window manager.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Step.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cstdio>

namespace {

std::vector<Step> &defined()
{
    static std::vector<Step> steps;
    return steps;
}

// What a step leaves in the history is there for the next ones, so the files have an order.
std::vector<Step> everyStep()
{
    std::vector<Step> all;
    for (const char *chapter : {"Text", "Files", "Pictures", "Reading", "Privacy", "Panel", "Life", "Screens",
                                "Looks", "Views", "Tray"})
        std::copy_if(defined().begin(), defined().end(), std::back_inserter(all), [&](const Step &step) {
            return QString(step.file).endsWith(QString("/Demo") + chapter + ".cpp");
        });
    return all;
}

struct LeftOut {};

// Brings the stage back to where each step begins: Norvane runs, its panel is closed.
void tidy(Stage &stage)
{
    stage.closePanel();
    if (!stage.isRunning())
        stage.start();
}

// Adds to the counts of those that passed and failed.
void play(Stage &stage, const Step &step, size_t number, const QDir &output, std::array<int, 2> &counts)
{
    try {
        tidy(stage);
        step.show(stage);
        std::printf("ok %zu: %s\n", number, step.name);
        ++counts[0];
    } catch (const LeftOut &) {
        return;
    } catch (const StepFailure &failure) {
        std::printf("not ok %zu: %s\n    %s\n", number, step.name, failure.what());
        screenshot(stage.desktop).save(output.filePath(QString("failed-%1.png").arg(number)));
        ++counts[1];
    }
    std::fflush(stdout);
}

} // namespace

Step::Step(const char *what, const char *where, void (*how)(Stage &)) : name(what), file(where), show(how)
{
    defined().push_back(*this);
}

void leaveOutUnless(bool possible)
{
    if (!possible)
        throw LeftOut();
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: norvane-demo NORVANE OUTPUT_FOLDER [PART_OF_A_STEP_NAME]\n", stderr);
        return 2;
    }
    const QDir output(arguments[2]);
    if (!output.mkpath(".")) {
        std::fprintf(stderr, "Cannot make %s\n", qPrintable(output.path()));
        return 2;
    }
    for (const auto &old : output.entryList({"*.png", "*.log"}, QDir::Files))
        QFile::remove(output.filePath(old));
    Stage stage(QFileInfo(arguments[1]).absoluteFilePath(), QDir(output.absolutePath()));
    size_t number = 0;
    std::array<int, 2> counts{};
    for (const auto &step : everyStep()) {
        ++number;
        if (arguments.size() > 3 && !QString(step.name).contains(arguments[3]))
            continue;
        play(stage, step, number, output, counts);
    }
    std::printf("%d passed, %d failed\n", counts[0], counts[1]);
    return counts[1] == 0 ? 0 : 1;
}
