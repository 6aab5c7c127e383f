// What only Windows keeps in modules: templates, the menu, icons; the program's and the languages'.
#include <gtest/gtest.h>

#include <string>

#include "platform/Modules.h"
#include "platform/WindowsApi.h"
// behind windows.h
#include <commctrl.h>

#include "resources/DialogIds.h"
#include "resources/IconIds.h"
#include "resources/MenuIds.h"
#include "tests/unit/support/TestModules.h"

namespace vardel {
namespace {

constexpr int kTemplates[] = {101, 114, 117, 118, 119, 120, 122, 123, 136, 137, 138, 139, 144, 145,
                              148, 149, 152, 156, 157, 159, 162, 163, 164, 165, 166, 222, 223};

INT_PTR CALLBACK NoHandling(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

class WindowResources : public testing::TestWithParam<const char*> {
  protected:
    WindowResources() : isProgram(std::string(GetParam()) == "program") {
        module = isProgram ? GetModuleHandleA(nullptr)
                           : reinterpret_cast<HMODULE>(
                                 SystemModules().Load(test::LanguageModule(GetParam()).c_str()));
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES |
                                                         ICC_INTERNET_CLASSES | ICC_PROGRESS_CLASS};
        InitCommonControlsEx(&classes);
    }
    ~WindowResources() override {
        if (!isProgram) SystemModules().Free(reinterpret_cast<ModuleHandle>(module));
    }
    HWND Made(int number, HWND parent = nullptr) {
        return CreateDialogParamA(module, MAKEINTRESOURCEA(number), parent, &NoHandling, 0);
    }
    static std::string TextOf(HWND window) {
        char text[256];
        GetWindowTextA(window, text, sizeof text);
        return text;
    }
    const bool isProgram;
    HMODULE module;
};

TEST_P(WindowResources, EachTemplateMakesADialog) {
    const HWND frame = Made(IDD_SETTINGS);
    ASSERT_NE(frame, nullptr);
    for (const int number : kTemplates) {
        const HWND dialog = Made(number, frame);
        EXPECT_NE(dialog, nullptr) << number;
        EXPECT_NE(GetWindow(dialog, GW_CHILD), nullptr) << number;
        DestroyWindow(dialog);
    }
    DestroyWindow(frame);
}

TEST_P(WindowResources, EveryPageHasTheSizeOfItsPlaceInTheDialog) {
    const HWND frame = Made(IDD_SETTINGS);
    RECT place;
    GetWindowRect(GetDlgItem(frame, IDC_SETTINGS_PLACEHOLDER), &place);
    for (const int number : kTemplates) {
        const HWND page = Made(number, frame);
        if (GetWindowLongA(page, GWL_STYLE) & WS_CHILD) {
            RECT size;
            GetWindowRect(page, &size);
            EXPECT_EQ(size.right - size.left, place.right - place.left) << number;
            EXPECT_EQ(size.bottom - size.top, place.bottom - place.top) << number;
            EXPECT_FALSE(GetWindowLongA(page, GWL_STYLE) & WS_VISIBLE) << number;
        }
        DestroyWindow(page);
    }
    DestroyWindow(frame);
}

TEST_P(WindowResources, WhatTheProgramShowsOrEnablesItselfIsHiddenOrDisabledAtFirst) {
    const HWND view = Made(IDD_HOST_VIEW);
    for (const int id : {IDC_HOST_REFRESH, IDC_HOST_UPDATES_AVAILABLE, IDC_HOST_AUTO_REFRESH})
        EXPECT_FALSE(GetWindowLongA(GetDlgItem(view, id), GWL_STYLE) & WS_VISIBLE) << id;
    DestroyWindow(view);
    const HWND updates = Made(IDD_UPDATES);
    for (const int id : {IDC_UPDATE_PROGRAM, IDC_UPDATE_CANCEL})
        EXPECT_FALSE(GetWindowLongA(GetDlgItem(updates, id), GWL_STYLE) & WS_VISIBLE) << id;
    DestroyWindow(updates);
    const HWND entry = Made(IDD_HOST_ENTRY);
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(entry, IDC_HOST_ENTRY_NAME)));
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(entry, IDC_HOST_ENTRY_IP)));
    DestroyWindow(entry);
}

