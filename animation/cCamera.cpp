#include "animation/cCamera.h"

#include "math/cMat4.h"
#include "render/cRender.h"
#include "view/cViewer.h"

#include <algorithm>
#include <cmath>

namespace trellis {

void cCamera::Free() {
    FrameRate = 0;
    Cameras.Free();
}

float cCamera::GetStartTimeSec(int camera) const {
    return FrameRate < 1 || !IsCamera(camera) ? 0 : float(Cameras[camera].StartFrame) / float(FrameRate);
}

float cCamera::GetEndTimeSec(int camera) const {
    if (FrameRate < 1 || !IsCamera(camera)) {
        return 0;
    }
    const Camera& c = Cameras[camera];
    return float((long long)c.StartFrame + c.Frames.Count() - 1) / float(FrameRate);
}

float cCamera::CalcDurationSec() const {
    float sum = 0;
    for (const Camera& camera : Cameras) {
        sum += FrameRate < 1 ? 0 : float(camera.Frames.Count()) / float(FrameRate);
    }
    return sum;
}

void cCamera::Transform(const cMat4& matrix) {
    const cQuat rotation = matrix.ToQuat();
    for (Camera& camera : Cameras) {
        for (Frame& frame : camera.Frames) {
            frame.Position = frame.Position * matrix;
            frame.Orientation = rotation * frame.Orientation;
        }
    }
}

void cCamera::SetStill(const Camera& camera, const Frame& frame, State* state) const {
    state->IsValid = true;
    if (const cViewer* viewer = cRender::GetViewer()) {
        state->Viewport = viewer->Viewport;
    }
    state->ZNear = camera.ZNear;
    state->ZFar = camera.ZFar;
    state->Reserved = 0;
    state->Position = frame.Position;
    state->Orientation = frame.Orientation;
    state->FieldOfView = frame.FieldOfView;
}

void cCamera::FillViewerState(State* state) const {
    if (!IsCamera(state->CurCamera)) {
        return;
    }
    const Camera& camera = Cameras[state->CurCamera];
    const int last = camera.Frames.Count() - 1;
    if (last < 0) {
        state->IsValid = false;
        return;
    }
    const float start = GetStartTimeSec(state->CurCamera), end = GetEndTimeSec(state->CurCamera);
    state->TimeSec = std::min(std::max(state->TimeSec, start), end);
    const float position = (state->TimeSec - start) * float(std::max(FrameRate, 0));
    if (!(position > 0)) {
        return SetStill(camera, camera.Frames[0], state);
    }
    if (position >= float(last)) {
        return SetStill(camera, camera.Frames[last], state);
    }
    const int i = int(position);
    const float f = position - float(i);
    const Frame &a = camera.Frames[i], &b = camera.Frames[i + 1];
    SetStill(camera,
             {a.Position + (b.Position - a.Position) * f, cQuat::Slerp(a.Orientation, b.Orientation, f, true),
              a.FieldOfView + (b.FieldOfView - a.FieldOfView) * f},
             state);
}

bool cCamera::Step(State* state, float deltaSec) const {
    const int count = Cameras.Count();
    if (count == 0) {
        return true;
    }
    const bool isForward = deltaSec >= 0;
    if (!IsCamera(state->CurCamera)) {
        state->CurCamera = -1; // the path may be another by now
        if (deltaSec == 0 || std::isnan(deltaSec)) {
            state->TimeSec = 0;
            if (!Cameras[0].Frames.IsEmpty()) {
                SetStill(Cameras[0], Cameras[0].Frames[0], state);
            }
            return false;
        }
        state->CurCamera = isForward ? 0 : count - 1;
        state->TimeSec = isForward ? GetStartTimeSec(0) : GetEndTimeSec(count - 1);
        FillViewerState(state);
        return false;
    }

    bool looped = false;
    state->TimeSec += std::isnan(deltaSec) ? 0 : deltaSec;
    if (isForward) {
        if (state->TimeSec > GetEndTimeSec(state->CurCamera)) {
            looped = state->CurCamera + 1 == count;
            state->CurCamera = looped ? 0 : state->CurCamera + 1;
            state->TimeSec = GetStartTimeSec(state->CurCamera);
        }
    } else if (state->TimeSec < GetStartTimeSec(state->CurCamera)) {
        looped = state->CurCamera == 0;
        state->CurCamera = (looped ? count : state->CurCamera) - 1;
        state->TimeSec = GetEndTimeSec(state->CurCamera);
    }
    FillViewerState(state);
    return looped;
}

} // namespace trellis
