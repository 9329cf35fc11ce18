#include "mesh/cCodecModel.h"

#include <limits>

#include <gtest/gtest.h>

#include "CodecFiles.h"
#include "mesh/cModel.h"

namespace trellis {
namespace {

// 1.0f is 00 00 80 3F, 2.0f is 00 00 00 40; 32767 stands for 1, 16384 for 0.500015.
const std::string s_Position = Hex("00 00 80 3F 00 00 00 40 00 00 80 BF"); // 1, 2, -1
const std::string s_Bump = s_Position + Hex("00 00 00 40 00 00 80 3F FF 7F 00 00 00 00 00 00 FF 7F 00 00"
                                            " 00 00 00 00 01 80"); // 2, 1; x; y; -z
const std::string s_Static = Hex("63 6D 00 00 00 01 00 01 01 00 41 02 00 6D 31 03 00 00 00 00 00 01 00 01 00"
                                 " 02 00 00 00") +
                             s_Bump + s_Bump + s_Position + s_Position;
// Two joints, "a" and "bc" under it.
const std::string s_Joints = Hex("63 6D 00 02 00 01 00 61 FF FF") + s_Position + Hex("00 40 00 00 00 C0 02 00 62 63") +
                             Hex("00 00") + s_Position + Hex("00 00 00 00 00 00");
const std::string s_Skinned = s_Joints + Hex("01 00 00 00 00 00 00 00 00 00 00 01 00 00 00") + s_Bump +
                              Hex("01 00 07 00 00 40 FF 3F 00 00 00 00") + s_Position + s_Position;

TEST(CodecModel, ReadsAndWrites) {
    cModel model;
    cFile file;
    ASSERT_TRUE(cCodecModel().Decode(FileOf(s_Static), &model));
    const cModel::Mesh& mesh = model.Meshes[0];
    EXPECT_TRUE(model.Static);
    EXPECT_EQ(mesh.Name + mesh.MaterialName, "Am1");
    EXPECT_EQ(mesh.Indices[0] * 100 + mesh.Indices[1] * 10 + mesh.Indices[2], 11);
    const cVertex::Bump& v = mesh.BumpVertices[1];
    EXPECT_EQ(v.Pos, cVec3(1, 2, -1));
    EXPECT_EQ(v.TexCoord, cVec2(2, 1));
    EXPECT_EQ(v.Normal + v.Tangent + v.BiTangent, cVec3(1, 1, -1));
    EXPECT_EQ(v.Normal.x + v.Tangent.y * 2, 3);
    ASSERT_TRUE(cCodecModel().Encode(model, &file));
    EXPECT_EQ(BytesOf(file), s_Static);

    ASSERT_TRUE(cCodecModel().Decode(FileOf(s_Skinned), &model));
    EXPECT_FALSE(model.Static);
    EXPECT_EQ(model.Joints[0].Parent, -1);
    EXPECT_EQ(model.Joints[1].Name, "bc");
    EXPECT_EQ(model.Joints[1].Orientation, cQuat::Identity);
    const float half = 16384 / 32767.0f;
    const cQuat q = model.Joints[0].Orientation; // w is the root of 1 - 2 * 0.500015^2 = 0.49997
    EXPECT_EQ(q.ToVec3(), cVec3(half, 0, -half));
    EXPECT_NEAR(q.w, 0.70708519f, 1e-6f);
    EXPECT_EQ(model.Meshes[0].AnimVertices[0].Indices, cVec4(1, 0, 7, 0)) << "7 has no weight";
    EXPECT_EQ(model.Meshes[0].AnimVertices[0].Weights, cVec4(half, 16383 / 32767.0f, 0, 0));
    model.Joints[0].Orientation = -q; // the same rotation, which the reader's w is for
    file.Clear();
    ASSERT_TRUE(cCodecModel().Encode(model, &file));
    EXPECT_EQ(BytesOf(file), s_Skinned);
}

TEST(CodecModel, Refuses) {
    const struct {
        const char* Name;
        const std::string& File;
        size_t At;
        int Byte;
        bool Ok = false;
    } cases[] = {
        // clang-format off
        {"magic", s_Static, 1, 0x6E}, {"version", s_Static, 2, 1}, {"kind", s_Static, 7, 2},
        {"a mesh more", s_Static, 5, 2}, {"zero in a mesh's name", s_Static, 10, 0},
        {"negative joints", s_Static, 4, 0x80}, {"negative meshes", s_Static, 6, 0x80},
        {"negative indexes", s_Static, 18, 0x80}, {"negative vertices", s_Static, 28, 0x80},
        {"last vertex", s_Static, 19, 1, true}, {"past the last vertex", s_Static, 19, 2},
        {"negative length", s_Skinned, 6, 0x80}, {"zero in a joint's name", s_Skinned, 7, 0},
        {"parent -2", s_Skinned, 8, 0xFE}, {"last parent", s_Skinned, 32, 1, true},
        {"parent past the end", s_Skinned, 32, 2}, {"last joint", s_Skinned, s_Skinned.size() - 35, 1, true},
        {"past the last joint", s_Skinned, s_Skinned.size() - 35, 2},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        std::string bytes = c.File;
        bytes[c.At] = char(c.Byte);
        cModel model;
        EXPECT_EQ(cCodecModel().Decode(FileOf(bytes), &model), c.Ok);
    }
}

TEST(CodecModel, SurvivesDamage) {
    for (const std::string& whole : {s_Static, s_Skinned}) {
        for (size_t n = 0; n < whole.size(); n++) {
            cModel model;
            model.Joints.SetCount(1);
            ASSERT_FALSE(cCodecModel().Decode(FileOf(whole.substr(0, n)), &model)) << n;
            ASSERT_EQ(model.Joints.Count() + model.Meshes.Count(), 0) << "nothing is delivered";
            for (int bit = 0; bit < 8; bit++) {
                std::string bytes = whole;
                bytes[n] = char(bytes[n] ^ 1 << bit);
                if (cCodecModel().Decode(FileOf(bytes), &model)) {
                    cFile file;
                    ASSERT_TRUE(cCodecModel().Encode(model, &file)) << n;
                    ASSERT_EQ(BytesOf(file), bytes.substr(0, size_t(file.GetSize()))) << n;
                }
            }
        }
    }
}

TEST(CodecModel, Quantises) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float Value;
        int Stored;
    } cases[] = {{1, 32767},   {-1, -32767},   {0.5f, 16383}, {-0.5f, -16383}, {2, 32767},
                 {-2, -32768}, {1e30f, 32767}, {nan, 0},      {0.00003f, 0},   {0.00004f, 1}};
    cModel model;
    model.Meshes.SetCount(1);
    model.Meshes[0].BumpVertices.SetCount(1);
    for (const auto& c : cases) {
        model.Meshes[0].BumpVertices[0].Tangent.y = c.Value;
        cFile file;
        ASSERT_TRUE(cCodecModel().Encode(model, &file));
        const std::string bytes = BytesOf(file); // 20 bytes of header and names, 20 of the vertex, then normal and x
        EXPECT_EQ(short((unsigned char)bytes[48] | bytes[49] << 8), c.Stored) << c.Value;
    }
}

