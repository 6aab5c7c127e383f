// Which line of a report list shows what, where the list shows its groups itself: the rows of each group
// beneath a heading line, in the order of the groups; rows of no known group come last, without one.
#pragma once

#include <span>
#include <vector>

#include "platform/Types.h"
#include "toolkit/PixelRect.h"

namespace vardel {

// A line is a row's number, or a heading: HeadingLine(position of the group among the groups).
constexpr int HeadingLine(int groupPosition) {
    return -1 - groupPosition;
}
constexpr bool IsHeadingLine(int line) {
    return line < 0;
}
constexpr int GroupOfHeading(int line) {
    return -1 - line;
}

// `rowGroups`: the group of each row; `groups`: the groups in their order. A group without rows has no
// heading. Takes time linear in rows and groups.
std::vector<int> GroupedLines(std::span<const int> rowGroups, std::span<const int> groups);

// Higher of icon and text, with room for the line of the grid.
int ListRowHeight(int textHeight, int iconEdge, int dpi);

// The colours of a row, 0x00BBGGRR.
struct RowColors {
    u32 text;
    u32 background;
    bool operator==(const RowColors&) const = default;
};
struct RowPalette {
    RowColors plain;
    RowColors selected;  // the list has the focus
    RowColors resting;   // selected in a list without the focus
};
struct RowState {
    bool isSelected = false;
    bool hasFocus = false;              // the list, not the row
    bool showsSelectionAlways = false;  // also without the focus
    bool isHighContrast = false;        // then only the system's colours are readable
    i32 ownColor = -1;                  // of the text; -1 for the list's
};
RowColors ChooseRowColors(const RowState& state, const RowPalette& palette);

}  // namespace vardel
