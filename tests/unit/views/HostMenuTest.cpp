#include "views/HostMenu.h"

#include "tests/unit/support/ScriptedPlugins.h"
#include "tests/unit/support/ViewLan.h"

namespace vardel {
namespace {

struct HostMenuTest : test::ViewLan {
    HostMenuItem Item(u32 id, const HostRecord* clicked) {
        for (const HostMenuItem& item : HostMenuItems(data.settings, clicked))
            if (item.id == id) return item;
        ADD_FAILURE() << id;
        return {};
    }
};

TEST_F(HostMenuTest, MarksFollowTheFilter) {
    data.settings.ViewFilterOptions = kShowTrusted | kShowUnknown;
    EXPECT_EQ(Item(40024, nullptr), (HostMenuItem{40024, true, true}));
    EXPECT_EQ(Item(40025, nullptr), (HostMenuItem{40025, true, false}));
    EXPECT_EQ(Item(40026, nullptr), (HostMenuItem{40026, true, true}));
}

TEST_F(HostMenuTest, TheMarkOfTheLastGroupStays) {
    data.settings.ViewFilterOptions = kShowDistrusted;
    SwitchFilter(data.settings, kShowDistrusted);
    EXPECT_EQ(Item(40025, nullptr), (HostMenuItem{40025, true, true}));
}

TEST_F(HostMenuTest, HiddenTrustedHostsCannotBeShownByTheFilter) {
    data.settings.ViewHideSecure = 1;
    EXPECT_EQ(Item(40024, nullptr), (HostMenuItem{40024, false, false}));
    EXPECT_EQ(Item(40025, nullptr), (HostMenuItem{40025, true, true}));
}

TEST_F(HostMenuTest, WithoutARowItsCommandsAreGrey) {
    HostRecord& host = Knows("10.0.0.5");
    for (const u32 id : {40012u, 40013u, 40014u, 40018u}) {
        EXPECT_FALSE(Item(id, nullptr).enabled) << id;
        EXPECT_TRUE(Item(id, &host).enabled) << id;
    }
}

TEST_F(HostMenuTest, TheDevicesPageNeedsAnAddressOfTheWeb) {
    HostRecord& host = Knows("10.0.0.5");
    EXPECT_FALSE(Item(40035, nullptr).enabled);
    EXPECT_FALSE(Item(40035, &host).enabled);
    host.presentationUrl = "calc.exe";
    EXPECT_FALSE(Item(40035, &host).enabled);
    host.presentationUrl = "http://10.0.0.5/";
    EXPECT_TRUE(Item(40035, &host).enabled);
    EXPECT_FALSE(Item(40035, nullptr).enabled);
}

TEST_F(HostMenuTest, PluginsForHostsComeAheadOfThoseWithColumns) {
    test::PluginFolder folder(system);
    test::ScriptedPlugin columns, view, off, notify;
    columns.Named(PLUGIN_TYPE_COLUMNS, "columns");
    view.Named(PLUGIN_TYPE_VIEW, "view");
    off.Named(PLUGIN_TYPE_VIEW, "off");
    notify.Named(PLUGIN_TYPE_NOTIFY, "notify");
    folder.Add("a.so", columns);
    folder.Add("b.so", view);
    folder.Add("c.so", off);
    folder.Add("d.so", notify);
    data.plugins.LoadPlugins();
    for (LoadedPlugin* plugin = data.plugins.FirstPlugin(0); plugin; plugin = data.plugins.NextPlugin())
        plugin->active = std::string(plugin->info.name) != "off";
    const std::vector<PluginMenuEntry> offered = OfferPlugins(data.plugins);
    ASSERT_EQ(offered.size(), 2u);
    EXPECT_EQ(offered[0].id, 20000u);
    EXPECT_STREQ(offered[0].text, "view");
    EXPECT_EQ(offered[1].id, 20001u);
    EXPECT_EQ(offered[1].plugin->info.type, PLUGIN_TYPE_COLUMNS);
}

TEST_F(HostMenuTest, ApplicationsStandUnderTheirNames) {
    data.settings.applications.Write({test::Application("ssh"), test::Application("web")});
    const std::vector<ApplicationMenuEntry> offered = OfferApplications(data.settings);
    ASSERT_EQ(offered.size(), 2u);
    EXPECT_EQ(offered[0].id, 21000u);
    EXPECT_EQ(offered[1].id, 21001u);
    EXPECT_STREQ(offered[1].text, "web");
    EXPECT_STREQ(offered[1].executable, "/usr/bin/web");
    EXPECT_STREQ(offered[1].parameters, "%VDLW_IP%");
}

TEST_F(HostMenuTest, ANameWithoutAnEndIsCutAtItsField) {
    ApplicationEntry application{};
    std::fill(std::begin(application.name), std::end(application.name), 'n');
    data.settings.applications.Write({application});
    EXPECT_STREQ(OfferApplications(data.settings)[0].text, std::string(260, 'n').c_str());
}

TEST_F(HostMenuTest, MoreApplicationsThanNumbersAreNotOffered) {
    data.settings.applications.Write(std::vector<ApplicationEntry>(1001));
    const std::vector<ApplicationMenuEntry> offered = OfferApplications(data.settings);
    EXPECT_EQ(offered.size(), 1000u);
    EXPECT_EQ(offered.back().id, 21999u);
}

TEST(HostMenuParts, AreToldByTheCommand) {
    EXPECT_EQ(HostMenuPartOf(19999), HostMenuPart::Context);
    EXPECT_EQ(HostMenuPartOf(20000), HostMenuPart::Plugins);
    EXPECT_EQ(HostMenuPartOf(20999), HostMenuPart::Plugins);
    EXPECT_EQ(HostMenuPartOf(21000), HostMenuPart::Applications);
    EXPECT_EQ(HostMenuPartOf(21999), HostMenuPart::Applications);
    EXPECT_EQ(HostMenuPartOf(22000), HostMenuPart::Context);
    EXPECT_EQ(HostMenuPartOf(40024), HostMenuPart::Filter);
    EXPECT_EQ(HostMenuPartOf(40026), HostMenuPart::Filter);
    EXPECT_EQ(HostMenuPartOf(40012), HostMenuPart::Context);
    EXPECT_EQ(HostMenuPartOf(61440), HostMenuPart::System);
    EXPECT_EQ(HostMenuPartOf(65535), HostMenuPart::System);
}

}  // namespace
}  // namespace vardel
