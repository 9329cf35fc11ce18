#include "animation/cAnim.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

#include "math/cRotation.h"
#include "mesh/cModel.h"
#include "tests/math/Near.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"

namespace trellis {
namespace {

using Pose = cList<cAnim::FrameJoint>;
using SkinJoints = cList<cAnim::Joint>;

const cVec3 s_Ones(1, 1, 1);

/// One joint that stands at these x, and turned about Z by as many degrees; boxes around it of that half width.
cAnim Clip(std::vector<float> frames, int frameRate = 1) {
    cAnim anim;
    anim.FrameRate = frameRate;
    anim.Joints.Add({"root", -1});
    for (const float x : frames) {
        anim.Frames.SetCount(anim.Frames.Count() + 1);
        anim.Frames[anim.Frames.Count() - 1].Add({{x, 0, 0}, cMat4::RotationZ(x).ToQuat(), s_Ones});
        anim.Bounds.Add(cBounds(cVec3(-x, -x, -x), cVec3(x, x, x)));
    }
    return anim;
}

cModel Model(int joints = 1) {
    cModel model;
    model.Static = false;
    for (int i = 0; i < joints; i++) {
        model.Joints.Add({"j", -1, cVec3::Zero, cQuat::Identity});
    }
    return model;
}

std::string Xs(const cAnim& anim) {
    std::string text;
    for (const Pose& frame : anim.Frames) {
        text += std::string(cStr::Format("%g ", double(frame[0].Position.x)).Text());
    }
    return text;
}

TEST(Anim, SamplesByTime) {
    const cAnim anim = Clip({0, 10, 30}, 2);
    EXPECT_EQ(anim.GetDurationSec(), 1.0);
    EXPECT_EQ(Clip({1, 2, 3}, 0).GetDurationSec() + Clip({1}, 5).GetDurationSec(), 0.0);
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float Sec, X;
    } cases[] = {{-1, 0}, {0, 0}, {0.25f, 5}, {0.5f, 10}, {0.875f, 25}, {1, 30}, {1e30f, 30}, {nan, 0}};
    Pose pose;
    SkinJoints joints;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Sec);
        anim.SetFrame(c.Sec, &pose);
        EXPECT_FLOAT_EQ(pose[0].Position.x, c.X);
        EXPECT_FLOAT_EQ(pose[0].Orientation.ToRotation().angle, c.X);
        EXPECT_EQ(pose[0].Scale, s_Ones);
        EXPECT_FLOAT_EQ(anim.SetFrame(c.Sec, Model(), &joints).max[0], c.X);
        EXPECT_FLOAT_EQ(joints[0].m[3], c.X);
    }
    anim.SetFrame(-5, &pose);
    EXPECT_EQ(pose[0].Position.x, 0);
    EXPECT_EQ(anim.SetFrame(7, Model(), &joints).max[0], 30);
    anim.SetFrame(1, Model(2), &joints);
    EXPECT_EQ(joints.Count(), 0) << "another skeleton";
    EXPECT_EQ(cAnim().SetFrame(1.0f, Model(), &joints), cBounds::Empty);
    cAnim().SetFrame(1.0f, &pose);
    EXPECT_EQ(pose.Count() + joints.Count(), 0);
    Clip({4}).SetFrame(0.5f, &pose);
    EXPECT_EQ(pose[0].Position.x, 4) << "a single frame";
    // The short way: the same rotation with the other sign.
    cAnim turned = Clip({0, 90});
    turned.Frames[1][0].Orientation = -turned.Frames[1][0].Orientation;
    turned.SetFrame(0.5f, &pose);
    EXPECT_FLOAT_EQ(pose[0].Orientation.ToRotation().angle, 45);
}

TEST(Anim, JointsLeaveTheBindPose) {
    cModel model = Model();
    model.Joints[0] = {"j", -1, {1, 0, 0}, cMat4::RotationZ(90).ToQuat()};
    Pose pose;
    pose.Add({{0, 0, 5}, cMat4::RotationX(90).ToQuat(), {2, 3, 4}});
    SkinJoints joints;
    cAnim::ToJoints(pose, model, &joints);
    // (1, 2, 3) is (2, 0, 3) in the bind pose's joint; scaled (4, 0, 12), turned about X (4, -12, 0), moved by 5.
    const float* m = joints[0].m;
    const float expected[] = {4, -12, 5};
    for (int r = 0; r < 3; r++) {
        EXPECT_NEAR(m[r * 4] + m[r * 4 + 1] * 2 + m[r * 4 + 2] * 3 + m[r * 4 + 3], expected[r], 1e-5f);
    }
}

