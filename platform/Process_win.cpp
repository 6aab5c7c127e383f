#include "platform/Process.h"

#include <mutex>
#include <set>
#include <string>

#include "platform/WindowsApi.h"

#include <objbase.h>

namespace vardel {

namespace {

class WindowsProcess : public ProcessServices {
  public:
    bool ClaimName(const char* name) override {
        const std::lock_guard hold(guard_);
        if (claimed_.contains(name)) return false;
        const HANDLE mutex = CreateMutexA(nullptr, FALSE, name);
        const DWORD error = GetLastError();
        // A mutex that exists but can't be opened belongs to a process with more rights: it is taken all the
        // same.
        if (!mutex) return error == ERROR_ACCESS_DENIED;
        if (error == ERROR_ALREADY_EXISTS) {
            CloseHandle(mutex);
            return true;
        }
        // The handle stays open: the system closes it, and with it the claim, when the process ends.
        claimed_.insert(name);
        return false;
    }

    void DebugText(const char* text) override { OutputDebugStringA(text); }

    // S_FALSE, for a thread that was in already, has to be undone as well.
    bool EnterApartment() override { return SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)); }
    void LeaveApartment() override { CoUninitialize(); }

    void StartNetwork() override {
        WSADATA details;
        WSAStartup(MAKEWORD(2, 2), &details);
    }
    void StopNetwork() override { WSACleanup(); }

  private:
    std::mutex guard_;
    std::set<std::string> claimed_;
};

}  // namespace

ProcessServices& SystemProcess() {
    static WindowsProcess process;
    return process;
}

}  // namespace vardel
