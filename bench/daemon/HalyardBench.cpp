// Stress and benchmark of the daemon as a real process, over the addresses that it listens on.
#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Strings = std::vector<std::string>;

double Since(Clock::time_point t) {
    return std::chrono::duration<double>(Clock::now() - t).count();
}

Strings InterfaceAddresses() {
    Strings addresses;
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) == 0) {
        for (const ifaddrs* i = all; i; i = i->ifa_next) {
            if (i->ifa_addr && i->ifa_addr->sa_family == AF_INET) {
                sockaddr_in a;
                std::memcpy(&a, i->ifa_addr, sizeof(a));
                addresses.push_back(inet_ntoa(a.sin_addr));
            }
        }
        freeifaddrs(all);
    }
    return addresses;
}

sockaddr_in AddressOf(const std::string& address, int port) {
    sockaddr_in a = {};
    a.sin_family = AF_INET;
    a.sin_port = htons(uint16_t(port));
    inet_pton(AF_INET, address.c_str(), &a.sin_addr);
    return a;
}

int FreePort() {
    const int sock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a = AddressOf("0.0.0.0", 0);
    socklen_t length = sizeof(a);
    if (bind(sock, reinterpret_cast<sockaddr*>(&a), length) != 0 ||
        getsockname(sock, reinterpret_cast<sockaddr*>(&a), &length) != 0) {
        std::perror("no free port");
        std::exit(1);
    }
    close(sock);
    return ntohs(a.sin_port);
}

/// A server in a process of its own, ended with this object.
class cServer {
public:
    enum class Kind { Halyard, PlainWithPause, Plain };

    cServer(Kind kind, const Strings& addresses) : m_Port(FreePort()) {
        char folder[] = "/tmp/halyard_bench_XXXXXX";
        if (!mkdtemp(folder)) {
            std::perror("mkdtemp");
            std::exit(1);
        }
        m_Folder = folder;
        std::ofstream(m_Folder + "/port.dat") << m_Port;
        m_Pid = fork();
        if (m_Pid == 0) {
            Exec(kind, addresses);
        }
        for (const std::string& address : addresses) {
            WaitFor(address);
        }
    }
    ~cServer() {
        kill(m_Pid, SIGKILL);
        waitpid(m_Pid, nullptr, 0);
        std::error_code ignored;
        std::filesystem::remove_all(m_Folder, ignored);
    }
    cServer(const cServer&) = delete;
    cServer& operator=(const cServer&) = delete;

    int Port() const { return m_Port; }

    double CpuSeconds() const { ///< Of all its threads, those that have ended included.
        clockid_t clock;
        timespec t = {};
        if (clock_getcpuclockid(m_Pid, &clock) == 0) {
            clock_gettime(clock, &t);
        }
        return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
    }
    long StatusOf(const std::string& key) const {
        std::ifstream in("/proc/" + std::to_string(m_Pid) + "/status");
        for (std::string line; std::getline(in, line);) {
            if (line.starts_with(key + ":")) {
                return std::atol(line.c_str() + key.size() + 1);
            }
        }
        return -1;
    }
    long Descriptors() const {
        const std::filesystem::directory_iterator all("/proc/" + std::to_string(m_Pid) + "/fd");
        return std::distance(begin(all), end(all));
    }

private:
    [[noreturn]] void Exec(Kind kind, const Strings& addresses) const {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const int null = open("/dev/null", O_RDWR);
        dup2(null, 1); // as the daemon has it
        setenv("HALYARD_DATAPATH", m_Folder.c_str(), 1);
        setenv("HALYARD_LOGFILE", (m_Folder + "/Log.txt").c_str(), 1);
        if (kind == Kind::Halyard) {
            execl(HALYARD_EXECUTABLE, "halyard", nullptr);
        } else {
            std::string program = PLAIN_EXECUTABLE, port = std::to_string(m_Port);
            std::string pause = kind == Kind::Plain ? "0" : "10";
            Strings copies = addresses;
            std::vector<char*> args = {program.data(), port.data(), pause.data()};
            for (std::string& a : copies) {
                args.push_back(a.data());
            }
            args.push_back(nullptr);
            execv(args[0], args.data());
        }
        _exit(127);
    }

    void WaitFor(const std::string& address) const {
        const sockaddr_in a = AddressOf(address, m_Port);
        const auto start = Clock::now();
        for (;;) {
            const int sock = socket(AF_INET, SOCK_STREAM, 0);
            const bool up = connect(sock, reinterpret_cast<const sockaddr*>(&a), sizeof(a)) == 0;
            close(sock);
            if (up) {
                return;
            }
            if (Since(start) > 10) {
                std::fprintf(stderr, "The server does not listen on %s:%d\n", address.c_str(), m_Port);
                kill(m_Pid, SIGKILL);
                std::exit(1);
            }
            usleep(1000);
        }
    }

    int m_Port;
    std::string m_Folder;
    pid_t m_Pid = -1;
};

