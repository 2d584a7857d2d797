#pragma once

#include "tests/desktop/Stage.h"

// One thing that the demonstration shows:
//
//     STEP("Esc closes the panel")
//     {
//         stage.openPanel();
//         …
//     }
//
// It returns when it was seen and throws StepFailure otherwise.
#define STEP(text) STEP_AT(text, __LINE__)
#define STEP_AT(text, line) STEP_OF_LINE(text, line)
#define STEP_OF_LINE(text, line)                                                                             \
    void step##line(Stage &stage);                                                                           \
    const Step step##line##Definition{text, __FILE__, &step##line};                                          \
    void step##line([[maybe_unused]] Stage &stage)

struct Step {
    Step(const char *name, const char *file, void (*show)(Stage &));

    const char *name;
    const char *file;
    void (*show)(Stage &);
};

// Ends a step that is not possible here without counting it.
void leaveOutUnless(bool possible);
