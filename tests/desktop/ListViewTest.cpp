#include "tests/desktop/ListFixture.h"
#include "toolkit/UniqueHandle.h"

namespace vardel::test {
namespace {

TEST(ListView, RowsCarryTheirRecordsAndNoText) {
    ListDialog dialog;
    auto records = Records(3);
    WithAll(dialog, records, [&] {
        EXPECT_EQ(dialog.LineCount(), 3);
        EXPECT_EQ(dialog.RecordOfLine(1), &records[1]);
        EXPECT_EQ(dialog.TextOfLine(1, 1), "r1");
        EXPECT_EQ(dialog.TextOfLine(1, 2), "name 1");
        records[1].cells[2] = "changed";
        EXPECT_EQ(dialog.TextOfLine(1, 2), "changed") << "asked for when it is needed";
    });
}

// Notes as "line.column" which cells the control is told to ask for.
class OpenedCells {
  public:
    explicit OpenedCells(HWND control) : control_(control) {
        SetWindowSubclass(control_, &OpenedCells::Proc, 1, reinterpret_cast<DWORD_PTR>(this));
    }
    ~OpenedCells() { RemoveWindowSubclass(control_, &OpenedCells::Proc, 1); }
    OpenedCells(const OpenedCells&) = delete;
    OpenedCells& operator=(const OpenedCells&) = delete;
    // Since the last call.
    std::string Take() { return std::exchange(opened_, ""); }

  private:
    static LRESULT CALLBACK Proc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self) {
        const auto* cell = reinterpret_cast<const LVITEMA*>(lParam);
        if (message == LVM_SETITEMTEXTA && cell->pszText == LPSTR_TEXTCALLBACKA)
            reinterpret_cast<OpenedCells*>(self)->opened_ +=
                std::to_string(wParam) + "." + std::to_string(cell->iSubItem) + " ";
        return DefSubclassProc(control, message, wParam, lParam);
    }

