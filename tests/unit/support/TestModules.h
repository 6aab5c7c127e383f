// The modules that were built for tests to load (tests/modules).
#pragma once

#include <string>

namespace vardel::test {

// The full path of a test module; `name` without the system's ending.
std::string TestModule(const std::string& name);

}  // namespace vardel::test
