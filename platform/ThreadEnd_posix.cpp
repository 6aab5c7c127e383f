#include "platform/ThreadEnd.h"

#include <pthread.h>

#include <memory>
#include <system_error>

#include "platform/ThreadEndChain.h"

namespace vardel {

namespace {

// The system clears the thread's value first: what is asked for during the end makes a new chain, which it comes back
// for.
void ReleaseAll(void* head) { ReleaseThreadEndChain(static_cast<ThreadEndLink*>(head)); }

pthread_key_t MakeKey() {
    pthread_key_t key;
    const int error = pthread_key_create(&key, &ReleaseAll);
    if (error != 0) throw std::system_error(error, std::generic_category(), "no key for a thread's end");
    return key;
}

}  // namespace

void AtThreadEnd(void (*release)(void* object), void* object) {
    static const pthread_key_t key = MakeKey();
    auto link = std::make_unique<ThreadEndLink>(
        ThreadEndLink{release, object, static_cast<ThreadEndLink*>(pthread_getspecific(key))});
    const int error = pthread_setspecific(key, link.get());
    if (error != 0) throw std::system_error(error, std::generic_category(), "no place for a thread's end");
    link.release();
}

}  // namespace vardel