    const HWND control_;
    std::string opened_;
};

TEST(ListView, CellsAreOpenedForWhoeverAsksForOne) {
    ListDialog dialog;
    auto records = Records(3);
    dialog.With([&] {
        OpenedCells cells(dialog.Control());
        AddAll(dialog.list, records);
        EXPECT_EQ(cells.Take(), "") << "drawing needs none";
        EXPECT_EQ(dialog.TextOfLine(1, 2), "name 1");
        EXPECT_EQ(cells.Take(), "1.2 ");
        EXPECT_EQ(dialog.TextOfLine(1, 0), "");
        EXPECT_EQ(cells.Take(), "") << "the first is always open";

        wchar_t wide[20] = L"";
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iSubItem = 1;
        item.pszText = wide;
        item.cchTextMax = 20;
        EXPECT_TRUE(dialog.SendCtrlMsg(CONTROL_LIST, LVM_GETITEMTEXTW, 0, reinterpret_cast<LPARAM>(&item)));
        EXPECT_STREQ(wide, L"r0");
        EXPECT_EQ(cells.Take(), "0.1 ");
        for (const UINT message : {LVM_GETITEMA, LVM_GETITEMW}) {
            item.iItem = 2;
            EXPECT_TRUE(dialog.SendCtrlMsg(CONTROL_LIST, message, 0, reinterpret_cast<LPARAM>(&item)));
            EXPECT_EQ(cells.Take(), "2.1 ");
            EXPECT_FALSE(dialog.SendCtrlMsg(CONTROL_LIST, message, 0, 0)) << "a message without a record";
        }
        item.mask = LVIF_STATE;
        EXPECT_TRUE(dialog.SendCtrlMsg(CONTROL_LIST, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        EXPECT_EQ(cells.Take(), "") << "no text was asked for";
    });
}

TEST(ListView, AScreenReaderThatReadsTheControlFromWithinFindsAllCells) {
    ListDialog dialog;
    auto records = Records(2);
    ListRecord late;
    WithAll(dialog, records, [&] {
        OpenedCells cells(dialog.Control());
        dialog.SendCtrlMsg(CONTROL_LIST, WM_GETOBJECT, 0, OBJID_CLIENT);
        EXPECT_EQ(cells.Take(), "0.1 0.2 1.1 1.2 ");
        dialog.SendCtrlMsg(CONTROL_LIST, WM_GETOBJECT, 0, OBJID_CLIENT);
        EXPECT_EQ(cells.Take(), "") << "once is enough";
        EXPECT_TRUE(dialog.list.AddRow(&late));
        EXPECT_EQ(cells.Take(), "2.1 2.2 ") << "rows that come later, too";
    });
}

TEST(ListView, TheRowOfARecordIsFound) {
    ListDialog dialog;
    auto records = Records(100);
    ListRecord stranger;
    WithAll(dialog, records, [&] {
        EXPECT_EQ(dialog.list.RowCount(), 100);
        EXPECT_EQ(dialog.list.RowOfItem(&records[42]), 42);
        EXPECT_EQ(dialog.list.ItemOfRow(42), &records[42]);
        EXPECT_EQ(dialog.list.RowOfItem(&stranger), -1);
        EXPECT_EQ(dialog.list.ItemOfRow(100), nullptr);
        EXPECT_EQ(dialog.list.ItemOfRow(-1), nullptr);
        const int removed[] = {10, 20, 500, -1, 10};
        dialog.list.RemoveRows(removed);
        EXPECT_EQ(dialog.list.RowCount(), 98);
        EXPECT_EQ(dialog.LineCount(), 98);
        EXPECT_EQ(dialog.list.RowOfItem(&records[10]), -1);
        EXPECT_EQ(dialog.list.RowOfItem(&records[42]), 40);
        EXPECT_EQ(dialog.RecordOfLine(40), &records[42]);
    });
}

TEST(ListView, ARecordHasOneRow) {
    ListDialog dialog;
    ListRecord record;
    dialog.With([&] {
        EXPECT_TRUE(dialog.list.AddRow(&record));
        EXPECT_FALSE(dialog.list.AddRow(&record));
        EXPECT_FALSE(dialog.list.AddRow(nullptr));
        EXPECT_EQ(dialog.LineCount(), 1);
    });
}

TEST(ListView, TheOrderIsPutAndSelectionAndFocusGoAlong) {
    ListDialog dialog;
    auto records = Records(4);
    WithAll(dialog, records, [&] {
        dialog.Select(1, true);
        const u32 order[] = {3, 2, 1, 0};
        EXPECT_TRUE(dialog.list.SetOrder(order));
        EXPECT_EQ(dialog.Lines(), "r3 r2 r1 r0 ");
        EXPECT_EQ(dialog.list.RowOfItem(&records[3]), 0);
        EXPECT_EQ(dialog.list.SelectedItems(), (std::vector<void*>{&records[1]}));
        EXPECT_EQ(dialog.FocusedLine(), 2);
    });
}

TEST(ListView, AnOrderThatIsNoneIsRefused) {
    ListDialog dialog;
    auto records = Records(3);
    WithAll(dialog, records, [&] {
        for (const std::vector<u32>& order : {std::vector<u32>{0, 1}, {0, 1, 1}, {0, 1, 3}, {0, 1, 2, 2}})
            EXPECT_FALSE(dialog.list.SetOrder(order));
        EXPECT_EQ(dialog.Lines(), "r0 r1 r2 ");
    });
}

TEST(ListView, AllRowsGoAtOnce) {
    ListDialog dialog;
    auto records = Records(5);
    int notices = 0;
    dialog.onNotify = [&](int, LPARAM data) -> ULONG_PTR {
        notices += reinterpret_cast<const NMHDR*>(data)->code == static_cast<UINT>(LVN_DELETEITEM);
        return 0;
    };
    WithAll(dialog, records, [&] {
        dialog.list.RemoveAllRows();
        EXPECT_EQ(dialog.LineCount(), 0);
        EXPECT_EQ(notices, 0) << "one for each line would take its time";
        EXPECT_EQ(dialog.list.RowOfItem(&records[0]), -1);
        AddAll(dialog.list, records);
        EXPECT_EQ(dialog.LineCount(), 5);
    });
}

TEST(ListView, AllRowsAreSelected) {
    ListDialog dialog;
    auto records = Records(5);
    WithAll(dialog, records, [&] {
        dialog.list.SelectAll();
        EXPECT_EQ(dialog.list.SelectedItems().size(), 5u);
    });
}

TEST(ListView, OutlivesItsControlAndServesTheNext) {
    ListDialog dialog;
    auto records = Records(2);
    for (int round = 0; round < 2; ++round) {
        dialog.With([&] {
            EXPECT_EQ(dialog.list.RowCount(), 0);
            AddAll(dialog.list, records);
        });
        EXPECT_EQ(dialog.list.GetHwnd(), nullptr);
        EXPECT_EQ(dialog.list.RowCount(), 0);
        EXPECT_FALSE(dialog.list.AddRow(&records[0]));
    }
}

TEST(ListView, TheControlMayOutliveIt) {
    ToldDialog dialog(DIALOG_LIST);
    ListRecord record;
    dialog.onInit = [&] {
        {
            RecordList list;
            EXPECT_TRUE(list.InitListView(nullptr, dialog.GetControl(CONTROL_LIST)));
            EXPECT_TRUE(list.AddRow(&record));
        }
        dialog.SendCtrlMsg(CONTROL_LIST, LVM_DELETEALLITEMS, 0, 0);
        dialog.ExitDialog(true);
    };
    EXPECT_TRUE(dialog.ShowDialogModal(0));
}

TEST(ListView, WithoutAControlOnlyTheModuleIsKept) {
    RecordList list;
    EXPECT_FALSE(list.InitListView(nullptr, nullptr));
    EXPECT_FALSE(list.SetHwnd(nullptr));
    EXPECT_EQ(list.AddColumn("Title", 100), -1);
    EXPECT_FALSE(list.AddGroup(1, "Group"));
    EXPECT_TRUE(list.SelectedItems().empty());
    list.SelectAll();
    list.RedrawRows();
    list.RemoveAllRows();
}

TEST(ListView, HeaderTextsComeFromTheModuleAndAnewAfterALanguageChange) {
    ListDialog dialog;
    dialog.With([&] {
        EXPECT_EQ(dialog.list.AddColumn(TEXT_FIRST_COLUMN, 100), 3);
        EXPECT_EQ(ColumnTitle(dialog.Control(), 3), "IP - Address");
        LVCOLUMNA column{};
        char other[] = "other";
        column.mask = LVCF_TEXT;
        column.pszText = other;
        for (const int at : {1, 3})
            dialog.SendCtrlMsg(CONTROL_LIST, LVM_SETCOLUMNA, static_cast<WPARAM>(at),
                               reinterpret_cast<LPARAM>(&column));
        EXPECT_TRUE(dialog.list.InitListView(nullptr, dialog.Control()));
        EXPECT_EQ(ColumnTitle(dialog.Control(), 3), "IP - Address");
        EXPECT_EQ(ColumnTitle(dialog.Control(), 1), "other") << "a title that was given is not the language's";
        EXPECT_EQ(dialog.list.ColumnCount(), 4);
    });
}

TEST(ListView, RowsThatComeWhileAColumnIsFittedAreNotAskedFor) {
    ListDialog dialog;
    auto records = Records(3), later = Records(2000);
    WithAll(dialog, records, [&] {
        int asked = 0;
        dialog.list.FitColumn(1, 16, [&](void* item, TcString& text) {
            text = static_cast<ListRecord*>(item)->cells[1].c_str();
            if (++asked == 1)
                for (ListRecord& record : later) dialog.list.AddRow(&record);
            return true;
        });
        EXPECT_EQ(asked, 3);
        EXPECT_EQ(dialog.list.RowCount(), 2003);
    });
}

TEST(ListView, AColumnIsFittedToItsWidestText) {
    ListDialog dialog;
    auto records = Records(3);
    records[1].cells[1] = "a considerably longer text";
    const auto textOf = [](void* item, TcString& text) {
        text = static_cast<ListRecord*>(item)->cells[1].c_str();
        return true;
    };
    WithAll(dialog, records, [&] {
        dialog.list.FitColumn(1, 16, textOf);
        const WindowDc dc(nullptr);
        const Selected font(dc.Get(), GetStockObject(DEFAULT_GUI_FONT));
        SIZE size{};
        GetTextExtentPoint32A(dc.Get(), records[1].cells[1].c_str(),
                              static_cast<int>(records[1].cells[1].size()), &size);
        EXPECT_EQ(dialog.list.ColumnWidth(1), size.cx + 16);
        dialog.list.FitColumn(1, 16, [](void*, TcString&) { return false; });
        const int byHeader = dialog.list.ColumnWidth(1);
        dialog.list.SetColumnWidth(1, 5);
        dialog.SendCtrlMsg(CONTROL_LIST, LVM_SETCOLUMNWIDTH, 1, LVSCW_AUTOSIZE_USEHEADER);
        EXPECT_EQ(dialog.list.ColumnWidth(1), byHeader);
    });
}

TEST(ListView, ALongTextIsCutForTheControlBetweenCharacters) {
    ListDialog dialog;
    auto records = Records(1);
    records[0].cells[1] = std::string(70000, 'x');
    WithAll(dialog, records, [&] {
        EXPECT_EQ(dialog.TextOfLine(0, 1), std::string(259, 'x'));
    });
}

// Processor time of this thread so far.
double ThreadSeconds() {
    FILETIME made{}, ended{}, kernel{}, user{};
    GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user);
    return (static_cast<double>(kernel.dwLowDateTime) + static_cast<double>(user.dwLowDateTime)) / 1e7;
}

double SecondsToFillAndSort(int count) {
    ListDialog dialog;
    auto records = Records(count);
    double seconds = 0;
    dialog.With([&] {
        const double begin = ThreadSeconds();
        AddAll(dialog.list, records);
        std::vector<u32> order(records.size());
        for (u32 at = 0; at < order.size(); ++at) order[at] = static_cast<u32>(order.size()) - 1 - at;
        EXPECT_TRUE(dialog.list.SetOrder(order));
        EXPECT_EQ(dialog.RecordOfLine(0), &records.back());
        seconds = ThreadSeconds() - begin;
    });
    return seconds;
}

TEST(ListView, FillingAndSortingTakeTimeLinearInTheRows) {
    const double few = SecondsToFillAndSort(4000);
    // Four times as many rows; a search for each would take sixteen times as long.
    EXPECT_LT(SecondsToFillAndSort(16000), 9 * few + 0.1);
}

}  // namespace
}  // namespace vardel::test
