#include "DaemonTest.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <poll.h>
#include <regex.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace {

using Clock = std::chrono::steady_clock;

sockaddr_in AddressOf(const std::string& address, int port) {
    sockaddr_in a = {};
    a.sin_family = AF_INET;
    a.sin_port = htons(uint16_t(port));
    inet_pton(AF_INET, address.c_str(), &a.sin_addr);
    return a;
}

/// @return false at the end of the connection or on an error
bool ReadSome(int sock, std::string* to) {
    char bytes[16384];
    const ssize_t n = recv(sock, bytes, sizeof(bytes), 0);
    if (n > 0) {
        to->append(bytes, size_t(n));
    } else if (n < 0 && errno == EAGAIN) {
        to->append("<never closed>");
    } else if (n < 0) {
        to->append("<reset>");
    }
    return n > 0;
}

/// Begins to connect from 127.0.0.1, which reaches every address of this machine.
int BeginConnect(const std::string& address, int port) {
    const int sock = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const int on = 1;
    setsockopt(sock, IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &on, sizeof(on));
    const sockaddr_in from = AddressOf("127.0.0.1", 0), to = AddressOf(address, port);
    (void)!bind(sock, reinterpret_cast<const sockaddr*>(&from), sizeof(from));
    (void)!connect(sock, reinterpret_cast<const sockaddr*>(&to), sizeof(to));
    return sock;
}

void Redirect(const std::string& path, int to, int flags) {
    const int fd = open(path.c_str(), flags, 0644);
    dup2(fd, to);
    close(fd);
}

} // namespace

bool WaitFor(const std::function<bool()>& done, double seconds) {
    const auto deadline = Clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (Clock::now() > deadline) {
            return false;
        }
        usleep(2000);
    }
    return true;
}

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteFile(const std::string& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    size_t from = 0;
    for (size_t end; (end = text.find("\r\n", from)) != std::string::npos; from = end + 2) {
        lines.push_back(text.substr(from, end - from));
    }
    if (from < text.size()) {
        lines.push_back(text.substr(from));
    }
    return lines;
}

std::vector<std::string> InterfaceAddresses() {
    std::vector<std::string> addresses;
    ifaddrs* all = nullptr;
    if (getifaddrs(&all) == 0) {
        for (const ifaddrs* i = all; i; i = i->ifa_next) {
            if (i->ifa_addr && i->ifa_addr->sa_family == AF_INET) {
                sockaddr_in a;
                std::memcpy(&a, i->ifa_addr, sizeof(a));
                addresses.emplace_back(inet_ntoa(a.sin_addr));
            }
        }
        freeifaddrs(all);
    }
    return addresses;
}

bool Matches(const std::string& text, const char* pattern) {
    regex_t compiled;
    EXPECT_EQ(regcomp(&compiled, ("^(" + std::string(pattern) + ")$").c_str(), REG_EXTENDED | REG_NOSUB), 0);
    const bool matches = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return matches;
}

bool IsRecentStamp(const std::string& text) {
    tm parsed = {};
    const char* end = strptime(text.c_str(), "%A, %d %B %Y %H:%M:%S", &parsed);
    parsed.tm_isdst = -1;
    const double age = end && *end == 0 ? difftime(time(nullptr), mktime(&parsed)) : -1;
    char again[64];
    std::strftime(again, sizeof(again), "%A, %d %B %Y %H:%M:%S", &parsed); // leading zeros and the day's name
    return age >= 0 && age < 300 && text == again;
}

DaemonTest::DaemonTest() {
    prctl(PR_SET_CHILD_SUBREAPER, 1); // daemons become our children when their parent ends
    m_Folder = testing::TempDir() + "halyard_XXXXXX";
    if (!mkdtemp(m_Folder.data())) {
        m_Folder.clear();
    }
    m_Folder += '/';
    m_LogFile = m_Folder + "logs/Log.txt";
    m_PidFile = m_Folder + "halyard.pid";
    m_Env = {{"HALYARD_LOGFILE", m_LogFile}, {"HALYARD_PIDFILE", m_PidFile}, {"HALYARD_DATAPATH", m_Folder + "data"}};
    std::filesystem::create_directory(m_Folder + "data");
    // The handler of the list signal takes memory by design; it only runs while the main thread sleeps.
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS"}) {
        const char* given = getenv(name);
        m_Env[name] = std::string(given ? given : "") + ":log_path=" + m_Folder + "report" +
                      (name[0] == 'T' ? ":report_signal_unsafe=0" : "");
    }
}

