#include "animation/cCamera.h"
#include "animation/cCodecCamera.h"
#include "files/cFile.h"
#include "math/cMat4.h"
#include "math/cRotation.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace trellis;

namespace {

/// Two shots at 10 frames a second: from 1 s, three frames; from 5 s, one.
cCamera Path() {
    cCamera path;
    path.FrameRate = 10;
    path.Cameras.Add({"approach", 0.5f, 900, 10, {}});
    for (int i = 0; i < 3; i++) {
        path.Cameras[0].Frames.Add({{float(i), 2, 3}, cMat3::RotationY(float(i) * 40).ToQuat(), 60 + float(i) * 4});
    }
    path.Cameras.Add({"still", 1, 50, 50, {}});
    path.Cameras[1].Frames.Add({{7, 8, 9}, cQuat::Identity, 30});
    return path;
}

} // namespace

TEST(Cameras, Times) {
    cCamera path = Path();
    EXPECT_FLOAT_EQ(path.GetStartTimeSec(0), 1);
    EXPECT_FLOAT_EQ(path.GetEndTimeSec(0), 1.2f);
    EXPECT_FLOAT_EQ(path.GetEndTimeSec(1), 5);
    EXPECT_FLOAT_EQ(path.CalcDurationSec(), 0.4f);
    for (const int outside : {-1, 2}) {
        EXPECT_EQ(path.GetStartTimeSec(outside), 0);
        EXPECT_EQ(path.GetEndTimeSec(outside), 0);
    }
    path.FrameRate = 0;
    EXPECT_EQ(path.GetStartTimeSec(0), 0);
    EXPECT_EQ(path.CalcDurationSec(), 0);
}

TEST(Cameras, StepByStep) {
    const cCamera path = Path();
    const struct {
        const char* Name;
        int Camera;
        float Time;
        float Delta;
        bool Looped;
        int CameraThen;
        float TimeThen;
    } rows[] = {
        {"begins at the start, whatever the step", -1, 0, 3, false, 0, 1},
        {"backward at the end", -1, 0, -3, false, 1, 5},
        {"still", -1, 9, 0, false, -1, 0},
        {"within", 0, 1, 0.05f, false, 0, 1.05f},
        {"to the end exactly", 0, 1, 0.2f, false, 0, 1.2f},
        {"past it: what is left over is dropped", 0, 1.1f, 30, false, 1, 5},
        {"past the last", 1, 5, 0.01f, true, 0, 1},
        {"back", 1, 5, -0.01f, false, 0, 1.2f},
        {"back past the first", 0, 1, -0.01f, true, 1, 5},
        {"nothing", 0, 1.1f, 0, false, 0, 1.1f},
        {"a camera that is no more", 9, 3, 1, false, 0, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        cCamera::State state;
        state.CurCamera = row.Camera;
        state.TimeSec = row.Time;
        EXPECT_EQ(path.Step(&state, row.Delta), row.Looped);
        EXPECT_EQ(state.CurCamera, row.CameraThen);
        EXPECT_FLOAT_EQ(state.TimeSec, row.TimeThen);
        EXPECT_TRUE(state.IsValid);
        EXPECT_EQ(state.ZFar, row.CameraThen == 1 ? 50 : 900);
    }
    cCamera::State state;
    EXPECT_TRUE(cCamera().Step(&state, 1));
    EXPECT_FALSE(state.IsValid);

    cCamera hasty = path; // without a rate all times are 0
    hasty.FrameRate = 0;
    hasty.Step(&state, 1);
    EXPECT_FALSE(hasty.Step(&state, 0));
    EXPECT_EQ(state.CurCamera, 0);
    EXPECT_FALSE(hasty.Step(&state, 0.001f));
    EXPECT_EQ(state.CurCamera, 1);
    EXPECT_TRUE(hasty.Step(&state, 0.001f));
}

TEST(Cameras, PosesBetweenFrames) {
    const cCamera path = Path();
    const struct {
        float Time, X, Fov, Yaw;
    } rows[] = {{0, 0, 60, 0},           {1, 0, 60, 0},     {1.05f, 0.5f, 62, 20},
                {1.125f, 1.25f, 65, 50}, {1.2f, 2, 68, 80}, {9, 2, 68, 80}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Time);
        cCamera::State state;
        state.CurCamera = 0;
        state.TimeSec = row.Time;
        path.FillViewerState(&state);
        EXPECT_NEAR(state.Position.x, row.X, 1e-4f);
        EXPECT_NEAR(state.FieldOfView, row.Fov, 1e-3f);
        EXPECT_NEAR(cVec3::Dot(cQuat::Rotate(cVec3::AxisZ, state.Orientation),
                               cQuat::Rotate(cVec3::AxisZ, cMat3::RotationY(row.Yaw).ToQuat())),
                    1, 1e-5f);
    }
    cCamera empty = path;
    empty.Cameras[0].Frames.Clear();
    cCamera::State state;
    state.CurCamera = 0;
    empty.FillViewerState(&state);
    EXPECT_FALSE(state.IsValid);
}

