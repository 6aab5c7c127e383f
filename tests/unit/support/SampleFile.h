// The stored samples of tests/data, byte for byte.
#pragma once

#include <string>
#include <vector>

namespace vardel::test {

// `name` with its folder, below tests/data.
std::string Sample(const std::string& name);

// The samples of a folder, which its README describes, sorted.
std::vector<std::string> SampleNames(const std::string& folder);

}  // namespace vardel::test
