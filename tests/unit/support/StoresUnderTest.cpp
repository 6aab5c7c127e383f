#include "tests/unit/support/StoresUnderTest.h"

#include <random>

namespace vardel::test {

namespace {

std::string OwnName() {
    std::random_device random;
    return "Vardelwatch test " + std::to_string(random());
}

}  // namespace

StoreUnderTest::StoreUnderTest(const std::string& kind)
    : system_(kind == "System" ? MakeSystemStoreUnderTest() : nullptr), name_(OwnName()) {}

StoreUnderTest::~StoreUnderTest() {
    Store().RemoveAutostart(AutostartName().c_str());
}

SettingsStore& StoreUnderTest::Store() {
    return system_ ? system_->Store() : memory_;
}

std::string StoreUnderTest::Root() const {
    return name_;
}

std::string StoreUnderTest::AutostartName() const {
    return name_;
}

bool StoreUnderTest::HasAutostart() {
    return system_ ? system_->HasAutostart(name_) : memory_.Autostarts().count(name_) != 0;
}

}  // namespace vardel::test
