// The host view over a list control that refuses what it is told.
#include <functional>
#include <memory>

#include "tests/desktop/HostViewFixture.h"

namespace vardel {
namespace {

using test::HostView;

// What the control is made to refuse.
class Refusal {
  public:
    Refusal(HWND control, UINT message, std::function<bool(LPARAM)> refuses)
        : control_(control), message_(message), refuses_(std::move(refuses)) {
        SetWindowSubclass(control_, &Refusal::Proc, 1, reinterpret_cast<DWORD_PTR>(this));
    }
    ~Refusal() { RemoveWindowSubclass(control_, &Refusal::Proc, 1); }
    Refusal(const Refusal&) = delete;
    Refusal& operator=(const Refusal&) = delete;

  private:
    static LRESULT CALLBACK Proc(HWND control, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR self) {
        const auto& refusal = *reinterpret_cast<const Refusal*>(self);
        if (message == refusal.message_ && refusal.refuses_(lParam)) return -1;
        return DefSubclassProc(control, message, wParam, lParam);
    }
    const HWND control_;
    const UINT message_;
    const std::function<bool(LPARAM)> refuses_;
};

TEST_F(HostView, AHostWhoseRowIsRefusedIsLeftOutAndComesLater) {
    Knows("10.0.0.1");
    While([&] {
        HostRecord& refused = Knows("10.0.0.2");
        Knows("10.0.0.3", TrustState::Trusted);
        {
            const Refusal refusal(List(), LVM_INSERTITEMA, [&](LPARAM item) {
                return reinterpret_cast<const LVITEMA*>(item)->lParam == reinterpret_cast<LPARAM>(&refused);
            });
            Tick();
            EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.3 [Unknown hosts] 10.0.0.1 ");
        }
        ClickHeader(1);
        EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.3 [Unknown hosts] 10.0.0.1 ");
        Tick();
        EXPECT_EQ(Lines(), "[Trusted hosts] 10.0.0.3 [Unknown hosts] 10.0.0.1 10.0.0.2 ");
    });
}

// A list control refuses a column as soon as it is made.
class ColumnRefusal {
  public:
    explicit ColumnRefusal(int column) {
        column_ = column;
        hook_ = SetWindowsHookExA(WH_CBT, &ColumnRefusal::OnWindow, nullptr, GetCurrentThreadId());
    }
    ~ColumnRefusal() {
        UnhookWindowsHookEx(hook_);
        refusal_.reset();
    }
    ColumnRefusal(const ColumnRefusal&) = delete;
    ColumnRefusal& operator=(const ColumnRefusal&) = delete;

  private:
    static LRESULT CALLBACK OnWindow(int code, WPARAM wParam, LPARAM lParam) {
        char name[40] = "";
        const auto window = reinterpret_cast<HWND>(wParam);
        if (code == HCBT_CREATEWND && GetClassNameA(window, name, sizeof name) && std::string(name) == WC_LISTVIEWA)
            refusal_ = std::make_unique<Refusal>(window, LVM_INSERTCOLUMNA, [](LPARAM column) {
                return reinterpret_cast<const LVCOLUMNA*>(column)->iSubItem == column_ && column_-- > 0;
            });
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }
    static inline int column_ = 0;
    static inline std::unique_ptr<Refusal> refusal_;
    HHOOK hook_ = nullptr;
};

TEST_F(HostView, AFixedColumnThatIsRefusedEndsTheFixedOnes) {
    HostRecord& host = Knows("10.0.0.1");
    host.hostName = "not shown";
    const ColumnRefusal refusal(3);
    While([&] {
        EXPECT_EQ(Titles(), (std::vector<std::string>{" ", "IP - Address", "MAC - Address"}));
        EXPECT_EQ(view.ColumnAt(3), nullptr);
        EXPECT_EQ(LineOf("10.0.0.1"), 1);
    });
}

}  // namespace
}  // namespace vardel
