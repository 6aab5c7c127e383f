#include "tests/unit/support/LiteralTick.h"

namespace vardel::test {

namespace {

void ReplaceFirst(std::string& text, const std::string& tag, const std::string& value) {
    const std::size_t at = text.find(tag);
    if (at != std::string::npos) text.replace(at, tag.size(), value);
}

const char kRed[] = "host colors (255,0,0) (180,0,0) (255,255,255) (100,0,0)";

}  // namespace

std::string LiteralTick::Text(u32 id) const {
    const auto found = texts.find(id);
    return found == texts.end() ? "" : found->second;
}

std::string LiteralTick::Tooltip() const {
    std::string tip = Text(75);
    ReplaceFirst(tip, "%s", "Vardelwatch");
    ReplaceFirst(tip, "%d", std::to_string(arpMap.size()));
    return tip.substr(0, 255);
}

void LiteralTick::ShowTrayNotify(int icon, const std::string& text, const std::string& tip) {
    calls.push_back("tray " + std::to_string(icon) + " " + text + " | " + tip);
}

void LiteralTick::QueuePluginNotify(u32 kind) {
    std::string line = "plugins " + std::to_string(kind) + ":";
    if (kind == 0)
        for (const std::string& ip : newEntries) line += " " + ip;
    if (kind == 4)
        for (const std::string& ip : macSpoofs) line += " " + ip;
    if (kind == 2)
        for (const Access& access : shareAccesses) line += " " + access.computer;
    if (kind == 1)
        for (const std::string& name : newShares) line += " " + name;
    calls.push_back(line);
}

void LiteralTick::TrayTick() {
    // 1, 2
    QueuePluginNotify(32);
    const std::string tip = Tooltip();
    // 3
    if (UseToolTips == 0) {
        if (!newEntries.empty()) {
            QueuePluginNotify(0);
            newEntries.clear();
        }
        ShowTrayNotify(102, "Vardelwatch", tip);
        MacSpoofSteps(tip);
        return;
    }
    // 4
    if (newEntries.empty()) {
        ShowTrayNotify(102, "Vardelwatch", tip);
        MacSpoofSteps(tip);
        return;
    }
    // 5
    std::string text = Text(76);
    bool hasContent = false;
    for (const std::string& ip : newEntries) {
        if (trustedHosts.count(ip) != 0 && NotifyTrusted != 0) continue;
        text += "\n\t" + arpMap[ip].name + " [" + ip + "]";
        hasContent = true;
    }
    // 6
    if (!hasContent) {
        ShowTrayNotify(102, "Vardelwatch", tip);
    } else if (Visualization == 0 && hasHostPopup && hostPopupShows) {
        MacSpoofSteps(tip);
        return;
    } else if (Visualization == 0) {
        if (hasHostPopup) {
            calls.push_back("host reset");
            calls.push_back("host colors (180,196,228) (180,196,228) (0,0,0) (51,153,255)");
            calls.push_back("host show " + text);
            hostPopupShows = true;
        }
    } else {
        ShowTrayNotify(121, text, tip);
    }
    // 7
    StartApplications();
    // 8
    QueuePluginNotify(0);
    newEntries.clear();
    MacSpoofSteps(tip);
}

void LiteralTick::StartApplications() {
    if (TrustedApp.empty() && OtherApp.empty()) return;
    for (const std::string& ip : newEntries) {
        std::string file, parameters;
        const bool trusted = !TrustedApp.empty() && trustedHosts.count(ip) != 0;
        if (trusted) {
            file = TrustedApp;
            parameters = TrustedAppParams;
        } else if (!OtherApp.empty()) {
            bool starts = true;
            if (OtherAppDistrusted != 0 || OtherAppUnknown != 0) {
                starts = false;
                if (distrustedHosts.count(ip) != 0 && OtherAppDistrusted != 0) starts = true;
                if (distrustedHosts.count(ip) == 0 && OtherAppUnknown != 0) starts = true;
            }
            if (starts) {
                file = OtherApp;
                parameters = OtherAppParams;
            }
        }
        if (!file.empty()) calls.push_back("start " + file + " " + parameters + " for " + ip);
    }
}

void LiteralTick::MacSpoofSteps(const std::string& tip) {
    // 9
    if (macSpoofs.empty()) return;
    // 10
    if (MACSpoofingVisualization != 0) {
        std::string text = Text(77);
        for (const std::string& ip : macSpoofs) text += "\n" + arpMap[ip].name + " (" + ip + ")";
        if (MACSpoofingVisualizationStyle != 0) {
            ShowTrayNotify(119, text, tip);
        } else {
            if (hasHostPopup && hostPopupShows) return;
            if (hasHostPopup) {
                calls.push_back("host reset");
                calls.push_back(kRed);
                calls.push_back("host time 7500");
                calls.push_back("host show " + text);
                hostPopupShows = true;
            }
        }
    }
    // 11
    QueuePluginNotify(4);
    macSpoofs.clear();
}

bool LiteralTick::Skips(const Access& access) const {
    if (RAIgnoreIPCNoUsername != 0 && access.share == "IPC$" && access.user.empty()) return true;
    if (RAIgnoreLocalhost != 0 && access.computer == "127.0.0.1") return true;
    if (RAIgnoreLocalhost != 0) {
        const auto host = arpMap.find(access.computer);
        if (host != arpMap.end() && host->second.isLocal == 1) return true;
    }
    return RAIgnoreTrustedHosts != 0 && trustedHosts.count(access.computer) != 0;
}

void LiteralTick::ShareTick() {
    // 1
    if (!shareAccesses.empty() && RAVisualization != 0) {
        std::string text = Text(78);
        bool added = false;
        for (const Access& access : shareAccesses) {
            if (Skips(access)) continue;
            text += "\n" + access.computer + Text(79) + access.share + Text(80) + access.user + "'";
            added = true;
        }
        // 2
        bool consume = true;
        if (added) {
            if (RAVisualizationType != 0) {
                ShowTrayNotify(110, text, "");
            } else if (hasHostPopup && hostPopupShows) {
                consume = false;
            } else if (hasHostPopup) {
                calls.push_back(kRed);
                calls.push_back("host time 7500");
                calls.push_back("host show " + text);
                hostPopupShows = true;
            }
        }
        // 3
        if (consume) {
            QueuePluginNotify(2);
            shareAccesses.clear();
        }
    }
    NewShareSteps();
}

void LiteralTick::NewShareSteps() {
    // 5
    if (newShares.empty()) return;
    // 6
    bool keep = false;
    if (ShareVisualization != 0) {
        std::string text = Text(81);
        for (const std::string& name : newShares) text += "\n\t" + name;
        if (ShareUseToolTips != 0) {
            ShowTrayNotify(121, text, "");
        } else if (hasHostPopup && hostPopupShows) {
            keep = true;
        } else if (hasHostPopup) {
            calls.push_back("host reset");
            calls.push_back("host colors (255,255,255) (255,255,255) (0,0,0) (22,122,233)");
            calls.push_back("host show " + text);
            hostPopupShows = true;
        }
    }
    // 7
    if (!keep) {
        QueuePluginNotify(1);
        newShares.clear();
    }
}

void LiteralTick::SyslogTick() {
    // 1
    const std::string format = Text(214);
    std::string text = format;
    // 2
    if (!hasHostPopup || !hasSyslogPopup || format.empty() || hostPopupShows || syslogPopupShows) return;
    // 3
    if (syslogNotifications.empty()) return;
    // 4
    for (int count = 0; count < 10 && !syslogNotifications.empty(); ++count) {
        const Message message = syslogNotifications.front();
        if (count > 0) text += "\n" + format;
        ReplaceFirst(text, "%1", message.source);
        ReplaceFirst(text, "%2", Text(159 + static_cast<u32>(message.severity)));
        ReplaceFirst(text, "%3", Text(189 + static_cast<u32>(message.facility)));
        std::string shown = message.text;
        if (shown.size() > 60) shown = shown.substr(0, 60) + "...";
        ReplaceFirst(text, "%4", shown);
        syslogNotifications.pop_front();
    }
    // 5
    calls.push_back("syslog show " + text);
    syslogPopupShows = true;
}

}  // namespace vardel::test
