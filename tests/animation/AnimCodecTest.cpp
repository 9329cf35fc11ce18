#include <cmath>

#include <gtest/gtest.h>

#include "animation/cAnim.h"
#include "animation/cCodecAnim.h"
#include "animation/cCodecMd5Anim.h"
#include "tests/math/Near.h"
#include "tests/mesh/CodecFiles.h"

namespace trellis {
namespace {

// 25 a second; "a", and "bc" under it. 32767 stands for 256 or 1, 128 for 1.00003, 16384 for 0.500015.
const std::string s_Joint =
    Hex("FF 7F 01 80 80 00 00 40 00 00 00 C0 80 00 80 00 80 00"); // 256, -256, 1; 0.5, 0, -0.5; 1, 1, 1
const std::string s_Head = Hex("63 61 00 19 00 02 00 01 00 61 FF FF 02 00 62 63 00 00");
const std::string s_Boxes = Hex("00 80 00 80 00 80 00 00 00 00 80 00");
const std::string s_File = s_Head + Hex("01 00 00 00") + s_Joint + s_Joint + s_Boxes;

bool Decodes(const std::string& bytes, cAnim* anim) {
    return cCodecAnim().Decode(FileOf(bytes), anim);
}

TEST(CodecAnim, ReadsAndWrites) {
    cAnim anim;
    ASSERT_TRUE(Decodes(s_File, &anim));
    EXPECT_EQ(anim.FrameRate, 25);
    EXPECT_EQ(anim.Joints[0].Name + anim.Joints[1].Name, "abc");
    EXPECT_EQ(anim.Joints[0].Parent * 10 + anim.Joints[1].Parent, -10);
    cAnim::FrameJoint& joint = anim.Frames[0][1];
    EXPECT_EQ(joint.Position, cVec3(256, -256, 128 * 256 / 32767.0f));
    EXPECT_EQ(joint.Orientation.ToVec3(), cVec3(16384 / 32767.0f, 0, -16384 / 32767.0f));
    EXPECT_NEAR(joint.Orientation.w, 0.70708519f, 1e-6f); // the root of 1 - 2 * 0.500015^2
    EXPECT_EQ(joint.Scale.z, joint.Position.z);
    EXPECT_EQ(anim.Bounds[0].min[1], -32768 * 256 / 32767.0f);
    EXPECT_EQ(anim.Bounds[0].max[2], joint.Position.z);
    joint.Orientation = -joint.Orientation; // the same rotation, which the reader's w is for
    cFile file;
    ASSERT_TRUE(cCodecAnim().Encode(anim, &file));
    EXPECT_EQ(BytesOf(file), s_File);

    ASSERT_TRUE(Decodes(s_Head + Hex("00 00 00 00"), &anim));
    EXPECT_EQ(anim.Joints.Count(), 2);
    EXPECT_EQ(anim.GetDurationSec(), 0.0);
}

TEST(CodecAnim, Refuses) {
    const struct {
        const char* Name;
        size_t At;
        int Byte;
        bool Ok = false;
    } cases[] = {
        {"magic", 1, 0x62},           {"version", 2, 1},        {"negative rate", 4, 0x80},  {"fastest", 4, 0x7F, true},
        {"negative joints", 6, -1},   {"a joint more", 5, 3},   {"zero in a name", 9, 0},    {"parent -2", 10, 0xFE},
        {"last parent", 16, 1, true}, {"its own count", 16, 2}, {"negative frames", 21, -1}, {"a frame more", 18, 2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        std::string bytes = s_File;
        bytes[c.At] = char(c.Byte);
        cAnim anim;
        EXPECT_EQ(Decodes(bytes, &anim), c.Ok);
    }
    for (size_t n = 0; n < s_File.size(); n++) {
        cAnim anim;
        anim.FrameRate = 3;
        ASSERT_FALSE(Decodes(s_File.substr(0, n), &anim)) << n;
        ASSERT_EQ(anim.FrameRate + anim.Joints.Count() + anim.Frames.Count(), 0) << "nothing is delivered";
        for (int bit = 0; bit < 8; bit++) {
            std::string bytes = s_File;
            bytes[n] = char(bytes[n] ^ 1 << bit);
            if (Decodes(bytes, &anim)) {
                cFile file;
                ASSERT_TRUE(cCodecAnim().Encode(anim, &file)) << n;
                ASSERT_EQ(BytesOf(file), bytes.substr(0, size_t(file.GetSize()))) << n;
            }
        }
    }
}

TEST(CodecAnim, WrapsBeyondItsRangeAndWritesOnlyWhatFits) {
    cAnim anim;
    anim.Joints.Add({"a", -1});
    anim.Frames.SetCount(1);
    anim.Frames[0].Add({{300, 1, -1}, cQuat::Identity, cVec3::One});
    anim.UpdateBounds();
    const auto encodes = [&] {
        cFile file;
        cAnim back;
        const bool ok = cCodecAnim().Encode(anim, &file);
        EXPECT_TRUE(!ok || Decodes(BytesOf(file), &back));
        return ok ? back.Frames[0][0].Position : cVec3::Zero;
    };
    // 300 * 127.996 is 38398, less 65536 it is -27138; 127.996 is cut to 127.
    EXPECT_EQ(encodes(), cVec3(-27138, 127, -127) * (256 / 32767.0f));
    const auto refuses = [&](auto spoil) {
        const cAnim good = anim;
        spoil();
        const bool refused = encodes() == cVec3::Zero;
        anim = good;
        return refused;
    };
    EXPECT_FALSE(refuses([&] { anim.FrameRate = 32767; }));
    EXPECT_TRUE(refuses([&] { anim.FrameRate = 32768; }));
    EXPECT_TRUE(refuses([&] { anim.FrameRate = -1; }));
    EXPECT_TRUE(refuses([&] { anim.Joints[0].Parent = 1; }));
    EXPECT_TRUE(refuses([&] { anim.Joints.Add({"b", 0}); }));
    EXPECT_TRUE(refuses([&] { anim.Bounds.Clear(); }));
    EXPECT_TRUE(refuses([&] { anim.Joints[0].Name = std::string(32768, 'n').c_str(); }));
    EXPECT_FALSE(refuses([&] { anim.Joints[0].Name = std::string(32767, 'n').c_str(); }));
    EXPECT_TRUE(refuses([&] { anim.Joints[0].Parent = -2; }));
}

// The root moves along x and turns to the angle of its z; the arm keeps its base frame.
const std::string s_Md5 = "MD5Version 10\ncommandline \"\"\n\nnumFrames 2\nnumJoints 2\nframeRate 24\n"
                          "numAnimatedComponents 2\n\nhierarchy {\n\t\"root\"\t-1 33 0\t// x\n\t\"arm\"\t0 0 2\n}\n\n"
                          "bounds {\n\t( 0 0 0 ) ( 1 1 1 )\n}\n\n"
                          "baseframe {\n\t( 7 0 0 ) ( 0 0 0 )\n\t( 2 0 0 ) ( 0 0 0.70710678 )\n}\n\n"
                          "frame 0 {\n\t4 0\n}\n\nframe 1 {\n\t0\n\t0.70710678\n}";

bool Loads(const std::string& text, cAnim* anim) {
    return cCodecMd5Anim().Decode(FileOf(text), anim);
}

TEST(CodecMd5Anim, PosesJoints) {
    cAnim anim;
    ASSERT_TRUE(Loads(s_Md5, &anim));
    EXPECT_EQ(anim.Joints[0].Name + anim.Joints[1].Name, "rootarm");
    EXPECT_EQ(anim.Joints[0].Parent * 10 + anim.Joints[1].Parent, -10);
    EXPECT_EQ(anim.FrameRate, 24);
    ASSERT_EQ(anim.Frames.Count(), 2);
    const float s = std::sqrt(0.5f); // the turn is (-s, 0, 0, s), on the left of (0, 0, 0, -1) and (0, 0, s, -s)
    EXPECT_TRUE(Near(anim.Frames[0][0].Position, cVec3(2, 0, 0)));
    EXPECT_TRUE(Near(anim.Frames[0][1].Position, cVec3(3, 0, 0)));
    EXPECT_TRUE(Near(anim.Frames[0][0].Orientation, cQuat(s, 0, 0, -s)));
    EXPECT_TRUE(Near(anim.Frames[0][1].Orientation, cQuat(-0.5f, -0.5f, -0.5f, 0.5f))); // (0, 0, 0, -1) on top
    EXPECT_EQ(anim.Frames[0][1].Scale, cVec3::One);
    // Half of x to -y, which becomes (x, z, -y) / 2; (0, 0, s, -s) twice is (0, 0, -1, 0).
    EXPECT_TRUE(Near(anim.Frames[1][1].Position, cVec3(0, 0, 1)));
    EXPECT_TRUE(Near(anim.Frames[1][1].Orientation, cQuat(0, -s, -s, 0)));
    EXPECT_TRUE(Near(anim.Bounds[1].max, cVec<float, 3>(0, 0, 1)));
    EXPECT_FALSE(cCodecMd5Anim().Encodes());
}

TEST(CodecMd5Anim, RefusesWhatDoesNotFit) {
    constexpr struct {
        const char* From;
        const char* To;
        bool Ok = false;
    } cases[] = {
        // clang-format off
        {"frame 1", "frame 2"}, {"frame 1", "frame -1"}, {"frame 1", "frame 0"}, {"frame 1", "frame"},
        {"numFrames 2", "numFrames 3"}, {"numFrames 2", "numFrames -1"}, {"numFrames 2", "numFrames 2000000000"},
        {"numJoints 2", "numJoints 1"}, {"numJoints 2", "numJoints 3"}, {"numJoints 2", "numJoints"},
        {"frameRate 24", "frameRate 0", true}, {"frameRate 24", "frameRate -1"}, {"frameRate 24", "frameRate x"},
        {"ents 2", "ents 1"}, {"ents 2", "ents 3"}, {"ents 2", "ents -2"},
        {"-1 33 0", "-1 33 1"}, {"-1 33 0", "-1 33 -1"}, {"-1 33 0", "-1 35 0"}, {"-1 33 0", "-1 97 0", true},
        {"0 0 2", "0 0 9", true}, {"0 0 2", "2 0 0"}, {"0 0 2", "-2 0 0"}, {"0 0 2", "1 0 0", true}, {"0 0 2", "0 0"},
        {"7 0 0 ) ( 0 0 0", "7 0 0 ) ( 0 0"}, {"4 0\n", "4 0 0\n"}, {"4 0\n", "4\n"}, {"4 0\n", "4 x\n"},
        {"frame 0 {", "frame 0\n\n{", true},
        // clang-format on
    };
    cAnim anim;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.To);
        std::string text = s_Md5;
        text.replace(text.find(c.From), std::string(c.From).size(), c.To);
        EXPECT_EQ(Loads(text, &anim), c.Ok);
        EXPECT_EQ(anim.Joints.Count(), c.Ok ? 2 : 0);
    }
    for (size_t n = 0; n < s_Md5.size(); n++) {
        // Lines of no known word make a clip of nothing.
        ASSERT_EQ(Loads(s_Md5.substr(0, n), &anim), n <= s_Md5.find("s 2\nnumJoints")) << n;
    }
    // Few bytes a frame and a joint, and many poses of them.
    for (const int frames : {2048, 2049}) {
        std::string text = "numFrames " + std::to_string(frames) + "\nnumJoints 2048\nhierarchy\n",
                    base = "baseframe\n";
        for (int i = 0; i < 2048; i++) {
            text += "a -1 0 0\n";
            base += "0 0 0 0 0 0\n";
        }
        text += "}\n" + base + "}\n";
        for (int i = 0; i < frames; i++) {
            text += "frame " + std::to_string(i) + "\n}\n";
        }
        EXPECT_EQ(Loads(text, &anim), frames == 2048);
    }
}

TEST(CodecAnim, StandsInTheRegistryWithTheOther) {
    const cList<cIO::AnimCodecInfo>& codecs = cIO::GetAnimCodecs();
    ASSERT_GE(codecs.Count(), 2);
    EXPECT_EQ(codecs[0].Extension + codecs[1].Extension, "cAnimMd5Anim");
    EXPECT_TRUE(codecs[0].Codec->Encodes());
}

} // namespace
} // namespace trellis
