#include "animation/cCodecMd5Anim.h"

#include <bit>

#include "animation/cAnim.h"
#include "math/cMat3.h"
#include "mesh/cCodecMd5.h"

namespace trellis {

namespace {

using Lines = cCodecMd5_Lines;

constexpr const char* s_BaseFrameDelimiters = " ()\t";

// Bytes of the shortest lines of a joint, one of the hierarchy and one of the base frame, and of a frame.
constexpr int s_JointBytes = 20, s_FrameBytes = 9;

// A file names few numbers of a frame, or none: the poses would outgrow it without end.
constexpr long long s_MaxPoses = 1 << 22;

class cCodecMd5_Anim {
public:
    struct Joint {
        cStr Name;
        int Parent, Flags, Start;
        cVec3 BasePosition; // of the base frame, relative to the parent
        cVec3 BaseOrientation;
        cVec3 Position; // of the pose: first relative to the parent, then built
        cQuat Orientation;
    };

    bool Load(const cFile& file) {
        Lines lines(file);
        int joints = 0, baseJoints = 0; // read so far
        while (lines.Next(cCodecMd5_Blanks)) {
            if (lines.Is("numFrames")) {
                if (!lines.GetCount(s_FrameBytes, &m_Frames)) {
                    return false;
                }
            } else if (lines.Is("numJoints")) {
                if (!lines.GetCount(s_JointBytes, &Joints)) {
                    return false;
                }
            } else if (lines.Is("frameRate")) {
                if (!lines.Get(1, &FrameRate) || FrameRate < 0) {
                    return false;
                }
            } else if (lines.Is("numAnimatedComponents")) {
                if (!lines.Get(1, &m_Components) || m_Components < 0) {
                    return false;
                }
            } else if (lines.Is("hierarchy")) {
                if (!LoadHierarchy(lines, &joints)) {
                    return false;
                }
            } else if (lines.Is("baseframe")) {
                if (!LoadBaseFrame(lines, &baseJoints)) {
                    return false;
                }
            } else if (lines.Is("frame")) {
                Frame* frame = lines.GetElement(m_Frames);
                if (!frame || !LoadFrame(lines, frame)) {
                    return false;
                }
            }
        }
        if (joints != Joints.Count() || baseJoints != joints || !Check()) {
            return false;
        }
        ResetJoints();
        BuildJoints();
        return true;
    }

    /// Poses the joints, in the file's space.
    void SetFrame(int n) {
        ResetJoints();
        const cList<float>& values = m_Frames[n].Values;
        for (Joint& joint : Joints) {
            cVec3 v = joint.BaseOrientation;
            float* const parts[] = {&joint.Position.x, &joint.Position.y, &joint.Position.z, &v.x, &v.y, &v.z};
            int next = joint.Start;
            for (int bit = 0; bit < 6; bit++) {
                if (joint.Flags & 1 << bit) {
                    *parts[bit] = values[next++];
                }
            }
            joint.Orientation = cCodecMd5_Orientation(v);
        }
        BuildJoints();
    }

    int FrameCount() const { return m_Frames.Count(); }

    cList<Joint> Joints;
    int FrameRate = 0;

private:
    struct Frame {
        bool Loaded;
        cList<float> Values;
    };

    // Each answers false for a bad line, an element past its list, and at the end of the file.

    bool LoadHierarchy(Lines& lines, int* loaded) {
        return lines.ForBlock(cCodecMd5_BlanksAndMarks, [&] {
            if (*loaded >= Joints.Count()) {
                return false;
            }
            Joint& joint = Joints[(*loaded)++];
            joint.Name = lines[0];
            return lines.Get(1, &joint.Parent) && lines.Get(2, &joint.Flags) && lines.Get(3, &joint.Start);
        });
    }

    bool LoadBaseFrame(Lines& lines, int* loaded) {
        return lines.ForBlock(s_BaseFrameDelimiters, [&] {
            if (*loaded >= Joints.Count()) {
                return false;
            }
            Joint& joint = Joints[(*loaded)++];
            return lines.Get(0, &joint.BasePosition) && lines.Get(3, &joint.BaseOrientation);
        });
    }

    bool LoadFrame(Lines& lines, Frame* frame) {
        frame->Loaded = true;
        frame->Values.Clear();
        return lines.ForBlock(cCodecMd5_Blanks, [&] {
            for (int i = 0; i < lines.Count(); i++) {
                float value;
                if (!lines.Get(i, &value)) {
                    return false;
                }
                frame->Values.Add(value);
            }
            return true;
        });
    }

    /// Whether all that the joints name is there. Lists may be sized behind the lines that name their elements.
    bool Check() const {
        if ((long long)Joints.Count() * m_Frames.Count() > s_MaxPoses) {
            return false;
        }
        for (const Joint& joint : Joints) {
            const int values = std::popcount(unsigned(joint.Flags) & 63);
            if (joint.Parent < -1 || joint.Parent >= Joints.Count() ||
                (values > 0 && (joint.Start < 0 || joint.Start > m_Components - values))) {
                return false;
            }
        }
        for (const Frame& frame : m_Frames) {
            if (!frame.Loaded || frame.Values.Count() != m_Components) {
                return false;
            }
        }
        return true;
    }

    void ResetJoints() {
        for (Joint& joint : Joints) {
            joint.Position = joint.BasePosition;
            joint.Orientation = cCodecMd5_Orientation(joint.BaseOrientation);
        }
    }

    void BuildJoints() {
        for (Joint& joint : Joints) {
            if (joint.Parent >= 0) { // built before: parents come first
                const Joint& parent = Joints[joint.Parent];
                joint.Position = joint.Position * parent.Orientation.ToMat3() + parent.Position;
                joint.Orientation = parent.Orientation * joint.Orientation;
            }
        }
    }

    cList<Frame> m_Frames;
    int m_Components = 0; // numbers in each frame
};

} // namespace

bool cCodecMd5Anim::Decode(const cFile& file, cAnim* out) {
    out->Free();
    cCodecMd5_Anim source;
    if (!source.Load(file)) {
        return false;
    }
    for (const cCodecMd5_Anim::Joint& joint : source.Joints) {
        out->Joints.Add({joint.Name, joint.Parent});
    }
    out->FrameRate = source.FrameRate;
    const cCodecMd5_Conversion conversion;
    out->Frames.SetCount(source.FrameCount());
    for (int i = 0; i < source.FrameCount(); i++) {
        source.SetFrame(i);
        cList<cAnim::FrameJoint>& frame = out->Frames[i];
        frame.Resize(source.Joints.Count(), false); // no slack in each of so many
        for (const cCodecMd5_Anim::Joint& joint : source.Joints) {
            frame.Add({conversion.Position(joint.Position), conversion.Orientation(joint.Orientation), cVec3::One});
        }
    }
    out->UpdateBounds();
    return true;
}

} // namespace trellis
