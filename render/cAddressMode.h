// What a texture shows outside its coordinates from 0 to 1.
#pragma once

namespace trellis {

class cAddressMode {
public:
    enum Enum : int { Wrap, Clamp, Mirror, Count };

    static const char* ToString(int mode) { return s_Names[mode]; } ///< The index is trusted.

private:
    static constexpr const char* s_Names[Count] = {"Wrap", "Clamp", "Mirror"};
};

} // namespace trellis
