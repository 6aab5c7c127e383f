// Places and sizes in pixels, for the rules of layout that know no window.
#pragma once

namespace vardel {

struct PixelSize {
    int width = 0;
    int height = 0;
    bool operator==(const PixelSize&) const = default;
};

// `right` and `bottom` lie just outside.
struct PixelRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    bool operator==(const PixelRect&) const = default;
};

constexpr int kPlainDpi = 96;  // dots per inch at 100 %

// A length that was laid out for 100 %, rounded to the nearest pixel of a display of `dpi`.
constexpr int ScaledForDpi(int pixels, int dpi) {
    const int half = pixels < 0 ? -kPlainDpi / 2 : kPlainDpi / 2;
    return dpi <= 0 ? pixels : (pixels * dpi + half) / kPlainDpi;
}

}  // namespace vardel