TEST(Cameras, Transformed) {
    cCamera path = Path();
    path.Transform(cMat4::RotationY(90) * cMat4::Translation(1, 0, 0));
    const cVec3 expected = cVec3(2, 2, 3) * cMat4::RotationY(90) + cVec3(1, 0, 0);
    EXPECT_NEAR((path.Cameras[0].Frames[2].Position - expected).Length(), 0, 1e-5f);
    const cVec3 ahead = cQuat::Rotate(cVec3::AxisZ, path.Cameras[1].Frames[0].Orientation);
    EXPECT_NEAR((ahead - cVec3::AxisZ * cMat3::RotationY(90)).Length(), 0, 1e-5f);
}

TEST(CameraFiles, ComeBackAsTheyWent) {
    cCamera path = Path(), back;
    path.Cameras[1].Frames[0].Orientation = -cMat3::RotationX(70).ToQuat();
    path.Cameras[1].Frames[0].FieldOfView = -200.3f;
    cFile file;
    cCodecCamera codec;
    ASSERT_TRUE(codec.Encode(path, &file));
    EXPECT_EQ(file.GetSize(), 11 + (2 + 8 + 16 + 3 * 26) + (2 + 5 + 16 + 26));
    file.SetPos(0);
    ASSERT_TRUE(codec.Decode(file, &back));
    EXPECT_EQ(back.FrameRate, 10);
    ASSERT_EQ(back.Cameras.Count(), 2);
    EXPECT_EQ(back.Cameras[0].Name, "approach");
    EXPECT_EQ(back.Cameras[1].StartFrame, 50);
    for (int c = 0; c < 2; c++) {
        for (int i = 0; i < path.Cameras[c].Frames.Count(); i++) {
            const cCamera::Frame &a = path.Cameras[c].Frames[i], &b = back.Cameras[c].Frames[i];
            EXPECT_EQ(a.Position, b.Position);
            EXPECT_NEAR(a.FieldOfView, b.FieldOfView, 1.0f / 127);
            const cQuat &p = a.Orientation, &q = b.Orientation;
            EXPECT_NEAR(std::fabs(p.x * q.x + p.y * q.y + p.z * q.z + p.w * q.w), 1, 1e-5f);
        }
    }
    for (int size = 0; size < file.GetSize(); size++) { // every prefix
        cFile cut;
        cut.WriteBytes(file.GetBytes().Data(), size);
        cut.SetPos(0);
        EXPECT_FALSE(codec.Decode(cut, &back)) << size;
        EXPECT_EQ(back.Cameras.Count(), 0);
    }
}

TEST(CameraFiles, RefuseWhatCannotBe) {
    cFile good;
    cCodecCamera codec;
    ASSERT_TRUE(codec.Encode(Path(), &good));
    const struct {
        const char* Name;
        int At;
        unsigned char Value;
    } rows[] = {
        {"magic", 0, 'x'},         {"version", 2, 1},         {"frame rate", 6, 0x80},     {"camera count", 10, 0x80},
        {"many cameras", 9, 1},    {"name length", 12, 0x80}, {"zero in the name", 15, 0}, {"start frame", 32, 0x80},
        {"frame count", 36, 0x80}, {"many frames", 34, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        cFile bad;
        bad.WriteBytes(good.GetBytes().Data(), good.GetSize());
        bad.SetPos(row.At);
        bad.WriteBytes(&row.Value, 1);
        bad.SetPos(0);
        cCamera back;
        EXPECT_FALSE(codec.Decode(bad, &back));
        EXPECT_EQ(back.FrameRate, 0);
    }
    cCamera path = Path();
    path.Cameras[0].StartFrame = -1;
    cFile file;
    EXPECT_FALSE(codec.Encode(path, &file));
}
