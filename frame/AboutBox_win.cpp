#include "frame/AboutBox.h"

#include <string>

#include "foundation/ProgramVersion.h"
#include "resources/DialogIds.h"
#include "resources/IconIds.h"
#include "toolkit/TcGuiTools.h"

namespace vardel {

namespace {

constexpr int kAboutIconEdge = 32;

std::string VersionText() {
    const ProgramVersion& version = kProgramVersion;
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.revision) + " Build " + std::to_string(version.build);
}

}  // namespace

void AboutBox::Show(ModuleHandle language, ModuleHandle images, const TcString& captureLibraryVersion) {
    images_ = images;
    captureLibraryVersion_ = captureLibraryVersion;
    SetResInstance(language);
    SetDialogIdent(IDD_ABOUT);
    ShowDialogModal(0);
}

bool AboutBox::OnInitDialog(LPARAM) {
    SetControlText(IDC_ABOUT_CAPTURE_LIBRARY, captureLibraryVersion_.GetContent());
    // The control's text has one place for the version. It is a translation's, so it is never used as a format.
    TcString text;
    GetControlText(IDC_ABOUT_VERSION, text);
    text.Replace("%s", VersionText().c_str());
    SetControlText(IDC_ABOUT_VERSION, text.GetContent());
    ShowIcon(IDC_ABOUT_PRODUCT_ICON, productIcon_, IDI_PROGRAM);
    ShowIcon(IDC_ABOUT_HOST_ICON, hostIcon_, IDI_UNKNOWN);
    return true;
}

void AboutBox::ShowIcon(int control, UniqueIcon& icon, int resource) {
    icon.Reset(TcGuiTools::LoadSizedIcon(images_, resource, kAboutIconEdge));
    SendCtrlMsg(control, STM_SETICON, reinterpret_cast<WPARAM>(icon.Get()), 0);
}

bool AboutBox::OnCommand(int id, int, HWND) {
    if (id != IDOK) return false;
    ExitDialog(true);
    return true;
}

}  // namespace vardel
