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

// An edition, its N variant, and the numbers of Vista, 7 and 8 for both; where a system doesn't know one of
// them, the number of its plain edition.
struct Edition {
    u32 product, productN;
    int vista, vistaN, seven, sevenN, eight, eightN;
};

TEST(TcSystemInfo, EveryEditionAndItsNVariantHaveTheirNumberInEachSystem) {
    const Edition editions[] = {
        {0x0B, 0x2F, 15, 14, 25, 25, 36, 36}, {0x02, 0x05, 16, 16, 24, 24, 35, 35},
        {0x03, 0x1A, 17, 17, 26, 26, 37, 37}, {0x30, 0x31, 14, 14, 27, 27, 38, 38},
        {0x06, 0x10, 18, 18, 28, 28, 39, 39}, {0x04, 0x1B, 19, 19, 29, 29, 40, 40},
        {0x01, 0x1C, 20, 20, 30, 30, 41, 41},
    };
    for (const Edition& edition : editions) {
        EXPECT_EQ(SystemNumber(Workstation(6, 0, edition.product)), edition.vista) << edition.product;
        EXPECT_EQ(SystemNumber(Workstation(6, 0, edition.productN)), edition.vistaN) << edition.productN;
        EXPECT_EQ(SystemNumber(Workstation(6, 1, edition.product)), edition.seven) << edition.product;
        EXPECT_EQ(SystemNumber(Workstation(6, 1, edition.productN)), edition.sevenN) << edition.productN;
        EXPECT_EQ(SystemNumber(Workstation(6, 2, edition.product)), edition.eight) << edition.product;
        EXPECT_EQ(SystemNumber(Workstation(6, 2, edition.productN)), edition.eightN) << edition.productN;
    }
}

TEST(TcSystemInfo, AProductThatNoEditionHasIsThePlainSystem) {
    const std::set<u32> editions = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0B,
                                    0x10, 0x1A, 0x1B, 0x1C, 0x2F, 0x30, 0x31};
    for (u32 product = 0; product < 0x80; ++product) {
        if (!editions.count(product)) {
            EXPECT_EQ(SystemNumber(Workstation(6, 0, product)), 14) << product;
            EXPECT_EQ(SystemNumber(Workstation(6, 1, product)), 24) << product;
            EXPECT_EQ(SystemNumber(Workstation(6, 2, product)), 35) << product;
        }
        EXPECT_EQ(SystemNumber(Server(6, 0, product)), 31) << product;
        EXPECT_EQ(SystemNumber(Server(6, 1, product)), product == 0x13 || product == 0x22 ? 23 : 32)
            << product;
        EXPECT_EQ(SystemNumber(Server(6, 2, product)), 43) << product;
    }
}

TEST(TcSystemInfo, AnUnlicensedServerHasTheNumberOfWhatIsUnlicensed) {
    for (u32 minor : {0, 1, 2}) {
        EXPECT_EQ(SystemNumber(Server(6, minor, 0xABCDABCD)), 21) << minor;
        EXPECT_NE(SystemNumber(Server(6, minor, 0xABCDABCC)), 21) << minor;
        EXPECT_NE(SystemNumber(Server(6, minor, 0xABCDABCE)), 21) << minor;
        EXPECT_NE(SystemNumber(Workstation(6, minor, 0xABCDABCC)), 21) << minor;
        EXPECT_NE(SystemNumber(Workstation(6, minor, 0xABCDABCE)), 21) << minor;
    }
}

TEST(TcSystemInfo, OnlyTheSuiteBitsOfAHomeSystemMakeADifference) {
    for (int bit = 0; bit < 32; ++bit) {
        const u32 suites = u32{1} << bit;
        EXPECT_EQ(SystemNumber(Workstation(5, 1, 0, suites)), suites == 0x200 ? 9 : 10) << suites;
        EXPECT_EQ(SystemNumber(Workstation(5, 2, 0, suites)), 10) << suites;
        EXPECT_EQ(SystemNumber(Server(5, 2, 0, suites)), suites == 0x8000 ? 22 : 12) << suites;
        EXPECT_EQ(SystemNumber(Server(5, 2, 0, suites, true)), suites == 0x8000 ? 22 : 13) << suites;
    }
}

TEST(TcSystemInfo, ABuildIsThePreviewOfOneSystemOnly) {
    EXPECT_EQ(SystemNumber(Workstation(6, 2, 0x30, 0, 8102)), 42);
    EXPECT_EQ(SystemNumber(Workstation(6, 2, 0x30, 0, 8101)), 38);
    EXPECT_EQ(SystemNumber(Workstation(6, 2, 0x30, 0, 8103)), 38);
    EXPECT_EQ(SystemNumber(Workstation(6, 1, 0x30, 0, 8102)), 27);
    EXPECT_EQ(SystemNumber(Workstation(5, 2, 0, 0, 8102)), 10);
    SystemVersion server = Server(6, 2);
    server.build = 8102;
    EXPECT_EQ(SystemNumber(server), 43);
}

TEST(TcSystemInfo, VersionsBetweenThoseOfTheTableAreUnlisted) {
    for (u32 major = 0; major < 12; ++major) {
        for (u32 minor = 0; minor < 6; ++minor) {
            const bool listed = (major == 4 && minor == 0) || ((major == 5 || major == 6) && minor <= 2);
            EXPECT_EQ(SystemNumber(Workstation(major, minor)) != kUnlistedSystem, listed)
                << major << '.' << minor;
            // Of 5.1 there was no server.
            EXPECT_EQ(SystemNumber(Server(major, minor)) != kUnlistedSystem,
                      listed && !(major == 5 && minor == 1))
                << major << '.' << minor;
            for (u32 product : {0x01, 0x1C, 0x30, 0x31, 0x0B, 0x2F, 0x03, 0x1A, 0x06, 0x10, 0x04, 0x1B}) {
                if (!listed) {
                    EXPECT_EQ(SystemNumber(Workstation(major, minor, product)), kUnlistedSystem) << product;
                    EXPECT_EQ(SystemNumber(Server(major, minor, 0xABCDABCD)), kUnlistedSystem);
                }
            }
        }
    }
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
