#include "animation/cCodecAnim.h"

#include <climits>

#include "animation/cAnim.h"
#include "files/cNativeFile.h"

namespace trellis {

namespace {

constexpr unsigned short s_Magic = 0x6163;
constexpr unsigned char s_Version = 0;

// The least that a joint takes in a file, and what each frame takes.
constexpr int s_JointBytes = 4, s_FrameJointBytes = 18, s_BoxBytes = 12;

bool ReadJoint(const cFile& file, int joints, cAnim::Hierarchy* out) {
    short parent;
    if (!cNativeFile::ReadName(file, &out->Name) || !file.ReadShort(&parent) || parent < -1 || parent >= joints) {
        return false;
    }
    out->Parent = parent;
    return true;
}

bool ReadFrameJoint(const cFile& file, cAnim::FrameJoint* out) {
    cQuat& q = out->Orientation;
    if (!cNativeFile::ReadRanges(file, out->Position.ToPtr(), 3) || !cNativeFile::ReadUnits(file, q.ToPtr(), 3) ||
        !cNativeFile::ReadRanges(file, out->Scale.ToPtr(), 3)) {
        return false;
    }
    q.w = cNativeFile::RestoreW(q);
    return true;
}

bool cCodecAnimDecode(const cFile& file, cAnim* out) {
    unsigned short magic;
    unsigned char version;
    short frameRate, joints;
    int frames;
    if (!file.ReadWord(&magic) || magic != s_Magic || !cNativeFile::ReadByte(file, &version) || version != s_Version ||
        !file.ReadShort(&frameRate) || frameRate < 0 || !file.ReadShort(&joints) ||
        !cNativeFile::IsCount(file, joints, s_JointBytes)) {
        return false;
    }
    out->FrameRate = frameRate;
    out->Joints.SetCount(joints);
    for (cAnim::Hierarchy& joint : out->Joints) {
        if (!ReadJoint(file, joints, &joint)) {
            return false;
        }
    }
    if (!file.ReadInt(&frames) || !cNativeFile::IsCount(file, frames, joints * s_FrameJointBytes + s_BoxBytes)) {
        return false;
    }
    out->Frames.SetCount(frames);
    out->Bounds.SetCount(frames);
    for (cList<cAnim::FrameJoint>& frame : out->Frames) {
        frame.Resize(joints, false); // no slack in each of so many
        frame.SetCount(joints);
        for (cAnim::FrameJoint& joint : frame) {
            if (!ReadFrameJoint(file, &joint)) {
                return false;
            }
        }
    }
    for (cBounds& box : out->Bounds) {
        if (!cNativeFile::ReadRanges(file, box.min.ToPtr(), 3) || !cNativeFile::ReadRanges(file, box.max.ToPtr(), 3)) {
            return false;
        }
    }
    return true;
}

} // namespace

bool cCodecAnim::Decode(const cFile& file, cAnim* out) {
    out->Free();
    if (cCodecAnimDecode(file, out)) {
        return true;
    }
    out->Free();
    return false;
}

bool cCodecAnim::Encode(const cAnim& anim, cFile* out) {
    const int joints = anim.Joints.Count();
    if (anim.FrameRate < 0 || anim.FrameRate > SHRT_MAX || joints > SHRT_MAX ||
        anim.Bounds.Count() != anim.Frames.Count()) {
        return false;
    }
    out->WriteWord(s_Magic);
    out->WriteBytes(&s_Version, 1);
    out->WriteShort(short(anim.FrameRate));
    out->WriteShort(short(joints));
    for (const cAnim::Hierarchy& joint : anim.Joints) {
        if (joint.Parent < -1 || joint.Parent >= joints || !cNativeFile::WriteName(out, joint.Name)) {
            return false;
        }
        out->WriteShort(short(joint.Parent));
    }
    out->WriteInt(anim.Frames.Count());
    for (const cList<cAnim::FrameJoint>& frame : anim.Frames) {
        if (frame.Count() != joints) {
            return false;
        }
        for (const cAnim::FrameJoint& joint : frame) {
            const cQuat q = cNativeFile::WithoutSign(joint.Orientation);
            cNativeFile::WriteRanges(out, joint.Position.ToPtr(), 3);
            cNativeFile::WriteUnits(out, q.ToPtr(), 3);
            cNativeFile::WriteRanges(out, joint.Scale.ToPtr(), 3);
        }
    }
    for (const cBounds& box : anim.Bounds) {
        cNativeFile::WriteRanges(out, box.min.ToPtr(), 3);
        cNativeFile::WriteRanges(out, box.max.ToPtr(), 3);
    }
    return true;
}

} // namespace trellis
