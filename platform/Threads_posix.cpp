#include "platform/Threads.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace vardel {

namespace {

// Shared by the thread and its handle; whoever comes last frees it.
struct ThreadState {
    std::mutex guard;
    std::condition_variable changed;
    bool ended = false;
};

struct StartBlock {
    ThreadFunction function;
    void* parameter;
    std::shared_ptr<ThreadState> state;
};

void* Entry(void* raw) {
    const std::unique_ptr<StartBlock> block(static_cast<StartBlock*>(raw));
    block->function(block->parameter);
    std::lock_guard hold(block->state->guard);
    block->state->ended = true;
    block->state->changed.notify_all();
    return nullptr;
}

}  // namespace

struct ThreadObject {
    pthread_t thread;
    std::shared_ptr<ThreadState> state;
};

namespace {

class PosixThreads : public Threads {
  public:
    bool Start(ThreadFunction function, void* parameter, ThreadHandle& handle, u32& id) override {
        static std::atomic<u32> lastId{0};
        handle = nullptr;
        id = 0;
        auto thread = std::make_unique<ThreadObject>();
        thread->state = std::make_shared<ThreadState>();
        auto block = std::make_unique<StartBlock>(StartBlock{function, parameter, thread->state});
        if (pthread_create(&thread->thread, nullptr, &Entry, block.get()) != 0) return false;
        block.release();
        handle = thread.release();
        id = ++lastId;
        return true;
    }

    bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) override {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        for (ThreadHandle handle : handles) {
            if (!handle) continue;
            ThreadState& state = *handle->state;
            std::unique_lock hold(state.guard);
            if (!state.changed.wait_until(hold, deadline, [&] { return state.ended; })) return false;
        }
        return true;
    }

    void Close(ThreadHandle handle) override {
        if (!handle) return;
        bool ended;
        {
            std::lock_guard hold(handle->state->guard);
            ended = handle->state->ended;
        }
        // Joining an ended thread waits for its last instructions and gives its stack back.
        if (ended) pthread_join(handle->thread, nullptr);
        else pthread_detach(handle->thread);
        delete handle;
    }
};

}  // namespace

Threads& SystemThreads() {
    static PosixThreads threads;
    return threads;
}

}  // namespace vardel
