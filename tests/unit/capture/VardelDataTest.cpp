#include "capture/VardelData.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "tests/unit/support/TestServices.h"

namespace vardel {
namespace {

class VardelDataTest : public testing::Test {
  protected:
    std::set<std::string> Words() {
        std::set<std::string> words;
        data.notificationWords.ForEach([&](const TcString& key, TcString* word) {
            EXPECT_TRUE(word && *word == key);
            words.insert(key.GetContent());
            return true;
        });
        return words;
    }
    test::TestServices system;
    VardelData data{system.services};
};

TEST_F(VardelDataTest, OnlyCommasDivideTheNotificationWords) {
    std::string every;
    for (char c = ' '; c <= '~'; ++c)
        if (c != ',') every += c;
    data.ParseNotificationWords((every + "," + every + "2,\t three ").c_str());
    EXPECT_EQ(Words(), (std::set<std::string>{every, every + "2", "\t three "}));
}

TEST_F(VardelDataTest, EmptyNotificationWordsAreLeftOut) {
    data.ParseNotificationWords(",,panic,,oops,");
    EXPECT_EQ(Words(), (std::set<std::string>{"panic", "oops"}));
    data.ParseNotificationWords(",");
    EXPECT_EQ(Words(), std::set<std::string>{});
}

TEST_F(VardelDataTest, NewNotificationWordsReplaceTheOld) {
    data.ParseNotificationWords("panic,oops");
    data.ParseNotificationWords("oops,failed");
    EXPECT_EQ(Words(), (std::set<std::string>{"oops", "failed"}));
    data.ParseNotificationWords("");
    EXPECT_EQ(Words(), std::set<std::string>{});
}

TEST_F(VardelDataTest, ADeletedHostIsFoundNoMoreAndStaysReadable) {
    HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
    host->ip = "10.0.0.5";
    data.arpMap.Insert("10.0.0.5", host);
    EXPECT_FALSE(data.DeleteHost("10.0.0.6"));
    EXPECT_TRUE(data.DeleteHost("10.0.0.5"));
    EXPECT_FALSE(data.DeleteHost("10.0.0.5"));
    EXPECT_TRUE(data.arpMap.IsEmpty());
    EXPECT_TRUE(host->ip == "10.0.0.5");
}

}  // namespace
}  // namespace vardel
