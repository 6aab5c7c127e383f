// The decisions of the periodic tick, written down step by step as they are told, over plain containers and with no
// regard to speed. Beside it the real ticks are run on the same chance (TickTwinTest).
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/Types.h"

namespace vardel::test {

struct LiteralTick {
    struct Host {
        std::string name;
        u8 isLocal = 0;
    };
    struct Access {
        std::string computer, share, user;
    };
    struct Message {
        std::string source, text;
        i32 severity, facility;
    };

    // Settings
    u8 UseToolTips = 0, Visualization = 0, NotifyTrusted = 0;
    u8 MACSpoofingVisualization = 0, MACSpoofingVisualizationStyle = 0;
    u8 RAVisualization = 0, RAVisualizationType = 0;
    u8 RAIgnoreIPCNoUsername = 0, RAIgnoreLocalhost = 0, RAIgnoreTrustedHosts = 0;
    u8 ShareVisualization = 0, ShareUseToolTips = 0;
    u8 OtherAppDistrusted = 0, OtherAppUnknown = 0;
    std::string TrustedApp, TrustedAppParams, OtherApp, OtherAppParams;
    std::set<std::string> trustedHosts, distrustedHosts;

    // Shared lists; hosts by their addresses
    std::map<std::string, Host> arpMap;
    std::vector<std::string> newEntries, macSpoofs;
    std::vector<Access> shareAccesses;
    std::vector<std::string> newShares;
    std::deque<Message> syslogNotifications;

    // Popups
    bool hasHostPopup = true, hostPopupShows = false;
    bool hasSyslogPopup = true, syslogPopupShows = false;

    std::map<u32, std::string> texts;
    std::vector<std::string> calls;  // as AlertRecorder and RecordingDeeds write them

    void TrayTick();
    void ShareTick();
    void SyslogTick();

  private:
    std::string Text(u32 id) const;
    std::string Tooltip() const;
    void ShowTrayNotify(int icon, const std::string& text, const std::string& tip);
    void QueuePluginNotify(u32 kind);
    void MacSpoofSteps(const std::string& tip);
    void NewShareSteps();
    void StartApplications();
    bool Skips(const Access& access) const;
};

}  // namespace vardel::test
