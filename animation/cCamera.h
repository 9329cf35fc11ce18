// A recorded fly-through: shots of sampled poses at one frame rate, played in order and looped.
#pragma once

#include "foundation/cStr.h"
#include "math/cQuat.h"
#include "math/cRect.h"
#include "math/cVec3.h"

namespace trellis {

class cMat4;

/// A plain value. Who plays it keeps a `State`.
class cCamera {
public:
    struct Frame {
        cVec3 Position;
        cQuat Orientation;
        float FieldOfView; ///< Degrees.
    };

    /// One shot.
    struct Camera {
        cStr Name;
        float ZNear;
        float ZFar;
        int StartFrame;
        cList<Frame> Frames;
    };

    /// Where the play stands, and what a viewer needs of it.
    struct State {
        int CurCamera = -1; ///< -1: none yet.
        float TimeSec = 0;
        cVec3 Position = cVec3::Zero;
        cQuat Orientation = cQuat::Identity;
        cRect Viewport = cRect::Zero; ///< Of the current viewer; without one it stays as it is.
        bool IsValid = false;         ///< There is a pose.
        float FieldOfView = 0;
        float ZNear = 0;
        float ZFar = 0;
        float Reserved = 0;
    };

    void Free();
    void Copy(const cCamera& other) { *this = other; }

    // Seconds; 0 for a camera outside the list, and with a frame rate below 1.
    float GetStartTimeSec(int camera) const;
    float GetEndTimeSec(int camera) const; ///< Of its last frame.
    /// The sum of all frames' times: a frame more for each camera than from its start to its end.
    float CalcDurationSec() const;

    void Transform(const cMat4& matrix); ///< Positions by the matrix, orientations by its rotation.

    /// The pose at the state's camera and time, which is clamped to the camera's. Nothing for a camera outside the
    /// list.
    void FillViewerState(State* state) const;

    /// Advances the state, or lets it go back. A state without a camera begins at the start, or, backward, at the end;
    /// a step of 0 then shows the first frame and begins nothing. Time left over at the end of a camera is dropped.
    ///
    /// @return whether the path has begun anew, or there is nothing to play
    bool Step(State* state, float deltaSec) const;

    int FrameRate = 0; ///< Frames a second, of all shots.
    cList<Camera> Cameras;

private:
    bool IsCamera(int camera) const { return camera >= 0 && camera < Cameras.Count(); }
    void SetStill(const Camera& camera, const Frame& frame, State* state) const;
};

} // namespace trellis
