// The software device on one thread beside pixman: rectangles that are filled, blended and scaled from a picture, on
// 1280 by 720. Of its own, on more threads, a frame of 20,000 triangles and one of two forms. Times are real ones; the
// processor's are those of all threads together.
#include "Bench.h"

#include "bench/BenchFonts.h"
#include "foundation/cTimer.h"
#include "host/WidgetGallery.h"
#include "host/cSoftwareDevice.h"
#include "math/cColor.h"
#include "render/cRender.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <pixman.h>
#include <random>
#include <vector>

using namespace trellis;

namespace {

constexpr int s_Width = 1280, s_Height = 720, s_TextureSide = 256;

struct Spot {
    int X, Y;
};
/// Places for squares of a side.
std::vector<Spot> Spots(int side) {
    std::mt19937 random(1);
    std::vector<Spot> spots(64);
    for (Spot& s : spots) {
        s = {int(random() % unsigned(s_Width - side)), int(random() % unsigned(s_Height - side))};
    }
    return spots;
}

std::vector<unsigned> Texture() {
    std::vector<unsigned> pixels(s_TextureSide * s_TextureSide);
    for (size_t i = 0; i < pixels.size(); i++) {
        pixels[i] = 0xFF000000 | unsigned(i * 2654435761u >> 8);
    }
    return pixels;
}

class TextureShader : public cSoftwareShader {
public:
    TextureShader() : cSoftwareShader(1, PixelStage::Own) {
        Declare("s_Src", &m_Src);
        Declare("g_ScreenMatrix", &m_Screen);
    }
    void Vertices(const unsigned char* vertices, int count, Vertex* out) const override {
        for (int i = 0; i < count; i++) {
            cVertex::PositionTextured v;
            std::memcpy(&v, vertices + size_t(i) * sizeof v, sizeof v);
            out[i].Clip = cVec4(v.Pos, 1) * m_Screen;
            out[i].Varyings[0] = {v.TexCoord.x, v.TexCoord.y, 0, 0};
        }
    }
    void Pixels(Span& span) const override { m_Src.Sample(span.Varyings[0], span.Count, span.Colors); }

private:
    cSoftwareSampler m_Src;
    cMat4 m_Screen;
};

class Ours {
public:
    explicit Ours(int threads = 1) : m_Device(s_Width, s_Height, threads) {
        cSoftwareShader::Register("BenchTexture", [](const cSoftwareShader::Layout&, const char*) {
            return std::unique_ptr<cSoftwareShader>(new TextureShader);
        });
        m_Device.Init(0);
        const int colored = m_Device.AddVertexFormat(cVertex::PositionColored::GetFormat());
        const int textured = m_Device.AddVertexFormat(cVertex::PositionTextured::GetFormat());
        m_Solid = m_Device.GetShaderID("SolidUI", colored, nullptr);
        m_Textured = m_Device.GetShaderID("BenchTexture", textured, nullptr);
        m_Blend = m_Device.GetBlendStateID(cBlendFactor::SrcAlpha, cBlendFactor::OneMinusSrcAlpha, cBlendMode::Add, 15);
        m_Depth = m_Device.GetDepthStateID(true, true, cDepthFunc::Less);
        const int texture =
            m_Device.AddTexture(cImage(cImage::CopyCtor, reinterpret_cast<const unsigned char*>(Texture().data()),
                                       cFormat::Rgba8, s_TextureSide, s_TextureSide, 1, 1));
        m_Device.SetTexture(m_Device.GetSamplerID(m_Textured, "s_Src"), texture);
    }

    void Fill(const Spot& at, int side, unsigned color) {
        m_Device.SetBlendState(-1);
        Rectangle(at, side, color);
    }
    void Blend(const Spot& at, int side, unsigned color) {
        m_Device.SetBlendState(m_Blend);
        Rectangle(at, side, color);
    }
    void Scale(const Spot& at, int side) {
        const float x0 = float(at.X), y0 = float(at.Y), x1 = x0 + float(side), y1 = y0 + float(side);
        cVertex::PositionTextured v[4];
        v[0].Pos = {x0, y1, 0}, v[1].Pos = {x0, y0, 0}, v[2].Pos = {x1, y0, 0}, v[3].Pos = {x1, y1, 0};
        v[0].TexCoord = {0, 1}, v[1].TexCoord = {0, 0}, v[2].TexCoord = {1, 0}, v[3].TexCoord = {1, 1};
        m_Device.SetBlendState(-1);
        m_Device.SetShader(m_Textured);
        m_Device.DrawIndexed(cTopology::TriangleList, v, 4, s_Quad, 6, 4);
    }
    void Frame(const std::vector<cVertex::PositionColored>& vertices) {
        m_Device.Clear(true, true, cColor::Black, 1);
        m_Device.SetBlendState(-1);
        m_Device.SetDepthState(m_Depth);
        m_Device.SetShader(m_Solid);
        m_Device.DrawArrays(cTopology::TriangleList, vertices.data(), int(vertices.size()));
        m_Device.SetDepthState(-1);
    }
    const unsigned* Pixels() const { return reinterpret_cast<const unsigned*>(m_Device.GetBackBuffer().GetPixels()); }

private:
    static constexpr int s_Quad[] = {0, 1, 2, 0, 2, 3};

