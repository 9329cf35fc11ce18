// What programs without a window share: the software device, a clock of 60 frames a second, and a script of input.
#pragma once

#include "host/InputScript.h"
#include "math/cColor.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cTheme.h"
#include "view/cViewer.h"

namespace trellis {

class cSoftwareDevice;

/// One in a process, on the stack of `main`.
class ScriptedHost {
public:
    explicit ScriptedHost(const char* dataFolder); ///< Fonts/ and Textures/ are there.
    ~ScriptedHost();

    /// Plays a script and saves its pictures. All widgets are freed at the end.
    ///
    /// @param opened  called when the script has set the size of the screen first
    /// @return false when the device, the script or a picture failed; a sentence has gone to the standard error
    bool Play(const char* scriptPn, const char* folder, const std::function<void()>& opened);

    cColor Background{0.25f, 0.35f, 0.45f, 1};
    cViewer Viewer;

private:
    void Resize(int width, int height);
    void Frame();

    bool m_IsReady;
    cFakeClock m_Clock;
};

} // namespace trellis
