#include "capture/HostRecord.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "foundation/LargeBlock.h"

namespace vardel {
namespace {

TEST(HostRecord, LiesOnCacheLinesAndStartsWithItsDefaults) {
    std::vector<std::unique_ptr<HostRecord>> hosts;
    for (int round = 0; round < 2; ++round) {  // the second round meets memory that held records before
        hosts.clear();
        for (int i = 0; i < 100; ++i) {
            hosts.push_back(std::make_unique<HostRecord>());
            HostRecord& host = *hosts.back();
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&host) % LargeBlock::kCacheLine, 0u);
            EXPECT_TRUE(host.ip.IsEmpty() && host.presentationUrl.IsEmpty());
            EXPECT_EQ(host.vendorUnknown, 1);
            EXPECT_EQ(host.wmiStatus, 999);
            EXPECT_EQ(host.lastSeen, 0);
            EXPECT_EQ(host.waitingNetRes, 0u);
            host.ip = "10.0.0.1";
            host.presentationUrl = "a text that is too long to lie inside the object";
            host.vendorUnknown = 0;
            host.lastSeen = 7;
            host.waitingNetRes = 3;
        }
    }
}

}  // namespace
}  // namespace vardel
