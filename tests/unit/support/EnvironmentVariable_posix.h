// An environment variable for the life of the object; null takes it out.
#pragma once

#include <stdlib.h>

#include <string>

namespace vardel::test {

class EnvironmentVariable {
  public:
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = getenv(name)) {
            hadValue_ = true;
            old_ = old;
        }
        Put(value);
    }
    ~EnvironmentVariable() { Put(hadValue_ ? old_.c_str() : nullptr); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  private:
    void Put(const char* value) const {
        if (value)
            setenv(name_, value, 1);
        else
            unsetenv(name_);
    }

    const char* name_;
    bool hadValue_ = false;
    std::string old_;
};

}  // namespace vardel::test
