#include "capture/SyslogPurge.h"

#include <gtest/gtest.h>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

struct SyslogPurgeTest : testing::Test {
    SyslogSourceList& Sender(const char* ip) {
        data.syslogs.Insert(ip, std::make_unique<SyslogSourceList>());
        return *data.syslogs.FindValue(ip);
    }
    static void Receive(SyslogSourceList& sender, int messages, u32 limit) {
        for (int i = 0; i < messages; ++i) {
            auto record = std::make_unique<SyslogRecord>();
            record->serial = sender.NextSerial();
            sender.ExpireOldest(limit);
            sender.Append(std::move(record));
        }
    }
    test::TestServices system;
    VardelData data{system.services};
};

TEST_F(SyslogPurgeTest, FreesTheExpiredMessagesOfEverySender) {
    SyslogSourceList& first = Sender("10.0.0.5");
    SyslogSourceList& second = Sender("10.0.0.6");
    Receive(first, 5, 2);
    Receive(second, 3, 2);
    EXPECT_EQ(PurgeExpiredSyslogs(data), 4u);
    EXPECT_EQ(first.RecordCount(), 2u);
    EXPECT_EQ(second.RecordCount(), 2u);
    std::vector<u32> left;
    first.ForEach([&](const SyslogRecord& record) { left.push_back(record.serial); });
    EXPECT_EQ(left, (std::vector<u32>{4, 5}));
    EXPECT_EQ(first.MessageCount(), 5u);
}

TEST_F(SyslogPurgeTest, WithNothingExpiredItFreesNothing) {
    SyslogSourceList& sender = Sender("10.0.0.5");
    Receive(sender, 2, 0);
    EXPECT_EQ(PurgeExpiredSyslogs(data), 0u);
    EXPECT_EQ(sender.RecordCount(), 2u);
}

TEST_F(SyslogPurgeTest, WithoutSendersItFreesNothing) { EXPECT_EQ(PurgeExpiredSyslogs(data), 0u); }

TEST_F(SyslogPurgeTest, ASenderWithoutAListIsPassedOver) {
    data.syslogs.Insert("10.0.0.5", static_cast<SyslogSourceList*>(nullptr));
    EXPECT_EQ(PurgeExpiredSyslogs(data), 0u);
}

}  // namespace
}  // namespace vardel