    void Rectangle(const Spot& at, int side, unsigned color) {
        const float x0 = float(at.X), y0 = float(at.Y), x1 = x0 + float(side), y1 = y0 + float(side);
        cVertex::PositionColored v[4];
        v[0].Pos = {x0, y1, 0}, v[1].Pos = {x0, y0, 0}, v[2].Pos = {x1, y0, 0}, v[3].Pos = {x1, y1, 0};
        v[0].Color = v[1].Color = v[2].Color = v[3].Color = color;
        m_Device.SetShader(m_Solid);
        m_Device.DrawIndexed(cTopology::TriangleList, v, 4, s_Quad, 6, 4);
    }

    cSoftwareDevice m_Device;
    int m_Solid, m_Textured, m_Blend, m_Depth;
};

/// Its red is our blue: of this order it has the fast paths.
class Pixman {
public:
    Pixman() : m_Bits(size_t(s_Width) * s_Height), m_Texture(Texture()) {
        m_Target.reset(pixman_image_create_bits(PIXMAN_a8r8g8b8, s_Width, s_Height, m_Bits.data(), s_Width * 4));
        m_Source.reset(pixman_image_create_bits(PIXMAN_a8r8g8b8, s_TextureSide, s_TextureSide, m_Texture.data(),
                                                s_TextureSide * 4));
        pixman_image_set_filter(m_Source.get(), PIXMAN_FILTER_BILINEAR, nullptr, 0);
        pixman_image_set_repeat(m_Source.get(), PIXMAN_REPEAT_PAD);
    }

