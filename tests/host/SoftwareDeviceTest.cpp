#include "tests/host/Canvas.h"

#include "files/cIO.h"
#include "tests/files/Folders.h"

#include <cstring>
#include <random>

namespace trellis {

namespace {

/// A texture over the whole viewport; "FLIP" in the defines turns it upside down.
class Sampled : public cSoftwareShader {
public:
    Sampled(const Layout& layout, bool isFlipped)
        : cSoftwareShader(1, PixelStage::Own), m_IsFlipped(isFlipped), m_Size(layout.Size) {
        Declare("s_Src", &m_Src);
        Declare("c_Scale", &m_Scale);
        Declare("c_Face", &m_Face);
        Declare("c_Add", m_Add, 2);
        Declare("g_ViewportInvWidth", &m_InvWidth);
    }
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        for (int i = 0; i < count; i++, vertices += m_Size) {
            cVec3 pos;
            std::memcpy(&pos, vertices, sizeof pos);
            out[i].Clip = cVec4(pos, 1);
            out[i].Varyings[0] = {pos.x * 0.5f + 0.5f, (m_IsFlipped ? -pos.y : pos.y) * 0.5f + 0.5f, 0, 0};
        }
    }
    void Pixels(Span& span) const override {
        m_Src.SampleSlice(m_Face, span.Varyings[0], span.Count, span.Colors);
        for (int i = 0; i < span.Count; i++) {
            span.Colors[i] = span.Colors[i] * m_Scale + m_Add[0] + m_Add[1];
            span.Colors[i].w = m_InvWidth;
            span.Keep[i] = span.Keep[i] && span.Colors[i].x > 0;
        }
    }

private:
    cSoftwareSampler m_Src;
    cVec4 m_Add[2] = {cVec4::Zero, cVec4::Zero};
    float m_Scale = 1, m_InvWidth = 0;
    int m_Face = 0;
    bool m_IsFlipped;
    int m_Size;
};

struct SampledCanvas : Canvas {
    SampledCanvas(int width, int height, int threads = 0) : Canvas(width, height, threads) {
        cSoftwareShader::Register("Sampled", [](const cSoftwareShader::Layout& layout, const char* defines) {
            return std::unique_ptr<cSoftwareShader>(new Sampled(layout, std::strstr(defines, "FLIP")));
        });
        Shader = GetShaderID("Sampled", Format, nullptr);
        Src = GetSamplerID(Shader, "s_Src");
    }
    /// Fills the viewport with a texture by the nearest pixel.
    void Show(int texture) {
        SetSamplerState(texture, GetSamplerStateID(cFilter::Nearest, {}, {}, {}));
        SetShader(Shader);
        SetTexture(Src, texture);
        Draw(Box(-1, -1, 1, 1));
        SetShader(UI);
    }

