#include "platform/ThreadEnd.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace vardel {
namespace {

std::vector<std::string>* released = nullptr;  // of one thread at a time

void Note(void* name) { released->push_back(static_cast<const char*>(name)); }
void NoteAndAskAgain(void* name) {
    Note(name);
    static char later[] = "asked for at the end";
    AtThreadEnd(&Note, later);
}

class ThreadEndTest : public testing::Test {
  protected:
    ThreadEndTest() { released = &names; }
    ~ThreadEndTest() override { released = nullptr; }
    std::vector<std::string> names;
    char first[6] = "first", second[7] = "second";
};

TEST_F(ThreadEndTest, ReleasesTheLastAskedForFirst) {
    std::thread([this] {
        AtThreadEnd(&Note, first);
        AtThreadEnd(&Note, second);
        EXPECT_TRUE(names.empty()) << "the thread still runs";
    }).join();
    EXPECT_EQ(names, (std::vector<std::string>{"second", "first"}));
}

TEST_F(ThreadEndTest, EachThreadReleasesItsOwn) {
    std::thread([this] { AtThreadEnd(&Note, first); }).join();
    std::thread([] {}).join();
    EXPECT_EQ(names.size(), 1u);
    std::thread([this] { AtThreadEnd(&Note, second); }).join();
    EXPECT_EQ(names, (std::vector<std::string>{"first", "second"}));
}

TEST_F(ThreadEndTest, AskingDuringTheEndHarmsNothing) {
    std::thread([this] { AtThreadEnd(&NoteAndAskAgain, first); }).join();
    ASSERT_FALSE(names.empty());
    EXPECT_EQ(names[0], "first");
}

}  // namespace
}  // namespace vardel
