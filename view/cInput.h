// Input devices: vibration and the pen tablet.
#pragma once

namespace trellis {

class cInput {
public:
    static void StopVibrations(); ///< Nothing to stop without motors.
};

} // namespace trellis
