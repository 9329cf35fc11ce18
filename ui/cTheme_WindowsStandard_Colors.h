// The colours of the classic look.
#pragma once

#include "math/cColor.h"

namespace trellis::WindowsStandardColors {

inline constexpr cColor Face = cColor::FromRgb(0xD4D0C8);
inline constexpr cColor Light = cColor::White;
inline constexpr cColor Shadow = cColor::FromRgb(0x808080);
inline constexpr cColor DarkShadow = cColor::FromRgb(0x404040);
inline constexpr cColor Field = cColor::White;
inline constexpr cColor Text = cColor::Black;
inline constexpr cColor GreyText = Shadow;
inline constexpr cColor Selection = cColor::FromRgb(0x0A246A);
inline constexpr cColor SelectedText = cColor::White;
inline constexpr cColor Title = Selection, TitleEnd = cColor::FromRgb(0xA6CAF0);
inline constexpr cColor IdleTitle = cColor::FromRgb(0x808080), IdleTitleEnd = cColor::FromRgb(0xC0C0C0);
inline constexpr cColor IdleTitleText = Face;
inline constexpr cColor TipField = cColor::FromRgb(0xFFFFE1);

inline constexpr cColor Mix(const cColor& a, const cColor& b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, a.a + (b.a - a.a) * t};
}
inline constexpr cColor Fade(const cColor& c, float alpha) {
    return {c.r, c.g, c.b, c.a * alpha};
}

} // namespace trellis::WindowsStandardColors
