#include "math/cRect.h"

#include <gtest/gtest.h>

namespace trellis {

static void PrintTo(const cRect& r, std::ostream* out) {
    *out << r.x0 << " " << r.y0 << " " << r.x1 << " " << r.y1;
}

namespace {

constexpr cRect s_Box(0, 0, 100, 100);

TEST(Rect, Anchors) {
    constexpr struct {
        int Align;
        cVec2 Point;
    } cases[] = {{0, {0, 80}},    {1, {50, 80}},  {2, {100, 80}}, {3, {0, 0}},  {4, {0, 50}},
                 {5, {50, 50}},   {6, {100, 50}}, {7, {0, 0}},    {8, {0, 20}}, {9, {50, 20}},
                 {10, {100, 20}}, {11, {0, 0}},   {-1, {0, 0}},   {12, {0, 0}}};
    for (const auto& c : cases) {
        EXPECT_EQ(cRect(0, 20, 100, 80).GetPoint(c.Align), c.Point) << c.Align;
    }
}

TEST(Rect, SizesKeepTheAnchor) {
    constexpr struct {
        int Align;
        cRect Wide, High; // after a width, or a height, of 10
    } cases[] = {{0, {0, 0, 10, 100}, {0, 90, 100, 100}},
                 {5, {45, 0, 55, 100}, {0, 45, 100, 55}},
                 {10, {90, 0, 100, 100}, {0, 0, 100, 10}},
                 {3, s_Box, s_Box},
                 {11, s_Box, s_Box},
                 {-4, s_Box, s_Box}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Align);
        cRect wide = s_Box, high = s_Box;
        wide.SetWidth(c.Align, 10);
        high.SetHeight(c.Align, 10);
        EXPECT_EQ(wide, c.Wide);
        EXPECT_EQ(high, c.High);
    }
}

TEST(Rect, Moves) {
    cRect r(0, 0, 10, 20);
    r.AlignPoint(2, 100, 50);
    EXPECT_EQ(r, cRect(90, 30, 100, 50));
    r.AlignPoint(5, s_Box);
    EXPECT_EQ(r, cRect(45, 40, 55, 60));
    r.AlignPoint(7, 0, 0);
    EXPECT_EQ(r, cRect(45, 40, 55, 60)) << "no such anchor";

    constexpr struct {
        const char* Name;
        cRect In, Out;
    } cases[] = {{"inside stays", {1, 2, 3, 4}, {1, 2, 3, 4}},
                 {"out at the right and below", {95, -7, 105, 3}, {90, 0, 100, 10}},
                 {"out at the left and above", {-5, 95, 5, 105}, {0, 90, 10, 100}},
                 {"too wide: flush left", {50, 10, 250, 20}, {0, 10, 200, 20}},
                 {"too high: flush with the top", {0, -10, 10, 140}, {0, -50, 10, 100}}};
    for (const auto& c : cases) {
        cRect moved = c.In;
        moved.AlignInside(s_Box);
        EXPECT_EQ(moved, c.Out) << c.Name;
    }
}

TEST(Rect, InscribedKeepsItsAspect) {
    EXPECT_EQ(cRect::Inscribe({0, 0, 2, 1}, {0, 0, 10, 10}), cRect(0, 2.5f, 10, 7.5f));
    EXPECT_EQ(cRect::Inscribe({5, 5, 6, 9}, {10, 10, 30, 30}), cRect(17.5f, 10, 22.5f, 30));
    EXPECT_EQ(cRect::Inscribe({0, 0, 0, 1}, s_Box), cRect::Zero);
    EXPECT_EQ(cRect::Inscribe(cRect::Empty, s_Box), cRect::Zero);
    EXPECT_EQ(cRect::Empty.Width(), 0);
    EXPECT_EQ(cRect::Empty.Height(), 0);
}

TEST(Rect, DockingTakesTheNearestAnchor) {
    constexpr struct {
        const char* Name;
        cRect R;
        int Align;
    } cases[] = {
        {"top left", {2, 80, 12, 99}, 0},
        {"centre", {44, 45, 54, 55}, 5},
        {"right middle", {85, 41, 95, 61}, 6},
        {"sticking out at the left goes there", {-30, 45, -20, 55}, 4},
        {"larger than the container: gaps are below the centres", {-10, -10, 110, 110}, 10},
        {"bottom and middle tie", {44, 20, 54, 40}, 9}, // bottom gap 20, centres 20
        {"middle and top tie", {44, 60, 54, 80}, 5},    // top gap 20, centres 20
        {"right and centre tie", {60, 45, 80, 55}, 6},  // right gap 20, centres 20
        {"centre and left tie", {20, 45, 40, 55}, 5},   // left gap 20, centres 20
    };
    for (const auto& c : cases) {
        cVec2 point;
        EXPECT_EQ(s_Box.GetDockingAlign(c.R, nullptr, &point), c.Align) << c.Name;
        EXPECT_EQ(point, s_Box.GetPoint(c.Align)) << c.Name;
    }
    EXPECT_EQ(s_Box.GetDockingAlign(cVec2(99, 1), nullptr, nullptr), 10);
}

TEST(Rect, DockingZones) {
    // A quarter is 25; something 40 by 200 leaves 25 - 10 across and nothing up and down.
    const cRect r(0, 0, 40, 200);
    EXPECT_EQ(s_Box.GetDockingRegion(r, 0), cRect(0, 100, 15, 100));
    EXPECT_EQ(s_Box.GetDockingRegion(r, 5), cRect(35, 50, 65, 50));
    EXPECT_EQ(s_Box.GetDockingRegion(r, 10), cRect(85, 0, 100, 0));
    EXPECT_EQ(s_Box.GetDockingRegion(cVec2(1, 1), 4), cRect(0, 25, 25, 75));
    EXPECT_EQ(s_Box.GetDockingRegion(r, 7), cRect::Empty);
    cRect zone;
    const int align = s_Box.GetDockingAlign(cVec2(99, 99), &zone, nullptr);
    EXPECT_EQ(zone, s_Box.GetDockingRegion(cVec2(99, 99), align));
}

} // namespace
} // namespace trellis
