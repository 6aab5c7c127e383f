// The worker that reads the vendor list into VardelData::vendors and then fills in the vendors of known
// hosts, and the restart of it.
//
// Each run has a token of its own. A run that is still going when the next one is wanted is never killed: it
// is abandoned, and from that moment on publishes nothing any more, neither a table, a host's vendor nor a
// signal. It notices at the next line or host and ends by itself.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "capture/ThreadParams.h"
#include "platform/Threads.h"

namespace vardel {

struct RunningThread;

// One run of ReadVendorThread: what it works on, and its token.
//
// Owned by the thread until that ends and by whoever may want to abandon it. `params` and what it points at
// outlive the thread.
struct VendorRun {
    explicit VendorRun(ThreadParams* block) : params(block) {}

    ThreadParams* const params;
    std::shared_ptr<VendorRun> ownedByThread;  // set before the start, taken by the thread

    bool Abandoned() const { return abandoned_; }

    // Runs `step` unless the run was abandoned; the two never overlap. False: it was.
    template <class Step>
    bool Publish(Step&& step) {
        std::lock_guard hold(guard_);
        if (abandoned_) return false;
        step();
        return true;
    }

    // After this nothing is published. Gives true when the run stood in the fence of the host table, which is
    // the caller's to lower then.
    bool Abandon() {
        std::lock_guard hold(guard_);
        abandoned_ = true;
        return insideArpFence;
    }

    bool insideArpFence = false;  // changed by published steps alone

  private:
    std::mutex guard_;
    std::atomic<bool> abandoned_{false};
};

// Abandons the recorded run, if there is one, signals the guard of the vendor table and starts a new run on
// `params`. A worker that hasn't ended yet goes to `abandonedThreads`, whose owner waits for it before it
// frees anything shared. False when the stop byte is set or no thread can be made; no run is recorded then.
// Main thread only.
bool RestartVendorRun(RunningThread& thread, std::shared_ptr<VendorRun>& run, ThreadParams& params,
                      std::vector<ThreadHandle>& abandonedThreads, Threads& threads);

// Gives every host whose vendor is unknown its vendor from the table, or string id 91. Returns early when the
// run is abandoned meanwhile.
void BackfillVendors(VendorRun& run);

}  // namespace vardel
