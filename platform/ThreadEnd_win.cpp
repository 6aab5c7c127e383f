#include "platform/ThreadEnd.h"

#include <memory>
#include <system_error>

#include "platform/ThreadEndChain.h"
#include "platform/WindowsApi.h"

namespace vardel {

namespace {

void WINAPI ReleaseAll(void* head) { ReleaseThreadEndChain(static_cast<ThreadEndLink*>(head)); }

[[noreturn]] void Fail(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

DWORD MakeIndex() {
    const DWORD index = FlsAlloc(&ReleaseAll);
    if (index == FLS_OUT_OF_INDEXES) Fail("no index for a thread's end");
    return index;
}

}  // namespace

void AtThreadEnd(void (*release)(void* object), void* object) {
    static const DWORD index = MakeIndex();
    auto link = std::make_unique<ThreadEndLink>(
        ThreadEndLink{release, object, static_cast<ThreadEndLink*>(FlsGetValue(index))});
    if (!FlsSetValue(index, link.get())) Fail("no place for a thread's end");
    link.release();
}

}  // namespace vardel
