// ShellTrayIcon: the program's one icon in the tray, with its tooltip and balloons. The frame's own; main thread.
//
// What the shell answers isn't looked at: without one there is no icon, and the program goes on.
#pragma once

#include <map>

#include "platform/StringResources.h"
#include "platform/WindowsApi.h"
#include "toolkit/UniqueHandle.h"

#include <shellapi.h>

namespace vardel {

constexpr UINT kTrayIconId = 102;
// Sent to the window: wParam the icon's id, lParam the mouse message.
constexpr UINT kTrayMessage = 1124;

// The documented size of the whole record: the shell takes others for older ones.
static_assert(sizeof(NOTIFYICONDATAA) == (sizeof(void*) == 4 ? 508 : 528));

class ShellTrayIcon {
  public:
    // The shell's operation: adds, changes or takes away an icon.
    using TellShell = BOOL(WINAPI*)(DWORD deed, NOTIFYICONDATAA* record);
    explicit ShellTrayIcon(TellShell tellShell = &Shell_NotifyIconA) : tellShell_(tellShell) {}

    // `controlsMajor`: major version of the common controls (see TrayNotice.h).
    void Set(HWND window, ModuleHandle images, int controlsMajor);
    void Add(const char* tip);
    // The shell began anew: it knows no icon.
    void AddAgain(const char* tip);
    void Notify(u32 iconId, const char* text, const char* tip);
    void Remove();

    // As the shell was told last.
    const NOTIFYICONDATAA& Record() const { return record_; }

  private:
    HICON Icon(u32 id);
    void Fill(u32 flags, bool wholeRecord);

    const TellShell tellShell_;
    HWND window_ = nullptr;
    ModuleHandle images_ = nullptr;
    int controlsMajor_ = -1;
    NOTIFYICONDATAA record_{};
    std::map<u32, UniqueIcon> icons_;  // loaded once, since the tooltip is told anew twice a second
};

}  // namespace vardel
