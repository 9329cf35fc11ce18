// The service as a foreground process, over real sockets.
#include "DaemonTest.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iterator>

namespace {

using Lines = std::vector<std::string>;

constexpr char Title[] = "Marigold: Halyard 1.8 Linux Daemon (32-bit)";
constexpr char StatusRequest[] = "GET / HTTP/1.1\r\n\r\n";

std::string Padded(std::string text, size_t length, const std::string& tail, char fill = ' ') {
    text.resize(length - tail.size(), fill);
    return text + tail;
}

/// How this machine names its loopback address.
std::string LoopbackName() {
    sockaddr_in a = {};
    a.sin_family = AF_INET;
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    char host[127] = "";
    getnameinfo(reinterpret_cast<const sockaddr*>(&a), sizeof(a), host, sizeof(host), nullptr, 0, 0);
    return "127.0.0.1 [" + std::string(host) + "]";
}

class Server : public DaemonTest {
protected:
    void SetUp() override {
        DaemonTest::SetUp();
        m_Pid = StartForeground();
        ASSERT_GT(m_Pid, 0);
    }

    size_t CountDescriptors() const {
        const std::filesystem::directory_iterator all("/proc/" + std::to_string(m_Pid) + "/fd");
        return size_t(std::distance(begin(all), end(all)));
    }
    long StatusOf(const std::string& key) const {
        const std::string text = ReadFile("/proc/" + std::to_string(m_Pid) + "/status");
        return std::stol(text.substr(text.find("\n" + key + ":") + key.size() + 2));
    }

    pid_t m_Pid = -1;
};

TEST_F(Server, StartIsLoggedWordForWord) {
    Lines expected = {std::string(Title) + " started", "Using port " + std::to_string(m_Port),
                      "Found " + std::to_string(m_Addresses.size()) + " interfaces"};
    for (const std::string& address : m_Addresses) {
        expected.push_back("Interface found: " + address);
    }
    EXPECT_EQ(Messages(), expected);
    std::string shown; // one line each, with a blank ahead of the line feed
    for (const std::string& line : SplitLines(ReadFile(m_LogFile))) {
        shown += line + " \n";
    }
    EXPECT_EQ(Output(m_Pid), shown);

    EXPECT_EQ(Ask("hello"), ""); // leaves a connection in TIME_WAIT, which must not keep the next start from the port
    kill(m_Pid, SIGTERM);
    EXPECT_EQ(Finish(m_Pid), 1000 + SIGTERM); // no handler, no clean-up
    m_Pid = StartForeground();
    EXPECT_EQ(Messages(), expected) << "every start begins an empty log";
}

TEST_F(Server, RoutesByTheFirstBytes) {
    enum Kind { None, Status, Log };
    const struct {
        const char* Name;
        std::string Request;
        Kind Expected;
    } cases[] = {
        {"root", "GET / HTTP/1.1\r\nHost: h\r\n\r\n", Status},
        {"up to the byte that counts", "GET / H", Status},
        {"one byte short of it", "GET / ", None},
        {"only the seventh byte counts", "GETxxxH", Status},
        {"log", "GET /log HTTP/1.1\r\n\r\n", Log},
        {"log in a header", "GET /favicon.ico HTTP/1.1\r\nReferer: http://h/log\r\n\r\n", Log},
        {"log behind a zero byte", std::string("GET / H\0/log", 12), Status},
        {"log in the last bytes that are read", Padded("GET / H", 4095, "/log"), Log},
        {"log cut by the end of the buffer", Padded("GET / H", 4096, "/log"), Status},
        {"almost log", "GET /lo HTTP/1.1\r\n\r\n", None},
        {"another path", "GET /index.html HTTP/1.1\r\n\r\n", None},
        {"method in small letters", "get / HTTP/1.1\r\n\r\n", None},
    };
    const std::string head = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=UTF-8\r\n\r\n<!DOCTYPE html>\r\n";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        const std::string reply = Ask(c.Request);
        EXPECT_EQ(reply.starts_with(head), c.Expected != None);
        EXPECT_EQ(reply.ends_with("</body>\r\n</html>\r\n"), c.Expected != None);
        EXPECT_EQ(reply.find("<title>Marigold Halyard</title>") != std::string::npos, c.Expected == Status);
        EXPECT_EQ(reply.find("<title>Marigold Halyard Log</title>") != std::string::npos, c.Expected == Log);
        EXPECT_EQ(reply.empty(), c.Expected == None);
    }
    std::string list = "<ul>\r\n"; // the log page tells what the file holds
    for (const std::string& line : SplitLines(ReadFile(m_LogFile))) {
        list += "\t<li>" + line + "</li>\r\n";
    }
    EXPECT_NE(Ask("GET /log HTTP/1.1").find("<body>\r\n" + list + "</ul>\r\n</body>"), std::string::npos);
}

