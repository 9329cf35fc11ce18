// Drawing of the interface over the recording device: what is set, in which order, and the vertices of the one draw.
#include "math/cFrustum.h"
#include "tests/render/Allocations.h"
#include "tests/render/RecordingDevice.h"
#include "view/cViewer.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace trellis;

namespace {

constexpr const char* s_State = "SetBlendState blend(4,5,0,15)\n"; // what translucent drawing asks for first

class Draw : public testing::Test {
protected:
    void TearDown() override { RecordingDevice::Uninstall(); }

    /// The lines of a call behind the state that it shares with the others.
    std::string LinesOf(void (*call)()) {
        cRender::ResetStates();
        cRender::SetDepthState(99);
        cRender::SetCullMode(cCullMode::Back);
        Device.Take();
        Device.TakeDraws();
        call();
        std::string lines = Device.Take();
        const std::string head = std::string(s_State) + "SetDepthState -1\nSetCullMode 0\n";
        EXPECT_EQ(lines.substr(0, head.size()), head);
        return lines.size() < head.size() ? lines : lines.substr(head.size());
    }

    RecordingDevice& Device = RecordingDevice::Install();
};

/// Pixels that a line list of axis-parallel lines covers, both ends included, with how often.
std::map<std::pair<int, int>, int> PixelsOf(const RecordingDevice::Draw& draw) {
    std::map<std::pair<int, int>, int> pixels;
    const auto* v = draw.As<cVertex::PositionColored>();
    for (int i = 0; i + 1 < draw.VertexCount; i += 2) {
        const int x0 = int(v[i].Pos.x), y0 = int(v[i].Pos.y), x1 = int(v[i + 1].Pos.x), y1 = int(v[i + 1].Pos.y);
        for (int x = std::min(x0, x1); x <= std::max(x0, x1); x++) {
            for (int y = std::min(y0, y1); y <= std::max(y0, y1); y++) {
                pixels[{x, y}]++;
            }
        }
    }
    return pixels;
}

} // namespace

TEST_F(Draw, OneDrawWithItsState) {
    constexpr struct {
        const char* Name;
        void (*Call)();
        const char* Lines;
    } s_Rows[] = {
        {"line", [] { cRender::DrawLine(1, 2, 3, 4, cColor::Red); }, "SetShader LinesPointsUI\nDrawArrays 1 2\n"},
        {"line of the world", [] { cRender::DrawLine(cVec3::Zero, cVec3::One, cColor::Red); },
         "SetShader Colored\nDrawArrays 1 2\n"},
        {"outline", [] { cRender::DrawRectangle(0, 0, 5, 5, cColor::Red); },
         "SetShader LinesPointsUI\nDrawArrays 1 8\n"},
        {"dots", [] { cRender::DrawRectangleDot(cRect(0, 0, 4, 3), cColor::Red); },
         "SetShader LinesPointsUI\nDrawArrays 0 5\n"},
        {"fill", [] { cRender::FillRectangleSolid(0, 0, 5, 5, cColor::Red); },
         "SetShader SolidUI\nDrawIndexed 3 4 6\n"},
        {"no width", [] { cRender::FillRectangleSolid(5, 0, 5, 5, cColor::Red); },
         "SetShader SolidUI\nDrawIndexed 3 4 6\n"},
        {"own shader",
         [] {
             const cRect rect(0, 0, 1, 1);
             cRender::FillRectanglesSolid(&rect, 1, cColor::Red, cRender::GetShaderID("Mine", 0));
         },
         "SetShader Mine\nDrawIndexed 3 4 6\n"},
        {"gradient",
         [] {
             cRender::FillRectangleLinearGradient(0, 0, 5, 5, cColor::Red, cColor::Blue,
                                                  cRender::LinearGradient::TopToBottom);
         },
         "SetShader SolidUI\nDrawIndexed 3 4 6\n"},
        {"dither",
         [] { cRender::FillRectangleDither(cRect(0, 0, 5, 5), cVec2(1, 2), cColor(1, 0, 0), cColor(0, 0, 1)); },
         "SetShader DitherUI\nSetShaderConst DitherUI.c_Orig 1 2\nSetShaderConst DitherUI.c_Color0 1 0 0 1\n"
         "SetShaderConst DitherUI.c_Color1 0 0 1 1\nDrawIndexed 3 4 6\n"},
        {"cross", [] { cRender::DrawNoPreview(cRect(0, 0, 5, 5), cColor::Red); },
         "SetShader SolidUI\nDrawIndexed 3 12 24\n"},
        {"circle", [] { cRender::FillCircleSolid(5, 5, 3, cColor::Red); }, "SetShader SolidUI\nDrawIndexed 3 34 96\n"},
        {"segment",
         [] {
             cRender::FillSegmentRadialGradient(cVec2(2, 3), cVec2(9, 3), 1, 4, 2, 1, cColor(1, 1, 1), cColor(0, 0, 0));
         },
         "SetShader RadialGradientUI{#define HORIZONTAL}\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_SegFrom 2 3\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_SegTo 9 3\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_CenterColor 1 1 1 1\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_BoundColor 0 0 0 1\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_SegRadius 1\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_GradRadius 4\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_Power 2\n"
         "SetShaderConst RadialGradientUI{#define HORIZONTAL}.c_HalfFlat 0\nDrawIndexed 3 4 6\n"},
    };
    for (const auto& row : s_Rows) {
        SCOPED_TRACE(row.Name);
        EXPECT_EQ(LinesOf(row.Call), row.Lines);
        const int lookups = Device.Lookups;
        row.Call();
        if (row.Name != std::string("own shader")) {
            EXPECT_EQ(Device.Lookups, lookups) << "ids are looked up once";
        }
    }
}

