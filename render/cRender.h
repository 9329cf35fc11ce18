// Front end of the rendering: the state that must survive a device's ignorance of it, its stacks, and the way to the
// one device.
//
//     cRender::Function  ->  filters what changes nothing  ->  cRender::Stub (a host's device)
//
// Points have their origin at the bottom left of the viewport, Y upward. All ids are the device's; -1 means none or the
// default. A draw call has reached the device when the function returns: there is no queue.
#pragma once

#include "math/cColor.h"
#include "math/cMat4.h"
#include "math/cRect.h"
#include "render/cRender_Stub.h"

namespace trellis {

class cBounds;
class cFont;
class cFrustum;
class cQuat;
class cViewer;

inline constinit cRender_Stub* cRender_Instance = nullptr; ///< The front end's own; others ask `GetInstance`.

/// Everything belongs to the rendering thread. Without a device only `GetType`, `GetFlipRenderTarget`, the `Free...`
/// functions, and what only reads or pushes state may be called. A second `Init` in one process, after `Free`, is not
/// supported: ids that drawing functions have looked up are kept.
class cRender {
public:
    using Stub = cRender_Stub;

    // ---- Life and frames
    /// Where `Init` gets its device from; a host sets it. The front end deletes the device.
    static void SetFactory(Stub* (*factory)(int type));
    /// @return false without a factory, when there is a device already, and when the device cannot be had
    static bool Init(int type);
    static void Free();
    static void ResetStates(); ///< All state to its defaults, on the device too; the stacks stay.
    static Stub* GetInstance() { return cRender_Instance; } ///< Null before `Init` and after `Free`.
    static int GetType() { return cRender_Instance ? cRender_Instance->GetType() : 0; }
    static bool GetFlipRenderTarget() { return GetType() == 2; } ///< Whether targets are stored upside down.
    static void BeginFrame();                                    ///< Nothing inside a frame.
    static void EndFrame();                                      ///< Nothing outside of one.
    static void Finish() { cRender_Instance->Finish(); }
    static void Clear(bool color, bool depth, const cColor& colorValue, float depthValue) {
        cRender_Instance->Clear(color, depth, colorValue, depthValue);
    }

    // ---- State. A setter calls the device when the value differs from the current one.
    static void SetViewer(cViewer* viewer); ///< Borrowed; null is stored and tells the device nothing.
    static cViewer* GetViewer();
    static void SetDepthState(int state);
    static void SetBlendState(int state);
    static void SetCullMode(cCullMode::Enum mode);
    static void SetWireframe(bool on);
    static bool GetWireframe();

    // A push calls no device. A pop of an empty stack does nothing.
    static void PushDepthState();
    static void PopDepthState();
    static void PushBlendState();
    static void PopBlendState();
    static void PushCullMode();
    static void PopCullMode();

    /// Rectangles whose edges all lie within 0.001 of the current ones are the same, and so are all empty ones.
    static void SetClipRect(const cRect& rect);
    static const cRect& GetClipRect(); ///< `cRect::Empty`: nothing is clipped.
    static void PushClipRect();
    static void PopClipRect();

    // ---- Transforms
    static void SetWorldMatrix(const cMat4& m);
    static const cMat4& GetWorldMatrix();
    static const cMat4& GetWorldMatrixInverse(); ///< The identity for a singular matrix.
    static const cMat3& GetNormalMatrix();
    static void PushWorldMatrix();
    static void PopWorldMatrix();
    static void SetTextureMatrix(const cMat4& m, int stage); ///< Nothing for a stage outside 0 to 3.
    static const cMat4& GetTextureMatrix(int stage);         ///< Stage 0 for a stage outside 0 to 3.

    // ---- Render targets
    /// Draws into textures from now on, with a viewport of the size of the first target and without a clip.
    ///
    /// @param targets     at least one
    /// @param slices      for each target; may be null
    /// @param copyAspect  the viewer keeps the outer picture's proportions
    static void PushRenderTarget(const int* targets, int count, int depth, const int* slices, bool copyAspect);
    static void PopRenderTarget();
    static int AddRenderTarget(int width, int height, cFormat::Enum format, int samplerState, bool, int);
    static int AddRenderDepth(int target) { return cRender_Instance->AddRenderDepth(target, cFormat::Depth24Stencil8); }
    static void SetRenderTargetSize(int target, int width, int height) {
        cRender_Instance->SetRenderTargetSize(target, width, height);
    }
    static void SaveRenderTarget(int target, cImage* out) { cRender_Instance->SaveRenderTarget(target, out); }