TEST_P(WindowResources, TheMenuHasItsSubmenusWhereTheProgramLooksForThem) {
    const HMENU menus = LoadMenuA(module, MAKEINTRESOURCEA(IDM_MENUS));
    ASSERT_EQ(GetMenuItemCount(menus), 3);
    const HMENU tray = GetSubMenu(menus, IDM_TRAY_POPUP);
    EXPECT_EQ(GetMenuItemCount(GetSubMenu(tray, IDM_LANGUAGE_POSITION)), 1);
    EXPECT_EQ(GetMenuItemID(GetSubMenu(tray, IDM_INFORMATIONS_POSITION), 0), static_cast<UINT>(IDM_CHECK_UPDATES));
    for (const int id : {IDM_START, IDM_STOP, IDM_SILENT_MODE, IDM_VIEW, IDM_RESOURCES, IDM_EVENTLOG, IDM_SYSLOG,
                         IDM_SETTINGS, IDM_ABOUT, IDM_HELP, IDM_EXIT})
        EXPECT_NE(GetMenuState(tray, id, MF_BYCOMMAND), static_cast<UINT>(-1)) << id;
    const HMENU view = GetSubMenu(menus, IDM_VIEW_POPUP);
    EXPECT_NE(GetSubMenu(view, IDM_PLUGINS_POSITION), nullptr);
    EXPECT_NE(GetSubMenu(view, IDM_APPLICATIONS_POSITION), nullptr);
    EXPECT_EQ(GetMenuItemID(GetSubMenu(view, IDM_FILTER_POSITION), 0), static_cast<UINT>(IDM_SHOW_TRUSTED));
    EXPECT_EQ(GetMenuItemID(GetSubMenu(menus, IDM_RESOURCE_POPUP), 1), static_cast<UINT>(IDM_SEARCH));
    DestroyMenu(menus);
}

TEST_P(WindowResources, TheFlagCanBeLoaded) {
    const auto flag = LoadImageA(module, MAKEINTRESOURCEA(IDI_FLAG), IMAGE_ICON, 16, 16, 0);
    EXPECT_NE(flag, nullptr);
    DestroyIcon(static_cast<HICON>(flag));
}

TEST_P(WindowResources, TheTextsComeInTheSystemsCodePage) {
    const HWND page = Made(IDD_PAGE_GENERAL, GetDesktopWindow());
    const std::string text = TextOf(GetDlgItem(page, IDC_GENERAL_AUTO_START));
    if (GetACP() == 1252) EXPECT_NE(text.find("Windows\xae"), std::string::npos) << text;
    else EXPECT_NE(text.find("Windows"), std::string::npos) << text;
    DestroyWindow(page);
}

INSTANTIATE_TEST_SUITE_P(Modules, WindowResources, testing::Values("program", "french", "german", "spanish"),
                         [](const auto& one) { return std::string(one.param); });

TEST(ProgramIcons, EachHasAllItsSizes) {
    for (const int id : {102, 109, 110, 112, 119, 120, 121, 126, 128, 129, 130, 131, 133, 134, 135, 139, 140, 141, 146,
                         148, 149, 150, 151, 153, 154, 155, 157, 163, 164, 165, 166, 167, 168, 169, 170, 220, 221, 223})
        for (const int size : {16, 20, 24, 32, 48}) {
            const auto icon = static_cast<HICON>(LoadImageA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), IMAGE_ICON,
                                                            size, size, 0));
            ASSERT_NE(icon, nullptr) << id;
            ICONINFO info;
            ASSERT_TRUE(GetIconInfo(icon, &info));
            BITMAP bitmap;
            GetObjectA(info.hbmColor, sizeof bitmap, &bitmap);
            EXPECT_EQ(bitmap.bmWidth, size) << id;
            DeleteObject(info.hbmColor);
            DeleteObject(info.hbmMask);
            DestroyIcon(icon);
        }
}

}  // namespace
}  // namespace vardel
