#include "foundation/cPool.h"

#include "foundation/cStr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <cstring>
#include <iterator>
#include <mutex>
#include <random>
#include <set>
#include <thread>
#include <utility>
#include <vector>

using namespace trellis;

namespace {

int Used() {
    return cPool_Debug::UsedCount;
}

/// Slots of the small-string store that are handed out, on whatever thread they are free.
int UsedSlots() {
    return cStr::pool.Count() * cStr::SlotsPerBlock - cStr::free_strings.Count() -
           cBlockCache::CountCached(cBlockCache::SmallString);
}

/// One of the stacks, so that the same claims hold for the buckets and for the small strings.
struct Stack {
    const char* Name;
    int Size;     // as asked for
    int ItemSize; // as granted
    int PerChunk;
    int Bucket; // -1: the small-string store

    unsigned char* Alloc() const {
        return Bucket < 0 ? reinterpret_cast<unsigned char*>(cStr::getstr()) : cPool::Alloc(Size);
    }
    void Free(unsigned char* p) const {
        if (Bucket < 0) {
            cStr::freestr(reinterpret_cast<char*>(p));
        } else {
            cPool::Free(p, Size);
        }
    }
    int Chunks() const { return Bucket < 0 ? cStr::pool.Count() : TRELLIS_POOL[Bucket]->Chunks.Count(); }
    unsigned char* Chunk(int i) const {
        return Bucket < 0 ? reinterpret_cast<unsigned char*>(cStr::pool[i]) : TRELLIS_POOL[Bucket]->Chunks[i];
    }
};

constexpr Stack s_Stacks[] = {
    {"1 byte", 1, 8, 512, 0},        {"8 bytes", 8, 8, 512, 0},         {"9 bytes", 9, 16, 512, 1},
    {"16 bytes", 16, 16, 512, 1},    {"17 bytes", 17, 32, 512, 2},      {"32 bytes", 32, 32, 512, 2},
    {"33 bytes", 33, 64, 512, 3},    {"64 bytes", 64, 64, 512, 3},      {"65 bytes", 65, 128, 512, 4},
    {"128 bytes", 128, 128, 512, 4}, {"small string", 20, 20, 256, -1},
};

TEST(Pool, AFreshChunkGoesOutFromItsHighEnd) {
    const int before = Used();
    for (const Stack& s : s_Stacks) {
        SCOPED_TRACE(s.Name);
        std::vector<unsigned char*> held;
        const int chunks = s.Chunks();
        while (s.Chunks() == chunks) {
            held.push_back(s.Alloc());
        }
        unsigned char* const chunk = s.Chunk(chunks);
        int wrong = 0;
        for (int i = s.PerChunk - 1;; i--) {
            wrong += held.back() != chunk + i * s.ItemSize;
            wrong += s.Bucket < 0 && held.back()[0] != cStr::FreeMark;
            std::memset(held.back(), 0x55, size_t(s.Size));
            if (i == 0) {
                break;
            }
            held.push_back(s.Alloc());
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(s.Chunks(), chunks + 1);
        EXPECT_EQ(Used() - before, s.Bucket < 0 ? 0 : int(held.size()));
        for (unsigned char* p : held) {
            s.Free(p);
        }
        EXPECT_EQ(Used(), before);
    }
}

TEST(Pool, OneThreadSeesOneStack) {
    std::mt19937 random(3);
    for (const Stack& s : s_Stacks) {
        SCOPED_TRACE(s.Name);
        std::vector<unsigned char*> freed; // as the stack must have it, the top at the end
        std::vector<unsigned char*> held;
        for (int i = 0; i < 700; i++) {
            held.push_back(s.Alloc());
        }
        std::shuffle(held.begin(), held.end(), random);
        for (int round = 0; round < 5000; round++) {
            for (auto n = random() % 200; n > 0 && !held.empty(); n--) {
                held.back()[0] = 'x';
                s.Free(held.back());
                ASSERT_TRUE(s.Bucket >= 0 || held.back()[0] == cStr::FreeMark);
                freed.push_back(held.back());
                held.pop_back();
            }
            for (auto n = random() % 200; n > 0 && !freed.empty(); n--) {
                unsigned char* const p = s.Alloc();
                ASSERT_EQ(p, freed.back()) << "round " << round;
                freed.pop_back();
                held.push_back(p);
            }
        }
        for (unsigned char* p : held) {
            s.Free(p);
        }
    }
}

TEST(Pool, SizesOutsideTheBuckets) {
    const int before = Used();
    EXPECT_EQ(cPool::Alloc(0), nullptr);
    EXPECT_EQ(cPool::Alloc(-1), nullptr);
    cPool::Free(nullptr, 0);
    cPool::Free(nullptr, 8);
    cPool::Free(nullptr, 1000);
    for (const int size : {129, 100000}) {
        unsigned char* const p = cPool::Alloc(size);
        std::memset(p, 1, size_t(size));
        EXPECT_EQ(Used(), before) << "the heap's blocks do not count";
        cPool::Free(p, size);
    }
    EXPECT_EQ(Used(), before);
}

// Threads

/// Blocks that one thread allocated and another shall free.
class Exchange {
public:
    using Block = std::pair<unsigned char*, const Stack*>;

    Block Swap(Block block, unsigned int slot) {
        const std::lock_guard lock(m_Mutex);
        std::swap(block, m_Slots[slot % 64]);
        return block;
    }

private:
    std::mutex m_Mutex;
    Block m_Slots[64] = {};
};

void Fill(unsigned char* p, int size) {
    std::memset(p, size ^ 0x5A, size_t(size));
}

/// @return whether nobody else wrote there since `Fill`
bool Intact(const unsigned char* p, int size) {
    return std::all_of(p, p + size, [size](unsigned char c) { return c == (unsigned char)(size ^ 0x5A); });
}

TEST(Pool, ThreadsNeverShareABlock) {
    const int before = Used();
    const int slotsBefore = UsedSlots();
    Exchange exchange;
    std::atomic<int> broken{0};
    const auto release = [&broken](const Exchange::Block& block) {
        if (const auto& [p, s] = block; p) {
            broken += !Intact(p, s->Size);
            s->Free(p);
        }
    };
    const auto work = [&](unsigned int seed) {
        std::mt19937 random(seed);
        std::vector<Exchange::Block> held;
        for (int i = 0; i < 30000; i++) {
            const Stack& s = s_Stacks[random() % std::size(s_Stacks)];
            unsigned char* const p = s.Alloc();
            Fill(p, s.Size);
            held.push_back(exchange.Swap({p, &s}, random()));
            while (held.size() > random() % 300) {
                release(held.back());
                held.pop_back();
            }
        }
        for (const auto& block : held) {
            release(block);
        }
    };
    {
        std::vector<std::jthread> threads;
        for (unsigned int i = 0; i < 4; i++) {
            threads.emplace_back(work, i);
        }
    }
    for (unsigned int i = 0; i < 64; i++) {
        release(exchange.Swap({}, i));
    }
    EXPECT_EQ(broken, 0);
    EXPECT_EQ(Used(), before) << "what the threads kept for themselves went back when they ended";
    EXPECT_EQ(UsedSlots(), slotsBefore);
}

/// Works on strings in its destructor, as loggers of ending threads do.
struct LateStrings {
    cStr Slot, Block;
    ~LateStrings() {
        for (int i = 0; i < 200; i++) { // more than a thread keeps for itself
            Slot.Free();
            Slot.Append("late");
            Block.Free();
            Block.Append("a later text that takes a block of the pool");
            cList<cStr> many;
            many.Add(Slot, 100);
            many.Add(Block, 100);
        }
    }
};

thread_local LateStrings t_Early; // registered ahead of the thread's cache, so destroyed behind it
thread_local LateStrings t_Late;

TEST(Pool, ThreadLocalStringsOutliveTheThreadsCache) {
    const int before = Used();
    const int slotsBefore = UsedSlots();
    for (int i = 0; i < 3; i++) {
        std::thread([] {
            EXPECT_TRUE(t_Early.Slot.IsEmpty()); // the first access registers the destructor
            t_Early.Slot.Append("early");
            t_Early.Block.Append("an early text that takes a block of the pool");
            t_Late.Slot.Append("late");
        }).join();
        EXPECT_EQ(Used(), before);
        EXPECT_EQ(UsedSlots(), slotsBefore);
    }
}

TEST(Pool, FirstUseOnSeveralThreads) { // ctest gives this test a process of its own
    std::barrier start(2);
    std::vector<unsigned char*> blocks[2];
    const auto work = [&start](std::vector<unsigned char*>* out) {
        start.arrive_and_wait();
        for (int i = 0; i < 600; i++) {
            out->push_back(cPool::Alloc(8));
        }
    };
    { const std::jthread first(work, &blocks[0]), second(work, &blocks[1]); }
    std::set<unsigned char*> all;
    for (const auto& list : blocks) {
        for (unsigned char* p : list) {
            EXPECT_TRUE(all.insert(p).second) << "handed out twice";
        }
    }
    for (unsigned char* p : all) {
        cPool::Free(p, 8);
    }
}

} // namespace
