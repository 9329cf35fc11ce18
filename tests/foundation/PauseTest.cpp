#include "foundation/cPause.h"

#include "foundation/cAudio.h"
#include "foundation/cTimer.h"

#include <gtest/gtest.h>

using namespace trellis;

namespace {

TEST(Pause, AudioHearsOfTheTotalStateOnly) {
    // One walk through the states; `Told` sets a false state first, so that hearing nothing shows.
    constexpr struct {
        const char* Name;
        bool System, On;
        bool Total, Told;
    } steps[] = {
        {"user on", false, true, true, true},
        {"user on again", false, true, true, false},
        {"system on over user", true, true, true, false},
        {"user off under system", false, false, true, false},
        {"user on under system", false, true, true, false},
        {"system off over user", true, false, true, false},
        {"user off", false, false, false, true},
        {"user off again", false, false, false, false},
        {"system on", true, true, true, true},
        {"system on again", true, true, true, false},
        {"system off", true, false, false, true},
    };
    for (const auto& s : steps) {
        SCOPED_TRACE(s.Name);
        cAudio::SetPause(!s.Total); // wrong on purpose: only a notification puts it right
        (s.System ? cPause::SetSystemPause : cPause::SetUserPause)(s.On);
        EXPECT_EQ(cPause::GetPause(), s.Total);
        EXPECT_EQ(s.System ? cPause::GetSystemPause() : cPause::GetUserPause(), s.On);
        EXPECT_EQ(cAudio::GetPause(), s.Told ? s.Total : !s.Total);
    }
    cTimer::Reset();
}

} // namespace
