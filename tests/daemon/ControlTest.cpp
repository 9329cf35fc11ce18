// The words of the command line, and the exchange between a `list` copy and the daemon.
#include "DaemonTest.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>

namespace {

constexpr int ListSignal = 12;
constexpr char ExchangeFile[] = "/tmp/Halyard.tmp";
constexpr char TitleLine[] = "Marigold: Halyard 1.8 Linux Daemon (32-bit)\r\n";

/// Holds the machine's exchange file for this test, and the list signal back from this process.
class Control : public DaemonTest {
protected:
    Control() {
        m_Lock = open("/tmp/halyard_tests.lock", O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        flock(m_Lock, LOCK_EX);
        sigemptyset(&m_ListSet);
        sigaddset(&m_ListSet, ListSignal);
        sigprocmask(SIG_BLOCK, &m_ListSet, nullptr);
    }
    ~Control() override {
        WaitSignal(nullptr, 0);
        close(m_Lock);
    }

    // The thread sanitizer keeps one signal of a kind back until a thread's next call, and drops those behind it.
#if defined(__SANITIZE_THREAD__)
    static constexpr bool LosesSignals = true;
#else
    static constexpr bool LosesSignals = false;
#endif
    static constexpr int WaitSeconds = LosesSignals ? 5 : 20;

    /// @return the value that rode on the list signal, or -1
    int WaitSignal(pid_t* from, int seconds = 20) {
        siginfo_t info = {};
        const timespec limit = {seconds, 0};
        if (sigtimedwait(&m_ListSet, &info, &limit) != ListSignal) {
            return -1;
        }
        if (from) {
            *from = info.si_pid;
        }
        return info.si_value.sival_int;
    }

    static int Signal(pid_t to, int value) {
        sigval v = {};
        v.sival_int = value;
        return sigqueue(to, ListSignal, v);
    }

    /// The roster as the daemon tells it to this process.
    std::string Listing(pid_t daemon) {
        int size = -1;
        for (int i = 0; i < (LosesSignals ? 6 : 1) && size == -1; i++) {
            EXPECT_EQ(Signal(daemon, getpid()), 0);
            size = WaitSignal(nullptr, WaitSeconds);
        }
        const std::string text = ReadFile(ExchangeFile);
        EXPECT_EQ(size, int(text.size()));
        return text;
    }

    /// A process that sleeps, and is deaf to the list signal.
    pid_t SpawnSleeper() {
        const pid_t pid = fork();
        while (pid == 0) {
            pause();
        }
        return pid;
    }

    std::string Shown(const std::vector<std::string>& args) {
        const pid_t pid = Spawn(args);
        EXPECT_EQ(Finish(pid), 0);
        return Output(pid);
    }

    /// The copy waits a second for the daemon's answer, which is not always enough for a busy machine.
    std::string ShownInTime(const std::vector<std::string>& args) {
        std::string output;
        for (int i = 0; i < 20 && output.empty(); i++) {
            output = Shown(args);
        }
        return output;
    }

    int m_Lock = -1;
    sigset_t m_ListSet;
};

TEST_F(Control, DaemonStandsApartAndStops) {
    const pid_t pid = StartDaemon();
    ASSERT_GT(pid, 0);
    EXPECT_EQ(ReadFile(m_PidFile), std::to_string(pid)) << "and no line end";
    EXPECT_EQ(getsid(pid), pid);
    const std::string proc = "/proc/" + std::to_string(pid);
    EXPECT_EQ(std::filesystem::read_symlink(proc + "/cwd"), "/");
    for (const char* stream : {"/fd/0", "/fd/1", "/fd/2"}) {
        EXPECT_EQ(std::filesystem::read_symlink(proc + stream), "/dev/null") << stream;
    }
    EXPECT_NE(ReadFile(proc + "/status").find("\nUmask:\t0000\n"), std::string::npos);
    EXPECT_EQ(Ask("1A"), "0000001A\n\n");

    EXPECT_EQ(Run({"--please-STOP-the", "daemon"}), 0); // any case, anywhere; it wins over the other word
    EXPECT_EQ(Finish(pid), 1000 + SIGINT);
    EXPECT_FALSE(std::filesystem::exists(m_PidFile));
    EXPECT_EQ(Listeners(getpid()), 0);
}

TEST_F(Control, SecondDaemonReplacesTheFirst) {
    const pid_t first = StartDaemon();
    ASSERT_GT(first, 0);
    EXPECT_EQ(Run({"daemon"}), 0);
    EXPECT_EQ(Finish(first), 1000 + SIGINT);
    const pid_t second = std::stoi("0" + ReadFile(m_PidFile));
    ASSERT_GT(second, 0);
    EXPECT_NE(second, first);
    // Nobody waits for the first one's end, so the second may find the port taken.
    int status = -1;
    EXPECT_TRUE(WaitFor([&] { return AllListen(getpid()) || (status = Finish(second, 0)) != -1; }));
    if (status != -1) {
        EXPECT_EQ(status, 0);
        const auto log = Messages(); // the acceptor of another interface may have the last word
        EXPECT_EQ(std::count(log.begin(), log.end(), "Probably you are running second copy of Halyard."), 1);
    } else {
        EXPECT_EQ(Ask("1A"), "0000001A\n\n");
    }
}

TEST_F(Control, ListShowsTheRosterInOrderOfJoining) {
    const pid_t pid = StartDaemon();
    ASSERT_GT(pid, 0);
    std::string output = ShownInTime({"list"});
    EXPECT_EQ(output, TitleLine);
    for (const char* request : {"C3", "A1", "B2", "A1", "stop C3"}) {
        Ask(request);
    }
    output = ShownInTime({"stop", "daemon", "--PLAYLIST"}); // the other words are not looked at
    const auto lines = SplitLines(output);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0] + "\r\n", TitleLine);
    for (size_t i = 1; i < lines.size(); i++) {
        const size_t tab = lines[i].find('\t');
        ASSERT_NE(tab, std::string::npos);
        EXPECT_TRUE(Matches(lines[i].substr(0, tab), R"(127\.0\.0\.1 \[[^]]*\])")) << lines[i];
        EXPECT_TRUE(IsRecentStamp(lines[i].substr(tab + 1))) << lines[i];
    }
    EXPECT_EQ(output.substr(output.size() - 2), "\r\n");

