#include "daemon/Halyard.h"

#include "daemon/CSocket.h"
#include "daemon/Halyard_Log.h"
#include "daemon/Halyard_Request.h"
#include "daemon/Halyard_Service.h"
#include "daemon/Listeners.h"
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "foundation/cMain.h"
#include "foundation/cThread.h"
#include "foundation/cTimer.h"
#include "math/cMath.h"

#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using namespace trellis;
using namespace Halyard_Service;

namespace {

constexpr int ExpiryMs = 120000; // a workstation refreshes oftener than this

// Connections go on while the process exits: none of these is ever destroyed.
constinit cImmortal<cList<ClientRecord>> s_Clients;
constinit cImmortal<cList<in_addr>> s_NetworkInterfaces;
cImmortal<cStr> s_PortFile __attribute__((init_priority(300))) ("port.dat");

const char* const Halyard_RestartServerMsg = "Please restart Marigold halyard in order to accept changes.";

/// Roster size when the last acknowledgement was sent. Not guarded: two connections at once may log a change twice or
/// not at all.
std::atomic<int> PrevClientCount{0};

/// As the target's strtol in base 10: beyond 32 bits it saturates.
int ToPort(const char* text) {
    const long value = std::strtol(text, nullptr, 10);
    return int(std::clamp<long>(value, INT_MIN, INT_MAX));
}

int FindClient(unsigned int id) {
    for (int i = 0; i < Clients.Count(); i++) {
        if (Clients[i].ClientId == id) {
            return i;
        }
    }
    return -1;
}

void CountClients() {
    ClientCount.store(Clients.Count(), std::memory_order_relaxed);
}

void RemoveClient(int index) {
    _msg("Client %s disconnected\n", Clients[index].Name);
    Clients.RemoveAt(index);
    CountClients();
}

/// A peer as it is shown: "10.0.0.7 [host]".
struct Peer {
    sockaddr_in Address = {};
    char Host[127] = ""; // stays empty when there is no name to be had

    cStr Name() const {
        unsigned char b[4];
        std::memcpy(b, &Address.sin_addr, 4);
        return cStr::Format("%d.%d.%d.%d [%s]", b[0], b[1], b[2], b[3], Host);
    }
};

/// Joins or refreshes. Takes the roster's mutex.
void Refresh(unsigned int id, const Peer& peer) {
    const cMutexLock lock(TM);
    const cStr joined = Halyard_AcquireDateTime();
    // INT_MIN from 2^31 ms on: after 24.8 days of uptime an entry lives from one sweep to the next.
    const int now = cMath::TruncateToInt(cTimer::GetTimeMs());
    const int index = FindClient(id);
    if (index >= 0) {
        Clients[index].LastSeen = now;
        return;
    }
    ClientRecord record = {now, id, "", ""};
    std::snprintf(record.Name, sizeof(record.Name), "%s", peer.Name().Text());
    std::snprintf(record.Joined, sizeof(record.Joined), "%s", joined.Text());
    Clients.Add(record);
    CountClients();
}

void Leave(unsigned int id) {
    const cMutexLock lock(TM);
    const int index = FindClient(id);
    if (index >= 0) {
        RemoveClient(index);
    }
}

void LoadPort() {
    cFile file;
    if (cIO::LoadFile(PortFile, &file, false) && file.GetSize() > 0) {
        const cStr text(reinterpret_cast<const char*>(file.GetBytes().Data()), 0, file.GetSize()); // terminated
        port = ToPort(text);
    }
}

} // namespace

namespace Halyard_Service {

constinit cList<ClientRecord>& Clients = s_Clients.Value;
constinit std::atomic<int> ClientCount{0};
pthread_mutex_t TM = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t TAcquire = PTHREAD_MUTEX_INITIALIZER;
constinit cList<in_addr>& NetworkInteraces = s_NetworkInterfaces.Value;
constinit int port = 8888;
constinit cStr& PortFile = s_PortFile.Value;
constinit bool Debug = false;
constinit int GetID_NextID = 0;
pthread_mutex_t GetID_Mutex = PTHREAD_MUTEX_INITIALIZER;

} // namespace Halyard_Service

