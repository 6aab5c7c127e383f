#include "tests/unit/support/TestModules.h"

#include <filesystem>

#include "platform/Modules.h"

namespace vardel::test {

std::string TestModule(const std::string& name) {
    const std::filesystem::path folder = VARDEL_TEST_MODULES;
    return std::filesystem::absolute(folder / (name + SystemModules().Ending())).string();
}

}  // namespace vardel::test
