#include "daemon/Listeners.h"

#include "daemon/CSocket.h"
#include "daemon/Halyard.h"
#include "daemon/Halyard_Log.h"
#include "daemon/Halyard_Service.h"
#include "daemon/Pages.h"
#include "foundation/cPool.h"
#include "foundation/cThread.h"

#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <atomic>
#include <cstring>
#include <new>

using namespace trellis;
using namespace Halyard_Service;

namespace {

constexpr int Backlog = 128;
constexpr unsigned int PauseMs = 10; // no address can make more than about 100 threads a second

cStr ToText(const in_addr& address) {
    unsigned char b[4];
    std::memcpy(b, &address, 4);
    return cStr::Format("%d.%d.%d.%d", b[0], b[1], b[2], b[3]);
}

/// Gives the connection's thread a descriptor of its own and releases the acceptor's copy.
void ServeConnection(void* own) {
    int sock = *static_cast<int*>(own);
    cPool::Free(static_cast<unsigned char*>(own), sizeof(int));
    try {
        HandleSocket(&sock);
    } catch (const std::bad_alloc&) {
        CSocket::Close(&sock); // too many peers at once: this one goes without a reply, the daemon stays
    }
}

void StartConnection(int sock) {
    unsigned char* own = cPool::Alloc(sizeof(int));
    new (own) int(sock);
    unsigned long thread = cThread::CreateThread(ServeConnection, own);
    if (thread == 0) { // out of threads: this peer gets no answer, but nothing is lost with it
        cPool::Free(own, sizeof(int));
        CSocket::Close(&sock);
        return;
    }
    cThread::DeleteThread(&thread);
}

void FailToBind(int sock) {
    static std::atomic<int> first{1};
    _msg("Failed to open socket\n");
    CSocket::Close(&sock);
    if (first.exchange(0) == 1) {
        _msg("Halyard critical error.");
        _msg("Unable to create socket.");
        _msg("Probably you are running second copy of Halyard.");
        Halyard_OnExit();
    }
}

/// @return a listening socket, or -1 after the reports
int Listen(const in_addr* address) {
    sockaddr_in local = {};
    local.sin_family = AF_INET;
    local.sin_port = htons(uint16_t(port));
    if (address) {
        local.sin_addr = *address;
    }
    int sock = CSocket::Open(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    const int on = 1;
    setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (bind(sock, reinterpret_cast<const sockaddr*>(&local), sizeof(local)) != 0) {
        FailToBind(sock);
        return -1;
    }
    if (listen(sock, Backlog) != 0) {
        _msg("Failed to listen socket\n");
        CSocket::Close(&sock);
        return -1;
    }
    return sock;
}

} // namespace

void FillNetworkInterfaces() {
    NetworkInteraces.Clear();
    int sock = CSocket::Open(AF_INET, SOCK_DGRAM, 0);
    if (sock == -1) {
        return;
    }
    ifreq records[1024 / sizeof(ifreq)]; // more interfaces than fit are cut off by the system
    ifconf table = {};
    table.ifc_len = sizeof(records);
    table.ifc_req = records;
    if (ioctl(sock, SIOCGIFCONF, &table) < 0) {
        return; // the socket stays registered, and the exit closes it
    }
    const int count = table.ifc_len / int(sizeof(ifreq));
    for (int i = 0; i < count; i++) {
        sockaddr_in address;
        std::memcpy(&address, &records[i].ifr_addr, sizeof(address));
        NetworkInteraces.Add(address.sin_addr);
    }
    CSocket::Close(&sock);
}

void ListInterfaces() {
    FillNetworkInterfaces();
    _msg("Found %d interfaces", NetworkInteraces.Count());
    for (const in_addr& address : NetworkInteraces) {
        _msg("Interface found: %s", ToText(address).Text());
    }
}

bool Halyard_NetworkIsReady() {
    FillNetworkInterfaces();
    bool ready = false;
    cStr addresses;
    for (const in_addr& address : NetworkInteraces) {
        const cStr text = ToText(address);
        ready = ready || cStr::Compare(text, "127", 3) != 0;
        addresses.Append(' ');
        addresses.Append(text);
    }
    _msg("%s%s", ready ? "Network is ready" : "Waiting for network", addresses.Text());
    return ready;
}

void StartAcceptors() {
    const auto start = [](void* address) {
        unsigned long thread = cThread::CreateThread(WaitAcceptConnThread, address);
        cThread::DeleteThread(&thread); // nobody waits for one that cannot bind
    };
    const int count = NetworkInteraces.Count();
    for (int i = 0; i < count; i++) {
        start(&NetworkInteraces[i]);
    }
    if (count == 0) {
        start(nullptr);
    }
}

void WaitAcceptConnThread(void* address) {
    const int sock = Listen(static_cast<const in_addr*>(address));
    if (sock == -1) {
        return;
    }
    for (;;) {
        sockaddr_in peer = {};
        unsigned int length = sizeof(peer);
        const int connection = CSocket::Accept(sock, reinterpret_cast<sockaddr*>(&peer), &length);
        if (connection == -1) {
            continue; // at once: out of descriptors this spins, and takes the next peer as soon as one is free
        }
        try {
            StartConnection(connection);
        } catch (const std::bad_alloc&) {
            int refused = connection;
            CSocket::Close(&refused);
        }
        cThread::Sleep(PauseMs);
    }
}
