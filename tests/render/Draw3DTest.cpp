// Shapes in the world over the recording device: how many vertices, how far they reach, in which colours.
#include "math/cBounds.h"
#include "math/cFrustum.h"
#include "math/cQuat.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace trellis;

namespace {

using Vertex = cVertex::PositionColored;

constexpr cColor Red{1, 0, 0, 1};
constexpr cVec3 Center{10, 20, 30};

class Draw3D : public testing::Test {
protected:
    void TearDown() override {
        cRender::SetViewer(nullptr);
        RecordingDevice::Uninstall();
    }

    /// The one draw of a call; its vertices.
    RecordingDevice::Draw One(const std::function<void()>& call) {
        Device.TakeDraws();
        call();
        const auto draws = Device.TakeDraws();
        EXPECT_EQ(draws.size(), 1u);
        return draws.empty() ? RecordingDevice::Draw() : draws[0];
    }
    static cBounds BoundsOf(const RecordingDevice::Draw& draw) {
        std::vector<cVec3> points;
        for (int i = 0; i < draw.VertexCount; i++) {
            points.push_back(draw.As<Vertex>()[i].Pos);
        }
        return cBounds::FromPoints(points.data(), int(points.size()));
    }

    RecordingDevice& Device = RecordingDevice::Install();
};

} // namespace

