// A software device of its own for a test. Without a viewer, points are pixels and "Colored" takes clip coordinates.
#pragma once

#include "host/cSoftwareDevice.h"
#include "math/cColor.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace trellis {

using Corner = cVertex::PositionColored;

inline constexpr auto s_Points = cTopology::Points, s_Lines = cTopology::LineList, s_Strip = cTopology::LineStrip,
                      s_Triangles = cTopology::TriangleList;

inline Corner At(float x, float y, unsigned color = 0xFFFFFFFF, float z = 0) {
    Corner v;
    v.Pos = {x, y, z};
    v.Color = color;
    return v;
}

inline std::vector<Corner> Box(float x0, float y0, float x1, float y1, unsigned color = 0xFFFFFFFF, float z = 0) {
    const Corner a = At(x0, y0, color, z), b = At(x1, y0, color, z), c = At(x1, y1, color, z), d = At(x0, y1, color, z);
    return {a, b, c, a, c, d};
}

struct Canvas : cSoftwareDevice {
    Canvas(int width, int height, int threads = 0) : cSoftwareDevice(width, height, threads) {
        EXPECT_TRUE(Init(0));
        Format = AddVertexFormat(cVertex::PositionColored::GetFormat());
        UI = GetShaderID("SolidUI", Format, nullptr);
        World = GetShaderID("Colored", Format, nullptr);
        SetShader(UI);
    }

    void Draw(const std::vector<Corner>& v, cTopology::Enum topology = s_Triangles) {
        DrawArrays(topology, v.data(), int(v.size()));
    }
    void Blend(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode = cBlendMode::Add,
               unsigned mask = 15) {
        SetBlendState(GetBlendStateID(src, dst, mode, mask));
    }
    void Depth(bool test, bool write, cDepthFunc::Enum func) { SetDepthState(GetDepthStateID(test, write, func)); }
    void Wipe() { Clear(true, true, cColor::Zero, 1); }

    unsigned Pixel(int x, int y) const {
        const cImage& image = GetBackBuffer();
        return reinterpret_cast<const unsigned*>(image.GetPixels())[y * image.GetWidth() + x];
    }
    /// Rows from the top, '#' for what is not zero, with '/' between them.
    std::string Rows() const {
        std::string rows;
        for (int y = GetBackBuffer().GetHeight() - 1; y >= 0; y--) {
            for (int x = 0; x < GetBackBuffer().GetWidth(); x++) {
                rows += Pixel(x, y) ? '#' : '.';
            }
            rows += y > 0 ? "/" : "";
        }
        return rows;
    }
    int Format, UI, World;
};

} // namespace trellis
