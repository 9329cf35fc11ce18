// Thin static wrapper over POSIX threads, so that nothing else names a platform call. Results are not checked.
#pragma once

#include <pthread.h>

namespace trellis {

class cThread {
public:
    static int CpuCount(); ///< Online processors, at least 1; asked once.

    static void Sleep(unsigned int ms); ///< A signal handler that runs on this thread ends the sleep early.

    /// Starts `function(arg)` on a new thread. Exactly one of the three functions below must end its life.
    ///
    /// The last two arguments have a meaning on other platforms only.
    /// @return the thread's id, 0 when it could not be started
    static unsigned long CreateThread(void (*function)(void*), void* arg, bool = false, int = 0);

    /// These three do nothing to an id of 0 and set it to 0.
    static void CancelAndDeleteThread(unsigned long* t); ///< Cancels and detaches.
    static void DeleteThread(unsigned long* t);          ///< Detaches: the thread ends by itself.
    static void WaitAndDeleteThread(unsigned long* t);   ///< Joins.

    static void CreateMutex(pthread_mutex_t& mutex); ///< Default attributes: not recursive.
    static void LockMutex(pthread_mutex_t& mutex);
    static void UnlockMutex(pthread_mutex_t& mutex);
    static void DeleteMutex(pthread_mutex_t& mutex);
};

/// Holds a mutex for a scope.
class cMutexLock {
public:
    explicit cMutexLock(pthread_mutex_t& mutex) : m_Mutex(mutex) { cThread::LockMutex(m_Mutex); }
    ~cMutexLock() { cThread::UnlockMutex(m_Mutex); }
    cMutexLock(const cMutexLock&) = delete;
    cMutexLock& operator=(const cMutexLock&) = delete;

private:
    pthread_mutex_t& m_Mutex;
};

} // namespace trellis
