// What the host view costs: opening, refreshing, sorting and deleting, with networks of different sizes.
//
// Prints one line a figure. The view is the program's own, over a host table of this program; a step begins where a
// message would lead to it and ends when the list has drawn its rows.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "resources/DialogIds.h"
#include "resources/MenuIds.h"
#include "tests/unit/support/RecordingStore.h"
#include "tests/unit/support/TestServices.h"
#include "views/VardelViewDlg.h"

namespace vardel {
namespace {

constexpr int kRounds = 7;
constexpr UINT kRefreshTimer = 10001;

double NowMs() {
    LARGE_INTEGER count{}, frequency{};
    QueryPerformanceCounter(&count);
    QueryPerformanceFrequency(&frequency);
    return 1000.0 * static_cast<double>(count.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double MsOf(const std::function<void()>& work) {
    const double begin = NowMs();
    work();
    return NowMs() - begin;
}

void Print(const char* work, int hosts, std::vector<double> ms) {
    std::sort(ms.begin(), ms.end());
    std::printf("%-36s %6d hosts  median %8.2f ms  (%.2f to %.2f)\n", work, hosts, ms[ms.size() / 2], ms.front(),
                ms.back());
    std::fflush(stdout);
}

// A network of that many hosts, and the open view over it.
class ViewBench {
  public:
    explicit ViewBench(int hosts) : hosts_(hosts) {
        data_.fences.CreateAll();
        data_.settings.ViewFilterOptions = 7;
        data_.settings.VisibleColumns = 11111;
        data_.settings.GreyedOutOldEntries = 1;
        data_.settings.ViewGrayTime = 240;
        while (made_ < hosts) Join();
    }

    void Run() {
        std::vector<double> opening, closing;
        for (int round = 0; round <= kRounds; ++round) {
            double drawn = 0;
            Then([&] {
                UpdateWindow(List());
                drawn = NowMs();
            });
            Then([&] { SendMessageA(view_.GetHwnd(), WM_CLOSE, 0, 0); });
            const double begin = NowMs();
            view_.Open(data_, nullptr);
            closing.push_back(NowMs() - drawn);
            if (round == 0) Print("opening, the first time", hosts_, {drawn - begin});
            else opening.push_back(drawn - begin);
        }
        Print("opening", hosts_, opening);
        Print("closing", hosts_, closing);
        Then([this] { Measure(); });
        Then([this] { SendMessageA(view_.GetHwnd(), WM_CLOSE, 0, 0); });
        view_.Open(data_, nullptr);
    }

    // The open view and its timer, for `seconds`.
    void RunIdle(u32 seconds) {
        double before = 0;
        Then([&] { before = ProcessorMs(); });
        Then([&, seconds] {
            const double end = NowMs() + 1000.0 * seconds;
            MSG message;
            while (NowMs() < end) {
                MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
                while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
            }
            std::printf("%-36s %6d hosts  %.2f %% of a core, over %u s\n", "at rest, open", hosts_,
                        (ProcessorMs() - before) / (10.0 * seconds), seconds);
        });
        Then([this] { SendMessageA(view_.GetHwnd(), WM_CLOSE, 0, 0); });
        view_.Open(data_, nullptr);
    }

  private:
    static double ProcessorMs() {
        FILETIME made{}, ended{}, kernel{}, user{};
        GetProcessTimes(GetCurrentProcess(), &made, &ended, &kernel, &user);
        const auto ms = [](const FILETIME& time) {
            return static_cast<double>(static_cast<u64>(time.dwHighDateTime) << 32 | time.dwLowDateTime) / 10000.0;
        };
        return ms(kernel) + ms(user);
    }
    HWND List() { return view_.GetControl(IDC_HOST_LIST); }

    void Join() {
        // Addresses that don't come in order.
        const auto number = static_cast<u32>(made_++) * 40503u % 65536u;
        char ip[24], mac[24];
        std::snprintf(ip, sizeof ip, "10.%d.%u.%u", 1 + (made_ - 1) / 65536, number >> 8, number & 255u);
        std::snprintf(mac, sizeof mac, "02:00:00:%02x:%02x:01", number >> 8, number & 255u);
        HostRecord* host = data_.Adopt(std::make_unique<HostRecord>());
        host->ip = ip;
        host->mac = mac;
        host->hostName = (std::string("host-") + ip).c_str();
        host->vendor = "Some Vendor of Network Cards Inc.";
        host->vendorUnknown = 0;
        host->lastSeenText = "12:34:56";
        host->lastSeen = system_.clock.now;
        host->trustState = static_cast<TrustState>(made_ % 3);
        data_.arpMap.Insert(ip, host);
        latest_ = host;
    }

    void Refresh() {
        SendMessageA(view_.GetHwnd(), WM_TIMER, kRefreshTimer, 0);
        UpdateWindow(List());
    }
    void Sort() {
        NMLISTVIEW click{};
        click.hdr = {List(), IDC_HOST_LIST, static_cast<UINT>(LVN_COLUMNCLICK)};
        click.iItem = -1;
        click.iSubItem = 1;
        SendMessageA(view_.GetHwnd(), WM_NOTIFY, IDC_HOST_LIST, reinterpret_cast<LPARAM>(&click));
        UpdateWindow(List());
    }
    void SelectEvery(int step, int count) {
        LVITEMA item{};
        item.stateMask = LVIS_SELECTED;
        SendMessageA(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&item));
        item.state = LVIS_SELECTED;
        for (int row = 0, chosen = 0; chosen < count && row < view_.List().RowCount(); row += step, ++chosen)
            SendMessageA(List(), LVM_SETITEMSTATE, static_cast<WPARAM>(view_.List().LineOfRow(row)),
                         reinterpret_cast<LPARAM>(&item));
    }

    void Measure() {
        std::vector<double> idle, repaint, fresh, sort, removal, trust;
        for (int round = 0; round < kRounds; ++round) idle.push_back(MsOf([this] { Refresh(); }));
        for (int round = 0; round < kRounds; ++round) {
            latest_->rowDirty = 1;
            repaint.push_back(MsOf([this] { Refresh(); }));
        }
        for (int round = 0; round < kRounds; ++round) sort.push_back(MsOf([this] { Sort(); }));
        for (int round = 0; round < kRounds; ++round) {
            const int few = std::min(1000, hosts_ / 2);
            SelectEvery(hosts_ / few - 1, few);
            trust.push_back(MsOf([this, round] {
                SendMessageA(view_.GetHwnd(), WM_COMMAND, round % 2 ? IDM_SET_TRUSTED : IDM_SET_UNKNOWN, 0);
                Refresh();
            }));
            removal.push_back(MsOf([this] { SendMessageA(view_.GetHwnd(), WM_COMMAND, IDM_DELETE_HOSTS, 0); }));
            for (int join = 0; join < few; ++join) Join();
            fresh.push_back(MsOf([this] { Refresh(); }));
        }
        Print("refresh, nothing changed", hosts_, idle);
        Print("refresh, one host seen", hosts_, repaint);
        Print("refresh, 1,000 new hosts", hosts_, fresh);
        Print("sort by address", hosts_, sort);
        Print("trust of 1,000 changed, and refresh", hosts_, trust);
        Print("1,000 deleted", hosts_, removal);
    }

    // Steps that run one after the other in the view's message loop.
    void Then(std::function<void()> step) {
        if (!stepper_) {
            stepper_ = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
            SetWindowLongPtrA(stepper_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
            SetWindowLongPtrA(stepper_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&ViewBench::Step));
        }
        steps_.push_back(std::move(step));
        PostMessageA(stepper_, WM_APP, 0, 0);
    }
    static LRESULT CALLBACK Step(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* bench = reinterpret_cast<ViewBench*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        if (message != WM_APP || bench->steps_.empty()) return DefWindowProcA(window, message, wParam, lParam);
        const auto step = std::move(bench->steps_.front());
        bench->steps_.pop_front();
        step();
        return 0;
    }

    const int hosts_;
    int made_ = 0;
    HostRecord* latest_ = nullptr;
    test::TestServices system_;
    VardelData data_{system_.services};
    VardelViewDlg view_;
    HWND stepper_ = nullptr;
    std::deque<std::function<void()>> steps_;
};

}  // namespace
}  // namespace vardel

// The number of hosts; a second word for the view at rest. One network a process: the next one would find memory as the
// one before left it.
int main(int count, char** words) {
    const int hosts = count > 1 ? std::atoi(words[1]) : 0;
    if (hosts < 2) {
        std::fprintf(stderr, "usage: host_view_bench HOSTS [rest]\n");
        return 2;
    }
    vardel::test::RecordingStore store;
    const vardel::ScopedSettingsStore installed(store);
    vardel::ViewBench bench(hosts);
    if (count > 2) bench.RunIdle(20);
    else bench.Run();
    return 0;
}
