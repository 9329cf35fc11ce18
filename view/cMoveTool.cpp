#include "view/cMoveTool.h"

#include "render/cRender.h"

#include <cmath>

namespace trellis {

void cMoveTool::Bind(cVec3* pos) {
    Bind(nullptr, pos, cSpace::World);
}

cManipulator::Mode::Enum cMoveTool::Pick(const cSeg& ray) {
    if (!Pos) {
        return Mode::None;
    }
    const int axis = NearestAxis(ray);
    if (axis != Mode::None) {
        return Mode::Enum(axis);
    }
    cVec3 hit;
    if (!HitPlane(ray, &hit)) {
        return Mode::None;
    }
    const float distance = (hit - Center).Length();
    const bool isInside = HasFreeInner ? distance >= Radius && distance <= 2 * Radius : distance <= Radius;
    return isInside ? Mode::Free : Mode::None;
}

bool cMoveTool::Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const {
    return mode == Mode::Free ? HitPlane(ray, hit)
                              : mode != Mode::None && Pos && HitAxis(StartAxes[mode - Mode::X], ray, hit);
}

bool cMoveTool::BeginDrag() {
    StartPos = Center;
    return Pos;
}

void cMoveTool::Drag(const cVec3& hit) {
    if (!Pos) {
        return;
    }
    cVec3 to = Apply(StartPos + hit - StartHit, ParentInverse);
    for (int i = 0; i < 3; i++) {
        // Only what the drag moves is snapped.
        const bool isMoved =
            CurMode == Mode::Free ? std::fabs(std::fabs(Plane.normal[i]) - 1) > 0.001f : CurMode == Mode::X + i;
        to[i] = isMoved ? Snapped(to[i]) : to[i];
        if (!std::isfinite(to[i])) {
            return;
        }
    }
    *Pos = to;
}

void cMoveTool::OnRender() {
    if (!Pos || !CalcFrame()) {
        return;
    }
    BeginLook();
    constexpr int Segments = 12;
    for (int i = 0; i < 3; i++) {
        const cColor color = ColorOf(Mode::Enum(Mode::X + i));
        const cVec3 tip = Axes[i].GetEnd(), neck = tip - Axes[i].direction * (18 * Pixel);
        cRender::DrawConeSolid(neck, Center, 1.2f * Pixel, 1.2f * Pixel, color, Segments);
        cRender::DrawConeSolid(tip, neck, 0, 6 * Pixel, color, Segments);
    }
    const cColor color = ColorOf(Mode::Free);
    cRender::DrawFacingCircle(Center, HasFreeInner ? 2 * Radius : Radius, Plane.normal, color);
    if (HasFreeInner) {
        cRender::DrawFacingCircle(Center, Radius, Plane.normal, color);
    }
}

} // namespace trellis
