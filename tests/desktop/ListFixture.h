// A list in a dialog, with records of the test's own.
#pragma once

#include "tests/desktop/DesktopFixture.h"
#include "tests/desktop/ListControl.h"
#include "toolkit/TcListView.h"

namespace vardel::test {

struct ListRecord {
    std::string cells[3];
    int image = -1;
    int color = -1;
};

class RecordList : public TcListView {
  public:
    bool GetItemText(int column, void* item, TcString& text) override {
        ++asked;
        if (onText) onText();
        text = static_cast<ListRecord*>(item)->cells[column].c_str();
        return true;
    }
    int GetItemImage(int column, void* item) override {
        return column == 0 ? static_cast<ListRecord*>(item)->image : -1;
    }
    int GetItemTextColor(void* item) override { return static_cast<ListRecord*>(item)->color; }

    int asked = 0;
    std::function<void()> onText;
};

// Runs a dialog with the list; `inInit` once the list has its three columns.
class ListDialog : public ToldDialog {
  public:
    ListDialog() : ToldDialog(DIALOG_LIST) {
        onMeasure = [this](int id, MEASUREITEMSTRUCT* item) {
            return id == CONTROL_LIST && list.OnMeasureItem(item);
        };
        onDraw = [this](int id, DRAWITEMSTRUCT* item) {
            drawn += id == CONTROL_LIST;
            return id == CONTROL_LIST && list.OnDrawItem(item);
        };
        onInit = [this] {
            ASSERT_TRUE(list.InitListView(nullptr, GetControl(CONTROL_LIST)));
            if (beforeColumns) beforeColumns();
            list.SetLook(kListStylesWithImages);
            EXPECT_EQ(list.AddColumn("", 25), 0);
            EXPECT_EQ(list.AddColumn("Address", 120), 1);
            EXPECT_EQ(list.AddColumn("Name", 150, LVCFMT_RIGHT), 2);
            if (inInit) inInit();
            if (!goesOn) ExitDialog(true);
        };
    }
    // Runs all in the initialisation.
    void With(std::function<void()> test) {
        inInit = std::move(test);
        EXPECT_TRUE(ShowDialogModal(0));
    }
    // Takes the steps one by one behind the initialisation, then ends.
    void ShowFor(std::vector<std::function<void()>> actions) {
        goesOn = true;
        EXPECT_TRUE(ToldDialog::ShowFor(std::move(actions)));
    }

    HWND Control() const { return GetControl(CONTROL_LIST); }
    int LineCount() const { return LineCountOf(Control()); }
    void* RecordOfLine(int line) const {
        LVITEMA item{};
        item.mask = LVIF_PARAM;
        item.iItem = line;
        EXPECT_TRUE(SendCtrlMsg(CONTROL_LIST, LVM_GETITEMA, 0, reinterpret_cast<LPARAM>(&item)));
        return reinterpret_cast<void*>(item.lParam);
    }
    std::string TextOfLine(int line, int column) const { return CellText(Control(), line, column); }
    void Select(int line, bool focus = false) {
        LVITEMA item{};
        item.state = LVIS_SELECTED | (focus ? LVIS_FOCUSED : 0u);
        item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
        SendCtrlMsg(CONTROL_LIST, LVM_SETITEMSTATE, static_cast<WPARAM>(line),
                    reinterpret_cast<LPARAM>(&item));
    }
    bool IsSelected(int line) const {
        return (SendCtrlMsg(CONTROL_LIST, LVM_GETITEMSTATE, static_cast<WPARAM>(line), LVIS_SELECTED) &
                LVIS_SELECTED) != 0;
    }
    int FocusedLine() const {
        return static_cast<int>(
            SendCtrlMsg(CONTROL_LIST, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    }
    // The first cells of the lines from the top, headings in brackets.
    std::string Lines() const {
        std::string all;
        for (int line = 0; line < LineCount(); ++line) {
            const auto* record = static_cast<ListRecord*>(RecordOfLine(line));
            all += record ? record->cells[1] + " " : "[" + TextOfLine(line, 0) + "] ";
        }
        return all;
    }
    // The whole list as it is drawn.
    std::unique_ptr<Canvas> Picture() const { return PictureOf(Control()); }
    RECT PlaceOfLine(int line) const { return test::PlaceOfLine(Control(), line); }

    RecordList list;
    int drawn = 0;
    bool goesOn = false;
    std::function<void()> beforeColumns;
    std::function<void()> inInit;
};

// "rN" and "name N" in the second and third column.
inline std::vector<ListRecord> Records(int count) {
    std::vector<ListRecord> records(static_cast<std::size_t>(count));
    for (int at = 0; at < count; ++at) {
        records[static_cast<std::size_t>(at)].cells[1] = "r" + std::to_string(at);
        records[static_cast<std::size_t>(at)].cells[2] = "name " + std::to_string(at);
    }
    return records;
}

inline void AddAll(RecordList& list, std::vector<ListRecord>& records) {
    std::vector<TcListView::Row> rows;
    for (ListRecord& record : records) rows.push_back({&record, -1});
    EXPECT_EQ(list.AddRows(rows), static_cast<int>(records.size()));
}

// All in the initialisation of a dialog whose list has the records.
inline void WithAll(ListDialog& dialog, std::vector<ListRecord>& records, const std::function<void()>& test) {
    dialog.With([&] {
        AddAll(dialog.list, records);
        test();
    });
}

}  // namespace vardel::test
