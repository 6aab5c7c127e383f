// The host view's context menu and what its commands do to hosts, settings and other programs.
#include "resources/MenuIds.h"
#include "tests/desktop/HostViewFixture.h"

namespace vardel {
namespace {

using test::OpenMenu;
using test::kProduct;

struct HostViewMenu : test::HostViewFixture {
    // Opens the view and its menu with the host selected (none: empty), looks at it, and closes it again.
    template <class Look>
    void LookAtMenu(const std::string& selected, Look&& look) {
        While(
            [&, selected] {
                if (!selected.empty()) Select(selected);
                AskForMenu();
            },
            [&] {
                const OpenMenu menu;
                ASSERT_TRUE(menu.IsOpen());
                look(menu);
                menu.Escape();
            },
            [] { EXPECT_FALSE(OpenMenu().IsOpen()); });
    }
    // Chooses a command of the menu over the selected host.
    void Choose(const std::string& selected, UINT command) {
        While(
            [&, selected] {
                Select(selected);
                AskForMenu();
            },
            [command] { OpenMenu().Choose(command); }, [] {}, [] { EXPECT_FALSE(OpenMenu().IsOpen()); });
    }
    bool Wrote(const std::string& section) const {
        return std::count(store.calls.begin(), store.calls.end(), "delete " + kProduct + "\\" + section) > 0;
    }
    bool IsListed(ListedHostTable& table, const char* ip) { return table.FindValue(ip) != nullptr; }
};

constexpr UINT kHostCommands[] = {IDM_SET_TRUSTED, IDM_SET_DISTRUSTED, IDM_SET_UNKNOWN, IDM_DELETE_HOSTS};

TEST_F(HostViewMenu, WithoutARowItsHostCommandsAreGrey) {
    Knows("10.0.0.5").presentationUrl = "http://10.0.0.5/";
    LookAtMenu("", [](const OpenMenu& menu) {
        for (const UINT command : kHostCommands) EXPECT_TRUE(menu.IsGrey(command)) << command;
        EXPECT_TRUE(menu.IsGrey(IDM_DEVICE_URL));
        EXPECT_FALSE(menu.IsGrey(IDM_SHOW_TRUSTED));
    });
}

TEST_F(HostViewMenu, OnARowTheyAreOffered) {
    Knows("10.0.0.5").presentationUrl = "http://10.0.0.5/";
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) {
        for (const UINT command : kHostCommands) EXPECT_FALSE(menu.IsGrey(command)) << command;
        EXPECT_FALSE(menu.IsGrey(IDM_DEVICE_URL));
    });
}

TEST_F(HostViewMenu, AHostWithoutAPageOffersNone) {
    Knows("10.0.0.5");
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) { EXPECT_TRUE(menu.IsGrey(IDM_DEVICE_URL)); });
}

