#include "mesh/cModel.h"

#include <set>

#include "tests/math/Near.h"
#include "tests/render/RecordingDevice.h"

namespace trellis {
namespace {

using Bump = cVertex::Bump;

cModel::Mesh& AddMesh(cModel* model, std::vector<cVec3> points, std::vector<int> indices) {
    model->Meshes.SetCount(model->Meshes.Count() + 1);
    cModel::Mesh& mesh = model->Meshes[model->Meshes.Count() - 1];
    for (const cVec3& p : points) {
        cVertex::Anim v = cVertex::Anim();
        v.Pos = p;
        model->Static ? mesh.BumpVertices.Add(v) : mesh.AnimVertices.Add(v);
    }
    mesh.Indices.AddRange(indices.data(), int(indices.size()));
    return mesh;
}

TEST(Model, BoundsNormalsTangentsTransformOfBothKinds) {
    for (const bool isStatic : {true, false}) {
        cModel model;
        model.Static = isStatic;
        // Two triangles at one edge: a large one that looks along Z, a small one along X.
        cModel::Mesh& mesh =
            AddMesh(&model, {{0, 0, 0}, {0, 2, 0}, {-2, 2, 0}, {0, 0, -1}, {5, 5, 5}}, {0, 1, 2, 0, 3, 1});
        const auto vertex = [&](int i) -> Bump& { return isStatic ? mesh.BumpVertices[i] : mesh.AnimVertices[i]; };
        vertex(1).TexCoord = {0, 1};
        vertex(2).TexCoord = {-1, 1};
        vertex(3).TexCoord = {1, 0};
        model.UpdateBounds();
        EXPECT_EQ(model.GetVertexCount(), 5);
        EXPECT_EQ(model.GetTriangleCount(), 2);
        EXPECT_EQ(model.Bounds, cBounds(cVec3(-2, 0, -1), cVec3(5, 5, 5)));
        model.CalcNormals(); // (0, 0, 4) and (2, 0, 0)
        EXPECT_TRUE(Near(vertex(0).Normal, cVec3(2, 0, 4) / std::sqrt(20.0f)));
        EXPECT_EQ(vertex(4).Normal, cVec3(0, 0, 1));
        // T is (1/2, 0, 0), which comes as (2, 0, 0), and (0, 0, -1); B is (0, 1/2, 0) twice.
        model.CalcTangents();
        EXPECT_TRUE(Near(vertex(0).Tangent, cVec3(2, 0, -1) / std::sqrt(5.0f)));
        EXPECT_TRUE(Near(vertex(0).BiTangent, cVec3(0, 1, 0)));
        EXPECT_EQ(vertex(4).Tangent, cVec3(0, 0, 1));

        // Normals go by the inverse transpose and get their length back. The joint takes X to Y, which the turn leaves,
        // and Y to Z, which the turn takes to X.
        model.Joints.Add({"j", -1, {1, 0, 0}, cQuat(0.5f, 0.5f, 0.5f, 0.5f)});
        model.Transform(cMat4::Scaling(2, 1, 1) * cMat4::RotationY(90) * cMat4::Translation(0, 3, 0));
        EXPECT_TRUE(Near(vertex(2).Pos, cVec3(0, 5, 4)));
        EXPECT_TRUE(Near(vertex(0).Normal, cVec3(4, 0, -1) / std::sqrt(17.0f)));
        EXPECT_TRUE(Near(model.Joints[0].Position, cVec3(0, 3, -2)));
        EXPECT_TRUE(Near(cQuat::Rotate({1, 0, 0}, model.Joints[0].Orientation), cVec3(0, 1, 0)));
        EXPECT_TRUE(Near(cQuat::Rotate({0, 1, 0}, model.Joints[0].Orientation), cVec3(1, 0, 0)));
        EXPECT_TRUE(Near(cVec3(model.Bounds.max), cVec3(5, 8, 4)));
    }
}

TEST(Model, RaysAgainstEveryTriangle) {
    Cases cases;
    int hits = 0;
    for (int round = 0; round < 300; round++) {
        cModel model;
        const bool exact = round % 5 == 0; // edges and corners are met in the middle
        cModel::Mesh& mesh = AddMesh(&model, {}, {});
        for (int i = 0; i < round % 11 * 3; i++) { // fours, and what is left over
            const cVec3 p = cases.Vec();
            mesh.BumpVertices.Add(Bump{exact ? cVec3(float(int(p.x / 5)), float(int(p.y / 5)), 1) : p, {}, {}, {}, {}});
            mesh.Indices.Add(i);
        }
        const cVec3 origin = exact ? cVec3(0, 0, 3) : cases.Vec(3);
        const cVec3 direction = exact ? cVec3(0, 0, -1) : cases.Vec(1);
        float nearest = cMath::FloatMaxValue, distance = -1, t;
        for (int i = 0; i < mesh.Indices.Count(); i += 3) {
            const Bump* v = &mesh.BumpVertices[i];
            if (cVec3::RayTri(origin, direction, v[0].Pos, v[1].Pos, v[2].Pos, &t) && t >= 0 && t < nearest) {
                nearest = t;
            }
        }
        EXPECT_EQ(model.RayIntersection(origin, direction, &distance), nearest < cMath::FloatMaxValue);
        EXPECT_EQ(distance, nearest);
        hits += nearest < cMath::FloatMaxValue;
        model.Static = false;
        EXPECT_FALSE(model.RayIntersection(origin, direction, &distance));
    }
    EXPECT_GT(hits, 50);
}

TEST(Model, CopiesAllButTheBuffersAndFrees) {
    cModel model;
    model.GenSphere(cVec3(1, 2, 3), 2, 4, 3);
    model.Meshes[0].Name = "ball";
    model.Meshes[0].MaterialName = "rubber";
    model.Meshes[0].MaterialID = 7;
    model.Joints.Add({"root", -1, cVec3::One, cQuat::Identity});
    model.GetBindPoseInv();
    model.Static = false;
    const cModel copy = model;
    EXPECT_FALSE(copy.Static);
    EXPECT_EQ(copy.Joints[0].Name, "root");
    EXPECT_EQ(copy.Joints[0].Position, cVec3::One);
    EXPECT_EQ(copy.BindPoseInv.Count(), 1);
    EXPECT_EQ(copy.Meshes[0].Name, "ball");
    EXPECT_EQ(copy.Meshes[0].MaterialName, "rubber");
    EXPECT_EQ(copy.Meshes[0].MaterialID, 7);
    EXPECT_EQ(copy.Meshes[0].Indices.Count(), model.Meshes[0].Indices.Count());
    EXPECT_EQ(copy.Bounds, model.Bounds);
    cList<cModel> cells;
    cells.SetCount(2);
    float distance = 5;
    EXPECT_FALSE(model.Split(&cells, cVec3::One));
    EXPECT_EQ(cells.Count(), 2) << "untouched";
    EXPECT_FALSE(model.RayIntersection(cVec3::Zero, cVec3::AxisX, &distance));
    EXPECT_EQ(distance, 5);
    model.Free();
    EXPECT_TRUE(model.Static);
    EXPECT_EQ(model.Bounds, cBounds::Empty);
    EXPECT_TRUE(model.BindPoseInv.IsEmpty());
    model.UpdateBounds();
    EXPECT_EQ(model.Bounds, cBounds::Empty);
    model.GenSphere(cVec3::Zero, 1, 0x7FFFFFFF, 1000000001);
    EXPECT_TRUE(model.Meshes.IsEmpty());
}

TEST(Model, BindPose) {
    cModel model, posed;
    EXPECT_EQ(model.GetBindPoseInv().Count(), 0);
    model.Static = false;
    model.Joints.Add({"j", -1, {1, 2, 3}, cQuat(0.5f, 0.5f, 0.5f, 0.5f)}); // takes X to Y
    EXPECT_TRUE(Near(cVec3(1, 3, 3) * model.GetBindPoseInv()[0], cVec3(1, 0, 0)));
    model.Joints[0].Position = {9, 9, 9};
    EXPECT_TRUE(Near(cVec3(1, 3, 3) * model.GetBindPoseInv()[0], cVec3(1, 0, 0))) << "kept";

    AddMesh(&model, {{1, 2, 3}}, {0, 0, 0}).AnimVertices[0].BiTangent = {4, 5, 6};
    AddMesh(&posed, {}, {7});
    AddMesh(&posed, {}, {});
    posed.GoToBindPose(&model); // static
    EXPECT_EQ(model.Meshes.Count(), 1);
    model.GoToBindPose(&posed);
    ASSERT_EQ(posed.Meshes.Count(), 1);
    EXPECT_EQ(posed.Meshes[0].BumpVertices[0].BiTangent, cVec3(4, 5, 6));
    EXPECT_EQ(posed.Meshes[0].Indices[0], 7);
}

TEST(Model, Sphere) {
    const cVec3 center(1, 2, 3);
    cModel model;
    model.GenSphere(center, 2, 48, 1);
    EXPECT_EQ(model.Meshes.Count(), 0);
    model.GenSphere(center, 2, 48, 40);
    ASSERT_EQ(model.GetVertexCount(), 49 * 39 + 2 * 48);
    ASSERT_EQ(model.GetTriangleCount(), 48 * 39 * 2);
    const cList<int>& index = model.Meshes[0].Indices;
    const cList<Bump> v = model.Meshes[0].BumpVertices;
    EXPECT_EQ(v[0].Pos, center + cVec3(0, 2, 0));
    EXPECT_EQ(v[0].TexCoord, cVec2(0.5f / 48, 0));
    EXPECT_EQ(v[48].Pos, v[96].Pos) << "the seam is closed";
    EXPECT_EQ(v[96].TexCoord, cVec2(1, 1.0f / 40));
    for (int i = 0; i < index.Count(); i += 3) {
        const cVec3 a = v[index[i]].Pos, b = v[index[i + 1]].Pos, c = v[index[i + 2]].Pos;
        EXPECT_GT(cVec3::Dot(cVec3::Cross(b - a, c - a), a + b + c - center * 3), 0) << "outward";
    }
    EXPECT_EQ(std::set<int>(index.begin(), index.end()).size(), size_t(v.Count()));
    model.CalcTangents();
    for (int i = 0; i < v.Count(); i++) {
        EXPECT_TRUE(Near(v[i].Pos, center + v[i].Normal * 2));
        EXPECT_GT(cVec3::Dot(v[i].Tangent, model.Meshes[0].BumpVertices[i].Tangent), 0.99f); // facets are flat
        EXPECT_GT(cVec3::Dot(v[i].BiTangent, model.Meshes[0].BumpVertices[i].BiTangent), 0.99f);
    }
}

TEST(Model, SplitKeepsEveryTriangle) {
    cModel model;
    model.GenSphere({5, 0, 0}, 10, 24, 16);
    AddMesh(&model, {{-5, 0, 0}, {-4, 0, 0}, {-5, 1, 0}}, {0, 1, 2}).MaterialName = "iron";
    cList<cModel> out;
    ASSERT_TRUE(model.Split(&out, {8, 8, 30})); // 20 / 8 rounds to 3 cells, 20 / 30 to 1
    ASSERT_EQ(out.Count(), 9);
    int triangles = 0;
    for (int cell = 0; cell < 9; cell++) {
        ASSERT_EQ(out[cell].Meshes.Count(), 2);
        EXPECT_EQ(out[cell].Meshes[1].MaterialName, "iron");
        EXPECT_EQ(out[cell].Meshes[1].Indices.Count(), cell == 1 ? 3 : 0);
        const cModel::Mesh& mesh = out[cell].Meshes[0];
        triangles += out[cell].GetTriangleCount();
        for (int i = 0; i < mesh.Indices.Count(); i += 3) {
            cVec3 sum = cVec3::Zero;
            for (int k = i; k < i + 3; k++) {
                sum += mesh.BumpVertices[mesh.Indices[k]].Pos;
            }
            EXPECT_EQ(int((sum.x / 3 + 5) * 3 / 20) * 3 + int((sum.y / 3 + 10) * 3 / 20), cell);
        }
        std::set<std::string> different;
        for (const Bump& v : mesh.BumpVertices) {
            different.emplace(reinterpret_cast<const char*>(&v), sizeof(v));
        }
        EXPECT_EQ(different.size(), size_t(mesh.BumpVertices.Count())) << "each vertex once";
        const cBounds box = out[cell].Bounds;
        out[cell].UpdateBounds();
        EXPECT_EQ(out[cell].Bounds, box);
    }
    EXPECT_EQ(triangles, model.GetTriangleCount());
}

TEST(Model, SplitLimits) {
    cModel model;
    AddMesh(&model, {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}, {0, 1, 2, 0, 2, 3});
    model.UpdateBounds();
    for (const auto& [side, cells] : {std::pair(4.1f, 0), {4.0f, 1}, {1e-30f, 2}, {0.0f, 2}, {-1.0f, 1}}) {
        cList<cModel> out;
        EXPECT_EQ(model.Split(&out, {side, side, side}), cells > 0);
        EXPECT_EQ(out.Count(), cells) << side;
    }
}

TEST(Model, Drawing) { // in one test: what draws looks ids up once in a process
    RecordingDevice& device = RecordingDevice::Install();
    {
        cModel model;
        model.Draw();
        AddMesh(&model, {{0, 0, 0}}, {});
        AddMesh(&model, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2}).AnimVertices.Add(cVertex::Anim(), 2);
        AddMesh(&model, {}, {0, 1, 2});
        for (const int mesh : {-1, 0, 2, 3, -2}) {
            model.Draw(mesh);
        }
        EXPECT_EQ(device.Take(), "DrawIndexed 3 3 3\n");
        model.Meshes[1].BumpVertices.Clear();
        model.Draw(1);
        EXPECT_EQ(device.Take(), "DrawIndexed 3 2 3\n");

        model.Meshes.SetCount(2);
        model.Static = false;
        model.CreateRenderBuffers();
        EXPECT_EQ(device.Take(), "AddVertexBuffer 176\nAddIndexBuffer 3 4\n");
        model.Draw();
        EXPECT_EQ(device.Take(), "SetVertexBuffer 0\nSetIndexBuffer 1\nDrawIndexed 3\n");
        cModel copy(model);
        EXPECT_EQ(copy.Meshes[1].VertexBufferID, -1);
        copy.CreateRenderBuffers();
        device.Take();
        copy.Meshes.RemoveAt(0); // the ids are still in the slot that it leaves
        copy = model;
        EXPECT_EQ(device.Take(), "FreeVertexBuffer 2\nFreeIndexBuffer 3\n");
        copy.CreateRenderBuffers();
        device.Take();
        cModel none;
        none.Static = false;
        none.GoToBindPose(&copy);
        EXPECT_EQ(device.Take(), "FreeVertexBuffer 4\nFreeIndexBuffer 5\n");
    }
    EXPECT_EQ(device.Take(), "FreeVertexBuffer 0\nFreeIndexBuffer 1\n");
    device.TakeDraws();

