#include "capture/FrameView.h"

#include <gtest/gtest.h>

#include <array>

namespace vardel {
namespace {

// A captured frame of four bytes, with bytes behind it that no reader may see.
struct FrameViewTest : testing::Test {
    // What a copy of three bytes from `offset` gives.
    std::array<u8, 3> Copied(u32 offset) {
        std::array<u8, 3> target{9, 9, 9};
        frame.Copy(offset, target.data(), 3);
        return target;
    }
    const u8 memory[8] = {1, 2, 3, 4, 'x', 'x', 'x', 'x'};
    const FrameView frame{memory, 4};
    using Three = std::array<u8, 3>;
};

TEST_F(FrameViewTest, WhatLiesBehindTheEndIsCopiedAsZero) {
    EXPECT_EQ(Copied(0), (Three{1, 2, 3}));
    EXPECT_EQ(Copied(1), (Three{2, 3, 4}));
    EXPECT_EQ(Copied(2), (Three{3, 4, 0}));
    EXPECT_EQ(Copied(3), (Three{4, 0, 0}));
    for (const u32 behind : {4u, 5u, 7u, 0xffffffffu}) EXPECT_EQ(Copied(behind), Three{}) << behind;
}

TEST_F(FrameViewTest, ACopyOfNothingChangesNothing) {
    u8 target = 9;
    for (const u32 offset : {0u, 4u, 5u, 0xffffffffu}) frame.Copy(offset, &target, 0);
    EXPECT_EQ(target, 9);
}

TEST_F(FrameViewTest, NumbersThatReachBehindTheEndEndInZeros) {
    EXPECT_EQ(frame.At(3), 4);
    EXPECT_EQ(frame.At(4), 0);
    EXPECT_EQ(frame.Big16(2), 0x0304);
    EXPECT_EQ(frame.Big16(3), 0x0400);
    EXPECT_EQ(frame.Big16(0xffffffff), 0);
    EXPECT_EQ(frame.Little32(0), 0x04030201u);
    EXPECT_EQ(frame.Little32(2), 0x0403u);
    EXPECT_EQ(frame.Little32(0xfffffffe), 0u);
}

TEST_F(FrameViewTest, ATextEndsAtTheEndAtTheLatest) {
    EXPECT_EQ(frame.Text(2), "\x03\x04");
    EXPECT_EQ(frame.Text(4), "");
    EXPECT_EQ(frame.TextLength(2, 100), 2u);
    EXPECT_EQ(frame.TextLength(2, 1), 1u);
    EXPECT_EQ(frame.TextLength(4, 100), 0u);
}

TEST_F(FrameViewTest, APartEndsWithItsFrame) {
    EXPECT_EQ(frame.Part(1, 2).Size(), 2u);
    EXPECT_EQ(frame.Part(1, 2).At(1), 3);
    EXPECT_EQ(frame.Part(3, 100).Size(), 1u);
    for (const u32 behind : {4u, 5u, 0xffffffffu}) EXPECT_EQ(frame.Part(behind, 1).Size(), 0u) << behind;
    EXPECT_EQ(FrameView(nullptr, 4).Size(), 0u);
}

}  // namespace
}  // namespace vardel
