// Parts of the service inside this process: what is sharper without a process around it.
#include "DaemonTest.h"
#include "daemon/CSocket.h"
#include "daemon/Halyard.h"
#include "daemon/Halyard_Log.h"
#include "daemon/Halyard_Request.h"
#include "daemon/Halyard_Service.h"
#include "daemon/Listeners.h"
#include "daemon/Pages.h"
#include "foundation/cTimer.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <random>
#include <thread>

using namespace trellis;
using namespace Halyard_Service;

namespace {

const char* s_HostName = nullptr; // what peers are named; null: as the system does, empty: not at all

} // namespace

// Stands before the C library's.
extern "C" int getnameinfo(const sockaddr* address, socklen_t length, char* host, socklen_t hostLength, char* service,
                           socklen_t serviceLength, int flags) {
    static const auto real = reinterpret_cast<decltype(&getnameinfo)>(dlsym(RTLD_NEXT, "getnameinfo"));
    if (!s_HostName) {
        return real(address, length, host, hostLength, service, serviceLength, flags);
    }
    if (!*s_HostName) {
        return EAI_AGAIN;
    }
    return std::strlen(s_HostName) < hostLength ? (std::strcpy(host, s_HostName), 0) : EAI_OVERFLOW;
}

namespace {

std::string String(const cStr& s) {
    return {s.Text(), size_t(s.Length())};
}

class Service : public testing::Test {
protected:
    Service() {
        m_Folder = testing::TempDir() + "halyard_service_" + std::to_string(getpid());
        m_LogFile = m_Folder + "_Log.txt";
        Halyard_Log::s_FilePathName = m_LogFile.c_str();
        ClearLog();
        Clients.Clear();
    }
    ~Service() override {
        unlink(m_LogFile.c_str());
        CSocket::Free();
        Debug = false;
        s_HostName = nullptr;
    }

    void ClearLog() const {
        Halyard_Log::s_Text.Clear();
        unlink(m_LogFile.c_str());
    }
    static std::string Log() {
        cStr log;
        Halyard_GetLog(&log);
        return String(log);
    }
    static void AddClient(unsigned int id, int lastSeen) {
        ClientRecord record = {lastSeen, id, "", "then"};
        std::snprintf(record.Name, sizeof(record.Name), "%u", id);
        Clients.Add(record);
    }

    std::string m_Folder, m_LogFile;
};

TEST(Request, Ids) {
    constexpr struct {
        const char* Text;
        bool Ok;
        unsigned int Id;
    } cases[] = {
        {"G", false, 7},
        {"1G", true, 1},
        {" \t\n\v\f\r1a", true, 0x1A},
        {"0x1A", true, 0x1A},
        {"0x", true, 0}, // the zero alone, as the C library of the workstations' days had it
        {"00x1", true, 0},
        {"FFFFFFFF", true, 0xFFFFFFFF},
        {"100000000", true, 0xFFFFFFFF},
        {"-1", true, 0xFFFFFFFF},
        {"-FFFFFFFF", true, 1},
        {"-100000000", true, 0xFFFFFFFF}, // saturates ahead of the sign
        {"10000000000000000000000001", true, 0xFFFFFFFF},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Text);
        unsigned int id = 7;
        EXPECT_EQ(Halyard_ParseId(c.Text, &id), c.Ok);
        EXPECT_EQ(id, c.Id);
    }
}

TEST(Request, ReadsAsTheCLibraryDoes) {
    const char* const pieces[] = {"stop", "STOP", " ", "\t", "\n", "0x", "1", "F", "g", "-", "+", "\x80", "s", "0"};
    // Where a long is 64 bits wide, scanf wraps beyond 32 bits; our reading is that of the 32-bit library everywhere.
    const unsigned most = sizeof(long) == 4 ? 14 : 8;
    std::mt19937 random(1);
    for (int i = 0; i < 50000; i++) {
        std::string text;
        for (unsigned n = random() % (most + 1); n > 0; n--) {
            text += pieces[random() % std::size(pieces)];
        }
        if (const size_t x = text.find("0x"); x != std::string::npos && !std::isxdigit(text[x + 2])) {
            continue; // C libraries differ on this prefix without digits
        }
        SCOPED_TRACE(testing::PrintToString(text));
        unsigned int expected = 7, id = 7;
        EXPECT_EQ(Halyard_ParseId(text.c_str(), &id), std::sscanf(text.c_str(), "%X", &expected) == 1);
        EXPECT_EQ(id, expected);
        char word[256] = "";
        const bool stop = std::sscanf(text.c_str(), "%255s%X", word, &expected) == 2 && std::strcmp(word, "stop") == 0;
        ASSERT_EQ(Halyard_ParseStop(text.c_str(), &id), stop);
        if (stop) {
            ASSERT_EQ(id, expected);
        }
    }
}