TEST_F(HostViewMenu, ARightClickOpensItForTheRowBeneath) {
    Knows("10.0.0.5");
    While(
        [&] {
            const RECT place = test::PlaceOfLine(List(), LineOf("10.0.0.5"), LVIR_LABEL);
            POINT point{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
            const LPARAM where = MAKELPARAM(point.x, point.y);
            ClientToScreen(List(), &point);
            SetCursorPos(static_cast<int>(point.x), static_cast<int>(point.y));
            PostMessageA(List(), WM_RBUTTONDOWN, MK_RBUTTON, where);
            PostMessageA(List(), WM_RBUTTONUP, 0, where);
        },
        [] {},
        [] {
            const OpenMenu menu;
            ASSERT_TRUE(menu.IsOpen());
            EXPECT_FALSE(menu.IsGrey(IDM_SET_TRUSTED));
            menu.Escape();
        },
        [&] { EXPECT_EQ(SelectedCount(), 1); });
}

TEST_F(HostViewMenu, ItsItemsBearTheStatedTexts) {
    LookAtMenu("", [](const OpenMenu& menu) {
        const auto plain = [&](UINT command) {
            std::string text = menu.Text(command);
            std::erase(text, '&');
            return text;
        };
        EXPECT_EQ(plain(IDM_SET_TRUSTED), "Set host(s) as trusted");
        EXPECT_EQ(plain(IDM_SET_DISTRUSTED), "Set host(s) as distrusted");
        EXPECT_EQ(plain(IDM_SET_UNKNOWN), "Set host(s) as unknown");
        EXPECT_EQ(plain(IDM_DELETE_HOSTS), "Delete selected host(s)");
        EXPECT_EQ(plain(IDM_DEVICE_URL), "Device URL");
        EXPECT_EQ(plain(IDM_SHOW_TRUSTED), "Show trusted hosts");
        EXPECT_EQ(plain(IDM_SHOW_DISTRUSTED), "Show distrusted hosts");
        EXPECT_EQ(plain(IDM_SHOW_UNKNOWN), "Show unknown hosts");
    });
}

TEST_F(HostViewMenu, TheFilterIsMarkedAndHiddenTrustedHostsAreNotTheFiltersToShow) {
    data.settings.ViewFilterOptions = kShowTrusted | kShowUnknown;
    LookAtMenu("", [](const OpenMenu& menu) {
        EXPECT_TRUE(menu.IsChecked(IDM_SHOW_TRUSTED));
        EXPECT_FALSE(menu.IsChecked(IDM_SHOW_DISTRUSTED));
        EXPECT_TRUE(menu.IsChecked(IDM_SHOW_UNKNOWN));
    });
    data.settings.ViewHideSecure = 1;
    LookAtMenu("", [](const OpenMenu& menu) {
        EXPECT_FALSE(menu.IsChecked(IDM_SHOW_TRUSTED));
        EXPECT_TRUE(menu.IsGrey(IDM_SHOW_TRUSTED));
        EXPECT_FALSE(menu.IsGrey(IDM_SHOW_UNKNOWN));
    });
}

TEST_F(HostViewMenu, AFilterThatIsChosenHoldsFromTheNextRefreshAndIsStored) {
    Knows("10.0.0.1", TrustState::Trusted);
    Knows("10.0.0.2");
    store.calls.clear();
    Choose("10.0.0.1", IDM_SHOW_TRUSTED);
    EXPECT_EQ(data.settings.ViewFilterOptions.Get(), kShowDistrusted | kShowUnknown);
    EXPECT_FALSE(store.calls.empty());
    While([&] {
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.2 ");
        Command(IDM_SHOW_TRUSTED);
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.2 ");
        Tick();
        EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.1 [Unknown hosts] 10.0.0.2 ");
    });
}

TEST_F(HostViewMenu, TheLastGroupOfTheFilterStays) {
    data.settings.ViewFilterOptions = kShowDistrusted;
    store.calls.clear();
    While([&] { Command(IDM_SHOW_DISTRUSTED); });
    EXPECT_EQ(data.settings.ViewFilterOptions.Get(), kShowDistrusted);
    EXPECT_TRUE(store.calls.empty());
    LookAtMenu("", [](const OpenMenu& menu) { EXPECT_TRUE(menu.IsChecked(IDM_SHOW_DISTRUSTED)); });
}

TEST_F(HostViewMenu, TrustIsGivenToAllSelectedHostsAndTheGroupsFollow) {
    HostRecord& first = Knows("10.0.0.5");
    HostRecord& second = Knows("10.0.0.6");
    Knows("10.0.0.7");
    While([&] {
        Select("10.0.0.5");
        Select("10.0.0.6");
        Command(IDM_SET_TRUSTED);
        EXPECT_EQ(first.trustState.Get(), TrustState::Trusted);
        EXPECT_EQ(second.trustState.Get(), TrustState::Trusted);
        EXPECT_TRUE(IsListed(data.settings.trustedHosts, "10.0.0.5"));
        EXPECT_TRUE(Wrote("TrustedHosts"));
        EXPECT_FALSE(Wrote("DistrustedHosts"));
        EXPECT_EQ(GetFocus(), List());
        Tick();
        EXPECT_EQ(view.List().GroupOfRow(view.List().RowOfItem(&first)), 1);
        EXPECT_EQ(view.List().GroupOfRow(view.List().RowOfItem(&second)), 1);
        EXPECT_EQ(Lines().rfind("[Unknown hosts] 10.0.0.7 "), Lines().size() - 25);
    });
}

TEST_F(HostViewMenu, SettingATrustedHostAsTrustedSavesNothing) {
    Knows("10.0.0.5", TrustState::Trusted);
    store.calls.clear();
    Choose("10.0.0.5", IDM_SET_TRUSTED);
    EXPECT_TRUE(store.calls.empty());
}

TEST_F(HostViewMenu, ADistrustedHostThatBecomesUnknownSavesItsTableAlone) {
    Knows("10.0.0.5");
    Choose("10.0.0.5", IDM_SET_DISTRUSTED);
    EXPECT_TRUE(IsListed(data.settings.distrustedHosts, "10.0.0.5"));
    store.calls.clear();
    Choose("10.0.0.5", IDM_SET_UNKNOWN);
    EXPECT_FALSE(IsListed(data.settings.distrustedHosts, "10.0.0.5"));
    EXPECT_TRUE(Wrote("DistrustedHosts"));
    EXPECT_FALSE(Wrote("TrustedHosts"));
}

TEST_F(HostViewMenu, DeletedHostsGoAtOnceAndTheCountFollows) {
    Knows("10.0.0.5");
    Knows("10.0.0.6");
    Knows("10.0.0.7");
    While([&] {
        Select("10.0.0.5");
        Select("10.0.0.7");
        Command(IDM_DELETE_HOSTS);
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.6 ");
        EXPECT_EQ(Count(), "3");
        EXPECT_EQ(data.arpMap.Count(), 1u);
        Tick();
        EXPECT_EQ(Count(), "1");
        Knows("10.0.0.5");  // heard of again
        Tick();
        EXPECT_EQ(Lines(), "[Unknown hosts] 10.0.0.6 10.0.0.5 ");
    });
}

TEST_F(HostViewMenu, ADevicesPageOpensForOneSelectedHostAlone) {
    Knows("10.0.0.5").presentationUrl = "http://10.0.0.5/";
    Knows("10.0.0.6").presentationUrl = "http://10.0.0.6/";
    Choose("10.0.0.5", IDM_DEVICE_URL);
    ASSERT_EQ(system.shell.launches.size(), 1u);
    EXPECT_EQ(system.shell.launches[0].verb, ShellVerb::Open);
    EXPECT_EQ(system.shell.launches[0].file, "http://10.0.0.5/");
    While([&] {
        Select("10.0.0.5");
        Select("10.0.0.6");
        Command(IDM_DEVICE_URL);
    });
    EXPECT_EQ(system.shell.launches.size(), 1u);
}

TEST_F(HostViewMenu, AnAddressThatIsNoneOfTheWebIsNotOpened) {
    Knows("10.0.0.5").presentationUrl = "file:///c:/windows/system32/calc.exe";
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) { EXPECT_TRUE(menu.IsGrey(IDM_DEVICE_URL)); });
    While([&] {
        Select("10.0.0.5");
        Command(IDM_DEVICE_URL);
    });
    EXPECT_TRUE(system.shell.launches.empty());
}

