#include <gtest/gtest.h>

#include "capture/EventMap.h"
#include "capture/Vardel.h"
#include "tests/unit/support/NoFrame.h"
#include "tests/unit/support/ScriptedCapture.h"
#include "tests/unit/support/ScriptedEvents.h"
#include "tests/unit/support/TestServices.h"
#include "tests/unit/support/TracedLines.h"

namespace vardel::test {

namespace {

using Steps = std::vector<std::string>;

// The thread's function, called on the test's thread, with a whole application that has a scripted capture library.
class SnifferThreadTest : public testing::Test {
  protected:
    SnifferThreadTest() {
        app.capture = capture.EntryPoints();
        app.data.interfaceName = "eth0";
        app.data.capturing = 1;
        capture.onExhausted = [this] { params.stop = 1; };
    }

    ScriptedEvents events;
    TestServices system;
    Services services = system.services.With(events);
    NoFrame frame;
    ScriptedCapture capture;
    Vardel app{services, frame};
    ThreadParams params{&app.arpImpl, &app.ipImpl, &app.data, &app, 0, nullptr};
    TracedLines traced;
};

}  // namespace

TEST_F(SnifferThreadTest, FeedsTheHostTableUntilItIsStopped) {
    capture.reads.push_back({.frame = ArpReply{.ip = "10.0.0.5"}});
    SnifferThread(&params);
    EXPECT_NE(app.data.arpMap.FindValue("10.0.0.5"), nullptr);
    EXPECT_EQ(capture.connectionsOpen, 0);
    EXPECT_EQ(traced.Steps().back(), "Vardel::SnifferThread: Exit...");
    EXPECT_EQ(events.open, 0);
}

TEST_F(SnifferThreadTest, EndsAtOnceWithoutParameters) {
    SnifferThread(nullptr);
    EXPECT_EQ(traced.Steps(), Steps{"Vardel::SnifferThread: No params - Exit..."});
}

TEST_F(SnifferThreadTest, EndsAtOnceWhereAHandlerOrTheDataIsMissing) {
    const auto ends = [&](ThreadParams incomplete) {
        SnifferThread(&incomplete);
        EXPECT_TRUE(capture.calls.empty());
    };
    ends({nullptr, params.ip, params.data, &app, 0, nullptr});
    ends({params.arp, nullptr, params.data, &app, 0, nullptr});
    ends({params.arp, params.ip, nullptr, &app, 0, nullptr});
    const std::string exit = "Vardel::SnifferThread: Exit...";
    EXPECT_EQ(traced.Steps(), (Steps{exit, exit, exit}));
}

}  // namespace vardel::test
