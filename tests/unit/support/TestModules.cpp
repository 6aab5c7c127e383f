#include "tests/unit/support/TestModules.h"

#include <filesystem>

#include "platform/Modules.h"

namespace vardel::test {

namespace {

std::string ModuleIn(const std::filesystem::path& folder, const std::string& name) {
    return std::filesystem::absolute(folder / (name + SystemModules().Ending())).string();
}

}  // namespace

std::string TestModule(const std::string& name) {
    return ModuleIn(VARDEL_TEST_MODULES, name);
}

std::string ExamplePlugin(const std::string& name) {
    return ModuleIn(VARDEL_EXAMPLE_PLUGINS, name);
}

std::string LanguageModule(const std::string& name) {
    return std::filesystem::absolute(std::filesystem::path(VARDEL_LANGUAGES) / (name + ".lang")).string();
}

std::string SourceFile(const std::string& name) {
    return std::filesystem::absolute(std::filesystem::path(VARDEL_SOURCE_FOLDER) / name).string();
}

}  // namespace vardel::test
