#include "toolkit/MenuMetrics.h"

#include <algorithm>

namespace vardel {

MenuText SplitMenuText(std::string_view text) {
    const std::size_t tab = text.find('\t');
    if (tab == std::string_view::npos) return {std::string(text), {}};
    return {std::string(text.substr(0, tab)), std::string(text.substr(tab + 1))};
}

// "&" is no trail byte in any of the code pages with two-byte characters, so bytes can be looked at one by
// one.
unsigned char MnemonicOf(std::string_view label) {
    for (std::size_t at = 0; at + 1 < label.size(); ++at) {
        if (label[at] != '&') continue;
        if (label[++at] == '&') continue;
        const auto found = static_cast<unsigned char>(label[at]);
        return found >= 'A' && found <= 'Z' ? static_cast<unsigned char>(found - 'A' + 'a') : found;
    }
    return 0;
}

std::string SpokenLabel(std::string_view label) {
    std::string spoken;
    for (std::size_t at = 0; at < label.size(); ++at) {
        if (label[at] == '&' && ++at == label.size()) break;
        spoken += label[at];
    }
    return spoken;
}

MenuMeasures MenuMeasuresFor(int dpi) {
    return {.iconEdge = ScaledForDpi(16, dpi),
            .iconColumn = ScaledForDpi(24, dpi),
            .textIndent = ScaledForDpi(8, dpi),
            .keyGap = ScaledForDpi(24, dpi),
            .endMargin = ScaledForDpi(20, dpi),
            .verticalMargin = ScaledForDpi(3, dpi),
            .separatorHeight = ScaledForDpi(7, dpi)};
}

PixelSize MenuItemSize(const MenuMeasures& measures, const MenuItemTextSize& text) {
    const int keys = text.keysWidth > 0 ? measures.keyGap + text.keysWidth : 0;
    return {measures.iconColumn + measures.textIndent + text.labelWidth + keys + measures.endMargin,
            std::max(measures.iconEdge, text.height) + 2 * measures.verticalMargin};
}

PixelSize MenuSeparatorSize(const MenuMeasures& measures) {
    return {measures.iconColumn + measures.textIndent + measures.endMargin, measures.separatorHeight};
}

MenuItemParts LayOutMenuItem(const MenuMeasures& measures, const PixelRect& item) {
    MenuItemParts parts;
    parts.iconColumn = {item.left, item.top, item.left + measures.iconColumn, item.bottom};
    const int left = item.left + (measures.iconColumn - measures.iconEdge) / 2;
    const int top = item.top + (item.Height() - measures.iconEdge) / 2;
    parts.icon = {left, top, left + measures.iconEdge, top + measures.iconEdge};
    parts.text = {parts.iconColumn.right + measures.textIndent, item.top, item.right - measures.endMargin,
                  item.bottom};
    return parts;
}

}  // namespace vardel