TEST_F(Server, JoinRefreshAndLeave) {
    constexpr int Connected = 1, Disconnected = 2; // what is logged
    const struct {
        const char* Name;
        std::string Request, Reply;
        int RosterAfter, Logged;
    } steps[] = {
        {"nothing", "", "", 0, 0},
        {"join", "1A", "0000001A\n\n", 1, Connected},
        {"refresh", "1A", "0000001A\n\n", 1, 0},
        {"digits ahead of letters", "12ghost", "00000012\n\n", 2, Connected},
        {"unknown id", "stop 1B", "", 2, 0},
        {"leave", "stop 1A", "", 1, Disconnected},
        {"leave twice", "stop 1A", "", 1, 0},
        {"refresh behind departures logs as a connection", "12", "00000012\n\n", 1, Connected},
        {"leave with other white space", " \n stop\t\v0x12\r\n", "", 0, Disconnected},
        {"method that is a number; its join makes up for the departure", "DELETE / HTTP/1.1\r\n\r\n", "000000DE\n\n", 1,
         0},
        {"high bytes", "\xFF\xFE\x80 1C", "", 1, 0},
        {"zero byte first", std::string("\0 1C", 4), "", 1, 0},
        {"zero byte inside", std::string("DE\0 1C", 6), "000000DE\n\n", 1, 0},
        {"word of a whole buffer", std::string(4095, 'x'), "", 1, 0},
        {"last digit that is read", Padded("", 4095, "1D", '0'), "0000001D\n\n", 2, Connected},
        {"first digit that is not", Padded("", 4096, "1D", '0'), "00000001\n\n", 3, Connected},
        {"100000 bytes", Padded("stop 1 ", 100000, "x"), "", 2, Disconnected},
    };
    size_t before = Messages().size();
    const std::string peer = "Client " + LoopbackName();
    for (const auto& s : steps) {
        SCOPED_TRACE(s.Name);
        std::string reply = Ask(s.Request);
        if (s.Request.size() > 65536) { // it ends while this side still sends
            reply = reply.substr(0, reply.find("<reset>"));
        }
        EXPECT_EQ(reply, s.Reply);
        EXPECT_EQ(RosterSize(), s.RosterAfter);
        Lines expected;
        if (s.Logged == Connected) {
            expected = {peer + " connected", "Accepted"};
        } else if (s.Logged == Disconnected) {
            expected = {peer + " disconnected"};
        }
        const Lines log = Messages();
        EXPECT_EQ(Lines(log.begin() + long(before), log.end()), expected);
        before = log.size();
    }
}

TEST_F(Server, RequestInTwoPiecesIsJudgedByItsFirst) {
    const int sock = Connect();
    send(sock, "12", 2, MSG_NOSIGNAL);
    char reply[32] = "";
    ASSERT_EQ(recv(sock, reply, sizeof(reply), MSG_WAITALL), 10); // comes, and ends, while our side stays open
    EXPECT_STREQ(reply, "00000012\n\n");
    send(sock, "34", 2, MSG_NOSIGNAL);
    close(sock);
    EXPECT_EQ(Ask("34"), "00000034\n\n");
    EXPECT_EQ(RosterSize(), 2);
}

