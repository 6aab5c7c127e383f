// SharedOrderedMap: map from a signed 32-bit number to record pointer, walked in ascending order, safe for any
// mix of threads.
//
// - Find takes no lock; First/Next and ForEach walk without one. The caller of Find, First and Next holds a ReadPin
//   while it uses a node; ForEach holds one itself. A walk meets every element that is present throughout exactly
//   once and never a freed node.
// - Insert is unique by key. Append assigns the key inside the insertion: one more than the greatest key ever
//   assigned, from 1 on.
//
// Ownership as in SharedMap. A skip list (W. Pugh, 1990) whose writers are serialised by a mutex.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <new>
#include <type_traits>

#include "foundation/Reclaim.h"
#include "foundation/SharedMap.h"

namespace vardel {

template <class V, Ownership ownership = Ownership::BorrowsValues>
class SharedOrderedMap {
    static constexpr int kMaxHeight = 12;

  public:
    class Node {
      public:
        const i32 key;
        V* Value() const { return value_.load(std::memory_order_acquire); }

      private:
        friend class SharedOrderedMap;
        Node(i32 number, V* record, int height) : key(number), height_(height), value_(record) {}
        std::atomic<Node*>& Link(int level) { return reinterpret_cast<std::atomic<Node*>*>(this + 1)[level]; }
        const std::atomic<Node*>& Link(int level) const {
            return reinterpret_cast<const std::atomic<Node*>*>(this + 1)[level];
        }
        static Node* Make(i32 number, V* record, int height) {
            void* room = ::operator new(sizeof(Node) + sizeof(std::atomic<Node*>) * static_cast<std::size_t>(height));
            Node* node = new (room) Node(number, record, height);
            for (int level = 0; level < height; ++level) new (&node->Link(level)) std::atomic<Node*>(nullptr);
            return node;
        }
        static void Free(void* node) {
            static_cast<Node*>(node)->~Node();
            ::operator delete(node);
        }
        const int height_;
        std::atomic<V*> value_;
    };

    SharedOrderedMap() : head_(Node::Make(0, nullptr, kMaxHeight)) {}
    ~SharedOrderedMap() {
        for (Node* node = head_; node;) {
            Node* next = node->Link(0).load();
            if constexpr (ownership == Ownership::OwnsValues) delete node->Value();
            Node::Free(node);
            node = next;
        }
    }
    SharedOrderedMap(const SharedOrderedMap&) = delete;
    SharedOrderedMap& operator=(const SharedOrderedMap&) = delete;

    u32 Count() const { return count_.load(std::memory_order_acquire); }
    bool IsEmpty() const { return Count() == 0; }

    bool Insert(i32 key, V* value) {
        std::lock_guard hold(writers_);
        return InsertHeld(key, value);
    }
    // Gives the key.
    i32 Append(V* value) {
        std::lock_guard hold(writers_);
        const i32 key = sequence_ + 1;
        InsertHeld(key, value);
        return key;
    }
    // A borrowed value comes back in `value`.
    bool Erase(i32 key, V** value = nullptr) {
        std::lock_guard hold(writers_);
        Node* before[kMaxHeight];
        Node* node = Seek(key, before);
        if (!node || node->key != key) return false;
        for (int level = 0; level < node->height_; ++level)
            before[level]->Link(level).store(node->Link(level).load());
        count_.store(count_.load() - 1);
        if constexpr (ownership == Ownership::OwnsValues) RetireObject(node->Value());
        else if (value) *value = node->Value();
        Retire(node, &Node::Free);
        return true;
    }
    void Clear() {
        for (;;) {
            i32 key;
            {
                ReadPin pin;
                const Node* node = First();
                if (!node) return;
                key = node->key;
            }
            Erase(key);
        }
    }

    const Node* Find(i32 key) const {
        const Node* node = Seek(key, nullptr);
        return node && node->key == key ? node : nullptr;
    }
    const Node* First() const { return head_->Link(0).load(); }
    static const Node* Next(const Node* node) { return node->Link(0).load(); }
    // The first node whose key is greater.
    const Node* After(i32 key) const {
        const Node* node = Seek(key, nullptr);
        return node && node->key == key ? Next(node) : node;
    }

    // `visit(key, value)`; a visit that gives bool ends the walk with false.
    template <class Visit>
    void ForEach(Visit&& visit) const {
        ReadPin pin;
        for (const Node* node = First(); node; node = Next(node)) {
            if constexpr (std::is_same_v<decltype(visit(node->key, node->Value())), bool>) {
                if (!visit(node->key, node->Value())) return;
            } else {
                visit(node->key, node->Value());
            }
        }
    }

  private:
    // The first node with a key of at least `key`; `before` takes the last node before it on each level.
    Node* Seek(i32 key, Node** before) const {
        Node* node = head_;
        for (int level = kMaxHeight - 1;; --level) {
            for (Node* next = node->Link(level).load(); next && next->key < key; next = node->Link(level).load())
                node = next;
            if (before) before[level] = node;
            if (level == 0) return node->Link(0).load();
        }
    }

    bool InsertHeld(i32 key, V* value) {
        Node* before[kMaxHeight];
        Node* next = Seek(key, before);
        if (next && next->key == key) return false;
        Node* node = Node::Make(key, value, DrawHeight());
        for (int level = 0; level < node->height_; ++level)
            node->Link(level).store(before[level]->Link(level).load());
        for (int level = 0; level < node->height_; ++level) before[level]->Link(level).store(node);
        if (key > sequence_) sequence_ = key;
        count_.store(count_.load() + 1);
        return true;
    }

    int DrawHeight() {
        random_ ^= random_ << 13;
        random_ ^= random_ >> 17;
        random_ ^= random_ << 5;
        int height = 1;
        for (u32 bits = random_; height < kMaxHeight && (bits & 3) == 0; bits >>= 2) ++height;
        return height;
    }

    Node* const head_;
    std::atomic<u32> count_{0};
    i32 sequence_ = 0;
    u32 random_ = 2463534242u;
    std::mutex writers_;
};

}  // namespace vardel
