#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/unit/support/RegistryDump.h"

namespace vardel::test {

std::string SampleBytes(const std::string& name) {
    std::ifstream file(std::string(VARDEL_TEST_DATA) + "/settings/" + name, std::ios::binary);
    if (!file) throw std::runtime_error("no sample " + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace vardel::test