TEST_F(HostViewMenu, ApplicationsAreStartedForTheHost) {
    data.settings.applications.Write({test::Application("first"), test::Application("second")});
    Knows("10.0.0.5");
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) {
        EXPECT_EQ(menu.Text(21000), "first");
        EXPECT_EQ(menu.Text(21001), "second");
        EXPECT_FALSE(menu.Has(21002));
    });
    Choose("10.0.0.5", 21001);
    ASSERT_EQ(system.shell.launches.size(), 1u);
    EXPECT_EQ(system.shell.launches[0].file, "/usr/bin/second");
    EXPECT_EQ(system.shell.launches[0].pieces, (std::vector<std::string>{"10.0.0.5"}));
}

TEST_F(HostViewMenu, SubmenusThatOfferNothingAreGrey) {
    Knows("10.0.0.5");
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) {
        EXPECT_TRUE(menu.IsGreyAt(IDM_PLUGINS_POSITION));
        EXPECT_TRUE(menu.IsGreyAt(IDM_APPLICATIONS_POSITION));
        EXPECT_FALSE(menu.IsGreyAt(IDM_FILTER_POSITION));
    });
    data.settings.applications.Write({test::Application("first")});
    LookAtMenu("10.0.0.5", [](const OpenMenu& menu) {
        EXPECT_TRUE(menu.IsGreyAt(IDM_PLUGINS_POSITION));
        EXPECT_FALSE(menu.IsGreyAt(IDM_APPLICATIONS_POSITION));
    });
}

// Plugins

struct HostViewPlugins : HostViewMenu {
    void Load() {
        folder.Add("plugin.so", plugin);
        data.plugins.LoadPlugins();
        data.plugins.FirstPlugin(0)->active = 1;
    }
    test::PluginFolder folder{system};
    test::ScriptedPlugin plugin;
};

