#include "tests/desktop/ListFixture.h"
#include "toolkit/TcGuiTools.h"

namespace vardel::test {
namespace {

constexpr int kTrusted = 1, kDistrusted = 2, kUnknown = 3;

struct GroupedList {
    explicit GroupedList(int count) : records(static_cast<std::size_t>(count)) {
        for (int at = 0; at < count; ++at)
            records[static_cast<std::size_t>(at)].cells[1] = std::string(1, static_cast<char>('a' + at % 26));
    }
    void AddGroups() {
        EXPECT_TRUE(dialog.list.AddGroup(kTrusted, "Trusted hosts"));
        EXPECT_TRUE(dialog.list.AddGroup(kDistrusted, "Distrusted hosts"));
        EXPECT_TRUE(dialog.list.AddGroup(kUnknown, "Unknown hosts"));
    }
    // A row for each digit: its group.
    void AddRows(const char* groups) {
        std::vector<TcListView::Row> rows;
        for (const char* at = groups; *at; ++at) rows.push_back({&records[next++], *at - '0'});
        EXPECT_EQ(dialog.list.AddRows(rows), static_cast<int>(rows.size()));
    }
    // All in the initialisation of a dialog whose list has the groups and these rows.
    void With(const char* groups, const std::function<void()>& test) {
        dialog.With([&] {
            AddGroups();
            AddRows(groups);
            test();
        });
    }
    // The same one by one, once the dialog stands.
    void ShowFor(const char* groups, std::vector<std::function<void()>> actions) {
        dialog.inInit = [&] {
            AddGroups();
            AddRows(groups);
        };
        dialog.ShowFor(std::move(actions));
    }
    ListDialog dialog;
    TcListView& list = dialog.list;
    std::vector<ListRecord> records;
    std::size_t next = 0;
};

// Headings: the control under test has no groups of its own.

TEST(ListGroups, EachGroupWithRowsHasAHeading) {
    GroupedList grouped(6);
    grouped.dialog.With([&] {
        grouped.AddGroups();
        ASSERT_TRUE(grouped.list.ShowsHeadings()) << "this control has groups";
        EXPECT_EQ(grouped.dialog.Lines(), "");
        grouped.AddRows("3131");
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] b d [Unknown hosts] a c ");
        grouped.AddRows("12");
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] b d e [Distrusted hosts] f [Unknown hosts] a c ");
        EXPECT_EQ(grouped.list.RowCount(), 6);
        EXPECT_EQ(grouped.list.RowOfItem(&grouped.records[4]), 4) << "rows count without headings";
        EXPECT_EQ(grouped.list.LineOfRow(4), 3);
        EXPECT_EQ(grouped.list.RowOfLine(3), 4);
        EXPECT_EQ(grouped.list.RowOfLine(0), -1);
        EXPECT_EQ(grouped.list.RowOfLine(99), -1);
        EXPECT_EQ(grouped.list.GetItemGroup(&grouped.records[5]), kDistrusted);
    });
}

TEST(ListGroups, AHeadingGoesWithTheLastRowOfItsGroup) {
    GroupedList grouped(4);
    grouped.With("1213", [&] {
        const int second[] = {1};
        grouped.list.RemoveRows(second);
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] a c [Unknown hosts] d ");
        const int rest[] = {0, 1, 2};
        grouped.list.RemoveRows(rest);
        EXPECT_EQ(grouped.dialog.Lines(), "");
    });
}

TEST(ListGroups, ARowThatChangesItsGroupKeepsItsPlaceInTheOrderAndItsState) {
    GroupedList grouped(5);
    grouped.With("31313", [&] {
        grouped.dialog.Select(grouped.list.LineOfRow(2), true);
        const TcListView::NewGroup changes[] = {{2, kTrusted}, {0, kDistrusted}, {99, 1}, {-1, 1}};
        grouped.list.SetGroups(changes);
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] b c d [Distrusted hosts] a [Unknown hosts] e ");
        EXPECT_EQ(grouped.list.SelectedItems(), (std::vector<void*>{&grouped.records[2]}));
        EXPECT_EQ(grouped.dialog.FocusedLine(), 2);
        EXPECT_EQ(grouped.list.GroupOfRow(2), kTrusted);
        EXPECT_EQ(grouped.list.RowOfItem(&grouped.records[2]), 2) << "its number stays";
    });
}

TEST(ListGroups, ManyRowsChangeTheirGroupInOneGo) {
    GroupedList grouped(300);
    grouped.With(std::string(300, '3').c_str(), [&] {
        grouped.list.SelectAll();
        std::vector<TcListView::NewGroup> changes;
        for (int row = 0; row < 300; row += 2) changes.push_back({row, kTrusted});
        grouped.list.SetGroups(changes);
        EXPECT_EQ(grouped.dialog.LineCount(), 302);
        EXPECT_EQ(grouped.dialog.RecordOfLine(0), nullptr);
        EXPECT_EQ(grouped.dialog.RecordOfLine(1), &grouped.records[0]);
        EXPECT_EQ(grouped.dialog.RecordOfLine(150), &grouped.records[298]);
        EXPECT_EQ(grouped.dialog.RecordOfLine(151), nullptr);
        EXPECT_EQ(grouped.dialog.RecordOfLine(152), &grouped.records[1]);
        EXPECT_EQ(grouped.list.SelectedItems().size(), 300u);
        EXPECT_FALSE(grouped.dialog.IsSelected(0));
        EXPECT_FALSE(grouped.dialog.IsSelected(151));
    });
}

