// The least that answers a workstation: a thread for each connection, one recv, one reply, in plain C. A stick to
// measure the daemon with.
//
//     halyard_plain_server PORT PAUSE_MS ADDRESS...        the pause after each accept; the daemon's is 10
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

namespace {

struct Client {
    unsigned int Id;
    time_t LastSeen;
    char Name[128];
};

constexpr int MaxClients = 4096;

Client s_Clients[MaxClients];
int s_Count = 0;
pthread_mutex_t s_Mutex = PTHREAD_MUTEX_INITIALIZER;
int s_Port = 0;
unsigned int s_PauseMs = 0;

void Note(unsigned int id, const sockaddr_in* peer, const char* host) {
    pthread_mutex_lock(&s_Mutex);
    int i = 0;
    while (i < s_Count && s_Clients[i].Id != id) {
        i++;
    }
    if (i < MaxClients) {
        if (i == s_Count) {
            s_Count++;
            s_Clients[i].Id = id;
            unsigned char b[4];
            memcpy(b, &peer->sin_addr, 4);
            snprintf(s_Clients[i].Name, sizeof(s_Clients[i].Name), "%d.%d.%d.%d [%.100s]", b[0], b[1], b[2], b[3],
                     host);
        }
        s_Clients[i].LastSeen = time(nullptr);
    }
    pthread_mutex_unlock(&s_Mutex);
}

void* Serve(void* arg) {
    const int sock = int(intptr_t(arg));
    char request[4096] = {};
    sockaddr_in peer = {};
    socklen_t length = sizeof(peer);
    unsigned int id = 0;
    if (recv(sock, request, sizeof(request) - 1, 0) > 0 && sscanf(request, "%X", &id) == 1 &&
        getpeername(sock, reinterpret_cast<sockaddr*>(&peer), &length) == 0) {
        char host[127] = "", service[32] = "";
        getnameinfo(reinterpret_cast<const sockaddr*>(&peer), sizeof(peer), host, sizeof(host), service,
                    sizeof(service), NI_NUMERICSERV);
        Note(id, &peer, host);
        char reply[16];
        const int n = snprintf(reply, sizeof(reply), "%08X\n\n", id);
        send(sock, reply, size_t(n), MSG_NOSIGNAL);
    }
    close(sock);
    return nullptr;
}

void* Accept(void* address) {
    sockaddr_in local = {};
    local.sin_family = AF_INET;
    local.sin_port = htons(uint16_t(s_Port));
    inet_pton(AF_INET, static_cast<const char*>(address), &local.sin_addr);
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    if (bind(listener, reinterpret_cast<const sockaddr*>(&local), sizeof(local)) != 0 || listen(listener, 128) != 0) {
        perror("bind");
        exit(1);
    }
    for (;;) {
        const int sock = accept(listener, nullptr, nullptr);
        pthread_t thread;
        if (sock == -1) {
            continue;
        }
        if (pthread_create(&thread, nullptr, Serve, reinterpret_cast<void*>(intptr_t(sock))) == 0) {
            pthread_detach(thread);
        } else {
            close(sock);
        }
        if (s_PauseMs > 0) {
            usleep(s_PauseMs * 1000);
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        return 2;
    }
    s_Port = atoi(argv[1]);
    s_PauseMs = unsigned(atoi(argv[2]));
    for (int i = 3; i < argc; i++) {
        pthread_t thread;
        pthread_create(&thread, nullptr, Accept, argv[i]);
    }
    for (;;) {
        pause();
    }
}
