#include "view/cManipulator.h"

#include "render/cRender.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <cmath>

namespace trellis {

int g_ManipulatorsType = cManipulator::None;
cSpace::Enum g_ManipulatorsLocal = cSpace::World;
float g_ManipulatorsSnap = 0;
cRepeatManipulator g_RepeatManipulator;

namespace {

constexpr float Eps = 0.001f;

const cViewer* Viewer() {
    return cRender::GetViewer();
}

bool IsAlong(const cSeg& axis, const cSeg& ray) {
    return cVec3::Cross(axis.direction, ray.direction).Length() < Eps;
}

bool IsFinite(const cVec3& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

cManipulator::~cManipulator() {
    if (m_Unlink) {
        m_Unlink(m_Slot);
    }
    if (g_RepeatManipulator.Tool == this) {
        g_RepeatManipulator = {};
    }
}

void cManipulator::Free(cManipulator* tool) {
    if (!tool) {
        return;
    }
    tool->m_Unlink = nullptr;
    tool->Pos = nullptr;
    tool->Orient = nullptr;
    tool->Unbind();
    if (g_RepeatManipulator.Tool == tool) {
        g_RepeatManipulator = {};
    }
    if (cWidgets::IsCaptured(tool)) {
        cWidgets::ReleaseCapture();
    }
    cWidgets::FreeWidget(tool, true);
}

void cManipulator::Bind(cAngles* orient, cVec3* pos, cSpace::Enum space) {
    Orient = orient;
    Pos = pos;
    Space = space;
}

void cManipulator::SetParent(const cMat4& parent) {
    Parent = parent;
    HasParentInverse = cMat4::Invert(parent, &ParentInverse);
}

void cManipulator::SetParent(const cMat4& parent, const cMat4& inverse) {
    Parent = parent;
    ParentInverse = inverse;
    HasParentInverse = true;
}

cVec3 cManipulator::Apply(const cVec3& p, const cMat4& m) {
    const cVec4 q = cVec4(p.x, p.y, p.z, 1) * m;
    return q.w == 1 || q.w == 0 ? cVec3(q.x, q.y, q.z) : cVec3(q.x / q.w, q.y / q.w, q.z / q.w);
}

cVec3 cManipulator::Turn(const cVec3& v, const cMat4& m) {
    const cVec4 q = cVec4(v.x, v.y, v.z, 0) * m;
    return {q.x, q.y, q.z};
}

bool cManipulator::CalcFrame() {
    const cViewer* viewer = Viewer();
    if (!viewer || !HasParentInverse || viewer->Viewport.Width() <= 0 || viewer->Viewport.Height() <= 0) {
        return false;
    }
    const cVec3 center = Apply(Pos ? *Pos : cVec3::Zero, Parent);
    const cVec3 toEye = viewer->IsParallel() ? -viewer->Forward : viewer->GetEye() - center;
    // By the depth, and not the distance, to the eye: the size on the screen is then the same everywhere on it.
    const float depth = std::fabs(cVec3::Dot(toEye, viewer->Forward));
    const cMat4& lens = viewer->Projection; // the one in use, whichever way the picture is turned
    const float height = viewer->IsParallel() ? 2 * viewer->HalfSize.y / viewer->OrthoScale
                                              : 2 * depth / std::hypot(lens(1, 0), lens(1, 1));
    const float pixel = height / (2 * viewer->HalfSize.y);
    if (!IsFinite(center) || !IsFinite(toEye) || !std::isfinite(pixel)) {
        return false;
    }

    const cMat3 local = Orient ? Orient->ToQuat().ToMat3() : cMat3::Identity;
    cSeg axes[3];
    for (int i = 0; i < 3; i++) {
        cVec3 direction(i == 0, i == 1, i == 2);
        if (IsLocal() && Orient) {
            const cVec3 turned = Turn(direction * local, Parent);
            direction = turned.LengthSq() > 0 ? cVec3::Normalize(turned) : cVec3::Zero;
        }
        axes[i].SetFromEnds(center, center + direction * (pixel * Length()), Eps);
        if (axes[i].IsZero()) {
            return false;
        }
    }
    std::copy(axes, axes + 3, Axes);
    Center = center;
    Pixel = pixel;
    Radius = pixel * RadiusPixels();
    if (CurMode == Mode::None) {
        Plane = cPlane(toEye.LengthSq() > 0 ? cVec3::Normalize(toEye) : -viewer->Forward, center);
    }
    return true;
}

bool cManipulator::GetRay(cSeg* out) {
    const cViewer* viewer = Viewer();
    if (!viewer) {
        return false;
    }
    *out = viewer->GetPickRay(viewer->ScreenToClip(cInput::GetMousePosition()));
    return !out->IsZero();
}

void cManipulator::CalcMode(bool forDrag) {
    HotMode = Mode::None;
    cSeg ray;
    const bool isInView = Viewer() && Viewer()->Viewport.Contains(cInput::GetMousePosition());
    if (!isInView || !CalcFrame() || !GetRay(&ray)) {
        return;
    }
    HotMode = Pick(ray);
    if (forDrag && HotMode != Mode::None) {
        ContinueMode(Mode::Enum(HotMode));
    }
}

void cManipulator::ContinueMode(Mode::Enum mode) {
    CurMode = Mode::None;
    cSeg ray;
    if (mode <= Mode::None || mode > Mode::Free || !CalcFrame() || !GetRay(&ray)) {
        return;
    }
    std::copy(Axes, Axes + 3, StartAxes);
    if (Hit(mode, ray, &StartHit)) {
        m_Hit = StartHit;
        CurMode = mode;
        if (!BeginDrag()) {
            CurMode = Mode::None;
        }
    }
}

bool cManipulator::HitPlane(const cSeg& ray, cVec3* hit) const {
    const float slope = cVec3::Dot(Plane.normal, ray.direction);
    const float t = -Plane.SignedDistance(ray.start) / slope;
    if (std::fabs(slope) < cMath::Epsilon || !(t >= 0) || !std::isfinite(t)) {
        return false;
    }
    *hit = ray.start + ray.direction * t;
    return true;
}

bool cManipulator::HitAxis(const cSeg& axis, const cSeg& ray, cVec3* hit) {
    if (IsAlong(axis, ray)) {
        return false; // any point would do
    }
    cVec3 onAxis, onRay;
    cSeg::ClosestPoints(cSeg::Line, axis, cSeg::Ray, ray, onAxis, onRay);
    // Beyond the point that the axis vanishes in, the ray would have to go back.
    if (!IsFinite(onAxis) || cVec3::Dot(onRay - ray.start, ray.direction) <= 0) {
        return false;
    }
    *hit = onAxis;
    return true;
}

int cManipulator::NearestAxis(const cSeg& ray) const {
    int best = Mode::None;
    float bestDistance = Pixel * TolerancePixels;
    for (int i = 0; i < 3; i++) {
        if (IsAlong(Axes[i], ray)) {
            continue; // it could not be dragged
        }
        cVec3 onAxis, onRay;
        cSeg::ClosestPoints(cSeg::Segment, Axes[i], cSeg::Ray, ray, onAxis, onRay);
        const float distance = (onAxis - onRay).Length();
        if (distance <= bestDistance) {
            bestDistance = distance;
            best = Mode::X + i;
        }
    }
    return best;
}

float cManipulator::Snapped(float v) {
    return g_ManipulatorsSnap > 0 ? std::floor(v / g_ManipulatorsSnap + 0.5f) * g_ManipulatorsSnap : v;
}

// ---- Input

bool cManipulator::IsHot(bool covered) {
    if (cWidgets::IsCaptured(this)) {
        return true;
    }
    CurMode = Mode::None; // another may have taken the capture
    if (covered) {
        HotMode = Mode::None;
        return false;
    }
    CalcMode(false);
    return HotMode != Mode::None;
}

bool cManipulator::OnButtonDown(int code) {
    if (cWidgets::IsCaptured()) {
        return cWidgets::IsCaptured(this);
    }
    CurMode = Mode::None;
    if (code == cInput::LeftButton) {
        CalcMode(true);
    } else if (code == cInput::MiddleButton && g_RepeatManipulator.Tool == this) {
        ContinueMode(Mode::Enum(g_RepeatManipulator.Mode));
    }
    if (CurMode == Mode::None) {
        return false;
    }
    cWidgets::SetCapture(this);
    if (!cWidgets::IsCaptured(this)) {
        CurMode = Mode::None;
        return false;
    }
    Button = code;
    HotMode = CurMode;
    g_RepeatManipulator = {this, CurMode, {}};
    return true;
}

bool cManipulator::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    if (code == Button) {
        CurMode = Mode::None;
        cWidgets::ReleaseCapture();
    }
    return true;
}

bool cManipulator::OnMouseMove() {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    cSeg ray;
    if (CurMode != Mode::None && CalcFrame() && GetRay(&ray)) {
        cVec3 hit;
        if (Hit(Mode::Enum(CurMode), ray, &hit)) { // else the former one holds
            m_Hit = hit;
        }
        Drag(m_Hit);
    }
    return true;
}

// ---- Looks

cColor cManipulator::ColorOf(Mode::Enum mode) const {
    static constexpr cColor s_Colors[] = {
        {0.6f, 0.6f, 0.6f, 1},    {0.9f, 0.2f, 0.2f, 1}, {0.25f, 0.75f, 0.25f, 1},
        {0.25f, 0.45f, 0.95f, 1}, {0.8f, 0.8f, 0.8f, 1},
    };
    const int lit = CurMode != Mode::None ? CurMode : HotMode;
    return mode == lit ? cColor(1, 0.85f, 0.2f, 1) : s_Colors[mode];
}

void cManipulator::BeginLook() {
    static const int s_Blend =
        cRender::GetBlendStateID(cBlendFactor::SrcAlpha, cBlendFactor::OneMinusSrcAlpha, cBlendMode::Add, 15);
    cRender::SetBlendState(s_Blend);
    cRender::SetDepthState(-1); // over everything, so that it can be seen and picked
    cRender::SetCullMode(cCullMode::None);
    cRender::SetWorldMatrix(cMat4::Identity);
}

} // namespace trellis