    int Shader, Src;
};

const cRect s_Two(0, 0, 2, 2);

TEST(SoftwareDevice, IndexesAndBuffers) {
    Canvas canvas(3, 1);
    const std::vector<Corner> v = {At(0, 0), At(1, 0), At(2, 0)};
    const unsigned short shorts[] = {2, 9, 0};
    const int ints[] = {1, -1, 0x10000, 0};
    const auto rows = [&] {
        const std::string row = canvas.Rows();
        canvas.Wipe();
        return row;
    };
    canvas.DrawIndexed(s_Points, v.data(), 3, shorts, 3, 2);
    EXPECT_EQ(rows(), "#.#") << "9 is no vertex";
    canvas.DrawIndexed(s_Points, v.data(), 3, ints, 4, 4);
    EXPECT_EQ(rows(), "##.");
    canvas.DrawIndexed(s_Lines, v.data(), 3, ints, 4, 4);
    canvas.DrawIndexed(s_Points, v.data(), 3, ints, 4, 3);
    EXPECT_EQ(rows(), "...");

    const int vertices = canvas.AddVertexBuffer(v.data(), unsigned(sizeof(Corner) * 2 + 1));
    canvas.SetVertexBuffer(vertices);
    canvas.SetIndexBuffer(canvas.AddIndexBuffer(shorts, 3, 2));
    canvas.DrawArrays(s_Points);
    EXPECT_EQ(rows(), "##.") << "whole vertices";
    canvas.DrawIndexed(s_Points);
    EXPECT_EQ(rows(), "#..") << "2 is past the buffer";
    canvas.FreeVertexBuffer(vertices);
    canvas.DrawArrays(s_Points);
    canvas.DrawIndexed(s_Points);
    EXPECT_EQ(rows(), "...");
}

TEST(SoftwareDevice, ShadersOfAHost) {
    SampledCanvas canvas(2, 2);
    const int shader = canvas.Shader, format = canvas.Format;
    EXPECT_EQ(canvas.GetShaderID("Sampled", format, ""), shader);
    EXPECT_NE(canvas.AddShader("Sampled", format, nullptr), shader) << "always a new one";
    const int flipped = canvas.GetShaderID("Sampled", format, "#define FLIP\n");
    EXPECT_EQ(canvas.GetShaderID("No such", format, nullptr), -1);
    EXPECT_EQ(canvas.GetShaderID("SolidUI", -1, nullptr), -1) << "needs a position and a colour";
    EXPECT_EQ(canvas.GetShaderConstID(shader, "c_None"), -1);
    EXPECT_NE(canvas.GetShaderConstID(shader, "c_Scale"), canvas.GetShaderConstID(flipped, "c_Scale"));

    const unsigned char grey[] = {10, 20, 30, 40};
    const int texture = canvas.AddTexture(cImage(cImage::CopyCtor, grey, cFormat::R8, 2, 2, 1, 1));
    canvas.Show(texture);
    EXPECT_EQ(canvas.Pixel(1, 0), 0x80141414u) << "alpha is one over the width, by itself";
    EXPECT_EQ(canvas.Pixel(0, 1), 0x801E1E1Eu);

    const int scale = canvas.GetShaderConstID(shader, "c_Scale"), add = canvas.GetShaderConstID(shader, "c_Add");
    const cVec4 more[3] = {{2 / 255.0f, 0, 0, 0}, {3 / 255.0f, 0, 0, 0}, cVec4::One};
    canvas.SetShaderConst(scale, 2); // an int for a float
    canvas.SetShaderConst(scale, cVec2(9, 9));
    canvas.SetShaderConst(-1, 9.0f);
    canvas.SetShaderConst(add, more, 3); // one too many
    canvas.Show(texture);
    EXPECT_EQ(canvas.Pixel(1, 0) & 255, 45u);
    canvas.Wipe();
    canvas.SetShaderConst(add, cVec4(-65 / 255.0f, 0, 0, 0)); // 20, 40, 60, 80 less 62: `Keep` drops the first three
    canvas.Show(texture);
    EXPECT_EQ(canvas.Rows(), ".#/..");

    canvas.SetTexture(canvas.GetSamplerID(flipped, "s_Src"), texture);
    canvas.SetShader(flipped);
    canvas.Draw(Box(-1, -1, 1, 1));
    EXPECT_EQ(canvas.Pixel(0, 0) & 255, 30u);
    canvas.FreeShader(flipped);
    canvas.Wipe();
    canvas.Draw(Box(-1, -1, 1, 1));
    canvas.Show(-1);
    canvas.FreeShader(shader);
    canvas.Show(texture); // the shader was asked for twice
    EXPECT_EQ(canvas.Rows(), ".#/..");
    canvas.FreeShader(shader);
    canvas.Wipe();
    canvas.SetShaderConst(scale, 1);
    canvas.Show(texture);
    EXPECT_EQ(canvas.Rows(), "../..");
}

TEST(SoftwareDevice, DrawsIntoTextures) {
    SampledCanvas canvas(2, 2);
    canvas.SetViewport(&s_Two);
    const int flat = canvas.AddRenderTarget(2, 2, cFormat::Rgba8, false, 0);
    const int cube = canvas.AddRenderTarget(2, 2, cFormat::Rgba16f, true, 0);
    const int volume = canvas.AddRenderTarget(2, 2, cFormat::R8, false, 3);
    const int face = canvas.GetShaderConstID(canvas.Shader, "c_Face");
    const struct { int Target, Depth, Slice; } cases[] = {{flat, 1, 0}, {cube, 0, 3}, {volume, 3, 2}};
    for (const auto& c : cases) {
        EXPECT_EQ(canvas.GetTextureDepth(c.Target), c.Depth);
        EXPECT_EQ(canvas.GetTextureRenderTargetUsage(c.Target), 1);
        canvas.SetRenderTarget(&c.Target, 1, -1, &c.Slice);
        canvas.Draw(Box(0, 0, 1, 1, 0xFF0000FF));
        canvas.SetRenderTarget(nullptr, 0, -1, nullptr);
        for (int slice = c.Slice == 0 ? 0 : 1; slice <= c.Slice; slice++) {
            EXPECT_EQ(canvas.Rows(), "../..");
            canvas.SetShaderConst(face, slice);
            canvas.Show(c.Target);
            EXPECT_EQ(canvas.Rows(), slice == c.Slice ? "../#." : "../..") << c.Depth;
        }
        canvas.Wipe();
    }
    cImage image;
    canvas.SaveRenderTarget(volume, &image);
    ASSERT_EQ(image.GetFormat(), cFormat::R8);
    const unsigned char expected[] = {0, 0, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0};
    EXPECT_EQ(std::memcmp(image.GetPixels(), expected, sizeof expected), 0);

    const int none = 7, both[] = {flat, volume};
    canvas.SetRenderTarget(&cube, 1, -1, &none);
    canvas.Draw(Box(0, 0, 2, 2)); // no such face
    canvas.SetRenderTarget(both, 2, -1, nullptr);
    canvas.Clear(true, false, cColor::Red, 1);
    canvas.SaveRenderTarget(volume, &image);
    EXPECT_EQ(image.GetPixels()[3], 255) << "all targets are cleared";
    canvas.FreeTexture(flat);
    canvas.Draw(Box(0, 0, 2, 2)); // freed while bound
    canvas.Clear(true, true, cColor::Zero, 1);
    canvas.SaveRenderTarget(flat, &image);
    EXPECT_TRUE(image.IsEmpty());
}

TEST(SoftwareDevice, DepthTargets) {
    Canvas canvas(2, 2);
    canvas.SetViewport(&s_Two);
    const int color = canvas.AddRenderTarget(1, 2, cFormat::Rgba32f, false, 0);
    const int depth = canvas.AddRenderDepth(color, cFormat::Depth24Stencil8);
    EXPECT_EQ(canvas.GetTextureFormat(depth), cFormat::Depth24Stencil8);
    EXPECT_EQ(canvas.AddRenderDepth(depth, cFormat::Depth24), -1);
    canvas.Depth(true, true, cDepthFunc::Less);
    const auto draw = [&](float z, unsigned shade) {
        canvas.SetRenderTarget(&color, 1, depth, nullptr);
        canvas.Draw(Box(0, 0, 2, 2, shade, z));
        canvas.SetRenderTarget(nullptr, 0, -1, nullptr);
        cImage image;
        canvas.SaveRenderTarget(color, &image);
        return reinterpret_cast<const float*>(image.GetPixels())[0] * 255;
    };
    EXPECT_FLOAT_EQ(draw(0.5f, 10), 10);
    EXPECT_FLOAT_EQ(draw(0.75f, 20), 10);
    canvas.Draw(Box(0, 0, 2, 2, 30, 0.75f));
    EXPECT_EQ(canvas.Pixel(0, 0), 30u) << "the back buffer has depths of its own";
    canvas.SetRenderTargetSize(color, 3, 1);
    EXPECT_EQ(canvas.GetTextureWidth(depth), 3);
    EXPECT_FLOAT_EQ(draw(0.75f, 20), 20);
    canvas.FreeTexture(depth);
    EXPECT_FLOAT_EQ(draw(0.9f, 40), 40) << "without depths there is no test";
}

/// All that a call can refer to changes at random between the calls.
class RandomScene {
public:
    RandomScene(int threads, bool isImpatient) : m_Canvas(Width, Height, threads), m_IsImpatient(isImpatient) {
        // Upside down: rows read other rows.
        m_Canvas.Shader = m_Canvas.GetShaderID("Sampled", m_Canvas.Format, "#define FLIP\n");
        m_Canvas.Src = m_Canvas.GetSamplerID(m_Canvas.Shader, "s_Src");
        m_Scale = m_Canvas.GetShaderConstID(m_Canvas.Shader, "c_Scale");
        m_Target = m_Canvas.AddRenderTarget(Width, Height, cFormat::Rgba32f, false, 0);
        m_Depth = m_Canvas.AddRenderDepth(m_Target, cFormat::Depth24);
        m_Texture = m_Canvas.AddTexture(Noise());
        m_Canvas.Wipe();
    }