TEST_F(Service, EntriesEndOnce) {
    constexpr struct {
        const char *Text, *Shown, *Stored;
    } cases[] = {
        {"a\r\nb", "ab \n", "a\r\nb\r\n"},
        {"a", "a \n", "a\r\n"},
        {"a\n", "a \n", "a\r\n"},
        {"a\r\n", "a \n", "a\r\n"},
        {"", " \n", "\r\n"},
        {"\n", " \n", "\r\n"},
        {"a\n\n", "a \n", "a\r\n\r\n"},
        {"a\rb\n\r", "ab \n", "ab\r\n"},
        {"100%s%n", "100%s%n \n", "100%s%n\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Stored);
        ClearLog();
        testing::internal::CaptureStdout();
        Halyard_Message(c.Text);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.Shown);
        EXPECT_EQ(Log(), c.Stored);
        EXPECT_EQ(ReadFile(m_LogFile), c.Stored);
    }
    ClearLog();
    _msg("%s|%d\n", "100%s", 5);
    EXPECT_TRUE(IsRecentStamp(Log().substr(0, Log().find(" | "))));
    EXPECT_EQ(Log().substr(Log().find(" | ")), " | 100%s|5\r\n");
}

TEST_F(Service, TailIsCutAbove50000) {
    testing::internal::CaptureStdout();
    const auto add = [](size_t bytes, char c) { Halyard_Message(std::string(bytes - 2, c).c_str()); };
    for (int i = 0; i < 500; i++) {
        add(100, char('a' + i % 26));
    }
    EXPECT_EQ(Log().size(), 50000u);
    add(3, '!');
    EXPECT_EQ(Log().size(), 45003u);
    const std::string file = ReadFile(m_LogFile);
    ASSERT_EQ(file.size(), 50003u);
    EXPECT_EQ(Log(), file.substr(5000)) << "the file keeps all; the cut is at a byte";
    add(10002, 'L');
    EXPECT_EQ(Log().size(), 50005u) << "one cut for an entry, however long";
    add(3, '!');
    EXPECT_EQ(Log().size(), 45008u);
    testing::internal::GetCapturedStdout();
}

TEST_F(Service, RegistryKeepsItsOrderAndClosesOnlyItsOwn) {
    int sockets[3];
    for (int& s : sockets) {
        s = CSocket::Open(AF_INET, SOCK_DGRAM, 0);
    }
    const int first = sockets[0];
    CSocket::Close(&sockets[0]);
    EXPECT_EQ(sockets[0], -1);
    EXPECT_EQ(fcntl(first, F_GETFD), -1);
    ASSERT_EQ(CSocket::m_Sockets.Count(), 2);
    EXPECT_EQ(CSocket::m_Sockets[0], sockets[1]);
    EXPECT_EQ(CSocket::m_Sockets[1], sockets[2]);

    const int own = dup(sockets[1]);
    int stranger = own;
    CSocket::Close(&stranger);
    CSocket::Close(&sockets[0]); // a second time
    EXPECT_EQ(stranger, own);
    EXPECT_NE(fcntl(own, F_GETFD), -1) << "still open";
    EXPECT_EQ(CSocket::Open(-1, -1, -1), -1);
    EXPECT_EQ(CSocket::m_Sockets.Count(), 2);

    CSocket::Free();
    EXPECT_EQ(CSocket::m_Sockets.Count(), 0);
    EXPECT_EQ(fcntl(sockets[1], F_GETFD), -1);
    EXPECT_EQ(fcntl(sockets[2], F_GETFD), -1);
    close(own);
}

