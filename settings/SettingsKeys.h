// Where the settings lie below the per-user software tree.
#pragma once

namespace vardel {

inline constexpr const char* kProductKey = "Ostrand Software\\Vardelwatch";
inline constexpr const char* kSettingsName = "Settings";  // below the product key
inline constexpr const char* kSettingsKey = "Ostrand Software\\Vardelwatch\\Settings";
inline constexpr const char* kAutostartName = "Vardelwatch";

}  // namespace vardel