    // ---- The device
    static const cStr& GetVendor() { return cRender_Instance->GetVendor(); }
    static int GetMRTCount() { return cRender_Instance->GetMRTCount(); }
    static bool SupportsFormat(cFormat::Enum format) { return cRender_Instance->SupportsFormat(format); }
    static bool SupportsNonPowerOfTwo() { return cRender_Instance->SupportsNonPowerOfTwo(); }
    static void ScreenShot(cImage* out) { cRender_Instance->ScreenShot(out); }
    static bool GetDeviceRecentReset() { return cRender_Instance->GetDeviceRecentReset(); }
    static bool GetExpandTexturesToPowerOfTwo(); ///< What a device heeds when it makes textures; true at first.
    static void SetExpandTexturesToPowerOfTwo(bool on);

    // ---- Textures. With a sampler state the texture gets it, which may be -1.
    static int GetTextureID(const char* filePn, int samplerState);
    static int AddTexture(const char* filePn, int samplerState);
    static int AddTexture(const cImage& image, int samplerState);
    static void UpdateTexture(int texture, const cImage& image, const cList<cRect>& rects); ///< Cuts them out of it.
    static void FreeTexture(int texture);
    static void ReloadTextures() { cRender_Instance->ReloadTextures(); }
    static void ReloadTexture(int texture) { cRender_Instance->ReloadTexture(texture); }
    static void ReloadTexture(const char* filePn) { cRender_Instance->ReloadTexture(filePn); }
    static void UnloadTextures() { cRender_Instance->UnloadTextures(); }
    static const char* GetTextureFilePn(int texture) { return cRender_Instance->GetTextureFilePn(texture); }
    static int GetTextureWidth(int texture) { return cRender_Instance->GetTextureWidth(texture); }
    static int GetTextureHeight(int texture) { return cRender_Instance->GetTextureHeight(texture); }
    static int GetTextureDepth(int texture) { return cRender_Instance->GetTextureDepth(texture); }
    static int GetTextureFormat(int texture) { return cRender_Instance->GetTextureFormat(texture); }
    static int GetTextureMipMapCount(int texture) { return cRender_Instance->GetTextureMipMapCount(texture); }
    static int GetTextureRenderTargetUsage(int texture) {
        return cRender_Instance->GetTextureRenderTargetUsage(texture);
    }
    static int GetSamplerStateID(cFilter::Enum filter, cAddressMode::Enum u, cAddressMode::Enum v,
                                 cAddressMode::Enum w) {
        return cRender_Instance->GetSamplerStateID(filter, u, v, w);
    }
    static void SetSamplerState(int texture, int samplerState) {
        cRender_Instance->SetSamplerState(texture, samplerState);
    }

