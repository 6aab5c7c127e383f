// A host table, settings over a recording store, and the rows of a host view over them.
//
//     HostRecord& nas = Knows("10.0.0.5", TrustState::Trusted);
//     Refresh();
//     EXPECT_EQ(Shown(), "10.0.0.5:1");
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/unit/support/SettingsFixture.h"
#include "tests/unit/support/TestServices.h"
#include "views/HostActions.h"

namespace vardel::test {

class ViewLan : public SettingsFixture {
  protected:
    ViewLan() {
        data.fences.CreateAll();
        data.settings.ViewFilterOptions = kShowTrusted | kShowDistrusted | kShowUnknown;
        data.settings.ViewHideSecure = 0;
        data.settings.GreyedOutOldEntries = 0;
    }

    HostRecord& Knows(const std::string& ip, TrustState trust = TrustState::Unknown) {
        HostRecord* host = data.Adopt(std::make_unique<HostRecord>());
        host->ip = ip.c_str();
        host->trustState = trust;
        EXPECT_TRUE(data.arpMap.Insert(ip.c_str(), host));
        return *host;
    }
    // All fixed columns with their titles, as wide as they come.
    void ShowAllColumns() {
        system.strings.texts = {{1, " "},
                                {2, "IP - Address"},
                                {3, "MAC - Address"},
                                {4, "Last received packet"},
                                {5, "Hostname"},
                                {6, "Networkcard vendor"},
                                {7, "Adv. informations"}};
        data.settings.VisibleColumns = 11111;
        data.settings.SaveColumnWidth = 0;
    }
    RowChanges Refresh() { return rows.Refresh(data, now); }

    // "IP:GROUP" of each row, from the top; each record knows its row.
    std::string Shown() const {
        std::string shown;
        for (int row = 0; row < rows.Count(); ++row) {
            const HostRecord& host = *rows.HostAt(row);
            EXPECT_EQ(rows.RowOf(host), row);
            shown += (row ? " " : "") + std::string(TcString(host.ip).GetContent()) + ":" +
                     std::to_string(rows.GroupAt(row));
        }
        return shown;
    }

    static HostViewColumn Fixed(HostColumn column) { return {.title = "", .width = 0, .fixed = column}; }

    TestServices system;
    VardelData data{system.services};
    HostRows rows;
    i64 now = 1'700'000'000;
};

}  // namespace vardel::test
