// Shows on a real desktop, with real programs, what Norvane does, and keeps screenshots of it.
//
//     norvane-demo NORVANE OUTPUT_FOLDER [PART_OF_A_STEP_NAME]
//
// Each step prints a line as it passes. A step that fails is told with its reason and the rest goes on; the
// last line counts both. Wants a private desktop with a window manager.
#include "tests/desktop/Screenshot.h"
#include "tests/desktop/Stage.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

namespace {

Steps everyStep()
{
    Steps all;
    for (const auto &part :
         {textSteps(), fileSteps(), pictureSteps(), readingSteps(), privacySteps(), panelSteps(), lifeSteps(),
          screenSteps(), looksSteps(), viewSteps(), traySteps()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// Brings the stage back to where each step begins: Norvane runs, its panel is closed.
void tidy(Stage &stage)
{
    stage.closePanel();
    if (!stage.isRunning())
        stage.start();
}

bool passes(Stage &stage, const Step &step, size_t number, const QDir &output)
{
    try {
        tidy(stage);
        step.show(stage);
        std::printf("ok %zu: %s\n", number, step.name);
        std::fflush(stdout);
        return true;
    } catch (const StepFailure &failure) {
        std::printf("not ok %zu: %s\n    %s\n", number, step.name, qPrintable(failure.why));
        std::fflush(stdout);
        screenshot(stage.desktop).save(output.filePath(QStringLiteral("failed-%1.png").arg(number)));
        return false;
    }
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fputs("usage: norvane-demo NORVANE OUTPUT_FOLDER [PART_OF_A_STEP_NAME]\n", stderr);
        return 2;
    }
    const QDir output(arguments[2]);
    if (!output.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "Cannot make %s\n", qPrintable(output.path()));
        return 2;
    }
    for (const auto &old : output.entryList({QStringLiteral("*.png"), QStringLiteral("*.log")}, QDir::Files))
        QFile::remove(output.filePath(old));
    Stage stage(QFileInfo(arguments[1]).absoluteFilePath(), QDir(output.absolutePath()));
    size_t number = 0;
    int passed = 0;
    int failed = 0;
    for (const auto &step : everyStep()) {
        ++number;
        if (arguments.size() > 3 && !QString::fromUtf8(step.name).contains(arguments[3]))
            continue;
        passes(stage, step, number, output) ? ++passed : ++failed;
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}