TEST(Anim, JointsAreTheSameWithoutSse) {
    Cases cases;
    cModel model = Model(50);
    Pose pose;
    for (cModel::Joint& joint : model.Joints) {
        const cVec3 v = cases.Vec(1);
        joint = {"j", -1, cases.Vec(), cQuat::Normalize(cQuat(v, cases.In(-1, 1)))};
        pose.Add({cases.Vec(), cQuat(cases.Vec(1), 0.5f), cases.Vec(3)});
    }
    SkinJoints joints, plain;
    cAnim::ToJoints(pose, model, &joints);
    cAnim::ToJointsPlain(pose, model, &plain);
    EXPECT_EQ(std::memcmp(joints.Data(), plain.Data(), 50 * sizeof(cAnim::Joint)), 0);
}

TEST(Anim, BlendsNestedShares) {
    const cAnim a = Clip({0, 0}), b = Clip({10, 30}), c = Clip({100});
    const float x = 20; // of b in the middle
    const struct {
        std::vector<const cAnim*> Clips;
        std::vector<float> Weights;
        float X;
    } cases[] = {
        {{&b}, {}, x},
        {{&a, &b}, {1}, 0},
        {{&a, &b}, {7, 9}, 0},
        {{&a, &b}, {0}, x},
        {{&a, &b}, {-1}, x},
        {{&b, &c}, {0.75f}, 0.75f * x + 25},
        {{&a, &b, &c}, {0.5f, 0.5f}, 0.25f * x + 25},
        {{&c, &b, &a}, {0.5f, 0.5f}, 50 + 0.25f * x},
    };
    SkinJoints joints, again;
    for (const auto& k : cases) {
        cList<const cAnim*> clips;
        cList<float> times, weights;
        cList<Pose> poses;
        for (const cAnim* clip : k.Clips) {
            clips.Add(clip);
            times.Add(0.5f);
            poses.Add(Pose());
            clip->SetFrame(0.5f, &poses[poses.Count() - 1]);
        }
        weights.AddRange(k.Weights.data(), int(k.Weights.size()));
        const cBounds box = cAnim::Blend(clips, times, weights, Model(), &joints);
        ASSERT_EQ(joints.Count(), 1);
        EXPECT_FLOAT_EQ(joints[0].m[3], k.X);
        EXPECT_FLOAT_EQ(box.max[2], k.X);
        EXPECT_NEAR(joints[0].m[4], std::sin(k.X * cMath::RadsPerDeg), 1e-6f);
        cAnim::Blend(poses, weights, Model(), &again);
        EXPECT_EQ(std::memcmp(joints.Data(), again.Data(), sizeof(cAnim::Joint)), 0);

        // What does not fit together empties the list.
        const auto refused = [&](const cModel& model) {
            again.SetCount(1);
            return cAnim::Blend(clips, times, weights, model, &again) == cBounds::Empty && again.IsEmpty();
        };
        EXPECT_TRUE(refused(Model(2)));
        cAnim::Blend(poses, weights, Model(2), &again);
        EXPECT_EQ(again.Count(), 0);
        times.Add(0);
        EXPECT_TRUE(refused(Model()));
        times.RemoveAt(0);
        const cAnim none;
        clips[0] = &none;
        EXPECT_TRUE(refused(Model()));
        clips[0] = &a;
        weights.SetCount(clips.Count() - 2 < 0 ? 0 : clips.Count() - 2);
        EXPECT_EQ(refused(Model()), clips.Count() > 1);
        clips.Clear();
        times.Clear();
        EXPECT_TRUE(refused(Model()));
    }
}

TEST(Anim, EmptyBoxesDoNotPull) {
    cAnim a = Clip({2}), b = Clip({4});
    const cBounds full = a.Bounds[0], other = b.Bounds[0], half(cVec3(-3, -3, -3), cVec3(3, 3, 3));
    const cBounds crossedZ(cVec3(-4, -4, 4), cVec3(4, 4, -4)); // not an empty one here
    const struct {
        cBounds A, B, Mixed;
    } cases[] = {{full, other, half},
                 {cBounds::Empty, other, other},
                 {full, cBounds::Empty, full},
                 {cBounds::Empty, cBounds::Empty, cBounds::Empty},
                 {full, crossedZ, cBounds(cVec3(-3, -3, 1), cVec3(3, 3, -1))}};
    cList<const cAnim*> clips;
    clips.Add(&a);
    clips.Add(&b);
    cList<float> times, weights;
    times.Add(0, 2);
    weights.Add(0.5f);
    SkinJoints joints;
    for (const auto& c : cases) {
        a.Bounds[0] = c.A;
        b.Bounds[0] = c.B;
        EXPECT_EQ(cAnim::Blend(clips, times, weights, Model(), &joints), c.Mixed);
    }
}

