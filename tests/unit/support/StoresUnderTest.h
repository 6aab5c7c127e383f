// The settings stores that a test of all of them runs over, each with a place of the test's own.
#pragma once

#include <memory>
#include <string>

#include "platform/TreeSettingsStore.h"

namespace vardel::test {

class SystemStoreUnderTest;

class StoreUnderTest {
  public:
    // "Memory" or "System".
    explicit StoreUnderTest(const std::string& kind);
    ~StoreUnderTest();

    SettingsStore& Store();
    // A key that nobody else uses.
    std::string Root() const;
    std::string AutostartName() const;
    bool HasAutostart();

  private:
    TreeSettingsStore memory_;
    std::unique_ptr<SystemStoreUnderTest> system_;
    const std::string name_;
};

// The running system's part of it.
class SystemStoreUnderTest {
  public:
    virtual ~SystemStoreUnderTest() = default;
    virtual SettingsStore& Store() = 0;
    virtual bool HasAutostart(const std::string& name) = 0;
};
std::unique_ptr<SystemStoreUnderTest> MakeSystemStoreUnderTest();

}  // namespace vardel::test
