#include "toolkit/TcGuiTools.h"

#include <vector>

#include "platform/Types.h"
#include "toolkit/ColorSteps.h"
#include "toolkit/UniqueHandle.h"

namespace vardel {

namespace {

BITMAPINFO TopDownPixels(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

// A copy of the icon's colours with each pixel turned grey; null on failure.
UniqueBitmap GreyColors(HDC dc, HBITMAP colors) {
    BITMAP shape{};
    if (!GetObjectA(colors, sizeof shape, &shape) || shape.bmWidth <= 0 || shape.bmHeight <= 0) return {};
    BITMAPINFO info = TopDownPixels(shape.bmWidth, shape.bmHeight);
    std::vector<u32> pixels(static_cast<std::size_t>(shape.bmWidth) *
                            static_cast<std::size_t>(shape.bmHeight));
    const auto lines = static_cast<UINT>(shape.bmHeight);
    if (!GetDIBits(dc, colors, 0, lines, pixels.data(), &info, DIB_RGB_COLORS)) return {};
    for (u32& pixel : pixels) pixel = GreyPixel(pixel);
    void* bits = nullptr;
    UniqueBitmap grey(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    if (!grey || !SetDIBits(dc, grey.Get(), 0, lines, pixels.data(), &info, DIB_RGB_COLORS)) return {};
    return grey;
}

int AskSystemDpi() {
    const WindowDc screen(nullptr);
    const int dpi = screen.Get() ? GetDeviceCaps(screen.Get(), LOGPIXELSX) : 0;
    return dpi > 0 ? dpi : kPlainDpi;
}

}  // namespace

HICON TcGuiTools::CreateGrayScaleIcon(HICON icon, HDC dc) {
    ICONINFO parts{};
    if (!icon || !GetIconInfo(icon, &parts)) return nullptr;
    const UniqueBitmap mask(parts.hbmMask);
    const UniqueBitmap colors(parts.hbmColor);
    if (!colors) return CopyIcon(icon);  // of two colours: black and white have no hue
    const WindowDc screen(nullptr);
    const UniqueBitmap grey = GreyColors(dc ? dc : screen.Get(), colors.Get());
    if (!grey) return nullptr;
    parts.hbmColor = grey.Get();
    return CreateIconIndirect(&parts);
}

HINSTANCE TcGuiTools::Instance(ModuleHandle module) {
    return module ? reinterpret_cast<HINSTANCE>(module) : GetModuleHandleA(nullptr);
}

HICON TcGuiTools::LoadSizedIcon(ModuleHandle module, int iconResource, int edge) {
    const int pixels = Scaled(edge);
    return static_cast<HICON>(LoadImageA(Instance(module), MAKEINTRESOURCEA(iconResource), IMAGE_ICON, pixels,
                                         pixels, LR_DEFAULTCOLOR));
}

std::wstring TcGuiTools::WideText(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    if (length > 0) MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), length);
    return wide;
}

int TcGuiTools::Dpi() {
    static const int dpi = AskSystemDpi();  // asked for with every cell that is drawn
    return dpi;
}

bool TcGuiTools::IsHighContrast() {
    HIGHCONTRASTA scheme{};
    scheme.cbSize = sizeof scheme;
    return SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof scheme, &scheme, 0) &&
           (scheme.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

}  // namespace vardel
