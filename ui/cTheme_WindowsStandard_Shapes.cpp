// Bevels and glyphs of the classic look.
#include "mesh/cVertex.h"
#include "render/cRender.h"
#include "ui/cTheme_WindowsStandard.h"
#include "ui/cTheme_WindowsStandard_Colors.h"

#include <cmath>
#include <iterator>

namespace trellis {

using namespace WindowsStandardColors;

namespace {

using Vertex = cVertex::PositionColored;

struct Bevel {
    int Lines;
    cColor OuterLeftTop, OuterRightBottom, InnerLeftTop, InnerRightBottom, Ground, GreyGround;
};
constexpr Bevel s_Bevels[] = {
    {0, Face, Face, Face, Face, Face, Face},           // Flat
    {2, Light, DarkShadow, Face, Shadow, Face, Face},  // Raised
    {2, DarkShadow, Light, Shadow, Face, Face, Face},  // Pressed
    {2, Shadow, Light, DarkShadow, Face, Face, Face},  // Sunken
    {2, Shadow, Light, DarkShadow, Face, Field, Face}, // Field
    {2, Shadow, Light, Light, Shadow, Face, Face},     // Etched
    {2, Face, DarkShadow, Light, Shadow, Face, Face},  // Window
    {1, Light, Shadow, Face, Face, Face, Face},        // ThinUp
    {1, Shadow, Light, Face, Face, Face, Face},        // ThinDown
};
static_assert(std::size(s_Bevels) == size_t(WindowsStandardFill::Count), "fill added without its row");

constexpr float HotLight = 0.45f; // of what the face is lit up by under the hand

float Round(float v) {
    return std::floor(v + 0.5f);
}

// ---- Glyphs

constexpr int DecalSide = 9, DecalMiddle = DecalSide / 2;

// clang-format off
constexpr const char* s_DecalRows[][DecalSide] = {
    {".........", ".........", ".........", "....#....", "...###...", "..#####..", ".#######.", ".........", "........."}, // ArrowUp
    {".........", ".........", ".........", ".#######.", "..#####..", "...###...", "....#....", ".........", "........."}, // ArrowDown
    {".........", "......#..", ".....##..", "....###..", "...####..", "....###..", ".....##..", "......#..", "........."}, // ArrowLeft
    {".........", "...#.....", "...##....", "...###...", "...####..", "...###...", "...##....", "...#.....", "........."}, // ArrowRight
    {".........", ".......#.", "......##.", ".#...###.", ".##.###..", ".#####...", "..###....", "...#.....", "........."}, // CheckMark
    {".........", ".##....##", "..##..##.", "...####..", "....##...", "...####..", "..##..##.", ".##....##", "........."}, // Close
    {".........", ".........", ".........", ".........", ".........", ".........", ".######..", ".######..", "........."}, // Minimize
    {"#########", "#########", "#.......#", "#.......#", "#.......#", "#.......#", "#.......#", "#.......#", "#########"}, // Maximize
    {"..######.", "..######.", "..#....#.", "######.#.", "######.#.", "#....###.", "#....#...", "#....#...", "######..."}, // Restore
    {".........", "....#....", "...###...", "..#####..", ".#######.", ".........", ".#######.", ".#######.", "........."}, // RestoreUp
    {".........", ".........", "....#....", "....#....", "..#####..", "....#....", "....#....", ".........", "........."}, // Plus
    {".........", ".........", ".........", ".........", "..#####..", ".........", ".........", ".........", "........."}, // Minus
    {"#########", "#.......#", "#.......#", "#.......#", "#.......#", "#.......#", "#.......#", "#.......#", "#########"}, // Box
    {".........", ".........", "...###...", "..#####..", "..#####..", "..#####..", "...###...", ".........", "........."}, // Dot
    {"........#", ".......#.", "......#..", ".....#..#", "....#..#.", "...#..#..", "..#..#..#", ".#..#..#.", "#..#..#.."}, // Grip
    {".........", ".........", ".........", ".........", ".........", ".##.##.##", ".##.##.##", ".........", "........."}, // Dots
};
// clang-format on
static_assert(std::size(s_DecalRows) == size_t(WindowsStandardDecal::Count), "decal added without its rows");

/// The lines of a glyph, relative to its middle pixel.
struct DecalLines {
    static constexpr int MaxLines = 48;

    struct Line {
        signed char X0, Y0, X1, Y1;
    };
    Line Lines[MaxLines];
    int Count = 0;

    /// A pixel between blanks. Its line runs on into a pixel that is set as well: devices leave out lines of no length.
    template <class IsSet, class Add> static void AddPixel(IsSet isSet, Add add, int x, int y) {
        for (int dy : {1, -1}) {
            for (int dx : {0, 1, -1}) {
                if (isSet(x + dx, y + dy)) {
                    add(x, y, x + dx, y + dy);
                    return;
                }
            }
        }
    }