    /// Colours of the back buffer and of the target, and the target's depths.
    std::vector<unsigned char> Draw(int calls) {
        for (int i = 0; i < calls; i++) {
            Step();
            if (m_IsImpatient) {
                m_Canvas.GetBackBuffer();
            }
        }
        std::vector<unsigned char> bytes;
        cImage images[3];
        m_Canvas.ScreenShot(&images[0]);
        m_Canvas.SaveRenderTarget(m_Target, &images[1]);
        m_Canvas.SaveRenderTarget(m_Depth, &images[2]);
        for (const cImage& image : images) {
            bytes.insert(bytes.end(), image.GetPixels(), image.GetPixels() + image.GetMipMappedSize());
        }
        return bytes;
    }

private:
    static constexpr int Width = 210, Height = 170;

    int Random(int n) { return int(m_Random() % unsigned(n)); }
    float Part(float most) { return most * float(Random(1000)) / 1000; }

    cImage Noise() {
        cImage image(cFormat::Rgba8, 16, 16, 1, 1);
        for (int i = 0; i < 16 * 16 * 4; i++) {
            image.GetPixels()[i] = static_cast<unsigned char>(Random(256));
        }
        return image;
    }

    void Step() {
        switch (Random(12)) {
        case 0: {
            const cRect clip(Part(100), Part(60), 100 + Part(120), 60 + Part(120));
            return m_Canvas.SetClipRect(Random(2) ? &clip : nullptr);
        }
        case 1:
            return m_Canvas.Blend(cBlendFactor::Enum(Random(cBlendFactor::Count)),
                                  cBlendFactor::Enum(Random(cBlendFactor::Count)),
                                  cBlendMode::Enum(Random(cBlendMode::Count)), unsigned(1 + Random(15)));
        case 2:
            return m_Canvas.SetBlendState(-1);
        case 3:
            return m_Canvas.Depth(Random(4), Random(3), cDepthFunc::Enum(Random(cDepthFunc::Count)));
        case 4:
            m_Canvas.SetWireframe(Random(4) == 0);
            return m_Canvas.SetCullMode(cCullMode::Enum(Random(3)));
        case 5:
            return m_Canvas.SetRenderTarget(&m_Target, Random(2), Random(2) ? m_Depth : -1, nullptr);
        case 6: {
            cImage patch = Noise();
            cList<cImage*> images;
            cList<cRect> rects;
            images.Add(&patch);
            rects.Add(cRect(0, 0, 8, 8));
            return m_Canvas.UpdateTexture(m_Texture, images, rects);
        }
        case 7: {
            const cColor color(Part(1), Part(1), Part(1), Part(1));
            return Random(3) == 0 ? m_Canvas.Clear(Random(2), Random(2), color, Part(1)) : void();
        }
        case 8: // what was drawn into, maybe just now, or is being drawn into
            m_Canvas.SetShaderConst(m_Scale, Part(1.2f));
            return m_Canvas.Show(Random(2) ? m_Target : m_Depth);
        case 9:
            m_Canvas.SetShaderConst(m_Scale, Part(2));
            return m_Canvas.Show(m_Texture);
        default:
            return Primitives();
        }
    }