TEST_F(Service, TracesAreNumberedOnlyWhenTheyAreOn) {
    GetID_NextID = 0;
    int quiet = CSocket::Open(AF_INET, SOCK_DGRAM, 0);
    EXPECT_EQ(CSocket::Accept(quiet, nullptr, nullptr), -1); // as accept allows them
    CSocket::Close(&quiet);
    EXPECT_EQ(GetID_NextID, 0);
    EXPECT_EQ(Log(), "");

    Debug = true;
    testing::internal::CaptureStdout();
    int sock = CSocket::Open(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    const std::string s = std::to_string(sock);
    sockaddr_in peer = {};
    unsigned int length = sizeof(peer);
    EXPECT_EQ(CSocket::Accept(sock, reinterpret_cast<sockaddr*>(&peer), &length), -1); // it does not listen
    int stranger = 9999;
    CSocket::Close(&stranger);
    CSocket::Close(&sock);
    testing::internal::GetCapturedStdout();
    char address[16];
    std::snprintf(address, sizeof(address), "%X", unsigned(reinterpret_cast<uintptr_t>(&peer)));
    EXPECT_EQ(Log(), "0.1 | CSocket::Open(2, 1, 6)\r\n0.2 | " + s + " = socket(2, 1, 6)\r\n" +
                         "0.3 | m_Sockets.Count() = 1\r\n1.1 | CSocket::Accept(" + s + ", " + address +
                         ", 16)\r\n1.2 | -1 = accept(" + s + ", " + address + ", 16)\r\n" +
                         "2.1 | CSocket::Close(9999)\r\n3.1 | CSocket::Close(" + s +
                         ")\r\n3.2 | m_Sockets.Count() = 0\r\n3.3 | closesocket(" + s + ")\r\n");
}

TEST_F(Service, ExpiryIsStrictlyAfterTwoMinutes) {
    cTimer::Reset();       // the next step of the clock gives 0 ms
    AddClient(2, -120000); // first, as each entry of the log moves the clock on
    AddClient(1, -120001);
    AddClient(3, INT_MIN);
    AddClient(4, -200000); // its index is that of the one before it by then
    AddClient(5, 0);
    testing::internal::CaptureStdout();
    Halyard_OnProcess();
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(Clients.Count(), 2);
    EXPECT_EQ(Clients[0].ClientId, 2u);
    EXPECT_EQ(Clients[1].ClientId, 5u);
    std::string gone;
    for (const std::string& line : SplitLines(Log())) {
        gone += line.substr(line.find(" | "));
    }
    EXPECT_EQ(gone, " | Client 1 disconnected | Client 3 disconnected | Client 4 disconnected");
}

/// Hands one request over a real connection to the thread function.
std::string Serve(const char* request) {
    sockaddr_in a = {};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(a);
    int listener = CSocket::Open(AF_INET, SOCK_STREAM, 0);
    auto* generic = reinterpret_cast<sockaddr*>(&a);
    EXPECT_EQ(bind(listener, generic, length), 0);
    EXPECT_EQ(listen(listener, 1), 0);
    EXPECT_EQ(getsockname(listener, generic, &length), 0);
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(connect(client, generic, length), 0);
    int server = CSocket::Accept(listener, generic, &length);
    send(client, request, std::strlen(request), MSG_NOSIGNAL);
    testing::internal::CaptureStdout();
    HandleSocket(&server);
    testing::internal::GetCapturedStdout();
    char reply[65536] = "";
    const ssize_t n = recv(client, reply, sizeof(reply), MSG_WAITALL);
    close(client);
    CSocket::Close(&listener);
    EXPECT_EQ(CSocket::m_Sockets.Count(), 0);
    return {reply, size_t(std::max<ssize_t>(n, 0))};
}

TEST_F(Service, NamesAreCutToTheirField) {
    const std::string longest(126, 'h');
    const struct {
        const char* Host;
        std::string Name;
    } cases[] = {
        {"a%n%s", "127.0.0.1 [a%n%s]"},
        {"", "127.0.0.1 []"}, // no name to be had
        {longest.c_str(), ("127.0.0.1 [" + longest).substr(0, 127)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Host);
        Clients.Clear();
        s_HostName = c.Host;
        EXPECT_EQ(Serve("1A"), "0000001A\n\n");
        ASSERT_EQ(Clients.Count(), 1);
        EXPECT_EQ(Clients[0].Name, c.Name);
        EXPECT_TRUE(IsRecentStamp(Clients[0].Joined));
        EXPECT_NE(Serve("GET / HTTP/1.1").find("<b>#1 " + c.Name + ", joined " + Clients[0].Joined + "</b><br/>\r\n"),
                  std::string::npos);
    }
}

TEST_F(Service, RefreshKeepsTheFirstName) {
    s_HostName = "first";
    cTimer::Reset();
    Serve("1A");
    Clients[0].LastSeen = -50000;
    std::strcpy(Clients[0].Joined, "then");
    s_HostName = "second";
    Serve("1a");
    ASSERT_EQ(Clients.Count(), 1);
    EXPECT_GE(Clients[0].LastSeen, 0);
    EXPECT_STREQ(Clients[0].Name, "127.0.0.1 [first]");
    EXPECT_STREQ(Clients[0].Joined, "then");
}

TEST_F(Service, PagesByteForByte) {
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=UTF-8\r\n\r\n"
                             "<!DOCTYPE html>\r\n<html lang=\"en\">\r\n<head>\r\n<meta charset=\"utf-8\" />\r\n<title>";
    const std::string middle = "</title>\r\n</head>\r\n<body>\r\n";
    const std::string end = "</body>\r\n</html>\r\n";
    const std::string by = "<br/><small>Generated by Marigold: Halyard 1.8 Linux Daemon (32-bit)</small><br/>\r\n";
    EXPECT_EQ(Serve("GET / HTTP/1.1"),
              head + "Marigold Halyard" + middle + "There are no connected clients.<br/>\r\n" + by + end);
    AddClient(11, 0);
    AddClient(22, 0);
    EXPECT_EQ(Serve("GET / HTTP/1.1"), head + "Marigold Halyard" + middle +
                                           "Clients list:<br/><br/>\r\n<b>#1 11, joined then</b><br/>\r\n"
                                           "<b>#2 22, joined then</b><br/>\r\n" +
                                           by + end);
    EXPECT_EQ(Serve("GET /log"), head + "Marigold Halyard Log" + middle + "<ul>\r\n</ul>\r\n" + end);
    Halyard_Message("\n<b>one</b>\n\n\ntwo"); // nothing is escaped, and blank lines disappear
    EXPECT_EQ(Serve("GET /log"), head + "Marigold Halyard Log" + middle +
                                     "<ul>\r\n\t<li><b>one</b></li>\r\n\t<li>two</li>\r\n</ul>\r\n" + end);
    cStr listing;
    Halyard_ListClients(&listing);
    EXPECT_EQ(String(listing), "Marigold: Halyard 1.8 Linux Daemon (32-bit)\r\n11\tthen\r\n22\tthen\r\n");
}

TEST_F(Service, LargePagesAreNotCut) {
    for (unsigned i = 0; i < 400; i++) {
        AddClient(i, 0);
    }
    cStr page;
    GenHtmlStatus(&page);
    EXPECT_GT(page.Length(), 9998); // where formatting would cut
    EXPECT_NE(String(page).find("<b>#400 399, joined then</b>"), std::string::npos);
    EXPECT_TRUE(String(page).ends_with("</body>\r\n</html>\r\n"));
}

TEST_F(Service, EnteredPortIsStoredForTheNextStart) {
    const std::string path = m_Folder + "_port.dat";
    const cStr formerFile = PortFile;
    const int formerPort = port;
    PortFile = path.c_str();
    for (const int value : {123456, -7}) { // the shorter text replaces the longer one
        ClearLog();
        Halyard_OnEnterPort(value);
        const std::string text = std::to_string(value);
        EXPECT_EQ(Halyard_GetPort(), value);
        EXPECT_EQ(ReadFile(path), text);
        EXPECT_EQ(Log(),
                  "Entered port is " + text + "\r\nPlease restart Marigold halyard in order to accept changes.\r\n");
    }
    unlink(path.c_str());
    PortFile = formerFile;
    port = formerPort;
}

std::string MessageOf(const std::string& log) {
    return log.substr(log.find(" | ") + 3);
}

TEST_F(Service, NetworkIsReadyWithAnAddressBeyondLoopback) {
    std::string addresses;
    bool beyond = false;
    for (const std::string& address : InterfaceAddresses()) {
        addresses += " " + address;
        beyond |= !address.starts_with("127");
    }
    EXPECT_EQ(Halyard_NetworkIsReady(), beyond);
    EXPECT_EQ(MessageOf(Log()), (beyond ? "Network is ready" : "Waiting for network") + addresses + "\r\n");
    EXPECT_EQ(CSocket::m_Sockets.Count(), 0);
}

TEST_F(Service, InterfacesOfANetworkOfOnesOwn) {
    bool permitted = false;
    std::thread([&] { // only this thread moves
        if (unshare(CLONE_NEWNET) != 0) {
            return;
        }
        permitted = true;
        EXPECT_FALSE(Halyard_NetworkIsReady());
        EXPECT_EQ(MessageOf(Log()), "Waiting for network\r\n");
        const int sock = socket(AF_INET, SOCK_DGRAM, 0);
        ifreq request = {};
        std::strcpy(request.ifr_name, "lo");
        request.ifr_flags = IFF_UP;
        ASSERT_EQ(ioctl(sock, SIOCSIFFLAGS, &request), 0);
        ClearLog();
        EXPECT_FALSE(Halyard_NetworkIsReady());
        EXPECT_EQ(MessageOf(Log()), "Waiting for network 127.0.0.1\r\n");
        for (int i = 1; i <= 40; i++) {
            std::snprintf(request.ifr_name, sizeof(request.ifr_name), "lo:%d", i);
            sockaddr_in a = {};
            a.sin_family = AF_INET;
            a.sin_addr.s_addr = htonl(INADDR_LOOPBACK + unsigned(i) * 256);
            std::memcpy(&request.ifr_addr, &a, sizeof(a));
            ASSERT_EQ(ioctl(sock, SIOCSIFADDR, &request), 0);
        }
        close(sock);
        FillNetworkInterfaces(); // a longer table is cut to what the buffer holds
        EXPECT_EQ(NetworkInteraces.Count(), int(1024 / sizeof(ifreq)));
    })
        .join();
    if (!permitted) {
        GTEST_SKIP() << "no networks of one's own here";
    }
}

} // namespace
