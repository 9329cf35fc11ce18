// Lines, outlines and plain fills of the interface. Each call sets what it needs and issues one draw of the device.
#include "foundation/cImmortal.h"
#include "math/cRect.h"
#include "render/cRender.h"
#include "render/cRender_Internal.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

using Vertex = cVertex::PositionColored;

constinit cImmortal<cList<Vertex>> s_VertexStore;
constinit cImmortal<cList<int>> s_IndexStore;
constinit cList<Vertex>& s_Vertices = s_VertexStore.Value; // storage is kept from call to call
constinit cList<int>& s_Indices = s_IndexStore.Value;

int LinesPointsShader() {
    static const int s_ID = cRender::GetShaderID("LinesPointsUI", Vertex::FormatID);
    return s_ID;
}

int SolidShader() {
    static const int s_ID = cRender::GetShaderID("SolidUI", Vertex::FormatID);
    return s_ID;
}

int ColoredShader() { // for shapes in the world
    static const int s_ID = cRender::GetShaderID("Colored", Vertex::FormatID);
    return s_ID;
}

cRect RectOf(int x0, int y0, int x1, int y1) {
    return {float(x0), float(y0), float(x1), float(y1)};
}

/// The pixels of an outline whose coordinates add up to an even number. What is beyond any screen is cut off.
void AddDots(const cRect& rect, unsigned int color) {
    const auto pixel = [](float v) { return int(std::floor(std::clamp(v, -32768.0f, 32768.0f))); };
    const int x0 = pixel(rect.x0), x1 = pixel(rect.x1) - 1;
    const int y0 = pixel(rect.y0), y1 = pixel(rect.y1) - 1;
    if (x1 < x0 || y1 < y0) {
        return;
    }
    const auto add = [color](int x, int y) {
        if (((x + y) & 1) == 0) {
            s_Vertices.Add({cVec3(float(x), float(y), 0), color});
        }
    };
    for (int x = x0; x <= x1; x++) {
        add(x, y0);
        if (y1 > y0) {
            add(x, y1);
        }
    }
    for (int y = y0 + 1; y < y1; y++) {
        add(x0, y);
        if (x1 > x0) {
            add(x1, y);
        }
    }
}

/// Puts a quad into the scratch lists for each rectangle that is not empty.
///
/// @param colors  packed, of the corners left-top, left-bottom, right-bottom, right-top
/// @return whether there is anything to draw
bool BuildQuads(const cRect* rects, int count, const unsigned int colors[4], const int quad[6]) {
    s_Vertices.Clear();
    s_Indices.Clear();
    for (int i = 0; i < count; i++) {
        if (rects[i].IsEmpty()) {
            continue;
        }
        Vertex* corners = cRender_AddQuad(&s_Vertices, &s_Indices, quad);
        cRender_SetQuad(corners, rects[i]);
        for (int k = 0; k < 4; k++) {
            corners[k].Color = colors[k];
        }
    }
    return !s_Vertices.IsEmpty();
}

void DrawScratch(int shader) {
    cRender_SetShapeState(shader);
    cRender::DrawIndexed(cTopology::TriangleList, s_Vertices.Data(), s_Vertices.Count(), s_Indices.Data(),
                         s_Indices.Count(), 4);
}

} // namespace

void cRender_SetShapeState(int shader) {
    static const int s_Blend =
        cRender::GetBlendStateID(cBlendFactor::SrcAlpha, cBlendFactor::OneMinusSrcAlpha, cBlendMode::Add, 15);
    cRender::SetBlendState(s_Blend);
    cRender::SetDepthState(-1);
    cRender::SetCullMode(cCullMode::None);
    cRender::SetShader(shader);
}

// ---- Lines

bool cRender::LinesLackTheirEnd() {
    static const bool s_IsRadeon = GetVendor().IndexOf("RADEON") != -1;
    return GetType() == 1 || s_IsRadeon;
}

void cRender::DrawLines(const Vertex* vertices, int count) {
    cRender_SetShapeState(LinesPointsShader());
    DrawArrays(cTopology::LineList, vertices, count);
}

