// The last step of drawing: colours into a surface, by blend state and write mask.
#pragma once

#include "host/cSoftwareTexture.h"
#include "render/cBlendFactor.h"
#include "render/cBlendMode.h"

#include <cstdint>

namespace trellis {

struct cSoftwareBlend {
    bool IsOn = false;
    cBlendFactor::Enum Src = cBlendFactor::One;
    cBlendFactor::Enum Dst = cBlendFactor::Zero;
    cBlendMode::Enum Mode = cBlendMode::Add; ///< `Min` and `Max` take no factors.
    unsigned WriteMask = 15;                 ///< Red 1, green 2, blue 4, alpha 8.

    friend bool operator==(const cSoftwareBlend& a, const cSoftwareBlend& b) = default;
};

/// Writes runs of pixels into one surface. In bytes a colour is rounded first, and blended in whole numbers: with s, d
/// from 0 to 255 and factors f, g, the result is (s f + d g) / 255, rounded, and clamped. Floats are neither rounded
/// nor clamped.
class cSoftwareMerge {
public:
    /// `Plain` has no SSE2. The results are the same.
    enum class Path { Plain, Fast };

    void Begin(const cSoftwareSurface& surface, const cSoftwareBlend& blend, Path path = Path::Fast);

    static constexpr int MaxRun = 64;
    static constexpr uint64_t AllOf(int count) { return ~uint64_t(0) >> (MaxRun - count); } ///< `count` above 0.

    /// Whether all that is written is the colour itself, in bytes.
    bool IsPlain() const { return m_Surface.Bytes && m_Way == Way::Replace && m_Mask == ~0u; }

    /// @param x, y    inside the surface, as all `count` pixels from there to the right, up to `MaxRun`
    /// @param colors  one for each pixel
    /// @param keep    a bit for each pixel that is written, from the lowest one on; none above `count`
    void Write(int x, int y, int count, const cVec4* colors, uint64_t keep) const;
    void Fill(int x, int y, int count, const cVec4& color) const; ///< The same colour for all pixels.

private:
    enum class Way { Replace, Alpha, General };

    void MergeBytes(unsigned* target, const unsigned* source, int step, int count) const;
    cVec4 MergeFloats(const cVec4& d, const cVec4& s) const;

    cSoftwareSurface m_Surface;
    cSoftwareBlend m_Blend;
    Way m_Way = Way::Replace;
    unsigned m_Channels = 15;
    unsigned m_Mask = ~0u; // the same as bits of a pixel
    Path m_Path = Path::Fast;
};

} // namespace trellis
