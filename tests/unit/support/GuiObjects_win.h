// Whether something leaves GDI or USER objects behind. Wine doesn't tell how many there are (GetGuiResources gives 0),
// so what is left of the system's room for them is counted, by using it up for a moment.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "platform/WindowsApi.h"

namespace vardel::test {

// How many more objects could be made.
struct GuiRoom {
    int gdi = 0, user = 0;
};

inline GuiRoom CountGuiRoom() {
    std::vector<HBRUSH> brushes;
    while (const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3))) brushes.push_back(brush);
    for (const HBRUSH brush : brushes) DeleteObject(brush);
    std::vector<HMENU> menus;
    while (const HMENU menu = CreateMenu()) menus.push_back(menu);
    for (const HMENU menu : menus) DestroyMenu(menu);
    return {static_cast<int>(brushes.size()), static_cast<int>(menus.size())};
}

// The first round may leave what is made once. Other programs of the session move the numbers a little, so less than
// one object in two rounds counts as none. `count`: for a window of another thread, which must not be disturbed meanwhile.
template <class Round, class Count = GuiRoom (*)()>
void ExpectNoObjectsLeftBehind(int rounds, Round&& round, Count&& count = &CountGuiRoom) {
    round();
    const GuiRoom before = count();
    for (int i = 0; i < rounds; ++i) round();
    const GuiRoom after = count();
    EXPECT_LT(before.gdi - after.gdi, rounds / 2) << "GDI";
    EXPECT_LT(before.user - after.user, rounds / 2) << "USER";
}

}  // namespace vardel::test
