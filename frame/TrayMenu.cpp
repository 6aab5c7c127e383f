#include "frame/TrayMenu.h"

#include "frame/LanguageModules.h"
#include "frame/MainWindow.h"
#include "resources/IconIds.h"

namespace vardel {

namespace {

constexpr TrayImage kImages[] = {
    {kStartCommand, IDI_START},        {kStopCommand, IDI_STOP},         {kViewCommand, IDI_VIEW},
    {kResourcesCommand, IDI_RESOURCES}, {kEventLogCommand, IDI_EVENTLOG}, {kSysLogCommand, IDI_SYSLOG},
    {kSettingsCommand, IDI_SETTINGS},  {kUpdateCommand, IDI_UPDATE},     {kAboutCommand, IDI_SEVERITY_INFORMATION},
    {kHelpCommand, IDI_HELP},          {kExitCommand, IDI_EXIT}};

// The commands for windows. `wanted`: the switch of the settings without which there is nothing to show.
struct WindowCommand {
    u32 command;
    ProgramWindow window;
    Shared<u8> VardelSettings::*wanted;
};
constexpr WindowCommand kWindowCommands[] = {
    {kViewCommand, ProgramWindow::View, nullptr},
    {kResourcesCommand, ProgramWindow::Resources, &VardelSettings::ShareSearch},
    {kEventLogCommand, ProgramWindow::EventLog, &VardelSettings::UsingEventLog},
    {kSysLogCommand, ProgramWindow::SysLog, &VardelSettings::Syslog},
    {kSettingsCommand, ProgramWindow::Settings, nullptr},
    {kUpdateCommand, ProgramWindow::Updates, nullptr}};

}  // namespace

std::span<const TrayImage> TrayImages() { return kImages; }

std::optional<ProgramWindow> WindowOf(u32 command) {
    for (const WindowCommand& row : kWindowCommands)
        if (row.command == command) return row.window;
    return std::nullopt;
}

TrayMenuPart TrayMenuPartOf(u32 command) {
    if (command >= kFirstLanguageCommand && command <= kLastLanguageCommand) return TrayMenuPart::Language;
    const bool information = command == kAboutCommand || command == kUpdateCommand || command == kHelpCommand;
    return information ? TrayMenuPart::Informations : TrayMenuPart::Tray;
}

std::vector<TrayItemState> CaptureItemStates(bool capturing) {
    return {{kStartCommand, !capturing, std::nullopt}, {kStopCommand, capturing, std::nullopt}};
}

std::vector<TrayItemState> TrayItemStates(const VardelData& data, WindowSet present) {
    std::vector<TrayItemState> states;
    // Wanted: without an interface both stay as they stand.
    if (!data.interfaceName.IsEmpty()) states = CaptureItemStates(data.capturing != 0);
    states.push_back({kSilentCommand, std::nullopt, !data.settings.UseToolTips});
    for (const WindowCommand& row : kWindowCommands) {
        const bool wanted = !row.wanted || data.settings.*row.wanted;
        states.push_back({row.command, wanted && present.Has(row.window), std::nullopt});
    }
    return states;
}

void SwitchSilentMode(VardelSettings& settings) { settings.UseToolTips = settings.UseToolTips ? 0 : 1; }

}  // namespace vardel
