#include "tests/desktop/DesktopFixture.h"

#include <objbase.h>

namespace vardel::test {
namespace {

// Runs `test` with the dialog's controls there.
void WithDialog(const std::function<void(ToldDialog&)>& test, int ident = DIALOG_PLAIN) {
    ToldDialog dialog(ident);
    dialog.onInit = [&] {
        test(dialog);
        dialog.ExitDialog(true);
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(DialogControls, TextsAreReadBackAsTheyWereSet) {
    WithDialog([](ToldDialog& dialog) {
        TcString text("old");
        for (const char* written : {"", "host", "M\xfcnchen", "100 % & more"}) {
            EXPECT_TRUE(dialog.SetControlText(CONTROL_EDIT, written));
            EXPECT_TRUE(dialog.GetControlText(CONTROL_EDIT, text));
            EXPECT_STREQ(text, written);
        }
        EXPECT_TRUE(dialog.SetControlText(CONTROL_EDIT, nullptr));
        EXPECT_TRUE(dialog.GetControlText(CONTROL_EDIT, text));
        EXPECT_TRUE(text.IsEmpty());
    });
}

TEST(DialogControls, ALongTextIsReadWhole) {
    WithDialog([](ToldDialog& dialog) {
        const std::string written(20000, 'x');
        TcString text;
        EXPECT_TRUE(dialog.SetControlText(CONTROL_EDIT, written.c_str()));
        EXPECT_TRUE(dialog.GetControlText(CONTROL_EDIT, text));
        EXPECT_EQ(text.GetLength(), 20000);
    });
}

TEST(DialogControls, NumbersAreSigned) {
    WithDialog([](ToldDialog& dialog) {
        TcString text;
        EXPECT_TRUE(dialog.SetControlTextAsInt(CONTROL_LABEL, -12));
        EXPECT_TRUE(dialog.GetControlText(CONTROL_LABEL, text));
        EXPECT_STREQ(text, "-12");
    });
}

TEST(DialogControls, AControlThatIsMissingAndADialogThatIsNotShownDoNothing) {
    WithDialog([](ToldDialog& dialog) {
        TcString text("kept");
        EXPECT_EQ(dialog.GetControl(4000), nullptr);
        EXPECT_FALSE(dialog.SetControlText(4000, "x"));
        EXPECT_FALSE(dialog.GetControlText(4000, text));
        EXPECT_STREQ(text, "kept");
        EXPECT_FALSE(dialog.EnableControl(4000));
        EXPECT_FALSE(dialog.HideControl(4000));
        EXPECT_FALSE(dialog.IsButtonChecked(4000));
        EXPECT_EQ(dialog.SendCtrlMsg(4000, WM_GETTEXTLENGTH, 0, 0), 0);
    });
    ToldDialog hidden;
    RECT place{1, 2, 3, 4};
    EXPECT_EQ(hidden.GetControl(CONTROL_EDIT), nullptr);
    EXPECT_FALSE(hidden.SetControlText(CONTROL_EDIT, "x"));
    EXPECT_FALSE(hidden.SetControlTextAsInt(CONTROL_EDIT, 1));
    EXPECT_FALSE(hidden.AddControlForResize(CONTROL_EDIT, 193));
    EXPECT_FALSE(hidden.GetSizeAndPosition(place));
    EXPECT_FALSE(hidden.SetSizeAndPosition(place));
}

TEST(DialogControls, AreEnabledDisabledShownAndHidden) {
    WithDialog([](ToldDialog& dialog) {
        const HWND edit = dialog.GetControl(CONTROL_EDIT);
        EXPECT_TRUE(dialog.DisableControl(CONTROL_EDIT));
        EXPECT_FALSE(IsWindowEnabled(edit));
        EXPECT_TRUE(dialog.EnableControl(CONTROL_EDIT));
        EXPECT_TRUE(IsWindowEnabled(edit));
        EXPECT_TRUE(dialog.HideControl(CONTROL_EDIT));
        EXPECT_FALSE(GetWindowLongPtrA(edit, GWL_STYLE) & WS_VISIBLE);
        EXPECT_TRUE(dialog.ShowControl(CONTROL_EDIT));
        EXPECT_TRUE(GetWindowLongPtrA(edit, GWL_STYLE) & WS_VISIBLE);
    });
}

TEST(DialogControls, TheFocusLeavesAControlThatIsSwitchedOff) {
    ToldDialog dialog;
    Steps steps;
    dialog.onInit = [&] {
        steps.Then([&] { SetFocus(dialog.GetControl(CONTROL_EDIT)); })
            .Then([&] { dialog.DisableControl(CONTROL_EDIT); })
            .Then([&] { EXPECT_EQ(GetFocus(), dialog.GetControl(CONTROL_CHECK)); })
            .Then([&] { dialog.ExitDialog(true); });
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogControls, TellsWhetherAButtonIsChecked) {
    WithDialog([](ToldDialog& dialog) {
        EXPECT_FALSE(dialog.IsButtonChecked(CONTROL_CHECK));
        EXPECT_EQ(dialog.SendCtrlMsg(CONTROL_CHECK, BM_SETCHECK, BST_CHECKED, 0), 0);
        EXPECT_TRUE(dialog.IsButtonChecked(CONTROL_CHECK));
    });
}

TEST(DialogControls, AMessagesResultComesBack) {
    WithDialog([](ToldDialog& dialog) {
        dialog.SetControlText(CONTROL_EDIT, "four");
        EXPECT_EQ(dialog.SendCtrlMsg(CONTROL_EDIT, WM_GETTEXTLENGTH, 0, 0), 4);
    });
}

TEST(DialogControls, PathsAreCompletedInAnEditControl) {
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    WithDialog([](ToldDialog& dialog) {
        EXPECT_TRUE(TcDialog::SetupAutoComplete(dialog.GetControl(CONTROL_EDIT), false, true));
        EXPECT_FALSE(TcDialog::SetupAutoComplete(dialog.GetControl(CONTROL_EDIT), false, false))
            << "nothing to complete";
        EXPECT_FALSE(TcDialog::SetupAutoComplete(nullptr, false, true));
    });
    CoUninitialize();
}

}  // namespace
}  // namespace vardel::test
