#include "view/cFreeViewer.h"

#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>

namespace trellis {

namespace {

struct ViewAxes {
    cVec3 Forward, Right, Up;
};
constexpr cVec3 X = cVec3::AxisX, Y = cVec3::AxisY, Z = cVec3::AxisZ;
const ViewAxes s_Views[] = {
    {}, {-X, -Z, Y}, {-Y, Z, X}, {-Z, X, Y}, {X, Z, Y}, {Y, Z, -X}, {Z, -X, Y}, {-Y, X, -Z}, {Y, X, Z},
};
static_assert(std::size(s_Views) == cFreeViewer::OrthoView::Count);

constexpr struct {
    int Code;
    cFreeViewer::OrthoView::Enum View;
} s_ViewKeys[] = {
    {cInput::NumPad2, cFreeViewer::OrthoView::Front}, {cInput::NumPad8, cFreeViewer::OrthoView::Back},
    {cInput::NumPad4, cFreeViewer::OrthoView::Left},  {cInput::NumPad6, cFreeViewer::OrthoView::Right},
    {cInput::NumPad7, cFreeViewer::OrthoView::Top},   {cInput::NumPad1, cFreeViewer::OrthoView::Bottom},
};

/// The mode that a button begins.
int ModeOfButton(int code) {
    switch (code) {
    case cInput::LeftButton:
        return cFreeViewer::Tumbling;
    case cInput::RightButton:
        return cFreeViewer::Dollying;
    case cInput::MiddleButton:
        return cFreeViewer::Tracking;
    default:
        return cFreeViewer::NoMode;
    }
}

/// Of unit length, also where the square is no float; what has no direction stays.
cVec3 Unit(const cVec3& v) {
    const float most = std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
    return most > 0 && std::isfinite(most) ? cVec3::Normalize(v / most) : v;
}

cQuat Turn(const cVec3& axis, float degrees) {
    return cMat3::Rotation(axis, degrees).ToQuat();
}

} // namespace

void cFreeViewer::CtorArgs::SetDefaults() {
    cViewer::CtorArgs::SetDefaults();
    HomeCenter = cVec3::Zero;
    HomeAngles = {-28, 45, 0};
    HomeDistance = 20;
    HomeOrthoScale = 20;
}

cFreeViewer::cFreeViewer(const CtorArgs& args)
    : cViewer(args), HomeCenter(args.HomeCenter), HomeAngles(args.HomeAngles), HomeDistance(args.HomeDistance),
      HomeOrthoScale(args.HomeOrthoScale) {
    Home();
}

void cFreeViewer::CalcAxes() {
    Orient.ToMat3().ToVectors(&Forward, &Right, &Up);
}

void cFreeViewer::Update() {
    CalcAxes();
    Position = Center;
    if (!IsOrthoView) {
        Position -= Forward * Distance;
    }
    if (HasOverrideCenter) {
        Position += Right * CenterOffset.x + Up * CenterOffset.y;
    }
    IsOrtho = IsOrthoView;
    OrthoScale = OrthoScaleTarget;
    cViewer::Update(false);
}

// ---- Views

void cFreeViewer::SetView(OrthoView::Enum view) {
    if (view > OrthoView::Keep && view < OrthoView::Count) {
        const ViewAxes& axes = s_Views[view];
        Orient = cMat3::FromVectors(axes.Forward, axes.Right, axes.Up).ToQuat();
        CenterOffset = {0, 0};
    }
    Update();
}

void cFreeViewer::SetOrthoProj(OrthoView::Enum view) {
    if (!IsOrthoView) {
        CenterOffset = {0, 0};
    }
    IsOrthoView = true;
    OrthoScaleTarget = HomeOrthoScale;
    SetView(view);
}

void cFreeViewer::SetPerspProj() {
    if (IsOrthoView) {
        CenterOffset = {0, 0};
    }
    IsOrthoView = false;
    Update();
}

void cFreeViewer::Home() {
    IsOrthoView = false;
    Center = HomeCenter;
    Orient = HomeAngles.ToQuat();
    Distance = HomeDistance;
    OrthoScaleTarget = HomeOrthoScale;
    HasOverrideCenter = false;
    CenterOffset = {0, 0};
    Update();
}

void cFreeViewer::LookAt(const cVec3& eye, const cVec3& target) {
    Center = target;
    Distance = (target - eye).Length();
    if (Distance > 0) {
        cViewer_CalcOrientFromForwardDir(&Orient, target - eye);
    }
    HasOverrideCenter = false;
    CenterOffset = {0, 0};
    Update();
}

void cFreeViewer::OverrideCenter(const cVec3& center) {
    Update();
    const cVec3 toEye = Position - center;
    CenterOffset = {cVec3::Dot(toEye, Right), cVec3::Dot(toEye, Up)};
    if (!IsOrthoView) { // parallel rays have no distance
        Distance = -cVec3::Dot(toEye, Forward);
    }
    Center = center;
    HasOverrideCenter = true;
    Update();
}

void cFreeViewer::SnapAxis() {
    CalcAxes();
    const auto likeness = [this](const ViewAxes& v) {
        return cVec3::Dot(v.Forward, Forward) + cVec3::Dot(v.Right, Right) + cVec3::Dot(v.Up, Up);
    };
    int best = OrthoView::Right;
    for (int view = best + 1; view < OrthoView::Count; view++) {
        best = likeness(s_Views[view]) > likeness(s_Views[best]) ? view : best;
    }
    SetView(OrthoView::Enum(best));
}

void cFreeViewer::Aim(float distance) {
    CalcAxes();
    Center += Forward * (distance - Distance);
    Distance = distance;
    Update();
}

void cFreeViewer::Transform(const cMat4& transform) {
    Center = Center * transform;
    cVec3 forward, up;
    Orient.ToMat3().ToVectors(&forward, nullptr, &up);
    const auto turned = [&transform](const cVec3& v) { return v * transform - cVec3::Zero * transform; };
    forward = Unit(turned(forward));
    const cVec3 right = cVec3::Cross(forward, Unit(turned(up)));
    if (right.LengthSq() > 0) { // a scaling keeps no right angles: the view's own direction goes first
        const cVec3 side = cVec3::Normalize(right);
        Orient = cMat3::FromVectors(forward, side, cVec3::Cross(side, forward)).ToQuat();
    }
    Update();
}

// A corner is in view where its offset to the side, divided by its depth, is within the slopes of the area's edges. All
// corners together bound the eye along each of the four edges; the farthest back that any pair of edges asks for is
// where the box just fits.
void cFreeViewer::Frame(const cBounds& bounds, const cMat4& transform, const cRect& area) {
    const cRect& room = area.Width() > 0 && area.Height() > 0 ? area : Viewport;
    if (bounds.IsEmpty() || !(room.Width() > 0 && room.Height() > 0)) {
        return;
    }
    HasOverrideCenter = false;
    CenterOffset = {0, 0};
    Update(); // the viewport may be another since the last one
    cVec3 corners[8];
    bounds.ToPoints(corners);
    constexpr float Far = cMath::FloatMaxValue;
    cVec3 low(Far, Far, Far), high(-Far, -Far, -Far);
    for (cVec3& corner : corners) { // into the view's axes
        const cVec3 p = corner * transform;
        corner = {cVec3::Dot(p, Right), cVec3::Dot(p, Up), cVec3::Dot(p, Forward)};
        low = cVec3::Min(low, corner);
        high = cVec3::Max(high, corner);
    }
    const cVec2 from = ScreenToClip({room.x0, room.y0}), to = ScreenToClip({room.x1, room.y1});
    cVec3 eye = (low + high) * 0.5f;
    const cVec3 middle = eye;
    if (!std::isfinite((high - low).Length()) || !std::isfinite(middle.Length())) {
        return; // as large as no lens
    }
    if (IsOrthoView) {
        const cVec3 size = high - low;
        const float scale =
            std::min(room.Width() / std::max(size.x, cMath::Epsilon), room.Height() / std::max(size.y, cMath::Epsilon));
        OrthoScaleTarget = std::min(scale, OrthoZoomMax);
        eye.x -= (from.x + to.x) * 0.5f * HalfSize.x / OrthoScaleTarget;
        eye.y -= (from.y + to.y) * 0.5f * HalfSize.y / OrthoScaleTarget;
    } else {
        const float slopeY = std::tan(FovY * 0.5f * cMath::RadsPerDeg), slopeX = slopeY * GetAspect();
        const float slopes[2][2] = {{from.x * slopeX, to.x * slopeX}, {from.y * slopeY, to.y * slopeY}};
        float least[2] = {-Far, -Far}, most[2] = {Far, Far}; // of the eye's offset, at a depth of 0
        for (const cVec3& corner : corners) {
            for (int axis = 0; axis < 2; axis++) {
                least[axis] = std::max(least[axis], corner[axis] - slopes[axis][1] * corner.z);
                most[axis] = std::min(most[axis], corner[axis] - slopes[axis][0] * corner.z);
            }
        }
        const auto depthOf = [&](int axis) {
            return -(least[axis] - most[axis]) / (slopes[axis][1] - slopes[axis][0]);
        };
        eye.z = std::min({depthOf(0), depthOf(1), low.z - ZNear});
        for (int axis = 0; axis < 2; axis++) {
            eye[axis] = (least[axis] + most[axis] + (slopes[axis][0] + slopes[axis][1]) * eye.z) * 0.5f;
        }
        Distance = middle.z - eye.z;
    }
    // The pivot is straight ahead, or, where the area is not in the middle of the picture, in the box all the same.
    constexpr float OffPixels = 2;
    HasOverrideCenter = std::fabs(from.x + to.x) * 0.5f * HalfSize.x > OffPixels ||
                        std::fabs(from.y + to.y) * 0.5f * HalfSize.y > OffPixels;
    const cVec3& pivot = HasOverrideCenter ? middle : eye;
    CenterOffset = {eye.x - pivot.x, eye.y - pivot.y};
    Center = Right * pivot.x + Up * pivot.y + Forward * middle.z;
    Update();
}

// ---- Motions

void cFreeViewer::Step(const cVec2& delta, const cVec3& right, const cVec3& up) {
    if (IsOrthoView && OrthoScaleTarget == 0) {
        return Update(); // a point of the world is nowhere on the screen
    }
    // The constant keeps tracking alive at a distance of 0.
    const cVec2 step = IsOrthoView ? delta / OrthoScaleTarget : delta * (TrackSpeed * (std::fabs(Distance) + 10));
    if (HasOverrideCenter) {
        CenterOffset -= step;
    } else {
        Center -= right * step.x + up * step.y;
    }
    Update();
}

void cFreeViewer::Track(const cVec2& delta) {
    CalcAxes();
    Step(delta, Right, Up);
}

void cFreeViewer::PlaneTrack(const cVec2& delta, const cVec3& normal) {
    CalcAxes();
    const cVec3 n = Unit(normal);
    const auto within = [&n](const cVec3& v) { return cVec3::Cross(n, cVec3::Cross(v, n)); };
    Step(delta, within(Right), within(Up));
}

void cFreeViewer::Tumble(const cVec2& delta) {
    Orient = Orient * cMat3::RotationX(delta.y * TumbleSpeed).ToQuat();
    Orient = cMat3::RotationY(-delta.x * TumbleSpeed).ToQuat() * Orient;
    Update();
}

void cFreeViewer::ScreenTumble(const cVec2& delta) {
    CalcAxes();
    Orient = Turn(Right, delta.y * TumbleSpeed) * Orient;
    Orient = Turn(Up, -delta.x * TumbleSpeed) * Orient;
    Update();
}

void cFreeViewer::Dolly(const cVec2& delta) {
    const float s = delta.x - delta.y;
    if (IsOrthoView) {
        OrthoScaleTarget = std::min(OrthoScaleTarget + s * OrthoZoomSpeed * OrthoScaleTarget, OrthoZoomMax);
    } else {
        Distance -= s * DollySpeed;
        if (!HasOverrideCenter && Distance < 0) { // the camera flies on
            CalcAxes();
            Center -= Forward * Distance;
            Distance = 0;
        }
    }
    Update();
}

void cFreeViewer::Roll(const cVec2& delta) {
    Orient = Orient * cMat3::RotationZ((delta.x + delta.y) * RollSpeed).ToQuat();
    Update();
}

void cFreeViewer::ScreenRoll(const cVec2& delta) {
    CalcAxes();
    Orient = Turn(Forward, (delta.x + delta.y) * RollSpeed) * Orient;
    Update();
}

// ---- Input

bool cFreeViewer::OnKey(int code) {
    for (const auto& key : s_ViewKeys) {
        if (code == key.Code) {
            SetView(key.View);
            return true;
        }
    }
    if (code == cInput::NumPad5) {
        if (IsOrthoView) { // the perspective is passed through, and its matrices are made
            IsOrthoView = false;
            Update();
        }
        IsOrthoView = true;
        Update();
        return true;
    }
    if (code == cInput::Home) {
        Home();
        return true;
    }
    return false;
}

/// The eye stays: the wheel tells how far ahead the pivot lies.
void cFreeViewer::OnWheel() {
    if (IsOrthoView || HasOverrideCenter) {
        return;
    }
    const float by = float(cInput::GetWheelDelta()) * WheelSpeed;
    const float distance = std::clamp(Distance + by, 0.0f, cMath::FloatMaxValue);
    CalcAxes();
    Center += Forward * (distance - Distance);
    Distance = distance;
    Update();
    ChangedByWheel = true;
    if (Mode == NoMode) {
        cWidgets::SetCapture(this);
    }
    Mode = cWidgets::IsCaptured(this) ? HeldByAlt : NoMode;
}

bool cFreeViewer::OnButtonDown(int code) {
    if (!cWidgets::IsCaptured(this)) {
        Mode = NoMode; // another may have taken the capture
        if (!Enabled) {
            return false;
        }
        if (KeysEnabled && OnKey(code)) {
            return true;
        }
        if (!cInput::IsDown(cInput::Alt) || !Viewport.Contains(cInput::GetMousePosition())) {
            return false; // there may be several viewers
        }
    }
    if (Mode != NoMode && Mode != HeldByAlt) {
        return true;
    }
    if (code == cInput::WheelUp || code == cInput::WheelDown) {
        OnWheel();
        return true;
    }
    const int mode = ModeOfButton(code);
    if (mode == NoMode) {
        return Mode != NoMode;
    }
    if (Mode == NoMode) {
        cWidgets::SetCapture(this);
        ChangedByWheel = false;
    }
    if (cWidgets::IsCaptured(this)) {
        Mode = mode;
    }
    return true;
}

bool cFreeViewer::OnButtonUp(int code) {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    const bool ends = Mode == HeldByAlt ? code == cInput::Alt : ModeOfButton(code) == Mode;
    if (ends) {
        Mode = Mode != HeldByAlt && cInput::IsDown(cInput::Alt) ? HeldByAlt : NoMode;
        if (Mode == NoMode) {
            cWidgets::ReleaseCapture();
        }
    }
    return true;
}

bool cFreeViewer::OnMouseMove() {
    if (!cWidgets::IsCaptured(this)) {
        return false;
    }
    const cVec2& d = cInput::GetMouseDelta();
    const int other = Mode == Tumbling ? cInput::RightButton : cInput::LeftButton;
    if (Mode == Tracking || ((Mode == Tumbling || Mode == Dollying) && cInput::IsDown(other))) {
        Track(d);
    } else if ((Mode == Tumbling || Mode == Dollying) && cInput::IsDown(cInput::MiddleButton)) {
        Roll(d);
    } else if (Mode == Tumbling) {
        Tumble(d);
    } else if (Mode == Dollying) {
        Dolly(d);
    }
    return true;
}

bool cFreeViewer::IsHot(bool covered) {
    return !covered && (cWidgets::IsCaptured(this) ||
                        (Enabled && cInput::IsDown(cInput::Alt) && Viewport.Contains(cInput::GetMousePosition())));
}

bool cFreeViewer::OnSetCursor(cInput::Cursor::Enum* cursor) {
    if (Mode == NoMode || Mode == HeldByAlt || !cWidgets::IsCaptured(this)) {
        return false;
    }
    *cursor = cInput::Cursor::Hand;
    return true;
}

void cFreeViewer::HandleGesture(cGestureType::Enum type, const cVec2& position, const cVec2& delta, float scale,
                                float angle) {
    (void)position;
    switch (type) {
    case cGestureType::Pan:
        return Track(delta);
    case cGestureType::Swipe:
        return Tumble(delta);
    case cGestureType::Rotate:
        return ScreenRoll({RollSpeed != 0 ? angle / RollSpeed : 0, 0});
    case cGestureType::Pinch:
        if (scale > 0 && std::isfinite(scale)) { // what is around the pivot grows with the fingers
            if (IsOrthoView) {
                OrthoScaleTarget = std::min(OrthoScaleTarget * scale, OrthoZoomMax);
            } else {
                // No factor leads away from the pivot itself: the way out begins at the near plane.
                const bool isAtPivot = scale < 1 && Distance >= 0 && Distance < ZNear;
                Distance = std::min((isAtPivot ? ZNear : Distance) / scale, cMath::FloatMaxValue);
            }
            Update();
        }
        return;
    case cGestureType::None:
        return;
    }
}

void cFreeViewer::OnGestureDown(cGestureType::Enum type, const cVec2& position) {
    m_Gesture = Enabled && Viewport.Contains(position) ? type : cGestureType::None;
}

void cFreeViewer::OnGestureMove(const cVec2& position, const cVec2& delta, float scale, float angle) {
    HandleGesture(m_Gesture, position, delta, scale, angle);
}

void cFreeViewer::OnGestureUp() {
    m_Gesture = cGestureType::None;
}

} // namespace trellis
