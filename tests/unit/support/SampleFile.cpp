#include "tests/unit/support/SampleFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace vardel::test {

std::string Sample(const std::string& name) {
    std::ifstream file(std::string(VARDEL_TEST_DATA) + "/" + name, std::ios::binary);
    if (!file) throw std::runtime_error("no sample " + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> SampleNames(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(VARDEL_TEST_DATA) + "/" + folder)) {
        const std::string name = entry.path().filename().string();
        if (name != "README") names.push_back(folder + "/" + name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace vardel::test