    // ---- Shaders
    static int GetShaderID(const char* name, int vertexFormat, const char* defines = nullptr) {
        return cRender_Instance->GetShaderID(name, vertexFormat, defines);
    }
    static int AddShader(const char* name, int vertexFormat, const char* defines = nullptr) {
        return cRender_Instance->AddShader(name, vertexFormat, defines);
    }
    static int GetShaderConstID(int shader, const char* name) {
        return cRender_Instance->GetShaderConstID(shader, name);
    }
    static int GetSamplerID(int shader, const char* name) { return cRender_Instance->GetSamplerID(shader, name); }
    static void SetShader(int shader) { cRender_Instance->SetShader(shader); }
    static void FreeShader(int shader);
    static void ReloadShaders() { cRender_Instance->ReloadShaders(); }
    static void SetTexture(int sampler, int texture) { cRender_Instance->SetTexture(sampler, texture); }
    static void SetTexture(int sampler, int texture, int samplerState);
    static void SetShaderConst(int id, int v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, float v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const cVec2& v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const cVec3& v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const cVec4& v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const cColor& v) { SetShaderConst(id, cVec4(v.r, v.g, v.b, v.a)); }
    static void SetShaderConst(int id, const cRect& v) { SetShaderConst(id, cVec4(v.x0, v.y0, v.x1, v.y1)); }
    static void SetShaderConst(int id, const cMat3& v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const cMat4& v) { cRender_Instance->SetShaderConst(id, v); }
    static void SetShaderConst(int id, const float* v, int count) { cRender_Instance->SetShaderConst(id, v, count); }
    static void SetShaderConst(int id, const cVec2* v, int count) { cRender_Instance->SetShaderConst(id, v, count); }
    static void SetShaderConst(int id, const cVec3* v, int count) { cRender_Instance->SetShaderConst(id, v, count); }
    static void SetShaderConst(int id, const cVec4* v, int count) { cRender_Instance->SetShaderConst(id, v, count); }
    static void SetShaderConst(int id, const cColor* v, int count);
    static void ApplyTransforms() { cRender_Instance->ApplyTransforms(); }
    static int GetBlendStateID(cBlendFactor::Enum src, cBlendFactor::Enum dst, cBlendMode::Enum mode,
                               unsigned writeMask) {
        return cRender_Instance->GetBlendStateID(src, dst, mode, writeMask);
    }
    static int GetDepthStateID(bool test, bool write, cDepthFunc::Enum func) {
        return cRender_Instance->GetDepthStateID(test, write, func);
    }

    // ---- Vertices and drawing
    static int AddVertexFormat(const cVertex::Format& format) { return cRender_Instance->AddVertexFormat(format); }
    static int GetVertexSize(int format) { return cRender_Instance->GetVertexSize(format); }
    static int AddVertexBuffer(const void* vertices, unsigned bytes) {
        return cRender_Instance->AddVertexBuffer(vertices, bytes);
    }
    static int AddIndexBuffer(const void* indices, int count, int indexSize) {
        return cRender_Instance->AddIndexBuffer(indices, count, indexSize);
    }
    static void FreeVertexBuffer(int buffer);
    static void FreeIndexBuffer(int buffer);
    static void SetVertexBuffer(int buffer) { cRender_Instance->SetVertexBuffer(buffer); }
    static void SetIndexBuffer(int buffer) { cRender_Instance->SetIndexBuffer(buffer); }
    static void DrawArrays(cTopology::Enum topology) { cRender_Instance->DrawArrays(topology); }
    static void DrawArrays(cTopology::Enum topology, const void* vertices, int count) {
        cRender_Instance->DrawArrays(topology, vertices, count);
    }
    static void DrawIndexed(cTopology::Enum topology) { cRender_Instance->DrawIndexed(topology); }
    static void DrawIndexed(cTopology::Enum topology, const void* vertices, int vertexCount, const void* indices,
                            int indexCount, int indexSize) {
        cRender_Instance->DrawIndexed(topology, vertices, vertexCount, indices, indexCount, indexSize);
    }

    // ---- Shapes of the interface, in points. Each is one draw of the device, an unfolded cube six; all but the
    // `...CurShader` ones are blended. An empty rectangle makes no call. Integers and floats come as left, bottom,
    // right, top.
    static void DrawLine(int x0, int y0, int x1, int y1, const cColor& color);
    static void DrawLine(float x0, float y0, float x1, float y1, const cColor& color);
    static void DrawLine(const cVec2& a, const cVec2& b, const cColor& color);
    static void DrawLine(const cVec3& a, const cVec3& b, const cColor& color); ///< In the world.

    static void DrawLines(const cVertex::PositionColored* vertices, int count); ///< A line list, in points.
    /// Whether lines lose their last pixel on this device, so that they must end one further.
    static bool LinesLackTheirEnd();

    /// The outline just inside the right and top edges, so that it covers the rectangle's outermost pixels.
    static void DrawRectangle(const cRect& rect, const cColor& color);
    static void DrawRectangle(int x0, int y0, int x1, int y1, const cColor& color);
    static void DrawRectangle(float x0, float y0, float x1, float y1, const cColor& color);
    static void DrawRectangleDot(const cRect& rect, const cColor& color); ///< Every second pixel of the outline.
    static void DrawRectanglesDot(const cRect* rects, int count, const cColor& color);

