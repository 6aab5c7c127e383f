// Dialogs over other windows: sub dialogs and their parents, dialogs within dialogs.
#include "tests/desktop/DesktopFixture.h"

namespace vardel::test {
namespace {

TEST(Dialog, ASubDialogDisablesItsParentMeanwhile) {
    const PlainWindow parent;
    ToldDialog dialog(DIALOG_SUB);
    Steps steps;
    dialog.SetParent(parent.Get());
    dialog.onInit = [&] {
        EXPECT_FALSE(IsWindowEnabled(parent.Get()));
        EXPECT_EQ(GetWindow(dialog.GetHwnd(), GW_OWNER), parent.Get());
        steps.Then([&] { dialog.ExitDialog(true); });
    };
    dialog.onDestroy = [&] { EXPECT_TRUE(IsWindowEnabled(parent.Get())); };
    EXPECT_TRUE(dialog.ShowSubDialog(0));
    EXPECT_TRUE(IsWindowEnabled(parent.Get()));
    EXPECT_TRUE(dialog.WasTold("destroy"));
}

TEST(Dialog, TheParentMayBeAWindowWithinTheTopLevelOne) {
    const PlainWindow parent;
    const HWND inner =
        CreateWindowA("STATIC", "", WS_CHILD, 0, 0, 10, 10, parent.Get(), nullptr, nullptr, nullptr);
    ToldDialog dialog(DIALOG_SUB);
    dialog.SetParent(inner);
    dialog.onInit = [&] {
        EXPECT_FALSE(IsWindowEnabled(parent.Get()));
        dialog.ExitDialog(true);
    };
    EXPECT_TRUE(dialog.ShowSubDialog(0));
    EXPECT_TRUE(IsWindowEnabled(parent.Get()));
}

TEST(Dialog, AParentThatWasDisabledStaysSo) {
    const PlainWindow parent;
    EnableWindow(parent.Get(), FALSE);
    ToldDialog dialog(DIALOG_SUB);
    dialog.SetParent(parent.Get());
    dialog.onInit = [&] { dialog.ExitDialog(true); };
    EXPECT_TRUE(dialog.ShowSubDialog(0));
    EXPECT_FALSE(IsWindowEnabled(parent.Get()));
}

TEST(Dialog, AParentThatIsGoneIsACancel) {
    ToldDialog dialog(DIALOG_SUB);
    {
        const PlainWindow parent;
        dialog.SetParent(parent.Get());
    }
    EXPECT_FALSE(dialog.ShowSubDialog(0));
    EXPECT_TRUE(dialog.told.empty());
}

TEST(Dialog, AFailedSubDialogLeavesItsParentEnabled) {
    const PlainWindow parent;
    ToldDialog dialog(DIALOG_MISSING);
    dialog.SetParent(parent.Get());
    EXPECT_FALSE(dialog.ShowSubDialog(0));
    EXPECT_TRUE(IsWindowEnabled(parent.Get()));
}

// Two dialogs, the inner one shown over the outer one.
struct NestedDialogs {
    // The outer one shows the inner one in its first step and hands its result on. Gives the outer one's.
    bool Show(const std::function<void(bool)>& innerEnded) {
        outer.onInit = [&] {
            steps.Then([&] {
                inner.SetParent(outer.GetHwnd());
                innerEnded(inner.ShowSubDialog(0));
            });
        };
        return outer.ShowDialogModal(0);
    }
    ToldDialog outer;
    ToldDialog inner{DIALOG_SUB};
    Steps steps;
};

TEST(Dialog, DialogsNestAndTheOuterOneGoesOn) {
    NestedDialogs nested;
    bool innerResult = false;
    nested.inner.onInit = [&] {
        EXPECT_FALSE(IsWindowEnabled(nested.outer.GetHwnd()));
        nested.steps.Then([&] { nested.inner.ExitDialog(true); });
    };
    EXPECT_TRUE(nested.Show([&](bool result) {
        innerResult = result;
        EXPECT_TRUE(IsWindowEnabled(nested.outer.GetHwnd()));
        nested.steps.Then([&] { nested.outer.ExitDialog(true); });
    }));
    EXPECT_TRUE(innerResult);
}

TEST(Dialog, AnOuterDialogMayEndWhileAnInnerOneRuns) {
    NestedDialogs nested;
    nested.inner.onInit = [&] {
        nested.steps.Then([&] { nested.outer.ExitDialog(true); }).Then([&] {
            EXPECT_TRUE(IsWindow(nested.outer.GetHwnd())) << "its loop has not come back yet";
            nested.inner.ExitDialog(false);
        });
    };
    EXPECT_TRUE(nested.Show([](bool result) { EXPECT_FALSE(result); }));
}

TEST(Dialog, TheEndOfTheProgramEndsAllLoops) {
    NestedDialogs nested;
    nested.inner.onInit = [&] { nested.steps.Then([&] { PostQuitMessage(3); }); };
    EXPECT_FALSE(nested.Show([](bool result) { EXPECT_FALSE(result); }));
    MSG message{};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE))
        << "the loop around them must hear of it";
    EXPECT_EQ(message.wParam, 3u);
    EXPECT_TRUE(nested.outer.WasTold("destroy"));
    EXPECT_TRUE(nested.inner.WasTold("destroy"));
}

TEST(Dialog, TimersOfOtherWindowsGoOn) {
    NestedDialogs nested;
    nested.inner.onInit = [&] {
        nested.steps.Then([&] { PostMessageA(nested.outer.GetHwnd(), WM_TIMER, 10001, 0); })
            .Then([&] { PostMessageA(nested.inner.GetHwnd(), WM_TIMER, 7, 0); })
            .Then([&] { nested.inner.ExitDialog(true); });
    };
    EXPECT_TRUE(nested.Show([&](bool) { nested.outer.ExitDialog(true); }));
    EXPECT_TRUE(nested.outer.WasTold("timer 10001"));
    EXPECT_TRUE(nested.inner.WasTold("timer 7"));
}

}  // namespace
}  // namespace vardel::test