    void Fill(const Spot& at, int side, unsigned color) {
        pixman_fill(m_Bits.data(), s_Width, 32, at.X, at.Y, side, side, color);
    }
    void Blend(const Spot& at, int side, unsigned color) {
        const unsigned a = color >> 24; // pixman takes colours with alpha multiplied in
        const auto channel = [&](int shift) { return (unsigned short)((color >> shift & 255) * a * 257 / 255); };
        const pixman_color_t over = {channel(16), channel(8), channel(0), (unsigned short)(a * 257)};
        const pixman_box32_t box = {at.X, at.Y, at.X + side, at.Y + side};
        pixman_image_fill_boxes(PIXMAN_OP_OVER, m_Target.get(), &over, 1, &box);
    }
    void Scale(const Spot& at, int side) {
        pixman_transform_t scale;
        const pixman_fixed_t step = pixman_double_to_fixed(double(s_TextureSide) / side);
        pixman_transform_init_scale(&scale, step, step);
        pixman_image_set_transform(m_Source.get(), &scale);
        pixman_image_composite32(PIXMAN_OP_SRC, m_Source.get(), nullptr, m_Target.get(), 0, 0, 0, 0, at.X, at.Y, side,
                                 side);
    }
    const unsigned* Pixels() const { return m_Bits.data(); }

private:
    struct Unref {
        void operator()(pixman_image_t* image) const { pixman_image_unref(image); }
    };
    std::vector<uint32_t> m_Bits, m_Texture;
    std::unique_ptr<pixman_image_t, Unref> m_Target, m_Source;
};

/// Colours within a few levels: pixman weighs texels in 1/128, and rounds a multiplied colour before it is blended.
cBenchCheck s_Check("raster", [] {
    Ours ours;
    Pixman peer;
    const auto draw = [](auto& side) {
        side.Fill({10, 20}, 300, 0xFF8040C0);
        side.Blend({200, 100}, 200, 0x60FFC020);
        side.Scale({600, 100}, 512);
    };
    draw(ours);
    draw(peer);
    for (int i = 0; i < s_Width * s_Height; i++) {
        for (int shift = 0; shift < 24; shift += 8) {
            if (std::abs(int(ours.Pixels()[i] >> shift & 255) - int(peer.Pixels()[i] >> shift & 255)) > 4) {
                return false;
            }
        }
    }
    return true;
});

enum class Work { Fill, Blend, Scale };

template <class Side, Work W> void BM_Square(benchmark::State& state) {
    Side painter;
    const int side = int(state.range(0));
    const std::vector<Spot> spots = Spots(side);
    for (auto _ : state) {
        for (const Spot& s : spots) {
            if constexpr (W == Work::Fill) {
                painter.Fill(s, side, 0xFF8040C0);
            } else if constexpr (W == Work::Blend) {
                painter.Blend(s, side, 0x60FFC020);
            } else {
                painter.Scale(s, side);
            }
        }
        benchmark::DoNotOptimize(*painter.Pixels());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * int64_t(spots.size()) * side * side);
}
BENCHMARK_TEMPLATE(BM_Square, Ours, Work::Fill)->Arg(16)->Arg(128)->Arg(512);
BENCHMARK_TEMPLATE(BM_Square, Pixman, Work::Fill)->Arg(16)->Arg(128)->Arg(512);
BENCHMARK_TEMPLATE(BM_Square, Ours, Work::Blend)->Arg(16)->Arg(128)->Arg(512);
BENCHMARK_TEMPLATE(BM_Square, Pixman, Work::Blend)->Arg(16)->Arg(128)->Arg(512);
BENCHMARK_TEMPLATE(BM_Square, Ours, Work::Scale)->Arg(512);
BENCHMARK_TEMPLATE(BM_Square, Pixman, Work::Scale)->Arg(512);

/// Clearing included; corners of three colours, depths tested and written. About 46 pixels each, every pixel once.
void BM_Triangles(benchmark::State& state) {
    constexpr int columns = 160, rows = 63; // of cells with two triangles each
    std::vector<cVertex::PositionColored> vertices;
    std::mt19937 random(2);
    const auto corner = [&](int x, int y) {
        cVertex::PositionColored v;
        v.Pos = {float(x * s_Width) / columns, float(y * s_Height) / rows, 0.5f};
        v.Color = unsigned(random()) | 0xFF000000;
        return v;
    };
    for (int y = 0; y < rows; y++) {
        for (int x = 0; x < columns; x++) {
            const auto a = corner(x, y), b = corner(x + 1, y), c = corner(x + 1, y + 1), d = corner(x, y + 1);
            vertices.insert(vertices.end(), {a, b, c, a, c, d});
        }
    }
    Ours ours(int(state.range(0)));
    for (auto _ : state) {
        ours.Frame(vertices);
        benchmark::DoNotOptimize(*ours.Pixels());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * int64_t(vertices.size()) / 3);
}
BENCHMARK(BM_Triangles)->Arg(1)->Arg(2)->UseRealTime()->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

/// The front end's device, on one thread for each processor, and what a host has about it.
class Screen {
public:
    Screen() {
        if (!cRender::GetInstance()) {
            cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(s_Width, s_Height); });
            cRender::Init(3);
            const BenchFonts fonts({"Tahoma 8", "Tahoma B8", "Calibri 11", "Calibri 16", "Calibri B24"});
            cImage white(cFormat::R8, 8, 16, 1, 1);
            std::memset(white.GetPixels(), 255, 8 * 16);
            for (const char* name : {"Tahoma 8", "Tahoma B8", "Calibri 11", "Calibri 16", "Calibri B24"}) {
                cIO::SaveImage(cStr::Format("Fonts/%s.bmp", name), white);
            }
            cTheme::Init();
        }
        m_Viewer.Viewport = {0, 0, s_Width, s_Height};
        m_Viewer.Update(false);
        cRender::SetViewer(&m_Viewer);
    }
    ~Screen() {
        cWidgets::FreeAll();
        cRender::SetViewer(nullptr);
    }
    void Frame() {
        cTimer::Acquire();
        cInput::Acquire();
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
        cRender::BeginFrame();
        cRender::Clear(true, true, cColor::Black, 1);
        cWidgets::Render(-1);
        cRender::EndFrame();
    }

private:
    cViewer m_Viewer;
};

void BM_Forms(benchmark::State& state) { // 1 for Fragile
    Screen screen;
    WidgetGallery gallery;
    gallery.Open(state.range(0) ? cTheme::Fragile : cTheme::WindowsStandard, {s_Width, s_Height}, -1);
    for (float sec = 0; sec < 2; sec += cTimer::GetFrameTimeSec()) { // until they have opened
        screen.Frame();
    }
    for (auto _ : state) {
        screen.Frame();
    }
}
BENCHMARK(BM_Forms)->Arg(0)->Arg(1)->UseRealTime()->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

} // namespace
