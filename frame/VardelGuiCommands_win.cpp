// The commands of VardelGui, and what the tray icon's mouse messages lead to.
#include "frame/VardelGui.h"

#include "settings/SiteAddresses.h"

namespace vardel {

namespace {

void BringToFront(HWND window) {
    BringWindowToTop(window);
    SetForegroundWindow(window);
}

}  // namespace

void VardelGui::OnTrayMessage(UINT iconId, UINT mouse) {
    if (mouse == WM_LBUTTONDBLCLK) CarryOut(OnTrayDoubleClick(OpenWindows()));
    if (mouse == WM_RBUTTONDOWN && iconId == kTrayIconId) OnTrayMenu();
}

void VardelGui::OnTrayMenu() {
    menus_.Apply(TrayItemStates(*data_, PresentWindows()));
    const u32 command = menus_.Track(window_);
    if (command == 0) return;
    if (TrayMenuPartOf(command) == TrayMenuPart::Language) SelectLanguage(command);
    else SendMessageA(window_, WM_COMMAND, command, 0);
}

void VardelGui::OnCommand(u32 command) {
    if (const auto window = WindowOf(command)) {
        CarryOut(OnWindowCommand(OpenWindows(), *window));
        return;
    }
    switch (command) {
        case kStartCommand: SetCapturing(true); break;
        case kStopCommand: SetCapturing(false); break;
        case kSilentCommand: SwitchSilentMode(data_->settings); break;
        case kAboutCommand: ShowAbout(); break;
        case kHelpCommand: OpenHelp(); break;
        case kExitCommand:
            EndMenu();  // one that is open would keep the loop
            PostQuitMessage(0);
            break;
        default: break;
    }
}

void VardelGui::SetCapturing(bool on) {
    menus_.Apply(CaptureItemStates(on));
    data_->capturing = on ? 1 : 0;
}

void VardelGui::ShowAbout() {
    if (about_.GetHwnd()) BringToFront(about_.GetHwnd());
    else about_.Show(language_, images_, data_->packetLibraryVersion);
}

void VardelGui::OpenHelp() {
    Services& services = data_->services;
    services.shell.Execute(ShellVerb::Open, ReadSiteAddresses(services.folders).helpSite, {});
}

void VardelGui::SelectLanguage(u32 menuId) {
    const LanguageEntry* chosen = FindOfferedLanguage(*data_, menuId);
    if (!chosen) return;
    language_ = chosen->module;
    view_.SetLanguage(language_);
    if (tick_) tick_->SetLanguage(language_);
    menus_.Build(*data_, language_, images_);
    TakeLanguage(*data_, *chosen);
}

WindowSet VardelGui::PresentWindows() const {
    WindowSet present;
    for (std::size_t i = 0; i < windows_.size(); ++i)
        if (windows_[i]) present.Add(static_cast<ProgramWindow>(i));
    return present;
}

WindowSet VardelGui::OpenWindows() const {
    WindowSet open;
    for (std::size_t i = 0; i < windows_.size(); ++i)
        if (windows_[i] && windows_[i]->GetHwnd()) open.Add(static_cast<ProgramWindow>(i));
    return open;
}

void VardelGui::CarryOut(const WindowDeed& deed) {
    TcDialog* window = windows_[static_cast<std::size_t>(deed.window)];
    if (!window) return;
    if (deed.kind == WindowDeed::Kind::BringToFront) BringToFront(window->GetHwnd());
    else OpenWindow(deed.window);
}

// Comes back when the user has closed the window.
void VardelGui::OpenWindow(ProgramWindow window) {
    if (window == ProgramWindow::View) view_.Open(*data_, images_);
}

}  // namespace vardel
