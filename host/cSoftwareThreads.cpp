#include "host/cSoftwareThreads.h"

#include <algorithm>
#include <exception>

namespace trellis {

cSoftwareThreads::cSoftwareThreads(int count)
    : m_Count(std::clamp(count == 0 ? int(std::thread::hardware_concurrency()) : count, 1, MaxCount)) {}

cSoftwareThreads::~cSoftwareThreads() {
    {
        const std::lock_guard lock(m_Mutex);
        m_IsOver = true;
    }
    m_Start.notify_all();
    for (std::thread& thread : m_Threads) {
        thread.join();
    }
}

void cSoftwareThreads::Run(const std::function<void(int)>& job) {
    while (int(m_Threads.size()) < m_Count - 1) {
        try {
            m_Threads.emplace_back(&cSoftwareThreads::Work, this, int(m_Threads.size()) + 1);
        } catch (const std::exception&) { // there are no more to be had: fewer can do it as well
            m_Count = int(m_Threads.size()) + 1;
        }
    }
    {
        const std::lock_guard lock(m_Mutex);
        m_Job = &job;
        m_Round++;
    }
    m_Start.notify_all();
    job(0);
    std::unique_lock lock(m_Mutex);
    m_Job = nullptr; // a thread that has not woken up by now has nothing left to do, and is not waited for
    m_Done.wait(lock, [this] { return m_Busy == 0; });
}

void cSoftwareThreads::Work(int worker) {
    unsigned seen = 0;
    std::unique_lock lock(m_Mutex);
    for (;;) {
        m_Start.wait(lock, [&] { return m_IsOver || (m_Job && m_Round != seen); });
        if (m_IsOver) {
            return;
        }
        seen = m_Round;
        const auto* job = m_Job;
        m_Busy++;
        lock.unlock();
        (*job)(worker);
        lock.lock();
        if (--m_Busy == 0) {
            m_Done.notify_one();
        }
    }
}

} // namespace trellis
