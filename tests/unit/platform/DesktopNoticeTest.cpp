#include "platform/DesktopNotice.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

TEST(NoticeBody, KeepsLinesAndTabs) {
    EXPECT_EQ(NoticeBody("New host(s) found :\n\tdesk [10.0.0.5]"), "New host(s) found :\n\tdesk [10.0.0.5]");
}

TEST(NoticeBody, NothingIsTakenForMarkup) {
    EXPECT_EQ(NoticeBody("<a href=\"x\">&amp;</a>"), "&lt;a href=\"x\"&gt;&amp;amp;&lt;/a&gt;");
}

TEST(NoticeBody, IsUtf8) {
    EXPECT_EQ(NoticeBody("B\xfcro \x80 \x9f"), "B\xc3\xbcro \xe2\x82\xac \xc5\xb8");
    EXPECT_EQ(NoticeBody("\x81\x8d\x8f\x90\x9d"), "?????");
}

TEST(NoticeBody, ControlCharactersBecomeQuestionMarks) {
    EXPECT_EQ(NoticeBody("a\x1b\r\x07\x7f" "b"), "a????b");
}

TEST(NoticeBody, IsCutWhereAnArgumentWouldBeTooLong) {
    EXPECT_EQ(NoticeBody(std::string(kLongestNotice, 'x')), std::string(kLongestNotice, 'x'));
    EXPECT_EQ(NoticeBody(std::string(kLongestNotice + 1, 'x')), std::string(kLongestNotice, 'x') + "...");
}

}  // namespace
}  // namespace vardel
