#include "foundation/TcSystemInfo.h"

#include <gtest/gtest.h>

#include <set>

namespace vardel {
namespace {

struct Row {
    SystemVersion version;
    int number;
};

SystemVersion Workstation(u32 major, u32 minor, u32 product = 0, u32 suites = 0, u32 build = 0) {
    return {.major = major, .minor = minor, .build = build, .suites = suites, .product = product};
}

SystemVersion Server(u32 major, u32 minor, u32 product = 0, u32 suites = 0, bool secondRelease = false) {
    return {.major = major,
            .minor = minor,
            .server = true,
            .secondRelease = secondRelease,
            .suites = suites,
            .product = product};
}

TEST(TcSystemInfo, EverySystemHasItsNumber) {
    const Row rows[] = {
        {Workstation(4, 0), 5},
        {Server(4, 0), 6},
        {Workstation(5, 0), 7},
        {Server(5, 0), 8},
        {Workstation(5, 1, 0, 0x300), 9},
        {Workstation(5, 1, 0, 0x100), 10},
        {Workstation(5, 2, 0, 0x100), 10},
        {Server(5, 2), 12},
        {Server(5, 2, 0, 0, true), 13},
        {Server(5, 2, 0, 0x8000), 22},
        {Workstation(6, 0), 14},
        {Workstation(6, 0, 0x0B), 15},
        {Workstation(6, 0, 0x02), 16},
        {Workstation(6, 0, 0x05), 16},
        {Workstation(6, 0, 0x03), 17},
        {Workstation(6, 0, 0x06), 18},
        {Workstation(6, 0, 0x10), 18},
        {Workstation(6, 0, 0x04), 19},
        {Workstation(6, 0, 0x01), 20},
        {Workstation(6, 0, 0xABCDABCD), 21},
        {Workstation(6, 1, 0xABCDABCD), 21},
        {Workstation(6, 2, 0xABCDABCD), 21},
        {Server(6, 1, 0x13), 23},
        {Server(6, 1, 0x22), 23},
        {Workstation(6, 1), 24},
        {Workstation(6, 1, 0x02), 24},
        {Workstation(6, 1, 0x0B), 25},
        {Workstation(6, 1, 0x03), 26},
        {Workstation(6, 1, 0x30), 27},
        {Workstation(6, 1, 0x06), 28},
        {Workstation(6, 1, 0x04), 29},
        {Workstation(6, 1, 0x01), 30},
        {Server(6, 0, 0x07), 31},
        {Server(6, 1, 0x07), 32},
        {Workstation(6, 2, 0x65), 35},
        {Workstation(6, 2, 0x0B), 36},
        {Workstation(6, 2, 0x03), 37},
        {Workstation(6, 2, 0x30), 38},
        {Workstation(6, 2, 0x06), 39},
        {Workstation(6, 2, 0x04), 40},
        {Workstation(6, 2, 0x01), 41},
        {Workstation(6, 2, 0x01, 0, 8102), 42},
        {Server(6, 2, 0x07), 43},
    };
    for (const Row& row : rows)
        EXPECT_EQ(SystemNumber(row.version), row.number)
            << row.version.major << '.' << row.version.minor << " product " << row.version.product;
}

TEST(TcSystemInfo, SystemsNewerThanTheTableShareANumberAboveIt) {
    for (const SystemVersion& version :
         {Workstation(6, 3, 0x30), Server(6, 3), Workstation(10, 0, 0x30, 0, 22631), Server(10, 0),
          Workstation(11, 0)})
        EXPECT_EQ(SystemNumber(version), kUnlistedSystem);
    EXPECT_GE(kUnlistedSystem, 7) << "windows can be layered there";
    const std::set<int> named = {11, 33, 34};
    EXPECT_EQ(named.count(kUnlistedSystem), 0u);
}

TEST(TcSystemInfo, TheRunningSystemHasANumber) {
    TcSystemInfo* information = TcSystemInfo::CreateObject();
    ASSERT_NE(information, nullptr);
    EXPECT_GE(information->DetectOSVersion(), 7);
    EXPECT_LE(information->DetectOSVersion(), kUnlistedSystem);
    EXPECT_GE(information->DetectComCtrlVersion(), 0);
    EXPECT_TRUE(TcSystemInfo::DestroyObject(information));
    EXPECT_FALSE(TcSystemInfo::DestroyObject(nullptr));
}

}  // namespace
}  // namespace vardel
