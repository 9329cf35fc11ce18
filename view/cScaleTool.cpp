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

cSeg cScaleTool::Along() const {
    return CurMode == Mode::Free ? FreeLine() : Axes[CurMode - Mode::X];
}

bool cScaleTool::Hit(Mode::Enum mode, const cSeg& ray, cVec3* hit) const {
    return mode != Mode::None && Scale && HitAxis(mode == Mode::Free ? FreeLine() : Axes[mode - Mode::X], ray, hit);
}

/// Signed: on the other side of the centre there is less than nothing, and not as much again.
float cScaleTool::DistanceOf(const cVec3& p) const {
    const cSeg along = Along();
    return cVec3::Dot(p - along.start, along.direction);
}

bool cScaleTool::BeginDrag() {
    constexpr float LeastPixels = 4; // from closer by, any motion would be too much
    m_StartDistance = DistanceOf(StartHit);
    if (!Scale || !(std::fabs(m_StartDistance) >= LeastPixels * Pixel)) {
        return false;
    }
    StartScale = *Scale;
    return true;
}

void cScaleTool::Drag(const cVec3& hit) {
    constexpr float Least = 0.1f;
    if (!Scale) {
        return;
    }
    const float ratio = DistanceOf(hit) / m_StartDistance;
    for (int i = 0; i < 3; i++) {
        float& v = (*Scale)[i];
        if (CurMode == Mode::Free || CurMode == Mode::X + i) {
            const float to = Snapped(StartScale[i] * ratio);
            v = std::isfinite(to) ? to : v;
        }
        v = v >= Least ? v : Least;
    }
}

void cScaleTool::OnRender() {
    if (!Scale || !CalcFrame()) {
        return;
    }
    BeginLook();
    const cQuat orient = cMat3::FromVectors(-Axes[2].direction, Axes[0].direction, Axes[1].direction).ToQuat();
    for (int i = 0; i < 3; i++) {
        const cColor color = ColorOf(Mode::Enum(Mode::X + i));
        cRender::DrawConeSolid(Axes[i].GetEnd(), Center, 1.2f * Pixel, 1.2f * Pixel, color, 12);
        cRender::DrawCubeSolid(Axes[i].GetEnd(), 10 * Pixel, color, orient);
    }
    cRender::DrawCubeSolid(Center, 12 * Pixel, ColorOf(Mode::Free), orient);
}

} // namespace trellis
