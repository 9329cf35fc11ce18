// The two pause flags that the clock obeys. Audio hears of the total state, vibrations stop when it goes on.
#pragma once

namespace trellis {

class cPause {
public:
    static bool GetPause(); ///< Either flag.
    static bool GetUserPause();
    static bool GetSystemPause();

    /// Stops game and system time. Turning it off discards the time that passed meanwhile.
    static void SetSystemPause(bool on);

    /// Stops game time alone.
    static void SetUserPause(bool on);
};

} // namespace trellis