TEST_F(Draw3D, CountsAndExtents) {
    cViewer viewer; // looks along -Z
    cRender::SetViewer(&viewer);
    const cVec3 normal(0, 0, 2);
    cFrustum frustum;
    viewer.CalcFrustum(&frustum, 1, 2);
    const cVec3 pair[2] = {{-4, 0, 0}, {4, 0, 0}};
    const float sizes[2] = {2, 4};
    const auto SetColored = [] { cRender::SetShader(cRender::GetShaderID("Colored", Vertex::FormatID)); };
    const float tangent = std::tan(33.75f * cMath::RadsPerDeg);
    const struct {
        const char* Name;
        std::function<void()> Call;
        cTopology::Enum Topology;
        int Vertices, Indices;
        cVec3 Half, Middle; // of the box around all vertices
    } rows[] = {
        {"cross hair", [] { cRender::DrawCrossHair(Center, 4, Red); }, cTopology::LineList, 6, 0, {2, 2, 2}, Center},
        {"cube", [] { cRender::DrawCubeWire(Center, 4, Red); }, cTopology::LineList, 24, 0, {2, 2, 2}, Center},
        {"bounds",
         [] {
             cRender::DrawBounds(cBounds({9, 18, 27}, {11, 22, 33}), Red);
         },
         cTopology::LineList,
         24,
         0,
         {1, 2, 3},
         Center},
        {"solid cube, turned by an eighth",
         [] { cRender::DrawCubeSolid(Center, 2, Red, cMat3::RotationZ(45).ToQuat()); },
         cTopology::TriangleList,
         8,
         36,
         {std::sqrt(2.0f), std::sqrt(2.0f), 1},
         Center},
        {"circle on the ground",
         [] { cRender::DrawCircle(Center, 3, Red); },
         cTopology::LineStrip,
         65,
         0,
         {3, 0, 3},
         Center},
        {"circle across Z",
         [&] { cRender::DrawCircle(Center, 3, Red, &normal); },
         cTopology::LineStrip,
         65,
         0,
         {3, 3, 0},
         Center},
        {"facing circle",
         [] {
             cRender::DrawFacingCircle(Center, 3, {5, 0, 0}, Red, 32);
         },
         cTopology::LineStrip,
         33,
         0,
         {0, 3, 3},
         Center},
        {"sphere",
         [] {
             cRender::DrawSphereWire(Center, 3, Red, 3, 8, {0, 5, 0});
         },
         cTopology::LineList,
         2 + 3 * 8,
         2 * (3 * 8 + 4 * 8),
         {3, 3, 3},
         Center},
        {"cone",
         [] {
             cRender::DrawConeSolid({0, 4, 0}, cVec3::Zero, 0, 2, Red, 8);
         },
         cTopology::TriangleList,
         18,
         96,
         {2, 2, 2},
         {0, 2, 0}},
        {"wire cone",
         [] {
             cRender::DrawConeWire({0, 4, 0}, cVec3::Zero, 1, 2, Red, 8, 4);
         },
         cTopology::LineList,
         2 * (16 + 4),
         0,
         {2, 2, 2},
         {0, 2, 0}},
        {"quarter",
         [] {
             cRender::DrawSector(cVec3::Zero, 2, {3, 0, 0}, {0, 5, 0}, Red, 8);
         },
         cTopology::TriangleList,
         10,
         24,
         {1, 1, 0},
         {1, 1, 0}},
        {"frustum",
         [&] { cRender::DrawFrustumWire(frustum, Red); },
         cTopology::LineList,
         8,
         24,
         {2 * tangent * 4 / 3, 2 * tangent, 0.5f},
         {0, 0, -1.5f}},
        {"solid frustum",
         [&] {
             SetColored();
             cRender::DrawFrustumSolidCurShader(frustum, Red);
         },
         cTopology::TriangleList,
         8,
         36,
         {2 * tangent * 4 / 3, 2 * tangent, 0.5f},
         {0, 0, -1.5f}},
        {"cubes",
         [&] {
             SetColored();
             cRender::DrawCubesCurShader(pair, sizes, 2, Red);
         },
         cTopology::TriangleList,
         16,
         72,
         {5.5f, 2, 2},
         {0.5f, 0, 0}},
        {"quarter of odd directions",
         [] {
             cRender::DrawSector(cVec3::Zero, 2, {3e25f, 0, 0}, {0, 5e-25f, 0}, Red, 8);
         },
         cTopology::TriangleList,
         10,
         24,
         {1, 1, 0},
         {1, 1, 0}},
        {"billboards",
         [] {
             const cVec3 centers[2] = {{-4, 0, 0}, {4, 0, 0}};
             cRender::DrawBillboardQuadsSolid(centers, 2, 2, Red);
         },
         cTopology::TriangleList,
         8,
         12,
         {5, 1, 0},
         {0, 0, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        const auto draw = One(row.Call);
        EXPECT_EQ(draw.Topology, row.Topology);
        EXPECT_EQ(draw.Shader, "Colored");
        ASSERT_EQ(draw.VertexCount, row.Vertices);
        EXPECT_EQ(int(draw.Indices.size()), row.Indices);
        const cBounds box = BoundsOf(draw);
        for (int i = 0; i < 3; i++) {
            EXPECT_NEAR(box.max[i], row.Middle[i] + row.Half[i], 1e-4f);
            EXPECT_NEAR(box.min[i], row.Middle[i] - row.Half[i], 1e-4f);
        }
        EXPECT_EQ(draw.As<Vertex>()[0].Color, Red.ToDword());
    }
}

TEST_F(Draw3D, SolidsFaceOutward) {
    for (const auto& call :
         std::initializer_list<std::function<void()>>{[] { cRender::DrawCubeSolid(cVec3::Zero, 2, Red); },
                                                      [] {
                                                          cRender::DrawConeSolid({0, 1, 0}, {0, -1, 0}, 1, 2, Red, 8);
                                                      }}) {
        const auto draw = One(call);
        for (size_t i = 0; i < draw.Indices.size(); i += 3) {
            const auto at = [&](size_t k) { return draw.As<Vertex>()[draw.Indices[i + k]].Pos; };
            const cVec3 normal = cVec3::Cross(at(1) - at(0), at(2) - at(0));
            EXPECT_GT(cVec3::Dot(normal, at(0) + at(1) + at(2)), 0) << i;
        }
    }
}

TEST_F(Draw3D, NothingForNothing) {
    Device.TakeDraws();
    cRender::DrawBounds(cBounds::Empty, Red);
    cRender::DrawSector(cVec3::Zero, 2, cVec3::AxisX, -cVec3::AxisX, Red);
    cRender::DrawBillboardQuadsSolid(nullptr, 0, 1, Red);
    cRender::DrawCubesCurShader(nullptr, nullptr, 0);
    cRender::GridArgs grid;
    grid.ShowAxes = grid.ShowLines = grid.ShowSubLines = false;
    cRender::DrawGrid(grid);
    EXPECT_TRUE(Device.TakeDraws().empty());
}

TEST_F(Draw3D, Grids) {
    const struct {
        const char* Name;
        float Size, Cell;
        int SubDivisions;
        int SubLines, Lines; // on one side
        float Valid, Extent;
    } rows[] = {
        {"the default", 20, 5, 5, 16, 4, 20, 20},
        {"too small a size", 0.5f, 5, 5, 16, 4, 20, 20},
        {"thirteen cells of a tenth", 1.3f, 0.1f, 1, 0, 13, 1.3f, 1.3f},
        {"no cell", 20, 0.0009f, 5, 16, 4, 20, 20},
        {"one subdivision: every line is a whole one", 20, 5, 1, 0, 4, 20, 20},
        {"none is one", 20, 5, 0, 0, 4, 20, 20},
        {"a size between the lines, the last of which is beyond it", 22, 5, 2, 5, 4, 22, 22.5f},
        {"not a number", std::nanf(""), std::nanf(""), 5, 16, 4, 20, 20},
        {"more lines than anybody can see", 1e30f, 1, 1, 0, 10'000, 1e30f, 1e30f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Name);
        cRender::GridArgs args;
        args.Size = row.Size;
        args.CellSize = row.Cell;
        args.SubDivisions = row.SubDivisions;
        const auto draw = One([&] { cRender::DrawGrid(args); });
        EXPECT_EQ(draw.Shader, "Grid");
        ASSERT_EQ(draw.VertexCount, 8 * (row.SubLines + row.Lines) + 6);
        const auto* v = draw.As<Vertex>();
        EXPECT_EQ(v[0].Color, row.SubLines ? cColor::Gray.ToDword() : cColor::Black.ToDword());
        EXPECT_EQ(v[8 * row.SubLines + 5].Pos, cVec3(0, 20, 0)); // the top of the axis
        EXPECT_EQ(v[draw.VertexCount - 1].Color, cColor::DimGray.ToDword());
        EXPECT_FLOAT_EQ(BoundsOf(draw).max[0], row.Extent);
        args.Validate();
        EXPECT_EQ(args.Size, row.Valid);
    }
    cRender::GridArgs args;
    args.Height = 0;
    args.Validate();
    EXPECT_EQ(args.Height, 20);
}

TEST_F(Draw3D, GridsFollowTheViewer) {
    cViewer viewer;
    viewer.Position = {1, 2, 3};
    viewer.Update(false);
    cRender::SetViewer(&viewer);
    cRender::GridArgs args;
    args.Transform = cMat4::Translation(5, 0, 0);
    Device.Take();
    cRender::DrawGrid(args);
    EXPECT_NE(Device.Take().find("SetShaderConst Grid.c_WorldViewProjectionMatrix mat4\n"), std::string::npos);
    EXPECT_EQ(Device.LastMatrix, args.Transform * viewer.ViewProjection);
}

TEST_F(Draw3D, CamerasAreThreeLists) {
    Device.TakeDraws();
    cRender::DrawCamera(Red);
    const auto draws = Device.TakeDraws();
    ASSERT_EQ(draws.size(), 3u);
    for (const auto& draw : draws) {
        EXPECT_EQ(draw.Topology, cTopology::LineList);
        EXPECT_EQ(draw.VertexCount % 2, 0);
    }
}

TEST_F(Draw3D, AllocateNothingOnceWarm) {
    Device.Quiet = true;
    const auto all = [] {
        cRender::DrawGrid(cRender::GridArgs());
        cRender::DrawSphereWire(Center, 3, Red);
        cRender::DrawConeSolid({0, 4, 0}, cVec3::Zero, 0, 2, Red, 16);
        cRender::DrawCircle(Center, 3, Red);
    };
    all();
    const int before = AllocationCount();
    all();
    EXPECT_EQ(AllocationCount(), before);
}
