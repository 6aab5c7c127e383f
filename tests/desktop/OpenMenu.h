// The menu that is open in this process, while its loop turns: its items as they are, and choosing one by the keyboard.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/WindowsApi.h"

namespace vardel::test {

class OpenMenu {
  public:
    // Of the popup that was opened first, with its submenus.
    OpenMenu() {
        constexpr UINT kGetMenu = 0x01e1;  // MN_GETHMENU
        while ((window_ = FindWindowExA(nullptr, window_, "#32768", nullptr))) {
            DWORD process = 0;
            GetWindowThreadProcessId(window_, &process);
            if (process != GetCurrentProcessId() || !IsWindowVisible(window_)) continue;
            menu_ = reinterpret_cast<HMENU>(SendMessageA(window_, kGetMenu, 0, 0));
            break;
        }
    }
    bool IsOpen() const { return menu_ != nullptr; }
    HMENU Get() const { return menu_; }

    bool IsGrey(UINT command) const { return (State(command) & (MF_GRAYED | MF_DISABLED)) != 0; }
    bool IsChecked(UINT command) const { return (State(command) & MF_CHECKED) != 0; }
    bool Has(UINT command) const { return State(command) != kNone; }
    bool IsGreyAt(int position) const {
        return (GetMenuState(menu_, static_cast<UINT>(position), MF_BYPOSITION) & MF_GRAYED) != 0;
    }
    std::string Text(UINT command) const {
        char text[200] = "";
        GetMenuStringA(menu_, command, text, sizeof text, MF_BYCOMMAND);
        return text;
    }

    // Posts the keys that lead to the command, which may stand in a submenu, and choose it.
    void Choose(UINT command) const {
        EXPECT_TRUE(Press(menu_, command)) << "there is no command " << command;
    }
    void Escape() const { Key(VK_ESCAPE); }

  private:
    static constexpr UINT kNone = 0xffffffff;

    UINT State(UINT command) const { return GetMenuState(menu_, command, MF_BYCOMMAND); }
    void Key(WPARAM key) const {
        PostMessageA(window_, WM_KEYDOWN, key, 1);
        PostMessageA(window_, WM_KEYUP, key, static_cast<LPARAM>(0xc0000001));
    }
    bool Press(HMENU menu, UINT command) const {
        const int count = GetMenuItemCount(menu);
        int steps = 0;
        for (int at = 0; at < count; ++at) {
            const UINT state = GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION);
            const HMENU below = GetSubMenu(menu, at);
            if (!below && (state & MF_SEPARATOR)) continue;
            ++steps;
            const bool isHere = !below && GetMenuItemID(menu, at) == command;
            if (!isHere && !(below && GetMenuState(below, command, MF_BYCOMMAND) != kNone)) continue;
            for (int step = 0; step < steps; ++step) Key(VK_DOWN);
            if (isHere) return Key(VK_RETURN), true;
            Key(VK_RIGHT);
            // The submenu opens on its first item.
            return PressWithin(below, command);
        }
        return false;
    }
    bool PressWithin(HMENU menu, UINT command) const {
        const int count = GetMenuItemCount(menu);
        for (int at = 0, steps = 0; at < count; ++at) {
            if (GetMenuState(menu, static_cast<UINT>(at), MF_BYPOSITION) & MF_SEPARATOR) continue;
            if (GetMenuItemID(menu, at) == command) {
                for (int step = 0; step < steps; ++step) Key(VK_DOWN);
                return Key(VK_RETURN), true;
            }
            ++steps;
        }
        return false;
    }

    HWND window_ = nullptr;
    HMENU menu_ = nullptr;
};

}  // namespace vardel::test
