// A second machine on the test's own network: a process with a network of its own, at the other end of the pair.
//
// Started before the test process has threads, ended with the object or, where the test dies first, with the test.
#pragma once

#include <sys/types.h>

#include <string>

namespace vardel::test {

class OtherHost {
  public:
    OtherHost();
    ~OtherHost();
    OtherHost(const OtherHost&) = delete;
    OtherHost& operator=(const OtherHost&) = delete;

    // Takes the network interface `name` of the test's network over.
    bool Takes(const std::string& name);
    // A command of the shell, run on the other machine. False when it fails.
    bool Runs(const std::string& command);

  private:
    pid_t process_ = -1;
    int commands_ = -1;  // one command a message
    bool ready_ = false;
};

}  // namespace vardel::test
