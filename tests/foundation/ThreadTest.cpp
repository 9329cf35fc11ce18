#include "foundation/cThread.h"

#include "foundation/cStr.h"

#include <gtest/gtest.h>

#include <sched.h>

#include <atomic>
#include <chrono>
#include <functional>

using namespace trellis;

namespace {

/// Polls for a condition. @return false when it did not come about in time
bool Await(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        cThread::Sleep(1);
    }
    return true;
}

struct Shared {
    std::atomic<bool> Started{false};
    std::atomic<bool> Go{false};
    std::atomic<bool> Unwound{false};
};

void RunUntilGo(void* arg) {
    auto* shared = static_cast<Shared*>(arg);
    struct Guard {
        Shared* Owner;
        cStr Text = "a text that the unwinding gives back to the pool";
        ~Guard() { Owner->Unwound = true; }
    } const guard{shared};
    shared->Started = true;
    while (!shared->Go) {
        pthread_testcancel(); // the sanitizers lose track of threads that are cancelled inside a library call
        sched_yield();
    }
}

TEST(Thread, WaitJoinsAndClearsTheId) {
    Shared shared;
    shared.Go = true;
    unsigned long id = cThread::CreateThread(RunUntilGo, &shared, false, 0);
    EXPECT_NE(id, 0u);
    cThread::WaitAndDeleteThread(&id);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(shared.Unwound);
}

TEST(Thread, DeleteLetsTheThreadRunOn) {
    Shared shared;
    unsigned long id = cThread::CreateThread(RunUntilGo, &shared);
    cThread::DeleteThread(&id);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(Await([&] { return shared.Started.load(); }));
    EXPECT_FALSE(shared.Unwound);
    shared.Go = true;
    EXPECT_TRUE(Await([&] { return shared.Unwound.load(); }));
}

TEST(Thread, CancelUnwindsTheThread) {
    Shared shared;
    unsigned long id = cThread::CreateThread(RunUntilGo, &shared);
    EXPECT_TRUE(Await([&] { return shared.Started.load(); }));
    cThread::CancelAndDeleteThread(&id);
    EXPECT_EQ(id, 0u);
    EXPECT_TRUE(Await([&] { return shared.Unwound.load(); }));
}

TEST(Thread, NoThreadIsLeftAlone) {
    unsigned long id = 0;
    cThread::WaitAndDeleteThread(&id);
    cThread::DeleteThread(&id);
    cThread::CancelAndDeleteThread(&id);
    EXPECT_EQ(id, 0u);
}

struct Counter {
    pthread_mutex_t Mutex;
    int Value = 0;
};

void CountUp(void* arg) {
    auto* counter = static_cast<Counter*>(arg);
    for (int i = 0; i < 20000; i++) {
        const cMutexLock lock(counter->Mutex);
        counter->Value++;
    }
}

TEST(Thread, MutexExcludes) {
    Counter counter;
    cThread::CreateMutex(counter.Mutex);
    unsigned long ids[2];
    for (auto& id : ids) {
        id = cThread::CreateThread(CountUp, &counter);
    }
    CountUp(&counter);
    for (auto& id : ids) {
        cThread::WaitAndDeleteThread(&id);
    }
    cThread::LockMutex(counter.Mutex);
    EXPECT_EQ(counter.Value, 60000);
    EXPECT_NE(pthread_mutex_trylock(&counter.Mutex), 0) << "not recursive";
    cThread::UnlockMutex(counter.Mutex);
    cThread::DeleteMutex(counter.Mutex);
}

} // namespace