void cRender::DrawLine(int x0, int y0, int x1, int y1, const cColor& color) {
    DrawLine(float(x0), float(y0), float(x1), float(y1), color);
}

void cRender::DrawLine(float x0, float y0, float x1, float y1, const cColor& color) {
    const unsigned int packed = color.ToDword();
    const Vertex vertices[2] = {{cVec3(x0, y0, 0), packed}, {cVec3(x1, y1, 0), packed}};
    DrawLines(vertices, 2);
}

void cRender::DrawLine(const cVec2& a, const cVec2& b, const cColor& color) {
    DrawLine(a.x, a.y, b.x, b.y, color);
}

void cRender::DrawLine(const cVec3& a, const cVec3& b, const cColor& color) {
    const unsigned int packed = color.ToDword();
    const Vertex vertices[2] = {{a, packed}, {b, packed}};
    cRender_SetShapeState(ColoredShader());
    DrawArrays(cTopology::LineList, vertices, 2);
}

void cRender::DrawRectangle(int x0, int y0, int x1, int y1, const cColor& color) {
    DrawRectangle(RectOf(x0, y0, x1, y1), color);
}

void cRender::DrawRectangle(float x0, float y0, float x1, float y1, const cColor& color) {
    DrawRectangle(cRect(x0, y0, x1, y1), color);
}

void cRender::DrawRectangle(const cRect& rect, const cColor& color) {
    const float right = rect.x1 - 1, top = rect.y1 - 1;
    if (rect.IsEmpty() || right < rect.x0 || top < rect.y0) {
        return;
    }
    const unsigned int packed = color.ToDword();
    const float lack = LinesLackTheirEnd() ? 1 : 0;
    // The corners belong to the upright lines alone, and lines that would fall together are left out: what is
    // translucent is blended once.
    const float from = rect.x0 + 1, to = right - 1 + lack;
    const Vertex vertices[8] = {
        {cVec3(rect.x0, rect.y0, 0), packed}, {cVec3(rect.x0, top + lack, 0), packed}, // left
        {cVec3(right, rect.y0, 0), packed},   {cVec3(right, top + lack, 0), packed},   // right
        {cVec3(from, rect.y0, 0), packed},    {cVec3(to, rect.y0, 0), packed},         // bottom
        {cVec3(from, top, 0), packed},        {cVec3(to, top, 0), packed},             // top
    };
    const bool isFlat = top - rect.y0 < 1, isThin = right - rect.x0 < 1;
    const int lines = isThin ? 1 : right - 1 < from ? 2 : isFlat ? 3 : 4;
    DrawLines(vertices, lines * 2);
}

void cRender::DrawRectangleDot(const cRect& rect, const cColor& color) {
    DrawRectanglesDot(&rect, 1, color);
}

void cRender::DrawRectanglesDot(const cRect* rects, int count, const cColor& color) {
    s_Vertices.Clear();
    const unsigned int packed = color.ToDword();
    for (int i = 0; i < count; i++) {
        if (!rects[i].IsEmpty()) {
            AddDots(rects[i], packed);
        }
    }
    if (!s_Vertices.IsEmpty()) {
        cRender_SetShapeState(LinesPointsShader());
        DrawArrays(cTopology::Points, s_Vertices.Data(), s_Vertices.Count());
    }
}

// ---- Plain rectangles

void cRender::FillRectangleSolid(const cRect& rect, const cColor& color) {
    FillRectanglesSolid(&rect, 1, color);
}

void cRender::FillRectangleSolid(int x0, int y0, int x1, int y1, const cColor& color) {
    FillRectangleSolid(RectOf(x0, y0, x1, y1), color);
}

void cRender::FillRectangleSolid(float x0, float y0, float x1, float y1, const cColor& color) {
    FillRectangleSolid(cRect(x0, y0, x1, y1), color);
}

void cRender::FillRectanglesSolid(const cRect* rects, int count, const cColor& color, int shader) {
    const unsigned int packed = color.ToDword();
    const unsigned int colors[4] = {packed, packed, packed, packed};
    if (BuildQuads(rects, count, colors, cRender_QuadIndices)) {
        DrawScratch(shader == -1 ? SolidShader() : shader);
    }
}