TEST_F(Draw, NothingIsAllocatedInTheSteadyState) {
    Device.Quiet = true;
    Device.Textures = {{"2D", 8, 8, 1, 0, 1, 0}};
    const cRect rects[40] = {};
    const auto all = [&] {
        cRender::FillRectangleTextured(cRect(0, 0, 8, 8), 0, {});
        cRender::DrawIcon(cRect(0, 0, 8, 8), 0, 0, cRender::IconState::Normal, 1, 8, 8);
        cRender::FillRectangleDither(cRect(0, 0, 8, 8), cVec2(0, 0), cColor::Red, cColor::Blue);
        cRender::DrawRectangle(cRect(0, 0, 50, 50), cColor::Red);
        cRender::DrawRectangleDot(cRect(0, 0, 50, 50), cColor::Red);
        cRender::FillRectanglesSolid(rects, 40, cColor::Red);
        cRender::FillRectanglesLinearGradient(rects, 40, cColor::Red, cColor::Blue,
                                              cRender::LinearGradient::LeftToRight);
        cRender::FillCircleSolid(5, 5, 3, cColor::Red);
        cRender::FillCircleRadialGradient(5, 5, 1, 3, 1, cColor::Red, cColor::Blue);
        cRender::DrawCaveCaveCorner(cRect(0, 0, 30, 10), 5, 2, cColor::Red, cColor::Blue);
        cRender::DrawNoPreview(cRect(0, 0, 30, 10), cColor::Red);
    };
    all();
    const int allocations = AllocationCount();
    all();
    EXPECT_EQ(AllocationCount(), allocations);
}

TEST_F(Draw, EmptyRectanglesMakeNoCall) {
    const cRect empty[2] = {cRect(5, 0, 4, 9), cRect(0, 5, 9, 4)};
    cRender::SetDepthState(99);
    Device.Take();
    const int lookups = Device.Lookups;
    cRender::FillRectanglesSolid(empty, 2, cColor::Red);
    cRender::FillRectanglesLinearGradient(empty, 2, cColor::Red, cColor::Red, cRender::LinearGradient::LeftToRight);
    for (const cRect& rect : empty) {
        cRender::DrawRectangle(rect, cColor::Red);
        cRender::DrawRectangleDot(rect, cColor::Red);
        cRender::FillRectangleDither(rect, cVec2(0, 0), cColor::Red, cColor::Red);
        cRender::FillRectangleTextured(rect, 0, {});
        cRender::FillRectangleTexturedCurShader(rect, false, false, 1, 1, 0);
        cRender::DrawIcon(rect, 0, 0, cRender::IconState::Normal, 1, 8, 8);
        cRender::FillSegmentRadialGradient(rect, 1, 1, 0, cColor::Red, cColor::Red);
        cRender::FillRectangleRadialGradient(rect, 1, 2, 1, cColor::Red, cColor::Red);
        cRender::DrawCaveCaveCorner(rect, 1, 2, cColor::Red, cColor::Red);
        cRender::DrawNoPreview(rect, cColor::Red);
    }
    cRender::FillRectangleTextured(cRect(0, 0, 9, 9), -1, {});
    cRender::DrawIcon(cRect(0, 0, 9, 9), -1, 0, cRender::IconState::Normal, 1, 8, 8);
    EXPECT_EQ(Device.Take(), "");
    EXPECT_EQ(Device.Lookups, lookups);

    const cRect mixed[3] = {empty[0], cRect(0, 0, 2, 2), empty[1]};
    cRender::FillRectanglesSolid(mixed, 3, cColor::Red);
    EXPECT_EQ(Device.TakeDraws().at(0).VertexCount, 4) << "those that are not are drawn";
}

