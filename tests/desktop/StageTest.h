#pragma once

#include "tests/desktop/Stage.h"

#include <gtest/gtest.h>

// A test on a stage of its own. What the stage awaits in vain is thrown, and GoogleTest tells it as the
// test's failure.
class StageTest : public testing::Test {
protected:
    Stage stage{NORVANE_PROGRAM, QDir(qEnvironmentVariable("HOME"))};
};