DaemonTest::~DaemonTest() {
    KillAll();
    std::error_code ignored;
    std::filesystem::remove_all(m_Folder, ignored);
}

void DaemonTest::SetUp() {
    ASSERT_GT(m_Folder.size(), 1u);
    UseFreePort();
    ASSERT_FALSE(m_Addresses.empty());
}

void DaemonTest::TearDown() {
    KillAll();
    for (const auto& entry : std::filesystem::directory_iterator(m_Folder)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("report") || name.starts_with("err.")) {
            EXPECT_EQ(ReadFile(entry.path()), "") << name;
        }
    }
}

void DaemonTest::KillAll() {
    const std::string list = "/proc/self/task/" + std::to_string(getpid()) + "/children";
    for (int round = 0; round < 100; round++) { // an orphan may come over while its parent is being ended
        std::istringstream pids(ReadFile(list));
        for (pid_t pid; pids >> pid;) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
        if (ReadFile(list).empty()) {
            return;
        }
    }
}

pid_t DaemonTest::Spawn(const std::vector<std::string>& args, bool newNetwork) {
    std::vector<std::string> strings = {m_Env.contains("EXE") ? m_Env["EXE"] : HALYARD_EXECUTABLE};
    strings.insert(strings.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& s : strings) {
        argv.push_back(s.data());
    }
    argv.push_back(nullptr);

    const pid_t pid = fork();
    if (pid == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        const std::string own = std::to_string(getpid());
        Redirect("/dev/null", 0, O_RDONLY);
        Redirect(m_Folder + "out." + own, 1, O_WRONLY | O_CREAT | O_TRUNC);
        Redirect(m_Folder + "err." + own, 2, O_WRONLY | O_CREAT | O_TRUNC);
        sigset_t none;
        sigemptyset(&none);
        sigprocmask(SIG_SETMASK, &none, nullptr);
        if (newNetwork && unshare(CLONE_NEWNET) != 0) {
            _exit(77);
        }
        for (const char* name : {"HALYARD_LOGFILE", "HALYARD_PIDFILE", "HALYARD_DATAPATH", "HALYARD_DEBUG"}) {
            unsetenv(name);
        }
        for (const auto& [name, value] : m_Env) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        execv(argv[0], argv.data());
        _exit(127);
    }
    return pid;
}

int DaemonTest::Finish(pid_t pid, double seconds) {
    int status = 0;
    if (!WaitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }, seconds)) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

void DaemonTest::UseFreePort() {
    const int sock = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in a = AddressOf("0.0.0.0", 0);
    socklen_t length = sizeof(a);
    ASSERT_EQ(bind(sock, reinterpret_cast<sockaddr*>(&a), length), 0);
    ASSERT_EQ(getsockname(sock, reinterpret_cast<sockaddr*>(&a), &length), 0);
    close(sock);
    m_Port = ntohs(a.sin_port);
    WriteFile(m_Folder + "data/port.dat", std::to_string(m_Port));
}

int DaemonTest::Listeners(pid_t pid) const {
    char wanted[32];
    std::snprintf(wanted, sizeof(wanted), ":%04X 00000000:0000 0A", unsigned(m_Port));
    std::ifstream table("/proc/" + std::to_string(pid) + "/net/tcp");
    int count = 0;
    for (std::string line; std::getline(table, line);) {
        count += line.find(wanted) != std::string::npos;
    }
    return count;
}

bool DaemonTest::AllListen(pid_t pid) const {
    return Listeners(pid) == int(m_Addresses.size());
}

