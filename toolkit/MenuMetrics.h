// Measures of an owner-drawn menu, and what its items' texts hold. An item is an icon column, its label, and,
// at the right, its key text; the system keeps room for the arrow of a submenu behind that.
#pragma once

#include <string>
#include <string_view>

#include "toolkit/PixelRect.h"

namespace vardel {

// "Label\tKeys", as menu resources write it.
struct MenuText {
    std::string label;  // with its "&"
    std::string keys;   // empty without a tab
    bool operator==(const MenuText&) const = default;
};
MenuText SplitMenuText(std::string_view text);

// The character behind the first single "&" of a label, folded to lower case where it is an ASCII letter; 0
// without one. "&&" stands for the character itself.
unsigned char MnemonicOf(std::string_view label);

// The label as it is read out: without the "&" that mark the mnemonic.
std::string SpokenLabel(std::string_view label);

// All in pixels of the display.
struct MenuMeasures {
    int iconEdge;        // of the square picture
    int iconColumn;      // width of the column that holds it
    int textIndent;      // from the icon column to the label
    int keyGap;          // least distance between label and key text
    int endMargin;       // behind the text; the system's submenu arrow lies in it
    int verticalMargin;  // above and below icon and text
    int separatorHeight;
};
MenuMeasures MenuMeasuresFor(int dpi);

struct MenuItemTextSize {
    int labelWidth = 0;
    int keysWidth = 0;
    int height = 0;
};
PixelSize MenuItemSize(const MenuMeasures& measures, const MenuItemTextSize& text);
PixelSize MenuSeparatorSize(const MenuMeasures& measures);

// Where the parts of an item go that was given the place `item`.
struct MenuItemParts {
    PixelRect iconColumn;
    PixelRect icon;
    PixelRect text;  // the label at its left, the key text at its right
};
MenuItemParts LayOutMenuItem(const MenuMeasures& measures, const PixelRect& item);

}  // namespace vardel
