#include "foundation/TcSystemInfo.h"

namespace vardel {

namespace {

enum class Role { Workstation, Server };
using enum Role;

// Bits of the suite mask and numbers of GetProductInfo (the API's VER_SUITE_ and PRODUCT_ constants).
constexpr u32 kAnySuite = 0;
constexpr u32 kPersonal = 0x0200;
constexpr u32 kHomeServerSuite = 0x8000;

constexpr u32 kAnyProduct = 0;
constexpr u32 kUltimate = 0x01, kUltimateN = 0x1C;
constexpr u32 kHomeBasic = 0x02, kHomeBasicN = 0x05;
constexpr u32 kHomePremium = 0x03, kHomePremiumN = 0x1A;
constexpr u32 kEnterprise = 0x04, kEnterpriseN = 0x1B;
constexpr u32 kBusiness = 0x06, kBusinessN = 0x10;
constexpr u32 kStarter = 0x0B, kStarterN = 0x2F;
constexpr u32 kHomeServer = 0x13, kHomePremiumServer = 0x22;
constexpr u32 kProfessional = 0x30, kProfessionalN = 0x31;
constexpr u32 kUnlicensed = 0xABCDABCD;

constexpr u32 kEightDeveloperPreviewBuild = 8102;

struct NumberedSystem {
    u32 major, minor;
    Role role;
    u32 suite;    // a bit that must be set; kAnySuite: whatever
    u32 product;  // kAnyProduct: whatever
    int number;
};

// The first row that fits counts. Numbers 1 to 4 belong to systems that can't run this program.
constexpr NumberedSystem kSystemNumbers[] = {
    {4, 0, Workstation, kAnySuite, kAnyProduct, 5},    {4, 0, Server, kAnySuite, kAnyProduct, 6},
    {5, 0, Workstation, kAnySuite, kAnyProduct, 7},    {5, 0, Server, kAnySuite, kAnyProduct, 8},
    {5, 1, Workstation, kPersonal, kAnyProduct, 9},    {5, 1, Workstation, kAnySuite, kAnyProduct, 10},
    {5, 2, Workstation, kAnySuite, kAnyProduct, 10},  // XP Professional for x64
    {5, 2, Server, kHomeServerSuite, kAnyProduct, 22}, {5, 2, Server, kAnySuite, kAnyProduct, 12},
    {6, 0, Workstation, kAnySuite, kUnlicensed, 21},   {6, 0, Workstation, kAnySuite, kStarter, 15},
    {6, 0, Workstation, kAnySuite, kHomeBasic, 16},    {6, 0, Workstation, kAnySuite, kHomeBasicN, 16},
    {6, 0, Workstation, kAnySuite, kHomePremium, 17},  {6, 0, Workstation, kAnySuite, kHomePremiumN, 17},
    {6, 0, Workstation, kAnySuite, kBusiness, 18},     {6, 0, Workstation, kAnySuite, kBusinessN, 18},
    {6, 0, Workstation, kAnySuite, kEnterprise, 19},   {6, 0, Workstation, kAnySuite, kEnterpriseN, 19},
    {6, 0, Workstation, kAnySuite, kUltimate, 20},     {6, 0, Workstation, kAnySuite, kUltimateN, 20},
    {6, 0, Workstation, kAnySuite, kAnyProduct, 14},   {6, 0, Server, kAnySuite, kUnlicensed, 21},
    {6, 0, Server, kAnySuite, kAnyProduct, 31},        {6, 1, Workstation, kAnySuite, kUnlicensed, 21},
    {6, 1, Workstation, kAnySuite, kStarter, 25},      {6, 1, Workstation, kAnySuite, kStarterN, 25},
    {6, 1, Workstation, kAnySuite, kHomePremium, 26},  {6, 1, Workstation, kAnySuite, kHomePremiumN, 26},
    {6, 1, Workstation, kAnySuite, kProfessional, 27}, {6, 1, Workstation, kAnySuite, kProfessionalN, 27},
    {6, 1, Workstation, kAnySuite, kBusiness, 28},     {6, 1, Workstation, kAnySuite, kBusinessN, 28},
    {6, 1, Workstation, kAnySuite, kEnterprise, 29},   {6, 1, Workstation, kAnySuite, kEnterpriseN, 29},
    {6, 1, Workstation, kAnySuite, kUltimate, 30},     {6, 1, Workstation, kAnySuite, kUltimateN, 30},
    {6, 1, Workstation, kAnySuite, kAnyProduct, 24},   {6, 1, Server, kAnySuite, kUnlicensed, 21},
    {6, 1, Server, kAnySuite, kHomeServer, 23},        {6, 1, Server, kAnySuite, kHomePremiumServer, 23},
    {6, 1, Server, kAnySuite, kAnyProduct, 32},        {6, 2, Workstation, kAnySuite, kUnlicensed, 21},
    {6, 2, Workstation, kAnySuite, kStarter, 36},      {6, 2, Workstation, kAnySuite, kStarterN, 36},
    {6, 2, Workstation, kAnySuite, kHomePremium, 37},  {6, 2, Workstation, kAnySuite, kHomePremiumN, 37},
    {6, 2, Workstation, kAnySuite, kProfessional, 38}, {6, 2, Workstation, kAnySuite, kProfessionalN, 38},
    {6, 2, Workstation, kAnySuite, kBusiness, 39},     {6, 2, Workstation, kAnySuite, kBusinessN, 39},
    {6, 2, Workstation, kAnySuite, kEnterprise, 40},   {6, 2, Workstation, kAnySuite, kEnterpriseN, 40},
    {6, 2, Workstation, kAnySuite, kUltimate, 41},     {6, 2, Workstation, kAnySuite, kUltimateN, 41},
    {6, 2, Workstation, kAnySuite, kAnyProduct, 35},   {6, 2, Server, kAnySuite, kUnlicensed, 21},
    {6, 2, Server, kAnySuite, kAnyProduct, 43},
};

bool Fits(const NumberedSystem& row, const SystemVersion& version) {
    return row.major == version.major && row.minor == version.minor &&
           (row.role == Server) == version.server &&
           (row.suite == kAnySuite || (version.suites & row.suite) != 0) &&
           (row.product == kAnyProduct || row.product == version.product);
}

}  // namespace

int SystemNumber(const SystemVersion& version) {
    constexpr int kServer2003 = 12, kServer2003SecondRelease = 13, kEightDeveloperPreview = 42;
    for (const NumberedSystem& row : kSystemNumbers) {
        if (!Fits(row, version)) continue;
        if (row.number == kServer2003 && version.secondRelease) return kServer2003SecondRelease;
        const bool preview = version.minor == 2 && version.major == 6 && !version.server &&
                             version.build == kEightDeveloperPreviewBuild;
        return preview ? kEightDeveloperPreview : row.number;
    }
    return kUnlistedSystem;
}

TcSystemInfo* TcSystemInfo::CreateObject() {
    return new TcSystemInfo;
}

bool TcSystemInfo::DestroyObject(TcSystemInfo* object) {
    delete object;
    return object != nullptr;
}

int TcSystemInfo::DetectOSVersion() {
    SystemVersion version;
    return QuerySystemVersion(version) ? SystemNumber(version) : kUnlistedSystem;
}

int TcSystemInfo::DetectComCtrlVersion() {
    return static_cast<int>(QueryControlsVersion());
}

}  // namespace vardel