    static void FillRectangleSolid(const cRect& rect, const cColor& color);
    static void FillRectangleSolid(int x0, int y0, int x1, int y1, const cColor& color);
    static void FillRectangleSolid(float x0, float y0, float x1, float y1, const cColor& color);
    /// @param shader  of the format `PositionColored`; -1 for the plain one
    static void FillRectanglesSolid(const cRect* rects, int count, const cColor& color, int shader = -1);

    /// Where a gradient runs from its first colour to its second.
    class LinearGradient {
    public:
        enum Enum : int { LeftToRight, TopToBottom, LeftTopToRightBottom, LeftBottomToRightTop };
    };
    static void FillRectangleLinearGradient(const cRect& rect, const cColor& a, const cColor& b,
                                            LinearGradient::Enum gradient);
    static void FillRectangleLinearGradient(int x0, int y0, int x1, int y1, const cColor& a, const cColor& b,
                                            LinearGradient::Enum gradient);
    static void FillRectangleLinearGradient(float x0, float y0, float x1, float y1, const cColor& a, const cColor& b,
                                            LinearGradient::Enum gradient);
    static void FillRectanglesLinearGradient(const cRect* rects, int count, const cColor& a, const cColor& b,
                                             LinearGradient::Enum gradient);

    /// A chessboard of single pixels. @param origin  a pixel of the first colour
    static void FillRectangleDither(const cRect& rect, const cVec2& origin, const cColor& a, const cColor& b);

    struct FillRectangleTexturedArgs {
        float Alpha = -1; ///< Instead of the image's; -1: the image's own.
        bool AlphaChannelAsColor = false;
        int SamplerState = -1; ///< -1: linear, clamped.
        float DepthSlice = 0;  ///< Of a volume, from 0 to 1.
        int CubeFace = 0;      ///< 0 to 5; above, all faces unfolded into a cross.
    };
    static void FillRectangleTextured(const cRect& rect, int texture, const FillRectangleTexturedArgs& args);
    /// A quad of the format `PositionColoredTextured`, white. Texture coordinates run from (0, 0) at the lower left
    /// corner to (uMax, vMax); the slice of a volume rides in z.
    static void FillRectangleTexturedCurShader(const cRect& rect, bool flipX, bool flipY, float uMax, float vMax,
                                               float slice);
    /// A quad of the format `PositionNormal`: in place of the normal the ray of the volume through the corner.
    static void FillRectangleCubeCurShader(const cRect& rect, float z, const cFrustum& frustum);

    class IconState {
    public:
        enum Enum : int { Normal, Disabled, Hot };
    };
    /// One cell of an icon sheet. Cells count along the rows from the top left of the picture.
    ///
    /// @param cellWidth, cellHeight  pixels of the sheet
    static void DrawIcon(const cRect& rect, int texture, int index, IconState::Enum state, float alpha, int cellWidth,
                         int cellHeight);

    /// A sector of the format `PositionColored`. @param from, to  degrees from the X axis, counterclockwise
    static void FillCircleColoredCurShader(const cVec2& center, float radius, const cColor& color, float from, float to,
                                           int segments);
    static void FillCircleSolid(const cVec2& center, float radius, const cColor& color);
    static void FillCircleSolid(float x, float y, float radius, const cColor& color);
    static void FillCircleSolid(int x, int y, int radius, const cColor& color);
    static void FillCircleSolid(const cVec3& center, float radius, const cColor& color); ///< In the world, to the eye.
    /// Colours by the distance d from a segment, from `center` at `segRadius` to `bound` at `gradRadius`: the mixture
    /// is ((d - segRadius) / (gradRadius - segRadius)) ^ power. Beyond `gradRadius` there is nothing.
    ///
    /// @param horizontal  not 0: the segment runs along X, which is cheaper to tell than its direction
    static void FillSegmentRadialGradient(const cVec2& from, const cVec2& to, float segRadius, float gradRadius,
                                          float power, int horizontal, const cColor& center, const cColor& bound);
    /// The same filling a rectangle: the segment runs along its middle, X or else Y, and the ends are round.
    static void FillSegmentRadialGradient(const cRect& rect, float segRadius, float power, int horizontal,
                                          const cColor& center, const cColor& bound);
    static void FillRectangleRadialGradient(const cRect& rect, float segRadius, float gradRadius, float power,
                                            const cColor& center, const cColor& bound); ///< About its middle.
    static void FillCircleRadialGradient(const cVec2& at, float segRadius, float gradRadius, float power,
                                         const cColor& center, const cColor& bound);
    static void FillCircleRadialGradient(float x, float y, float segRadius, float gradRadius, float power,
                                         const cColor& center, const cColor& bound);
    static void FillCircleRadialGradient(int x, int y, int segRadius, int gradRadius, float power, const cColor& center,
                                         const cColor& bound);
    /// A rectangle whose left and right ends are bitten out by circles around the middles of its ends.
    ///
    /// @param radius      of the bites
    /// @param gradRadius  depth of the gradient behind them, from `bound` to `center`
    static void DrawCaveCaveCorner(const cRect& rect, float radius, float gradRadius, const cColor& center,
                                   const cColor& bound);
    static void DrawNoPreview(const cRect& rect, const cColor& color); ///< A cross: there is no picture.

