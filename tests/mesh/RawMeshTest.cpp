#include "mesh/cRawMesh.h"

#include <cstring>
#include <string>
#include <vector>

#include "tests/math/Near.h"

namespace trellis {
namespace {

using Element = cVec<int, 3>;
constexpr int s_None = 0x7FFFFFFF;

void AddPoly(cRawMesh* mesh, int material, std::vector<Element> corners) {
    mesh->Polys.Add({int(corners.size()), material, 0});
    mesh->Polys.AddRange(corners.data(), int(corners.size()));
}

/// "material: point point point; " for each polygon.
std::string Text(const cList<Element>& polys) {
    std::string text;
    for (int i = 0, end = 0; i < polys.Count(); i++) {
        const bool header = i == end;
        end += header ? polys[i][0] + 1 : 0;
        text += std::to_string(polys[i][header]) + (header ? ": " : i + 1 == end ? "; " : " ");
    }
    return text;
}

TEST(RawMesh, Polygons) {
    cRawMesh mesh;
    AddPoly(&mesh, 0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
    EXPECT_TRUE(mesh.IsTriangulated());
    mesh.Materials.Add("a");
    AddPoly(&mesh, 1, {{7, 0, 0}, {8, 0, 0}});
    AddPoly(&mesh, 2, {{3, 0, 0}, {4, 0, 0}, {5, 0, 0}, {6, 0, 0}, {9, 0, 0}});
    EXPECT_EQ(mesh.GetPolyCount(), 3);
    EXPECT_FALSE(mesh.IsTriangulated());
    mesh.InvertRaw();
    EXPECT_EQ(Text(mesh.Polys), "0: 2 1 0; 1: 8 7; 2: 9 6 5 4 3; ");
    mesh.Triangulate();
    EXPECT_EQ(Text(mesh.Polys), "0: 2 1 0; 2: 9 6 5; 2: 9 5 4; 2: 9 4 3; ");
    mesh.ClearMaterials();
    EXPECT_EQ(Text(mesh.Polys), "0: 2 1 0; 0: 9 6 5; 0: 9 5 4; 0: 9 4 3; ");
    EXPECT_TRUE(mesh.Materials.IsEmpty());
    const int capacity = mesh.Polys.Capacity();
    mesh.Clear();
    EXPECT_TRUE(mesh.Polys.IsEmpty());
    EXPECT_EQ(mesh.Polys.Capacity(), capacity);
}

TEST(RawMesh, NormalsOfFacesOfAnySize) {
    for (float side : {1e-9f, 1e-4f, 1.0f, 3e3f, 1e7f, 1e15f}) {
        for (bool flat : {false, true}) {
            cRawMesh mesh;
            mesh.Points.Add(cVec3::Zero);
            mesh.Points.Add(cVec3(0, 0, side));
            mesh.Points.Add(cVec3(side, 0, 0));
            AddPoly(&mesh, 0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}});
            mesh.CalcNormals(flat);
            EXPECT_EQ(mesh.Normals[0], cVec3::AxisY) << side << flat;
        }
    }
}

TEST(RawMesh, PointsAtOnePlaceStayApart) {
    for (int kinds : {2, 42}) { // of corners at each point: short chains, and long ones
        cRawMesh mesh;
        mesh.Points.Add(cVec3::Zero, 2);
        for (int i = 0; i < kinds * 3; i++) {
            mesh.TexCoords.Add(cVec2(float(i / 3), 0));
            const int point = i % 2;
            AddPoly(&mesh, 0, {{point, i, 0}, {1 - point, i, 0}, {point, i, 0}});
        }
        cList<cRawSplit<cVertex::Bump>*> splits;
        mesh.Split(&splits);
        EXPECT_EQ(splits[0]->Vertices.Count(), 2 * kinds);
        delete splits[0];
    }
}

TEST(RawMesh, ManyMaterialsAndManyVerticesAtOnePoint) { // within the time and memory that the test has
    cRawMesh mesh;
    constexpr int Count = 60000;
    mesh.Points.Add(cVec3::Zero, Count);
    mesh.TexCoords.SetCount(Count);
    for (int i = 0; i < Count; i++) {
        mesh.TexCoords[i] = cVec2(float(i / 2), 0);
        AddPoly(&mesh, i, {{0, i, 0}, {0, i, 0}, {i, i, 0}});
    }
    for (bool oneMaterial : {false, true}) {
        mesh.Materials.SetCount(oneMaterial ? 1 : Count);
        for (int i = 0; oneMaterial && i < Count; i++) {
            mesh.Polys[i * 4][1] = 0;
        }
        cList<cRawSplit<cVertex::Bump>*> splits;
        mesh.Split(&splits);
        ASSERT_EQ(splits.Count(), mesh.Materials.Count());
        const int i = oneMaterial ? (Count - 3) * 3 : 0;
        const cRawSplit<cVertex::Bump>& split = *splits[oneMaterial ? 0 : Count - 3];
        EXPECT_EQ(split.Vertices[split.Indices[i]].TexCoord.x, (Count - 3) / 2);
        EXPECT_EQ(split.Indices[i], split.Indices[i + 1]);
        EXPECT_NE(split.Indices[i], split.Indices[i + 2]);
        if (oneMaterial) { // corners of one point by pairs, and the others
            EXPECT_EQ(split.Vertices.Count(), Count / 2 + Count - 1);
        }
        for (auto* s : splits) {
            delete s;
        }
    }
}

TEST(RawMesh, SmoothNormalsCountByTheCubeOfTheArea) {
    cRawMesh mesh;
    for (const cVec3& p : {cVec3(0, 0, 0), cVec3(0, 2, 0), cVec3(-2, 2, 0), cVec3(-2, 0, 0), cVec3(0, 0, -1),
                           cVec3(0, 4, 0), cVec3(9, 9, 9)}) {
        mesh.Points.Add(p);
    }
    AddPoly(&mesh, 0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}); // N is (0, 0, 4), times 16
    AddPoly(&mesh, 0, {{0, 0, 0}, {4, 0, 0}, {1, 0, 0}});            // (2, 0, 0), times 4
    AddPoly(&mesh, 0, {{0, 0, 0}, {1, 0, 0}, {5, 0, 0}});            // no area
    AddPoly(&mesh, 0, {{0, 0, 0}, {4, 0, 0}});
    mesh.CalcNormals(false);
    const cVec3 edge = cVec3(8, 0, 64) / std::sqrt(8.0f * 8 + 64 * 64);
    const cVec3 expected[] = {edge, edge, {0, 0, 1}, {0, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 1}};
    ASSERT_EQ(mesh.Normals.Count(), 7);
    EXPECT_TRUE(NearFloats(mesh.Normals[0].ToPtr(), expected[0].ToPtr(), 21, 1e-6));
    EXPECT_EQ(mesh.Polys[3], Element(2, 0, 2));

