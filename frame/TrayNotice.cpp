#include "frame/TrayNotice.h"

#include "frame/AlertSurface.h"
#include "platform/CodePage.h"

namespace vardel {

namespace {

// Versions that brought balloons, and balloons with an icon of the program's own.
constexpr int kWithBalloons = 5;
constexpr int kWithOwnIcons = 6;

std::string CutTo(std::string_view text, std::size_t fieldSize) {
    return std::string(text.substr(0, WholeCharacters(text, fieldSize - 1)));
}

bool RaisesBalloon(u32 iconId) {
    return iconId == kTrayInformation || iconId == kTrayMacSpoofing || iconId == kTrayRemoteAccess;
}

}  // namespace

TrayNotice PlanTrayNotice(u32 iconId, const char* text, const char* tip, int controlsMajor) {
    TrayNotice notice;
    notice.wholeRecord = controlsMajor >= kWithBalloons;
    notice.tip = CutTo(*tip ? tip : kProductName, kTrayTipSize);
    notice.icon = kTrayProgram;
    notice.iconAgain = controlsMajor >= kWithOwnIcons;
    if (!RaisesBalloon(iconId) || controlsMajor < kWithBalloons) return notice;
    notice.balloon = true;
    notice.kind = iconId == kTrayInformation ? BalloonKind::Information : BalloonKind::Warning;
    notice.text = CutTo(text, kTrayBalloonSize);
    notice.title = CutTo(kProductName, kTrayTitleSize);
    if (controlsMajor >= kWithOwnIcons) {
        notice.icon = iconId;
        notice.kind = BalloonKind::TrayIcon;
    }
    return notice;
}

}  // namespace vardel
