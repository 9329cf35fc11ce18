#include "animation/cAnim.h"

#include "mesh/cModel.h"
#include "render/cRender.h"

#include <algorithm>
#include <climits>
#include <cmath>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace trellis {

namespace {

using FrameJoint = cAnim::FrameJoint;

/// NaN becomes 0.
float Clamp(float v, float max) {
    return v > 0 ? std::min(v, max) : 0;
}

FrameJoint Mix(const FrameJoint& a, const FrameJoint& b, float t) {
    return {cVec3::Lerp(a.Position, b.Position, t), cQuat::Slerp(a.Orientation, b.Orientation, t, true),
            cVec3::Lerp(a.Scale, b.Scale, t)};
}

/// Whether a box takes no part in mixing. z does not tell: an empty box is crossed in all axes.
bool IsWithoutPull(const cBounds& box) {
    return box.min[0] > box.max[0] || box.min[1] > box.max[1];
}

/// One column of scale, rotation and translation in one matrix.
cVec4 ColumnOf(const FrameJoint& pose, const cMat3& rotation, int i) {
    const cVec3& s = pose.Scale;
    return {rotation.m[i] * s.x, rotation.m[3 + i] * s.y, rotation.m[6 + i] * s.z, pose.Position[i]};
}

void ToJointPlain(const FrameJoint& pose, const cMat4& bindPoseInv, cAnim::Joint* out) {
    const cMat3 rotation = pose.Orientation.ToMat3();
    for (int row = 0; row < 3; row++) {
        const cVec4 column = ColumnOf(pose, rotation, row);
        for (int i = 0; i < 4; i++) {
            out->m[row * 4 + i] = cVec4::Dot(bindPoseInv.GetRow(i), column);
        }
    }
}

#if defined(__SSE2__)

void ToJoint(const FrameJoint& pose, const cMat4& bindPoseInv, cAnim::Joint* out) {
    const cMat3 rotation = pose.Orientation.ToMat3();
    __m128 x = _mm_loadu_ps(bindPoseInv.m), y = _mm_loadu_ps(bindPoseInv.m + 4);
    __m128 z = _mm_loadu_ps(bindPoseInv.m + 8), w = _mm_loadu_ps(bindPoseInv.m + 12);
    _MM_TRANSPOSE4_PS(x, y, z, w);
    for (int row = 0; row < 3; row++) {
        const cVec4 column = ColumnOf(pose, rotation, row);
        const __m128 xy = _mm_add_ps(_mm_mul_ps(x, _mm_set1_ps(column.x)), _mm_mul_ps(y, _mm_set1_ps(column.y)));
        const __m128 xyz = _mm_add_ps(xy, _mm_mul_ps(z, _mm_set1_ps(column.z)));
        _mm_storeu_ps(out->m + row * 4, _mm_add_ps(xyz, _mm_mul_ps(w, _mm_set1_ps(column.w))));
    }
}

#else

constexpr auto ToJoint = ToJointPlain;

#endif

/// A pose that takes part in a mix: of one frame, or between two of the same length.
struct Source {
    FrameJoint operator[](int joint) const { return To ? Mix(From[joint], To[joint], Fraction) : From[joint]; }

    const FrameJoint* From;
    const FrameJoint* To; // may be null
    float Fraction;
    float Rest; // share of the sources behind this one
};

/// Sources of one call of `Blend` at a time. They stay allocated; one set for each thread, as threads blend at once.
cList<Source>& Sources() {
    static thread_local cList<Source> s_Sources;
    s_Sources.Clear();
    return s_Sources;
}

float RestOf(const cList<float>& weights, int i) {
    return i < weights.Count() ? 1 - Clamp(weights[i], 1) : 0;
}

void BlendSources(const cList<Source>& sources, const cModel& model, cList<cAnim::Joint>* out) {
    const cList<cMat4>& bindPoseInv = model.GetBindPoseInv();
    const int joints = model.Joints.Count();
    out->SetCount(joints);
    for (int joint = 0; joint < joints; joint++) {
        int i = sources.Count() - 1;
        FrameJoint pose = sources[i][joint];
        while (--i >= 0) {
            pose = Mix(sources[i][joint], pose, sources[i].Rest);
        }
        ToJoint(pose, bindPoseInv[joint], &(*out)[joint]);
    }
}

} // namespace

void cAnim::Free() {
    Joints.Free();
    Frames.Free();
    Bounds.Free();
    FrameRate = 0;
}

double cAnim::GetDurationSec() const {
    return FrameRate < 1 || Frames.Count() < 2 ? 0.0 : double(Frames.Count() - 1) / FrameRate;
}

cAnim::Place cAnim::PlaceOf(float position) const {
    const int last = Frames.Count() - 1;
    if (last < 0) {
        return {-1, -1, 0};
    }
    position = Clamp(position, float(last));
    const int from = std::min(cMath::TruncateToInt(position), last);
    return {from, std::min(from + 1, last), position - float(from)};
}

