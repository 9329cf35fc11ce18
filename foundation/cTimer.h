// The process's clock, advanced by one Acquire a frame, and a small profiling timer.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

namespace trellis {

/// The static half is the clock: game time stops during pauses, system time stops during a system pause alone.
/// Readers see what the last `Acquire` left and may be one frame behind; `Acquire` itself is not thread-safe, and in a
/// process with several threads each caller holds a mutex around it.
///
/// An instance measures the average duration of a stretch of code over a series of samples; it belongs to one thread.
class cTimer {
public:
    /// @param samplesPerAverage  length of a series; values below 1 count as 1
    explicit cTimer(int samplesPerAverage);

    void Begin(); ///< Starts a sample; ignored while one is running.

    /// Ends a sample.
    ///
    /// @return true when it completed a series, and the averages are new
    bool End();

    float GetAverageMs() const { return AverageMs; }
    float GetAverageSec() const { return AverageSec; }

    /// Reads the wall clock and advances everything below. A clock that was set back gives a step of 0.
    static void Acquire();

    /// All times and the rate to 0 and the frame counting to its start; the time scale stays.
    static void Reset();

    static float GetTimeSec();
    /// A float of milliseconds: past 2^24 ms (about 4.66 hours) it steps by more than 1.
    static float GetTimeMs();
    static float GetFrameTimeSec();
    static float GetFrameTimeMs();
    static float GetSystemTimeSec();
    static float GetSystemFrameTimeSec();
    static float GetFramesPerSecond(); ///< Over the last full cycle of 100 frames; 0 before the first.
    static float GetTimeScale();

    /// Multiplier on all elapsed time; a negative one stops it. Set by the thread that calls `Acquire`.
    static float TimeScale;

    static const cStr& GetLocalDate(); ///< As "Monday, 05 January 2026"; rewritten by the next `Acquire`.
    static const cStr& GetLocalTime(); ///< As "14:03:22"; rewritten by the next `Acquire`.

    static double AcquireClockSeconds(); ///< Wall clock, seconds since the epoch.

    /// Milliseconds since the first call of this function, which returns 0.
    static unsigned int AcquireClockTicks();

    /// The present local date and time in the two forms above.
    static void AcquireDateTime(cStr* date, cStr* time);

private:
    float AverageMs = 0;
    float AverageSec = 0;
    cList<double> Samples; // seconds
    double BeginTime = -1; // -1 when not running
    double SeriesBeginTime = 0;
    int SamplesPerAverage;
};

} // namespace trellis