TEST(Anim, Edits) {
    cAnim anim = Clip({0, 8, 4, 0});
    anim.Smooth();
    EXPECT_EQ(Xs(anim), "0 2 1 0 ") << "2 is the middle of 0 and 4, 1 that of the new 2 and 0";
    EXPECT_FLOAT_EQ(anim.Frames[1][0].Orientation.ToRotation().angle, 2);

    const struct {
        float From, To;
        const char* Left;
    } crops[] = {{0, 4, "0 1 2 3 "},   {0.5f, 2.5f, "1 2 "}, {0.4f, 2.4f, "0 1 "}, {2, 3, "0 1 2 3 4 "},
                 {3, 1, "0 1 2 3 4 "}, {-9, 9, "0 1 2 3 "},  {2, 1e30f, "2 3 "}};
    for (const auto& c : crops) {
        anim = Clip({0, 1, 2, 3, 4});
        anim.Crop(c.From, c.To);
        EXPECT_EQ(Xs(anim), c.Left);
        EXPECT_EQ(anim.Bounds[0].max[0], anim.Frames[0][0].Position.x);
        EXPECT_EQ(anim.Bounds.Count(), anim.Frames.Count());
    }

    const struct {
        int Rate, FrameRate;
        const char* Left;
    } rates[] = {{3, 3, "0 2 4 6 8 "}, // 4.5 frames
                 {4, 4, "0 1.6 3.2 4.8 6.4 8 "}, {1, 1, "0 8 "}, {2, 2, "0 4 8 "}, {0, 2, "0 4 8 "}, {-3, 2, "0 4 8 "},
                 {INT_MAX, 2, "0 4 8 "}};
    for (const auto& r : rates) {
        anim = Clip({0, 4, 8}, 2);
        anim.ReSample(r.Rate);
        EXPECT_EQ(anim.FrameRate, r.FrameRate);
        ASSERT_EQ(anim.Bounds.Count(), anim.Frames.Count());
        EXPECT_EQ(Xs(anim), r.Left);
        EXPECT_FLOAT_EQ(anim.Bounds[anim.Bounds.Count() - 1].max[0],
                        anim.Frames[anim.Frames.Count() - 1][0].Position.x);
    }
    anim = Clip({1, 2}, 0);
    anim.ReSample(5);
    EXPECT_EQ(anim.FrameRate, 0);

    anim = Clip({90});
    anim.Frames[0].Add(anim.Frames[0][0]);
    anim.Frames[0][1].Position = {0, 7, 0};
    anim.Transform(cMat4::RotationX(90) * cMat4::Translation(1, 0, 0));
    EXPECT_TRUE(Near(anim.Frames[0][1].Position, cVec3(1, 0, 7), 1e-5f));
    EXPECT_TRUE(Near(cQuat::Rotate({1, 0, 0}, anim.Frames[0][0].Orientation), cVec3(0, 0, 1), 1e-5f));
    EXPECT_TRUE(Near(anim.Bounds[0].max, cVec<float, 3>(91, 0, 7), 1e-5f));
}

/// Weights of all kinds, indexes in and out of the list.
cModel Skinned() {
    cModel model = Model(3);
    model.Meshes.SetCount(1);
    model.Meshes[0].Indices.Add(2);
    cMath::Randomize(5);
    for (int i = 0; i < 500; i++) {
        float floats[sizeof(cVertex::Anim) / sizeof(float)];
        for (float& f : floats) {
            f = cMath::RandRange1();
        }
        cVertex::Anim v;
        std::memcpy(static_cast<void*>(&v), floats, sizeof(v));
        v.Indices *= i % 3 == 0 ? 4.0f : 1.4f;
        v.Indices += cVec4(1, 1, 1, 1) * 1.5f;
        v.Weights[i % 4] = i % 5 == 0 ? 0 : v.Weights[i % 4];
        model.Meshes[0].AnimVertices.Add(v);
    }
    cVertex::Anim* v = model.Meshes[0].AnimVertices.Data();
    v[0].Weights = cVec4(0, 0, 0, 0);
    v[1].Weights = v[2].Weights = v[3].Weights = cVec4(0.5f, 0.25f, 0, 0);
    v[1].Indices = {1.9f, 2, 0, 0};
    v[2].Indices = {-1, 3, 0, 0};
    v[3].Indices = {-0.5f, std::numeric_limits<float>::quiet_NaN(), 0, 0};
    return model;
}