TEST_F(Draw, OutlinesCoverTheOutermostPixels) {
    for (const cRect& rect : {cRect(2, 3, 9, 7), cRect(2, 3, 4, 5), cRect(2, 3, 3, 4), cRect(2, 3, 3, 9)}) {
        Device.TakeDraws();
        cRender::DrawRectangle(rect, cColor::Red);
        const auto pixels = PixelsOf(Device.TakeDraws().at(0));
        for (int x = 0; x < 12; x++) {
            for (int y = 0; y < 12; y++) {
                const bool inside = rect.Contains(cVec2(float(x), float(y)));
                const bool inner =
                    cRect(rect.x0 + 1, rect.y0 + 1, rect.x1 - 1, rect.y1 - 1).Contains(cVec2(float(x), float(y)));
                EXPECT_EQ(pixels.count({x, y}) > 0, inside && !inner) << x << " " << y;
            }
        }
    }
}

TEST_F(Draw, LinesThatLackTheirEndAreLonger) {
    RecordingDevice::Install(1);
    auto& device = static_cast<RecordingDevice&>(*cRender::GetInstance());
    cRender::DrawRectangle(cRect(2, 3, 9, 7), cColor::Red);
    const auto draw = device.TakeDraws().at(0);
    const auto* v = draw.As<cVertex::PositionColored>();
    EXPECT_EQ(v[1].Pos, cVec3(2, 7, 0));
    EXPECT_EQ(v[3].Pos, cVec3(8, 7, 0));
    EXPECT_EQ(v[4].Pos, cVec3(3, 3, 0));
    EXPECT_EQ(v[5].Pos, cVec3(8, 3, 0));
    EXPECT_EQ(v[7].Pos, cVec3(8, 6, 0));
}

TEST_F(Draw, GradientsGiveTheirCornersColours) {
    using Gradient = cRender::LinearGradient;
    const cColor a(1, 0, 0), b(0, 0, 1);
    const unsigned A = a.ToDword(), B = b.ToDword(), M = cColor(0.5f, 0, 0.5f).ToDword();
    const struct {
        Gradient::Enum Kind;
        unsigned Colors[4]; ///< Left-top, left-bottom, right-bottom, right-top.
        std::vector<int> Indices;
    } rows[] = {
        {Gradient::LeftToRight, {A, A, B, B}, {0, 1, 2, 0, 2, 3}},
        {Gradient::TopToBottom, {A, B, B, A}, {0, 1, 2, 0, 2, 3}},
        {Gradient::LeftTopToRightBottom, {A, M, B, M}, {0, 1, 3, 1, 2, 3}},
        {Gradient::LeftBottomToRightTop, {M, A, M, B}, {0, 1, 2, 0, 2, 3}},
    };
    for (const auto& row : rows) {
        cRender::FillRectangleLinearGradient(cRect(1, 2, 5, 9), a, b, row.Kind);
        const auto draw = Device.TakeDraws().at(0);
        for (int i = 0; i < 4; i++) {
            EXPECT_EQ(draw.As<cVertex::PositionColored>()[i].Color, row.Colors[i]) << row.Kind << " " << i;
        }
        EXPECT_EQ(draw.Indices, row.Indices);
    }
}

