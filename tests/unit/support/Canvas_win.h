// A picture in memory for what draws itself, and the questions that tests ask of its pixels.
#pragma once

#include "platform/WindowsApi.h"
#include "toolkit/ColorSteps.h"

namespace vardel::test {

// A picture in memory to draw into. Its pixels are read without asking the display.
class Canvas {
  public:
    Canvas(int width, int height, COLORREF background = RGB(255, 0, 255)) : width_(width), height_(height) {
        BITMAPINFO shape{};
        shape.bmiHeader.biSize = sizeof shape.bmiHeader;
        shape.bmiHeader.biWidth = width;
        shape.bmiHeader.biHeight = -height;  // from the top
        shape.bmiHeader.biPlanes = 1;
        shape.bmiHeader.biBitCount = 32;
        void* pixels = nullptr;
        dc_ = CreateCompatibleDC(nullptr);
        bitmap_ = CreateDIBSection(dc_, &shape, DIB_RGB_COLORS, &pixels, nullptr, 0);
        pixels_ = static_cast<const u32*>(pixels);
        old_ = SelectObject(dc_, bitmap_);
        const HBRUSH brush = CreateSolidBrush(background);
        const RECT all{0, 0, width, height};
        FillRect(dc_, &all, brush);
        DeleteObject(brush);
    }
    ~Canvas() {
        SelectObject(dc_, old_);
        DeleteObject(bitmap_);
        DeleteDC(dc_);
    }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Dc() const { return dc_; }
    // CLR_INVALID outside.
    COLORREF At(int x, int y) const {
        if (x < 0 || y < 0 || x >= width_ || y >= height_ || !pixels_) return CLR_INVALID;
        GdiFlush();
        const u32 pixel = pixels_[y * width_ + x];  // 0x00RRGGBB
        return RGB(pixel >> 16 & 0xff, pixel >> 8 & 0xff, pixel & 0xff);
    }
    // How many pixels of a part of the picture have a colour.
    int Count(COLORREF color, RECT part) const {
        int count = 0;
        for (LONG y = part.top; y < part.bottom; ++y)
            for (LONG x = part.left; x < part.right; ++x)
                count += At(static_cast<int>(x), static_cast<int>(y)) == color;
        return count;
    }
    // How much darker than white the picture is, summed up.
    int Darkness() const {
        int sum = 0;
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) sum += 255 - static_cast<int>(Brightness(At(x, y)));
        return sum;
    }
    int Count(COLORREF color) const { return Count(color, {0, 0, width_, height_}); }

  private:
    const int width_;
    const int height_;
    const u32* pixels_ = nullptr;
    HDC dc_ = nullptr;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ old_ = nullptr;
};

}  // namespace vardel::test
