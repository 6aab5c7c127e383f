#include "frame/ShellTrayIcon.h"

#include <string>

#include "frame/AlertSurface.h"
#include "frame/TrayNotice.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr int kTrayIconEdge = 16;
// By this size the oldest shells took their record; newer ones take a size that they don't know for the oldest.
constexpr DWORD kOldestRecordSize = 4;

static_assert(sizeof(NOTIFYICONDATAA::szTip) == kTrayTipSize && sizeof(NOTIFYICONDATAA::szInfo) == kTrayBalloonSize &&
              sizeof(NOTIFYICONDATAA::szInfoTitle) == kTrayTitleSize);

// The text was cut to the field before.
template <std::size_t size>
void Put(char (&field)[size], const std::string& text) {
    field[text.copy(field, size - 1)] = 0;
}

}  // namespace

void ShellTrayIcon::Set(HWND window, ModuleHandle images, int controlsMajor) {
    window_ = window;
    images_ = images;
    controlsMajor_ = controlsMajor;
}

HICON ShellTrayIcon::Icon(u32 id) {
    UniqueIcon& icon = icons_[id];
    if (!icon) icon.Reset(TcGuiTools::LoadSizedIcon(images_, static_cast<int>(id), kTrayIconEdge));
    return icon.Get();
}

void ShellTrayIcon::Fill(u32 flags, bool wholeRecord) {
    record_.cbSize = wholeRecord ? sizeof record_ : kOldestRecordSize;
    record_.hWnd = window_;
    record_.uID = kTrayIconId;
    record_.uFlags = flags;
    record_.uCallbackMessage = kTrayMessage;
    record_.hIcon = Icon(kTrayProgram);
}

void ShellTrayIcon::Add(const char* tip) {
    const TrayNotice notice = PlanTrayNotice(kTrayProgram, "", tip, controlsMajor_);
    record_ = {};
    Fill(NIF_MESSAGE | NIF_ICON | NIF_TIP, notice.wholeRecord);
    Put(record_.szTip, notice.tip);
    tellShell_(NIM_ADD, &record_);
}

void ShellTrayIcon::AddAgain(const char* tip) {
    Remove();
    Add(tip);
}

void ShellTrayIcon::Remove() { tellShell_(NIM_DELETE, &record_); }

void ShellTrayIcon::Notify(u32 iconId, const char* text, const char* tip) {
    const TrayNotice notice = PlanTrayNotice(iconId, text, tip, controlsMajor_);
    Fill(NIF_MESSAGE | NIF_ICON | NIF_TIP, notice.wholeRecord);
    Put(record_.szTip, notice.tip);
    if (notice.balloon) {
        record_.uFlags |= NIF_INFO;
        record_.uTimeout = kTrayBalloonMs;
        record_.dwInfoFlags = static_cast<DWORD>(notice.kind);
        Put(record_.szInfo, notice.text);
        Put(record_.szInfoTitle, notice.title);
        record_.hIcon = Icon(notice.icon);
    }
    tellShell_(NIM_MODIFY, &record_);
    if (!notice.iconAgain) return;
    record_.uFlags = NIF_ICON;
    record_.hIcon = Icon(kTrayProgram);
    tellShell_(NIM_MODIFY, &record_);
}

}  // namespace vardel