    void Build(const char* const rows[DecalSide]) {
        const auto isSet = [rows](int x, int y) {
            return x >= 0 && x < DecalSide && y >= 0 && y < DecalSide && rows[y][x] == '#';
        };
        const auto add = [this](int x0, int y0, int x1, int y1) {
            Lines[Count++] = {static_cast<signed char>(x0 - DecalMiddle), static_cast<signed char>(DecalMiddle - y0),
                              static_cast<signed char>(x1 - DecalMiddle), static_cast<signed char>(DecalMiddle - y1)};
        };
        for (int y = 0; y < DecalSide; y++) {
            for (int x = 0; x < DecalSide; x++) {
                if (isSet(x, y) && !isSet(x - 1, y)) {
                    int end = x;
                    while (isSet(end + 1, y)) {
                        end++;
                    }
                    if (end > x) {
                        add(x, y, end, y);
                    } else {
                        AddPixel(isSet, add, x, y);
                    }
                }
            }
        }
    }
};

const DecalLines& LinesOf(WindowsStandardDecal decal) {
    static DecalLines s_Decals[size_t(WindowsStandardDecal::Count)];
    static const bool s_IsBuilt = [] {
        for (size_t i = 0; i < std::size(s_Decals); i++) {
            s_Decals[i].Build(s_DecalRows[i]);
        }
        return true;
    }();
    (void)s_IsBuilt;
    return s_Decals[size_t(decal)];
}

} // namespace

void cTheme_WindowsStandard::DrawRectangleWindowsStandard(const cRect& rect, const cColor& leftTop,
                                                          const cColor& rightBottom) {
    if (rect.Width() < 2 || rect.Height() < 2) {
        return;
    }
    const unsigned int a = leftTop.ToDword(), b = rightBottom.ToDword();
    const float right = rect.x1 - 1, top = rect.y1 - 1, end = (cRender::LinesLackTheirEnd() ? 1.0f : 0.0f);
    const Vertex vertices[8] = {
        {cVec3(rect.x0, rect.y0 + 1, 0), a}, {cVec3(rect.x0, top + end, 0), a},   // left
        {cVec3(rect.x0 + 1, top, 0), a},     {cVec3(right - 1 + end, top, 0), a}, // top
        {cVec3(rect.x0, rect.y0, 0), b},     {cVec3(right + end, rect.y0, 0), b}, // bottom
        {cVec3(right, rect.y0 + 1, 0), b},   {cVec3(right, top + end, 0), b},     // right
    };
    // A side of two pixels leaves no top line between its corners.
    const bool hasTop = right - rect.x0 > 1;
    if (hasTop) {
        cRender::DrawLines(vertices, 8);
    } else {
        cRender::DrawLines(vertices, 2);
        cRender::DrawLines(vertices + 4, 4);
    }
}

void cTheme_WindowsStandard::FillRectangleWindowsStandard(const cRect& rect, WindowsStandardFill fill,
                                                          const WindowsStandardTone& tone) {
    if (size_t(fill) >= std::size(s_Bevels)) {
        return;
    }
    const Bevel& bevel = s_Bevels[size_t(fill)];
    cRect r(Round(rect.x0), Round(rect.y0), Round(rect.x1), Round(rect.y1));
    const auto shrink = [&r] { r = {r.x0 + 1, r.y0 + 1, r.x1 - 1, r.y1 - 1}; };
    if (bevel.Lines > 0) {
        DrawRectangleWindowsStandard(r, Fade(bevel.OuterLeftTop, tone.Alpha), Fade(bevel.OuterRightBottom, tone.Alpha));
        shrink();
    }
    if (bevel.Lines > 1) {
        DrawRectangleWindowsStandard(r, Fade(bevel.InnerLeftTop, tone.Alpha), Fade(bevel.InnerRightBottom, tone.Alpha));
        shrink();
    }
    const cColor ground = Mix(bevel.GreyGround, bevel.Ground, tone.Enabled);
    cRender::FillRectangleSolid(r, Fade(Mix(ground, Light, tone.Hot * HotLight), tone.Alpha));
}

void cTheme_WindowsStandard::DrawDecalWindowsStandard(const cVec2& center, WindowsStandardDecal decal,
                                                      const cColor& color) {
    if (size_t(decal) >= std::size(s_DecalRows)) {
        return;
    }
    const DecalLines& lines = LinesOf(decal);
    Vertex vertices[2 * DecalLines::MaxLines];
    const unsigned int packed = color.ToDword();
    const float x = std::floor(center.x), y = std::floor(center.y), end = (cRender::LinesLackTheirEnd() ? 1.0f : 0.0f);
    for (int i = 0; i < lines.Count; i++) {
        const DecalLines::Line& line = lines.Lines[i];
        vertices[2 * i] = {cVec3(x + line.X0, y + line.Y0, 0), packed};
        vertices[2 * i + 1] = {cVec3(x + line.X1 + (line.Y0 == line.Y1 ? end : 0), y + line.Y1, 0), packed};
    }
    cRender::DrawLines(vertices, 2 * lines.Count);
}

} // namespace trellis