    // ---- Shapes in the world, for editing and for a look at what goes on, under the world matrix. Depth test,
    // blending and culling are the caller's; the colour is the vertices'. A `...CurShader` leaves the shader to the
    // caller too, and draws `PositionColored`. Counts of segments are taken into [3, 256], of latitudes into [1, 256].
    static void DrawCrossHair(const cVec3& at, float size, const cColor& color); ///< Three lines of that length.
    static void DrawCubeWire(const cVec3& center, float size, const cColor& color);
    static void DrawCubeSolid(const cVec3& center, float size, const cColor& color);
    static void DrawCubeSolid(const cVec3& center, float size, const cColor& color, const cQuat& orient);
    static void DrawCubesCurShader(const cVec3* centers, const float* sizes, int count,
                                   const cColor& color = cColor::White); ///< In one draw.
    static void DrawBounds(const cBounds& bounds, const cColor& color);  ///< Nothing for an empty box.
    /// In points of the interface. @param from, to  degrees from the X axis, counterclockwise
    static void DrawCircle(const cVec2& center, float radius, float from, float to, const cColor& color, int segments);
    /// @param normal  of any length; null: the Y axis, a circle on the ground
    static void DrawCircle(const cVec3& center, float radius, const cColor& color, const cVec3* normal = nullptr);
    static void DrawFacingCircle(const cVec3& center, float radius, const cVec3& toEye, const cColor& color,
                                 int segments = 64);
    /// @param latitudes, longitudes  circles around the axis, and half circles from pole to pole
    /// @param axis                   from the middle to a pole, of any length
    static void DrawSphereWire(const cVec3& center, float radius, const cColor& color, int latitudes, int longitudes,
                               const cVec3& axis);
    static void DrawSphereWire(const cVec3& center, float radius, const cColor& color);
    /// A truncated cone with its two end faces. @param apexRadius, baseRadius  0: a point
    static void DrawConeSolid(const cVec3& apex, const cVec3& base, float apexRadius, float baseRadius,
                              const cColor& color, int segments);
    /// Its end circles and sides. @param sides  lines along it
    static void DrawConeWire(const cVec3& apex, const cVec3& base, float apexRadius, float baseRadius,
                             const cColor& color, int segments, int sides = 8);
    /// A pie slice, the short way from one direction to the other. Of directions that are equal or opposite it has no
    /// plane: nothing.
    ///
    /// @param from, to  of any length
    static void DrawSector(const cVec3& center, float radius, const cVec3& from, const cVec3& to, const cColor& color,
                           int segments = 32);
    static void DrawFrustumWire(const cFrustum& frustum, const cColor& color);
    static void DrawFrustumWireCurShader(const cFrustum& frustum, const cColor& color = cColor::White);
    static void DrawFrustumSolidCurShader(const cFrustum& frustum, const cColor& color = cColor::White);
    static void FillCirclesCurShader(const cVec3* centers, const float* radii, int count, const cVec3& normal,
                                     int segments); ///< Discs of one normal, white, in one draw.
    static void DrawBillboardQuadsSolid(const cVec3* centers, int count, float size, const cColor& color);
    static void DrawCamera(const cColor& color); ///< Looking along -Z from the origin, one unit long.

