// TcListView: an owner-drawn report list whose content is asked for when it is drawn. A derived class gives
// the content of a record; no text is stored in the control, each line of which carries its record's address.
//
// Rows are numbered from 0 in the order in which they were added or put. Where the control shows groups, a
// row's number is its line in the control. Where it can't (there are such systems), the list shows the groups
// itself: a heading line above the rows of each group, which can't be selected, sorted or acted on. RowOfLine
// and LineOfRow lead from one to the other; a heading is row -1.
//
// The object outlives its control and lets it go by itself. It answers what the control asks its dialog
// (texts for screen readers) before the dialog does. Main thread. Texts are in the system code page.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "foundation/TcString.h"
#include "platform/StringResources.h"
#include "toolkit/ControlReflection.h"
#include "toolkit/ItemIndex.h"
#include "toolkit/ListLayout.h"

#include <commctrl.h>

namespace vardel {

// The look of all lists of the program.
constexpr u32 kListTextColor = 0x820d11;           // a dark blue
constexpr u32 kListStyles = 0x00010021;            // grid lines, full row selection, double buffering
constexpr u32 kListStylesWithImages = 0x00010023;  // and pictures in every column

class TcListView {
  public:
    TcListView() = default;
    TcListView(const TcListView&) = delete;
    TcListView& operator=(const TcListView&) = delete;

    // The virtual operations, in this order. `column` counts as the columns were added.
    virtual ~TcListView();
    // The text of a cell; false for none.
    virtual bool GetItemText(int column, void* item, TcString& text) = 0;
    // The cell's picture in the control's small image list; -1 for none.
    virtual int GetItemImage(int column, void* item) = 0;
    // 0x00BBGGRR; -1 for the list's own.
    virtual int GetItemTextColor(void* item) = 0;
    // The group in which the record's row stands; -1 for none.
    virtual int GetItemGroup(void* item);

    // Binds the control and the module of the header's texts; again after a language change, which then puts
    // the header's texts anew. Without a control only the module is kept. False when no control is bound
    // then.
    bool InitListView(ModuleHandle module, HWND control);
    bool SetHwnd(HWND control);
    HWND GetHwnd() const { return control_; }
    // Whether the first column is lit together with its selected row. On at first.
    void SetSelectFirstColumn(bool on) { selectsFirstColumn_ = on; }
    // Forwarded by the dialog, also before InitListView.
    bool OnMeasureItem(MEASUREITEMSTRUCT* item);
    bool OnDrawItem(DRAWITEMSTRUCT* item);

    // The look of the program's lists: colour of the text and one of the two sets of styles above.
    void SetLook(u32 styles);

    // At the right of the others; `width` in pixels of the display, `format` is LVCFMT_LEFT, _RIGHT or
    // _CENTER. Gives the column's number, -1 on failure.
    int AddColumn(u32 textId, int width, int format = LVCFMT_LEFT);
    int AddColumn(const char* title, int width, int format = LVCFMT_LEFT);
    int ColumnCount() const;
    int ColumnWidth(int column) const;
    void SetColumnWidth(int column, int width);
    // As wide as the widest text that `textOf` gives for a row, in the default font of the user interface,
    // and `extra` more where that is above 0; as wide as its header where all texts are empty.
    using TextOf = std::function<bool(void* item, TcString& text)>;
    void FitColumn(int column, int extra, const TextOf& textOf);

    // What the user asks of the list beyond its rows: a column's divider was clicked twice (the system would measure
    // texts that it doesn't have), and the menu key was pressed, with the point of the screen at which a menu belongs.
    void OnDividerDoubleClick(std::function<void(int column)> fit) { fit_ = std::move(fit); }
    void OnMenuKey(std::function<void(POINT screen)> show) { showMenu_ = std::move(show); }

    // Switches the groups on. `title` is copied.
    bool AddGroup(int id, const char* title);
    // True when the list shows the groups itself.
    bool ShowsHeadings() const { return showsHeadings_; }

    struct Row {
        void* item = nullptr;
        int group = -1;
    };
    // Rows at the end, in one go. A record that is null or has a row is passed over; a row that the control
    // refuses too. Gives how many there are more. Takes time linear in all rows where headings are shown.
    int AddRows(std::span<const Row> rows);
    bool AddRow(void* item, int group = -1) {
        const Row row{item, group};
        return AddRows({&row, 1}) == 1;
    }
    // In one go, whatever their order; numbers outside are passed over.
    void RemoveRows(std::span<const int> rows);
    void RemoveAllRows();
    struct NewGroup {
        int row, group;
    };
    void SetGroups(std::span<const NewGroup> changes);
    // Element n is the number so far of the row that becomes the n-th; each number once, or nothing is done
    // (false). Rows keep selection and focus.
    bool SetOrder(std::span<const u32> order);

