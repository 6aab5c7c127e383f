#include "frame/PopupPlacement.h"

#include <gtest/gtest.h>

namespace vardel {
namespace {

// A screen of 1920 x 1080 with a taskbar that leaves this work area.
TaskbarEdge EdgeFor(const PixelRect& workArea, i32 maximizedWidth) {
    return FindTaskbarEdge({workArea, maximizedWidth, 1920, 1080});
}

TEST(TaskbarEdges, AreToldByTheWorkArea) {
    EXPECT_EQ(EdgeFor({0, 0, 1920, 1040}, 1920), TaskbarEdge::Bottom);
    EXPECT_EQ(EdgeFor({0, 40, 1920, 1080}, 1920), TaskbarEdge::Top);
    EXPECT_EQ(EdgeFor({60, 0, 1920, 1080}, 1860), TaskbarEdge::Left);
    EXPECT_EQ(EdgeFor({0, 0, 1860, 1080}, 1860), TaskbarEdge::Right);
}

TEST(TaskbarEdges, WithoutATaskbarThereIsNone) {
    EXPECT_EQ(EdgeFor({0, 0, 1920, 1080}, 1920), TaskbarEdge::NotFound);
}

TEST(TaskbarEdges, LaterAnswersTakePrecedence) {
    EXPECT_EQ(EdgeFor({0, 40, 1920, 1040}, 1920), TaskbarEdge::Top) << "fits the bottom too";
    EXPECT_EQ(EdgeFor({0, 40, 1860, 1080}, 1860), TaskbarEdge::Right) << "fits the top too";
    EXPECT_EQ(EdgeFor({60, 0, 1920, 1040}, 1860), TaskbarEdge::Left) << "fits the bottom too";
    EXPECT_EQ(EdgeFor({60, 40, 1920, 1080}, 1860), TaskbarEdge::NotFound);
}

TEST(TaskbarEdges, HaveTheirNumbers) {
    EXPECT_EQ(static_cast<u32>(TaskbarEdge::Top), 500u);
    EXPECT_EQ(static_cast<u32>(TaskbarEdge::Bottom), 501u);
    EXPECT_EQ(static_cast<u32>(TaskbarEdge::Left), 502u);
    EXPECT_EQ(static_cast<u32>(TaskbarEdge::Right), 503u);
}

TEST(PopupPlacement, LiesAtTheTaskbar) {
    const PixelRect area{10, 40, 1910, 1040};
    EXPECT_EQ(PlacePopup(area, TaskbarEdge::Top, true, 200, 100), (PopupPoint{1705, 40})) << "no gap at the top";
    EXPECT_EQ(PlacePopup(area, TaskbarEdge::Bottom, true, 200, 100), (PopupPoint{1705, 935}));
    EXPECT_EQ(PlacePopup(area, TaskbarEdge::Left, true, 200, 100), (PopupPoint{10, 935}));
    EXPECT_EQ(PlacePopup(area, TaskbarEdge::Right, true, 200, 100), (PopupPoint{1705, 935}));
    EXPECT_EQ(PlacePopup(area, TaskbarEdge::NotFound, true, 200, 100), (PopupPoint{0, 0}));
}

TEST(PopupPlacement, InTheMiddleIsHalfTheSizeOfTheWorkArea) {
    EXPECT_EQ(PlacePopup({100, 40, 1911, 1040}, TaskbarEdge::Top, false, 201, 101), (PopupPoint{805, 450}));
}

TEST(PopupExtent, LeavesMarginsAroundTheText) {
    EXPECT_EQ(ExtentForText(120, 40), (PopupExtent{150, 68, {15, 19, 135, 59}}));
    EXPECT_EQ(ExtentForText(0, 0), (PopupExtent{30, 28, {15, 19, 15, 19}}));
}

TEST(PopupExtent, BeforeATextIsThereItTakesNoRoom) {
    const PopupExtent none;
    EXPECT_EQ(none.width, 0);
    EXPECT_EQ(none.height, 0);
    EXPECT_EQ(none.text, (PixelRect{0, 0, 0, 0}));
}

}  // namespace
}  // namespace vardel
