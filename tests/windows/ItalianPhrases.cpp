#include "Vesmo/Localisation.h"

#include <gtest/gtest.h>

namespace {

// The tests read what the windows say in one language, whatever the machine's is.
class ItalianPhrases : public ::testing::Environment {
    void SetUp() override { loadTranslations(QStringLiteral("it")); }
};

[[maybe_unused]] const auto *const italianPhrases = ::testing::AddGlobalTestEnvironment(new ItalianPhrases);

} // namespace