    struct GridArgs {
        float Size;   ///< Half the extent.
        float Height; ///< Of the vertical axis.
        float CellSize;
        int SubDivisions; ///< Of a cell.
        bool ShowAxes;
        bool ShowLines;
        bool ShowSubLines;
        bool ShowPlanes; ///< Kept for those who draw them.
        cMat4 Transform;

        GridArgs() { SetDefaults(); }
        void SetDefaults();
        void Validate(); ///< What makes no grid becomes the default; no subdivisions become one.
    };
    /// Lines on the ground, y = 0, the important ones in front. At most 20,000 lines in each direction.
    static void DrawGrid(const GridArgs& args);

    // ---- Text
    enum DrawStringFlags : int {
        CenterX = 1,
        RightX = 2,
        CenterY = 4,
        BaselineY = 8,
        BottomY = 16,
        MeasureOnly = 32,
        TightBox = 64 ///< What is aligned, and returned, is the box of the ink instead of the cells'.
    };
    /// Finds or loads "Fonts/<name>.cFont" and its picture. @return -1 when it cannot be had
    static int GetFontID(const char* name);
    static const cFont* GetFont(int id); ///< Null when there is none.
    static int GetFontTextureID(int id);
    /// Writes a text of one line. Without flags (x, y) is its top left corner; the pen starts on a whole pixel.
    ///
    /// @param color  null: black
    /// @return box of the text; `cRect::Empty` without text or font
    static cRect DrawString(int font, const char* text, float x, float y, int flags, const cColor* color);
    static cRect DrawString(int font, const char* text, float x, float y, const cColor& color = cColor::Black);
    static cRect DrawString(int font, const char* text, float x, float y, int flags,
                            const cColor& color = cColor::Black);
    static cRect DrawString(int font, const char* text, const cVec2& at, const cColor& color = cColor::Black);
    static cRect DrawString(int font, const char* text, const cVec2& at, int flags,
                            const cColor& color = cColor::Black);
    /// At the place on the screen of a point in the world; nothing for one behind the eye.
    static cRect DrawString(int font, const char* text, const cVec3& at, const cColor& color = cColor::Black);
    static cRect DrawString(int font, const char* text, const cVec3& at, int flags,
                            const cColor& color = cColor::Black);
    static cRect MeasureStringCells(int font, const char* text);
    static cRect MeasureStringTightRect(int font, const char* text);
    static void EnsurePrintable(int font, cStr* text); ///< Removes what the font has no glyph for.

    // ---- Shader sources
    /// Constants that a device fills by name, without being asked.
    class AutoConst {
    public:
        enum Enum : int {
            ViewportWidth,
            ViewportHeight,
            ViewportInvWidth,
            ViewportInvHeight,
            WorldMatrix,
            WorldMatrixInverse,
            ViewerPos,
            WorldViewMatrix,
            ViewProjectionMatrix,
            WorldViewProjectionMatrix,
            ProjectionMatrix,
            ScreenMatrix, ///< Points to clip space.
            ScreenMatrixInverse,
            NormalMatrix,
            NormalViewMatrix,
            TimeSec,
            FrameTimeSec,
            TextureMatrix0,
            TextureMatrix1,
            TextureMatrix2,
            TextureMatrix3,
            Count
        };
        static const char* ToString(int id);     ///< Null for what is none.
        static int FromString(const char* name); ///< -1 for what is none.
    };

    /// Replaces a text in all sources that are loaded from now on.
    static void ReplaceInShaders(const char* from, const char* to);
    /// Compiles the variants that the sources in "Shaders" announce, and writes the index of what came out.
    ///
    /// @param platform  0 for the desktop's compiler; else the console's
    static void PrecompileShaders(int platform);
    /// Lines of that index, for devices: name, defines and number of a variant between tabs, the defines by blanks.
    static const cList<cStr>& GetShadersCache();

    static inline int PixelsPerPoint = 1; ///< Between points and pixels.
};

} // namespace trellis
