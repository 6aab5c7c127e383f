#include "frame/ShareTick.h"

#include "frame/AlertText.h"
#include "resources/ResourceIds.h"

namespace vardel {

namespace {

// ---- remote access to a share ----

bool IsOwnAddress(const VardelData& data, const TcString& computer) {
    const HostRecord* host = data.arpMap.FindValue(computer);
    return host && host->isLocal == 1;
}

bool IsLeftOut(const VardelData& data, const RemoteAccess& access) {
    const VardelSettings& settings = data.settings;
    const TcString computer(access.computer);
    const RemoteAccessFilter filter{settings.RAIgnoreIPCNoUsername != 0, settings.RAIgnoreLocalhost != 0,
                                    settings.RAIgnoreTrustedHosts != 0};
    const RemoteAccessFacts facts{access.share == "IPC$" && access.user.IsEmpty(), computer == "127.0.0.1",
                                  IsOwnAddress(data, computer), IsListed(settings.trustedHosts, computer)};
    return IsFiltered(filter, facts);
}

AlertText RemoteAccessText(const TickContext& tick, ShareAccessList::Mark mark) {
    AlertText text(tick.Text(IDS_ALERT_REMOTE_ACCESS));
    const std::string connectedOn = tick.Text(IDS_ALERT_CONNECTED_ON), withUser = tick.Text(IDS_ALERT_WITH_USER);
    tick.data.shareAccesses.ForEach(mark, [&](const RemoteAccess* access) {
        if (IsLeftOut(tick.data, *access)) return true;
        text.Add([&](std::string& line) {
            line = "\n";
            AppendText(line, access->computer);
            line += connectedOn;
            AppendText(line, access->share);
            line += withUser;
            AppendText(line, access->user);
            line += "'";
        });
        return true;
    });
    return text;
}

bool AnyIsTold(const TickContext& tick, ShareAccessList::Mark mark) {
    bool told = false;
    tick.data.shareAccesses.ForEach(mark, [&](const RemoteAccess* access) {
        told = !IsLeftOut(tick.data, *access);
        return !told;
    });
    return told;
}

// False when the list is to be kept for a later tick.
bool AnnounceRemoteAccesses(const TickContext& tick, ShareAccessList::Mark mark) {
    const bool balloon = tick.data.settings.RAVisualizationType != 0;
    if (!balloon && tick.HostPopupIsShowing() && AnyIsTold(tick, mark)) return false;
    const AlertText text = RemoteAccessText(tick, mark);
    if (!text.HasContent()) return true;
    if (balloon) tick.surface.ShowTrayNotify(kTrayRemoteAccess, text.Finish().c_str(), "");
    // Wanted: unlike with the other alerts the popup isn't reset first.
    else ShowInPopup(tick.surface.HostPopup(), kWarningLook, text.Finish());
    return true;
}

void TellRemoteAccesses(const TickContext& tick) {
    VardelData& data = tick.data;
    if (!data.settings.RAVisualization || data.shareAccesses.IsEmpty()) return;
    FenceTaken inside(data.fences, Fence::Shares);
    const ShareAccessList::Mark mark = data.shareAccesses.TakeMark();
    if (!AnnounceRemoteAccesses(tick, mark)) return;
    tick.deeds.QueuePluginNotify(kNotifyShareAccesses, mark);
    data.shareAccesses.ClearTo(mark);
}

// ---- new shares ----

AlertText NewShareText(const TickContext& tick, NewShareList::Mark mark) {
    AlertText text(tick.Text(IDS_ALERT_NEW_SHARES));
    tick.data.newShares.ForEach(mark, [&](const NetShare* share) {
        text.Add([share](std::string& line) {
            line = "\n\t";
            AppendText(line, share->name);
        });
        return true;
    });
    return text;
}

// False when the list is to be kept for a later tick.
bool AnnounceNewShares(const TickContext& tick, NewShareList::Mark mark) {
    if (!tick.data.settings.ShareVisualization) return true;
    const bool balloon = tick.data.settings.ShareUseToolTips != 0;
    if (!balloon && tick.HostPopupIsShowing()) return false;
    constexpr AlertLook kLook{{255, 255, 255}, {255, 255, 255}, {0, 0, 0}, {22, 122, 233}, 0};
    const std::string text = NewShareText(tick, mark).Finish();
    if (balloon) tick.surface.ShowTrayNotify(kTrayInformation, text.c_str(), "");
    else ResetAndShowInPopup(tick.surface.HostPopup(), kLook, text);
    return true;
}

void TellNewShares(const TickContext& tick) {
    VardelData& data = tick.data;
    if (data.newShares.IsEmpty()) return;
    FenceTaken inside(data.fences, Fence::NetRes);
    const NewShareList::Mark mark = data.newShares.TakeMark();
    if (!AnnounceNewShares(tick, mark)) return;
    tick.deeds.QueuePluginNotify(kNotifyNewShares, mark);
    data.newShares.ClearTo(mark);
}

}  // namespace

void RunShareTick(const TickContext& tick) {
    TellRemoteAccesses(tick);
    TellNewShares(tick);
}

}  // namespace vardel
