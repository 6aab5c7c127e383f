// What a list control shows, asked of the control itself: the texts of its cells and titles, where its lines
// are, and its picture. For windows of this process.
#pragma once

#include <memory>
#include <string>

#include "platform/WindowsApi.h"
#include "tests/unit/support/Canvas_win.h"
// behind windows.h
#include <commctrl.h>

namespace vardel::test {

inline HWND HeaderOf(HWND list) {
    return reinterpret_cast<HWND>(SendMessageA(list, LVM_GETHEADER, 0, 0));
}

inline int LineCountOf(HWND list) {
    return static_cast<int>(SendMessageA(list, LVM_GETITEMCOUNT, 0, 0));
}

inline std::string CellText(HWND list, int line, int column) {
    char text[260] = "";
    LVITEMA item{};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(list, LVM_GETITEMTEXTA, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(&item));
    return text;
}

// The title that stands above the column.
inline std::string ColumnTitle(HWND list, int column) {
    char text[260] = "";
    HDITEMA item{};
    item.mask = HDI_TEXT;
    item.pszText = text;
    item.cchTextMax = sizeof text;
    SendMessageA(HeaderOf(list), HDM_GETITEMA, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&item));
    return text;
}

// Of a whole line, or the part of it that `part` (LVIR_...) names.
inline RECT PlaceOfLine(HWND list, int line, LONG part = LVIR_BOUNDS) {
    RECT place{};
    place.left = part;
    SendMessageA(list, LVM_GETITEMRECT, static_cast<WPARAM>(line), reinterpret_cast<LPARAM>(&place));
    return place;
}

// The whole control as it is drawn.
inline std::unique_ptr<Canvas> PictureOf(HWND control) {
    RECT client{};
    GetClientRect(control, &client);
    auto canvas = std::make_unique<Canvas>(static_cast<int>(client.right), static_cast<int>(client.bottom));
    UpdateWindow(control);
    const HDC dc = GetDC(control);
    BitBlt(canvas->Dc(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    ReleaseDC(control, dc);
    return canvas;
}

}  // namespace vardel::test
