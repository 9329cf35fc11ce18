#include "mesh/cCodecObj.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "CodecFiles.h"
#include "mesh/cModel.h"

namespace trellis {
namespace {

/// "material: corners", a corner being the first numbers of its point, texture coordinate and normal.
std::string Describe(const cModel& model) {
    std::string text;
    for (const cModel::Mesh& mesh : model.Meshes) {
        text += (text.empty() ? "" : "; ") + std::string(mesh.MaterialName) + ":";
        for (const int i : mesh.Indices) {
            const cVertex::Bump& v = mesh.BumpVertices[i];
            text += cStr::Format(" %g/%g/%g", double(v.Pos.x), double(v.TexCoord.x), double(v.Normal.x));
        }
    }
    return text;
}

std::string Load(const std::string& text) {
    cModel model;
    return cCodecObj().Decode(FileOf(text), &model) ? Describe(model) : "refused";
}

const std::string s_Lists = "v 1 0 0\nv 2 0 0\nv 3 1 0\nv 4 0 1\nvt 10 0\nvt 20 0 7\nvn 5 0 0\nvn 6 0 0\nmtllib x\n";

constexpr struct {
    const char* Name;
    const char* Lines;
    const char* Result;
    const char* Warning = nullptr;
} s_Cases[] = {
    {"points", "f 1 2 3", "default: 1/0/0 2/0/0 3/0/0"},
    {"all three", "f 1/2/1 2/1/2 3/2/1\n", "default: 1/20/5 2/10/6 3/20/5"},
    {"no texture; what is missing stays", "f 1//2 2 3//1", "default: 1/0/6 2/0/6 3/0/5"},
    {"texture alone, ends of tokens", "f 3/2 2/ 1//", "default: 3/20/0 2/20/0 1/20/0"},
    {"more than three numbers", "f 1/2/1/9 2 3", "default: 1/20/5 2/20/5 3/20/5"},
    {"a fan", "f 1 2 3 4\n", "default: 1/0/0 2/0/0 3/0/0 1/0/0 3/0/0 4/0/0"},
    {"from the end", "f -1/-2/-1 -4 2", "default: 4/10/6 1/10/6 2/10/6"},
    {"zeros are the first", "f 1/0/0 2 3\n", "default: 1/10/5 2/10/5 3/10/5"},
    {"outside the lists", "f 1/3/-3 2/9/9 3\n", "default: 1/0/0 2/0/0 3/0/0"},
    {"point after its face", "f 4 5 1\nv 9 0 0", "default: 4/0/0 9/0/0 1/0/0"},
    {"blanks and ends of lines", "  f 1 2 3 \r\t\n\rf  2 3 4\r\r", "default: 1/0/0 2/0/0 3/0/0 2/0/0 3/0/0 4/0/0"},
    {"comments", "#f 1 2 4\nf 1 2 3#4\nf 1 2 3 # 4\n", "default: 1/0/0 2/0/0 3/0/0 1/0/0 2/0/0 3/0/0"},
    {"more numbers and blanks", "v  8 0   0 1 x # y\nf  5 1 2 \n", "default: 8/0/0 1/0/0 2/0/0"},
    {"the name ahead of all faces", "usemtl x\nusemtl a:b:c d\nf 1 2 3", "c: 1/0/0 2/0/0 3/0/0"},
    {"again", "usemtl c\nf 1 2 3\nusemtl e\nusemtl\nf 2 3 4\nusemtl x:c\nf 1 2 4\n",
     "c: 1/0/0 2/0/0 3/0/0 1/0/0 2/0/0 4/0/0; e: 2/0/0 3/0/0 4/0/0"},
    {"the first name behind a face", "f 1 2 3\nusemtl n\nf 2 3 4", "n: 1/0/0 2/0/0 3/0/0 2/0/0 3/0/0 4/0/0"},
    {"other words", "g 0\no\ns off\nvp 1\nfo 1 2 3\n\xFF", "default:"},
    {"point past the end", "f 1 2 5\n", "refused", ""},
    {"point ahead of the start", "f 1 2 -5", "refused", ""},
    {"no point", "f 1 2 /1", "refused", ""},
    {"point zero", "f 1 2 0/1\n", "refused", "Zero indices not allowed: \"f 1 2 0/1\""},
    {"two corners", "f 1 2 # 3\n", "refused", "Too few face indices: \"f 1 2\""},
    {"two positions", " v 1 2\n", "refused", "Too few position coordinates: \"v 1 2\""},
    {"no number", "v 1 2 x\n", "refused", "Too few position coordinates: \"v 1 2 x\""},
    {"one texture coordinate", "vt 1 # 2\n", "refused", "Too few texture coordinates: \"vt 1\""},
    {"two of a normal", "vn 1 2", "refused", "Too few normal coordinates: \"vn 1 2\""},
};

TEST(CodecObj, ReadsItsDialect) {
    for (const auto& c : s_Cases) {
        SCOPED_TRACE(c.Name);
        std::string text = s_Lists + c.Lines;
        const std::string logged = Logged([&] { EXPECT_EQ(Load(text), c.Result); });
        const std::string warning = c.Warning && *c.Warning ? "cCodecObj: " + std::string(c.Warning) + ".\r\n" : "";
        EXPECT_EQ(logged, warning);
        EXPECT_EQ(Load(text + "\n# so that the line before is not too near to the end"), c.Result);
        std::replace(text.begin(), text.end(), ' ', '\t'); // no line is a usual one then
        EXPECT_EQ(Load(text), c.Result);
    }
}

TEST(CodecObj, NumbersAreThoseOfTheStrings) {
    std::vector<std::string> numbers = {"16777215",    "16777217", "1677.7219", "-0",     "-.5",        "5.",
                                        "00000000012", "1e2",      "1,5",       "1.5d-1", "0.00000001", "+1",
                                        "1-2",         "1.2.3",    "1234567.8", "0x1"};
    std::mt19937 random(1);
    for (int i = 0; i < 30000; i++) { // up to 8 digits on each side of the point
        std::string number = std::to_string(random() % 100000000 + 100000000).substr(1 + random() % 8);
        number += "." + std::to_string(random() % 100000000 + 100000000).substr(1 + random() % 9);
        numbers.push_back(i % 2 ? number : "-" + number);
    }
    std::string text;
    for (size_t i = 0; i < numbers.size(); i++) {
        text += "v " + numbers[i] + " 0 0\n" + (i >= 2 ? "f -3 -2 -1\n" : "");
    }
    cModel model;
    ASSERT_TRUE(cCodecObj().Decode(FileOf(text), &model));
    ASSERT_EQ(size_t(model.GetVertexCount()), numbers.size());
    for (size_t i = 0; i < numbers.size(); i++) {
        float expected;
        ASSERT_TRUE(cStr::ToFloat(numbers[i].c_str(), &expected));
        ASSERT_EQ(std::memcmp(&model.Meshes[0].BumpVertices[int(i)].Pos.x, &expected, 4), 0) << numbers[i];
    }
}

TEST(CodecObj, MakesNormalsWhereThereAreNone) {
    cModel model;
    ASSERT_TRUE(cCodecObj().Decode(FileOf("v 0 0 0\nv 2 0 0\nv 0 3 0\nvt 0 0\nvt 1 0\nvt 0 1\nf 1/1 2/2 3/3"), &model));
    const cVertex::Bump& v = model.Meshes[0].BumpVertices[0];
    EXPECT_EQ(v.Normal, cVec3(0, 0, 1));
    EXPECT_EQ(v.Tangent, cVec3(1, 0, 0));
    EXPECT_EQ(model.Bounds, cBounds({0, 0, 0}, {2, 3, 0}));
}

TEST(CodecObj, TakesLinesOfAnyLength) { // within the time that the test has
    std::string text = "v 1 0 0\nf";
    for (int i = 0; i < 300000; i++) {
        text += i % 2 ? " 1" : " -1";
    }
    cModel model;
    ASSERT_TRUE(cCodecObj().Decode(FileOf(text), &model));
    EXPECT_EQ(model.GetTriangleCount(), 300000 - 2);
}

TEST(CodecObj, Writes) {
    cModel model;
    model.Meshes.SetCount(2);
    cVertex::Bump v = {{1, -2, 0.5f}, {0, 0, 1}, {0.25f, 1}, {}, {}};
    model.Meshes[0].MaterialName = "a b/c";
    model.Meshes[0].BumpVertices.Add(v, 2);
    model.Meshes[0].Indices.AddRange((const int[]){0, 1, 1}, 3);
    model.Meshes[1].AnimVertices.SetCount(1);
    model.Meshes[1].AnimVertices[0].Pos = {1e-7f, 1e6f, 3};
    model.Meshes[1].Indices.AddRange((const int[]){0, 0, 0, 0}, 4); // one is no triangle
    cFile file;
    ASSERT_TRUE(cCodecObj().Encode(model, &file));
    EXPECT_EQ(BytesOf(file), "# Wavefront Obj file\r\n# 3 vertices\r\n# Position\r\n"
                             "v 1.000000 -2.000000 0.500000\r\nv 1.000000 -2.000000 0.500000\r\n"
                             "v 0.000000 1000000.000000 3.000000\r\n# TexCoord\r\n"
                             "vt 0.250000 1.000000\r\nvt 0.250000 1.000000\r\nvt 0.000000 0.000000\r\n# Normal\r\n"
                             "vn 0.000000 0.000000 1.000000\r\nvn 0.000000 0.000000 1.000000\r\n"
                             "vn 0.000000 0.000000 0.000000\r\n\r\n# 2 tris\r\n"
                             "g a_b_c\r\nf 1/1/1 2/2/2 2/2/2\r\ng \r\nf 3/3/3 3/3/3 3/3/3\r\n");
}

} // namespace
} // namespace trellis
