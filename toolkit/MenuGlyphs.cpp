#include "toolkit/MenuGlyphs.h"

namespace vardel {

namespace {

constexpr int kGrid = 16;

struct CommandGlyph {
    u32 command;  // SC_CLOSE and so on
    MenuGlyph glyph;
};
constexpr CommandGlyph kCommandGlyphs[] = {{0xf060, MenuGlyph::Close},
                                           {0xf020, MenuGlyph::Minimize},
                                           {0xf030, MenuGlyph::Maximize},
                                           {0xf120, MenuGlyph::Restore}};

constexpr GlyphStroke kCheck[] = {{4, 8, 7, 11}, {7, 11, 12, 4}};
constexpr GlyphStroke kClose[] = {{4, 4, 12, 12}, {12, 4, 4, 12}};
constexpr GlyphStroke kMinimize[] = {{4, 11, 11, 11}};
constexpr GlyphStroke kMaximize[] = {{4, 4, 12, 4}, {12, 4, 12, 12}, {12, 12, 4, 12}, {4, 12, 4, 4}};
constexpr GlyphStroke kRestore[] = {{4, 7, 9, 7}, {9, 7, 9, 12}, {9, 12, 4, 12}, {4, 12, 4, 7},
                                    {7, 7, 7, 4}, {7, 4, 12, 4}, {12, 4, 12, 9}, {12, 9, 9, 9}};

}  // namespace

MenuGlyph GlyphOfCommand(u32 command) {
    for (const CommandGlyph& row : kCommandGlyphs)
        if (row.command == command) return row.glyph;
    return MenuGlyph::None;
}

std::span<const GlyphStroke> StrokesOf(MenuGlyph glyph) {
    switch (glyph) {
        case MenuGlyph::Check:
            return kCheck;
        case MenuGlyph::Close:
            return kClose;
        case MenuGlyph::Minimize:
            return kMinimize;
        case MenuGlyph::Maximize:
            return kMaximize;
        case MenuGlyph::Restore:
            return kRestore;
        case MenuGlyph::Bullet:
        case MenuGlyph::None:
            return {};
    }
    return {};
}

PixelRect StrokeIn(const PixelRect& box, const GlyphStroke& stroke) {
    return {box.left + stroke.fromX * box.Width() / kGrid, box.top + stroke.fromY * box.Height() / kGrid,
            box.left + stroke.toX * box.Width() / kGrid, box.top + stroke.toY * box.Height() / kGrid};
}

}  // namespace vardel
