// From transformed vertices to pixels: clipping, and which pixels a point, a line and a triangle cover.
//
// A pixel of the target is a unit square whose lower left corner is a whole number; y goes up. Corners are snapped to
// 1/256 of a pixel, so that what is meant to be whole is whole:
//
//     triangle  the pixels whose centre is inside; of centres on an edge those whose triangle lies to the right, or
//               above a level edge, so that neighbours share no pixel and leave none out
//     line      from the pixel of one end to the pixel of the other, both drawn; pixel = floor
//     point     its pixel
#pragma once

#include "host/Float4.h"
#include "host/cSoftwareMerge.h"
#include "host/cSoftwareShader.h"
#include "render/cCullMode.h"
#include "render/cDepthFunc.h"

namespace trellis {

struct cSoftwareDepth {
    bool Test = false;
    bool Write = false;
    cDepthFunc::Enum Func = cDepthFunc::Always;

    friend bool operator==(const cSoftwareDepth& a, const cSoftwareDepth& b) = default;
};

/// Draws one primitive after the other. A pixel's values depend on the primitive and the pixel alone, not on the
/// bounds, so that a picture may be drawn piece by piece. Allocates nothing.
class cSoftwareRaster {
public:
    using Vertex = cSoftwareShader::Vertex;

    struct Viewport {
        float X = 0, Y = 0, Width = 0, Height = 0; ///< Within `MaxPlace`, above 0 in size.
    };
    struct Bounds {
        int X0 = 0, Y0 = 0, X1 = 0, Y1 = 0; ///< Half open.
    };
    struct State {
        cSoftwareSurface Surface;
        float* Depths = nullptr; ///< Null for none.
        int DepthPitch = 0;      ///< In floats.
        Viewport View;
        Bounds Clip; ///< Inside the surface, and inside what there is of depths.
        cSoftwareDepth Depth;
        cSoftwareBlend Blend;
        cCullMode::Enum Cull = cCullMode::None;
        bool IsWireframe = false;
        const cSoftwareShader* Shader = nullptr;
    };

    static constexpr float MaxPlace = 16384; ///< Of a viewport's corner in either direction, and of its sides.

    /// Draws from now on the rows from `y0` to before `y1` of it.
    void Begin(const State& state, int y0 = 0, int y1 = int(MaxPlace));

    /// A vertex on the screen.
    struct Corner {
        int X, Y; ///< 1/256 pixels.
        float Z, InvW;
        const Vertex* From;
        unsigned Out; ///< A bit for each plane that it is outside of; then the numbers above mean nothing.
    };

    /// @param vertices  must stay until their corners have been drawn
    void Project(const Vertex* vertices, int count, Corner* out) const;

    // Vertices that are not finite draw nothing.
    void Point(const Corner& a);
    bool HasLine(const Corner& a, const Corner& b) const; ///< Whether there is anything of the line to draw, anywhere.
    void Line(const Corner& a, const Corner& b, bool skipFirst); ///< @param skipFirst  without the pixel of `a`
    void Triangle(const Corner& a, const Corner& b, const Corner& c);

private:
    static constexpr int s_ClipPlanes = 7;
    static_assert(cSoftwareShader::Span::MaxCount == cSoftwareMerge::MaxRun, "a bit for each pixel");
    static constexpr int s_MaxCorners = 16; // a plane adds one to three, and more when rounding has bent the outline

    template <class T> struct Plane { // value + dx * (pixels right of the reference) + dy * (pixels above it)
        T Value, Dx, Dy;
    };
    class Edge;

    float Distance(const Vertex& v, int plane) const;
    unsigned OutCode(const Vertex& v) const;
    int ClipPolygon(unsigned planes);
    bool ClipLine(const Corner& a, const Corner& b, Vertex* vertices, Corner* ends) const;
    void Place(const Vertex& v, Corner* out) const;

    bool IsCulled(double area) const;
    void Fill(const Corner& first, const Corner& second, const Corner& third);
    void DrawLine(const Corner& a, const Corner& b, bool skipFirst);
    void SetPlanes(const Corner& a, const Corner& b, const Corner& c);
    template <class T> static Plane<T> Solve(T a, T b, T c, const T (&grad)[4]);

    void Run(int y, int x0, int x1);
    void Piece(int y, int x0, int count);
    void Interpolate(int y, int x0, int count);
    uint64_t Shade(uint64_t keep);
    Float4 PerspectiveAt(Float4 inverse) const;
    template <class Passes> void ColorRow(int y, int x0, int x1);

    State m_State;
    cSoftwareShader::PixelStage m_Stage = cSoftwareShader::PixelStage::Own; // of its shader
    void (cSoftwareRaster::*m_ColorRow)(int y, int x0, int x1) = nullptr;   // null where only `Piece` will do
    cSoftwareMerge m_Merge;
    float m_Guard[2] = {}; // how far beyond the viewport a corner may lie, in its halves

    // The present primitive
    Vertex m_Polygon[2][s_MaxCorners];
    int m_RefX = 0, m_RefY = 0; // 1/256 pixels
    float m_Grad[4] = {};       // columns of the inverse of the two edges' matrix
    Plane<float> m_Z = {}, m_InvW = {};
    float m_LeastInvW = 0, m_MostInvW = 0;
    bool m_IsAffine = true, m_IsFlat = true, m_HasColor = false;
    Plane<Float4> m_Varyings[cSoftwareShader::MaxVaryings] = {};
    cVec4 m_Color; // of a flat primitive, once `m_HasColor`
    cSoftwareShader::Span m_Span;
};

} // namespace trellis