    mesh.CalcNormals(true);
    const cVec3 flat[] = {{0, 0, 1}, {1, 0, 0}, {0, 0, 1}, {0, 0, 1}};
    ASSERT_EQ(mesh.Normals.Count(), 4);
    EXPECT_TRUE(NearFloats(mesh.Normals[0].ToPtr(), flat[0].ToPtr(), 12, 0));
    EXPECT_EQ(mesh.Polys[6], Element(0, 0, 1));
}

TEST(RawMesh, TangentsOfLargeStretchCountLess) {
    cRawMesh mesh;
    for (const cVec3& p : {cVec3(0, 0, 0), cVec3(2, 0, 0), cVec3(0, 4, 0), cVec3(0, 1, 0), cVec3(-3, 0, 0)}) {
        mesh.Points.Add(p);
    }
    mesh.Normals.Add({0, 0, 1}, 3);
    mesh.CalcTangents();
    EXPECT_EQ(mesh.TangentBases.Count(), 0) << "without texture coordinates";
    for (const cVec2& t : {cVec2(0, 0), cVec2(1, 0), cVec2(0, 1)}) {
        mesh.TexCoords.Add(t);
    }
    AddPoly(&mesh, 0, {{0, 0, 0}, {1, 1, 0}, {2, 2, 0}}); // T (1/2, 0, 0), B (0, 1/4, 0)
    AddPoly(&mesh, 0, {{0, 0, 0}, {3, 1, 0}, {4, 2, 0}}); // T (0, 1, 0), B (-1/3, 0, 0)
    AddPoly(&mesh, 0, {{0, 0, 1}, {1, 1, 1}, {1, 2, 1}}); // no area
    AddPoly(&mesh, 0, {{0, 0, 1}, {1, s_None, 1}, {2, 2, 1}});
    AddPoly(&mesh, 0, {{0, 0, 1}, {1, 1, 1}, {2, 2, 1}, {3, 0, s_None}});
    AddPoly(&mesh, 0, {{0, 0, 1}, {1, 1, 1}, {s_None, 2, 1}});
    AddPoly(&mesh, 0, {{0, 0, 2}, {1, 0, 2}, {2, 2, 2}, {3, s_None, 2}}); // u does not change; only three are looked at
    mesh.CalcTangents();
    const cVec3 z(0, 0, 1), expected[] = {cVec3(2, 1, 0) / std::sqrt(5.0f), {-0.6f, 0.8f, 0}, z, z, z, {0, 1, 0}};
    ASSERT_EQ(mesh.TangentBases.Count(), 3);
    EXPECT_TRUE(NearFloats(mesh.TangentBases[0].Tangent.ToPtr(), expected[0].ToPtr(), 18, 1e-6));
}

