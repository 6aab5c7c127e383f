// MenuPainter: measures and draws the items of a menu. Holds the fonts of the user's menus. Main thread.
#pragma once

#include "toolkit/MenuGlyphs.h"
#include "toolkit/MenuMetrics.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

// What an item shows.
struct MenuItemLook {
    MenuText text;
    bool isSeparator = false;
    bool isRadio = false;               // its mark is a bullet
    MenuGlyph glyph = MenuGlyph::None;  // where there is no icon
    UniqueIcon icon;
    UniqueIcon greyIcon;  // made when it is first needed
};

class MenuPainter {
  public:
    // Takes the fonts as the user has them now.
    void TakeFonts();

    PixelSize Measure(const MenuItemLook& look, bool isDefault) const;
    void Draw(const DRAWITEMSTRUCT& place, MenuItemLook& look, bool isDefault) const;

  private:
    void DrawBackground(HDC dc, const RECT& item, const MenuItemParts& parts, UINT state) const;
    void DrawSeparator(HDC dc, const RECT& item, const MenuItemParts& parts) const;
    void DrawPicture(HDC dc, const MenuItemParts& parts, MenuItemLook& look, UINT state) const;
    void DrawGlyph(HDC dc, const PixelRect& box, MenuGlyph glyph, UINT state) const;
    void DrawLabel(HDC dc, const MenuItemParts& parts, const MenuItemLook& look, UINT state,
                   bool isDefault) const;

    MenuMeasures measures_ = MenuMeasuresFor(kPlainDpi);
    UniqueFont plain_;
    UniqueFont bold_;
};

}  // namespace vardel
