// Rows as they are drawn: texts, colours, pictures, selection, height, and what lies under the cursor.
#include "tests/desktop/ListFixture.h"
#include "toolkit/TcGuiTools.h"
#include "toolkit/UniqueHandle.h"

namespace vardel::test {
namespace {

// Whoever is asked for a text may have messages handled, one of which closes the window.
TEST(ListView, AListThatLetsItsControlGoWhileItDrawsDrawsNoFurtherCell) {
    ListDialog dialog;
    auto records = Records(1);
    dialog.inInit = [&] { AddAll(dialog.list, records); };
    dialog.ShowFor({[&] {
        UpdateWindow(dialog.Control());
        dialog.list.asked = 0;
        dialog.list.onText = [&] { dialog.list.SetHwnd(nullptr); };
        dialog.list.RedrawRows();
        EXPECT_EQ(dialog.list.asked, 1);
        EXPECT_EQ(dialog.list.GetHwnd(), nullptr);
    }});
}

TEST(ListView, ARepaintOfTheRowsLeavesTheHeaderAlone) {
    ListDialog dialog;
    auto records = Records(3);
    ListRecord late, later;
    dialog.inInit = [&] { AddAll(dialog.list, records); };
    dialog.ShowFor({[&] {
        const HWND header = HeaderOf(dialog.Control());
        UpdateWindow(dialog.Control());
        UpdateWindow(header);
        const int before = dialog.drawn;
        constexpr COLORREF kMark = RGB(255, 0, 255);
        SetPixel(WindowDc(header).Get(), 5, 5, kMark);
        dialog.list.RedrawRows();
        EXPECT_EQ(dialog.drawn, before + 3);
        EXPECT_TRUE(dialog.list.AddRow(&late));
        UpdateWindow(dialog.Control());
        EXPECT_EQ(GetPixel(WindowDc(header).Get(), 5, 5), kMark) << "painted over";
        InvalidateRect(header, nullptr, FALSE);
        EXPECT_TRUE(dialog.list.AddRow(&later));
        EXPECT_TRUE(GetUpdateRect(header, nullptr, FALSE)) << "but one that has to be painted stays so";
    }});
}

TEST(ListView, EveryTextIsFetchedWhenItIsDrawn) {
    ListDialog dialog;
    auto records = Records(2);
    dialog.inInit = [&] { AddAll(dialog.list, records); };
    const auto redraw = [&] {
        UpdateWindow(dialog.Control());
        dialog.list.asked = dialog.drawn = 0;
        dialog.list.RedrawRows();
    };
    const auto look = [&] {
        EXPECT_EQ(dialog.drawn, 2);
        EXPECT_EQ(dialog.list.asked, 6) << "each cell once";
        EXPECT_EQ(GetFocus(), dialog.Control());
    };
    dialog.ShowFor({redraw, look});
}

// Shows the records and hands the picture to `look`.
void Look(std::vector<ListRecord>& records, const std::function<void(ListDialog&, const Canvas&)>& look,
          const std::function<void(ListDialog&)>& prepare = {}) {
    ListDialog dialog;
    UniqueIcon green(TcGuiTools::LoadSizedIcon(nullptr, ICON_GREEN, 16));
    const HIMAGELIST images = ImageList_Create(16, 16, ILC_COLOR32 | ILC_MASK, 1, 1);
    ImageList_ReplaceIcon(images, -1, green.Get());
    dialog.inInit = [&] {
        dialog.SendCtrlMsg(CONTROL_LIST, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
        dialog.SendCtrlMsg(CONTROL_LIST, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_GRIDLINES, 0);
        AddAll(dialog.list, records);
        if (prepare) prepare(dialog);
    };
    dialog.ShowFor({[&] { SetFocus(dialog.Control()); }, [&] { dialog.list.RedrawRows(); },
                    [&] { look(dialog, *dialog.Picture()); }});
    ImageList_Destroy(images);
}

TEST(ListView, ARowHasTheColourItsRecordCallsFor) {
    auto records = Records(2);
    records[0].color = RGB(180, 0, 0);
    records[0].cells[1] = records[1].cells[1] = "IIIIIIII";
    Look(records, [](ListDialog& dialog, const Canvas& canvas) {
        EXPECT_GT(canvas.Count(RGB(180, 0, 0), dialog.PlaceOfLine(0)), 0);
        EXPECT_EQ(canvas.Count(RGB(180, 0, 0), dialog.PlaceOfLine(1)), 0);
        EXPECT_GT(canvas.Count(kListTextColor, dialog.PlaceOfLine(1)), 0);
        EXPECT_EQ(canvas.Count(kListTextColor, dialog.PlaceOfLine(0)), 0);
    });
}

TEST(ListView, ACellHasItsPicture) {
    auto records = Records(2);
    records[0].image = 0;
    Look(records, [](ListDialog& dialog, const Canvas& canvas) {
        const COLORREF green = RGB(0x2a, 0x9d, 0x3a);
        RECT cell = dialog.PlaceOfLine(0);
        cell.right = 25;
        EXPECT_GT(canvas.Count(green, cell), 80);
        EXPECT_EQ(canvas.Count(green, dialog.PlaceOfLine(1)), 0);
    });
}

TEST(ListView, ASelectedRowIsLitWithOrWithoutItsFirstColumn) {
    for (const bool withFirst : {true, false}) {
        auto records = Records(2);
        Look(
            records,
            [&](ListDialog& dialog, const Canvas& canvas) {
                const COLORREF light = GetSysColor(COLOR_HIGHLIGHT);
                const auto middle = static_cast<int>(dialog.PlaceOfLine(0).top + 4);
                EXPECT_EQ(canvas.At(10, middle) == light, withFirst);
                EXPECT_EQ(canvas.At(200, middle), light);
                EXPECT_NE(canvas.At(200, static_cast<int>(dialog.PlaceOfLine(1).top + 4)), light);
            },
            [&](ListDialog& dialog) {
                dialog.list.SetSelectFirstColumn(withFirst);
                dialog.Select(0);
            });
    }
}

TEST(ListView, ATextOfSeveralLinesIsDrawnInOne) {
    auto records = Records(1);
    records[0].cells[1] = "one\r\n\ttwo";
    Look(records, [&](ListDialog&, const Canvas&) {
        EXPECT_EQ(records[0].cells[1], "one\r\n\ttwo") << "a copy is drawn";
    });
}

TEST(ListView, RowsAreHighEnoughForPictureAndText) {
    ListDialog dialog;
    auto records = Records(1);
    WithAll(dialog, records, [&] {
        const RECT place = dialog.PlaceOfLine(0);
        EXPECT_GE(place.bottom - place.top, TcGuiTools::Scaled(17));
        MEASUREITEMSTRUCT menu{};
        menu.CtlType = ODT_MENU;
        EXPECT_FALSE(dialog.list.OnMeasureItem(&menu));
        EXPECT_FALSE(dialog.list.OnMeasureItem(nullptr));
        EXPECT_FALSE(dialog.list.OnDrawItem(nullptr));
    });
}

TEST(ListView, AControlThatDoesNotAskForItIsOwnerDrawnAllTheSame) {
    ToldDialog dialog(DIALOG_RESIZABLE);
    RecordList list;
    dialog.onInit = [&] {
        EXPECT_TRUE(list.InitListView(nullptr, dialog.GetControl(CONTROL_LIST)));
        EXPECT_TRUE(GetWindowLongPtrA(dialog.GetControl(CONTROL_LIST), GWL_STYLE) & LVS_OWNERDRAWFIXED);
        dialog.ExitDialog(true);
    };
    dialog.ShowDialogModal(0);
}

TEST(ListView, TheRecordUnderACursorIsFound) {
    auto records = Records(3);
    Look(records, [&](ListDialog& dialog, const Canvas&) {
        const RECT place = dialog.PlaceOfLine(2);
        POINT inside{place.left + 60, place.top + 3};
        POINT below{place.left + 60, place.bottom + 40};
        ClientToScreen(dialog.Control(), &inside);
        ClientToScreen(dialog.Control(), &below);
        EXPECT_EQ(dialog.list.ItemAtPoint(inside), &records[2]);
        EXPECT_EQ(dialog.list.ItemAtPoint(below), nullptr);
    });
}

}  // namespace
}  // namespace vardel::test
