#include "capture/HostNaming.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/unit/support/Lan.h"

namespace vardel::test {
namespace {

class HostNaming : public LanTest {
  protected:
    HostRecord& Resolve(const char* ip = "10.0.0.5") {
        host.ip = ip;
        ResolveHostName(host, data);
        return host;
    }
    void ExpectName(const char* name, const char* ip = "10.0.0.5") {
        EXPECT_STREQ(Resolve(ip).hostName.GetContent(), name);
        EXPECT_EQ(host.nameUnresolved, 0);
    }
    void ExpectNoName(const char* ip = "10.0.0.5") {
        EXPECT_STREQ(Resolve(ip).hostName.GetContent(), "Hostname not available");
        EXPECT_EQ(host.nameUnresolved, 1);
    }
    HostRecord host;
    ScriptedResolver& resolver = system.resolver;
};

TEST_F(HostNaming, TheFirstCanonicalNameThatIsNotTheAddressWins) {
    resolver.canonicalNames = {"10.0.0.5", "printer.lan", "other"};
    resolver.requiredName = "later";
    ExpectName("printer.lan");
    EXPECT_EQ(resolver.calls.size(), 1u) << "the chain ends at the first name";
}

TEST_F(HostNaming, TheCanonicalNameMayEvenBeTheLocalOne) {
    data.localHostName = "this-pc";
    resolver.canonicalNames = {"this-pc"};
    ExpectName("this-pc");
}

TEST_F(HostNaming, TheSecondStepRequiresAName) {
    resolver.requiredName = "printer";
    resolver.hostByAddress = "later";
    ExpectName("printer");
    EXPECT_EQ(resolver.calls, (std::vector<std::string>{"canonical 10.0.0.5", "required 0"}));
}

TEST_F(HostNaming, TheThirdStepAsksByAddress) {
    data.localHostName = "this-pc";
    resolver.hostByAddress = "printer";
    resolver.shortName = "later";
    ExpectName("printer");
}

TEST_F(HostNaming, TheThirdStepIsRefusedWhereTheSecondGaveTheLocalName) {
    data.localHostName = "this-pc";
    resolver.requiredName = "this-pc";
    resolver.hostByAddress = "printer";
    resolver.shortName = "short";
    ExpectName("short");
}

TEST_F(HostNaming, TheThirdStepTakesEvenTheLocalNameWhereTheSecondGaveNone) {
    data.localHostName = "this-pc";
    resolver.hostByAddress = "this-pc";
    ExpectName("this-pc");
}

TEST_F(HostNaming, TheThirdStepIsRefusedWhereNoLocalNameIsKnownYetAndTheSecondFailed) {
    data.localHostName = "";
    resolver.hostByAddress = "printer";
    resolver.shortName = "short";
    ExpectName("short");
}

TEST_F(HostNaming, TheFourthStepMayGiveTheAddressAsAText) {
    data.localHostName = "this-pc";
    resolver.shortName = "10.0.0.5";
    ExpectName("10.0.0.5");
    EXPECT_EQ(resolver.calls.back(), "short 53");
}

TEST_F(HostNaming, EveryStepButTheFirstRefusesTheLocalName) {
    data.localHostName = "this-pc";
    resolver.requiredName = resolver.hostByAddress = resolver.shortName = "this-pc";
    ExpectNoName();
}

TEST_F(HostNaming, ComparesWithTheLocalNameExactly) {
    data.localHostName = "this-pc";
    resolver.requiredName = "This-PC";
    ExpectName("This-PC");
}

TEST_F(HostNaming, TheBroadcastAddressSkipsTheStepsThatNeedAValidOne) {
    resolver.hostByAddress = "printer";
    resolver.shortName = "short";
    ExpectNoName("255.255.255.255");
    EXPECT_EQ(resolver.calls, (std::vector<std::string>{"canonical 255.255.255.255", "required 0"}));
}

TEST_F(HostNaming, WithoutAnyAnswerTheNameIsNotAvailable) {
    data.localHostName = "this-pc";
    ExpectNoName();
    EXPECT_EQ(resolver.calls.size(), 4u);
}

TEST_F(HostNaming, TheTextForNoNameMayHave255Characters) {
    for (auto& [id, text] : system.strings.texts)
        if (text == "Hostname not available") text = std::string(255, 'x');
    EXPECT_EQ(Resolve().hostName, TcString(std::string(255, 'x').c_str()));
}

}  // namespace
}  // namespace vardel::test