TEST_F(Server, PeersThatHoldOrResetDoNotHarm) {
    std::vector<int> held;
    for (int i = 0; i < 40; i++) {
        held.push_back(Connect());
    }
    for (const char* request : {"", "1A", "GET /log HTTP/1.1\r\n\r\n", "stop 1A", "hello"}) {
        for (int i = 0; i < 8; i++) {
            Reset(request, i % 2 == 0); // only then is writing to it a broken pipe
        }
        EXPECT_EQ(Ask("7"), "00000007\n\n") << "behind resets of \"" << request << '"';
    }
    EXPECT_TRUE(WaitFor([&] { return StatusOf("Threads") >= 40; })) << "each held connection has its thread";
    for (const int sock : held) {
        close(sock);
    }
    EXPECT_TRUE(WaitFor([&] { return StatusOf("Threads") < 40; }));
    EXPECT_EQ(Ask("7"), "00000007\n\n");
}

TEST_F(Server, TwoHundredClientsAtOnce) {
    Lines requests, expected;
    for (int i = 0; i < 200; i++) {
        char id[16];
        std::snprintf(id, sizeof(id), "%08X", 0x10000u + unsigned(i));
        requests.emplace_back(id);
        expected.push_back(std::string(id) + "\n\n");
    }
    EXPECT_EQ(AskAll(requests, 200), expected);
    EXPECT_EQ(RosterSize(), 200);
    for (std::string& r : requests) {
        r = "stop " + r;
    }
    AskAll(requests, 200);
    EXPECT_EQ(RosterSize(), 0);
}

TEST_F(Server, AnAcceptorTakesAboutAHundredASecond) { // on purpose: no address can make more threads than that
    constexpr int count = 30;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; i++) {
        EXPECT_EQ(Ask("1A"), "0000001A\n\n");
    }
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds((count - 1) * 10));
}

TEST_F(Server, NothingGrows) {
    const char* const kinds[] = {"1A", StatusRequest, "hello", "GET /log HTTP/1.1\r\n\r\n", "stop 99", "GET /x"};
    Lines requests;
    for (int i = 0; i < 1200; i++) {
        requests.emplace_back(kinds[size_t(i) % std::size(kinds)]);
    }
    AskAll(Lines(requests.begin(), requests.begin() + 300), 32);
    const size_t descriptors = CountDescriptors();
    const long threads = StatusOf("Threads");
    [[maybe_unused]] const long memory = StatusOf("VmRSS");
    AskAll(requests, 32);
    EXPECT_TRUE(WaitFor([&] { return CountDescriptors() <= descriptors; })) << CountDescriptors();
    EXPECT_TRUE(WaitFor([&] { return StatusOf("Threads") <= threads; })) << StatusOf("Threads");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they hold back what is freed
    EXPECT_LT(StatusOf("VmRSS"), memory + 512) << "KB";
#endif
}

TEST_F(Server, SecondCopyOnThePortEndsWithStatus0) {
    const std::string firstLog = m_LogFile;
    m_Env["HALYARD_LOGFILE"] = m_LogFile = m_Folder + "second.txt";
    EXPECT_EQ(Run({}), 0);
    Lines log = Messages();
    const auto failure = std::find(log.begin(), log.end(), "Failed to open socket");
    ASSERT_NE(failure, log.end());
    log.erase(log.begin(), failure + 1);
    std::erase(log, "Failed to open socket"); // of further interfaces; only the first one in the process goes on
    EXPECT_EQ(log, (Lines{"Halyard critical error.", "Unable to create socket.",
                          "Probably you are running second copy of Halyard."}));
    m_LogFile = firstLog;
    EXPECT_EQ(Ask("1A"), "0000001A\n\n") << "the first copy serves on";
}