    int RowCount() const { return static_cast<int>(rows_.size()); }
    // Null outside.
    void* ItemOfRow(int row) const;
    int RowOfItem(const void* item) const { return index_.Find(item); }
    int GroupOfRow(int row) const;
    // From and to the control's own numbers, as in notifications; -1 for a heading and outside.
    int RowOfLine(int line) const;
    int LineOfRow(int row) const;
    // The record at a point of the screen; null when there is none.
    void* ItemAtPoint(POINT screen) const;

    std::vector<void*> SelectedItems() const;  // in the order of the lines
    void SelectAll();
    // Paints all rows anew and gives the list the focus, as after a change of their records.
    void RedrawRows();
    void ShowLastRow();

  private:
    class Link final : public ControlReceiver {
      public:
        explicit Link(TcListView& list) : list_(list) {}
        bool OnReflectedNotify(LPARAM data, LRESULT& result) override {
            return list_.OnOwnNotify(data, result);
        }
        LRESULT OnControlMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
            return list_.OnControlMessage(message, wParam, lParam);
        }
        void OnControlGone() override { list_.Forget(); }

      private:
        TcListView& list_;
    };
    struct Column {
        u32 textId;  // 0: the title was given
        int format;
    };
    struct Group {
        int id;
        std::string title;
    };
    struct Cell;

    LRESULT OnControlMessage(UINT message, WPARAM wParam, LPARAM lParam);
    bool FitAsAsked(LPARAM notification);
    POINT MenuPlace() const;
    bool OnOwnNotify(LPARAM data, LRESULT& result);
    bool AnswerText(NMLVDISPINFOA& asked);
    void KeepHeadingUnselected(const NMLISTVIEW& change);
    const std::string& HeadingTitle(int line) const;
    LRESULT MoveByKey(WPARAM key, LPARAM lParam);
    bool IsOnHeading(LPARAM point) const;
    void Forget();
    void OpenCellsAskedFor(UINT message, WPARAM wParam, LPARAM lParam);
    void PutTitles();
    std::string TitleOf(u32 textId) const;
    int PutColumn(u32 textId, const char* title, int width, int format);

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    template <class Record>
    LRESULT SendRecord(UINT message, WPARAM wParam, Record& record) const {
        return Send(message, wParam, reinterpret_cast<LPARAM>(&record));
    }

    // Rows and lines. `content` is a row's number or a heading, see ListLayout.h.
    class Change;
    void OpenCell(int line, int column) const;
    void OpenCells(int line) const;
    void OpenAllCells();
    bool InsertLine(int line, int content, UINT state, bool hasSelection);
    void PutSelection(LRESULT line, UINT state);
    bool PutGroup(const Group& group, bool isNew) const;
    std::vector<int> LinesOf(const std::vector<Row>& rows) const;
    int AddGrouped(std::span<const Row> rows);
    void InsertLines(std::vector<int> target, const std::vector<char>& isMissing,
                     const std::vector<UINT>& states);
    void DeleteLines(const std::vector<char>& isDropped, const std::vector<int>& target);
    void DropRows(const std::vector<char>& isDropped);
    void SortLines();
    void PutLines(std::vector<int> lines);
    void Renumber();
    static int CALLBACK CompareLines(LPARAM first, LPARAM second, LPARAM self);

    void DrawCells(const DRAWITEMSTRUCT& place);
    void DrawCell(const DRAWITEMSTRUCT& place, const Cell& cell);
    void DrawHeading(const DRAWITEMSTRUCT& place, const std::string& title);
    RowPalette Palette(bool isHighContrast) const;
    RECT CellPlace(const DRAWITEMSTRUCT& place, int column) const;

    Link link_{*this};
    HWND control_ = nullptr;
    ModuleHandle module_ = nullptr;
    bool selectsFirstColumn_ = true;
    bool showsHeadings_ = false;
    std::vector<Column> columns_;
    std::vector<Group> groups_;
    std::vector<Row> rows_;
    std::vector<int> lines_;        // of the control, where headings are shown: see ListLayout.h
    std::vector<int> linesOfRows_;  // the other way round; empty where no headings are shown
    std::function<void(int)> fit_;
    std::function<void(POINT)> showMenu_;
    bool sendsDirectly_ = false;    // while many lines change, and nobody else wants to see the messages
    bool changing_ = false;         // lines and rows are being brought in line
    bool isReadInside_ = false;     // a screen reader was handed the control's own view of its cells
    ItemIndex index_;
};

}  // namespace vardel
