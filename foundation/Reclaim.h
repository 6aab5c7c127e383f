// Safe freeing of what other threads may still be looking at, without any lock for those who look.
//
// A reader holds a ReadPin while it follows pointers inside a shared container. Whoever takes something out of a
// container retires it: it is freed once every thread that held a pin at that moment has let go of it. Pins nest
// and cost one locked instruction when outermost; a pin held for long only delays freeing.
//
// Source of the scheme: K. Fraser, "Practical lock-freedom" (2004), section 5.2.3, epoch-based reclamation.
#pragma once

#include "platform/Types.h"

namespace vardel {

class ReadPin {
  public:
    ReadPin();
    ~ReadPin();
    ReadPin(const ReadPin&) = delete;
    ReadPin& operator=(const ReadPin&) = delete;

  private:
    struct ReaderSlot& slot_;
};

using FreeFunction = void (*)(void* object);

// Hands `object`, which no new reader can reach any more, over to be freed by `release(object)`. Any thread.
void Retire(void* object, FreeFunction release);

template <class T>
void RetireObject(T* object) {
    if (object) Retire(object, [](void* p) { delete static_cast<T*>(p); });
}

// Frees at once whatever no pinned reader can hold. For tests and the end of the program.
void FreeRetired();

// How many retired objects still wait.
std::size_t RetiredCount();

}  // namespace vardel
