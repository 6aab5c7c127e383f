// TcSystemInfo: which Windows this is, as the program numbers them.
//
// Made and destroyed through its factory; an object belongs to one thread.
#pragma once

#include "platform/SystemVersion.h"

namespace vardel {

class TcSystemInfo {
  public:
    static TcSystemInfo* CreateObject();
    // False for null.
    static bool DestroyObject(TcSystemInfo* object);

    // A small number from 1 upward (see kSystemNumbers). Windows 2000 is 7: from there on windows can be
    // layered.
    int DetectOSVersion();

    // Version of the common controls, major version in the upper 16 bits; 0 without them.
    int DetectComCtrlVersion();

  private:
    TcSystemInfo() = default;
    ~TcSystemInfo() = default;
};

// What has no number of its own: every system newer than the table, and one that is no Windows. Shown as
// unknown.
constexpr int kUnlistedSystem = 44;

// The number of a system of that version.
int SystemNumber(const SystemVersion& version);

}  // namespace vardel