TEST_F(Draw, TexturesPickTheirShader) {
    Device.Textures = {{"1D", 8, 0, 1, 0, 1, 0},
                       {"2D", 8, 8, 1, 0, 1, 0},
                       {"3D", 8, 8, 4, 0, 1, 0},
                       {"cube", 8, 8, 0, 0, 1, 0},
                       {"target", 8, 8, 1, 0, 1, 1}};
    constexpr const char* s_Kinds[] = {"SRC_1D", "SRC_2D", "SRC_3D", "SRC_CUBE"};
    for (int texture = 0; texture < 4; texture++) {
        for (int treatment = 0; treatment < 4; treatment++) {
            cRender::FillRectangleTexturedArgs args;
            args.Alpha = treatment & 1 ? 0.5f : -1;
            args.AlphaChannelAsColor = treatment & 2;
            args.DepthSlice = 0.25f;
            args.CubeFace = 5;
            Device.Take();
            cRender::FillRectangleTextured(cRect(0, 0, 4, 4), texture, args);
            std::string name = std::string("TexturedUI{#define ") + s_Kinds[texture];
            name += treatment & 1 ? ";#define OVERRIDE_ALPHA" : "";
            name += treatment & 2 ? ";#define ALPHA_CHANNEL_AS_COLOR" : "";
            name += "}";
            std::string expected = "SetShader " + name + "\nSetSamplerState " + std::to_string(texture) + " 85\n";
            expected += "SetTexture " + name + ".s_Src " + std::to_string(texture) + "\n";
            expected += treatment & 1 ? "SetShaderConst " + name + ".c_Alpha 0.5\n" : "";
            expected += texture == 3 ? "SetShaderConst " + name + ".c_FaceIndex 5\n" : "";
            expected += "DrawIndexed 3 4 6\n";
            const std::string lines = Device.Take();
            EXPECT_EQ(lines.substr(lines.find("SetShader")), expected);
        }
    }
    const auto draws = Device.TakeDraws();
    const auto* v = draws[0].As<cVertex::PositionColoredTextured>();
    EXPECT_EQ(v[0].TexCoord, cVec2(0, 1));
    EXPECT_EQ(v[2].TexCoord, cVec2(1, 0));
    EXPECT_EQ(v[0].Pos.z, 0.25f);
    EXPECT_EQ(v[0].Color, 0xFFFFFFFFu);

    cRender::FillRectangleTexturedArgs unfolded;
    unfolded.CubeFace = 6;
    cRender::FillRectangleTextured(cRect(0, 0, 40, 30), 3, unfolded);
    const auto faces = Device.TakeDraws();
    ASSERT_EQ(faces.size(), 6u);
    EXPECT_EQ(faces[2].As<cVertex::PositionColoredTextured>()[0].Pos, cVec3(10, 30, 0)) << "the top's left top";
    EXPECT_EQ(faces[5].As<cVertex::PositionColoredTextured>()[2].Pos, cVec3(40, 10, 0)) << "the back's right bottom";

    Device.Type = 2; // targets are upside down
    cRender::FillRectangleTextured(cRect(0, 0, 4, 4), 4, {});
    cRender::FillRectangleTextured(cRect(0, 0, 4, 4), 1, {});
    const auto flipped = Device.TakeDraws();
    EXPECT_EQ(flipped[0].As<cVertex::PositionColoredTextured>()[0].TexCoord, cVec2(0, 0));
    EXPECT_EQ(flipped[1].As<cVertex::PositionColoredTextured>()[0].TexCoord, cVec2(0, 1));
}

TEST_F(Draw, IconsCountFromTheTopLeft) {
    Device.Textures = {{"sheet", 64, 32, 1, 0, 1, 0}};
    Device.Take();
    cRender::DrawIcon(cRect(0, 0, 16, 16), 0, 5, cRender::IconState::Disabled, 0.5f, 16, 16);
    EXPECT_EQ(Device.Take(), "SetBlendState blend(4,5,0,15)\nSetShader IconUI\nSetSamplerState 0 85\n"
                             "SetTexture IconUI.s_Decal 0\nSetShaderConst IconUI.c_Disabled 1\n"
                             "SetShaderConst IconUI.c_Hot 0\nSetShaderConst IconUI.c_Alpha 0.5\nDrawIndexed 3 4 6\n");
    const auto draw = Device.TakeDraws().at(0);
    const auto* v = draw.As<cVertex::PositionColoredTextured>(); // the second of the second row
    EXPECT_EQ(v[0].TexCoord, cVec2(0.25f, 0.5f));
    EXPECT_EQ(v[2].TexCoord, cVec2(0.5f, 0));
    cRender::DrawIcon(cRect(0, 0, 16, 16), 0, 0, cRender::IconState::Normal, 1, 0, 16);
    cRender::DrawIcon(cRect(0, 0, 16, 16), 0, -1, cRender::IconState::Normal, 1, 16, 16);
    cRender::DrawIcon(cRect(0, 0, 16, 16), 0, 8, cRender::IconState::Normal, 1, 16, 16);
    cRender::DrawIcon(cRect(0, 0, 16, 16), 0, 0x7FFFFFFF, cRender::IconState::Normal, 1, 16, 16);
    EXPECT_EQ(Device.TakeDraws().size(), 0u);
}

