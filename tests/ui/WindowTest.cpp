#include "ui/WindowTest.h"

namespace {

// Registered before main; the environment goes when the tests have run.
[[maybe_unused]] testing::Environment* const kEnvironment =
    testing::AddGlobalTestEnvironment(new CApplicationEnvironment);

}  // namespace
