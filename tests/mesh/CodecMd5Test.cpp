#include <cmath>

#include <gtest/gtest.h>

#include "CodecFiles.h"
#include "mesh/cCodecMd5Model.h"
#include "mesh/cModel.h"

namespace trellis {
namespace {

// The second joint turns x to -y: its w is negative, so that half the angle is 135 degrees.
const std::string s_File =
    "MD5Version 10\ncommandline \"-x\"\n\nnumJoints 2\nnumMeshes 1\n\n"
    "joints {\n\t\"root\"\t-1 ( 0 0 0 ) ( 0 0 0 )\t// note\n\t\"arm\"\t0 ( 2 0 0 ) ( 0 0 0.70710678 )\n}\n"
    "mesh {\n\t// meshes: body\n\tshader \"skin/a\"\n\n\tnumverts 3\n"
    "\tvert 0 ( 0.25 0.5 ) 0 2\n\tvert 1 ( 0 1 ) 2 5\n\tvert 2 ( 1 1 ) 2 1\n\n"
    "\tnumtris 1\n\ttri 0 2 1 0\n\n\tnumweights 7\n"
    "\tweight 0 0 0.5 ( 0 0 4 )\n\tweight 1 1 0.5 ( 1 0 0 )\n"
    "\tweight 2 0 0.1 ( 0 0 0 )\n\tweight 3 1 0.3 ( 0 0 0 )\n\tweight 4 0 0.2 ( 0 0 0 )\n"
    "\tweight 5 1 0.15 ( 0 0 0 )\n\tweight 6 0 0.25 ( 0 0 0 )\n}";

bool Loads(const std::string& text) {
    cModel model;
    return cCodecMd5Model().Decode(FileOf(text), &model);
}

void ExpectNear(const float* v, std::initializer_list<float> expected) {
    for (const float e : expected) {
        EXPECT_NEAR(*v++, e, 1e-6f);
    }
}

TEST(CodecMd5Model, PosesVertices) {
    cModel model;
    ASSERT_TRUE(cCodecMd5Model().Decode(FileOf(s_File), &model));
    EXPECT_FALSE(model.Static);
    ASSERT_EQ(model.Joints.Count(), 2);
    EXPECT_EQ(model.Joints[0].Name, "root");
    EXPECT_EQ(model.Joints[1].Parent, 0);
    ExpectNear(model.Joints[1].Position.ToPtr(), {1, 0, 0});
    const float s = std::sqrt(0.5f); // the turn is (-s, 0, 0, s), on the left of (0, 0, 0, -1) and (0, 0, s, -s)
    ExpectNear(model.Joints[0].Orientation.ToPtr(), {s, 0, 0, -s});
    ExpectNear(model.Joints[1].Orientation.ToPtr(), {0.5f, 0.5f, 0.5f, -0.5f});

    const cModel::Mesh& mesh = model.Meshes[0];
    EXPECT_EQ(mesh.MaterialName, "skin/a");
    EXPECT_EQ(mesh.Indices[0] * 100 + mesh.Indices[1] * 10 + mesh.Indices[2], 210);
    const cVertex::Anim* v = mesh.AnimVertices.Data();
    // (0, 0, 4) / 2 + ((0, -1, 0) + (2, 0, 0)) / 2 = (1, -0.5, 2), which becomes (x, z, -y) / 2
    ExpectNear(v[0].Pos.ToPtr(), {0.5f, 1, 0.25f});
    EXPECT_EQ(v[0].TexCoord, cVec2(0.25f, 0.5f));
    ExpectNear(v[0].Weights.ToPtr(), {0.5f, 0.5f, 0, 0});
    // 0.3, 0.25, 0.2, 0.15 are kept of five
    ExpectNear(v[1].Weights.ToPtr(), {0.4f, 0.25f, 0.2f, 0.15f});
    ExpectNear(v[1].Indices.ToPtr(), {1, 0, 0, 1});
    ExpectNear(v[1].Pos.ToPtr(), {0.45f, 0, 0}); // all five count: 0.45 * 2 / 2
    EXPECT_NEAR(v[0].Normal.Length(), 1, 1e-6f);
    EXPECT_NEAR(v[0].Tangent.Length(), 1, 1e-6f);
    EXPECT_NEAR(model.Bounds.max[1], 1, 1e-6f);
}

TEST(CodecMd5Model, RefusesWhatDoesNotFit) {
    constexpr struct {
        const char* From;
        const char* To;
        bool Ok = false;
    } cases[] = {
        // clang-format off
        {"numtris 1", "numtris 1\n\tfoo 9", true}, // other words
        {"numJoints 2\n", "numJoints\n"}, {"numJoints 2", "numJoints -2"}, {"numJoints 2", "numJoints 2000000000"},
        {"numJoints 2", "numJoints 1"}, {"numJoints 2", "numJoints 3"},
        {"numJoints 2", "numJoints 2\nnumJoints 2", true}, {"joints {", "joints\n{", true},
        {"}\nmesh {", "}\nnumJoints 1\nmesh {"}, {"numMeshes 1", "numMeshes 0"}, {"numMeshes 1", "numMeshes 2"},
        {"arm\"\t0", "arm\"\t1", true}, {"arm\"\t0", "arm\"\t2"}, {"ot\"\t-1", "ot\"\t-2"}, // parents
        {"arm", "left arm"}, {"arm", "arm(", true}, {"arm", ""},
        {"( 0 0 0.70710678 )", "( 0 0 )"}, {"\"skin/a\"", "\"\""},
        {"numverts 3", "numverts -3"}, {"vert 2", "vert 3"}, {"vert 2", "vert -1"}, {"0.25 0.5", "0.25 x"},
        {"2 5", "3 5"}, {"2 5", "2 -5"}, {"2 5", "-2 5"}, {"2 5", "2147483647 5"}, // weights of a vertex
        {"tri 0", "tri 1"}, {"2 1 0\n", "3 1 0\n"}, {"2 1 0\n", "2 1 -1\n"},
        {"weight 6", "weight 7"}, {"weight 6 0", "weight 6 2"}, {"weight 6 0", "weight 6 -1"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.To);
        std::string text = s_File;
        text.replace(text.find(c.From), std::string(c.From).size(), c.To);
        EXPECT_EQ(Loads(text), c.Ok);
    }
    for (int weights : {256, 257}) {
        std::string text =
            "numJoints 1\nnumMeshes 1\njoints\na -1 0 0 0 0 0 0\n}\nmesh\nnumverts 2\nvert 0 0 0 0 256\nvert 1 0 0 0 " +
            std::to_string(weights) + "\nnumweights 257\n";
        for (int i = 0; i < 257; i++) {
            text += "weight " + std::to_string(i) + " 0 1 0 0 0\n";
        }
        EXPECT_EQ(Loads(text + "}"), weights == 256);
    }
    EXPECT_TRUE(Loads(s_File + "\n"));
    EXPECT_TRUE(Loads("numMeshes 20\n" +
                      [] {
                          std::string meshes;
                          for (int i = 0; i < 20; i++) {
                              meshes += "mesh\n}\n";
                          }
                          return meshes;
                      }()))
        << "as short as can be";
    // A parent that a later, smaller count leaves outside; counts that add up to more than the file holds.
    EXPECT_FALSE(Loads("numJoints 5\njoints {\n a 4 0 0 0 0 0 0\n}\nnumJoints 1\n//" + std::string(60, '-')));
    EXPECT_FALSE(Loads("numMeshes 2\nmesh\nnumverts 5\n}\nmesh\nnumverts 5\n}\n//" + std::string(60, '-')));
    for (size_t n = 0; n < s_File.size(); n++) {
        // Lines of no known word make a model without parts.
        ASSERT_EQ(Loads(s_File.substr(0, n)), n <= s_File.find("s 2\nnumMeshes")) << n;
    }
}

} // namespace
} // namespace trellis
