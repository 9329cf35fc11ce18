// Registry over the BSD socket calls: every descriptor opened or accepted is remembered, so that the exit can close it.
#pragma once

#include "foundation/cList.h"

#include <pthread.h>
#include <sys/socket.h>

/// Safe on all threads. No network call runs under the lock.
class CSocket {
public:
    static void Init(); ///< Creates the mutex, for hosts that do not go through `Halyard_OnInit`.

    /// `socket` and registration. @return the descriptor, or -1
    static int Open(int domain, int type, int protocol);

    /// `accept` and registration. @return the descriptor, or -1
    static int Accept(int sockfd, sockaddr* addr, unsigned int* addrlen);

    /// Unregisters and closes `*sock` and sets it to -1. One that is not registered stays open and keeps its value.
    static void Close(int* sock);

    static void Free(); ///< Closes everything registered, in the order of opening.

    static trellis::cList<int>& m_Sockets; ///< Open descriptors in the order of opening. Guarded by `m_Mutex`.
    static pthread_mutex_t m_Mutex;
};
