// Per-thread top of the free stacks behind cPool and the small-string store.
//
// A shared stack under a mutex is exact but slow. Each thread therefore keeps the top of every stack for itself and
// goes to the shared part only to move whole batches. On one thread, cache above shared part is exactly the one stack.
#pragma once

#include <atomic>

namespace trellis {

template <class T, class Container> class cList;
template <class T> struct cList_Container;

class cBlockCache {
public:
    enum Kind : int { Pool8, Pool16, Pool32, Pool64, Pool128, SmallString, KindCount };

    static constexpr int Room = 64;  ///< Blocks of one kind that a thread keeps at the most.
    static constexpr int Batch = 32; ///< Blocks that one visit to the shared stack moves.

    /// A block of that kind from this thread's cache, or null when the shared stack must be asked (`Refill`).
    static unsigned char* Take(Kind kind) {
        const int count = t_Cache.m_Count[kind].load(std::memory_order_relaxed);
        if (count == 0) [[unlikely]] {
            return nullptr;
        }
        t_Cache.m_Count[kind].store(count - 1, std::memory_order_relaxed);
        return t_Cache.m_Items[kind][count - 1];
    }

    /// @return false when the cache is full, or the thread has none (before the first `Refill`, and at its end)
    static bool Give(Kind kind, unsigned char* p) {
        const int count = t_Cache.m_Count[kind].load(std::memory_order_relaxed);
        if (count >= t_Cache.m_Limit) [[unlikely]] {
            return false;
        }
        t_Cache.m_Items[kind][count] = p;
        t_Cache.m_Count[kind].store(count + 1, std::memory_order_relaxed);
        return true;
    }

    using FreeStack = cList<unsigned char*, cList_Container<unsigned char*>>;

    /// Moves the top batch of the shared stack, in its order, under this thread's cache, and pops one block.
    ///
    /// @param shared  not empty; the caller holds its mutex
    static unsigned char* Refill(Kind kind, FreeStack* shared);

    /// Gives a block that `Give` refused: the older half of a full cache goes to the shared stack first.
    ///
    /// @param shared  the caller holds its mutex
    static void Spill(Kind kind, unsigned char* p, FreeStack* shared);

    /// Blocks of one kind in the caches of all threads; exact while no other thread allocates.
    static int CountCached(Kind kind);

private:
    struct ThreadEnd;

    void Attach();
    void Detach();

    // Only the owner writes the counts; CountCached reads them, hence relaxed atomics.
    std::atomic<int> m_Count[KindCount] = {};
    int m_Limit = 0; // Room between Attach and Detach, else 0
    bool m_Ended = false;
    cBlockCache* m_Previous = nullptr; // all attached caches, under the registry's mutex
    cBlockCache* m_Next = nullptr;
    unsigned char* m_Items[KindCount][Room] = {};

    static cBlockCache* s_First;
    // Zero-initialised and trivially destructible, so that every access is a plain thread-local one.
    static thread_local constinit cBlockCache t_Cache;
};

} // namespace trellis
