#include "foundation/cThread.h"

#include "foundation/cPool.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <new>

namespace trellis {

namespace {

struct Start {
    void (*Function)(void*);
    void* Arg;
};

// Thread functions return nothing, pthread_create wants a pointer back: calling through a cast type is undefined.
// No handler and no noexcept here, or the unwinding of a cancelled thread would end the process.
void* Trampoline(void* arg) {
    const Start start = *static_cast<Start*>(arg);
    cPool::Free(static_cast<unsigned char*>(arg), sizeof(Start));
    start.Function(start.Arg);
    return nullptr;
}

std::atomic<int> s_CpuCount{-1};

} // namespace

int cThread::CpuCount() {
    int count = s_CpuCount.load(std::memory_order_relaxed);
    if (count < 0) {
        count = int(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
        s_CpuCount.store(count, std::memory_order_relaxed);
    }
    return count;
}

void cThread::Sleep(unsigned int ms) {
    usleep(ms * 1000); // wraps from 4294968 ms on; nobody sleeps for 71 minutes
}

unsigned long cThread::CreateThread(void (*function)(void*), void* arg, bool, int) {
    unsigned char* start = cPool::Alloc(sizeof(Start));
    new (start) Start{function, arg};
    pthread_t thread = 0;
    if (pthread_create(&thread, nullptr, Trampoline, start) != 0) {
        cPool::Free(start, sizeof(Start));
        return 0;
    }
    return thread;
}

void cThread::CancelAndDeleteThread(unsigned long* t) {
    if (*t != 0) {
        pthread_cancel(*t);
        pthread_detach(*t);
        *t = 0;
    }
}

void cThread::DeleteThread(unsigned long* t) {
    if (*t != 0) {
        pthread_detach(*t);
        *t = 0;
    }
}

void cThread::WaitAndDeleteThread(unsigned long* t) {
    if (*t != 0) {
        pthread_join(*t, nullptr);
        *t = 0;
    }
}

void cThread::CreateMutex(pthread_mutex_t& mutex) {
    pthread_mutex_init(&mutex, nullptr);
}

void cThread::LockMutex(pthread_mutex_t& mutex) {
    pthread_mutex_lock(&mutex);
}

void cThread::UnlockMutex(pthread_mutex_t& mutex) {
    pthread_mutex_unlock(&mutex);
}

void cThread::DeleteMutex(pthread_mutex_t& mutex) {
    pthread_mutex_destroy(&mutex);
}

} // namespace trellis
