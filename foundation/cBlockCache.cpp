#include "foundation/cBlockCache.h"

#include "foundation/cList.h"
#include "foundation/cPool.h"
#include "foundation/cStr.h"

#include <pthread.h>

namespace trellis {

namespace {

pthread_mutex_t s_RegistryMutex = PTHREAD_MUTEX_INITIALIZER; // guards the chain of attached caches; a leaf

} // namespace

constinit cBlockCache* cBlockCache::s_First = nullptr;
constinit thread_local cBlockCache cBlockCache::t_Cache;

/// Hands the cache back when its thread ends. Strings of later destructors on that thread use the shared stacks.
struct cBlockCache::ThreadEnd {
    ~ThreadEnd() { t_Cache.Detach(); }
};

unsigned char* cBlockCache::Refill(Kind kind, FreeStack* shared) {
    if (t_Cache.m_Limit == 0 && !t_Cache.m_Ended) {
        t_Cache.Attach();
    }
    const int available = shared->Count();
    const int moved = t_Cache.m_Ended ? 1 : std::min(available, Batch);
    const int first = available - moved;
    // The stack under a large heap is out of the processor's caches; what the next two visits move is fetched early.
    for (int i = std::max(first - 2 * Batch, 0); i < first; i += 64 / int(sizeof(unsigned char*))) {
        __builtin_prefetch(shared->Data() + i);
    }
    for (int i = 0; i < moved - 1; i++) {
        t_Cache.m_Items[kind][i] = (*shared)[first + i];
    }
    unsigned char* top = (*shared)[available - 1];
    shared->SetCount(first);
    t_Cache.m_Count[kind].store(moved - 1, std::memory_order_relaxed);
    return top;
}

void cBlockCache::Spill(Kind kind, unsigned char* p, FreeStack* shared) {
    if (t_Cache.m_Limit == 0) {
        if (t_Cache.m_Ended) {
            shared->Add(p);
            return;
        }
        t_Cache.Attach();
    }
    int count = t_Cache.m_Count[kind].load(std::memory_order_relaxed);
    if (count == Room) {
        unsigned char** items = t_Cache.m_Items[kind];
        shared->AddRange(items, Batch);
        std::copy(items + Batch, items + Room, items);
        count -= Batch;
    }
    t_Cache.m_Items[kind][count] = p;
    t_Cache.m_Count[kind].store(count + 1, std::memory_order_relaxed);
}

int cBlockCache::CountCached(Kind kind) {
    pthread_mutex_lock(&s_RegistryMutex);
    int count = 0;
    for (const cBlockCache* c = s_First; c; c = c->m_Next) {
        count += c->m_Count[kind].load(std::memory_order_relaxed);
    }
    pthread_mutex_unlock(&s_RegistryMutex);
    return count;
}

void cBlockCache::Attach() {
    static thread_local ThreadEnd t_End; // its destructor is registered here, on the first visit
    (void)t_End;
    m_Limit = Room;
    pthread_mutex_lock(&s_RegistryMutex);
    m_Previous = nullptr;
    m_Next = s_First;
    if (m_Next) {
        m_Next->m_Previous = this;
    }
    s_First = this;
    pthread_mutex_unlock(&s_RegistryMutex);
}

void cBlockCache::Detach() {
    m_Limit = 0;
    m_Ended = true;
    for (int kind = 0; kind < KindCount; kind++) {
        const int count = m_Count[kind].load(std::memory_order_relaxed);
        if (count == 0) {
            continue;
        }
        if (kind == SmallString) {
            cStr::TakeBackSlots(m_Items[kind], count);
        } else {
            cPool::TakeBack(kind, m_Items[kind], count);
        }
        m_Count[kind].store(0, std::memory_order_relaxed);
    }
    pthread_mutex_lock(&s_RegistryMutex);
    (m_Previous ? m_Previous->m_Next : s_First) = m_Next;
    if (m_Next) {
        m_Next->m_Previous = m_Previous;
    }
    pthread_mutex_unlock(&s_RegistryMutex);
}

} // namespace trellis
