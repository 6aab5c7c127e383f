// The program's six windows, of which one at a time is open, and which one comes to the front when another is asked
// for. Functions of values; main thread.
#pragma once

#include <optional>

#include "platform/Types.h"

namespace vardel {

// In the order in which an open one is looked for.
enum class ProgramWindow : u8 { Settings, Resources, View, EventLog, SysLog, Updates };
constexpr int kProgramWindows = 6;

// A set of them: those that are open, or those that this program has.
class WindowSet {
  public:
    constexpr WindowSet() = default;
    constexpr void Add(ProgramWindow window) { bits_ = static_cast<u8>(bits_ | Bit(window)); }
    constexpr void Remove(ProgramWindow window) { bits_ = static_cast<u8>(bits_ & ~Bit(window)); }
    constexpr bool Has(ProgramWindow window) const { return (bits_ & Bit(window)) != 0; }
    constexpr bool IsEmpty() const { return bits_ == 0; }
    bool operator==(const WindowSet&) const = default;

  private:
    static constexpr u8 Bit(ProgramWindow window) { return static_cast<u8>(1u << static_cast<u8>(window)); }
    u8 bits_ = 0;
};

// What a request leads to: an open window comes to the front, or the one that was asked for opens.
struct WindowDeed {
    enum class Kind { BringToFront, Open };
    Kind kind;
    ProgramWindow window;
    bool operator==(const WindowDeed&) const = default;
};

// A command asks for a window. Wanted: any open window is in the way of every other.
WindowDeed OnWindowCommand(WindowSet open, ProgramWindow asked);

// The tray icon was clicked twice: the settings first, the view last.
WindowDeed OnTrayDoubleClick(WindowSet open);

}  // namespace vardel
