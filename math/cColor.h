// Colours: four floats red, green, blue, alpha from 0 to 1, and the named colours of CSS Colors Level 3.
#pragma once

#include "math/cVecOps.h"

// clang-format off
// name, 0xRRGGBB; alpha is 1. Green is full green, as Lime is, because interfaces were drawn with it; the green of CSS
// goes by MidGreen.
#define TRELLIS_NAMED_COLORS(X) \
    X(AliceBlue, 0xF0F8FF) X(AntiqueWhite, 0xFAEBD7) X(Aqua, 0x00FFFF) X(Aquamarine, 0x7FFFD4) X(Azure, 0xF0FFFF) \
    X(Beige, 0xF5F5DC) X(Bisque, 0xFFE4C4) X(Black, 0x000000) X(BlanchedAlmond, 0xFFEBCD) X(Blue, 0x0000FF) \
    X(BlueViolet, 0x8A2BE2) X(Brown, 0xA52A2A) X(BurlyWood, 0xDEB887) X(CadetBlue, 0x5F9EA0) \
    X(Chartreuse, 0x7FFF00) X(Chocolate, 0xD2691E) X(Coral, 0xFF7F50) X(CornflowerBlue, 0x6495ED) \
    X(Cornsilk, 0xFFF8DC) X(Crimson, 0xDC143C) X(Cyan, 0x00FFFF) X(DarkBlue, 0x00008B) X(DarkCyan, 0x008B8B) \
    X(DarkGoldenrod, 0xB8860B) X(DarkGray, 0xA9A9A9) X(DarkGreen, 0x006400) X(DarkGrey, 0xA9A9A9) \
    X(DarkKhaki, 0xBDB76B) X(DarkMagenta, 0x8B008B) X(DarkOliveGreen, 0x556B2F) X(DarkOrange, 0xFF8C00) \
    X(DarkOrchid, 0x9932CC) X(DarkRed, 0x8B0000) X(DarkSalmon, 0xE9967A) X(DarkSeaGreen, 0x8FBC8F) \
    X(DarkSlateBlue, 0x483D8B) X(DarkSlateGray, 0x2F4F4F) X(DarkSlateGrey, 0x2F4F4F) X(DarkTurquoise, 0x00CED1) \
    X(DarkViolet, 0x9400D3) X(DeepPink, 0xFF1493) X(DeepSkyBlue, 0x00BFFF) X(DimGray, 0x696969) \
    X(DimGrey, 0x696969) X(DodgerBlue, 0x1E90FF) X(FireBrick, 0xB22222) X(FloralWhite, 0xFFFAF0) \
    X(ForestGreen, 0x228B22) X(Fuchsia, 0xFF00FF) X(Gainsboro, 0xDCDCDC) X(GhostWhite, 0xF8F8FF) X(Gold, 0xFFD700) \
    X(Goldenrod, 0xDAA520) X(Gray, 0x808080) X(Green, 0x00FF00) X(GreenYellow, 0xADFF2F) X(Grey, 0x808080) \
    X(Honeydew, 0xF0FFF0) X(HotPink, 0xFF69B4) X(IndianRed, 0xCD5C5C) X(Indigo, 0x4B0082) X(Ivory, 0xFFFFF0) \
    X(Khaki, 0xF0E68C) X(Lavender, 0xE6E6FA) X(LavenderBlush, 0xFFF0F5) X(LawnGreen, 0x7CFC00) \
    X(LemonChiffon, 0xFFFACD) X(LightBlue, 0xADD8E6) X(LightCoral, 0xF08080) X(LightCyan, 0xE0FFFF) \
    X(LightGoldenrodYellow, 0xFAFAD2) X(LightGray, 0xD3D3D3) X(LightGreen, 0x90EE90) X(LightGrey, 0xD3D3D3) \
    X(LightPink, 0xFFB6C1) X(LightSalmon, 0xFFA07A) X(LightSeaGreen, 0x20B2AA) X(LightSkyBlue, 0x87CEFA) \
    X(LightSlateGray, 0x778899) X(LightSlateGrey, 0x778899) X(LightSteelBlue, 0xB0C4DE) X(LightYellow, 0xFFFFE0) \
    X(Lime, 0x00FF00) X(LimeGreen, 0x32CD32) X(Linen, 0xFAF0E6) X(Magenta, 0xFF00FF) X(Maroon, 0x800000) \
    X(MediumAquamarine, 0x66CDAA) X(MediumBlue, 0x0000CD) X(MediumOrchid, 0xBA55D3) X(MediumPurple, 0x9370DB) \
    X(MediumSeaGreen, 0x3CB371) X(MediumSlateBlue, 0x7B68EE) X(MediumSpringGreen, 0x00FA9A) \
    X(MediumTurquoise, 0x48D1CC) X(MediumVioletRed, 0xC71585) X(MidGreen, 0x008000) X(MidnightBlue, 0x191970) \
    X(MintCream, 0xF5FFFA) X(MistyRose, 0xFFE4E1) X(Moccasin, 0xFFE4B5) X(NavajoWhite, 0xFFDEAD) X(Navy, 0x000080) \
    X(OldLace, 0xFDF5E6) X(Olive, 0x808000) X(OliveDrab, 0x6B8E23) X(Orange, 0xFFA500) X(OrangeRed, 0xFF4500) \
    X(Orchid, 0xDA70D6) X(PaleGoldenrod, 0xEEE8AA) X(PaleGreen, 0x98FB98) X(PaleTurquoise, 0xAFEEEE) \
    X(PaleVioletRed, 0xDB7093) X(PapayaWhip, 0xFFEFD5) X(PeachPuff, 0xFFDAB9) X(Peru, 0xCD853F) X(Pink, 0xFFC0CB) \
    X(Plum, 0xDDA0DD) X(PowderBlue, 0xB0E0E6) X(Purple, 0x800080) X(Red, 0xFF0000) X(RosyBrown, 0xBC8F8F) \
    X(RoyalBlue, 0x4169E1) X(SaddleBrown, 0x8B4513) X(Salmon, 0xFA8072) X(SandyBrown, 0xF4A460) \
    X(SeaGreen, 0x2E8B57) X(Seashell, 0xFFF5EE) X(Sienna, 0xA0522D) X(Silver, 0xC0C0C0) X(SkyBlue, 0x87CEEB) \
    X(SlateBlue, 0x6A5ACD) X(SlateGray, 0x708090) X(SlateGrey, 0x708090) X(Snow, 0xFFFAFA) X(SpringGreen, 0x00FF7F) \
    X(SteelBlue, 0x4682B4) X(Tan, 0xD2B48C) X(Teal, 0x008080) X(Thistle, 0xD8BFD8) X(Tomato, 0xFF6347) \
    X(Turquoise, 0x40E0D0) X(Violet, 0xEE82EE) X(Wheat, 0xF5DEB3) X(White, 0xFFFFFF) X(WhiteSmoke, 0xF5F5F5) \
    X(Yellow, 0xFFFF00) X(YellowGreen, 0x9ACD32)
