#include "view/cScaleTool.h"

#include "math/cQuat.h"
#include "render/cRender.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>

namespace trellis {

void cScaleTool::Bind(cVec3* scale, cAngles* orient, cVec3* pos) {
    Scale = scale;
    Orient = orient;
    Pos = pos;
}

cManipulator::Mode::Enum cScaleTool::Pick(const cSeg& ray) {
    if (!Scale) {
        return Mode::None;
    }
    cVec3 hit;
    if (HitPlane(ray, &hit) && (hit - Center).Length() <= Radius) { // ahead of the axes, which all begin here
        return Mode::Free;
    }
    return Mode::Enum(NearestAxis(ray));
}

/// The line that all axes at once are scaled along: to the right across the screen, from as far to the left of the
/// handle as an axis is long, so that a drag by that length doubles or leaves nothing.
cSeg cScaleTool::FreeLine() const {
    const cViewer* viewer = cRender::GetViewer();
    const cVec3 right = viewer ? viewer->Right : cVec3::AxisX;
    return cSeg(Center - right * StartAxes[0].length, Center);
}

bool cScaleTool::Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const {
    if (mode == Mode::None) {
        return false;
    }
    const cSeg along = mode == Mode::Free ? FreeLine() : cSeg(Center, Center + Axes[mode - Mode::X].direction);
    return HitAxis(along, ray, hit);
}

void cScaleTool::BeginDrag() {
    StartScale = Scale ? *Scale : cVec3::One;
}

void cScaleTool::Drag(const cVec3& hit) {
    constexpr float Least = 0.1f;
    if (!Scale || CurMode == Mode::None) {
        return;
    }
    const cSeg along = CurMode == Mode::Free ? FreeLine() : Axes[CurMode - Mode::X];
    const auto distance = [&along](const cVec3& p) { return cVec3::Dot(p - along.start, along.direction); };
    const float ratio = distance(hit) / distance(StartHit);
    if (!std::isfinite(ratio)) {
        return;
    }
    cVec3 to = *Scale;
    for (int i = 0; i < 3; i++) {
        if (CurMode == Mode::Free || CurMode == Mode::X + i) {
            to[i] = Snapped(StartScale[i] * ratio);
        }
        to[i] = to[i] >= Least ? to[i] : Least;
    }
    *Scale = to;
}

void cScaleTool::OnRender() {
    if (!Scale || !CalcFrame()) {
        return;
    }
    BeginLook();
    const cQuat orient = Orient ? Orient->ToQuat() : cQuat::Identity;
    for (int i = 0; i < 3; i++) {
        const cColor color = ColorOf(Mode::Enum(Mode::X + i));
        cRender::DrawConeSolid(Axes[i].GetEnd(), Center, 1.2f * Pixel, 1.2f * Pixel, color, 12);
        cRender::DrawCubeSolid(Axes[i].GetEnd(), 10 * Pixel, color, orient);
    }
    cRender::DrawCubeSolid(Center, 12 * Pixel, ColorOf(Mode::Free), orient);
}

} // namespace trellis
