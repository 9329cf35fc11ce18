#include "foundation/cPause.h"

#include "foundation/cAudio.h"
#include "foundation/cTimer.h"
#include "view/cInput.h"

namespace trellis {

namespace {

bool cPause_SystemPause = false;
bool cPause_UserPause = false;

/// Tells the listeners that the total state has changed.
void Notify(bool total) {
    cAudio::SetPause(total);
    if (total) {
        cInput::StopVibrations();
    }
}

} // namespace

bool cPause::GetPause() {
    return cPause_SystemPause || cPause_UserPause;
}

bool cPause::GetUserPause() {
    return cPause_UserPause;
}

bool cPause::GetSystemPause() {
    return cPause_SystemPause;
}

void cPause::SetSystemPause(bool on) {
    const bool before = GetPause();
    if (!on && cPause_SystemPause) {
        cTimer::Acquire(); // while the flag still stands, so that the time of the pause is discarded
    }
    cPause_SystemPause = on;
    if (GetPause() != before) {
        Notify(GetPause());
    }
}

void cPause::SetUserPause(bool on) {
    const bool changed = on != cPause_UserPause;
    cPause_UserPause = on;
    if (changed && !cPause_SystemPause) {
        Notify(on);
    }
}

} // namespace trellis