// clang-format on

namespace trellis {

/// `cColor c;` leaves the channels alone, `cColor()` is zero.
class cColor : public cVecOps<cColor, float> {
public:
    static constexpr int Size = 4;

    constexpr cColor() = default;
    constexpr cColor(float r_, float g_, float b_, float a_ = 1) : r(r_), g(g_), b(b_), a(a_) {}

    /// From 0xRRGGBB, each channel as n / 255.
    static constexpr cColor FromRgb(unsigned int rgb, float alpha = 1) {
        return {float(rgb >> 16 & 255) / 255, float(rgb >> 8 & 255) / 255, float(rgb & 255) / 255, alpha};
    }

    template <class F> static constexpr cColor Map(const cColor& p, F f) { return {f(p.r), f(p.g), f(p.b), f(p.a)}; }
    template <class F> static constexpr cColor Zip(const cColor& p, const cColor& q, F f) {
        return {f(p.r, q.r), f(p.g, q.g), f(p.b, q.b), f(p.a, q.a)};
    }
    template <class F> static constexpr float Sum(const cColor& p, const cColor& q, F f) {
        return f(p.r, q.r) + f(p.g, q.g) + f(p.b, q.b) + f(p.a, q.a);
    }

    /// 0xAABBGGRR: red in the low byte.
    unsigned int ToDword() const {
        return FloatToDword(r) | FloatToDword(g) << 8 | FloatToDword(b) << 16 | FloatToDword(a) << 24;
    }
    cStr ToWebColor() const; ///< "#rrggbb" in lower case, without alpha.

    /// One channel as 0 to 255, rounded half up and clamped; 0 for what is no number.
    static unsigned int FloatToDword(float v) { return v >= 1 ? 255u : v > 0 ? unsigned(v * 255.0f + 0.5f) : 0u; }

    friend constexpr bool operator==(const cColor& p, const cColor& q) = default;

    float& operator[](int i) { return ToPtr()[i]; }
    const float& operator[](int i) const { return ToPtr()[i]; }
    float* ToPtr() { return &r; }
    const float* ToPtr() const { return &r; }

    float r, g, b, a;

    static const cColor Zero;        ///< All channels 0.
    static const cColor Transparent; ///< White with alpha 0.
#define TRELLIS_DECLARE_COLOR(name, rgb) static const cColor name;
    TRELLIS_NAMED_COLORS(TRELLIS_DECLARE_COLOR)
#undef TRELLIS_DECLARE_COLOR
};

inline constexpr cColor cColor::Zero{0, 0, 0, 0};
inline constexpr cColor cColor::Transparent{1, 1, 1, 0};
#define TRELLIS_DEFINE_COLOR(name, rgb) inline constexpr cColor cColor::name = cColor::FromRgb(rgb);
TRELLIS_NAMED_COLORS(TRELLIS_DEFINE_COLOR)
#undef TRELLIS_DEFINE_COLOR
#undef TRELLIS_NAMED_COLORS

} // namespace trellis