    void Primitives() {
        std::vector<Corner> v;
        for (int i = Random(30); i >= 0; i--) {
            v.push_back(At(Part(300) - 50, Part(260) - 50, unsigned(m_Random()), Part(2.2f) - 1.1f));
            v.back().Color = Random(3) ? v.back().Color : v[0].Color; // some are of one colour
        }
        if (Random(2)) {
            return m_Canvas.Draw(v, cTopology::Enum(Random(4)));
        }
        const int buffer = m_Canvas.AddVertexBuffer(v.data(), unsigned(v.size() * sizeof(Corner)));
        m_Canvas.SetVertexBuffer(buffer);
        m_Canvas.DrawArrays(cTopology::Enum(Random(4)));
        m_Canvas.FreeVertexBuffer(buffer);
    }

    std::mt19937 m_Random{5};
    SampledCanvas m_Canvas;
    bool m_IsImpatient;
    int m_Scale, m_Target, m_Depth, m_Texture;
};

TEST(SoftwareDevice, CallsThatWaitDrawTheSameOnAnyNumberOfThreads) {
    constexpr int calls = 1500;
    const std::vector<unsigned char> expected = RandomScene(1, true).Draw(calls);
    for (const int threads : {1, 2, 3, 5}) {
        EXPECT_EQ(RandomScene(threads, false).Draw(calls) == expected, true) << threads;
    }
}

/// In pictures of more than one band, upside down, so that bands read each other.
TEST(SoftwareDevice, TargetsAreReadInTheOrderOfTheCalls) {
    constexpr int height = 64;
    SampledCanvas canvas(1, height);
    const cRect all(0, 0, 1, height);
    canvas.SetViewport(&all);
    canvas.Shader = canvas.GetShaderID("Sampled", canvas.Format, "#define FLIP\n");
    canvas.Src = canvas.GetSamplerID(canvas.Shader, "s_Src");
    const int target = canvas.AddRenderTarget(1, height, cFormat::Rgba32f, false, 0);
    const int depth = canvas.AddRenderDepth(target, cFormat::Depth24);
    canvas.SetRenderTarget(&target, 1, depth, nullptr);
    canvas.Wipe();
    const auto red = [&](int y) {
        cImage image;
        canvas.SaveRenderTarget(target, &image);
        return reinterpret_cast<const float*>(image.GetPixels())[y * 4];
    };

    canvas.Draw(Box(0, 0, 1, 32));
    canvas.SetShaderConst(canvas.GetShaderConstID(canvas.Shader, "c_Scale"), 0.5f);
    std::vector<Corner> upperThenLower = Box(-1, 0, 1, 1);
    for (const Corner& corner : Box(-1, -1, 1, 0)) {
        upperThenLower.push_back(corner);
    }
    canvas.SetTexture(canvas.Src, target);
    canvas.SetSamplerState(target, canvas.GetSamplerStateID(cFilter::Nearest, {}, {}, {}));
    canvas.SetShader(canvas.Shader);
    canvas.Draw(upperThenLower);
    canvas.SetShader(canvas.UI);
    EXPECT_EQ(red(40), 0.5f);
    EXPECT_EQ(red(10), 0.25f) << "reads what the call has drawn before";

    canvas.SetRenderTarget(&target, 1, -1, nullptr);
    canvas.Wipe();
    canvas.Show(depth); // 1 everywhere
    canvas.SetRenderTarget(&target, 1, depth, nullptr);
    canvas.Clear(false, true, cColor::Zero, 0);
    EXPECT_EQ(red(10), 0.5f);
    EXPECT_EQ(red(40), 0.5f) << "was read before it was cleared";
}

TEST(SoftwareThreads, EveryPartIsDoneOnce) {
    for (const int count : {1, 2, 5}) {
        cSoftwareThreads threads(count);
        for (int round = 0; round < 50; round++) {
            std::atomic<int> next = 0, sum = 0;
            threads.Run([&](int worker) {
                EXPECT_LT(worker, count);
                for (int part = next++; part < 50; part = next++) {
                    std::this_thread::sleep_for(std::chrono::microseconds(worker)); // the others are late
                    sum += part;
                }
            });
            ASSERT_EQ(sum, 49 * 50 / 2);
        }
    }
}

using SoftwareDeviceFiles = Folders;

TEST_F(SoftwareDeviceFiles, TexturesAndUpdates) {
    const unsigned char pixels[] = {9, 9, 9, 8, 8, 8}, grey[] = {70, 71, 72};
    const cStr path = Read("a.tga").c_str();
    ASSERT_TRUE(cIO::SaveImage(path, cImage(cImage::CopyCtor, pixels, cFormat::Rgb8, 2, 1, 1, 1)));
    SampledCanvas canvas(2, 1);
    const int texture = canvas.GetTextureID(path);
    EXPECT_EQ(canvas.GetTextureID(path), texture);
    EXPECT_STREQ(canvas.GetTextureFilePn(texture), path);
    EXPECT_EQ(canvas.GetTextureID(Read("none.tga").c_str()), -1);
    const auto red = [&](int x) {
        canvas.Wipe();
        canvas.Show(texture);
        return canvas.Pixel(x, 0) & 255;
    };
    EXPECT_EQ(red(1), 8u);

    cImage patch(cImage::CopyCtor, grey, cFormat::R8, 3, 1, 1, 1);
    cList<cImage*> images;
    cList<cRect> rects;
    images.Add(&patch);
    for (const float x : {1.0f, -2.0f, cMath::FloatMaxValue}) {
        rects.Clear();
        rects.Add(cRect(x, 0, x + 3, 1));
        canvas.UpdateTexture(texture, images, rects);
        EXPECT_EQ(red(0), x == 1 ? 9u : 72u);
        EXPECT_EQ(red(1), 70u);
    }
    canvas.UnloadTextures();
    EXPECT_EQ(red(1), 0u);
    canvas.ReloadTexture(path);
    EXPECT_EQ(red(1), 8u);
    canvas.FreeTexture(texture);
    EXPECT_EQ(red(1), 8u) << "asked for twice";
    canvas.FreeTexture(texture);
    EXPECT_EQ(red(1), 0u);
}

TEST(SoftwareDevice, ScreenShotsAndSizes) {
    Canvas canvas(2, 2);
    canvas.Draw({At(1, 0, 0x12345678)}, s_Points);
    cImage image;
    canvas.ScreenShot(&image);
    EXPECT_EQ(image.GetPixels()[4], 0x78);
    EXPECT_FALSE(canvas.SetSize(0, 5));
    EXPECT_EQ(canvas.GetBackBuffer().GetWidth(), 2);
    EXPECT_TRUE(canvas.SetSize(5, 3));
    EXPECT_EQ(canvas.Pixel(4, 2), 0u);
}

TEST(SoftwareDevice, WhatIsNotThereDrawsNothing) {
    Canvas canvas(2, 2);
    const cRect odd[] = {{NAN, 0, 2, 2}, {0, 0, 0, 2}, {0, 0, 3e9f, 2}, {-3e38f, 0, 3e38f, 2}, {2, 2, 0, 0}};
    for (const cRect& viewport : odd) {
        canvas.SetViewport(&viewport);
        canvas.Draw(Box(0, 0, 2, 2));
    }
    canvas.SetViewport(&s_Two);
    for (const cRect& clip : {cRect(-9, -9, -1, 1e30f), cRect(1, 1, 1, 1)}) {
        canvas.SetClipRect(&clip);
        canvas.Draw(Box(0, 0, 2, 2));
    }
    canvas.SetClipRect(nullptr);
    for (const int id : {-1, 77}) {
        canvas.SetShader(id);
        canvas.Draw(Box(0, 0, 2, 2));
        canvas.SetBlendState(id);
        canvas.SetDepthState(id);
        canvas.SetSamplerState(id, id);
        canvas.SetTexture(id, id);
        canvas.SetRenderTargetSize(id, 1, 1);
        canvas.FreeTexture(id);
        canvas.FreeShader(id);
        canvas.FreeIndexBuffer(id);
        EXPECT_EQ(canvas.GetVertexSize(id), 0);
    }
    canvas.SetShader(canvas.UI);
    canvas.DrawArrays(s_Triangles, nullptr, 3);
    canvas.DrawArrays(s_Triangles, odd, -3);
    canvas.DrawIndexed(s_Triangles);
    canvas.DrawIndexed(s_Triangles, odd, 1, nullptr, 3, 4);
    canvas.DrawIndexed(s_Triangles, odd, 1, odd, -3, 4);
    EXPECT_EQ(canvas.AddVertexBuffer(nullptr, 4), -1);
    EXPECT_EQ(canvas.AddIndexBuffer(odd, 0x7FFFFFFF, 4), -1);
    EXPECT_EQ(canvas.GetBlendStateID(cBlendFactor::Count, {}, {}, 15), -1);
    EXPECT_EQ(canvas.Rows(), "../..");
    canvas.Draw(Box(0, 0, 2, 2));
    EXPECT_EQ(canvas.Rows(), "##/##") << "draws on";
    canvas.Free();
    canvas.Draw(Box(0, 0, 2, 2));
    canvas.Clear(true, true, cColor::Red, 1);
    EXPECT_TRUE(canvas.GetBackBuffer().IsEmpty());
}

} // namespace

} // namespace trellis