TEST(Anim, Skins) {
    cModel model = Skinned(), out, plain;
    SkinJoints joints;
    for (int i = 0; i < 3; i++) {
        const float s = float(i + 1);
        joints.Add({{s, 0, 0, 10 * s, 0, s, 0, 0, 0, 0, s, 0}});
    }
    const cVertex::Anim* from = model.Meshes[0].AnimVertices.Data();
    model.SetAnim(joints, &out);
    ASSERT_EQ(out.Meshes[0].BumpVertices.Count(), 500);
    EXPECT_EQ(out.Meshes[0].Indices.Count(), 1);
    const cVertex::Bump* v = out.Meshes[0].BumpVertices.Data();
    EXPECT_EQ(std::memcmp(&v[0], &from[0], sizeof(v[0])), 0) << "not skinned";
    EXPECT_EQ(std::memcmp(&v[2], &from[2], sizeof(v[0])), 0) << "by no joint of the list";
    // Joint 1 by half and joint 2 by a quarter: twice and three times, 1.75 in all, and 20 and 30.
    EXPECT_TRUE(Near(v[1].Pos, from[1].Pos * 1.75f + cVec3(17.5f, 0, 0), 1e-5f));
    EXPECT_TRUE(Near(v[1].Normal, from[1].Normal * 1.75f, 1e-6f));
    EXPECT_TRUE(Near(v[1].Tangent, from[1].Tangent * 1.75f, 1e-6f));
    EXPECT_TRUE(Near(v[1].BiTangent, from[1].BiTangent * 1.75f, 1e-6f));
    EXPECT_EQ(v[1].TexCoord, from[1].TexCoord);
    EXPECT_TRUE(Near(v[3].Pos, from[3].Pos * 0.5f + cVec3(5, 0, 0), 1e-5f)); // -0.5 is joint 0

    for (float& e : joints[1].m) {
        e = cMath::RandRange1();
    }
    model.SetAnim(joints, &model);
    model.SetAnimPlain(joints, &plain);
    const cVertex::Bump* same = model.Meshes[0].BumpVertices.Data();
    for (int i = 0; i < 500; i++) {
        ASSERT_EQ(std::memcmp(same + i, &plain.Meshes[0].BumpVertices[i], sizeof(*same)), 0) << i;
    }
    cModel still;
    still.Meshes.SetCount(2);
    still.SetAnim(joints, &out);
    EXPECT_EQ(out.Meshes.Count(), 1);

    cAnim anim = Clip({0, 5});
    cModel arm = Model();
    arm.Meshes.SetCount(1);
    arm.Meshes[0].AnimVertices.Add({{{0, 1, 0}, {}, {}, {}, {}}, {0, 0, 0, 0}, {1, 0, 0, 0}});
    anim.Frames[1][0].Orientation = cQuat::Identity;
    anim.UpdateBounds(arm);
    EXPECT_EQ(anim.Bounds[1], cBounds(cVec3(5, 1, 0), cVec3(5, 1, 0)));
}

TEST(Anim, AllocatesNothingOnceWarm) {
    const cAnim a = Clip({0, 10}), b = Clip({5, 50});
    cModel model = Skinned();
    model.Joints.SetCount(1);
    cList<const cAnim*> clips;
    clips.Add(&a);
    clips.Add(&b);
    cList<float> times, weights;
    times.Add(0.3f, 2);
    weights.Add(0.5f);
    Pose pose;
    SkinJoints joints;
    int before = 0;
    for (int i = 0; i < 3; i++) {
        before = i == 1 ? AllocationCount() : before;
        a.SetFrame(0.5f, &pose);
        cAnim::ToJoints(pose, model, &joints);
        b.SetFrame(0.5f, model, &joints);
        cAnim::Blend(clips, times, weights, model, &joints);
        model.SetAnim(joints, &model);
    }
    EXPECT_EQ(AllocationCount(), before);
    SkinJoints others; // another thread has sources of its own
    std::thread([&] { cAnim::Blend(clips, times, weights, model, &others); }).join();
    EXPECT_EQ(std::memcmp(others.Data(), joints.Data(), sizeof(cAnim::Joint)), 0);
}

TEST(Anim, Draws) {
    RecordingDevice& device = RecordingDevice::Install();
    cAnim anim = Clip({1, 3});
    anim.Joints.Add({"arm", 0});
    for (Pose& frame : anim.Frames) {
        frame.Add({{0, 2, 0}, cQuat::Identity, s_Ones});
    }
    const auto drawn = [&] {
        std::string text;
        for (const auto& draw : device.TakeDraws()) {
            const auto* v = draw.As<cVertex::PositionColored>();
            text += std::string(v->Pos.ToString(0)) + (v->Color == cColor::Green.ToDword() ? " green; " : "; ");
        }
        return text;
    };
    anim.Bounds[1] = cBounds::Empty;
    anim.DrawFrame(1, true, false);
    EXPECT_EQ(drawn(), "0 2 0; ");
    anim.DrawFrame(0, false, false);
    EXPECT_NE(drawn().find("green"), std::string::npos);
    cRender::SetWorldMatrix(cMat4::Translation(5, 0, 0));
    anim.DrawFrame(0.5f, true, true);
    EXPECT_EQ(cRender::GetWorldMatrix(), cMat4::Translation(5, 0, 0));
    RecordingDevice::Uninstall();
}

} // namespace
} // namespace trellis
