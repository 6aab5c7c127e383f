// The tray menu: its commands with their images, and how each item stands when the menu is opened.
//
// Functions of values and of the shared state; main thread.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "capture/VardelData.h"
#include "frame/OpenWindows.h"
#include "resources/MenuIds.h"

namespace vardel {

enum TrayCommand : u32 {
    kStartCommand = IDM_START,
    kStopCommand = IDM_STOP,
    kSettingsCommand = IDM_SETTINGS,
    kAboutCommand = IDM_ABOUT,
    kViewCommand = IDM_VIEW,
    kHelpCommand = IDM_HELP,
    kSilentCommand = IDM_SILENT_MODE,
    kResourcesCommand = IDM_RESOURCES,
    kEventLogCommand = IDM_EVENTLOG,
    kSysLogCommand = IDM_SYSLOG,
    kUpdateCommand = IDM_CHECK_UPDATES
};

struct TrayImage {
    u32 command, icon;
};
std::span<const TrayImage> TrayImages();

// The window that a command asks for; none for the others.
std::optional<ProgramWindow> WindowOf(u32 command);

// Which of the menus draws and measures an item, by its command.
enum class TrayMenuPart { Tray, Language, Informations };
TrayMenuPart TrayMenuPartOf(u32 command);

// What changes about the items when the menu is opened. An item that isn't named stays as it stands.
struct TrayItemState {
    u32 command;
    std::optional<bool> enabled, checked;
    bool operator==(const TrayItemState&) const = default;
};
// `present`: the windows that this program has; a command for another one is grey.
std::vector<TrayItemState> TrayItemStates(const VardelData& data, WindowSet present);

// "Start" and "Stop" as they stand while the capture switch is so.
std::vector<TrayItemState> CaptureItemStates(bool capturing);

// "Silent Mode" is nothing but the switch UseToolTips, the other way round. It isn't stored here: the next save of the
// settings does.
void SwitchSilentMode(VardelSettings& settings);

}  // namespace vardel