TEST_F(DaemonTest, LogFileThatCannotBeWrittenStopsNothing) {
    WriteFile(m_Folder + "file", "");
    m_Env["HALYARD_LOGFILE"] = m_Folder + "file/Log.txt"; // not even root can write behind a plain file
    const pid_t pid = Spawn({});
    ASSERT_TRUE(WaitFor([&] { return AllListen(pid); }));
    EXPECT_EQ(Ask("1A"), "0000001A\n\n");
    EXPECT_NE(Ask("GET /log HTTP/1.1").find("Accepted</li>\r\n"), std::string::npos);
    EXPECT_EQ(ReadFile(m_Folder + "file"), "");
}

TEST_F(DaemonTest, PortFile) {
    const std::string path = m_Folder + "data/port.dat";
    const struct {
        const char *Name, *Text; // null: a folder
        const char* Expected;
    } cases[] = {
        {"empty", "", "Using port 8888"},
        {"unreadable", nullptr, "Using port 8888"},
        {"no number takes an arbitrary port", "garbage", "Using port 0"},
        {"number and more", " 60123x9\n", "Using port 60123"},
        {"largest", "2147483647", "Using port 2147483647"},
        {"beyond the largest", "4294967297", "Using port 2147483647"},
        {"beyond the smallest", "-4294967297", "Using port -2147483648"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        std::filesystem::remove_all(path);
        if (c.Text) {
            WriteFile(path, c.Text);
        } else {
            std::filesystem::create_directory(path);
        }
        const pid_t pid = Spawn({});
        EXPECT_TRUE(WaitMessage(c.Expected));
        kill(pid, SIGKILL);
        Finish(pid);
        std::filesystem::remove(m_LogFile);
    }
    WriteFile(path, std::string(3 << 20, ' ') + std::to_string(m_Port));
    ASSERT_GT(StartForeground(), 0) << "a large file is read whole";
    EXPECT_EQ(Ask("1A"), "0000001A\n\n");
}

TEST_F(DaemonTest, DataFolderIsMadeAndDefaultsHold) {
    m_Env["HALYARD_DATAPATH"] = m_Folder + "new/data";
    Spawn({});
    EXPECT_TRUE(WaitMessage("Using port 8888"));
    EXPECT_TRUE(std::filesystem::is_directory(m_Folder + "new/data"));
}

TEST_F(DaemonTest, WithoutInterfacesListensOnAllAddresses) {
    const pid_t pid = Spawn({}, true);
    int status = 0;
    if (WaitFor([&] { return (status = Finish(pid, 0)) != -1 || Listeners(pid) == 1; }) && status == 77) {
        GTEST_SKIP() << "no networks of one's own here";
    }
    EXPECT_EQ(status, -1);
    EXPECT_EQ(Messages().back(), "Found 0 interfaces");
    char any[32];
    std::snprintf(any, sizeof(any), " 00000000:%04X ", unsigned(m_Port));
    EXPECT_NE(ReadFile("/proc/" + std::to_string(pid) + "/net/tcp").find(any), std::string::npos);
}

TEST_F(DaemonTest, DebugTracesCarryNumbersAndNoStamp) {
    m_Env["HALYARD_DEBUG"] = "1";
    ASSERT_GT(StartForeground(), 0);
    EXPECT_EQ(Ask("1A"), "0000001A\n\n");
    const auto traced = [this] {
        const Lines log = Messages();
        const auto has = [&log](const char* pattern) {
            return std::any_of(log.begin(), log.end(), [=](const std::string& line) { return Matches(line, pattern); });
        };
        return has(R"(0\.1 \| CSocket::Open\(2, 2, 0\))") && has(R"([0-9]+\.3 \| closesocket\([0-9]+\))") &&
               has(R"([0-9]+\.2 \| [0-9]+ = accept\([0-9]+, [0-9A-F]{1,8}, 16\))");
    };
    EXPECT_TRUE(WaitFor(traced)) << ReadFile(m_LogFile); // the close is traced behind the reply
}

} // namespace
