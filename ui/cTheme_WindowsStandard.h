// The classic look: flat bevelled surfaces, lines of one pixel, dotted focus, no animation.
#pragma once

#include "ui/cTheme.h"

namespace trellis {

/// How the theme paints a surface. Light falls from the top left.
enum class WindowsStandardFill {
    Flat,     ///< The face alone.
    Raised,   ///< A button.
    Pressed,  ///< A button that is held.
    Sunken,   ///< The frame around the face that a client has.
    Field,    ///< The same around white; around the face when greyed.
    Etched,   ///< A groove around the face.
    Window,   ///< The edge of a form.
    ThinUp,   ///< Raised by one pixel.
    ThinDown, ///< Sunken by one pixel.
    Count
};

/// The small glyphs, 9 by 9 pixels.
enum class WindowsStandardDecal {
    ArrowUp,
    ArrowDown,
    ArrowLeft,
    ArrowRight,
    CheckMark,
    Close,
    Minimize,
    Maximize,
    Restore,
    RestoreUp, ///< Back from minimised.
    Plus,
    Minus,
    Box,
    Dot,
    Grip,
    Dots,
    Count
};

/// What changes a surface's colours; amounts from 0 to 1.
struct WindowsStandardTone {
    float Alpha = 1;
    float Hot = 0;
    float Enabled = 1;
};

class cTheme_WindowsStandard : public cTheme {
public:
    cTheme_WindowsStandard(); ///< Needs a device: loads its fonts and its tool-bar bitmap.
    void Draw(const DrawArgs& args) const override;

    /// The outline of a rectangle, the left and top sides in one colour, the right and bottom ones in another, which
    /// also has the two corners where they meet. Nothing below 2 points a side.
    static void DrawRectangleWindowsStandard(const cRect& rect, const cColor& leftTop, const cColor& rightBottom);
    /// @param rect  rounded to whole pixels
    static void FillRectangleWindowsStandard(const cRect& rect, WindowsStandardFill fill,
                                             const WindowsStandardTone& tone = WindowsStandardTone());
    /// @param center  of the glyph's middle pixel, once rounded down
    static void DrawDecalWindowsStandard(const cVec2& center, WindowsStandardDecal decal, const cColor& color);

    int ToolBarTexture; ///< -1 when there is none.
};

} // namespace trellis
