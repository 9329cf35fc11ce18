#include "foundation/cPool.h"

#include "foundation/cImmortal.h"
#include "foundation/cThread.h"

namespace trellis {

constinit cPool_Bucket* TRELLIS_POOL[cPool::BucketCount] = {};
pthread_mutex_t TRELLIS_POOL_MUTEX;
constinit bool TRELLIS_POOL_MUTEX_CREATED = false;

namespace {

// Strings of any thread and of any later destructor end here, so the buckets are never destroyed.
constinit cImmortal<cPool_Bucket> s_Buckets[cPool::BucketCount];

/// Locks the pool; makes the mutex and the buckets at the first call, which static initialisation makes on its one
/// thread.
class PoolLock {
public:
    PoolLock() {
        if (!TRELLIS_POOL_MUTEX_CREATED) {
            cThread::CreateMutex(TRELLIS_POOL_MUTEX);
            TRELLIS_POOL_MUTEX_CREATED = true;
        }
        cThread::LockMutex(TRELLIS_POOL_MUTEX);
        if (!TRELLIS_POOL[0]) {
            for (int i = 0; i < cPool::BucketCount; i++) {
                cPool_Bucket& bucket = s_Buckets[i].Value;
                bucket.ItemSize = 8 << i;
                bucket.ItemsPerChunk = cPool::ItemsPerChunk;
                TRELLIS_POOL[i] = &bucket;
            }
        }
    }
    ~PoolLock() { cThread::UnlockMutex(TRELLIS_POOL_MUTEX); }
    PoolLock(const PoolLock&) = delete;
    PoolLock& operator=(const PoolLock&) = delete;
};

void AddChunk(cPool_Bucket* bucket) {
    // Room for every block there is, so that giving one back never allocates: `Free` runs in destructors.
    bucket->FreeItems.EnsureCapacity((bucket->Chunks.Count() + 1) * bucket->ItemsPerChunk, false);
    bucket->Chunks.EnsureCapacity(bucket->Chunks.Count() + 1, false);
    auto* chunk = new unsigned char[size_t(bucket->ItemsPerChunk) * bucket->ItemSize];
    bucket->Chunks.Add(chunk);
    for (int i = 0; i < bucket->ItemsPerChunk; i++) {
        bucket->FreeItems.Add(chunk + i * bucket->ItemSize);
    }
}

} // namespace

unsigned char* cPool::AllocSlow(int size) {
    if (size < 1) {
        return nullptr;
    }
    if (size > MaxItemSize) {
        return new unsigned char[size_t(size)];
    }
    const PoolLock lock;
    const cBlockCache::Kind kind = KindFor(size);
    cPool_Bucket* bucket = TRELLIS_POOL[kind];
    if (bucket->FreeItems.IsEmpty()) {
        AddChunk(bucket);
    }
    return cBlockCache::Refill(kind, &bucket->FreeItems);
}

void cPool::FreeSlow(unsigned char* p, int size) {
    if (!p) {
        return;
    }
    if (size > MaxItemSize) {
        delete[] p;
        return;
    }
    if (size < 1) {
        return; // nothing was ever allocated with that size
    }
    const PoolLock lock;
    const cBlockCache::Kind kind = KindFor(size);
    cBlockCache::Spill(kind, p, &TRELLIS_POOL[kind]->FreeItems);
}

void cPool::TakeBack(int bucket, unsigned char** items, int count) {
    const PoolLock lock;
    TRELLIS_POOL[bucket]->FreeItems.AddRange(items, count);
}

cPool_Debug::cUsedCount::operator int() const {
    const PoolLock lock;
    int used = 0;
    for (int i = 0; i < cPool::BucketCount; i++) {
        const cPool_Bucket& bucket = *TRELLIS_POOL[i];
        used += bucket.Chunks.Count() * bucket.ItemsPerChunk - bucket.FreeItems.Count() -
                cBlockCache::CountCached(cBlockCache::Kind(i));
    }
    return used;
}

} // namespace trellis