/// What clients do: each connects, sends, reads to the end, and begins anew.
struct Load {
    Strings Addresses;    ///< Client i uses address i modulo their number.
    int Clients = 1;      ///< At once.
    double PerSecond = 0; ///< New connections over all clients; 0 for as fast as they come.
    double Seconds = 1e9; ///< Ends with the first of these two.
    int Connections = 1 << 30;
    std::function<std::string(int)> Request = [](int i) { return "C" + std::to_string(i % 32); };
};

struct Outcome {
    std::vector<double> Ms; ///< From the start of the connection to its reply, for those with a reply.
    int Connections = 0;
    int WithoutReply = 0;
    double Seconds = 0;

    double Percentile(double p) {
        if (Ms.empty()) {
            return 0;
        }
        std::sort(Ms.begin(), Ms.end());
        return Ms[std::min(Ms.size() - 1, size_t(p * double(Ms.size())))];
    }
};

class cDriver {
public:
    cDriver(const Load& load, int port) : m_Load(load), m_Port(port) {}

    Outcome Run() {
        m_Start = Clock::now();
        m_Open.resize(size_t(m_Load.Clients));
        std::vector<pollfd> polls(m_Open.size());
        bool busy = true;
        while (busy) {
            busy = false;
            for (size_t i = 0; i < m_Open.size(); i++) {
                if (m_Open[i].Sock == -1 && MayStart()) {
                    Start(i);
                }
                polls[i] = {m_Open[i].Sock, short(m_Open[i].Sent ? POLLIN : POLLOUT), 0};
                busy = busy || m_Open[i].Sock != -1;
            }
            busy = busy || !Ended();
            poll(polls.data(), polls.size(), 1);
            for (size_t i = 0; i < m_Open.size(); i++) {
                if (polls[i].revents) {
                    Step(&m_Open[i]);
                }
            }
        }
        m_Outcome.Seconds = Since(m_Start);
        return m_Outcome;
    }

private:
    struct Connection {
        int Sock = -1;
        bool Sent = false, Replied = false;
        std::string Request;
        Clock::time_point Begin;
    };

    bool Ended() const { return m_Outcome.Connections >= m_Load.Connections || Since(m_Start) >= m_Load.Seconds; }
    bool MayStart() const {
        return !Ended() && (m_Load.PerSecond == 0 || m_Outcome.Connections < Since(m_Start) * m_Load.PerSecond);
    }

    void Start(size_t client) {
        Connection& c = m_Open[client];
        c.Request = m_Load.Request(m_Outcome.Connections++);
        c.Sent = c.Replied = false;
        c.Begin = Clock::now();
        c.Sock = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
        const int on = 1;
        setsockopt(c.Sock, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof(on));
        // From here every address of this machine is reached, and the daemon finds the name without a name server.
        const sockaddr_in from = AddressOf("127.0.0.1", 0);
        const sockaddr_in to = AddressOf(m_Load.Addresses[client % m_Load.Addresses.size()], m_Port);
        (void)!bind(c.Sock, reinterpret_cast<const sockaddr*>(&from), sizeof(from));
        (void)!connect(c.Sock, reinterpret_cast<const sockaddr*>(&to), sizeof(to));
    }

    void Step(Connection* c) {
        if (!c->Sent) {
            send(c->Sock, c->Request.data(), c->Request.size(), MSG_NOSIGNAL);
            c->Sent = true;
            return;
        }
        char bytes[65536];
        const ssize_t n = recv(c->Sock, bytes, sizeof(bytes), 0);
        if (n > 0) {
            if (!c->Replied) {
                m_Outcome.Ms.push_back(Since(c->Begin) * 1000);
            }
            c->Replied = true;
        } else if (n == 0 || errno != EAGAIN) {
            m_Outcome.WithoutReply += !c->Replied;
            close(c->Sock);
            c->Sock = -1;
        }
    }

    Load m_Load;
    int m_Port;
    Outcome m_Outcome;
    std::vector<Connection> m_Open;
    Clock::time_point m_Start;
};

Outcome Drive(const cServer& server, const Load& load) {
    return cDriver(load, server.Port()).Run();
}

void MeasureRate(const Strings& all) {
    std::printf("\nReplies a second (designed limit: about 100 for each acceptor)\n");
    for (size_t count = 1; count <= all.size(); count++) {
        const Strings some(all.begin(), all.begin() + long(count));
        const cServer server(cServer::Kind::Halyard, all);
        Outcome o = Drive(server, {.Addresses = some, .Clients = int(count) * 16, .Seconds = 10});
        const double rate = double(o.Ms.size()) / o.Seconds;
        std::printf("  %zu acceptor(s)  %7.1f in all  %6.1f each  %d without reply\n", count, rate,
                    rate / double(count), o.WithoutReply);
    }
}

void MeasureLatency(const Strings& all) {
    std::printf("\nMilliseconds from connecting to the acknowledgement\n"
                "  addresses  clients   median      p99      max  replies  without\n");
    for (size_t count = 1; count <= all.size(); count += std::max<size_t>(1, all.size() - 1)) {
        for (const int clients : {1, 50, 200}) {
            const cServer server(cServer::Kind::Halyard, all);
            const Strings some(all.begin(), all.begin() + long(count));
            Outcome o = Drive(server, {.Addresses = some, .Clients = clients, .Seconds = 15});
            std::printf("  %9zu  %7d  %7.2f  %7.2f  %7.2f  %7zu  %7d\n", count, clients, o.Percentile(0.5),
                        o.Percentile(0.99), o.Percentile(1), o.Ms.size(), o.WithoutReply);
        }
    }
}

