// Tracing to a file of the test's own, for as long as the object stands, and what was traced meanwhile.
#pragma once

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "foundation/TcTrace.h"
#include "platform/Folders.h"
#include "tests/unit/support/OwnDataFolder.h"

namespace vardel::test {

class TracedLines {
  public:
    TracedLines() { TcTrace::SetupTracing(1, 1); }
    ~TracedLines() {
        TcTrace::SetupTracing(0, 0);
        std::remove(Path().c_str());
    }
    TracedLines(const TracedLines&) = delete;
    TracedLines& operator=(const TracedLines&) = delete;

    // "component::function: message" of each line so far.
    std::vector<std::string> Steps() const {
        std::vector<std::string> steps;
        std::ifstream file(Path());
        for (std::string line; std::getline(file, line);) {
            const std::size_t start = line.find(' ', line.find(' ') + 1) + 1;
            steps.push_back(line.substr(start, line.rfind(" [") - start));
        }
        return steps;
    }

  private:
    static std::string Path() {
        return SystemFolders().LocalApplicationData() + SystemFolders().Separator() + kTraceFileName;
    }
    OwnDataFolder folder_;
};

}  // namespace vardel::test
