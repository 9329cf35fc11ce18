// Settings of the application: so far, how the device is held.
#pragma once

namespace trellis {

class cSettings {
public:
    bool HomeButtonOnTheRight = false;
    bool HomeButtonOnTheLeft = false;
};

extern cSettings g_Settings;

} // namespace trellis
