#include "tests/desktop/DesktopFixture.h"
#include "toolkit/TcGuiTools.h"

namespace vardel::test {
namespace {

// A dialog laid out like the views: a list that fills it, a button in the bottom right, a label in the bottom
// left.
class ResizableDialog : public ToldDialog {
  public:
    ResizableDialog() : ToldDialog(DIALOG_RESIZABLE) {
        onInit = [this] {
            EnableResizing(true);
            EXPECT_TRUE(AddControlForResize(CONTROL_LIST, 193));
            EXPECT_TRUE(AddControlForResize(CONTROL_CORNER, 192));
            EXPECT_TRUE(AddControlForResize(CONTROL_BOTTOM, 128));
            SetMinimumSize(260, 140);
            if (test) test();
            if (!goesOn) ExitDialog(true);
        };
    }
    RECT Place(int id) const {
        RECT place{};
        GetWindowRect(GetControl(id), &place);
        MapWindowPoints(nullptr, GetHwnd(), reinterpret_cast<POINT*>(&place), 2);
        return place;
    }
    void GrowBy(int width, int height) {
        RECT place{};
        EXPECT_TRUE(GetSizeAndPosition(place));
        place.right += width;
        place.bottom += height;
        EXPECT_TRUE(SetSizeAndPosition(place));
    }
    PixelSize Size() const {
        RECT place{};
        EXPECT_TRUE(GetSizeAndPosition(place));
        return {static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top)};
    }

