#include "frame/PopupPainting.h"

#include "frame/HlsColor.h"

namespace vardel {

namespace {

constexpr Color kWhite{255, 255, 255};
constexpr Color kDarkGrey{128, 128, 128};
constexpr i32 kGripHeight = 10;

using Steps = std::vector<PaintStep>;

void AddRectangle(Steps& steps, Color pen, Color fill, const PixelRect& area) {
    steps.push_back({PaintStep::Kind::Rectangle, pen, fill, area});
}
void AddLine(Steps& steps, Color pen, const PixelRect& fromTo) {
    steps.push_back({PaintStep::Kind::Line, pen, kWhite, fromTo});
}

void AddGripStrip(Steps& steps, i32 width) {
    struct Strip {
        i32 top, bottom;
        Color color;
    };
    constexpr Strip kStrips[] = {{1, 4, {200, 200, 200}}, {4, 6, {192, 192, 192}}, {6, 9, {196, 196, 196}}};
    AddRectangle(steps, kDarkGrey, kWhite, {0, 0, width, kGripHeight});
    for (const Strip& strip : kStrips)
        AddRectangle(steps, strip.color, strip.color, {1, strip.top, width - 1, strip.bottom});
}

// Three bumps in the middle of the strip, each with its shadow.
void AddGripMarks(Steps& steps, i32 width) {
    struct Mark {
        i32 offset, top, bottom;  // the offset is from the middle
    };
    constexpr Mark kBumps[] = {{0, 4, 6}, {1, 4, 6}, {-6, 4, 6}, {-5, 4, 6}, {6, 4, 6}, {7, 4, 6}};
    constexpr Mark kLights[] = {{1, 6, 7}, {2, 5, 7}, {7, 6, 7}, {8, 5, 7}, {-5, 6, 7}, {-4, 5, 7}};
    const i32 middle = width / 2;
    const auto addMarks = [&](const auto& marks, Color pen) {
        for (const Mark& mark : marks)
            AddLine(steps, pen, {middle + mark.offset, mark.top, middle + mark.offset, mark.bottom});
    };
    addMarks(kBumps, kDarkGrey);
    addMarks(kLights, kWhite);
}

// Bands that overlap downwards: each covers all that lies below its top.
void AddRamp(Steps& steps, const PopupLook& look, i32 width, i32 height) {
    AddRectangle(steps, look.border, kWhite, {0, kGripHeight, width, height});
    const i32 bandHeight = (height - kGripHeight - 1) / (kRampBands - 1);
    i32 top = kGripHeight + 1;
    for (const Color color : RampColors(look.border)) {
        AddRectangle(steps, color, color, {1, top, width - 1, height - 1});
        top += bandHeight;
    }
}

void AddGradient(Steps& steps, const PopupLook& look, i32 width, i32 height) {
    const i32 columns = width - 2;
    for (i32 column = 0; column < columns; ++column)
        AddLine(steps, GradientColor(look.left, look.right, column, columns),
                {column + 1, 1, column + 1, height - 1});
}

}  // namespace

std::vector<Color> RampColors(Color border) {
    constexpr i32 kDark = 100, kBrightest = 230, kStep = 3;
    HlsColor color = HlsOf(border);
    color.luminance = color.luminance < kDark ? color.luminance + kDark : kBrightest;
    std::vector<Color> colors;
    for (int band = 0; band < kRampBands; ++band) {
        color.luminance -= kStep;
        colors.push_back(ColorOf(color));
    }
    return colors;
}

Color GradientColor(Color left, Color right, i32 column, i32 columns) {
    const auto between = [&](u8 from, u8 to) {
        const double step = (static_cast<double>(to) - from) / columns;
        return static_cast<u8>(from + step * column);
    };
    return {between(left.red, right.red), between(left.green, right.green), between(left.blue, right.blue)};
}

std::vector<PaintStep> PaintingOf(const PopupLook& look, i32 width, i32 height) {
    std::vector<PaintStep> steps;
    AddRectangle(steps, look.border, kWhite, {0, 0, width, height});
    AddGripStrip(steps, width);
    AddGripMarks(steps, width);
    if (look.ramp) AddRamp(steps, look, width, height);
    else AddGradient(steps, look, width, height);
    return steps;
}

}  // namespace vardel