void cRender::FillRectangleLinearGradient(const cRect& rect, const cColor& a, const cColor& b,
                                          LinearGradient::Enum gradient) {
    FillRectanglesLinearGradient(&rect, 1, a, b, gradient);
}

void cRender::FillRectangleLinearGradient(int x0, int y0, int x1, int y1, const cColor& a, const cColor& b,
                                          LinearGradient::Enum gradient) {
    FillRectangleLinearGradient(RectOf(x0, y0, x1, y1), a, b, gradient);
}

void cRender::FillRectangleLinearGradient(float x0, float y0, float x1, float y1, const cColor& a, const cColor& b,
                                          LinearGradient::Enum gradient) {
    FillRectangleLinearGradient(cRect(x0, y0, x1, y1), a, b, gradient);
}

void cRender::FillRectanglesLinearGradient(const cRect* rects, int count, const cColor& a, const cColor& b,
                                           LinearGradient::Enum gradient) {
    // Whether each corner has the first colour (0), the second (2) or their mean (1).
    static constexpr int s_Corners[4][4] = {
        {0, 0, 2, 2}, // LeftToRight
        {0, 2, 2, 0}, // TopToBottom
        {0, 1, 2, 1}, // LeftTopToRightBottom
        {1, 0, 1, 2}, // LeftBottomToRightTop
    };
    // The dividing edge joins the corners of equal colour; across it the interpolation would show a crease.
    static constexpr int s_TurnedQuad[6] = {0, 1, 3, 1, 2, 3};
    const cColor mean((a.r + b.r) / 2, (a.g + b.g) / 2, (a.b + b.b) / 2, (a.a + b.a) / 2);
    const unsigned int packed[3] = {a.ToDword(), mean.ToDword(), b.ToDword()};
    unsigned int colors[4];
    for (int i = 0; i < 4; i++) {
        colors[i] = packed[s_Corners[gradient][i]];
    }
    const bool turned = gradient == LinearGradient::LeftTopToRightBottom;
    if (BuildQuads(rects, count, colors, turned ? s_TurnedQuad : cRender_QuadIndices)) {
        DrawScratch(SolidShader());
    }
}

void cRender::FillRectangleDither(const cRect& rect, const cVec2& origin, const cColor& a, const cColor& b) {
    if (rect.IsEmpty()) {
        return;
    }
    static const int s_Shader = GetShaderID("DitherUI", cVertex::PositionOnly::FormatID);
    static const int s_Orig = GetShaderConstID(s_Shader, "c_Orig");
    static const int s_Color0 = GetShaderConstID(s_Shader, "c_Color0");
    static const int s_Color1 = GetShaderConstID(s_Shader, "c_Color1");
    cVertex::PositionOnly vertices[4];
    cRender_SetQuad(vertices, rect);
    cRender_SetShapeState(s_Shader);
    SetShaderConst(s_Orig, origin);
    SetShaderConst(s_Color0, a);
    SetShaderConst(s_Color1, b);
    DrawIndexed(cTopology::TriangleList, vertices, 4, cRender_QuadIndices, 6, 4);
}

