// The real resolver, asked for this machine alone.
#include "platform/Resolver.h"

#include <gtest/gtest.h>

#include <cstring>

#include "platform/Process.h"

namespace vardel {
namespace {

class ResolverTest : public testing::Test {
  protected:
    void SetUp() override { SystemProcess().StartNetwork(); }
    void TearDown() override { SystemProcess().StopNetwork(); }

    static u32 Address(u8 a, u8 b, u8 c, u8 d) {
        const u8 bytes[] = {a, b, c, d};
        u32 address;
        std::memcpy(&address, bytes, sizeof address);
        return address;
    }
    Resolver& resolver = SystemResolver();
};

TEST_F(ResolverTest, GivesTheCanonicalNameOfADottedAddressAsTheAddressItself) {
    const auto names = resolver.CanonicalNames("127.0.0.1");
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(names[0], "127.0.0.1");
}

TEST_F(ResolverTest, GivesNoCanonicalNameForWhatIsNoAddress) {
    EXPECT_TRUE(resolver.CanonicalNames("no-address.invalid").empty());
    EXPECT_TRUE(resolver.CanonicalNames("1.2.3.999").empty());
}

TEST_F(ResolverTest, NamesTheLoopbackAddress) {
    std::string name;
    ASSERT_TRUE(resolver.NameOfAddress(Address(127, 0, 0, 1), 0, NameLookup::NameRequired, name));
    EXPECT_FALSE(name.empty());
    EXPECT_NE(name, "127.0.0.1");
    std::string byAddress;
    ASSERT_TRUE(resolver.HostByAddress(Address(127, 0, 0, 1), byAddress));
    EXPECT_FALSE(byAddress.empty());
}

TEST_F(ResolverTest, GivesTheShortNameOfTheLoopbackAddress) {
    std::string name;
    ASSERT_TRUE(resolver.NameOfAddress(Address(127, 0, 0, 1), 53, NameLookup::ShortName, name));
    EXPECT_FALSE(name.empty());
}

TEST_F(ResolverTest, TakesADottedAddressAsItsOwnAnswer) {
    u32 address = 0;
    ASSERT_TRUE(resolver.HostByName("192.0.2.7", address));
    EXPECT_EQ(address, Address(192, 0, 2, 7));
}

TEST_F(ResolverTest, FindsThisMachineByItsName) {
    u32 address = 0;
    ASSERT_TRUE(resolver.HostByName("localhost", address));
    EXPECT_EQ(address, Address(127, 0, 0, 1));
}

TEST_F(ResolverTest, LeavesTheAddressAloneWhereANameHasNone) {
    u32 address = 99;
    EXPECT_FALSE(resolver.HostByName("no-address.invalid", address));
    EXPECT_EQ(address, 99u);
}

}  // namespace
}  // namespace vardel
