// The soft shapes that themes are built of: one quad each, shaped by the distance from a segment.
#include "math/cRect.h"
#include "render/cRender.h"
#include "render/cRender_Internal.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

/// One of the two forms of the shader, with its constants.
struct Gradient {
    explicit Gradient(const char* defines)
        : Shader(cRender::GetShaderID("RadialGradientUI", cVertex::PositionOnly::FormatID, defines)) {
        static constexpr struct {
            int Gradient::*ID;
            const char* Name;
        } s_Consts[] = {
            {&Gradient::SegFrom, "c_SegFrom"},
            {&Gradient::SegTo, "c_SegTo"},
            {&Gradient::CenterColor, "c_CenterColor"},
            {&Gradient::BoundColor, "c_BoundColor"},
            {&Gradient::SegRadius, "c_SegRadius"},
            {&Gradient::GradRadius, "c_GradRadius"},
            {&Gradient::Power, "c_Power"},
            {&Gradient::CaveFrom, "c_CaveFrom"},
            {&Gradient::CaveTo, "c_CaveTo"},
            {&Gradient::FlatFrom, "c_FlatFrom"},
            {&Gradient::FlatTo, "c_FlatTo"},
            {&Gradient::HalfFrom, "c_HalfFrom"},
            {&Gradient::HalfTo, "c_HalfTo"},
            {&Gradient::HalfFlat, "c_HalfFlat"},
        };
        for (const auto& c : s_Consts) {
            this->*c.ID = cRender::GetShaderConstID(Shader, c.Name);
        }
    }

    int Shader;
    int SegFrom, SegTo, CenterColor, BoundColor, SegRadius, GradRadius, Power;
    int CaveFrom, CaveTo, FlatFrom, FlatTo, HalfFrom, HalfTo, HalfFlat;
};

const Gradient& FreeGradient() {
    static const Gradient s_Gradient(nullptr);
    return s_Gradient;
}

const Gradient& HorizontalGradient() {
    static const Gradient s_Gradient("#define HORIZONTAL");
    return s_Gradient;
}

/// Sets the state and the constants that all shapes have.
void SetSegment(const Gradient& g, const cVec2& from, const cVec2& to, float segRadius, float gradRadius, float power,
                const cColor& center, const cColor& bound) {
    cRender_SetShapeState(g.Shader);
    cRender::SetShaderConst(g.SegFrom, from);
    cRender::SetShaderConst(g.SegTo, to);
    cRender::SetShaderConst(g.CenterColor, center);
    cRender::SetShaderConst(g.BoundColor, bound);
    cRender::SetShaderConst(g.SegRadius, segRadius);
    cRender::SetShaderConst(g.GradRadius, gradRadius);
    cRender::SetShaderConst(g.Power, power);
}

void DrawQuad(const cRect& rect) {
    cVertex::PositionOnly vertices[4];
    cRender_SetQuad(vertices, rect);
    cRender::DrawIndexed(cTopology::TriangleList, vertices, 4, cRender_QuadIndices, 6, 4);
}

/// A segment's gradient in a rectangle of its own.
void FillSegment(const Gradient& g, const cRect& rect, const cVec2& from, const cVec2& to, float segRadius,
                 float gradRadius, float power, const cColor& center, const cColor& bound) {
    SetSegment(g, from, to, segRadius, gradRadius, power, center, bound);
    cRender::SetShaderConst(g.HalfFlat, 0.0f); // no cave
    DrawQuad(rect);
}

} // namespace

void cRender::FillSegmentRadialGradient(const cVec2& from, const cVec2& to, float segRadius, float gradRadius,
                                        float power, int horizontal, const cColor& center, const cColor& bound) {
    // Half a point more than the radius: the rim fades over one pixel.
    const float reach = gradRadius + 0.5f;
    const cRect rect(std::floor(std::min(from.x, to.x) - reach), std::floor(std::min(from.y, to.y) - reach),
                     std::ceil(std::max(from.x, to.x) + reach), std::ceil(std::max(from.y, to.y) + reach));
    if (rect.IsEmpty() || gradRadius < 0) {
        return;
    }
    FillSegment(horizontal ? HorizontalGradient() : FreeGradient(), rect, from, to, segRadius, gradRadius, power,
                center, bound);
}

void cRender::FillSegmentRadialGradient(const cRect& rect, float segRadius, float power, int horizontal,
                                        const cColor& center, const cColor& bound) {
    if (rect.IsEmpty()) {
        return;
    }
    const float radius = std::min(rect.Width(), rect.Height()) / 2;
    const cVec2 middle = rect.Center();
    const cVec2 half = horizontal ? cVec2(rect.Width() / 2 - radius, 0) : cVec2(0, rect.Height() / 2 - radius);
    FillSegmentRadialGradient(middle - half, middle + half, segRadius, radius, power, horizontal, center, bound);
}

void cRender::FillRectangleRadialGradient(const cRect& rect, float segRadius, float gradRadius, float power,
                                          const cColor& center, const cColor& bound) {
    if (rect.IsEmpty()) {
        return;
    }
    FillSegment(FreeGradient(), rect, rect.Center(), rect.Center(), segRadius, gradRadius, power, center, bound);
}

void cRender::FillCircleRadialGradient(const cVec2& at, float segRadius, float gradRadius, float power,
                                       const cColor& center, const cColor& bound) {
    FillSegmentRadialGradient(at, at, segRadius, gradRadius, power, 0, center, bound);
}

void cRender::FillCircleRadialGradient(float x, float y, float segRadius, float gradRadius, float power,
                                       const cColor& center, const cColor& bound) {
    FillCircleRadialGradient(cVec2(x, y), segRadius, gradRadius, power, center, bound);
}

void cRender::FillCircleRadialGradient(int x, int y, int segRadius, int gradRadius, float power, const cColor& center,
                                       const cColor& bound) {
    FillCircleRadialGradient(cVec2(float(x), float(y)), float(segRadius), float(gradRadius), power, center, bound);
}

void cRender::DrawCaveCaveCorner(const cRect& rect, float radius, float gradRadius, const cColor& center,
                                 const cColor& bound) {
    if (rect.IsEmpty()) {
        return;
    }
    const Gradient& g = FreeGradient();
    const cVec2 left(rect.x0, rect.Center().y), right(rect.x1, left.y);
    const cVec2 reach(radius, 0);
    SetSegment(g, left, right, radius, gradRadius, 1, center, bound);
    SetShaderConst(g.CaveFrom, left);
    SetShaderConst(g.CaveTo, right);
    SetShaderConst(g.FlatFrom, left + reach);
    SetShaderConst(g.FlatTo, right - reach);
    SetShaderConst(g.HalfFrom, (left + rect.Center()) * 0.5f);
    SetShaderConst(g.HalfTo, (right + rect.Center()) * 0.5f);
    SetShaderConst(g.HalfFlat, std::max(rect.Width() / 2 - radius, cMath::Epsilon)); // above 0 tells a cave
    DrawQuad(rect);
}

} // namespace trellis