pid_t DaemonTest::StartForeground() {
    const pid_t pid = Spawn({});
    return WaitFor([&] { return AllListen(pid); }) ? pid : -1;
}

pid_t DaemonTest::StartDaemon() {
    if (Run({"daemon"}) != 0) {
        return -1;
    }
    const pid_t pid = std::stoi("0" + ReadFile(m_PidFile));
    return pid > 0 && WaitFor([&] { return AllListen(pid); }) ? pid : -1;
}

std::vector<std::string> DaemonTest::Messages() const {
    std::vector<std::string> messages = SplitLines(ReadFile(m_LogFile));
    for (std::string& m : messages) {
        if (const size_t bar = m.find(" | "); bar != std::string::npos && bar > 20) { // traces have a number instead
            EXPECT_TRUE(IsRecentStamp(m.substr(0, bar))) << m;
            m.erase(0, bar + 3);
        }
    }
    return messages;
}

bool DaemonTest::WaitMessage(const std::string& message) {
    return WaitFor([&] {
        const std::vector<std::string> all = Messages();
        return std::find(all.begin(), all.end(), message) != all.end();
    });
}

int DaemonTest::Connect() {
    const int sock = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit = {20, 0};
    setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    const sockaddr_in a = AddressOf("127.0.0.1", m_Port);
    EXPECT_EQ(connect(sock, reinterpret_cast<const sockaddr*>(&a), sizeof(a)), 0);
    return sock;
}

std::string DaemonTest::Ask(std::string_view request) {
    const int sock = Connect();
    if (request.empty()) {
        shutdown(sock, SHUT_WR);
    }
    send(sock, request.data(), request.size(), MSG_NOSIGNAL);
    std::string reply;
    while (ReadSome(sock, &reply)) {
    }
    close(sock);
    return reply;
}

void DaemonTest::Reset(std::string_view request, bool finish) {
    const int sock = Connect();
    send(sock, request.data(), request.size(), MSG_NOSIGNAL);
    if (finish) {
        shutdown(sock, SHUT_WR);
    }
    const linger hard = {1, 0};
    setsockopt(sock, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
    close(sock);
}

std::vector<std::string> DaemonTest::AskAll(const std::vector<std::string>& requests, size_t atOnce,
                                            const std::function<void()>& meanwhile) {
    std::vector<std::string> replies(requests.size());
    std::vector<pollfd> open;
    std::vector<size_t> index; // of the request that each open connection carries
    const auto deadline = Clock::now() + std::chrono::seconds(60);
    size_t next = 0;
    while ((next < requests.size() || !open.empty()) && Clock::now() < deadline) {
        while (next < requests.size() && open.size() < atOnce) {
            open.push_back({BeginConnect(m_Addresses[next % m_Addresses.size()], m_Port), POLLOUT, 0});
            index.push_back(next++);
        }
        poll(open.data(), open.size(), 20);
        for (size_t i = open.size(); i-- > 0;) {
            const std::string& request = requests[index[i]];
            if (open[i].events == POLLOUT && open[i].revents) {
                send(open[i].fd, request.data(), request.size(), MSG_NOSIGNAL);
                open[i].events = POLLIN;
            } else if (open[i].revents && !ReadSome(open[i].fd, &replies[index[i]])) {
                close(open[i].fd);
                open.erase(open.begin() + long(i));
                index.erase(index.begin() + long(i));
            }
        }
        if (meanwhile) {
            meanwhile();
        }
    }
    EXPECT_TRUE(open.empty()) << open.size() << " connections never ended";
    for (const pollfd& p : open) {
        close(p.fd);
    }
    return replies;
}

int DaemonTest::RosterSize() {
    const std::string page = Ask("GET / HTTP/1.1\r\n\r\n");
    if (page.find("There are no connected clients.<br/>\r\n") != std::string::npos) {
        return 0;
    }
    const size_t last = page.rfind("\r\n<b>#");
    return last == std::string::npos ? -1 : std::stoi(page.substr(last + 6));
}