TEST(CodecModel, WritesOnlyWhatFits) {
    cModel model;
    const auto encodes = [&] {
        cFile file;
        return cCodecModel().Encode(model, &file);
    };
    model.Meshes.SetCount(1);
    cModel::Mesh& mesh = model.Meshes[0];
    mesh.BumpVertices.SetCount(65536);
    mesh.Indices.Add(65535);
    EXPECT_TRUE(encodes());
    mesh.Indices[0] = 65536;
    EXPECT_FALSE(encodes());
    mesh.Indices.Clear();
    mesh.BumpVertices.SetCount(65537);
    EXPECT_FALSE(encodes());
    mesh.BumpVertices.SetCount(0);
    mesh.Name.SetLength(32767);
    EXPECT_TRUE(encodes());
    mesh.Name.SetLength(32768);
    EXPECT_FALSE(encodes());
}

TEST(CodecModel, StandsInTheRegistryWithTheOthers) {
    const cList<cIO::ModelCodecInfo>& codecs = cIO::GetModelCodecs();
    ASSERT_GE(codecs.Count(), 3);
    std::string names;
    for (int i = 0; i < 3; i++) {
        names += std::string(codecs[i].Extension) + (codecs[i].Codec->Encodes() ? " writes " : " ");
    }
    EXPECT_EQ(names, "cModel writes Md5Mesh Obj writes ");
}

} // namespace
} // namespace trellis
