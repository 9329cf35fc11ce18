// Fixed-size allocator under the strings: five buckets of header-less blocks, everything larger on the heap.
#pragma once

#include "foundation/cBlockCache.h"
#include "foundation/cList.h"

#include <bit>
#include <pthread.h>

namespace trellis {

/// One size of block. Chunks are never released: a bucket's footprint is the high-water mark of its use.
struct cPool_Bucket {
    int ItemSize = 0;
    int ItemsPerChunk = 0;
    cList<unsigned char*> Chunks;
    cList<unsigned char*> FreeItems; ///< Shared part of the stack of free blocks; the top stands in the thread caches.
};

/// Allocator for blocks of 1 to 128 bytes. Safe on all threads.
///
/// A block comes from the first bucket (8, 16, 32, 64, 128) that holds it; buckets are stacks, filled by chunks of 512
/// blocks whose high end goes out first. Blocks are aligned to min(ItemSize, 16) bytes.
class cPool {
public:
    /// @return a block of at least `size` bytes; null when `size` < 1. Throws what the heap throws.
    static unsigned char* Alloc(int size) {
        if (unsigned(size) - 1u < unsigned(MaxItemSize)) [[likely]] {
            if (unsigned char* p = cBlockCache::Take(KindFor(size))) [[likely]] {
                return p;
            }
        }
        return AllocSlow(size);
    }

    /// @param p     from `Alloc`, or null
    /// @param size  exactly the size it was allocated with: it selects the bucket, and nothing can check it
    static void Free(unsigned char* p, int size) {
        if (p && unsigned(size) - 1u < unsigned(MaxItemSize) && cBlockCache::Give(KindFor(size), p)) [[likely]] {
            return;
        }
        FreeSlow(p, size);
    }

    static constexpr int MaxItemSize = 128;
    static constexpr int ItemsPerChunk = 512;
    static constexpr int BucketCount = 5;

private:
    friend class cBlockCache;

    static cBlockCache::Kind KindFor(int size) {
        return cBlockCache::Kind(std::bit_width(unsigned(size - 1) | 7u) - 3);
    }
    static unsigned char* AllocSlow(int size);
    static void FreeSlow(unsigned char* p, int size);
    static void TakeBack(int bucket, unsigned char** items, int count);
};

extern cPool_Bucket* TRELLIS_POOL[cPool::BucketCount]; ///< Null until the first call.
extern pthread_mutex_t TRELLIS_POOL_MUTEX;             ///< Guards all buckets.
extern bool TRELLIS_POOL_MUTEX_CREATED;

namespace cPool_Debug {

/// Reads as an `int` (convert before printing): blocks handed out from buckets and not yet given back. Exact while no
/// other thread allocates.
struct cUsedCount {
    operator int() const;
};
inline constexpr cUsedCount UsedCount;

} // namespace cPool_Debug

} // namespace trellis
