// view_driver SECONDS SEED: drives the host view of the running vardelwatch.exe from outside, as hasty users would: opens it,
// sorts, selects, filters, gives trust, deletes, asks for its menu and closes it again. Prints one JSON line: how often
// each was done, and how many GDI and USER objects there were after the first rounds and at the end, with the view
// closed. Exit code 1 where the program doesn't answer any more.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "frame/MainWindow.h"
#include "platform/Types.h"
#include "platform/WindowsApi.h"
#include "resources/DialogIds.h"
#include "resources/MenuIds.h"
// behind windows.h
#include <commctrl.h>
#include <winternl.h>

namespace {

using namespace vardel;

constexpr UINT kAnswerMs = 20000;
constexpr int kWarmUpRounds = 5;
constexpr int kDeedsInARound = 40;

// GDI and USER objects. The system's own counts where it keeps them. Wine keeps none: there the program's table of GDI
// handles is read, and the height to which handles of USER objects have grown in the whole session.
struct GuiObjects {
    unsigned gdi = 0, user = 0;
};

struct GdiHandleEntry {
    u64 object;
    u32 owner;
    u16 unique;
    u8 type;  // 0: a free entry
    u8 flags;
    u64 userPointer;
};
constexpr std::size_t kGdiHandles = 0x4000;
constexpr u64 kGdiTableInProcessBlock = 0xf8;  // of a 64-bit process

bool ReadAt(HANDLE process, u64 address, void* into, std::size_t size) {
    SIZE_T read = 0;
    return ReadProcessMemory(process, reinterpret_cast<const void*>(address), into, size, &read) && read == size;
}

unsigned CountGdiHandles(HANDLE process) {
    using Query = NTSTATUS(WINAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQueryInformationProcess")));
    PROCESS_BASIC_INFORMATION basic{};
    u64 table = 0;
    if (!query || query(process, 0, &basic, sizeof basic, nullptr) != 0 ||
        !ReadAt(process, reinterpret_cast<u64>(basic.PebBaseAddress) + kGdiTableInProcessBlock, &table, sizeof table))
        return 0;
    std::vector<GdiHandleEntry> entries(kGdiHandles);
    if (!ReadAt(process, table, entries.data(), entries.size() * sizeof(GdiHandleEntry))) return 0;
    return static_cast<unsigned>(
        std::count_if(entries.begin(), entries.end(), [](const GdiHandleEntry& entry) { return entry.type != 0; }));
}

// Menus enough to take all handles that are free in between: the highest tells how many there are in all.
unsigned HeightOfUserHandles() {
    constexpr int kProbes = 3000;
    std::vector<HMENU> probes;
    unsigned highest = 0;
    for (int probe = 0; probe < kProbes; ++probe) {
        const HMENU menu = CreateMenu();
        if (!menu) break;
        probes.push_back(menu);
        highest = std::max(highest, static_cast<unsigned>(LOWORD(reinterpret_cast<ULONG_PTR>(menu)) / 2));
    }
    for (const HMENU menu : probes) DestroyMenu(menu);
    return highest;
}

GuiObjects CountGuiObjects(HANDLE process) {
    GuiObjects counts{GetGuiResources(process, GR_GDIOBJECTS), GetGuiResources(process, GR_USEROBJECTS)};
    if (counts.gdi == 0) counts.gdi = CountGdiHandles(process);
    if (counts.user == 0) counts.user = HeightOfUserHandles();
    return counts;
}

class Driver {
  public:
    Driver(HWND main, u32 seed) : main_(main), random_(seed) {}

    // Comes back when the time is over or the program doesn't answer any more.
    bool Run(DWORD seconds) {
        DWORD processId = 0;
        GetWindowThreadProcessId(main_, &processId);
        process_ = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
        const ULONGLONG end = GetTickCount64() + 1000ull * seconds;
        for (rounds_ = 0; GetTickCount64() < end || rounds_ <= kWarmUpRounds; ++rounds_) {
            if (rounds_ == kWarmUpRounds) before_ = CountGuiObjects(process_);
            if (!OpenView()) return false;
            for (int deed = 0; deed < kDeedsInARound; ++deed)
                if (!DoOne()) return false;
            if (!CloseView()) return false;
        }
        after_ = CountGuiObjects(process_);
        return process_ != nullptr;
    }

    void Print() const {
        std::printf("{\"rounds\": %d", rounds_);
        for (std::size_t at = 0; at < std::size(kDeeds); ++at) std::printf(", \"%s\": %d", kDeeds[at].name, done_[at]);
        std::printf(", \"gdi\": [%u, %u], \"user\": [%u, %u]}\n", before_.gdi, after_.gdi, before_.user, after_.user);
    }

  private:
    struct Deed {
        const char* name;
        bool (Driver::*act)();
        int weight;
    };

    bool Send(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        DWORD_PTR result = 0;
        return SendMessageTimeoutA(window, message, wParam, lParam, SMTO_NORMAL, kAnswerMs, &result) != 0;
    }
    int Any(int count) { return static_cast<int>(random_() % static_cast<u32>(count)); }
    template <class Condition>
    static bool WaitFor(Condition&& condition) {
        for (const ULONGLONG end = GetTickCount64() + kAnswerMs; GetTickCount64() < end; Sleep(2))
            if (condition()) return true;
        return false;
    }

    bool OpenView() {
        PostMessageA(main_, WM_COMMAND, IDM_VIEW, 0);
        return WaitFor([this] {
            view_ = FindWindowA("#32770", "Vardelwatch - View");
            list_ = view_ && IsWindowVisible(view_) ? GetDlgItem(view_, IDC_HOST_LIST) : nullptr;
            return list_ != nullptr;
        });
    }
    bool CloseView() {
        PostMessageA(view_, WM_CLOSE, 0, 0);
        return WaitFor([this] { return !IsWindow(view_); });
    }

    bool Click(HWND window, UINT down, UINT up, WPARAM keys, int x, int y) {
        const LPARAM point = MAKELPARAM(x, y);
        return PostMessageA(window, down, keys, point) && PostMessageA(window, up, keys, point) &&
               Send(window, WM_NULL);
    }
    bool Sort() {
        const HWND header = FindWindowExA(list_, nullptr, WC_HEADERA, nullptr);
        return Click(header, WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON, 30 + Any(500), 6);
    }
    bool SelectOne() {
        RECT client{};
        GetClientRect(list_, &client);
        return Click(list_, WM_LBUTTONDOWN, WM_LBUTTONUP, MK_LBUTTON, 60 + Any(200),
                     25 + Any(static_cast<int>(client.bottom) - 25));
    }
    bool SelectSome() {
        for (int row = 0; row < 3; ++row)
            PostMessageA(list_, WM_KEYDOWN, Any(2) ? VK_DOWN : VK_NEXT, 1);
        return Send(list_, WM_NULL);
    }
    bool Command(UINT command) { return Send(view_, WM_COMMAND, command); }
    bool Trust() { return Command(static_cast<UINT>(IDM_SET_TRUSTED + Any(3))); }
    bool Delete() { return Command(IDM_DELETE_HOSTS); }
    bool Filter() { return Command(static_cast<UINT>(IDM_SHOW_TRUSTED + Any(3))); }
    bool Refresh() { return Send(view_, WM_TIMER, 10001); }
    bool Resize() {
        return SetWindowPos(view_, nullptr, Any(100), Any(100), 400 + Any(500), 200 + Any(300), SWP_NOZORDER) &&
               Send(view_, WM_NULL);
    }
    // Opens the menu by its key and leaves it again.
    bool Menu() {
        PostMessageA(list_, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(list_), -1);
        if (!WaitFor([] { return FindWindowA("#32768", nullptr) != nullptr; })) return false;
        PostMessageA(view_, WM_CANCELMODE, 0, 0);
        return Send(view_, WM_NULL);
    }

    bool DoOne() {
        int weights = 0;
        for (const Deed& deed : kDeeds) weights += deed.weight;
        int drawn = Any(weights);
        for (std::size_t at = 0; at < std::size(kDeeds); ++at) {
            drawn -= kDeeds[at].weight;
            if (drawn >= 0) continue;
            ++done_[at];
            return (this->*kDeeds[at].act)();
        }
        return true;
    }

    static constexpr Deed kDeeds[] = {
        {"sorts", &Driver::Sort, 6},        {"selects", &Driver::SelectOne, 8}, {"key selects", &Driver::SelectSome, 6},
        {"trusts", &Driver::Trust, 5},      {"deletes", &Driver::Delete, 4},    {"filters", &Driver::Filter, 5},
        {"refreshes", &Driver::Refresh, 6}, {"resizes", &Driver::Resize, 2},    {"menus", &Driver::Menu, 2}};

    const HWND main_;
    std::mt19937 random_;
    HANDLE process_ = nullptr;
    HWND view_ = nullptr, list_ = nullptr;
    int rounds_ = 0;
    int done_[std::size(kDeeds)] = {};
    GuiObjects before_, after_;
};

}  // namespace

int main(int count, char** words) {
    if (count != 3) return std::fprintf(stderr, "usage: view_driver SECONDS SEED\n"), 2;
    const HWND main = FindWindowA(kMainWindowClass, kMainWindowTitle);
    if (!main) return std::fprintf(stderr, "no program runs\n"), EXIT_FAILURE;
    Driver driver(main, static_cast<u32>(std::strtoul(words[2], nullptr, 10)));
    const bool answered = driver.Run(std::strtoul(words[1], nullptr, 10));
    driver.Print();
    return answered ? EXIT_SUCCESS : EXIT_FAILURE;
}