cStr Halyard_AcquireDateTime() {
    const cMutexLock lock(TAcquire); // the texts are rewritten by the next thread's Acquire
    cTimer::Acquire();
    cStr text(cTimer::GetLocalDate());
    text.Append(' ');
    text.Append(cTimer::GetLocalTime());
    return text;
}

void Halyard_OnInit() {
    cThread::CreateMutex(GetID_Mutex);
    Debug = !cIO::GetEnvironmentVariable("HALYARD_DEBUG").IsEmpty();
    cStr dataPath = cIO::GetEnvironmentVariable("HALYARD_DATAPATH");
    if (!dataPath.IsEmpty()) {
        cIO::CreatePath(dataPath);
        dataPath.AppendPath(PortFile);
        PortFile = cIO::EnsureAbsolutePath(dataPath);
    }
    cThread::CreateMutex(CSocket::m_Mutex);
    cThread::CreateMutex(TAcquire);
    cThread::CreateMutex(TM);
    _msg("%s started", cMain_Title.Text());
    LoadPort();
    _msg("Using port %d", port);
    ListInterfaces();
    StartAcceptors();
}

void Halyard_OnProcess() {
    Halyard_AcquireDateTime();
    const cMutexLock lock(TM);
    for (int i = 0; i < Clients.Count();) {
        if (cTimer::GetTimeMs() - float(Clients[i].LastSeen) > float(ExpiryMs)) {
            RemoveClient(i);
        } else {
            i++;
        }
    }
}

void Halyard_OnFree() {
    CSocket::Free();
}

void Halyard_OnExit() {
    CSocket::Free();
    std::exit(0);
}

void Halyard_HandleClientRequest(int sock, const char* request) {
    Peer peer;
    socklen_t length = sizeof(peer.Address);
    getpeername(sock, reinterpret_cast<sockaddr*>(&peer.Address), &length);

    unsigned int id = 0;
    if (Halyard_ParseStop(request, &id)) {
        Leave(id);
        return;
    }
    if (!Halyard_ParseId(request, &id)) {
        return;
    }
    char service[32];
    // May wait for a name server, so no lock is held.
    getnameinfo(reinterpret_cast<const sockaddr*>(&peer.Address), sizeof(peer.Address), peer.Host, sizeof(peer.Host),
                service, sizeof(service), NI_NUMERICSERV);
    Refresh(id, peer);

    // It is the count that is looked at, not who is new: a refresh behind somebody's expiry logs as a connection, too.
    const int count = ClientCount.load(std::memory_order_relaxed);
    if (count != PrevClientCount.load(std::memory_order_relaxed)) {
        _msg("Client %s connected\n", peer.Name().Text());
        _msg("Accepted\n");
    }
    char reply[16];
    const int replyLength = std::snprintf(reply, sizeof(reply), "%08X\n\n", id);
    send(sock, reply, size_t(replyLength), MSG_NOSIGNAL); // a peer that has gone must not end the daemon
    PrevClientCount.store(count, std::memory_order_relaxed);
}

void Halyard_ListClients(cStr* out) {
    const cMutexLock lock(TM);
    out->Clear();
    // All at once: growth by itself goes by 32 bytes, with a copy of the whole text each time.
    out->Resize(cMain_Title.Length() + 8 + Clients.Count() * int(sizeof(ClientRecord)), false);
    out->Append(cMain_Title);
    out->Append(cLog::EndLn);
    for (const ClientRecord& client : Clients) {
        out->Append(client.Name);
        out->Append('\t');
        out->Append(client.Joined);
        out->Append(cLog::EndLn);
    }
}

int Halyard_GetPort() {
    return port;
}

void Halyard_OnEnterPort(int value) {
    port = value;
    const cStr text = cStr::ToString(&value);
    {
        const cMutexLock lock(Halyard_Log::s_Mutex); // a failure warns through cLog, as those of the log file do
        cIO::SaveFile(PortFile, text.Text(), unsigned(text.Length()), false, true);
    }
    Halyard_Message(cStr::Format("Entered port is %d", value));
    Halyard_Message(Halyard_RestartServerMsg);
}
