// A clip of sampled joint poses at a fixed frame rate. Times are in seconds, poses in model space.
#pragma once

#include "animation/cAnim_Joint.h"
#include "foundation/cStr.h"
#include "math/cBounds.h"
#include "math/cMat4.h"
#include "math/cQuat.h"

namespace trellis {

class cModel;

/// Data that anyone may change. Reading is thread-safe, once the model's `GetBindPoseInv` has been called.
class cAnim {
public:
    struct Hierarchy {
        cStr Name;
        int Parent; ///< -1 for a root.
    };

    /// Not relative to the parent.
    struct FrameJoint {
        cVec3 Position;
        cQuat Orientation;
        cVec3 Scale;
    };

    using Joint = cAnim_Joint;

    void Free();
    void Copy(const cAnim& other) { *this = other; }

    /// From the first frame to the last; 0 for fewer than 2 frames or a frame rate below 1.
    double GetDurationSec() const;

    // Poses. Times before and behind the clip give its ends; between two frames positions and scales go along the line,
    // orientations along the shorter arc. Without frames poses and boxes are empty. Nothing is allocated once `out` has
    // its capacity.

    void SetFrame(float sec, cList<FrameJoint>* out) const;
    void SetFrame(int frame, cList<FrameJoint>* out) const;
    /// What `ToJoints` makes of the pose. @return its box, between those of the frames
    cBounds SetFrame(float sec, const cModel& model, cList<Joint>* out) const;
    cBounds SetFrame(int frame, const cModel& model, cList<Joint>* out) const;

    /// For each joint: out of the bind pose, then scale, rotation, translation. Empty when the pose has not as many
    /// joints as the model.
    static void ToJoints(const cList<FrameJoint>& pose, const cModel& model, cList<Joint>* out);
    /// The same without SSE2, to the bit.
    static void ToJointsPlain(const cList<FrameJoint>& pose, const cModel& model, cList<Joint>* out);

    /// Takes `*a` to `b`; nothing happens when their lengths differ. @param t  0 for `*a`, 1 for `b`
    static void LerpFrames(cList<FrameJoint>* a, const cList<FrameJoint>& b, float t);

    /// Mixes clips, each at its own time. A weight is the share of its clip against all the clips after it, so that
    /// (0.5, 0.5) gives three clips 0.5, 0.25 and 0.25. Different threads may blend at once.
    ///
    /// @param times    one for each clip
    /// @param weights  clamped to [0, 1]; the last clip needs none
    /// @return the box, mixed likewise but for the empty ones; `cBounds::Empty`, and `*out` is empty, when there are no
    ///         clips, too few times or weights or too many times, or a clip without frames or of other joints than the
    ///         model's
    static cBounds Blend(const cList<const cAnim*>& anims, const cList<float>& times, const cList<float>& weights,
                         const cModel& model, cList<Joint>* out);
    /// The same for poses.
    static void Blend(const cList<cList<FrameJoint>>& poses, const cList<float>& weights, const cModel& model,
                      cList<Joint>* out);

    /// Each inner frame, from the front, becomes the middle of its neighbours, the earlier of which has become so
    /// already. Boxes stay.
    void Smooth();

    /// Keeps the frames from the nearest to `from` up to the one before the nearest to `to`; does nothing when fewer
    /// than 2 would be left.
    void Crop(float from, float to);

    /// About the same duration at another rate, both ends kept. Nothing happens for a rate below 1, for fewer than 2
    /// frames, for a clip that has no rate, and for more frames than an int counts.
    void ReSample(int frameRate);

    void Transform(const cMat4& matrix); ///< Also updates the boxes, by the joints.

    void UpdateBounds();                    ///< Boxes around the joints' positions.
    void UpdateBounds(const cModel& model); ///< Boxes around the model's vertices.

    /// Draws the box and, with `joints`, the lines from the joints to their parents. @param names  also writes those
    void DrawFrame(float sec, bool joints, bool names) const;
    void DrawFrame(int frame, bool joints, bool names) const;

    cList<Hierarchy> Joints;
    cList<cList<FrameJoint>> Frames; ///< For each frame, one entry for each joint.
    cList<cBounds> Bounds;           ///< For each frame.
    int FrameRate = 0;               ///< Frames a second.

private:
    /// A place between two frames. Without frames both are -1.
    struct Place {
        int From, To;
        float Fraction;
    };

    Place PlaceOf(float position) const; ///< In frames.
    Place PlaceAt(float sec) const { return PlaceOf(float(FrameRate) * sec); }
    Place PlaceAt(int frame) const;
    void SetPlace(const Place& place, cList<FrameJoint>* out) const;
    cBounds SetPlace(const Place& place, const cModel& model, cList<Joint>* out) const;
    cBounds BoxAt(const Place& place) const;
    void DrawPlace(const Place& place, bool joints, bool names, int font) const;
};

} // namespace trellis
