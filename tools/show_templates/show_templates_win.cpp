// Makes a picture of each dialog template of a module, so that a person can look at its layout:
//     show_templates MODULE FOLDER NUMBER...
// writes FOLDER/NUMBER.bmp. A page is shown in its place in the settings dialog. What is hidden or disabled at first
// stays so.
#include "platform/WindowsApi.h"
// behind windows.h
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "resources/DialogIds.h"

namespace {

INT_PTR CALLBACK NoHandling(HWND, UINT message, WPARAM, LPARAM) { return message == WM_INITDIALOG; }

void PumpFor(DWORD milliseconds) {
    const DWORD end = GetTickCount() + milliseconds;
    while (static_cast<LONG>(end - GetTickCount()) > 0) {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        Sleep(10);
    }
}

bool Write(const std::string& path, int width, int height, const std::vector<char>& pixels) {
    BITMAPFILEHEADER file{};
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = width;
    info.biHeight = -height;
    info.biPlanes = 1;
    info.biBitCount = 32;
    file.bfType = 0x4D42;
    file.bfOffBits = sizeof file + sizeof info;
    file.bfSize = static_cast<DWORD>(file.bfOffBits + pixels.size());
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return false;
    const bool written = std::fwrite(&file, sizeof file, 1, out) == 1 && std::fwrite(&info, sizeof info, 1, out) == 1 &&
                         std::fwrite(pixels.data(), pixels.size(), 1, out) == 1;
    return std::fclose(out) == 0 && written;
}

// The window as it stands on the screen, its frame included.
bool Capture(HWND window, const std::string& path) {
    RECT place;
    GetWindowRect(window, &place);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO form{};
    form.bmiHeader.biSize = sizeof form.bmiHeader;
    form.bmiHeader.biWidth = width;
    form.bmiHeader.biHeight = -height;
    form.bmiHeader.biPlanes = 1;
    form.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    const HBITMAP bitmap = CreateDIBSection(memory, &form, DIB_RGB_COLORS, &bits, nullptr, 0);
    bool written = false;
    if (bitmap) {
        const HGDIOBJ before = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
        GdiFlush();
        const auto* first = static_cast<const char*>(bits);
        written = Write(path, width, height,
                        std::vector<char>(first, first + static_cast<std::size_t>(width) * height * 4));
        SelectObject(memory, before);
        DeleteObject(bitmap);
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return written;
}

bool Show(HMODULE module, int number, const std::string& folder) {
    const HWND frame = CreateDialogParamA(module, MAKEINTRESOURCEA(IDD_SETTINGS), nullptr, &NoHandling, 0);
    HWND dialog = CreateDialogParamA(module, MAKEINTRESOURCEA(number), frame, &NoHandling, 0);
    if (!dialog) return false;
    if (GetWindowLongA(dialog, GWL_STYLE) & WS_CHILD) {
        RECT place;
        GetWindowRect(GetDlgItem(frame, IDC_SETTINGS_PLACEHOLDER), &place);
        MapWindowPoints(nullptr, frame, reinterpret_cast<POINT*>(&place), 2);
        SetWindowPos(dialog, HWND_TOP, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_SHOWWINDOW);
        dialog = frame;
    }
    ShowWindow(dialog, SW_SHOW);
    SetForegroundWindow(dialog);
    PumpFor(250);
    const bool captured = Capture(dialog, folder + "\\" + std::to_string(number) + ".bmp");
    DestroyWindow(frame);  // and with it what it owns
    PumpFor(20);
    return captured;
}

}  // namespace

int main(int count, char** words) {
    if (count < 4) {
        std::fprintf(stderr, "usage: show_templates MODULE FOLDER NUMBER...\n");
        return 2;
    }
    INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES | ICC_TREEVIEW_CLASSES | ICC_INTERNET_CLASSES |
                                                     ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    const HMODULE module = LoadLibraryExA(words[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!module) {
        std::fprintf(stderr, "show_templates: %s can't be loaded\n", words[1]);
        return 1;
    }
    int failed = 0;
    for (int at = 3; at < count; ++at)
        if (!Show(module, std::atoi(words[at]), words[2])) {
            std::fprintf(stderr, "show_templates: no picture of %s\n", words[at]);
            failed = 1;
        }
    return failed;
}
