// A wall clock that a test sets by hand: while one lives, gettimeofday and time answer from it.
#pragma once

class cFakeClock {
public:
    explicit cFakeClock(long long seconds = 1'000'000'000) { Set(seconds); }
    ~cFakeClock() { s_Microseconds = -1; }
    cFakeClock(const cFakeClock&) = delete;
    cFakeClock& operator=(const cFakeClock&) = delete;

    void Set(long long seconds) { s_Microseconds = seconds * 1'000'000; }
    void Advance(long long microseconds) { s_Microseconds += microseconds; }

    static inline long long s_Microseconds = -1; ///< Since the epoch; -1 lets the real clock through.
};
