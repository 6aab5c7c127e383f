// A worker thread's function on events that take no time, called by the test itself: each of its sleeps is written down
// in `events.sleeps`.
//
//     StopAfter(3);
//     WMIThread(&params);
//     EXPECT_EQ(events.sleeps, (std::vector<u32>{1000, 1000, 1000}));
#pragma once

#include <gtest/gtest.h>

#include "capture/ThreadParams.h"
#include "capture/VardelData.h"
#include "tests/unit/support/ScriptedEvents.h"
#include "tests/unit/support/TestServices.h"

namespace vardel::test {

class WorkerFixture : public testing::Test {
  protected:
    WorkerFixture() { params.data = &data; }

    // Stops the worker at one of its sleeps.
    void StopAfter(std::size_t sleeps) {
        events.onSleep = [this, sleeps] {
            if (events.sleeps.size() >= sleeps) params.stop = 1;
        };
    }

    ScriptedEvents events;
    TestServices system;
    Services services = system.services.With(events);
    VardelData data{services};
    ThreadParams params;
};

}  // namespace vardel::test