    std::function<void()> test;
    bool goesOn = false;
};

RECT Moved(RECT place, int left, int top, int right, int bottom) {
    return {place.left + left, place.top + top, place.right + right, place.bottom + bottom};
}

TEST(DialogResizing, ControlsFollowTheEdgesOfTheirFlags) {
    ResizableDialog dialog;
    dialog.test = [&] {
        const RECT list = dialog.Place(CONTROL_LIST);
        const RECT corner = dialog.Place(CONTROL_CORNER);
        const RECT bottom = dialog.Place(CONTROL_BOTTOM);
        const RECT fixed = dialog.Place(CONTROL_LABEL);
        dialog.GrowBy(70, 40);
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_LIST)), ToPixels(Moved(list, 0, 0, 70, 40)));
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_CORNER)), ToPixels(Moved(corner, 70, 40, 70, 40)));
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_BOTTOM)), ToPixels(Moved(bottom, 0, 40, 0, 40)));
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_LABEL)), ToPixels(fixed));
        dialog.GrowBy(-70, -40);
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_LIST)), ToPixels(list));
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_CORNER)), ToPixels(corner));
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(DialogResizing, TheBorderComesWithTheSwitchAndTheContentKeepsItsSize) {
    ResizableDialog dialog;
    dialog.test = [&] {
        RECT with{}, without{};
        EXPECT_TRUE(GetWindowLongPtrA(dialog.GetHwnd(), GWL_STYLE) & WS_THICKFRAME);
        GetClientRect(dialog.GetHwnd(), &with);
        dialog.EnableResizing(false);
        EXPECT_FALSE(GetWindowLongPtrA(dialog.GetHwnd(), GWL_STYLE) & WS_THICKFRAME);
        GetClientRect(dialog.GetHwnd(), &without);
        EXPECT_EQ(ToPixels(with), ToPixels(without));
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, WithoutTheSwitchControlsStayWhereTheyAre) {
    ResizableDialog dialog;
    dialog.test = [&] {
        dialog.EnableResizing(false);
        const RECT list = dialog.Place(CONTROL_LIST);
        dialog.GrowBy(50, 50);
        EXPECT_EQ(ToPixels(dialog.Place(CONTROL_LIST)), ToPixels(list));
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, TheWindowIsNeverSmallerThanItsMinimum) {
    ResizableDialog dialog;
    dialog.test = [&] {
        const PixelSize minimum{TcGuiTools::Scaled(260), TcGuiTools::Scaled(140)};
        EXPECT_TRUE(dialog.SetSizeAndPosition({10, 10, 30, 30}));
        EXPECT_EQ(dialog.Size(), minimum);
        MINMAXINFO limits{};
        SendMessageA(dialog.GetHwnd(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        EXPECT_EQ(limits.ptMinTrackSize.x, minimum.width);
        EXPECT_EQ(limits.ptMinTrackSize.y, minimum.height);
        SetWindowPos(dialog.GetHwnd(), nullptr, 0, 0, 50, 50, SWP_NOMOVE | SWP_NOZORDER);
        EXPECT_EQ(dialog.Size(), minimum) << "whoever asks";
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, EachShowBeginsAnew) {
    ResizableDialog dialog;
    for (int round = 0; round < 2; ++round) {
        dialog.test = [&] {
            const RECT corner = dialog.Place(CONTROL_CORNER);
            dialog.GrowBy(30, 20);
            EXPECT_EQ(ToPixels(dialog.Place(CONTROL_CORNER)), ToPixels(Moved(corner, 30, 20, 30, 20)));
        };
        EXPECT_TRUE(dialog.ShowDialogModal(0));
    }
    EXPECT_EQ(dialog.GetHwnd(), nullptr);
}

TEST(DialogResizing, AControlThatIsMissingIsTold) {
    ResizableDialog dialog;
    dialog.test = [&] { EXPECT_FALSE(dialog.AddControlForResize(4000, 193)); };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, ThePlaceIsRestored) {
    ResizableDialog dialog;
    RECT kept{};
    dialog.test = [&] {
        EXPECT_TRUE(dialog.SetSizeAndPosition({40, 50, 480, 390}));
        EXPECT_TRUE(dialog.GetSizeAndPosition(kept));
    };
    dialog.ShowDialogModal(0);
    EXPECT_EQ(ToPixels(kept), (PixelRect{40, 50, 480, 390}));
    dialog.test = [&] {
        RECT now{};
        EXPECT_TRUE(dialog.SetSizeAndPosition(kept));
        EXPECT_TRUE(dialog.GetSizeAndPosition(now));
        EXPECT_EQ(ToPixels(now), ToPixels(kept));
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, APlaceOfNoSizeIsRefused) {
    ResizableDialog dialog;
    dialog.test = [&] {
        RECT before{}, after{};
        dialog.GetSizeAndPosition(before);
        for (const RECT& bad : {RECT{0, 0, 0, 0}, RECT{10, 10, 10, 200}, RECT{100, 100, 50, 200}})
            EXPECT_FALSE(dialog.SetSizeAndPosition(bad));
        dialog.GetSizeAndPosition(after);
        EXPECT_EQ(ToPixels(before), ToPixels(after));
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, APlaceOnNoMonitorIsMovedOntoOne) {
    ResizableDialog dialog;
    dialog.test = [&] {
        EXPECT_TRUE(dialog.SetSizeAndPosition({-9000, -9000, -8600, -8700}));
        RECT now{};
        dialog.GetSizeAndPosition(now);
        EXPECT_NE(MonitorFromRect(&now, MONITOR_DEFAULTTONULL), nullptr);
        EXPECT_EQ(ToPixels(now).Width(), 400);
        EXPECT_EQ(ToPixels(now).Height(), 300);
    };
    dialog.ShowDialogModal(0);
}

TEST(DialogResizing, AMinimisedWindowTellsThePlaceItReturnsTo) {
    ResizableDialog dialog;
    Steps steps;
    dialog.goesOn = true;
    RECT before{}, after{}, list{};
    dialog.test = [&] {
        steps
            .Then([&] {
                dialog.SetSizeAndPosition({60, 70, 460, 370});
                dialog.GetSizeAndPosition(before);
                list = dialog.Place(CONTROL_LIST);
                ShowWindow(dialog.GetHwnd(), SW_MINIMIZE);
            })
            .Then([&] {
                EXPECT_TRUE(IsIconic(dialog.GetHwnd()));
                EXPECT_TRUE(dialog.GetSizeAndPosition(after));
                ShowWindow(dialog.GetHwnd(), SW_RESTORE);
            })
            .Then([&] {
                EXPECT_EQ(ToPixels(dialog.Place(CONTROL_LIST)), ToPixels(list))
                    << "minimising squeezes no control";
                dialog.ExitDialog(true);
            });
    };
    dialog.ShowDialogModal(0);
    EXPECT_EQ(ToPixels(after), ToPixels(before));
}

}  // namespace
}  // namespace vardel::test
