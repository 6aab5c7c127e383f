#include "tests/fuzz/FailingMemory.h"

#include <cstdlib>
#include <new>

namespace vardel::test {

namespace {

constinit thread_local bool armed = false;
constinit thread_local u32 left = 0;

void* Take(std::size_t size) noexcept {
    if (armed && left-- == 0) {
        armed = false;
        return nullptr;
    }
    return std::malloc(size ? size : 1);
}

void* TakeOrThrow(std::size_t size) {
    if (void* memory = Take(size)) return memory;
    throw std::bad_alloc();
}

}  // namespace

FailingMemory::FailingMemory(u32 allowed) {
    left = allowed;
    armed = true;
}
FailingMemory::~FailingMemory() {
    armed = false;
}

}  // namespace vardel::test

using vardel::test::Take;
using vardel::test::TakeOrThrow;

void* operator new(std::size_t size) {
    return TakeOrThrow(size);
}
void* operator new[](std::size_t size) {
    return TakeOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Take(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Take(size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