cAnim::Place cAnim::PlaceAt(int frame) const {
    const int last = Frames.Count() - 1;
    frame = std::min(std::max(frame, 0), last);
    return {frame, frame, 0};
}

cBounds cAnim::BoxAt(const Place& place) const {
    if (place.From < 0 || place.To >= Bounds.Count()) {
        return cBounds::Empty; // boxes are optional to whoever makes a clip by hand
    }
    return place.From == place.To ? Bounds[place.From]
                                  : cBounds::Lerp(Bounds[place.From], Bounds[place.To], place.Fraction);
}

void cAnim::SetPlace(const Place& place, cList<FrameJoint>* out) const {
    if (place.From < 0) {
        out->Clear();
        return;
    }
    const cList<FrameJoint>&from = Frames[place.From], &to = Frames[place.To];
    if (place.From == place.To || from.Count() != to.Count()) {
        out->Copy(from);
        return;
    }
    out->SetCount(from.Count());
    for (int i = 0; i < from.Count(); i++) {
        (*out)[i] = Mix(from[i], to[i], place.Fraction);
    }
}

cBounds cAnim::SetPlace(const Place& place, const cModel& model, cList<Joint>* out) const {
    out->Clear();
    if (place.From >= 0 && Frames[place.From].Count() == model.Joints.Count()) {
        const cList<FrameJoint>&from = Frames[place.From], &to = Frames[place.To];
        const bool between = place.From != place.To && from.Count() == to.Count();
        cList<Source>& sources = Sources();
        sources.Add({from.Data(), between ? to.Data() : nullptr, place.Fraction, 0});
        BlendSources(sources, model, out);
    }
    return BoxAt(place);
}

void cAnim::SetFrame(float sec, cList<FrameJoint>* out) const {
    SetPlace(PlaceAt(sec), out);
}

void cAnim::SetFrame(int frame, cList<FrameJoint>* out) const {
    SetPlace(PlaceAt(frame), out);
}

cBounds cAnim::SetFrame(float sec, const cModel& model, cList<Joint>* out) const {
    return SetPlace(PlaceAt(sec), model, out);
}

cBounds cAnim::SetFrame(int frame, const cModel& model, cList<Joint>* out) const {
    return SetPlace(PlaceAt(frame), model, out);
}

void cAnim::ToJoints(const cList<FrameJoint>& pose, const cModel& model, cList<Joint>* out) {
    out->Clear();
    if (pose.Count() == model.Joints.Count()) {
        cList<Source>& sources = Sources();
        sources.Add({pose.Data(), nullptr, 0, 0});
        BlendSources(sources, model, out);
    }
}

void cAnim::ToJointsPlain(const cList<FrameJoint>& pose, const cModel& model, cList<Joint>* out) {
    out->Clear();
    if (pose.Count() == model.Joints.Count()) {
        const cList<cMat4>& bindPoseInv = model.GetBindPoseInv();
        out->SetCount(pose.Count());
        for (int i = 0; i < pose.Count(); i++) {
            ToJointPlain(pose[i], bindPoseInv[i], &(*out)[i]);
        }
    }
}

void cAnim::LerpFrames(cList<FrameJoint>* a, const cList<FrameJoint>& b, float t) {
    if (a->Count() == b.Count()) {
        for (int i = 0; i < b.Count(); i++) {
            (*a)[i] = Mix((*a)[i], b[i], t);
        }
    }
}

cBounds cAnim::Blend(const cList<const cAnim*>& anims, const cList<float>& times, const cList<float>& weights,
                     const cModel& model, cList<Joint>* out) {
    out->Clear();
    const int count = anims.Count();
    if (count == 0 || times.Count() != count || weights.Count() < count - 1) {
        return cBounds::Empty;
    }
    cList<Source>& sources = Sources();
    for (int i = 0; i < count; i++) {
        const Place place = anims[i]->PlaceAt(times[i]);
        if (place.From < 0) {
            return cBounds::Empty;
        }
        const cList<FrameJoint>&from = anims[i]->Frames[place.From], &to = anims[i]->Frames[place.To];
        if (from.Count() != model.Joints.Count() || to.Count() != from.Count()) {
            return cBounds::Empty;
        }
        sources.Add({from.Data(), place.From == place.To ? nullptr : to.Data(), place.Fraction, RestOf(weights, i)});
    }
    BlendSources(sources, model, out);
    cBounds box = anims[count - 1]->BoxAt(anims[count - 1]->PlaceAt(times[count - 1]));
    for (int i = count - 2; i >= 0; i--) {
        const cBounds other = anims[i]->BoxAt(anims[i]->PlaceAt(times[i]));
        if (!IsWithoutPull(other)) {
            box = IsWithoutPull(box) ? other : cBounds::Lerp(other, box, sources[i].Rest);
        }
    }
    return box;
}

void cAnim::Blend(const cList<cList<FrameJoint>>& poses, const cList<float>& weights, const cModel& model,
                  cList<Joint>* out) {
    out->Clear();
    const int count = poses.Count();
    if (count == 0 || weights.Count() < count - 1) {
        return;
    }
    cList<Source>& sources = Sources();
    for (int i = 0; i < count; i++) {
        if (poses[i].Count() != model.Joints.Count()) {
            return;
        }
        sources.Add({poses[i].Data(), nullptr, 0, RestOf(weights, i)});
    }
    BlendSources(sources, model, out);
}

