// How a device without a keyboard is held.
#pragma once

namespace trellis {

/// The settings say it, where a program has them; without them it is upright. So the input and the lenses do not bring
/// the settings, and with them all forms, into every program.
class cHomeButton {
public:
    static bool IsOnTheRight() { return *s_OnTheRight; }
    static bool IsOnTheLeft() { return *s_OnTheLeft; }

    /// @param onTheRight, onTheLeft  outlive everything
    static void SetSource(const bool* onTheRight, const bool* onTheLeft) {
        s_OnTheRight = onTheRight;
        s_OnTheLeft = onTheLeft;
    }

private:
    static constexpr bool No = false;
    static inline constinit const bool *s_OnTheRight = &No, *s_OnTheLeft = &No;
};

} // namespace trellis
