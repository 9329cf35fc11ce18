// Threads that share one job at a time with whoever asks for it, and sleep in between.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace trellis {

/// Belongs to one thread, which the count includes. The others start with the first job.
class cSoftwareThreads {
public:
    static constexpr int MaxCount = 16;

    /// @param count  clamped to 1 to `MaxCount`; 0 for one for each processor
    explicit cSoftwareThreads(int count);
    ~cSoftwareThreads();
    cSoftwareThreads(const cSoftwareThreads&) = delete;
    cSoftwareThreads& operator=(const cSoftwareThreads&) = delete;

    int GetCount() const { return m_Count; }

    /// Calls `job(0)` here, and `job(1)` and so on on the threads that wake up before that has returned: a job must
    /// take its parts from a common heap until none is left. Returns when all calls have.
    void Run(const std::function<void(int worker)>& job);

private:
    void Work(int worker);

    int m_Count;
    std::vector<std::thread> m_Threads;
    std::mutex m_Mutex;
    std::condition_variable m_Start, m_Done;
    const std::function<void(int)>* m_Job = nullptr; // m_Mutex, as all below; null for one that takes no more threads
    unsigned m_Round = 0;
    int m_Busy = 0;
    bool m_IsOver = false;
};

} // namespace trellis
