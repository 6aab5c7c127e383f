#include "toolkit/ListLayout.h"

#include <algorithm>
#include <unordered_map>

namespace vardel {

std::vector<int> GroupedLines(std::span<const int> rowGroups, std::span<const int> groups) {
    std::unordered_map<int, std::size_t> positions;
    for (const int group : groups) positions.emplace(group, positions.size());
    std::vector<std::vector<int>> members(positions.size() + 1);  // the last: rows of no known group
    for (std::size_t row = 0; row < rowGroups.size(); ++row) {
        const auto found = positions.find(rowGroups[row]);
        members[found == positions.end() ? positions.size() : found->second].push_back(static_cast<int>(row));
    }
    std::vector<int> lines;
    lines.reserve(rowGroups.size() + positions.size());
    for (std::size_t at = 0; at < members.size(); ++at) {
        if (at < positions.size() && !members[at].empty()) lines.push_back(HeadingLine(static_cast<int>(at)));
        lines.insert(lines.end(), members[at].begin(), members[at].end());
    }
    return lines;
}

int ListRowHeight(int textHeight, int iconEdge, int dpi) {
    return std::max(textHeight + ScaledForDpi(3, dpi), iconEdge + ScaledForDpi(1, dpi)) + 1;
}

RowColors ChooseRowColors(const RowState& state, const RowPalette& palette) {
    if (state.isSelected && state.hasFocus) return palette.selected;
    RowColors colors = state.isSelected && state.showsSelectionAlways ? palette.resting : palette.plain;
    if (state.ownColor != -1 && !state.isHighContrast) colors.text = static_cast<u32>(state.ownColor);
    return colors;
}

}  // namespace vardel
