// Rectangle with Y upward: the layout unit of the widgets, with its grid of anchors and the docking geometry of forms.
//
//     0  1  2        an anchor is row * 4 + column; 3 and 7 are not used
//     4  5  6
//     8  9  10
#pragma once

#include "math/cVec2.h"

namespace trellis {

/// Left x0, bottom y0, right x1, top y1. `cRect r;` leaves the values alone, `cRect()` is zero.
class cRect {
public:
    enum Align : int {
        LeftTop = 0,
        CenterTop = 1,
        RightTop = 2,
        LeftMiddle = 4,
        CenterMiddle = 5,
        RightMiddle = 6,
        LeftBottom = 8,
        CenterBottom = 9,
        RightBottom = 10
    };

    constexpr cRect() = default;
    constexpr cRect(float x0_, float y0_, float x1_, float y1_) : x0(x0_), y0(y0_), x1(x1_), y1(y1_) {}

    /// Position of an anchor; (0, 0) for a number that is none.
    cVec2 GetPoint(int align) const;

    /// Set a side while the anchor stays where it is: the opposite edge moves, or both about the middle. A number that
    /// is no anchor changes nothing.
    void SetWidth(int align, float w);
    void SetHeight(int align, float h);

    /// Moves the rectangle so that its anchor lands on the point, or on the same anchor of `r`.
    void AlignPoint(int align, float x, float y);
    void AlignPoint(int align, const cRect& r);

    /// Moves the rectangle into `r`. One that is too large is flush with the left and the top.
    void AlignInside(const cRect& r);

    /// `inner` scaled, its aspect kept, to the largest that fits into `outer`, and centred there; `Zero` when it has no
    /// area.
    static cRect Inscribe(const cRect& inner, const cRect& outer);

    /// The anchor of this container that `r` lies nearest to, by gaps between edges (negative where `r` sticks out) and
    /// the distance of the centres. Of equals the bottom goes before the middle and the middle before the top; the
    /// right before the centre and the centre before the left.
    ///
    /// @param zone   receives the container's zone of that anchor for something of r's size; may be null
    /// @param point  receives the container's anchor; may be null
    int GetDockingAlign(const cRect& r, cRect* zone, cVec2* point) const;
    int GetDockingAlign(const cVec2& p, cRect* zone, cVec2* point) const;
    cRect GetDockingRegion(const cRect& r, int align) const; ///< That zone; `Empty` for a number that is no anchor.
    cRect GetDockingRegion(const cVec2& p, int align) const;

    constexpr bool IsEmpty() const { return !(x0 <= x1 && y0 <= y1); }
    constexpr float Width() const { return IsEmpty() ? 0 : x1 - x0; }
    constexpr float Height() const { return IsEmpty() ? 0 : y1 - y0; }
    constexpr cVec2 Size() const { return {Width(), Height()}; }
    constexpr cVec2 Center() const { return {(x0 + x1) * 0.5f, (y0 + y1) * 0.5f}; }
    constexpr bool Contains(const cVec2& p) const { return x0 <= p.x && p.x < x1 && y0 <= p.y && p.y < y1; }
    constexpr void Translate(const cVec2& by) { *this = {x0 + by.x, y0 + by.y, x1 + by.x, y1 + by.y}; }

    static constexpr bool IsAnchor(int align) { return align >= 0 && align <= 10 && (align & 3) != 3; }
    static constexpr cRect Intersect(const cRect& a, const cRect& b) {
        return {a.x0 > b.x0 ? a.x0 : b.x0, a.y0 > b.y0 ? a.y0 : b.y0, a.x1 < b.x1 ? a.x1 : b.x1,
                a.y1 < b.y1 ? a.y1 : b.y1};
    }

    friend constexpr bool operator==(const cRect& a, const cRect& b) = default;

    float x0, y0, x1, y1;

    static const cRect Zero, Unit;
    static const cRect Empty; ///< Inverted: nothing, or no clip.
};

inline constexpr cRect cRect::Zero{0, 0, 0, 0};
inline constexpr cRect cRect::Unit{0, 0, 1, 1};
inline constexpr cRect cRect::Empty{cMath::FloatMaxValue, cMath::FloatMaxValue, -cMath::FloatMaxValue,
                                    -cMath::FloatMaxValue};

} // namespace trellis