TEST(ListGroups, SortingLeavesEachHeadingAboveItsRows) {
    GroupedList grouped(5);
    grouped.With("31213", [&] {
        grouped.dialog.Select(grouped.list.LineOfRow(1), true);
        const u32 order[] = {4, 3, 2, 1, 0};
        EXPECT_TRUE(grouped.list.SetOrder(order));
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] d b [Distrusted hosts] c [Unknown hosts] e a ");
        EXPECT_EQ(grouped.list.SelectedItems(), (std::vector<void*>{&grouped.records[1]}));
        EXPECT_EQ(grouped.list.RowOfItem(&grouped.records[4]), 0);
    });
}

TEST(ListGroups, AHeadingCannotBeSelected) {
    GroupedList grouped(3);
    grouped.With("133", [&] {
        grouped.dialog.Select(0);
        EXPECT_FALSE(grouped.dialog.IsSelected(0));
        grouped.list.SelectAll();
        EXPECT_FALSE(grouped.dialog.IsSelected(0));
        EXPECT_FALSE(grouped.dialog.IsSelected(2));
        EXPECT_EQ(grouped.list.SelectedItems().size(), 3u);
    });
}

TEST(ListGroups, TheDialogHearsNothingOfAHeading) {
    GroupedList grouped(2);
    int told = 0;
    grouped.dialog.onNotify = [&](int, LPARAM data) -> ULONG_PTR {
        const auto* header = reinterpret_cast<NMHDR*>(data);
        told += header->code == LVN_ITEMCHANGED && reinterpret_cast<NMLISTVIEW*>(data)->iItem == 0;
        return 0;
    };
    grouped.With("13", [&] {
        told = 0;
        grouped.dialog.Select(0);
        EXPECT_EQ(told, 0);
    });
}

