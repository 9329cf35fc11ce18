// What the rooms of the service share: the roster, the settings and the locks.
//
// Order of locking: roster (TM), then timer (TAcquire), then log; sockets, then log. GetID_Mutex is a leaf.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

#include <netinet/in.h>
#include <pthread.h>

#include <atomic>

namespace Halyard_Service {

/// One workstation of the roster.
struct ClientRecord {
    int LastSeen;          ///< ms of the service's clock at the join or the latest refresh.
    unsigned int ClientId; ///< Sent by the workstation; the roster's key.
    char Name[128];        ///< "10.0.0.7 [host]", cut to the field.
    char Joined[128];      ///< Local date and time of the join.
};

extern trellis::cList<ClientRecord>& Clients; ///< In order of joining. Guarded by `TM`.
extern std::atomic<int> ClientCount;          ///< Its count, for looks without the lock.
extern pthread_mutex_t TM;
extern pthread_mutex_t TAcquire; ///< Around every `cTimer::Acquire` of the daemon.

extern trellis::cList<in_addr>& NetworkInteraces; ///< IPv4 addresses of this machine; the misspelling is its name.

extern int port; ///< The listening port.
extern trellis::cStr& PortFile;
extern bool Debug;       ///< Traces of the socket calls go to the log.
extern int GetID_NextID; ///< Number of the next traced operation. Guarded by `GetID_Mutex`.
extern pthread_mutex_t GetID_Mutex;

} // namespace Halyard_Service

/// Advances the clock under `TAcquire`. @return local date, one blank, local time
trellis::cStr Halyard_AcquireDateTime();
