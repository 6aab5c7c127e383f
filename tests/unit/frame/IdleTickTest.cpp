// What a tick costs when nothing has happened: no memory, but for the host count item, and no list's fence. A program
// of its own, since it counts every allocation of the process.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/unit/support/TickFixture.h"

namespace {

std::atomic<long> allocations{0};

void* CountedOrNull(std::size_t size) noexcept {
    ++allocations;
    return std::malloc(size ? size : 1);
}

void* Counted(std::size_t size) {
    if (void* block = CountedOrNull(size)) return block;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return Counted(size); }
void* operator new[](std::size_t size) { return Counted(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return CountedOrNull(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return CountedOrNull(size); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }

namespace vardel {
namespace {

// Shows nothing, so that nothing but the tick itself is counted.
class NoSurface : public AlertSurface {
  public:
    void ShowTrayNotify(u32, const char*, const char*) override {}
    NotifyPopup* HostPopup() override { return &popup_; }
    NotifyPopup* WatchPopup() override { return &popup_; }
    NotifyPopup* SyslogPopup() override { return &popup_; }
    Color MenuHighlight() override { return {}; }

  private:
    test::Calls calls_;
    test::RecordingPopup popup_{"popup", calls_};
};

class IdleTickTest : public test::TickFixture {
  protected:
    IdleTickTest() {
        deeds.quiet = true;
        data.settings.UseToolTips = 1;
        data.settings.MACSpoofingVisualization = 1;
        data.settings.RAVisualization = 1;
        data.settings.ShareVisualization = 1;
        data.settings.TrustedApp = "a program with a path that is longer than fits inside";
        Knows("10.0.0.5");
        // Texts that lie within the answering object: the test's own copies are not the tick's.
        system.strings.texts = {{IDS_TRAY_TOOLTIP, "%s - %d"}};
    }
    long AllocationsOf(PeriodicTick& ticks, u32 timer) {
        ticks.OnTimer(timer);  // whatever is made once
        const long before = allocations;
        for (int round = 0; round < 100; ++round) ticks.OnTimer(timer);
        return allocations - before;
    }
    NoSurface quiet;
    PeriodicTick idle{&data, quiet, deeds};
};

TEST_F(IdleTickTest, TheCountSeesAllocations) {
    const long before = allocations;
    std::vector<int>* volatile block = new std::vector<int>(100);
    delete block;
    EXPECT_GT(allocations, before);
}

TEST_F(IdleTickTest, AllocatesNothingAndTakesNoFence) {
    for (const u32 timer : {kTrayTimer, kShareTimer, kSyslogTimer}) {
        EXPECT_EQ(AllocationsOf(idle, timer), 0) << timer;
        EXPECT_EQ(events.resets + events.sets + events.waits, 0) << timer;
    }
    EXPECT_EQ(deeds.queued, 101);  // the host counts
}

TEST_F(IdleTickTest, SilentModeIsAsCheap) {
    data.settings.UseToolTips = 0;
    EXPECT_EQ(AllocationsOf(idle, kTrayTimer), 0);
    EXPECT_EQ(events.resets, 0);
}

TEST_F(IdleTickTest, AListThatIsKeptIsNotTouchedWhileItsAlertIsSwitchedOff) {
    data.settings.RAVisualization = 0;
    Connects("10.0.0.6", "music", "ann");
    EXPECT_EQ(AllocationsOf(idle, kShareTimer), 0);
    EXPECT_EQ(events.resets, 0);
}

}  // namespace
}  // namespace vardel
