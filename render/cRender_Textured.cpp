// Rectangles that show textures, and icons.
#include "math/cFrustum.h"
#include "math/cRect.h"
#include "render/cRender.h"
#include "render/cRender_Internal.h"

#include <cmath>

namespace trellis {

namespace {

constexpr unsigned int White = 0xFFFFFFFF;

int LinearClamp() {
    static const int s_ID =
        cRender::GetSamplerStateID(cFilter::Linear, cAddressMode::Clamp, cAddressMode::Clamp, cAddressMode::Clamp);
    return s_ID;
}

/// The shader for one kind of texture and one treatment of its alpha, looked up when it is first needed.
struct TexturedShader {
    bool IsReady = false;
    int Shader, Src, Alpha, FaceIndex;
};

enum Kind { Kind1D, Kind2D, Kind3D, KindCube, KindCount };
constexpr int OverrideAlpha = 1, AlphaAsColor = 2; // bits of the treatment

const TexturedShader& GetTexturedShader(Kind kind, int treatment) {
    static TexturedShader s_Shaders[KindCount][4];
    static constexpr const char* s_Kinds[KindCount] = {"#define SRC_1D", "#define SRC_2D", "#define SRC_3D",
                                                       "#define SRC_CUBE"};
    TexturedShader& shader = s_Shaders[kind][treatment];
    if (!shader.IsReady) {
        cStr defines = s_Kinds[kind];
        if (treatment & OverrideAlpha) {
            defines += "\n#define OVERRIDE_ALPHA";
        }
        if (treatment & AlphaAsColor) {
            defines += "\n#define ALPHA_CHANNEL_AS_COLOR";
        }
        shader.Shader = cRender::GetShaderID("TexturedUI", cVertex::PositionColoredTextured::FormatID, defines);
        shader.Src = cRender::GetSamplerID(shader.Shader, "s_Src");
        shader.Alpha = cRender::GetShaderConstID(shader.Shader, "c_Alpha");
        shader.FaceIndex = cRender::GetShaderConstID(shader.Shader, "c_FaceIndex");
        shader.IsReady = true;
    }
    return shader;
}

Kind KindOf(int texture) {
    const int depth = cRender::GetTextureDepth(texture);
    if (depth == 0) {
        return KindCube;
    }
    return depth > 1 ? Kind3D : cRender::GetTextureHeight(texture) < 2 ? Kind1D : Kind2D;
}

/// The six faces as a cross, in cells of a 4 by 3 grid from the top left:
///
///        +Y                 2
///     -X +Z +X -Z        1  4  0  5
///        -Y                 3
void FillUnfoldedCube(const cRect& rect, int texture, const cRender::FillRectangleTexturedArgs& args) {
    static constexpr struct { int Column, Row; } s_Cells[6] = {{2, 1}, {0, 1}, {1, 0}, {1, 2}, {1, 1}, {3, 1}};
    const auto edge = [](float from, float size, int i, int count) {
        return std::floor(from + size * float(i) / float(count) + 0.5f);
    };
    for (int face = 0; face < 6; face++) {
        const auto [column, row] = s_Cells[face];
        cRender::FillRectangleTexturedArgs one = args;
        one.CubeFace = face;
        cRender::FillRectangleTextured(
            cRect(edge(rect.x0, rect.Width(), column, 4), edge(rect.y0, rect.Height(), 2 - row, 3),
                  edge(rect.x0, rect.Width(), column + 1, 4), edge(rect.y0, rect.Height(), 3 - row, 3)),
            texture, one);
    }
}

using Corner = cVertex::PositionColoredTextured;

/// Texture coordinates of a quad's corners; v0 belongs to the bottom.
void SetTexCoords(Corner* corners, float u0, float v0, float u1, float v1) {
    corners[0].TexCoord = {u0, v1};
    corners[1].TexCoord = {u0, v0};
    corners[2].TexCoord = {u1, v0};
    corners[3].TexCoord = {u1, v1};
    for (int i = 0; i < 4; i++) {
        corners[i].Color = White;
    }
}

} // namespace

void cRender::FillRectangleTexturedCurShader(const cRect& rect, bool flipX, bool flipY, float uMax, float vMax,
                                             float slice) {
    if (rect.IsEmpty()) {
        return;
    }
    Corner corners[4];
    cRender_SetQuad(corners, rect, slice);
    SetTexCoords(corners, flipX ? uMax : 0, flipY ? vMax : 0, flipX ? 0 : uMax, flipY ? 0 : vMax);
    SetDepthState(-1);
    SetCullMode(cCullMode::None);
    DrawIndexed(cTopology::TriangleList, corners, 4, cRender_QuadIndices, 6, 4);
}

void cRender::FillRectangleCubeCurShader(const cRect& rect, float z, const cFrustum& frustum) {
    if (rect.IsEmpty()) {
        return;
    }
    static constexpr int s_Corners[4] = {3, 0, 1, 2}; // of the frustum: left-top, left-bottom, right-bottom, right-top
    cVertex::PositionNormal corners[4];
    cRender_SetQuad(corners, rect, z);
    for (int i = 0; i < 4; i++) {
        corners[i].Normal = frustum.corners[s_Corners[i] + 4] - frustum.corners[s_Corners[i]];
    }
    SetDepthState(-1);
    SetCullMode(cCullMode::None);
    DrawIndexed(cTopology::TriangleList, corners, 4, cRender_QuadIndices, 6, 4);
}

void cRender::FillRectangleTextured(const cRect& rect, int texture, const FillRectangleTexturedArgs& args) {
    if (rect.IsEmpty() || texture == -1) {
        return;
    }
    const Kind kind = KindOf(texture);
    if (kind == KindCube && args.CubeFace > 5) {
        FillUnfoldedCube(rect, texture, args);
        return;
    }
    const bool overrides = args.Alpha != -1;
    const TexturedShader& shader =
        GetTexturedShader(kind, (overrides ? OverrideAlpha : 0) | (args.AlphaChannelAsColor ? AlphaAsColor : 0));
    cRender_SetShapeState(shader.Shader);
    SetTexture(shader.Src, texture, args.SamplerState == -1 ? LinearClamp() : args.SamplerState);
    if (overrides) {
        SetShaderConst(shader.Alpha, args.Alpha);
    }
    if (kind == KindCube) {
        SetShaderConst(shader.FaceIndex, args.CubeFace);
    }
    const bool flip = GetFlipRenderTarget() && GetTextureRenderTargetUsage(texture) != 0;
    FillRectangleTexturedCurShader(rect, false, flip, 1, 1, args.DepthSlice);
}

void cRender::DrawIcon(const cRect& rect, int texture, int index, IconState::Enum state, float alpha, int cellWidth,
                       int cellHeight) {
    if (rect.IsEmpty() || texture == -1 || index < 0 || cellWidth < 1 || cellHeight < 1) {
        return;
    }
    const int width = GetTextureWidth(texture), height = GetTextureHeight(texture);
    const int columns = width / cellWidth;
    if (columns < 1 || index / columns >= height / cellHeight) {
        return;
    }
    static const int s_Shader = GetShaderID("IconUI", Corner::FormatID);
    static const int s_Decal = GetSamplerID(s_Shader, "s_Decal");
    static const int s_Disabled = GetShaderConstID(s_Shader, "c_Disabled");
    static const int s_Hot = GetShaderConstID(s_Shader, "c_Hot");
    static const int s_Alpha = GetShaderConstID(s_Shader, "c_Alpha");

    const float left = float(index % columns * cellWidth), top = float(index / columns * cellHeight);
    Corner corners[4];
    cRender_SetQuad(corners, rect);
    SetTexCoords(corners, left / float(width), 1 - (top + float(cellHeight)) / float(height),
                 (left + float(cellWidth)) / float(width), 1 - top / float(height));
    cRender_SetShapeState(s_Shader);
    SetTexture(s_Decal, texture, LinearClamp());
    SetShaderConst(s_Disabled, state == IconState::Disabled ? 1.0f : 0.0f);
    SetShaderConst(s_Hot, state == IconState::Hot ? 1.0f : 0.0f);
    SetShaderConst(s_Alpha, alpha);
    DrawIndexed(cTopology::TriangleList, corners, 4, cRender_QuadIndices, 6, 4);
}

} // namespace trellis