TEST(ListGroups, TheKeyboardStepsOverHeadings) {
    GroupedList grouped(4);
    ListDialog& dialog = grouped.dialog;
    const auto press = [&](int key) {
        SendMessageA(dialog.Control(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
    };
    const auto walk = [&] {
        SetFocus(dialog.Control());
        dialog.Select(2, true);
        press(VK_DOWN);
        EXPECT_EQ(dialog.FocusedLine(), 4);
        EXPECT_EQ(dialog.list.SelectedItems(), (std::vector<void*>{&grouped.records[2]}));
        press(VK_UP);
        EXPECT_EQ(dialog.FocusedLine(), 2);
        EXPECT_EQ(dialog.list.SelectedItems(), (std::vector<void*>{&grouped.records[1]}));
        press(VK_HOME);
        EXPECT_EQ(dialog.FocusedLine(), 1);
        press(VK_UP);
        EXPECT_EQ(dialog.FocusedLine(), 1) << "there is no row above";
        EXPECT_EQ(dialog.list.SelectedItems(), (std::vector<void*>{&grouped.records[0]}));
        press(VK_END);
        EXPECT_EQ(dialog.FocusedLine(), 5);
    };
    grouped.ShowFor("1133", {walk});  // lines: heading, a, b, heading, c, d
}

TEST(ListGroups, AClickOnAHeadingLeavesTheSelection) {
    GroupedList grouped(2);
    ListDialog& dialog = grouped.dialog;
    const auto click = [&] {
        dialog.Select(1, true);
        const RECT heading = dialog.PlaceOfLine(2);
        const LPARAM point = MAKELPARAM(heading.left + 40, heading.top + 4);
        SendMessageA(dialog.Control(), WM_LBUTTONDOWN, MK_LBUTTON, point);
        SendMessageA(dialog.Control(), WM_LBUTTONUP, 0, point);
        EXPECT_TRUE(dialog.IsSelected(1));
        EXPECT_EQ(GetFocus(), dialog.Control());
        POINT screen{heading.left + 40, heading.top + 4};
        ClientToScreen(dialog.Control(), &screen);
        EXPECT_EQ(dialog.list.ItemAtPoint(screen), nullptr);
    };
    grouped.ShowFor("13", {click});
}

TEST(ListGroups, HeadingsAreDrawn) {
    GroupedList grouped(2);
    ListDialog& dialog = grouped.dialog;
    const auto look = [&] {
        const auto picture = dialog.Picture();
        EXPECT_GT(picture->Count(kListTextColor, dialog.PlaceOfLine(0)), 100) << "title and rule";
        EXPECT_LT(picture->Count(kListTextColor, dialog.PlaceOfLine(1)), 60);
    };
    grouped.ShowFor("13", {[&] { dialog.list.RedrawRows(); }, look});
}

TEST(ListGroups, AnotherTitleTakesThePlaceOfTheOld) {
    GroupedList grouped(1);
    grouped.With("1", [&] {
        EXPECT_TRUE(grouped.list.AddGroup(kTrusted, "Vertraute Rechner"));
        EXPECT_EQ(grouped.dialog.Lines(), "[Vertraute Rechner] a ");
    });
}

TEST(ListGroups, RowsThatWereThereFirstGoUnderTheirHeadings) {
    GroupedList grouped(3);
    grouped.dialog.With([&] {
        grouped.AddRows("313");
        grouped.AddGroups();
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] b [Unknown hosts] a c ");
    });
}

TEST(ListGroups, RowsOfNoGroupComeLastWithoutAHeading) {
    GroupedList grouped(3);
    grouped.With("713", [&] {
        EXPECT_EQ(grouped.dialog.Lines(), "[Trusted hosts] b [Unknown hosts] c a ");
    });
}

// A control with groups, played by a subclass that notes what it is sent.
class GroupViewPlayer {
  public:
    explicit GroupViewPlayer(HWND control) {
        SetWindowSubclass(control, &GroupViewPlayer::Proc, 1, reinterpret_cast<DWORD_PTR>(this));
    }

    std::vector<std::string> told;

  private:
    static LRESULT CALLBACK Proc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                 DWORD_PTR self) {
        auto& player = *reinterpret_cast<GroupViewPlayer*>(self);
        switch (message) {
            case LVM_ENABLEGROUPVIEW:
                player.isOn_ = wParam != 0;
                player.told.push_back("enable " + std::to_string(wParam));
                return 1;
            case LVM_ISGROUPVIEWENABLED:
                return player.isOn_;
            case LVM_INSERTGROUP:
            case LVM_SETGROUPINFO: {
                const auto& group = *reinterpret_cast<LVGROUP*>(lParam);
                EXPECT_EQ(group.cbSize, sizeof group);
                EXPECT_EQ(group.mask & (LVGF_HEADER | LVGF_GROUPID),
                          static_cast<UINT>(LVGF_HEADER | LVGF_GROUPID));
                std::string title;
                for (const wchar_t* at = group.pszHeader; *at; ++at) title += static_cast<char>(*at);
                player.told.push_back((message == LVM_INSERTGROUP ? "group " : "change ") +
                                      std::to_string(group.iGroupId) + " " + title);
                return group.iGroupId;
            }
            case LVM_INSERTITEMA:
            case LVM_SETITEMA: {
                const auto& item = *reinterpret_cast<LVITEMA*>(lParam);
                if (item.mask & LVIF_GROUPID)
                    player.told.push_back((message == LVM_INSERTITEMA ? "insert " : "set ") +
                                          std::to_string(item.iItem) + " in " +
                                          std::to_string(item.iGroupId));
                LVITEMA plain = item;
                plain.mask &= ~static_cast<UINT>(LVIF_GROUPID);
                return DefSubclassProc(control, message, wParam, reinterpret_cast<LPARAM>(&plain));
            }
            case WM_NCDESTROY:
                RemoveWindowSubclass(control, &GroupViewPlayer::Proc, id);
                break;
            default:
                break;
        }
        return DefSubclassProc(control, message, wParam, lParam);
    }

    bool isOn_ = false;
};

TEST(ListGroups, AControlWithGroupsShowsThemItself) {
    GroupedList grouped(4);
    std::unique_ptr<GroupViewPlayer> player;
    grouped.dialog.beforeColumns = [&] {
        player = std::make_unique<GroupViewPlayer>(grouped.dialog.Control());
    };
    grouped.dialog.With([&] {
        grouped.AddGroups();
        EXPECT_FALSE(grouped.list.ShowsHeadings());
        EXPECT_EQ(player->told,
                  (std::vector<std::string>{"enable 1", "group 1 Trusted hosts", "group 2 Distrusted hosts",
                                            "group 3 Unknown hosts"}));
        player->told.clear();
        grouped.AddRows("312");
        EXPECT_EQ(player->told,
                  (std::vector<std::string>{"insert 0 in 3", "insert 1 in 1", "insert 2 in 2"}));
        EXPECT_EQ(grouped.dialog.LineCount(), 3) << "no headings of its own";
        player->told.clear();
        const TcListView::NewGroup changes[] = {{0, kTrusted}, {1, kTrusted}};
        grouped.list.SetGroups(changes);
        EXPECT_EQ(player->told, (std::vector<std::string>{"set 0 in 1"})) << "a row that stays is left alone";
        const u32 order[] = {2, 1, 0};
        EXPECT_TRUE(grouped.list.SetOrder(order));
        EXPECT_EQ(grouped.dialog.Lines(), "c b a ");
        EXPECT_EQ(grouped.list.GroupOfRow(0), kDistrusted);
        const int removed[] = {1};
        grouped.list.RemoveRows(removed);
        EXPECT_EQ(grouped.dialog.Lines(), "c a ");
        player->told.clear();
        EXPECT_TRUE(grouped.list.AddGroup(kTrusted, "Other"));
        EXPECT_EQ(player->told, (std::vector<std::string>{"change 1 Other"}));
    });
}

}  // namespace
}  // namespace vardel::test