void cRender::DrawNoPreview(const cRect& rect, const cColor& color) {
    if (rect.IsEmpty()) {
        return;
    }
    // Four arms of a cross, cut along the left and the right side, without an overlap that would show through. w is
    // an arm's height there; 8 to 11 are the left, top, right and bottom of the crossing.
    //
    //     7 .         . 5
    //     6   .  9  .   4
    //         8   10
    //     1   .  11 .   3
    //     0 .         . 2
    constexpr float w = 0.08f;
    constexpr float m = (1 - 2 * w) / (2 * (1 - w)); // where an upper edge meets a lower one
    static constexpr cVec2 s_Pattern[] = {
        {0, 0},        {0, w},              // left bottom
        {1, 0},        {1, w},              // right bottom
        {1, 1 - w},    {1, 1},              // right top
        {0, 1 - w},    {0, 1},              // left top
        {m, 0.5f},     {0.5f, (1 + w) / 2}, // left and top of the crossing
        {1 - m, 0.5f}, {0.5f, (1 - w) / 2}, // right and bottom
    };
    static constexpr int s_Cross[24] = {
        0,  11, 9, 0,  9, 1,  // from the left bottom to the middle, and half of the crossing
        11, 4,  5, 11, 5, 9,  // on to the right top
        7,  6,  8, 7,  8, 9,  // the left top arm
        11, 2,  3, 11, 3, 10, // the right bottom arm
    };
    Vertex vertices[std::size(s_Pattern)];
    const unsigned int packed = color.ToDword();
    for (size_t i = 0; i < std::size(s_Pattern); i++) {
        vertices[i] = {cVec3(rect.x0 + s_Pattern[i].x * rect.Width(), rect.y0 + s_Pattern[i].y * rect.Height(), 0),
                       packed};
    }
    cRender_SetShapeState(SolidShader());
    DrawIndexed(cTopology::TriangleList, vertices, int(std::size(vertices)), s_Cross, int(std::size(s_Cross)), 4);
}

// ---- Circles

namespace {

constexpr int CircleSegments = 32;
constexpr int MaxSegments = 4096; // a screen shows no more
constinit cImmortal<cList<Vertex>> s_CircleVertexStore;
constinit cImmortal<cList<int>> s_CircleIndexStore;
constinit cList<Vertex>& cRender_FillCircle_VB = s_CircleVertexStore.Value;
constinit cList<int>& cRender_FillCircle_IB = s_CircleIndexStore.Value;

/// Room for a fan: its middle, then one vertex more than there are segments.
void SizeFan(int segments) {
    if (cRender_FillCircle_VB.Count() == segments + 2) {
        return;
    }
    cRender_FillCircle_VB.SetCount(segments + 2);
    cRender_FillCircle_IB.Clear();
    for (int i = 1; i <= segments; i++) {
        const int triangle[3] = {0, i, i + 1};
        cRender_FillCircle_IB.AddRange(triangle, 3);
    }
}

void DrawFan(const cVec3& center, const cVec3& right, const cVec3& up, unsigned int color, float from, float to,
             int segments) {
    segments = std::min(segments, MaxSegments);
    SizeFan(segments);
    cRender_FillCircle_VB[0] = {center, color};
    for (int i = 0; i <= segments; i++) {
        float s, c;
        cMath::SinCos(from + (to - from) * float(i) / float(segments), &s, &c);
        cRender_FillCircle_VB[i + 1] = {center + right * c + up * s, color};
    }
    cRender::DrawIndexed(cTopology::TriangleList, cRender_FillCircle_VB.Data(), cRender_FillCircle_VB.Count(),
                         cRender_FillCircle_IB.Data(), cRender_FillCircle_IB.Count(), 4);
}

} // namespace

void cRender::FillCircleColoredCurShader(const cVec2& center, float radius, const cColor& color, float from, float to,
                                         int segments) {
    if (segments > 0) {
        SetDepthState(-1);
        SetCullMode(cCullMode::None);
        DrawFan(cVec3(center, 0), cVec3(radius, 0, 0), cVec3(0, radius, 0), color.ToDword(), from, to, segments);
    }
}

void cRender::FillCircleSolid(const cVec2& center, float radius, const cColor& color) {
    cRender_SetShapeState(SolidShader());
    FillCircleColoredCurShader(center, radius, color, 0, 360, CircleSegments);
}

void cRender::FillCircleSolid(float x, float y, float radius, const cColor& color) {
    FillCircleSolid(cVec2(x, y), radius, color);
}

void cRender::FillCircleSolid(int x, int y, int radius, const cColor& color) {
    FillCircleSolid(cVec2(float(x), float(y)), float(radius), color);
}

void cRender::FillCircleSolid(const cVec3& center, float radius, const cColor& color) {
    const cViewer* viewer = GetViewer();
    cRender_SetShapeState(ColoredShader());
    DrawFan(center, (viewer ? viewer->Right : cVec3::AxisX) * radius, (viewer ? viewer->Up : cVec3::AxisY) * radius,
            color.ToDword(), 0, 360, CircleSegments);
}

} // namespace trellis
