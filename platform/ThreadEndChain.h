// What a thread is to release at its end, as both systems keep it: a chain whose head lies in the system's own storage
// for the thread.
#pragma once

namespace vardel {

struct ThreadEndLink {
    void (*release)(void* object);
    void* object;
    ThreadEndLink* next;
};

inline void ReleaseThreadEndChain(ThreadEndLink* head) {
    while (head) {
        ThreadEndLink* const next = head->next;
        head->release(head->object);
        delete head;
        head = next;
    }
}

}  // namespace vardel