void cAnim::Smooth() {
    for (int k = 1; k + 1 < Frames.Count(); k++) {
        const cList<FrameJoint>&before = Frames[k - 1], &after = Frames[k + 1];
        if (before.Count() == after.Count()) {
            Frames[k].Copy(before);
            LerpFrames(&Frames[k], after, 0.5f);
        }
    }
}

void cAnim::Crop(float from, float to) {
    if (Frames.Count() < 2) {
        return;
    }
    const auto nearest = [this](float sec) {
        const float frame = std::floor(float(FrameRate) * sec + 0.5f);
        return std::min(cMath::TruncateToInt(Clamp(frame, float(Frames.Count() - 1))), Frames.Count() - 1);
    };
    const int first = nearest(from), last = nearest(to);
    if (last - first < 2) {
        return;
    }
    const auto cut = [first, last](auto* list) {
        if (list->Count() > last) {
            list->RemoveAt(last, list->Count() - last);
        }
        list->RemoveAt(0, std::min(first, list->Count()));
    };
    cut(&Frames);
    cut(&Bounds);
}

void cAnim::ReSample(int frameRate) {
    const int frames = Frames.Count();
    if (frameRate < 1 || frameRate == FrameRate || frames < 2 || FrameRate < 1) {
        return;
    }
    const double wanted = std::floor(double(frames) * frameRate / FrameRate + 0.5);
    if (wanted > INT_MAX) {
        return;
    }
    const int count = std::max(int(wanted), 2);
    cList<cList<FrameJoint>> poses;
    cList<cBounds> boxes;
    poses.SetCount(count);
    boxes.SetCount(count);
    for (int k = 0; k < count; k++) {
        // In frames rather than seconds, which would miss the last one by a rounding.
        const Place place = PlaceOf(float(double(frames - 1) * k / (count - 1)));
        SetPlace(place, &poses[k]);
        boxes[k] = BoxAt(place);
    }
    Frames = std::move(poses);
    Bounds = std::move(boxes);
    FrameRate = frameRate;
}

void cAnim::Transform(const cMat4& matrix) {
    const cQuat rotation = matrix.ToQuat();
    for (cList<FrameJoint>& frame : Frames) {
        for (FrameJoint& joint : frame) {
            joint.Position = joint.Position * matrix;
            joint.Orientation = rotation * joint.Orientation;
        }
    }
    UpdateBounds();
}

void cAnim::UpdateBounds() {
    Bounds.SetCount(Frames.Count());
    for (int i = 0; i < Frames.Count(); i++) {
        cBounds box = cBounds::Empty;
        for (const FrameJoint& joint : Frames[i]) {
            box.Add(joint.Position);
        }
        Bounds[i] = box;
    }
}

void cAnim::UpdateBounds(const cModel& model) {
    cList<Joint> joints;
    cModel posed;
    Bounds.SetCount(Frames.Count());
    for (int i = 0; i < Frames.Count(); i++) {
        SetFrame(i, model, &joints);
        model.SetAnim(joints, &posed);
        posed.UpdateBounds();
        Bounds[i] = posed.Bounds;
    }
}

void cAnim::DrawPlace(const Place& place, bool joints, bool names, int font) const {
    cList<FrameJoint> pose;
    SetPlace(place, &pose);
    const int count = std::min(pose.Count(), Joints.Count());
    for (int i = 0; joints && i < count; i++) {
        const int parent = Joints[i].Parent;
        if (parent >= 0 && parent < count) {
            cRender::DrawLine(pose[i].Position, pose[parent].Position, cColor::White);
        }
    }
    cRender::DrawBounds(BoxAt(place), cColor::Green);
    if (!names) {
        return;
    }
    const cMat4 world = cRender::GetWorldMatrix();
    cRender::PushWorldMatrix();
    cRender::SetWorldMatrix(cMat4::Identity); // text takes points of the world
    for (int i = 0; i < count; i++) {
        const cVec4 at = cVec4(pose[i].Position, 1) * world;
        const cVec3 point = at.ToVec3();
        cRender::DrawString(font, Joints[i].Name, at.w != 1 ? point / at.w : point, cColor::Blue);
    }
    cRender::PopWorldMatrix();
}

void cAnim::DrawFrame(float sec, bool joints, bool names) const {
    const auto font = [] {
        static const int s_Font = cRender::GetFontID("Calibri 11");
        return s_Font;
    };
    DrawPlace(PlaceAt(sec), joints, names, names ? font() : -1);
}

void cAnim::DrawFrame(int frame, bool joints, bool names) const {
    const auto font = [] {
        static const int s_Font = cRender::GetFontID("Calibri 11");
        return s_Font;
    };
    DrawPlace(PlaceAt(frame), joints, names, names ? font() : -1);
}

} // namespace trellis
