// What one call of AlertSurface::ShowTrayNotify does to the tray icon, by the version of the common controls.
//
// A function of values: texts are cut to the fields of the shell's record, between characters.
#pragma once

#include <string>

#include "platform/Types.h"

namespace vardel {

// Sizes of the record's text fields, each with its terminator.
constexpr std::size_t kTrayTipSize = 128;
constexpr std::size_t kTrayBalloonSize = 256;
constexpr std::size_t kTrayTitleSize = 64;

constexpr u32 kTrayBalloonMs = 2000;

// No version of the common controls is known.
constexpr int kNoControlsVersion = -1;

// The kinds of balloon icons, as the shell numbers them.
enum class BalloonKind : u32 { Information = 1, Warning = 2, TrayIcon = 4 };

struct TrayNotice {
    // Size of the shell's record: all of it, or the number by which the oldest shells took theirs.
    bool wholeRecord = false;
    std::string tip;
    bool balloon = false;
    BalloonKind kind = BalloonKind::Information;
    std::string text, title;  // of the balloon
    u32 icon = 0;             // in the tray while the balloon is raised
    bool iconAgain = false;   // a second call puts the program's own icon back
};

// `controlsMajor`: major version of the common controls.
TrayNotice PlanTrayNotice(u32 iconId, const char* text, const char* tip, int controlsMajor);

}  // namespace vardel
