#include "foundation/cTimer.h"

#include "foundation/cImmortal.h"
#include "foundation/cPause.h"
#include "view/cInput.h"

#include <sys/time.h>

#include <algorithm>
#include <atomic>
#include <ctime>
#include <numeric>

namespace trellis {

namespace {

constexpr char DaysOfWeek[7][10] = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
constexpr char MonthsOfYear[12][10] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
constexpr int FramesPerCycle = 100;

/// A clock value that other threads read while `Acquire` writes it; they are content with the last frame's.
class Shared {
public:
    constexpr Shared(float value) : m_Value(value) {}
    Shared& operator=(float value) {
        m_Value.store(value, std::memory_order_relaxed);
        return *this;
    }
    operator float() const { return m_Value.load(std::memory_order_relaxed); }

private:
    std::atomic<float> m_Value;
};

constinit Shared cTimer_TimeSec = 0;
constinit Shared cTimer_TimeMs = 0;
constinit double cTimer_DoubleTimeSec = 0;
constinit Shared cTimer_FrameTimeSec = 0;
constinit Shared cTimer_FrameTimeMs = 0;
constinit Shared cTimer_SystemTimeSec = 0;
constinit double cTimer_DoubleSystemTimeSec = 0;
constinit Shared cTimer_SystemFrameTimeSec = 0;
constinit double cTimer_ClockTimeSecPreviousQuery = 0; // 0: none yet
constinit float& cTimer_TimeScale = cTimer::TimeScale;
constinit int cTimer_FpsCycleFrame = -1; // -1: before the first
constinit double cTimer_FpsCycleStartTimeSec = 0;
constinit double cTimer_FpsCyclePrevTimeSec = 0;
constinit Shared cTimer_FramesPerSecond = 0;
constinit cImmortal<cStr> cTimer_LocalDate; // logged by threads that outlive static destruction
constinit cImmortal<cStr> cTimer_LocalTime;

void CountFrame(double t) {
    if (cTimer_FpsCycleFrame == -1) {
        cTimer_FpsCycleFrame = 0;
        cTimer_FpsCycleStartTimeSec = t;
        cTimer_FpsCyclePrevTimeSec = t;
        return;
    }
    if (cPause::GetPause()) { // the start moves along, so that the pause does not count
        cTimer_FpsCycleStartTimeSec = t - (cTimer_FpsCyclePrevTimeSec - cTimer_FpsCycleStartTimeSec);
        cTimer_FpsCyclePrevTimeSec = t;
        return;
    }
    cTimer_FpsCycleFrame++;
    cTimer_FpsCyclePrevTimeSec = t;
    if (cTimer_FpsCycleFrame == FramesPerCycle) {
        cTimer_FramesPerSecond = float(FramesPerCycle / (t - cTimer_FpsCycleStartTimeSec));
        cTimer_FpsCycleFrame = 0;
        cTimer_FpsCycleStartTimeSec = t;
    }
}

} // namespace

constinit float cTimer::TimeScale = 1;

cTimer::cTimer(int samplesPerAverage) : SamplesPerAverage(std::max(samplesPerAverage, 1)) {}

void cTimer::Begin() {
    if (BeginTime != -1) {
        return;
    }
    BeginTime = AcquireClockSeconds();
    if (Samples.IsEmpty()) {
        SeriesBeginTime = BeginTime;
    }
}

bool cTimer::End() {
    if (BeginTime == -1) {
        return false;
    }
    Samples.Add(AcquireClockSeconds() - BeginTime);
    BeginTime = -1;
    if (Samples.Count() < SamplesPerAverage) {
        return false;
    }
    AverageSec = float(std::accumulate(Samples.begin(), Samples.end(), 0.0) / Samples.Count());
    AverageMs = AverageSec * 1000.0f;
    Samples.Clear();
    return true;
}

void cTimer::Acquire() {
    AcquireDateTime(&cTimer_LocalDate.Value, &cTimer_LocalTime.Value);

    const double now = AcquireClockSeconds();
    const bool afresh = cTimer_ClockTimeSecPreviousQuery == 0 || cPause::GetSystemPause();
    const double previous = afresh ? now : cTimer_ClockTimeSecPreviousQuery;
    const double delta = (now - previous) * cTimer_TimeScale;
    cTimer_ClockTimeSecPreviousQuery = now; // also after the clock was set back: the next step starts from here

    const double systemStep = std::max(delta, 0.0);
    cTimer_SystemFrameTimeSec = float(systemStep);
    cTimer_DoubleSystemTimeSec += systemStep;
    cTimer_SystemTimeSec = float(cTimer_DoubleSystemTimeSec);

    const double step = cPause::GetPause() ? 0.0 : systemStep;
    cTimer_FrameTimeSec = float(step);
    cTimer_FrameTimeMs = float(step * 1000.0);
    cTimer_DoubleTimeSec += step;
    const float seconds = float(cTimer_DoubleTimeSec);
    cTimer_TimeSec = seconds;
    cTimer_TimeMs = seconds * 1000.0f; // in float: a host's stored time stamps have its steps

    CountFrame(AcquireClockSeconds());
}

void cTimer::Reset() {
    cTimer_TimeSec = 0;
    cTimer_TimeMs = 0;
    cTimer_DoubleTimeSec = 0;
    cTimer_FrameTimeSec = 0;
    cTimer_FrameTimeMs = 0;
    cTimer_SystemTimeSec = 0;
    cTimer_DoubleSystemTimeSec = 0;
    cTimer_SystemFrameTimeSec = 0;
    cTimer_ClockTimeSecPreviousQuery = 0;
    cTimer_FpsCycleFrame = -1;
    cTimer_FpsCycleStartTimeSec = 0;
    cTimer_FpsCyclePrevTimeSec = 0;
    cTimer_FramesPerSecond = 0;
    cInput::StopVibrations();
}

float cTimer::GetTimeSec() {
    return cTimer_TimeSec;
}
float cTimer::GetTimeMs() {
    return cTimer_TimeMs;
}
float cTimer::GetFrameTimeSec() {
    return cTimer_FrameTimeSec;
}
float cTimer::GetFrameTimeMs() {
    return cTimer_FrameTimeMs;
}
float cTimer::GetSystemTimeSec() {
    return cTimer_SystemTimeSec;
}
float cTimer::GetSystemFrameTimeSec() {
    return cTimer_SystemFrameTimeSec;
}
float cTimer::GetFramesPerSecond() {
    return cTimer_FramesPerSecond;
}
float cTimer::GetTimeScale() {
    return cTimer_TimeScale;
}
const cStr& cTimer::GetLocalDate() {
    return cTimer_LocalDate.Value;
}
const cStr& cTimer::GetLocalTime() {
    return cTimer_LocalTime.Value;
}

double cTimer::AcquireClockSeconds() {
    timeval t;
    gettimeofday(&t, nullptr);
    return double(t.tv_sec) + double(t.tv_usec) * 0.000001;
}

unsigned int cTimer::AcquireClockTicks() {
    timeval t;
    gettimeofday(&t, nullptr);
    const long long now = t.tv_sec * 1000000LL + t.tv_usec; // whole microseconds: doubles would lose the last tick
    static const long long first = now;
    return (unsigned int)((now - first) / 1000);
}

void cTimer::AcquireDateTime(cStr* date, cStr* time) {
    const time_t now = ::time(nullptr);
    tm local = {};
    tzset(); // localtime_r alone would keep the zone of its first call
    localtime_r(&now, &local);

    time->Clear();
    for (const int field : {local.tm_hour, local.tm_min, local.tm_sec}) {
        if (!time->IsEmpty()) {
            time->Append(':');
        }
        time->Append(char('0' + field / 10));
        time->Append(char('0' + field % 10));
    }
    const int day = local.tm_wday == 0 ? 6 : local.tm_wday - 1; // the table begins with Monday
    *date = cStr::Format("%s, %d%d %s %d", DaysOfWeek[day], local.tm_mday / 10, local.tm_mday % 10,
                         MonthsOfYear[local.tm_mon], local.tm_year + 1900);
}

} // namespace trellis
