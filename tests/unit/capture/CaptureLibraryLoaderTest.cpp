#include "capture/CaptureLibraryLoader.h"

#include <gtest/gtest.h>

#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel::test {

namespace {

const std::vector<std::string> kCaptureEntries = {"pcap_findalldevs_ex", "pcap_freealldevs", "pcap_close",
                                                  "pcap_next_ex",        "pcap_setfilter",   "pcap_compile",
                                                  "pcap_datalink",       "pcap_open"};
const std::vector<std::string> kPacketEntries = {"PacketGetVersion", "PacketCloseAdapter", "PacketRequest",
                                                 "PacketOpenAdapter"};

std::vector<std::string> AllEntries() {
    std::vector<std::string> all = kCaptureEntries;
    all.insert(all.end(), kPacketEntries.begin(), kPacketEntries.end());
    return all;
}

// Where a loaded entry point lies, in the order of AllEntries.
std::vector<void*> Addresses(const CaptureEntryPoints& entries) {
    const auto address = [](auto* function) { return reinterpret_cast<void*>(function); };
    return {address(entries.findalldevs_ex),
            address(entries.freealldevs),
            address(entries.close),
            address(entries.next_ex),
            address(entries.setfilter),
            address(entries.compile),
            address(entries.datalink),
            address(entries.open),
            address(entries.PacketGetVersion),
            address(entries.PacketCloseAdapter),
            address(entries.PacketRequest),
            address(entries.PacketOpenAdapter)};
}

class CaptureLibraryLoader : public testing::Test {
  protected:
    void SetUp() override {
        modules.modules = {"wpcap.dll", "packet.dll"};
        const std::vector<void*> addresses = Addresses(capture.EntryPoints());
        const std::vector<std::string> names = AllEntries();
        for (std::size_t i = 0; i < names.size(); ++i)
            modules.entryPoints[(i < kCaptureEntries.size() ? "wpcap.dll!" : "packet.dll!") + names[i]] =
                addresses[i];
    }
    bool Load() { return LoadCaptureLibrary(modules, captureModule, packetModule, entries); }

    ScriptedCapture capture;
    ScriptedCaptureModules modules;
    ModuleHandle captureModule = nullptr;
    ModuleHandle packetModule = nullptr;
    CaptureEntryPoints entries;
};

}  // namespace

TEST_F(CaptureLibraryLoader, LoadsBothModulesAndResolvesTheTwelveInOrder) {
    EXPECT_TRUE(Load());
    EXPECT_EQ(modules.loads, (std::vector<std::string>{"wpcap.dll", "packet.dll"}));
    EXPECT_EQ(modules.lookups, AllEntries());
    EXPECT_EQ(Addresses(entries), Addresses(capture.EntryPoints()));
    EXPECT_NE(captureModule, nullptr);
    EXPECT_NE(packetModule, nullptr);
}

TEST_F(CaptureLibraryLoader, WithoutTheCaptureLibraryFailsButResolvesTheOther) {
    modules.modules = {"packet.dll"};
    EXPECT_FALSE(Load());
    EXPECT_EQ(modules.lookups, kPacketEntries);
    EXPECT_EQ(captureModule, nullptr);
    EXPECT_NE(packetModule, nullptr);
    EXPECT_EQ(entries.open, nullptr);
    EXPECT_NE(entries.PacketGetVersion, nullptr);
}

TEST_F(CaptureLibraryLoader, WithoutTheAdapterLibraryFailsButResolvesTheOther) {
    modules.modules = {"wpcap.dll"};
    EXPECT_FALSE(Load());
    EXPECT_EQ(modules.lookups, kCaptureEntries);
    EXPECT_NE(captureModule, nullptr);
    EXPECT_EQ(packetModule, nullptr);
    EXPECT_NE(entries.open, nullptr);
    EXPECT_EQ(entries.PacketGetVersion, nullptr);
}

TEST_F(CaptureLibraryLoader, WithoutAnyLibraryLooksNothingUp) {
    modules.modules = {};
    EXPECT_FALSE(Load());
    EXPECT_EQ(modules.loads.size(), 2u);
    EXPECT_TRUE(modules.lookups.empty());
}

TEST_F(CaptureLibraryLoader, TracesItsOutcome) {
    const TracedLines traced;
    Load();
    modules.modules = {};
    Load();
    std::vector<std::string> steps;
    for (const char* message : {"begin", "end success", "begin", "Couldn't load wpcap.dll",
                                "Couldn't load packet.dll", "end failure"})
        steps.push_back(std::string("Vardel::InitializeWinPCAP: ") + message);
    EXPECT_EQ(traced.Steps(), steps);
}

class MissingEntryPoint : public CaptureLibraryLoader, public testing::WithParamInterface<std::string> {};

TEST_P(MissingEntryPoint, FailsTheLoadAndLeavesTheOthersInPlace) {
    modules.entryPoints.erase("wpcap.dll!" + GetParam());
    modules.entryPoints.erase("packet.dll!" + GetParam());
    EXPECT_FALSE(Load());
    EXPECT_EQ(modules.lookups, AllEntries()) << "the look-ups go on";
    std::vector<void*> expected = Addresses(capture.EntryPoints());
    const std::vector<std::string> names = AllEntries();
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == GetParam()) expected[i] = nullptr;
    EXPECT_EQ(Addresses(entries), expected);
    EXPECT_EQ(modules.freed, 0);
}

INSTANTIATE_TEST_SUITE_P(EachOfTheTwelve, MissingEntryPoint, testing::ValuesIn(AllEntries()),
                         [](const auto& entry) { return entry.param; });

}  // namespace vardel::test
