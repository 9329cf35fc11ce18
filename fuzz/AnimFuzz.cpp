// Animations and camera paths from arbitrary bytes, by the codec that the build names. Whatever comes out is whole, can
// be played, and what the native codec writes of it reads back to the same bytes; a native file reads back to its own.
#include "animation/cAnim.h"
#include "animation/cCamera.h"
#include "animation/cCodecAnim.h"
#include "animation/cCodecCamera.h"
#include "animation/cCodecMd5Anim.h"
#include "foundation/cLog.h"
#include "fuzz/Fuzz.h"
#include "mesh/cModel.h"

#include <type_traits>

using namespace trellis;

namespace {

constexpr bool s_IsCamera = std::is_same_v<ANIM_CODEC, cCodecCamera>;
using Asset = std::conditional_t<s_IsCamera, cCamera, cAnim>;
using Native = std::conditional_t<s_IsCamera, cCodecCamera, cCodecAnim>;

[[maybe_unused]] void CheckWhole(const cCamera& camera) {
    Check(camera.FrameRate >= 0);
}

[[maybe_unused]] void CheckWhole(const cAnim& anim) {
    const int joints = anim.Joints.Count();
    Check(anim.FrameRate >= 0 && anim.Bounds.Count() == anim.Frames.Count());
    for (const cAnim::Hierarchy& joint : anim.Joints) {
        Check(joint.Parent >= -1 && joint.Parent < joints);
    }
    for (const cList<cAnim::FrameJoint>& frame : anim.Frames) {
        Check(frame.Count() == joints);
    }
}

[[maybe_unused]] void Play(const cCamera&) {}

[[maybe_unused]] void Play(cAnim anim) {
    cModel model;
    for (const cAnim::Hierarchy& joint : anim.Joints) {
        model.Joints.Add({joint.Name, joint.Parent, cVec3::Zero, cQuat::Identity});
    }
    cList<const cAnim*> clips;
    clips.Add(&anim, 2);
    cList<float> times, weights;
    times.Add(0.1f, 2);
    weights.Add(0.3f);
    cList<cAnim::Joint> joints;
    cAnim::Blend(clips, times, weights, model, &joints);
    Check(joints.Count() == (anim.Frames.IsEmpty() ? 0 : model.Joints.Count()));
    anim.Smooth();
    anim.Crop(0.05f, 0.5f);
    if (anim.Frames.Count() < 100 && anim.FrameRate > 9) {
        anim.ReSample(30);
    }
    anim.Transform(cMat4::RotationX(30));
    CheckWhole(anim);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cLog::GetLogMutable().Clear();
    const cFile file = FileOf(data, size);
    ANIM_CODEC codec;
    Asset asset;
    if (!codec.Decode(file, &asset)) {
        return 0;
    }
    CheckWhole(asset);
    Native native;
    cFile first;
    const bool ok = native.Encode(asset, &first);
    if constexpr (std::is_same_v<ANIM_CODEC, Native> && !s_IsCamera) {
        Check(ok && StartsWith(file, first));
    }
    if (ok) {
        Asset back;
        first.SetPos(0);
        Check(native.Decode(first, &back));
        CheckWhole(back);
        cFile second;
        Check(native.Encode(back, &second) && AreSame(first, second));
    }
    Play(asset);
    return 0;
}