TEST_F(Draw, CirclesAndCrosses) {
    cRender::FillCircleColoredCurShader(cVec2(10, 20), 4, cColor::Red, 0, 90, 2);
    cRender::SetShader(cRender::GetShaderID("SolidUI", cVertex::PositionColored::FormatID));
    Device.TakeDraws();
    cRender::FillCircleColoredCurShader(cVec2(10, 20), 4, cColor::Red, 0, 90, 2);
    const auto sector = Device.TakeDraws().at(0);
    const auto* v = sector.As<cVertex::PositionColored>();
    EXPECT_EQ(sector.Indices, (std::vector<int>{0, 1, 2, 0, 2, 3}));
    EXPECT_EQ(v[0].Pos, cVec3(10, 20, 0));
    EXPECT_NEAR(v[2].Pos.x, 10 + 4 * std::sqrt(0.5), 1e-5);
    EXPECT_NEAR(v[3].Pos.y, 24, 1e-5);

    // The eight triangles of the cross cover it without an overlap: their areas add up to its own.
    cRender::DrawNoPreview(cRect(0, 0, 100, 100), cColor::Red);
    const auto cross = Device.TakeDraws().at(0);
    double area = 0;
    for (size_t i = 0; i < cross.Indices.size(); i += 3) {
        const auto* p = cross.As<cVertex::PositionColored>();
        const cVec3 a = p[cross.Indices[i]].Pos, b = p[cross.Indices[i + 1]].Pos, c = p[cross.Indices[i + 2]].Pos;
        area += double(std::fabs(cVec3::Cross(b - a, c - a).z)) / 2;
    }
    const double bar = 100 * 8, crossing = 8 * 8 / 0.92 / 2; // a bar is 8 high; the crossing is a rhombus
    EXPECT_NEAR(area, 2 * bar - crossing, 0.01);

    cViewer viewer;
    viewer.Orient = cAngles(0, 90, 0).ToQuat();
    viewer.Update(false);
    cRender::SetViewer(&viewer);
    cRender::FillCircleSolid(cVec3(1, 2, 3), 2, cColor::Red);
    const auto world = Device.TakeDraws().at(0);
    EXPECT_EQ(world.Shader, "Colored");
    EXPECT_NEAR(world.As<cVertex::PositionColored>()[1].Pos.z, 1, 1e-5) << "it faces the eye";

    const cVec3 centers[2] = {cVec3::Zero, cVec3(5, 0, 0)};
    const float radii[2] = {1, 2};
    cRender::FillCirclesCurShader(centers, radii, 2, cVec3::AxisZ, 8);
    const auto circles = Device.TakeDraws().at(0);
    EXPECT_EQ(circles.VertexCount, 18);
    EXPECT_EQ(circles.Indices.size(), 48u);
    for (int i = 1; i <= 8; i++) {
        EXPECT_NEAR((circles.As<cVertex::PositionColored>()[9 + i].Pos - centers[1]).Length(), 2, 1e-5);
    }
}

TEST_F(Draw, ShapesOfTheSegment) {
    cRender::FillSegmentRadialGradient(cRect(10, 20, 50, 30), 2, 1, 1, cColor::White, cColor::Black);
    const std::string lines = Device.Take();
    EXPECT_NE(lines.find("c_SegFrom 15 25\n"), std::string::npos);
    EXPECT_NE(lines.find("c_SegTo 45 25\n"), std::string::npos);
    EXPECT_NE(lines.find("c_GradRadius 5\n"), std::string::npos);
    const auto draw = Device.TakeDraws().at(0);
    const auto* v = draw.As<cVertex::PositionOnly>();
    EXPECT_LE(v[1].Pos.x, 10);
    EXPECT_GE(v[3].Pos.y, 30);

    cRender::DrawCaveCaveCorner(cRect(0, 0, 40, 10), 5, 3, cColor::White, cColor::Black);
    const std::string cave = Device.Take();
    EXPECT_NE(cave.find("c_CaveFrom 0 5\n"), std::string::npos);
    EXPECT_NE(cave.find("c_CaveTo 40 5\n"), std::string::npos);
    EXPECT_NE(cave.find("c_HalfFlat 15\n"), std::string::npos) << "above 0, which tells a cave from a segment";
}

TEST_F(Draw, CubeRays) {
    cViewer viewer;
    cFrustum frustum;
    viewer.CalcFrustum(&frustum, 1, 2);
    cRender::SetShader(cRender::GetShaderID("Sky", cVertex::PositionNormal::FormatID));
    Device.TakeDraws();
    cRender::FillRectangleCubeCurShader(cRect(0, 0, 9, 9), 0.5f, frustum);
    const auto draw = Device.TakeDraws().at(0);
    const auto* v = draw.As<cVertex::PositionNormal>();
    EXPECT_EQ(v[1].Pos, cVec3(0, 0, 0.5f));
    EXPECT_LT(v[1].Normal.x, 0);
    EXPECT_LT(v[1].Normal.y, 0);
    EXPECT_GT(v[3].Normal.y, 0);
    EXPECT_NEAR(v[3].Normal.z, -1, 1e-3);
}