    EXPECT_EQ(Listing(pid), output);
}

TEST_F(Control, QuestionThatComesEarlyWaitsForTheService) {
    for (int i = 0; i < 5; i++) {
        ASSERT_EQ(Run({"daemon"}), 0);
        const pid_t pid = std::stoi("0" + ReadFile(m_PidFile));
        EXPECT_EQ(Listing(pid), TitleLine);
        EXPECT_EQ(Run({"stop"}), 0);
        EXPECT_EQ(Finish(pid), 1000 + SIGINT);
    }
}

TEST_F(Control, ListingsUnderLoadAreWhole) {
    const pid_t pid = StartDaemon();
    ASSERT_GT(pid, 0);
    const pid_t deaf = SpawnSleeper(); // asks over and over, whatever the daemon is doing; nobody reads these answers
    const auto none = [&] {
        return ReadFile("/proc/" + std::to_string(pid) + "/status").find("\nShdPnd:\t0000000000000000\n") !=
               std::string::npos;
    };
    std::vector<std::string> requests;
    for (int i = 0; i < 320; i++) { // joins of 64 ids and their departures, over and over
        requests.push_back((i % 5 == 4 ? "stop " : "") + std::to_string(i % 64));
    }
    const char whole[] = "([0-9.]+ \\[[^]]*\\]\t[A-Za-z]+, [0-9]{2} [A-Za-z]+ [0-9]{4} [0-9:]{8}\r\n)*";
    int listings = 0;
    AskAll(requests, 24, [&] {
        for (int i = 0; i < 50; i++) {
            Signal(pid, deaf);
        }
        ASSERT_TRUE(WaitFor(none)) << "two that wait at the same time would become one";
        const std::string text = Listing(pid);
        ASSERT_TRUE(text.starts_with(TitleLine)) << text;
        ASSERT_TRUE(Matches(text.substr(sizeof(TitleLine) - 1), whole)) << text;
        listings++;
    });
    EXPECT_GT(listings, 50);
    const int size = RosterSize();
    EXPECT_EQ(int(SplitLines(Listing(pid)).size()), size + 1);
}

