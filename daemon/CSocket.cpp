#include "daemon/CSocket.h"

#include "daemon/Halyard_Log.h"
#include "daemon/Halyard_Service.h"
#include "foundation/cImmortal.h"
#include "foundation/cThread.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <new>
#include <utility>

using namespace trellis;
using namespace Halyard_Service;

namespace {

constinit cImmortal<cList<int>> s_Sockets; // connections go on while the process exits

/// Number and reports of one traced operation. With tracing off it takes no number and formats nothing.
class Trace {
public:
    Trace() : m_On(Debug) {
        if (m_On) {
            const cMutexLock lock(GetID_Mutex);
            m_Id = GetID_NextID++;
        }
    }

    /// @param format  begins with "." and the step; the number of the operation goes in front of it
    void Step(const char* format, ...) __attribute__((format(printf, 2, 3))) {
        if (!m_On) {
            return;
        }
        va_list args;
        va_start(args, format);
        Halyard_Message(cStr::Format("%d", m_Id) + cStr::Formatv(format, args));
        va_end(args);
    }

private:
    const bool m_On;
    int m_Id = 0;
};

/// Registers what `socket` or `accept` gave; -1 passes through.
int Register(int sock, Trace* trace) {
    const cMutexLock lock(CSocket::m_Mutex);
    if (sock != -1) {
        try {
            CSocket::m_Sockets.Add(sock);
        } catch (const std::bad_alloc&) {
            close(sock); // nobody would remember it
            return -1;
        }
        trace->Step(".3 | m_Sockets.Count() = %d", CSocket::m_Sockets.Count());
    }
    return sock;
}

} // namespace

constinit cList<int>& CSocket::m_Sockets = s_Sockets.Value;
pthread_mutex_t CSocket::m_Mutex = PTHREAD_MUTEX_INITIALIZER;

void CSocket::Init() {
    cThread::CreateMutex(m_Mutex);
}

int CSocket::Open(int domain, int type, int protocol) {
    Trace trace;
    trace.Step(".1 | CSocket::Open(%d, %d, %d)", domain, type, protocol);
    const int sock = socket(domain, type, protocol);
    trace.Step(".2 | %d = socket(%d, %d, %d)", sock, domain, type, protocol);
    return Register(sock, &trace);
}

int CSocket::Accept(int sockfd, sockaddr* addr, unsigned int* addrlen) {
    Trace trace;
    const auto shownAddr = unsigned(reinterpret_cast<uintptr_t>(addr));
    const auto shownLength = [addrlen] { return addrlen ? int(*addrlen) : 0; };
    trace.Step(".1 | CSocket::Accept(%d, %X, %d)", sockfd, shownAddr, shownLength());
    const int sock = accept(sockfd, addr, addrlen);
    trace.Step(".2 | %d = accept(%d, %X, %d)", sock, sockfd, shownAddr, shownLength());
    return Register(sock, &trace);
}

void CSocket::Close(int* sock) {
    Trace trace;
    trace.Step(".1 | CSocket::Close(%d)", *sock);
    {
        const cMutexLock lock(m_Mutex);
        const int index = m_Sockets.IndexOf(*sock);
        if (index < 0) {
            return;
        }
        m_Sockets.RemoveAt(index);
        trace.Step(".2 | m_Sockets.Count() = %d", m_Sockets.Count());
    }
    close(*sock);
    trace.Step(".3 | closesocket(%d)", *sock);
    *sock = -1;
}

void CSocket::Free() {
    cList<int> sockets;
    {
        const cMutexLock lock(m_Mutex);
        sockets = std::move(m_Sockets);
    }
    for (const int sock : sockets) {
        close(sock);
    }
}
