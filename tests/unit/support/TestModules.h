// What was built for tests to load, and what they read of the source.
#pragma once

#include <string>

namespace vardel::test {

// The full path of a test module; `name` without the system's ending.
std::string TestModule(const std::string& name);
// The same of an example plugin.
std::string ExamplePlugin(const std::string& name);
// The same of a language module, which has the same ending on every system.
std::string LanguageModule(const std::string& name);
// The full path of a file of the source, named from its root.
std::string SourceFile(const std::string& name);

}  // namespace vardel::test
