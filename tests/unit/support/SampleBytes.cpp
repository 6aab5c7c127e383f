#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/unit/support/SampleBytes.h"

namespace vardel::test {

std::string SamplePath(const std::string& name) { return VARDEL_TEST_DATA "/" + name; }

std::string SampleBytes(const std::string& name) {
    std::ifstream file(SamplePath(name), std::ios::binary);
    if (!file) throw std::runtime_error("no sample " + name);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace vardel::test