TEST_F(HostViewPlugins, OneForTheViewRunsOnTheHostWithTheViewsWindow) {
    plugin.Named(PLUGIN_TYPE_VIEW, "tool");
    std::string ip;
    HWND window = nullptr;
    u32 count = 0;
    plugin.On(&PluginInfo::Run, [&](PluginInfo& info) {
        ip = static_cast<PluginHostText*>(info.data)->ip;
        window = static_cast<HWND>(info.window);
        count = info.dataCount;
        return 0u;
    });
    Load();
    Knows("10.0.0.5");
    HWND shown = nullptr;
    While(
        [&] {
            shown = view.GetHwnd();
            Select("10.0.0.5");
            AskForMenu();
        },
        [&] {
            const OpenMenu menu;
            EXPECT_EQ(menu.Text(20000), "tool");
            menu.Choose(20000);
        },
        [] {});
    EXPECT_EQ(ip, "10.0.0.5");
    EXPECT_EQ(window, shown);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(plugin.block.data, nullptr) << "cleared again";
    EXPECT_EQ(plugin.block.dataCount, 0u);
}

TEST_F(HostViewPlugins, OneThatThrowsDoesNoHarm) {
    plugin.Named(PLUGIN_TYPE_VIEW, "tool");
    int runs = 0;
    plugin.On(&PluginInfo::Run, [&](PluginInfo&) -> u32 {
        ++runs;
        throw 1;
    });
    Load();
    Knows("10.0.0.5");
    Choose("10.0.0.5", 20000);
    EXPECT_EQ(runs, 1);
}

TEST_F(HostViewPlugins, WithoutARowNothingRuns) {
    plugin.Named(PLUGIN_TYPE_VIEW, "tool");
    int runs = 0;
    plugin.On(&PluginInfo::Run, [&](PluginInfo&) {
        ++runs;
        return 0u;
    });
    Load();
    While([&] { AskForMenu(); }, [] { OpenMenu().Choose(20000); }, [] {});
    EXPECT_EQ(runs, 0);
}

// A plugin that tells the length of a host's name in a column of its own.
struct HostViewColumns : HostViewPlugins {
    HostViewColumns() {
        plugin.Named(PLUGIN_TYPE_COLUMNS, "lengths");
        plugin.On(&PluginInfo::Run, [this](PluginInfo& info) {
            auto& call = *static_cast<PluginColumnCall*>(info.data);
            ++calls[call.command];
            if (call.command == PLUGIN_COLUMN_DEFINE) {
                test::Put(call.text, "Length");
                call.width = 70;
                call.format = 1;
                call.more = 0;
            } else if (call.command == PLUGIN_COLUMN_TEXT) {
                test::Put(call.text, std::to_string(std::string(call.host->hostName).size()));
            }
            return 1u;
        });
        Load();
    }
    std::map<u32, int> calls;
};

TEST_F(HostViewColumns, AreShownBehindTheOthersAndKeepTheirWidth) {
    data.settings.SaveColumnWidth = 1;
    Knows("10.0.0.5").hostName = "seven77";
    While([&] {
        EXPECT_EQ(Titles().back(), "Length");
        EXPECT_EQ(Width(7), TcGuiTools::Scaled(70));
        EXPECT_EQ(Cell(LineOf("10.0.0.5"), 7), "7");
        LVCOLUMNA column{};
        column.mask = LVCF_FMT;
        SendMessageA(List(), LVM_GETCOLUMNA, 7, reinterpret_cast<LPARAM>(&column));
        EXPECT_EQ(column.fmt & LVCFMT_JUSTIFYMASK, LVCFMT_RIGHT);
        SetWidth(7, 123);
    });
    While([&] { EXPECT_EQ(Width(7), 123); });
}

TEST_F(HostViewColumns, AreSortedByThePlugin) {
    Knows("10.0.0.5").hostName = "seven77";
    Knows("10.0.0.6").hostName = "two";
    data.settings.VisibleColumns = 0;
    While([&] {
        ClickHeader(2);
        EXPECT_GT(calls[PLUGIN_COLUMN_COMPARE], 0);
    });
}

TEST_F(HostViewColumns, TheirPluginIsInTheMenuToo) {
    Knows("10.0.0.5");
    Choose("10.0.0.5", 20000);
    EXPECT_EQ(calls[PLUGIN_COLUMN_MENU], 1);
}

}  // namespace
}  // namespace vardel
