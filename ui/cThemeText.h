// Text as the themes need it: cut where there is no room, measured up to a place in it.
#pragma once

namespace trellis {

/// Bad bytes count as a character each, and nothing that follows them is shown.
struct cThemeText {
    static float Width(int font, const char* text);

    /// Width of what stands in front of a UTF-16 index.
    static float WidthBefore(int font, const char* text, int index);

    /// The text, or as much of it as has room in front of three dots; good until the next call of these functions.
    ///
    /// @return null when not even the dots have room
    static const char* Shortened(int font, const char* text, float room);
};

} // namespace trellis
