#include "platform/Threads.h"

#include <memory>

#include "platform/WindowsApi.h"

namespace vardel {

namespace {

struct StartBlock {
    ThreadFunction function;
    void* parameter;
};

DWORD WINAPI Entry(void* raw) {
    const std::unique_ptr<StartBlock> block(static_cast<StartBlock*>(raw));
    block->function(block->parameter);
    return 0;
}

HANDLE Native(ThreadHandle handle) { return reinterpret_cast<HANDLE>(handle); }

class WindowsThreads : public Threads {
  public:
    bool Start(ThreadFunction function, void* parameter, ThreadHandle& handle, u32& id) override {
        handle = nullptr;
        id = 0;
        auto block = std::make_unique<StartBlock>(StartBlock{function, parameter});
        DWORD systemId = 0;
        const HANDLE thread = CreateThread(nullptr, 0, &Entry, block.get(), 0, &systemId);
        if (!thread) return false;
        block.release();
        handle = reinterpret_cast<ThreadHandle>(thread);
        id = systemId;
        return true;
    }

    // One after the other against one deadline: any number of handles, also null ones.
    bool WaitAll(std::span<const ThreadHandle> handles, u32 timeoutMs) override {
        const ULONGLONG deadline = GetTickCount64() + timeoutMs;
        for (ThreadHandle handle : handles) {
            if (!handle) continue;
            const ULONGLONG now = GetTickCount64();
            const DWORD remaining = now < deadline ? static_cast<DWORD>(deadline - now) : 0;
            if (WaitForSingleObject(Native(handle), remaining) != WAIT_OBJECT_0) return false;
        }
        return true;
    }
    void Close(ThreadHandle handle) override {
        if (handle) CloseHandle(Native(handle));
    }
};

}  // namespace

Threads& SystemThreads() {
    static WindowsThreads threads;
    return threads;
}

}  // namespace vardel
