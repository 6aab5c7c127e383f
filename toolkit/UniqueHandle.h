// Owning handles of the window system: move-only, closed once. A new kind of handle costs a policy of one
// line.
#pragma once

#include <utility>

#include "platform/WindowsApi.h"

#include <commctrl.h>

namespace vardel {

template <class Handle, class Closer>
class UniqueHandle {
  public:
    UniqueHandle() = default;
    explicit UniqueHandle(Handle handle) : handle_(handle) {}
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    ~UniqueHandle() { Reset(); }

    Handle Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    Handle Release() { return std::exchange(handle_, nullptr); }
    void Reset(Handle handle = nullptr) {
        const Handle old = std::exchange(handle_, handle);
        if (old && old != handle) Closer::Close(old);
    }

  private:
    Handle handle_ = nullptr;
};

struct ObjectCloser {
    static void Close(HGDIOBJ object) { DeleteObject(object); }
};
struct IconCloser {
    static void Close(HICON icon) { DestroyIcon(icon); }
};
struct DcCloser {
    static void Close(HDC dc) { DeleteDC(dc); }
};

struct ImageListCloser {
    static void Close(HIMAGELIST list) { ImageList_Destroy(list); }
};

using UniqueFont = UniqueHandle<HFONT, ObjectCloser>;
using UniqueBrush = UniqueHandle<HBRUSH, ObjectCloser>;
using UniquePen = UniqueHandle<HPEN, ObjectCloser>;
using UniqueBitmap = UniqueHandle<HBITMAP, ObjectCloser>;
using UniqueIcon = UniqueHandle<HICON, IconCloser>;
using UniqueDc = UniqueHandle<HDC, DcCloser>;
using UniqueImageList = UniqueHandle<HIMAGELIST, ImageListCloser>;

// An object that is selected in a device context for the length of a block.
class Selected {
  public:
    Selected(HDC dc, HGDIOBJ object) : dc_(dc), old_(object ? SelectObject(dc, object) : nullptr) {}
    ~Selected() {
        if (old_) SelectObject(dc_, old_);
    }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

  private:
    const HDC dc_;
    const HGDIOBJ old_;
};

// The state of a device context (colours, modes, clipping, selections) for the length of a block.
class SavedDc {
  public:
    explicit SavedDc(HDC dc) : dc_(dc), state_(SaveDC(dc)) {}
    ~SavedDc() {
        if (state_) RestoreDC(dc_, state_);
    }
    SavedDc(const SavedDc&) = delete;
    SavedDc& operator=(const SavedDc&) = delete;

  private:
    const HDC dc_;
    const int state_;
};

// The device context of a window, or of the screen for a null window, for the length of a block.
class WindowDc {
  public:
    explicit WindowDc(HWND window) : window_(window), dc_(GetDC(window)) {}
    ~WindowDc() {
        if (dc_) ReleaseDC(window_, dc_);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;
    HDC Get() const { return dc_; }

  private:
    const HWND window_;
    const HDC dc_;
};

}  // namespace vardel
