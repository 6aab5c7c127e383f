// The samples of tests/data, each by its path below that folder.
#pragma once

#include <string>

namespace vardel::test {

std::string SamplePath(const std::string& name);

// Throws where there is no such sample.
std::string SampleBytes(const std::string& name);

}  // namespace vardel::test