template <class T> struct Splits : cList<cRawSplit<T>*> {
    ~Splits() { std::for_each(this->begin(), this->end(), std::default_delete<cRawSplit<T>>()); }
};

TEST(RawMesh, SplitWithoutMaterials) {
    cRawMesh mesh;
    mesh.Points.Add({1, 2, 3}, 4);
    AddPoly(&mesh, 0, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
    Splits<cVertex::PositionRhw> splits;
    mesh.Split(&splits);
    ASSERT_EQ(splits.Count(), 1);
    EXPECT_EQ(splits[0]->MaterialName, "default");
    ASSERT_EQ(splits[0]->Vertices.Count(), 4) << "points are not welded";
    EXPECT_EQ(splits[0]->Vertices[3].Pos, cVec4(1, 2, 3, 1));
    EXPECT_EQ(splits[0]->Indices.Count(), 6);
    EXPECT_EQ(mesh.Polys.Count(), 5) << "the mesh stays";
    EXPECT_EQ(mesh.HashTables.Count(), 0);
}

TEST(RawMesh, WeldsToTheBit) {
    Cases cases;
    const auto pick = [&cases](int n) { return int(cases.In(0, float(n))); };
    cRawMesh mesh;
    for (int i = 0; i < 12; i++) { // few values, so that vertices repeat; the two zeros differ in their bits
        const float value = i % 4 == 3 ? -0.0f : float(i % 4);
        mesh.Points.Add({value, float(i % 3), 0});
        mesh.BlendIndices.Add({float(i), 0, 0, 0});
        mesh.BlendWeights.Add({1, value, 0, 0});
        mesh.TexCoords.Add({value, 0});
        mesh.Normals.Add({0, value, 1});
        mesh.TangentBases.Add({{1, 0, 0}, {0, 1, value}});
    }
    mesh.Materials.Add("m", 3);
    for (int i = 0; i < 4000; i++) { // every fourth index or so is missing or one past the end
        mesh.Polys.Add(i % 4 == 0 ? Element(3, pick(3), 0) : Element(pick(12), pick(17), pick(4) ? pick(13) : s_None));
    }
    mesh.Polys[1] = {0, s_None, s_None}; // what it lacks is zero
    Splits<cVertex::Anim> ours;
    mesh.Split(&ours);
    std::vector<std::string> known[3]; // the bytes of each material's vertices
    cVertex::Anim v = cVertex::Anim(); // what a corner lacks stays as it was
    int at[3] = {};
    for (int i = 0; i < 4000; i++) {
        if (i % 4 == 0) {
            continue;
        }
        const Element& c = mesh.Polys[i];
        v.Pos = mesh.Points[c[0]];
        v.Indices = mesh.BlendIndices[c[0]];
        v.Weights = mesh.BlendWeights[c[0]];
        v.TexCoord = c[1] < 12 ? mesh.TexCoords[c[1]] : v.TexCoord;
        v.Normal = c[2] < 12 ? mesh.Normals[c[2]] : v.Normal;
        v.Tangent = c[2] < 12 ? mesh.TangentBases[c[2]].Tangent : v.Tangent;
        v.BiTangent = c[2] < 12 ? mesh.TangentBases[c[2]].BiTangent : v.BiTangent;
        const int material = mesh.Polys[i / 4 * 4][1];
        const std::string bytes(reinterpret_cast<const char*>(&v), sizeof(v));
        auto& list = known[material];
        const size_t index = size_t(std::find(list.begin(), list.end(), bytes) - list.begin());
        if (index == list.size()) {
            list.push_back(bytes);
        }
        ASSERT_EQ(ours[material]->Indices[at[material]++], int(index)) << i;
        ASSERT_EQ(std::memcmp(&ours[material]->Vertices[int(index)], &v, sizeof(v)), 0);
    }
    for (int m = 0; m < 3; m++) {
        EXPECT_EQ(ours[m]->Vertices.Count(), int(known[m].size()));
    }
}

} // namespace
} // namespace trellis
