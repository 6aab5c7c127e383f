#include "tests/desktop/DesktopFixture.h"

#include <objbase.h>

namespace vardel::test {
namespace {

using Told = std::vector<std::string>;

TEST(Dialog, AShowCallGivesTheArgumentOfExitDialog) {
    for (const bool result : {true, false}) {
        ToldDialog dialog;
        Steps steps;
        dialog.onInit = [&] { steps.Then([&, result] { dialog.ExitDialog(result); }); };
        EXPECT_EQ(dialog.ShowDialogModal(17), result);
        EXPECT_EQ(dialog.told, (Told{"init 17", "destroy"}));
        EXPECT_EQ(dialog.GetHwnd(), nullptr);
    }
}

TEST(Dialog, TheParameterIsAsWideAsAPointer) {
    ToldDialog dialog;
    dialog.onInit = [&] { dialog.ExitDialog(true); };
    const auto param = reinterpret_cast<LPARAM>(&dialog);
    EXPECT_TRUE(dialog.ShowDialogModal(param));
    EXPECT_EQ(dialog.told.front(), "init " + std::to_string(param));
}

TEST(Dialog, ShowsItselfWhileItRunsAndIsGoneAfterIt) {
    ToldDialog dialog;
    HWND window = nullptr;
    dialog.onInit = [&] {
        window = dialog.GetHwnd();
        EXPECT_TRUE(IsWindow(dialog.GetControl(CONTROL_EDIT)));
    };
    EXPECT_TRUE(dialog.ShowFor({[&] { EXPECT_TRUE(IsWindowVisible(window)); }}));
    EXPECT_FALSE(IsWindow(window));
}

TEST(Dialog, MayBeShownAgain) {
    ToldDialog dialog;
    for (int round = 0; round < 3; ++round) EXPECT_TRUE(dialog.ShowFor({}, round));
    EXPECT_EQ(dialog.told, (Told{"init 0", "destroy", "init 1", "destroy", "init 2", "destroy"}));
}

TEST(Dialog, ADialogThatEndsInItsInitialisationIsNeverSeen) {
    ToldDialog dialog;
    dialog.onInit = [&] { dialog.ExitDialog(true); };
    dialog.onDestroy = [&] { EXPECT_FALSE(IsWindowVisible(dialog.GetHwnd())); };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
    EXPECT_EQ(dialog.told, (Told{"init 0", "destroy"}));
}

TEST(Dialog, TheFirstResultHolds) {
    ToldDialog dialog;
    dialog.onDestroy = [&] { dialog.ExitDialog(false); };
    EXPECT_TRUE(dialog.ShowFor({}));
}

TEST(Dialog, ASecondShowCallOfAShownDialogIsACancel) {
    ToldDialog dialog;
    Steps steps;
    dialog.onInit = [&] {
        steps.Then([&] {
            EXPECT_FALSE(dialog.ShowDialogModal(1));
            EXPECT_TRUE(IsWindow(dialog.GetHwnd()));
            dialog.ExitDialog(true);
        });
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
    EXPECT_EQ(dialog.told, (Told{"init 0", "destroy"}));
}

TEST(Dialog, ATemplateThatIsMissingIsACancel) {
    ToldDialog dialog(DIALOG_MISSING);
    EXPECT_FALSE(dialog.ShowDialogModal(0));
    EXPECT_TRUE(dialog.told.empty());
}

TEST(Dialog, AControlThatCannotBeMadeIsACancel) {
    ToldDialog dialog(DIALOG_BROKEN);
    EXPECT_FALSE(dialog.ShowDialogModal(0));
    EXPECT_TRUE(dialog.told.empty());
    EXPECT_EQ(dialog.GetHwnd(), nullptr);
}

TEST(Dialog, ATemplateThatTheLanguageLacksComesFromTheProgram) {
    ToldDialog dialog;
    dialog.SetResInstance(reinterpret_cast<ModuleHandle>(GetModuleHandleA("kernel32.dll")));
    dialog.onInit = [&] { dialog.ExitDialog(true); };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(Dialog, ClosingEndsItWithFalse) {
    ToldDialog dialog;
    Steps steps;
    dialog.onInit = [&] { steps.Then([&] { SendMessageA(dialog.GetHwnd(), WM_CLOSE, 0, 0); }); };
    EXPECT_FALSE(dialog.ShowDialogModal(0));
    EXPECT_EQ(dialog.told, (Told{"init 0", "close", "destroy"}));
}

TEST(Dialog, EscapeClosesItWhereNobodyHandlesIt) {
    ToldDialog dialog;
    Steps steps;
    dialog.onInit = [&] { steps.Then([&] { PostMessageA(dialog.GetHwnd(), WM_KEYDOWN, VK_ESCAPE, 0); }); };
    EXPECT_FALSE(dialog.ShowDialogModal(0));
    EXPECT_EQ(dialog.told, (Told{"init 0", "key 27", "command 2", "close", "destroy"}));
}

TEST(Dialog, EscapeIsTheDialogsOwnWhereItHandlesIt) {
    ToldDialog dialog;
    Steps steps;
    dialog.onCommand = [&](int id) {
        if (id == IDCANCEL) dialog.ExitDialog(true);
        return id == IDCANCEL;
    };
    dialog.onInit = [&] { steps.Then([&] { PostMessageA(dialog.GetHwnd(), WM_KEYDOWN, VK_ESCAPE, 0); }); };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
    EXPECT_FALSE(dialog.WasTold("close"));
}

TEST(Dialog, EnterPressesTheDefaultButton) {
    ToldDialog dialog;
    Steps steps;
    dialog.onCommand = [&](int id) {
        if (id == IDOK) dialog.ExitDialog(true);
        return id == IDOK;
    };
    dialog.onInit = [&] {
        steps.Then([&] { PostMessageA(dialog.GetControl(CONTROL_EDIT), WM_KEYDOWN, VK_RETURN, 0); });
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(Dialog, OnlyTheLowSixteenBitsOfACommandAreItsId) {
    ToldDialog dialog;
    int seen = 0;
    dialog.onCommand = [&](int id) {
        if (id == 61000) ++seen;
        return true;
    };
    dialog.ShowFor({[&] { SendMessageA(dialog.GetHwnd(), WM_COMMAND, MAKEWPARAM(61000, 7), 0); }});
    EXPECT_EQ(seen, 1);
}

TEST(Dialog, AWindowThatSomebodyDestroysIsACancel) {
    ToldDialog dialog;
    Steps steps;
    dialog.onInit = [&] { steps.Then([&] { DestroyWindow(dialog.GetHwnd()); }); };
    EXPECT_FALSE(dialog.ShowDialogModal(0));
    EXPECT_EQ(dialog.told, (Told{"init 0", "destroy"}));
}

TEST(Dialog, KeysOfItsControlsAreToldAndGoOn) {
    ToldDialog dialog;
    TcString text;
    dialog.ShowFor({[&] { PostMessageA(dialog.GetControl(CONTROL_EDIT), WM_KEYDOWN, 'A', 0); },
                    [&] { PostMessageA(dialog.GetControl(CONTROL_EDIT), WM_CHAR, 'a', 0); },
                    [&] { dialog.GetControlText(CONTROL_EDIT, text); }});
    EXPECT_TRUE(dialog.WasTold("key 65"));
    EXPECT_EQ(text.GetAt(1), 'a');
}

TEST(Dialog, ATakenKeyReachesNoControl) {
    ToldDialog dialog;
    dialog.onKey = [](int key) { return key == VK_BACK; };
    TcString text;
    dialog.onInit = [&] {
        dialog.SetControlText(CONTROL_EDIT, "abc");
        dialog.SendCtrlMsg(CONTROL_EDIT, EM_SETSEL, 0, -1);
    };
    const auto pressDelete = [&] { PostMessageA(dialog.GetControl(CONTROL_EDIT), WM_KEYDOWN, VK_DELETE, 0); };
    const auto takeText = [&] { dialog.GetControlText(CONTROL_EDIT, text); };
    dialog.ShowFor({pressDelete, takeText, [&] { EXPECT_TRUE(text.IsEmpty()); },
                    [&] { dialog.SetControlText(CONTROL_EDIT, "abc"); },
                    [&] { dialog.onKey = [](int key) { return key == VK_DELETE; }; },
                    [&] { dialog.SendCtrlMsg(CONTROL_EDIT, EM_SETSEL, 0, -1); }, pressDelete, takeText});
    EXPECT_STREQ(text, "abc");
}

TEST(Dialog, ATakenTabStillMovesTheFocus) {
    ToldDialog dialog;
    dialog.onKey = [](int key) { return key == VK_TAB; };
    dialog.ShowFor({[&] { SetFocus(dialog.GetControl(CONTROL_EDIT)); },
                    [&] { PostMessageA(dialog.GetControl(CONTROL_EDIT), WM_KEYDOWN, VK_TAB, 0); },
                    [&] { EXPECT_EQ(GetFocus(), dialog.GetControl(CONTROL_CHECK)); }});
    EXPECT_TRUE(dialog.WasTold("key 9"));
}

TEST(Dialog, ATakenTabLeavesAControlOfSeveralFields) {
    ToldDialog dialog(DIALOG_SUB);
    dialog.onKey = [](int key) { return key == VK_TAB; };
    dialog.ShowFor({[&] { SetFocus(GetWindow(dialog.GetControl(CONTROL_ADDRESS), GW_CHILD)); },
                    [&] { PostMessageA(GetFocus(), WM_KEYDOWN, VK_TAB, 0); },
                    [&] { EXPECT_EQ(GetFocus(), dialog.GetControl(CONTROL_EDIT)); }});
}

TEST(Dialog, KeysOfOtherWindowsAreNotTold) {
    const PlainWindow other;
    ToldDialog dialog;
    dialog.ShowFor({[&] { PostMessageA(other.Get(), WM_KEYDOWN, 'B', 0); }});
    EXPECT_FALSE(dialog.WasTold("key 66"));
}

TEST(Dialog, OwnerDrawnControlsAreMeasuredBeforeTheInitialisation) {
    ToldDialog dialog(DIALOG_LIST);
    dialog.onMeasure = [&](int id, MEASUREITEMSTRUCT* item) {
        dialog.Tell("measure " + std::to_string(id));
        item->itemHeight = 33;
        return true;
    };
    dialog.onInit = [&] { dialog.ExitDialog(true); };
    dialog.ShowDialogModal(0);
    EXPECT_EQ(dialog.told.front(), "measure " + std::to_string(CONTROL_LIST));
}

TEST(Dialog, OwnerDrawnControlsAreDrawnByTheirId) {
    ToldDialog dialog;
    int drawn = 0;
    dialog.onDraw = [&](int id, DRAWITEMSTRUCT* item) {
        drawn += id == CONTROL_DRAWN && item->hwndItem == dialog.GetControl(CONTROL_DRAWN);
        return true;
    };
    dialog.ShowFor({[&] { UpdateWindow(dialog.GetControl(CONTROL_DRAWN)); }});
    EXPECT_GT(drawn, 0);
}

TEST(Dialog, AStaticGetsTheBrushOfOnColorStatic) {
    ToldDialog dialog;
    const HBRUSH brush = CreateSolidBrush(RGB(1, 2, 3));
    dialog.onColorStatic = [&](HDC, int id, HWND control) {
        EXPECT_EQ(control, dialog.GetControl(id));
        return id == CONTROL_LABEL ? brush : nullptr;
    };
    dialog.onInit = [&] {
        const auto answer = [&](int id) {
            const HDC dc = GetDC(dialog.GetHwnd());
            const LRESULT given =
                SendMessageA(dialog.GetHwnd(), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                             reinterpret_cast<LPARAM>(dialog.GetControl(id)));
            ReleaseDC(dialog.GetHwnd(), dc);
            return reinterpret_cast<HBRUSH>(given);
        };
        EXPECT_EQ(answer(CONTROL_LABEL), brush);
        EXPECT_NE(answer(CONTROL_EDIT), nullptr) << "the system's brush";
        EXPECT_NE(answer(CONTROL_EDIT), brush);
        dialog.ExitDialog(true);
    };
    dialog.ShowDialogModal(0);
    DeleteObject(brush);
}

TEST(Dialog, ANotificationsResultReachesTheControl) {
    ToldDialog dialog;
    dialog.onNotify = [&](int id, LPARAM) -> ULONG_PTR { return id == 4711 ? 42u : 0u; };
    dialog.onInit = [&] {
        NMHDR header{};
        header.idFrom = 4711;
        EXPECT_EQ(SendMessageA(dialog.GetHwnd(), WM_NOTIFY, 4711, reinterpret_cast<LPARAM>(&header)), 42);
        header.idFrom = 4712;
        EXPECT_EQ(SendMessageA(dialog.GetHwnd(), WM_NOTIFY, 4712, reinterpret_cast<LPARAM>(&header)), 0);
        dialog.ExitDialog(true);
    };
    dialog.ShowDialogModal(0);
}

TEST(Dialog, TheTaskbarIsHandedOverOnceItsButtonIsThere) {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    for (const bool keep : {false, true}) {
        ToldDialog dialog;
        dialog.keepTaskbar = keep;
        dialog.onInit = [&] {
            SendMessageA(dialog.GetHwnd(), RegisterWindowMessageA("TaskbarButtonCreated"), 0, 0);
            dialog.ExitDialog(true);
        };
        dialog.ShowDialogModal(0);
        EXPECT_TRUE(dialog.WasTold("taskbar"));
    }
    CoUninitialize();
}

TEST(Dialog, WithoutTheShellsTaskbarNothingIsHandedOver) {
    ToldDialog dialog;  // no apartment of COM, so the shell's object can't be had
    dialog.onInit = [&] {
        SendMessageA(dialog.GetHwnd(), RegisterWindowMessageA("TaskbarButtonCreated"), 0, 0);
        dialog.ExitDialog(true);
    };
    dialog.ShowDialogModal(0);
    EXPECT_FALSE(dialog.WasTold("taskbar"));
    EXPECT_FALSE(dialog.WasTold("no taskbar"));
}

// The base's own answers to what a dialog needs not care for.
class BareDialog : public TcDialog {
  public:
    BareDialog() { SetDialogIdent(DIALOG_PLAIN); }
    bool OnInitDialog(LPARAM) override {
        NMHDR header{};
        EXPECT_EQ(SendMessageA(GetHwnd(), WM_NOTIFY, 1, reinterpret_cast<LPARAM>(&header)), 0);
        EXPECT_EQ(OnColorStatic(nullptr, 1, nullptr), nullptr);
        EXPECT_FALSE(OnKeyDown(VK_TAB));
        EXPECT_FALSE(OnTaskbarButtonCreated(nullptr));
        SendMessageA(GetHwnd(), WM_TIMER, 1, 0);
        SendMessageA(GetHwnd(), WM_CLOSE, 0, 0);
        return true;
    }
    bool OnCommand(int, int, HWND) override { return false; }
    bool OnMeasureItem(int, MEASUREITEMSTRUCT*) override { return false; }
    bool OnDrawItem(int, DRAWITEMSTRUCT*) override { return false; }
};

TEST(Dialog, TheBaseHandlesNothingAndClosesWithFalse) {
    BareDialog dialog;
    EXPECT_FALSE(dialog.ShowDialogModal(0));
}

}  // namespace
}  // namespace vardel::test
