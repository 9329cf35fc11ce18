#include "foundation/cTimer.h"

#include "FakeClock.h"
#include "foundation/cPause.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

using namespace trellis;

namespace {

/// The process's first call, at a fraction of a millisecond that no sum of test steps comes near.
const unsigned int s_FirstTicks = [] {
    cFakeClock clock(999'999'999);
    clock.Advance(300);
    return cTimer::AcquireClockTicks();
}();

class Timer : public testing::Test {
protected:
    Timer() { cTimer::Reset(); }
    ~Timer() override {
        cPause::SetUserPause(false);
        cPause::SetSystemPause(false);
        cTimer::Reset();
    }

    void Frame(long long microseconds, int count = 1) {
        for (int i = 0; i < count; i++) {
            m_Clock.Advance(microseconds);
            cTimer::Acquire();
        }
    }

    cFakeClock m_Clock;
};

TEST_F(Timer, FirstFrameTakesNoTime) {
    Frame(500'000);
    EXPECT_EQ(cTimer::GetFrameTimeSec(), 0);
    EXPECT_EQ(cTimer::GetTimeSec(), 0);
    Frame(250'000);
    EXPECT_FLOAT_EQ(cTimer::GetFrameTimeSec(), 0.25f);
    EXPECT_FLOAT_EQ(cTimer::GetFrameTimeMs(), 250);
    Frame(500'000);
    EXPECT_FLOAT_EQ(cTimer::GetTimeSec(), 0.75f);
    EXPECT_FLOAT_EQ(cTimer::GetTimeMs(), 750);
    EXPECT_FLOAT_EQ(cTimer::GetSystemTimeSec(), 0.75f);
    EXPECT_FLOAT_EQ(cTimer::GetSystemFrameTimeSec(), 0.5f);
    EXPECT_EQ(cTimer::GetTimeScale(), 1);
    cTimer::Reset();
    EXPECT_EQ(cTimer::GetTimeSec() + cTimer::GetTimeMs() + cTimer::GetSystemTimeSec(), 0);
    Frame(500'000);
    EXPECT_EQ(cTimer::GetFrameTimeSec() + cTimer::GetTimeSec(), 0) << "the accumulators start afresh as well";
}

TEST_F(Timer, ScaleMultipliesAllElapsedTime) {
    Frame(0);
    cTimer::TimeScale = 2;
    Frame(500'000);
    EXPECT_FLOAT_EQ(cTimer::GetTimeSec(), 1);
    EXPECT_FLOAT_EQ(cTimer::GetSystemTimeSec(), 1);
    cTimer::TimeScale = -1;
    Frame(500'000);
    EXPECT_FLOAT_EQ(cTimer::GetTimeSec(), 1);
    cTimer::TimeScale = 1;
}

TEST_F(Timer, ClockSetBackGivesNoStepAndTimeResumes) {
    Frame(0);
    Frame(1'000'000);
    Frame(-3600'000'000);
    EXPECT_EQ(cTimer::GetFrameTimeSec(), 0);
    EXPECT_EQ(cTimer::GetSystemFrameTimeSec(), 0);
    Frame(500'000);
    EXPECT_FLOAT_EQ(cTimer::GetTimeSec(), 1.5f);
    EXPECT_FLOAT_EQ(cTimer::GetSystemTimeSec(), 1.5f);
}

TEST_F(Timer, PausesStopWhatTheyShould) {
    constexpr struct {
        const char* Name;
        bool User, System;
        float Game, SystemTime; // after 1 s, 2 s under the pause, 4 s behind it
    } cases[] = {
        {"none", false, false, 7, 7},
        {"user", true, false, 5, 7},
        {"system", false, true, 5, 5},
        {"both", true, true, 5, 5},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        cTimer::Reset();
        Frame(0);
        Frame(1'000'000);
        cPause::SetUserPause(c.User);
        cPause::SetSystemPause(c.System);
        Frame(2'000'000);
        cPause::SetSystemPause(false);
        cPause::SetUserPause(false);
        Frame(4'000'000);
        EXPECT_FLOAT_EQ(cTimer::GetTimeSec(), c.Game);
        EXPECT_FLOAT_EQ(cTimer::GetSystemTimeSec(), c.SystemTime);
    }
}

TEST_F(Timer, EndOfASystemPauseDiscardsWhatNoFrameSaw) {
    Frame(0);
    cPause::SetSystemPause(true);
    m_Clock.Advance(5'000'000);
    cPause::SetSystemPause(false);
    Frame(1'000'000);
    EXPECT_FLOAT_EQ(cTimer::GetSystemTimeSec(), 1);
}

TEST_F(Timer, RateComesFromFullCyclesOfAHundredWithoutThePauses) {
    Frame(0);
    Frame(20'000, 99);
    EXPECT_EQ(cTimer::GetFramesPerSecond(), 0);
    Frame(20'000);
    EXPECT_FLOAT_EQ(cTimer::GetFramesPerSecond(), 50);
    Frame(5'000, 50);
    cPause::SetUserPause(true);
    Frame(1'000'000, 31);
    cPause::SetUserPause(false);
    Frame(5'000, 50);
    EXPECT_FLOAT_EQ(cTimer::GetFramesPerSecond(), 200);
}

TEST_F(Timer, TicksCountFromTheFirstCall) {
    const unsigned int first = cTimer::AcquireClockTicks();
    m_Clock.Advance(65'123'000);
    EXPECT_EQ(cTimer::AcquireClockTicks() - first, 65123u);
}

TEST(TimerTicks, StartAtZero) {
    EXPECT_EQ(s_FirstTicks, 0u);
}

TEST_F(Timer, DateAndTimeTexts) {
    // From `date -u`; the 5th, the 21st and the Sunday are the rows of the two tables that are easy to get wrong.
    constexpr struct {
        long long Seconds;
        const char *Date, *Time;
    } cases[] = {
        {1767621802, "Monday, 05 January 2026", "14:03:22"},
        {1782000000, "Sunday, 21 June 2026", "00:00:00"},
        {946684799, "Friday, 31 December 1999", "23:59:59"},
        {1709197687, "Thursday, 29 February 2024", "09:08:07"},
    };
    setenv("TZ", "UTC", 1);
    tzset();
    for (const auto& c : cases) {
        m_Clock.Set(c.Seconds);
        cStr date = "what stood there before", time = date;
        cTimer::AcquireDateTime(&date, &time);
        EXPECT_STREQ(date, c.Date);
        EXPECT_STREQ(time, c.Time);
        cTimer::Acquire();
        EXPECT_STREQ(cTimer::GetLocalDate(), c.Date);
        EXPECT_STREQ(cTimer::GetLocalTime(), c.Time);
    }
}

TEST_F(Timer, SeriesAverage) {
    cTimer timer(3);
    EXPECT_FALSE(timer.End()) << "not running";
    constexpr struct {
        int Microseconds;
        bool Complete;
        float AverageMs;
    } samples[] = {{10'000, false, 0},  {20'000, false, 0},  {60'000, true, 30},
                   {90'000, false, 30}, {90'000, false, 30}, {90'000, true, 90}};
    for (const auto& s : samples) {
        timer.Begin();
        m_Clock.Advance(s.Microseconds / 2);
        timer.Begin(); // ignored: the sample goes on
        m_Clock.Advance(s.Microseconds - s.Microseconds / 2);
        EXPECT_EQ(timer.End(), s.Complete);
        EXPECT_FALSE(timer.End());
        EXPECT_NEAR(timer.GetAverageMs(), s.AverageMs, 0.001);
        EXPECT_NEAR(timer.GetAverageSec(), s.AverageMs / 1000, 0.000001);
    }
}

} // namespace
