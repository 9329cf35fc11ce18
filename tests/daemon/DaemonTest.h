// Fixture for tests of the service as a real process: a folder, a port and an environment of the test's own.
// All clients come from 127.0.0.1, whose name does not take a name server to find.
#pragma once

#include <gtest/gtest.h>

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// Polls until `done` or the deadline. @return whether it was done
bool WaitFor(const std::function<bool()>& done, double seconds = 20);

std::string ReadFile(const std::string& path); ///< Empty for a missing file.
void WriteFile(const std::string& path, std::string_view bytes);
std::vector<std::string> SplitLines(const std::string& text); ///< At "\r\n"; what follows the last one is a line, too.

bool Matches(const std::string& text, const char* pattern); ///< The whole text; POSIX extended.

std::vector<std::string> InterfaceAddresses(); ///< IPv4, of this machine.

/// "Monday, 05 January 2026 14:03:22", and of the last five minutes.
bool IsRecentStamp(const std::string& text);

/// Ends every process that a test started, also the daemons that were orphaned on purpose, and fails the test when one
/// of them wrote to its standard error or left a sanitizer's report.
class DaemonTest : public testing::Test {
protected:
    DaemonTest();
    ~DaemonTest() override;
    void SetUp() override;
    void TearDown() override;

    /// @param newNetwork  in an empty network of its own; such a process ends with 77 where that is not permitted
    pid_t Spawn(const std::vector<std::string>& args, bool newNetwork = false);
    /// @return exit status, 1000 plus the number of the signal that ended it, or -1 when it still runs
    int Finish(pid_t pid, double seconds = 20);
    int Run(const std::vector<std::string>& args) { return Finish(Spawn(args)); }
    std::string Output(pid_t pid) const { return ReadFile(m_Folder + "out." + std::to_string(pid)); }

    pid_t StartForeground();         ///< Serving, or -1.
    pid_t StartDaemon();             ///< Through the word; the pid is that of the pid file. Serving, or -1.
    bool AllListen(pid_t pid) const; ///< On each address of this machine.
    int Listeners(pid_t pid) const;  ///< Sockets that listen on the test's port, as the process's network has them.
    void UseFreePort();

    std::vector<std::string> Messages() const; ///< The log's lines without their stamps, which are checked.
    bool WaitMessage(const std::string& message);

    /// One connection: sends, and reads to the end. Nothing to send: closes its direction at once.
    /// @return the reply, and "<reset>" behind it when the connection ended so
    std::string Ask(std::string_view request);
    /// Many at once, spread over the addresses. @return the replies in the same order
    std::vector<std::string> AskAll(const std::vector<std::string>& requests, size_t atOnce,
                                    const std::function<void()>& meanwhile = {});
    int Connect(); ///< A descriptor for the caller to close.
    /// Sends and cuts the connection hard; with `finish` its end of sending comes first.
    void Reset(std::string_view request, bool finish);
    int RosterSize(); ///< As the status page shows it, or -1.

    std::string m_Folder; ///< With its slash.
    std::string m_LogFile;
    std::string m_PidFile;
    std::map<std::string, std::string> m_Env;
    int m_Port = 0;
    const std::vector<std::string> m_Addresses = InterfaceAddresses();

private:
    void KillAll();
};