    cModel model;
    AddMesh(&model, {}, {}).BumpVertices.Add(Bump{{1, 1, 1}, {0, 0, 1}, {}, {1, 0, 0}, {0, 1, 0}});
    model.Joints.Add({"root", -1, {1, 0, 0}, cQuat::Identity});
    model.Joints.Add({"arm", 0, {2, 0, 0}, cQuat::Identity});
    cRender::SetWorldMatrix(cMat4::Translation(5, 0, 0));
    model.DrawTangentSpace(true, true, 3);
    model.DrawTangentSpace(false, false, 3);
    model.DrawTangentSpace(true, false, 3);
    model.DrawJoints(false);
    std::string lines;
    for (const auto& draw : device.TakeDraws()) {
        for (int i = 0; i < draw.VertexCount; i++) {
            const auto& v = draw.As<cVertex::PositionColored>()[i];
            lines += std::string(v.Pos.ToString(0)) + (v.Color == cColor::Red.ToDword() ? "r, " : "other, ");
        }
        lines += draw.Shader + std::to_string(draw.Topology) + "; ";
    }
    EXPECT_EQ(lines, "1 1 1r, 4 1 1r, 1 1 1other, 1 4 1other, 1 1 1other, 1 1 4other, Colored1; 1 1 1other, "
                     "1 1 4other, Colored1; 2 0 0other, 1 0 0other, Colored1; ");
    model.DrawJoints(true);
    EXPECT_EQ(cRender::GetWorldMatrix(), cMat4::Translation(5, 0, 0));
    RecordingDevice::Uninstall();
}

} // namespace
} // namespace trellis