TEST_F(Control, ClientShowsWhatTheDaemonLeft) {
    WriteFile(m_PidFile, std::to_string(getpid())); // this process answers as a daemon would
    const struct {
        const char* Name;
        std::string File;
        int Size;
        std::string Shown;
    } cases[] = {
        {"nothing", "", 0, ""},
        {"as many bytes as were told", "abcdef", 3, "abc"},
        {"the text is the format", "100%% [h%%]\r\n", 13, "100% [h%]\r\n"},
        {"largest", std::string(65534, 'x'), 65534, std::string(65534, 'x')},
        {"one past the largest", std::string(65535, 'x'), 65535, ""},
        {"negative", "abc", -1, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        std::string output;
        for (int i = 0; i < 20; i++) { // until the answer was not too late
            const pid_t pid = Spawn({"list"});
            pid_t asker = 0;
            EXPECT_EQ(WaitSignal(&asker), pid);
            EXPECT_EQ(asker, pid);
            WriteFile(ExchangeFile, c.File);
            Signal(pid, c.Size);
            EXPECT_EQ(Finish(pid), 0);
            output = Output(pid);
            if (output == c.Shown) {
                break;
            }
        }
        EXPECT_EQ(output, c.Shown);
    }
}

TEST_F(Control, WithoutADaemonEveryWordEndsWell) {
    const pid_t ended = Spawn({"list"});
    EXPECT_EQ(Finish(ended), 0);
    const struct {
        const char* Name;
        std::string PidFile; // empty: none
    } cases[] = {
        {"no pid file", ""}, {"stale", std::to_string(ended)}, {"garbage", "garbage"}, {"zero", "0"},
        {"negative", "-1"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        std::filesystem::remove(m_PidFile);
        if (!c.PidFile.empty()) {
            WriteFile(m_PidFile, c.PidFile);
        }
        bool atOnce = false; // with nobody to wait for; a busy machine may need a second all the same
        for (int i = 0; i < 20 && !atOnce; i++) {
            const auto start = std::chrono::steady_clock::now();
            EXPECT_EQ(Shown({"list"}), "");
            atOnce = std::chrono::steady_clock::now() - start < std::chrono::milliseconds(900);
        }
        EXPECT_TRUE(atOnce);
        EXPECT_EQ(ReadFile(m_PidFile), c.PidFile);
        EXPECT_EQ(Run({"stop"}), 0);
        EXPECT_FALSE(std::filesystem::exists(m_PidFile));
    }
}

TEST_F(Control, PidBeyondAnIntIsNobodys) {
    const pid_t bystander = SpawnSleeper();
    WriteFile(m_PidFile, std::to_string(4294967296LL + bystander)); // saturates, and does not wrap
    EXPECT_EQ(Run({"stop"}), 0);
    EXPECT_EQ(Finish(bystander, 0.2), -1);
}

TEST_F(Control, PidFileStandsBesideTheProgramByDefault) {
    m_Env["EXE"] = m_Folder + "copy";
    std::filesystem::copy_file(HALYARD_EXECUTABLE, m_Env["EXE"]);
    for (const bool set : {true, false}) { // empty counts as unset
        if (set) {
            m_Env["HALYARD_PIDFILE"] = "";
        } else {
            m_Env.erase("HALYARD_PIDFILE");
        }
        m_PidFile = m_Folder + "copy_daemon.pid";
        const pid_t pid = StartDaemon();
        ASSERT_GT(pid, 0);
        EXPECT_EQ(Run({"stop"}), 0);
        EXPECT_EQ(Finish(pid), 1000 + SIGINT);
        EXPECT_FALSE(std::filesystem::exists(m_PidFile));
    }
}

TEST_F(Control, DaemonServesWithoutAPidFile) {
    m_Env["HALYARD_PIDFILE"] = m_Folder + "missing/halyard.pid";
    EXPECT_EQ(Run({"daemon"}), 0);
    ASSERT_TRUE(WaitFor([&] { return AllListen(getpid()); }));
    EXPECT_EQ(Ask("1A"), "0000001A\n\n");
}

TEST_F(Control, ForegroundCopyHasNoPidFile) {
    ASSERT_GT(StartForeground(), 0);
    EXPECT_FALSE(std::filesystem::exists(m_PidFile));
    EXPECT_EQ(Shown({"list"}), "");
}

TEST_F(Control, ChildOfInitJustEnds) {
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    int ended[2];
    ASSERT_EQ(pipe(ended), 0); // its end of the pipe closes with the last process that has it
    const pid_t parent = fork();
    if (parent == 0) {
        const pid_t middle = getpid();
        if (fork() == 0) {
            WaitFor([&] { return getppid() != middle; });
            setenv("HALYARD_PIDFILE", m_PidFile.c_str(), 1);
            setenv("HALYARD_LOGFILE", m_LogFile.c_str(), 1);
            setenv("HALYARD_DATAPATH", m_Env["HALYARD_DATAPATH"].c_str(), 1);
            if (getppid() == 1) {
                execl(HALYARD_EXECUTABLE, "halyard", "daemon", nullptr);
            }
            (void)!write(ended[1], "!", 1);
        }
        _exit(0);
    }
    waitpid(parent, nullptr, 0);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    close(ended[1]);
    fcntl(ended[0], F_SETFL, O_NONBLOCK);
    char byte = 0;
    ssize_t n = -1;
    EXPECT_TRUE(WaitFor([&] { return (n = read(ended[0], &byte, 1)) >= 0; }, 10)) << "it lives on as a daemon";
    close(ended[0]);
    if (n > 0) {
        GTEST_SKIP() << "orphans do not go to process 1 here";
    }
    EXPECT_FALSE(std::filesystem::exists(m_LogFile));
    if (const int daemon = std::stoi("0" + ReadFile(m_PidFile)); daemon > 0) {
        ADD_FAILURE() << "it daemonised";
        kill(daemon, SIGKILL);
    }
}

} // namespace
