#include "tests/host/Canvas.h"

#include "host/Float4.h"

#include <cmath>
#include <cstring>
#include <random>

namespace trellis {

namespace {

TEST(SoftwareRaster, Coverage) {
    const struct {
        const char* Name;
        cTopology::Enum Topology;
        std::vector<Corner> Vertices;
        const char* Rows;
    } cases[] = {
        {"whole corners", s_Triangles, Box(1, 1, 4, 3), "....../....../.###../.###../......"},
        {"left and lower edge are in", s_Triangles, Box(1.5f, 1.5f, 3.5f, 2.5f), "....../....../....../.##.../......"},
        {"below a diagonal", s_Triangles, {At(0, 0), At(4, 0), At(0, 4)}, "....../....../#...../##..../###..."},
        {"above it", s_Triangles, {At(4, 0), At(4, 4), At(0, 4)}, "....../####../.###../..##../...#.."},
        {"between two centres", s_Triangles, Box(1.6f, 0, 2.4f, 5), "....../....../....../....../......"},
        {"both ends", s_Lines, {At(1, 1), At(4, 1)}, "....../....../....../.####./......"},
        {"down", s_Lines, {At(0, 4), At(4, 0)}, "#...../.#..../..#.../...#../....#."},
        {"steep", s_Lines, {At(2, 0), At(1, 4)}, ".#..../.#..../..#.../..#.../..#..."},
        {"out of the picture", s_Lines, {At(-2, -1), At(9, 4.5f)}, "....../....../....##/..##../##...."},
        {"strip", s_Strip, {At(0, 0), At(3, 0), At(3, 2)}, "....../....../...#../...#../####.."},
        {"snap to 1/256", s_Points, {At(1.999f, 1), At(2.997f, 3)}, "....../..#.../....../..#.../......"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        Canvas canvas(6, 5);
        canvas.Draw(c.Vertices, c.Topology);
        EXPECT_EQ(canvas.Rows(), c.Rows);
        canvas.Wipe();
        canvas.Draw({c.Vertices.rbegin(), c.Vertices.rend()}, c.Topology);
        EXPECT_EQ(canvas.Rows(), c.Rows) << "the other way round";
    }
}

TEST(SoftwareRaster, JointsOfStripsAreDrawnOnce) {
    Canvas canvas(6, 5);
    canvas.Blend(cBlendFactor::One, cBlendFactor::One);
    canvas.Draw({At(0, 0, 1), At(3, 0, 1), At(3, 3, 1), At(0, 0, 1)}, s_Strip);
    EXPECT_EQ(canvas.Pixel(3, 0), 1u);
    EXPECT_EQ(canvas.Pixel(3, 3), 1u);
    EXPECT_EQ(canvas.Pixel(0, 0), 2u) << "the two ends are no joint";
}

TEST(SoftwareRaster, ViewportAndClip) {
    Canvas canvas(6, 4);
    const cRect viewport(1, 1, 5, 3), clip(1.5f, 0, 3.6f, 9), none = cRect::Empty;
    canvas.SetViewport(&viewport);
    canvas.Draw(Box(-9, -9, 9, 9));
    EXPECT_EQ(canvas.Rows(), "....../.####./.####./......");
    canvas.SetClipRect(&clip);
    canvas.Wipe(); // pixels 1 to 3, by their centres
    EXPECT_EQ(canvas.Rows(), "....../....#./....#./......");
    canvas.Draw({At(0, 0), At(3, 0)}, s_Lines);
    EXPECT_EQ(canvas.Rows(), "....../....#./.####./......");
    canvas.SetClipRect(&none);
    canvas.Wipe();
    EXPECT_EQ(canvas.Rows(), "....../....../....../......");
}

/// Pixels of triangles that share edges are counted by adding 1 to each.
TEST(SoftwareRaster, NeighboursShareNoPixelAndLeaveNoneOut) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; round++) {
        SCOPED_TRACE(round);
        const bool isFar = round % 3 == 0; // clipped to the guard band
        const auto turn = float(random() % 1000) * 0.00628f;
        const int count = 3 + int(random() % 9);
        // corners on halves every other time, so that centres lie on edges
        const auto place = [&](float v) { return round & 1 ? std::floor(v * 2) / 2 : v; };
        const Corner centre = At(place(16 + float(random() % 90) * 0.05f), place(32 + float(random() % 90) * 0.05f), 1);
        std::vector<Corner> rim, fan;
        for (int i = 0; i <= count; i++) {
            const float angle = turn + float(i % count) * cMath::TwoPi / float(count), r = isFar ? 1e6f : 13;
            rim.push_back(At(place(16 + r * std::cos(angle)), place(32 + r * std::sin(angle)), 1));
        }
        for (int i = 0; i < count; i++) {
            const size_t a = size_t(i), b = size_t(i + 1);
            const bool isTurned = random() & 1;
            fan.insert(fan.end(), {rim[isTurned ? b : a], centre, rim[isTurned ? a : b]});
        }
        Canvas canvas(32, 48);
        canvas.Blend(cBlendFactor::One, cBlendFactor::One);
        canvas.Draw(fan);
        for (int y = 0; y < 48; y++) {
            for (int x = 0; x < 32; x++) {
                float least = 99; // distance to the rim, inward above 0
                for (size_t i = 0; i + 1 < rim.size() && !isFar; i++) {
                    const cVec3 a = rim[i].Pos, d = rim[i + 1].Pos - a;
                    const float side = d.x * (float(y) + 0.5f - a.y) - d.y * (float(x) + 0.5f - a.x);
                    least = std::min(least, side / std::hypot(d.x, d.y));
                }
                const unsigned pixel = canvas.Pixel(x, y);
                ASSERT_LE(pixel, 1u) << x << " " << y;
                if (std::fabs(least) > 0.01f) {
                    ASSERT_EQ(pixel, least > 0 ? 1u : 0u) << x << " " << y;
                }
            }
        }
    }
}

TEST(SoftwareRaster, CullingAndWireframe) {
    const std::vector<Corner> front = {At(0, 0), At(4, 0), At(0, 4)}, back(front.rbegin(), front.rend());
    const std::string solid = "..../#.../##../###.", wire = "##../#.#./#..#/####", none = "..../..../..../....";
    const struct {
        cCullMode::Enum Mode;
        bool IsFront, IsBack; // drawn
    } cases[] = {{cCullMode::None, true, true}, {cCullMode::Front, false, true}, {cCullMode::Back, true, false}};
    for (const auto& c : cases) {
        for (const bool isWireframe : {false, true}) {
            Canvas canvas(4, 4);
            canvas.SetCullMode(c.Mode);
            canvas.SetWireframe(isWireframe);
            canvas.Draw(front);
            EXPECT_EQ(canvas.Rows(), !c.IsFront ? none : isWireframe ? wire : solid) << c.Mode;
            canvas.Wipe();
            canvas.Draw(back);
            EXPECT_EQ(canvas.Rows(), !c.IsBack ? none : isWireframe ? wire : solid) << c.Mode;
        }
    }
}

TEST(SoftwareRaster, Blending) {
    constexpr unsigned target = 0x80'32'C8'64, source = 0x40'FF'64'C8; // alpha, blue, green, red
    using F = cBlendFactor;
    using M = cBlendMode;
    constexpr struct {
        const char* Name;
        F::Enum Src, Dst;
        M::Enum Mode;
        unsigned Mask, Result;
    } cases[] = {
        // red (200 64 + 100 191) / 255 = 125.1, green 174.9, blue 101.5 = 25870 / 255, alpha 111.9
        {"alpha", F::SrcAlpha, F::OneMinusSrcAlpha, M::Add, 15, 0x70'65'AF'7D},
        {"alpha, green only", F::SrcAlpha, F::OneMinusSrcAlpha, M::Add, 2, 0x80'32'AF'64},
        {"sum, clamped", F::One, F::One, M::Add, 15, 0xC0'FF'FF'FF},
        {"source less target", F::One, F::One, M::Subtract, 15, 0x00'CD'00'64},
        {"target less source", F::One, F::One, M::ReverseSubtract, 15, 0x40'00'64'00},
        {"least, without factors", F::Zero, F::Zero, M::Min, 15, 0x40'32'64'64},
        {"most", F::Zero, F::Zero, M::Max, 15, 0x80'FF'C8'C8},
        // red 200 100 / 255 = 78.4, green 78.4, blue 50, alpha 32.1
        {"product", F::DstColor, F::Zero, M::Add, 15, 0x20'32'4E'4E},
        {"product by the other factor", F::Zero, F::SrcColor, M::Add, 15, 0x20'32'4E'4E},
        // red 200 127 / 255 = 99.6, green 49.8, blue 127, alpha 31.9
        {"of what the target leaves", F::OneMinusDstAlpha, F::Zero, M::Add, 15, 0x20'7F'32'64},
        {"nothing but the target", F::Zero, F::One, M::Add, 15, target},
        {"red and alpha replaced", F::One, F::Zero, M::Add, 9, 0x40'32'C8'C8},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        Canvas canvas(8, 1);
        canvas.Draw(Box(0, 0, 8, 1, target));
        canvas.Blend(c.Src, c.Dst, c.Mode, c.Mask);
        canvas.Draw(Box(0, 0, 7, 1, source));
        EXPECT_EQ(canvas.Pixel(0, 0), c.Result); // in a run of four
        EXPECT_EQ(canvas.Pixel(6, 0), c.Result); // by itself
        EXPECT_EQ(canvas.Pixel(7, 0), target);
    }
    cVec4 pixel(0.5f, 3, 0, 0.25f); // floats are neither rounded nor clamped
    cSoftwareMerge merge;
    merge.Begin({nullptr, &pixel, 1, 1, 15}, {true, F::SrcAlpha, F::One, M::ReverseSubtract, 13});
    merge.Fill(0, 0, 1, {4, 1, 1, 0.5f});
    EXPECT_EQ(pixel, cVec4(-1.5f, 3, -0.5f, 0));
}

TEST(SoftwareRaster, FastPathsGiveTheSameBytes) {
    using Path = cSoftwareMerge::Path;
    std::mt19937 random(3);
    const float odd[] = {NAN, INFINITY, -INFINITY, -0.0f, 1e30f, -1e30f, 0.5f, -4194305};
    for (int round = 0; round < 300; round++) {
        unsigned pixels[2][48];
        cVec4 colors[48], results[2][13];
        for (int i = 0; i < 48; i++) {
            pixels[0][i] = pixels[1][i] = unsigned(random());
            for (int k = 0; k < 4; k++) {
                const auto n = int(random());
                colors[i][k] = n & 31 ? float(n >> 8) * (n & 32 ? 1e-6f : 1e-7f) : odd[n >> 5 & 7];
            }
        }
        for (const Path path : {Path::Plain, Path::Fast}) {
            cSoftwareMerge merge;
            merge.Begin({pixels[int(path)], nullptr, 48, 1, 15},
                        {true, cBlendFactor::SrcAlpha, cBlendFactor::OneMinusSrcAlpha, cBlendMode::Add, 15}, path);
            merge.Write(0, 0, 23, colors, cSoftwareMerge::AllOf(23));
            merge.Fill(23, 0, 17, colors[23]);
        }
        const auto work = [&]<class F>(F x, F y, unsigned* bytes, cVec4* out) {
            int whole[2];
            const float power = 0.1f + float(round) * 0.05f;
            (x + y * F::All(0.3f)).Store(&out[0]);
            (x - y).Store(&out[1]);
            (x * F::All(1e3f)).Split(&whole[0], &whole[1]).Store(&out[2]);
            x.template Spread<1>().Store(&out[3]);
            out[4] = cVec4(float(whole[0]), float(whole[1]), float(F::Equal(x, y) | F::Equal(x, x) << 4),
                           float(F::Less(x, y) | F::LessEqual(x, y) << 4));
            F::FromBytes(bytes[0]).Store(&out[5]);
            (x / y).Store(&out[6]);
            F::Length(x, y).Store(&out[7]);
            F::Sqrt(x).Store(&out[8]);
            F::Pow(x.Clamped(), power).Store(&out[9]);
            F::Max(x, F::Min(y, F::All(0.5f))).Store(&out[10]);
            F::Columns(&colors[2], &x, &y);
            x.Store(&out[11]);
            y.Store(&out[12]);
            F::ToBytes(x, y, x - y, x * y, bytes + 40);
            bytes[44] = x.ToBytes();
        };
        work(Float4Plain::Load(colors[0]), Float4Plain::Load(colors[1]), pixels[0], results[0]);
        work(Float4::Load(colors[0]), Float4::Load(colors[1]), pixels[1], results[1]);
        ASSERT_EQ(std::memcmp(pixels[0], pixels[1], sizeof pixels[0]), 0) << round;
        for (int i = 0; i < 13 * 4; i++) {
            const float plain = results[0][i / 4][i % 4], fast = results[1][i / 4][i % 4];
            ASSERT_TRUE((std::isnan(plain) && std::isnan(fast)) || std::memcmp(&plain, &fast, sizeof fast) == 0) << i;
        }
    }
    EXPECT_EQ(Float4::Load(cVec4(NAN, -INFINITY, INFINITY, -0.0f)).ToBytes(), 0xFF0000u);
}

TEST(SoftwareRaster, PowersAreThoseOfTheLibrary) {
    const float bases[] = {0, 1e-45f, 1e-38f, 1e-9f, 0.01f, 0.25f, 0.4999f, 0.7071068f, 0.99f, 0.9999999f, 1};
    for (const float base : bases) {
        for (const float power : {0.01f, 0.5f, 0.6f, 1.0f, 1.3f, 2.0f, 2.2f, 7.5f, 64.0f}) {
            const cVec4 in(base, base * 0.9f, 1, 0);
            cVec4 out;
            Float4::Pow(Float4::Load(in), power).Store(&out);
            for (int i = 0; i < 4; i++) {
                EXPECT_FLOAT_EQ(out[i], float(std::pow(double(in[i]), double(power)))) << in[i] << " " << power;
            }
        }
    }
}

TEST(SoftwareRaster, DepthFunctions) {
    const char* passed[cDepthFunc::Count] = {"...", "#..", ".#.", "##.", "..#", "#.#", ".##", "###"};
    for (int func = 0; func < cDepthFunc::Count; func++) {
        Canvas canvas(3, 1);
        canvas.Clear(false, true, cColor::Zero, 0.5f);
        canvas.Depth(true, true, cDepthFunc::Enum(func));
        canvas.Draw(Box(0, 0, 1, 1, ~0u, 0.25f)); // nearer
        canvas.Draw(Box(1, 0, 2, 1, ~0u, 0.5f));  // the same
        canvas.Draw(Box(2, 0, 3, 1, ~0u, 0.75f));
        EXPECT_EQ(canvas.Rows(), passed[func]) << func;
    }
}

TEST(SoftwareRaster, DepthIsWrittenOnlyWhereTold) {
    Canvas canvas(2, 1);
    canvas.Depth(true, false, cDepthFunc::Less);
    canvas.Draw(Box(0, 0, 2, 1, 1, 0));
    canvas.SetDepthState(-1);
    canvas.Draw(Box(0, 0, 2, 1, 2, -0.9f));
    canvas.Depth(false, true, cDepthFunc::Never); // no test
    canvas.Draw(Box(1, 0, 2, 1, 3, 0.5f));
    canvas.Depth(true, true, cDepthFunc::Less);
    canvas.Draw(Box(0, 0, 2, 1, 4, 0.75f));
    EXPECT_EQ(canvas.Pixel(0, 0), 4u);
    EXPECT_EQ(canvas.Pixel(1, 0), 3u);
}

/// Rows of four floats as clip positions; "COLOR" in the defines leaves the colours to the device.
class ClipShader : public cSoftwareShader {
public:
    explicit ClipShader(const char* defines)
        : cSoftwareShader(1, std::strstr(defines, "COLOR") ? PixelStage::Color : PixelStage::Own) {}
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        for (int i = 0; i < count; i++, vertices += sizeof(cVec4)) {
            std::memcpy(&out[i].Clip, vertices, sizeof(cVec4));
            const float red = float(i & 1);
            out[i].Varyings[0] = {red, red, red, 1};
        }
    }
    void Pixels(Span& span) const override { std::copy_n(span.Varyings[0], span.Count, span.Colors); }
};

struct ClipCanvas : Canvas {
    ClipCanvas(int width, int height, const char* defines = nullptr) : Canvas(width, height) {
        cSoftwareShader::Register("Clip", [](const cSoftwareShader::Layout&, const char* d) {
            return std::unique_ptr<cSoftwareShader>(new ClipShader(d));
        });
        SetShader(GetShaderID("Clip", AddVertexFormat(cVertex::PositionRhw::GetFormat()), defines));
    }
    void Draw(const std::vector<cVec4>& v, cTopology::Enum topology = cTopology::TriangleList) {
        DrawArrays(topology, v.data(), int(v.size()));
    }
};

TEST(SoftwareRaster, Perspective) {
    // White at the right, three times as far away: half way across the picture lies 1/4 of the way in space, as
    // (0 / 1 + 1 / 3) / (1 / 1 + 1 / 3) = 1/4, and 1/4 x 255 is 63.75.
    const cVec4 a(-1, -1, 0, 1), b(3, -3, 0, 3), c(-1, 1, 0, 1), d(3, 3, 0, 3);
    ClipCanvas canvas(5, 4);
    canvas.Draw({a, b, c, d, c, b}); // odd ones are white: b and d only in the first three
    EXPECT_EQ(canvas.Pixel(2, 0) & 255, 64u);
    canvas.Wipe();
    canvas.Draw({{-0.8f, 0, 0, 1}, {2.4f, 0, 0, 3}}, s_Lines);
    EXPECT_EQ(canvas.Pixel(2, 2) & 255, 64u);
}

TEST(SoftwareRaster, ClipsAtTheEyeAndTheTwoPlanes) {
    const struct {
        const char* Name;
        std::vector<cVec4> Corners;
        const char* Row;
    } cases[] = {
        {"from x / w = 1/3 to behind the eye", {{-1, 0, 0, -1}, {1, -4, 0, 3}, {1, 4, 0, 3}}, "###."},
        {"all behind", {{-1, -1, 0, -1}, {1, -1, 0, -1}, {1, 1, 0, -1}}, "...."},
        {"nearer than -1 at the right", {{-1, -9, 1, 1}, {1, -9, -3, 1}, {-1, 9, 1, 1}}, "##.."},
        {"farther than 1 at the left", {{-1, -9, 2, 1}, {1, -9, 0, 1}, {1, 9, 0, 1}}, "..##"},
    };
    for (const auto& c : cases) {
        ClipCanvas canvas(4, 1);
        canvas.Draw(c.Corners);
        EXPECT_EQ(canvas.Rows(), c.Row) << c.Name;
    }
}

TEST(SoftwareRaster, APictureMayBeDrawnInPieces) {
    const auto draw = [](ClipCanvas& canvas) {
        canvas.Depth(true, true, cDepthFunc::Less);
        canvas.Blend(cBlendFactor::SrcColor, cBlendFactor::OneMinusSrcAlpha);
        canvas.Draw({{-3, -1, 1, 2}, {2, -5, 0.3f, 0.7f}, {0.1f, 3, 2, 4}});
        canvas.Draw({{-1, 1, 0, 1}, {1, -1, 0.9f, 1}, {-1, -1, 0, 1}});
        canvas.Draw({{-3, -1, 0, 2}, {2, 1, 0.3f, 1}}, s_Lines);
    };
    ClipCanvas whole(200, 90), pieces(200, 90);
    draw(whole);
    for (int i = 0; i < 6 * 3; i++) {
        const auto x = float(i % 6 * 37), y = float(i / 6 * 30);
        const cRect clip(x, y, x + 37, y + 30);
        pieces.SetClipRect(&clip);
        draw(pieces);
    }
    const cImage &a = whole.GetBackBuffer(), &b = pieces.GetBackBuffer();
    EXPECT_EQ(std::memcmp(a.GetPixels(), b.GetPixels(), size_t(a.GetMipMappedSize())), 0);
}

TEST(SoftwareRaster, ColoursOfTheDeviceAreThoseOfAShader) {
    for (const auto func : {cDepthFunc::Less, cDepthFunc::LessEqual, cDepthFunc::Greater}) {
        for (const bool isWritten : {true, false}) {
            std::mt19937 random(13);
            const auto part = [&](float least, float most) {
                return least + (most - least) * float(random() % 1000) / 1000;
            };
            ClipCanvas device(90, 40, "COLOR"), shader(90, 40);
            for (int i = 0; i < 60; i++) {
                std::vector<cVec4> corners(3);
                for (cVec4& v : corners) {
                    const float w = i & 1 ? 1 : part(0.5f, 3);
                    const float z = i % 4 ? part(-0.9f, 0.9f) * w : 0; // some lie in one plane
                    v = {part(-1.4f, 1.4f) * w, part(-1.4f, 1.4f) * w, z, w};
                }
                for (ClipCanvas* canvas : {&device, &shader}) {
                    canvas->Depth(true, isWritten || i % 3 == 0, func);
                    canvas->Draw(corners);
                }
            }
            for (int i = 0; i < 90 * 40; i++) {
                ASSERT_EQ(device.Pixel(i % 90, i / 90), shader.Pixel(i % 90, i / 90)) << func << " " << i;
            }
        }
    }
}

TEST(SoftwareRaster, AnyBitsAreBorne) {
    std::mt19937 random(11);
    const float odd[] = {NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e-40f, 0, -0.0f, 1, -1, 1e9f, 7};
    ClipCanvas canvas(33, 21);
    for (int round = 0; round < 3000; round++) {
        std::vector<cVec4> corners(12);
        for (cVec4& v : corners) {
            for (int i = 0; i < 4; i++) {
                const auto bits = unsigned(random());
                std::memcpy(&v[i], &bits, sizeof bits);
                v[i] = bits % 3 ? odd[bits / 3 % std::size(odd)] : v[i];
            }
        }
        canvas.SetWireframe(round & 1);
        canvas.SetCullMode(cCullMode::Enum(round % 3));
        canvas.Depth(true, true, cDepthFunc::LessEqual);
        canvas.Draw(corners, cTopology::Enum(round / 2 % 4));
    }
    canvas.SetWireframe(false);
    canvas.SetDepthState(-1);
    canvas.SetCullMode(cCullMode::None);
    canvas.Wipe();
    canvas.Draw({{-1, -1, 0, 1}, {9, -1, 0, 1}, {-1, 9, 0, 1}});
    EXPECT_NE(canvas.Pixel(0, 0), 0u) << "draws on";
}

} // namespace

} // namespace trellis
