#include "platform/LeaveSignals.h"

#include <pthread.h>
#include <signal.h>

namespace vardel {

namespace {

// SIGUSR1 wakes the waiting thread at its end; sent to that thread alone.
sigset_t Watched() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    sigaddset(&set, SIGUSR1);
    return set;
}

void WaitForSignals(Events* events, EventHandle leave, const std::atomic<bool>* ending) {
    const sigset_t watched = Watched();
    for (int signal = 0; sigwait(&watched, &signal) == 0 && !*ending;)
        if (signal != SIGUSR1) events->Set(leave);
}

}  // namespace

LeaveSignals::LeaveSignals(Events& events, EventHandle leave) {
    const sigset_t watched = Watched();
    pthread_sigmask(SIG_BLOCK, &watched, nullptr);
    waiter_ = std::thread(WaitForSignals, &events, leave, &ending_);
}

LeaveSignals::~LeaveSignals() {
    ending_ = true;
    pthread_kill(waiter_.native_handle(), SIGUSR1);
    waiter_.join();
}

}  // namespace vardel