/// Rounds alternate between the servers, at one rate below the daemon's limit.
void MeasureCpu(const Strings& all) {
    constexpr int Rounds = 7, Connections = 1500;
    constexpr struct {
        cServer::Kind Kind;
        const char* Name;
    } servers[] = {
        {cServer::Kind::Halyard, "daemon"},
        {cServer::Kind::PlainWithPause, "plain server with the daemon's pause"},
        {cServer::Kind::Plain, "plain server"},
    };
    const double perSecond = 80.0 * double(all.size());
    std::printf("\nProcessor time for a request, at %.0f requests a second, microseconds\n", perSecond);
    std::vector<double> spent[std::size(servers)];
    for (int round = 0; round < Rounds; round++) {
        for (size_t i = 0; i < std::size(servers); i++) {
            const cServer server(servers[i].Kind, all);
            Load load = {.Addresses = all, .Clients = 16, .PerSecond = perSecond, .Connections = 100};
            Drive(server, load); // libraries that the look-up of names loads, and the join of every client
            load.Connections = Connections;
            const double before = server.CpuSeconds();
            Drive(server, load);
            spent[i].push_back((server.CpuSeconds() - before) / Connections * 1e6);
        }
    }
    for (size_t i = 0; i < std::size(servers); i++) {
        std::sort(spent[i].begin(), spent[i].end());
        const double median = spent[i][Rounds / 2];
        std::printf("  %-38s median %6.1f  (%.1f to %.1f)  daemon over it %.3f\n", servers[i].Name, median, spent[i][0],
                    spent[i][Rounds - 1], spent[0][Rounds / 2] / median);
    }
}

void MeasureIdle(const Strings& all) {
    const cServer server(cServer::Kind::Halyard, all);
    Drive(server, {.Addresses = all, .Connections = 32});
    sleep(1);
    const double before = server.CpuSeconds();
    sleep(20);
    std::printf("\nProcessor time when idle: %.0f microseconds in 20 seconds (a clock tick is %.0f)\n",
                (server.CpuSeconds() - before) * 1e6, 1e6 / double(sysconf(_SC_CLK_TCK)));
}

void MeasureMemory(const Strings& all) {
    constexpr int Warm = 2000, Connections = 50000, Steps = 5; // each of whole cycles of kinds
    const cServer server(cServer::Kind::Halyard, all);
    Load load = {.Addresses = all, .Clients = 16 * int(all.size()), .Connections = Warm, .Request = [](int i) {
                     constexpr const char* kinds[] = {"GET / HTTP/1.1\r\n\r\n", "GET /log HTTP/1.1\r\n\r\n", "hello",
                                                      "GET /none HTTP/1.1\r\n\r\n"};
                     const std::string id = std::to_string(i / 16 % 64);
                     switch (i % 16) {
                     case 3: // joins and departures write the log
                         return "stop " + id;
                     case 4:
                     case 5:
                     case 6:
                     case 7:
                         return std::string(kinds[i % 4]);
                     default:
                         return id;
                     }
                 }};
    const auto report = [&](const char* when) {
        sleep(1); // the last threads end
        std::printf("  %-10s resident %6ld KB  peak %6ld KB  descriptors %3ld  threads %3ld\n", when,
                    server.StatusOf("VmRSS"), server.StatusOf("VmHWM"), server.Descriptors(),
                    server.StatusOf("Threads"));
        std::fflush(stdout);
    };
    std::printf("\n%d connections of all kinds\n", Connections);
    Drive(server, load);
    report("before");
    load.Connections = Connections / Steps;
    double seconds = 0;
    int without = 0;
    for (int step = 1; step <= Steps; step++) {
        const Outcome o = Drive(server, load);
        seconds += o.Seconds;
        without += o.WithoutReply;
        report(std::to_string(step * load.Connections).c_str());
    }
    std::printf("  %.0f seconds, %d connections without a reply, as meant for %d\n", seconds, without,
                Connections / 16 * 3);
}

} // namespace

int main(int argc, char** argv) {
    const Strings all = InterfaceAddresses();
    if (all.empty()) {
        std::fprintf(stderr, "No interface has an address\n");
        return 1;
    }
    constexpr struct {
        const char* Name;
        void (*Measure)(const Strings&);
    } parts[] = {
        {"rate", MeasureRate}, {"latency", MeasureLatency}, {"cpu", MeasureCpu},
        {"idle", MeasureIdle}, {"memory", MeasureMemory},
    };
    for (const auto& part : parts) {
        const bool asked =
            std::any_of(argv + 1, argv + argc, [&](const char* a) { return !std::strcmp(a, part.Name); });
        if (argc == 1 || asked) {
            part.Measure(all);
            std::fflush(stdout);
        }
    }
}
