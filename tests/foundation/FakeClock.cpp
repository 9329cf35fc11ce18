#include "FakeClock.h"

#include <sys/time.h>
#include <time.h>

namespace {

long long Now() {
    if (cFakeClock::s_Microseconds >= 0) {
        return cFakeClock::s_Microseconds;
    }
    timespec t = {};
    clock_gettime(CLOCK_REALTIME, &t);
    return t.tv_sec * 1'000'000LL + t.tv_nsec / 1000;
}

} // namespace

// The program's own definitions go ahead of the C library's.
extern "C" int gettimeofday(timeval* t, void*) noexcept {
    t->tv_sec = time_t(Now() / 1'000'000);
    t->tv_usec = suseconds_t(Now() % 1'000'000);
    return 0;
}

extern "C" time_t time(time_t* out) noexcept {
    const auto now = time_t(Now() / 1'000'000);
    if (out) {
        *out = now;
    }
    return now;
}
