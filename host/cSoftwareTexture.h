// Textures of the software device, and the samplers that shaders read them through.
#pragma once

#include "image/cImage.h"
#include "math/cVec4.h"
#include "render/cAddressMode.h"
#include "render/cFilter.h"

namespace trellis {

/// Pixels that are drawn into: one slice of a texture.
struct cSoftwareSurface {
    unsigned* Bytes = nullptr; ///< Red in the low byte. Null for a surface of floats.
    cVec4* Floats = nullptr;
    int Width = 0;
    int Height = 0;
    unsigned Channels = 0; ///< What may be written, as the write mask of a blend state.

    bool IsEmpty() const { return !Bytes && !Floats; }
};

/// Pixels are kept as four bytes or four floats, whatever the format that was asked for: byte formats and blocks
/// become bytes, all others floats. A depth target keeps one float each.
class cSoftwareTexture {
public:
    enum class Usage { Image, Color, Depth };

    static constexpr int MaxSide = 16384;
    static constexpr int MaxBytes = 1 << 29; ///< Of one texture: a process of 32 bits has room for a few.

    static constexpr bool IsSize(int width, int height) {
        return width >= 1 && width <= MaxSide && height >= 1 && height <= MaxSide;
    }

    /// @return false for depth and Pvr formats, an empty image and what is above the limits; the texture then has no
    /// pixels
    bool Init(const cImage& image);

    /// A target, black and of alpha 1 where the format has no alpha of its own, else 0.
    ///
    /// @param depth  slices; 0 for a cube
    bool InitColor(cFormat::Enum format, int width, int height, int depth);
    bool InitDepth(cFormat::Enum format, int width, int height); ///< As far as can be: 1.
    void Free();                                                 ///< The pixels; the rest stays as it was.

    /// Replaces a rectangle of level 0, clipped to the texture.
    ///
    /// @param x, y  where the lower left pixel of `image` comes
    void Update(const cImage& image, int x, int y);
    void Save(cImage* out) const; ///< Level 0 in the format that was asked for; depth as `R32f`.

    int GetWidth() const { return m_Width; }
    int GetHeight() const { return m_Height; }
    int GetDepth() const { return m_Depth; }
    cFormat::Enum GetFormat() const { return m_Format; }
    int GetMipMapCount() const { return m_MipMapCount; }
    Usage GetUsage() const { return m_Usage; }
    bool IsEmpty() const { return m_Pixels.IsEmpty(); }
    const cImage& GetPixels() const { return m_Pixels; }
    int GetSliceCount() const { return m_Depth == 0 ? cImage::CubeFaces : m_Depth; }

    cSoftwareSurface GetSurface(int slice); ///< Empty for what is no colour target and no slice.
    float* GetDepthPixels();                ///< Null for what is no depth target.

private:
    bool SetFields(cFormat::Enum format, int width, int height, int depth, int levels, Usage usage);

    cImage m_Pixels; // Rgba8, Rgba32f, or R32f for depth
    cFormat::Enum m_Format = cFormat::None;
    int m_Width = 0;
    int m_Height = 0;
    int m_Depth = 0;
    int m_MipMapCount = 0;
    Usage m_Usage = Usage::Image;
};

/// A texture with its filter and address modes, as a shader sees it during a draw call. Level 0 is read.
///
/// Coordinates are (u, v, w) from 0 to 1, v = 0 being row 0, the bottom one. Missing dimensions do not count. A cube
/// takes a direction instead, by the table of OpenGL, "Cube Map Texture Selection". What is no number reads something.
class cSoftwareSampler {
public:
    struct State {
        cFilter::Enum Filter = cFilter::Linear;
        cAddressMode::Enum U = cAddressMode::Clamp, V = cAddressMode::Clamp, W = cAddressMode::Clamp;

        friend bool operator==(const State& a, const State& b) = default;
    };

    /// @param coords  `count` of them; the result may go to the same place
    void Sample(const cVec4* coords, int count, cVec4* out) const;

    /// One face of a cube, or one slice of a volume, as a flat texture by (u, v). @param slice  clamped
    void SampleSlice(int slice, const cVec4* coords, int count, cVec4* out) const;

    /// Face of a direction, and its coordinates there.
    static int FaceOf(const cVec4& direction, float* u, float* v);

    friend bool operator==(const cSoftwareSampler& a, const cSoftwareSampler& b) = default;

    const cSoftwareTexture* Texture = nullptr; ///< Has pixels during a draw call.
    State Mode;
};

} // namespace trellis
