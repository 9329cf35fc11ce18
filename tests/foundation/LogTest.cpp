#include "foundation/cLog.h"

#include "FakeClock.h"
#include "files/cIO.h"
#include "foundation/cTimer.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>

using namespace trellis;

namespace {

class Log : public testing::Test {
protected:
    Log() {
        m_Path = testing::TempDir() + "halyard_log_" + std::to_string(getpid()) + ".txt";
        cIO::RemoveFile(m_Path.c_str()); // the first use of files logs where they are
        cLog::GetLogMutable().Clear();
    }
    ~Log() override {
        cLog::EnableAutoSaveToFile(false, "");
        unlink(m_Path.c_str());
    }

    std::string Saved() const {
        std::ifstream in(m_Path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::string m_Path;
};

TEST_F(Log, EntriesGetOneFormOfLineEnd) {
    constexpr struct {
        const char *Text, *Entry;
    } cases[] = {
        {"a\nb\r\n", "a\r\nb\r\n"}, {"plain", "plain\r\n"}, {"", "\r\n"}, {"a\rb", "ab\r\n"}, {"\n", "\r\n"},
        {"a\n\n", "a\r\n\r\n"},     {"a\n\r", "a\r\n"},
    };
    for (const auto& c : cases) {
        cLog::GetLogMutable().Clear();
        cLog::Message("%s", c.Text);
        EXPECT_STREQ(cLog::GetLog(), c.Entry);
        EXPECT_EQ(cLog::GetLog().Length(), int(std::strlen(c.Entry)));
    }
}

TEST_F(Log, EveryLevelAppends) {
    cLog::Message("m%d", 1);
    cLog::Warning("w%d", 2);
    cLog::Error("e%d", 3);
    EXPECT_FALSE(cLog::Assert("a%d", 4));
    EXPECT_FALSE(cLog::IsVisible());
    EXPECT_FALSE(cLog::ShowDialog(cLog::Mode::Error));
    EXPECT_STREQ(cLog::GetLog(), "m1\r\nw2\r\ne3\r\na4\r\n");
}

TEST_F(Log, TimeMessageStampsAndKeepsInnerLineEnds) {
    cFakeClock clock;
    cTimer::AcquireClockTicks(); // ticks start at 0, and a start of 0 would read as unset
    clock.Advance(10'000);
    constexpr struct {
        const char* Name;
        int Ms;
        const char* Entry;
    } cases[] = {
        {"at once", 0, "00:00.000 a\nb\r\n"},
        {"minutes, seconds, milliseconds", 65123, "01:05.123 a\nb\r\n"},
        {"hours stay minutes", 100 * 60000 + 59999, "100:59.999 a\nb\r\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cLog::GetLogMutable().Clear();
        cLog::ResetTime();
        clock.Advance(c.Ms * 1000LL);
        cLog::TimeMessage("a\n%c", 'b');
        EXPECT_STREQ(cLog::GetLog(), c.Entry);
    }
    cLog::Time0 = 0; // unset: the entry itself starts the time
    cLog::GetLogMutable().Clear();
    cLog::TimeMessage("x\r\n");
    EXPECT_STREQ(cLog::GetLog(), "00:00.000 x\r\n");
    cLog::Time0 = 0;
}

TEST_F(Log, AutoSaveStartsWithTheLogAndThenAppends) {
    std::ofstream(m_Path) << "from an earlier run";
    cLog::Message("before");
    cLog::EnableAutoSaveToFile(true, m_Path.c_str());
    EXPECT_EQ(Saved(), "before\r\n");
    cLog::Message("first");
    cLog::GetLogMutable().Clear(); // the file must not be rewritten from here
    cLog::EnableAutoSaveToFile(true, m_Path.c_str());
    cLog::Warning("second");
    cLog::Time0 = 0;
    EXPECT_EQ(Saved(), "before\r\nfirst\r\nsecond\r\n");
    cLog::EnableAutoSaveToFile(false, m_Path.c_str());
    cLog::Message("third");
    EXPECT_EQ(Saved(), "before\r\nfirst\r\nsecond\r\n");
    EXPECT_STREQ(cLog::GetLog(), "second\r\nthird\r\n");
}

TEST_F(Log, AutoSaveThatFailsIsSilent) {
    const std::string nowhere = m_Path + "/missing/log.txt";
    cLog::EnableAutoSaveToFile(true, nowhere.c_str());
    cLog::Message("kept");
    EXPECT_STREQ(cLog::GetLog(), "kept\r\n");
}

TEST_F(Log, SaveToFileRewrites) {
    cLog::Message("one");
    cLog::SaveToFile(m_Path.c_str());
    cLog::Message("two");
    cLog::SaveToFile(m_Path.c_str());
    EXPECT_EQ(Saved(), "one\r\ntwo\r\n");
}

} // namespace
