#include "platform/StringResources.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "resources/ResourceIds.h"

namespace vardel {
namespace {

struct Text {
    u32 id;
    const char* text;
};

// Every text of the program, so that no id or spelling moves unseen on either system.
constexpr Text kTexts[] = {
    {1, " "},
    {2, "IP - Address"},
    {3, "MAC - Address"},
    {4, "Last received packet"},
    {5, "Hostname"},
    {6, "Networkcard vendor"},
    {7, "Adv. informations"},
    {12, "IP - Address"},
    {13, "MAC - Address"},
    {14, "Hostname"},
    {15, "Last received packet"},
    {22, "State"},
    {23, "Name of plugin"},
    {24, "Description of plugin"},
    {25, "Type of plugin"},
    {32, "Vardelwatch - Error"},
    {33, "Unable to find an network adapter. Make sure\nWinPcap is installed and started !"},
    {34, "Necessary application data couldn't be allocated.\nThe application will exit."},
    {35, "General"},
    {36, "Interface"},
    {37, "Notification - part 1"},
    {38, "Notification - part 2"},
    {39, "View"},
    {40, "Reports"},
    {41, "Advanced"},
    {42, "Plugins"},
    {43, "Applications"},
    {44, "Syslog"},
    {45, "Eventlog"},
    {46, "Hosts"},
    {47, "Trusted Hosts"},
    {48, "Distrusted Hosts"},
    {49, "Watched Hosts"},
    {50, "Advanced"},
    {51, "Im-/Export"},
    {65, "Name of application"},
    {66, "Executable file"},
    {67, "Application parameter"},
    {75, "%s - %d host(s) found"},
    {76, "New host(s) found :"},
    {77, "MAC spoofing alert on following addresses :"},
    {78, "Remoteaccess detected :"},
    {79, " connected on "},
    {80, " with user '"},
    {81, "New remote share(s) found :"},
    {85, "Executable (*.exe)"},
    {86, "Settings (*.reg)"},
    {90, "Hostname not available"},
    {91, "Unknown vendor"},
    {92, "Access denied"},
    {93, "Access blocked"},
    {94, "IP - Address"},
    {95, "Hostname"},
    {96, "Last status"},
    {97, "Method"},
    {104, "Browse for folder where reports will be saved."},
    {105, "Host %s is alive !"},
    {106, "Host %s is not reachable !"},
    {115, "Adminaccount %d"},
    {116, "Unkown operating system"},
    {117, "Eventtype"},
    {118, "Infotext"},
    {119, "Hostname"},
    {120, "Add. Informationen"},
    {121, "Time"},
    {137, "Vardelwatch started successfully"},
    {138, "Vardelwatch exited"},
    {139, "Capturing started"},
    {140, "Capturing stopped"},
    {141, "New host found"},
    {142, "Share accessed from remote"},
    {143, "Watched host is online"},
    {144, "Watched host is offline"},
    {145, "Capturing stopped - no interface"},
    {146, "Syslog notification"},
    {147, "SSDP - device name found"},
    {148, "LinkStation found"},
    {157, "No administrative Account available"},
    {158,
     "Vardelwatch needs WinPCAP (https://npcap.com) !\nPlease reinstall Vardelwatch and check on the WinPCAP "
     "component."},
    {159, "Emergency"},
    {160, "Alert"},
    {161, "Critical"},
    {162, "Error"},
    {163, "Warning"},
    {164, "Notice"},
    {165, "Information"},
    {166, "Debug"},
    {167, "Unknown"},
    {169, "Number"},
    {170, "Hostname"},
    {171, "Level"},
    {172, "Facility"},
    {173, "Time"},
    {174, "Message"},
    {189, "kernel message"},
    {190, "user-level"},
    {191, "mail system"},
    {192, "system daemons"},
    {193, "security/authorization"},
    {194, "syslog"},
    {195, "line printer subsystem"},
    {196, "network news subsystem"},
    {197, "UUCP subsystem"},
    {198, "cron daemon"},
    {199, "security/authorization"},
    {200, "FTP daemon"},
    {201, "NTP subsystem"},
    {202, "log audit"},
    {203, "log alert"},
    {204, "cron daemon"},
    {205, "local0"},
    {206, "local1"},
    {207, "local2"},
    {208, "local3"},
    {209, "local4"},
    {210, "local5"},
    {211, "local6"},
    {212, "local7"},
    {213, "unknown"},
    {214, "Syslog message from %1 : [ %2 - %3 ]\n\t%4"},
    {215, "Unknown operating system"},
    {216, "Unlicensed windows"},
    {217, "No updates available!"},
    {218, "New updates are available!"},
    {500, "Trusted hosts"},
    {501, "Distrusted hosts"},
    {502, "Unknown hosts"},
};

std::string Load(u32 id, ModuleHandle module = nullptr) {
    char buffer[256];
    std::memset(buffer, 'x', sizeof buffer);
    const int length = SystemStringResources().Load(module, id, buffer, sizeof buffer);
    EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(buffer)) << id;
    return buffer;
}

TEST(StringResources, GivesEachTextUnderItsId) {
    for (const Text& row : kTexts) EXPECT_EQ(Load(row.id), row.text) << row.id;
}

TEST(StringResources, HoldsNoOtherText) {
    u32 found = 0;
    for (u32 id = 1; id < 1000; ++id) found += Load(id).empty() ? 0 : 1;
    EXPECT_EQ(found, std::size(kTexts));
}

TEST(StringResources, AnUnknownIdGivesAnEmptyTextAndZero) {
    for (u32 id : {0u, 8u, 219u, 65535u}) {
        char buffer[8] = "before";
        EXPECT_EQ(SystemStringResources().Load(nullptr, id, buffer, sizeof buffer), 0) << id;
        EXPECT_STREQ(buffer, "") << id;
    }
}

TEST(StringResources, CutsTheTextToTheBuffer) {
    char buffer[12];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(SystemStringResources().Load(nullptr, IDS_ERROR_TITLE, buffer, 6), 5);
    EXPECT_STREQ(buffer, "Varde");
    EXPECT_EQ(buffer[6], 'x');
}

TEST(StringResources, ABufferOfOneTakesTheTerminatorAlone) {
    char buffer[2] = {'x', 'x'};
    EXPECT_EQ(SystemStringResources().Load(nullptr, IDS_ERROR_TITLE, buffer, 1), 0);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(buffer[1], 'x');
}

TEST(StringResources, NamesOfRunsFitTheirFirstId) {
    EXPECT_EQ(Load(IDS_EVENT_BASE + 12), "LinkStation found");
    EXPECT_EQ(Load(IDS_SEVERITY_FIRST + 7), "Debug");
    EXPECT_EQ(Load(IDS_FACILITY_FIRST + 23), "local7");
    EXPECT_EQ(Load(IDS_PAGE_FIRST + 16), "Im-/Export");
}

TEST(StringResources, AMissingCaptureLibraryIsToldInTwoLines) {
    const std::string text = Load(IDS_NO_CAPTURE_LIBRARY);
    EXPECT_EQ(text.find("Vardelwatch needs WinPCAP ("), 0u);
    EXPECT_EQ(text.substr(text.find(") !")),
              ") !\nPlease reinstall Vardelwatch and check on the WinPCAP component.");
}

}  // namespace
}  // namespace vardel
