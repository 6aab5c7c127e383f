// The report generator against its literal twin, over random templates and tables.
#include <gtest/gtest.h>

#include "frame/ReportGenerator.h"
#include "tests/unit/support/LiteralReport.h"
#include "tests/unit/support/ReportLan.h"
#include "tests/unit/support/Twins.h"

namespace vardel::test {
namespace {

constexpr u64 kTemplates = 400'000;
constexpr u64 kTemplatesALan = 200;

const std::vector<std::string> kBlockNames = {"HOSTS",         "HOSTS_TRUSTED", "HOSTS_DISTRUSTED",
                                              "HOSTS_UNKNOWN", "HOSTS_WATCHED", "SHARE_ACCESS"};
const std::vector<std::string> kTags = {
    "%VDL_HOSTCOUNT%",         "%VDL_HOSTCOUNT_TRUST%", "%VDL_HOSTCOUNT_DISTRUST%", "%VDL_HOSTCOUNT_UNKNOWN%",
    "%VDL_HOSTCOUNT_WATCHED%", "%VDL_HOST_NAME%",       "%VDL_HOST_IP%",            "%VDL_HOST_MAC%",
    "%VDL_HOST_OS%",           "%VDL_HOST_VENDOR%",     "%VDL_HOST_STATE%",         "%VDL_SHARE_HOST%",
    "%VDL_SHARE_NAME%",        "%VDL_SHARE_USER%"};
// Pieces that make tags and markers with others, or nearly do.
const std::vector<std::string> kPieces = {"%",          "VDL_HOST_NAME%", "%VDL_HOST", "<",        "<VDL_HOSTS_TR",
                                          "USTED - begin>", "\n",         "\r\n",      "<b>100%</b>", "text",
                                          "<VDL_HOSTS - Begin>"};
// Ordinary values: none makes a tag or a marker, with whatever stands beside it.
const std::vector<std::string> kTame = {"", "pc-7", "10.0.0.9", "Acme Cards", "x"};
const std::vector<std::string> kHostile = {"",
                                           "pc-7",
                                           "%VDL_HOST_IP%",
                                           "%VDL_HOSTCOUNT%",
                                           "%VDL_SHARE_USER%",
                                           "VDL_HOST_MAC%",
                                           "%",
                                           "<",
                                           "_NAME",
                                           "<VDL_HOSTS_TRUSTED - begin>",
                                           "<VDL_HOSTS_TRUSTED - end>",
                                           "<VDL_HOSTS_WATCHED - begin>",
                                           "<VDL_SHARE_ACCESS - end>",
                                           "a%VDL_HOST_NAME%b<VDL_HOSTS - begin>"};

std::string DrawPiece(Chance& chance) {
    switch (chance.Below(6)) {
        case 0: return chance.Of(kPieces);
        case 1:
        case 2: return "<VDL_" + chance.Of(kBlockNames) + (chance.OneIn(2) ? " - begin>" : " - end>");
        default: return chance.Of(kTags);
    }
}

std::string DrawTemplate(Chance& chance) {
    std::string text;
    for (u32 pieces = chance.Below(14); pieces > 0; --pieces) text += DrawPiece(chance);
    // Mostly blocks that are whole, some inside others.
    for (u32 blocks = chance.Below(5); blocks > 0; --blocks) {
        const std::string name = chance.Of(kBlockNames);
        const std::size_t begin = chance.Below(text.size() + 1);
        const std::size_t end = begin + chance.Below(text.size() - begin + 1);
        text.insert(end, "<VDL_" + name + " - end>");
        text.insert(begin, "<VDL_" + name + " - begin>");
    }
    return text;
}

struct Tables {
    ReportLan lan;
    LiteralReport twin;
};

void DrawTables(Chance& chance, const std::vector<std::string>& values, Tables& tables) {
    for (u32 hosts = chance.Below(5); hosts > 0; --hosts) {
        // Addresses are the program's own texts.
        const ReportHost host{chance.Of(values), "10.0.0." + std::to_string(hosts), chance.Of(values), chance.Of(values),
                              chance.Of(values), chance.Below(4),                  chance.OneIn(3)};
        tables.lan.Add(host);
        tables.twin.hosts.push_back(
            {host.name, host.ip, host.mac, host.os, host.vendor, host.trust, host.vendorUnknown});
    }
    for (u32 watched = chance.Below(3); watched > 0; --watched) {
        const LiteralWatched host{chance.Of(values), "10.0.1." + std::to_string(watched), chance.OneIn(2)};
        tables.lan.Watch(host.name, host.ip, host.online);
        tables.twin.watched.push_back(host);
    }
    for (u32 accesses = chance.Below(3); accesses > 0; --accesses) {
        const LiteralAccess access{chance.Of(values), chance.Of(values), chance.Of(values)};
        tables.lan.Access(static_cast<i32>(tables.twin.accesses.size()), access.computer, access.share, access.user);
        tables.twin.accesses.push_back(access);
    }
}

void RunTwins(u64 seed, const std::vector<std::string>& values, bool aside) {
    Chance chance(seed);
    for (u64 done = 0; done < TwinRounds(kTemplates); done += kTemplatesALan) {
        Tables tables;
        DrawTables(chance, values, tables);
        for (u64 round = 0; round < kTemplatesALan; ++round) {
            const std::string text = DrawTemplate(chance);
            ASSERT_EQ(FormReport(text, tables.lan.data), tables.twin.Form(text, aside)) << text;
        }
    }
}

TEST(ReportTwin, OrdinaryValuesGiveWhatTheLiteralStepsGive) { RunTwins(20241, kTame, false); }

TEST(ReportTwin, HostileValuesGiveWhatTheLiteralStepsGiveWhenValuesAreNotSearched) {
    RunTwins(20242, kHostile, true);
}

}  // namespace
}  // namespace vardel::test
