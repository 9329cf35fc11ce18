#include "host/cSoftwareTexture.h"

#include "host/Float4.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace trellis {

namespace {

bool IsBytes(int format) {
    return format <= cFormat::Rgba8 || (format >= cFormat::Dxt1 && format <= cFormat::Dxt5);
}

bool IsKept(int format) {
    return (format > cFormat::None && format <= cFormat::Rgba32f) ||
           (format >= cFormat::Dxt1 && format <= cFormat::Dxt5);
}

cFormat::Enum StorageOf(cFormat::Enum format) {
    return IsBytes(format) ? cFormat::Rgba8 : cFormat::Rgba32f;
}

// Texels

struct ByteTexels {
    const unsigned* Pixels;
    Float4 operator[](size_t i) const { return Float4::FromBytes(Pixels[i]); }
    static Float4 Finish(Float4 v) { return v * Float4::All(1.0f / 255); }
};
struct FloatTexels {
    const cVec4* Pixels;
    Float4 operator[](size_t i) const { return Float4::Load(Pixels[i]); }
    static Float4 Finish(Float4 v) { return v; }
};
struct DepthTexels {
    const float* Pixels;
    Float4 operator[](size_t i) const { return Float4::All(Pixels[i]); }
    static Float4 Finish(Float4 v) { return v; }
};

int Address(int i, int size, cAddressMode::Enum mode) {
    if (unsigned(i) < unsigned(size)) {
        return i;
    }
    if (mode == cAddressMode::Clamp) {
        return i < 0 ? 0 : size - 1;
    }
    const int period = mode == cAddressMode::Mirror ? size * 2 : size;
    i %= period;
    i += i < 0 ? period : 0;
    return i < size ? i : period - 1 - i;
}

struct Slice {
    int Width, Height;
    cAddressMode::Enum U, V;
};

template <class Texels> Float4 Nearest(const Texels& texels, const Slice& s, Float4 at) {
    int x, y;
    at.Split(&x, &y);
    x = Address(x, s.Width, s.U);
    y = Address(y, s.Height, s.V);
    return texels[size_t(y) * size_t(s.Width) + size_t(x)];
}

template <class Texels> Float4 Bilinear(const Texels& texels, const Slice& s, Float4 at) {
    int x, y;
    const Float4 rest = (at - Float4::All(0.5f)).Split(&x, &y);
    const auto x0 = size_t(Address(x, s.Width, s.U)), x1 = size_t(Address(x + 1, s.Width, s.U));
    const size_t row0 = size_t(Address(y, s.Height, s.V)) * size_t(s.Width);
    const size_t row1 = size_t(Address(y + 1, s.Height, s.V)) * size_t(s.Width);
    const Float4 fx = rest.Spread<0>(), fy = rest.Spread<1>();
    const Float4 a = texels[row0 + x0], b = texels[row1 + x0];
    const Float4 low = a + (texels[row0 + x1] - a) * fx, high = b + (texels[row1 + x1] - b) * fx;
    return low + (high - low) * fy;
}

template <class Texels>
void SampleFlat(const Texels& texels, const Slice& s, bool isNearest, const cVec4* coords, int count, cVec4* out) {
    const Float4 sides = Float4::Load(cVec4(float(s.Width), float(s.Height), 0, 0));
    if (isNearest) {
        for (int i = 0; i < count; i++) {
            Texels::Finish(Nearest(texels, s, Float4::Load(coords[i]) * sides)).Store(&out[i]);
        }
    } else {
        for (int i = 0; i < count; i++) {
            Texels::Finish(Bilinear(texels, s, Float4::Load(coords[i]) * sides)).Store(&out[i]);
        }
    }
}

/// Calls f(texels) with those of one slice of level 0.
template <class F> void WithTexels(const cSoftwareTexture& texture, int slice, F&& f) {
    const cImage& pixels = texture.GetPixels();
    const size_t offset = size_t(texture.GetWidth()) * size_t(std::max(texture.GetHeight(), 1)) * size_t(slice);
    if (texture.GetUsage() == cSoftwareTexture::Usage::Depth) {
        f(DepthTexels{reinterpret_cast<const float*>(pixels.GetPixels()) + offset});
    } else if (pixels.GetFormat() == cFormat::Rgba8) {
        f(ByteTexels{reinterpret_cast<const unsigned*>(pixels.GetPixels()) + offset});
    } else {
        f(FloatTexels{reinterpret_cast<const cVec4*>(pixels.GetPixels()) + offset});
    }
}

} // namespace

// Textures

bool cSoftwareTexture::SetFields(cFormat::Enum format, int width, int height, int depth, int levels, Usage usage) {
    Free();
    m_Format = format;
    m_Width = width;
    m_Height = height;
    m_Depth = depth;
    m_MipMapCount = levels;
    m_Usage = usage;
    const auto isSide = [](int side, int least) { return side >= least && side <= MaxSide; };
    if (levels < 1 || !isSide(width, 1) || !isSide(height, usage == Usage::Image ? 0 : 1) || !isSide(depth, 0)) {
        return false;
    }
    const cFormat::Enum storage = usage == Usage::Depth ? cFormat::R32f : StorageOf(format);
    return cImage::CalcImageSize64(storage, width, std::max(height, 1), depth, levels) <= MaxBytes;
}

bool cSoftwareTexture::Init(const cImage& image) {
    if (!SetFields(image.GetFormat(), image.GetWidth(), image.GetHeight(), image.GetDepth(), image.GetMipMapCount(),
                   Usage::Image) ||
        image.IsEmpty() || !IsKept(m_Format)) {
        return false;
    }
    cImage pixels(image);
    pixels.Uncompress();
    if (!pixels.ToFormat(StorageOf(m_Format))) {
        return false;
    }
    m_MipMapCount = pixels.GetMipMapCount();
    m_Pixels.Swap(pixels);
    return true;
}

bool cSoftwareTexture::InitColor(cFormat::Enum format, int width, int height, int depth) {
    if (!SetFields(format, width, height, depth, 1, Usage::Color) || !(format > cFormat::None) ||
        format > cFormat::Rgba32f) {
        return false;
    }
    m_Pixels.Create(StorageOf(format), width, height, depth, 1);
    const cVec4 black(0, 0, 0, cFormat::ChannelCount[format] < 4 ? 1 : 0);
    for (int i = 0; i < GetSliceCount(); i++) {
        const cSoftwareSurface surface = GetSurface(i);
        const size_t count = size_t(width) * size_t(height);
        if (surface.Bytes) {
            std::fill_n(surface.Bytes, count, Float4::Load(black).ToBytes());
        } else {
            std::fill_n(surface.Floats, count, black);
        }
    }
    return true;
}

bool cSoftwareTexture::InitDepth(cFormat::Enum format, int width, int height) {
    if (!SetFields(format, width, height, 1, 1, Usage::Depth)) {
        return false;
    }
    m_Pixels.Create(cFormat::R32f, width, height, 1, 1);
    std::fill_n(GetDepthPixels(), size_t(width) * size_t(height), 1.0f);
    return true;
}

void cSoftwareTexture::Free() {
    m_Pixels.Free();
}

void cSoftwareTexture::Update(const cImage& image, int x, int y) {
    if (IsEmpty() || m_Usage == Usage::Depth || image.IsEmpty() || !IsKept(image.GetFormat())) {
        return;
    }
    cImage source(image);
    source.Uncompress();
    if (!source.ToFormat(m_Pixels.GetFormat())) {
        return;
    }
    const int height = std::max(m_Height, 1), sourceHeight = std::max(source.GetHeight(), 1);
    const int left = std::max(x, 0), right = int(std::min<long long>((long long)x + source.GetWidth(), m_Width));
    const int top = int(std::min<long long>((long long)y + sourceHeight, height));
    const auto bytes = size_t(cFormat::BytesPerPixel[m_Pixels.GetFormat()]);
    for (int row = std::max(y, 0); row < top && left < right; row++) {
        std::memcpy(m_Pixels.GetPixels() + (size_t(row) * size_t(m_Width) + size_t(left)) * bytes,
                    source.GetPixels() + (size_t(row - y) * size_t(source.GetWidth()) + size_t(left - x)) * bytes,
                    size_t(right - left) * bytes);
    }
}

void cSoftwareTexture::Save(cImage* out) const {
    out->Copy(m_Pixels);
    out->RemoveMipMaps();
    if (IsEmpty() || m_Usage == Usage::Depth || !IsKept(m_Format) || out->GetFormat() == m_Format) {
        return;
    }
    // `ToFormat` alone would make a luminance out of a red channel.
    const int channels = cFormat::ChannelCount[m_Format];
    if (channels < 3) {
        out->RemoveChannels(true, channels > 1, false, false);
    }
    if (IsBytes(m_Format) && m_Format > cFormat::Rgba8) {
        out->Compress();
    } else {
        out->ToFormat(m_Format);
    }
}

cSoftwareSurface cSoftwareTexture::GetSurface(int slice) {
    cSoftwareSurface surface;
    if (m_Usage != Usage::Color || IsEmpty() || slice < 0 || slice >= GetSliceCount()) {
        return surface;
    }
    const size_t offset = size_t(m_Width) * size_t(m_Height) * size_t(slice);
    if (m_Pixels.GetFormat() == cFormat::Rgba8) {
        surface.Bytes = reinterpret_cast<unsigned*>(m_Pixels.GetPixels()) + offset;
    } else {
        surface.Floats = reinterpret_cast<cVec4*>(m_Pixels.GetPixels()) + offset;
    }
    surface.Width = m_Width;
    surface.Height = m_Height;
    surface.Channels = (1u << cFormat::ChannelCount[m_Format]) - 1;
    return surface;
}

float* cSoftwareTexture::GetDepthPixels() {
    return m_Usage == Usage::Depth && !IsEmpty() ? reinterpret_cast<float*>(m_Pixels.GetPixels()) : nullptr;
}

// Samplers

int cSoftwareSampler::FaceOf(const cVec4& d, float* u, float* v) {
    const float x = std::fabs(d.x), y = std::fabs(d.y), z = std::fabs(d.z);
    int face;
    float s, t, major;
    if (x >= y && x >= z) {
        face = d.x >= 0 ? 0 : 1;
        s = face == 0 ? -d.z : d.z;
        t = -d.y;
        major = x;
    } else if (y >= z) {
        face = d.y >= 0 ? 2 : 3;
        s = d.x;
        t = face == 2 ? d.z : -d.z;
        major = y;
    } else {
        face = d.z >= 0 ? 4 : 5;
        s = face == 4 ? d.x : -d.x;
        t = -d.y;
        major = z;
    }
    *u = (s / major + 1) * 0.5f;
    *v = (t / major + 1) * 0.5f;
    return face;
}

void cSoftwareSampler::SampleSlice(int slice, const cVec4* coords, int count, cVec4* out) const {
    const Slice flat = {Texture->GetWidth(), std::max(Texture->GetHeight(), 1), Mode.U, Mode.V};
    WithTexels(*Texture, std::clamp(slice, 0, Texture->GetSliceCount() - 1), [&](const auto& texels) {
        SampleFlat(texels, flat, Mode.Filter == cFilter::Nearest, coords, count, out);
    });
}

void cSoftwareSampler::Sample(const cVec4* coords, int count, cVec4* out) const {
    const int depth = Texture->GetDepth();
    if (depth == 1) {
        SampleSlice(0, coords, count, out);
        return;
    }
    for (int i = 0; i < count; i++) {
        cVec4 at = coords[i];
        if (depth == 0) {
            const int face = FaceOf(coords[i], &at.x, &at.y);
            SampleSlice(face, &at, 1, &out[i]);
            continue;
        }
        const bool isNearest = Mode.Filter == cFilter::Nearest;
        int z, unused;
        const Float4 rest = Float4::All(at.z * float(depth) - (isNearest ? 0 : 0.5f)).Split(&z, &unused);
        if (isNearest) {
            SampleSlice(Address(z, depth, Mode.W), &at, 1, &out[i]);
        } else {
            cVec4 below, above;
            SampleSlice(Address(z, depth, Mode.W), &at, 1, &below);
            SampleSlice(Address(z + 1, depth, Mode.W), &at, 1, &above);
            const Float4 a = Float4::Load(below);
            (a + (Float4::Load(above) - a) * rest).Store(&out[i]);
        }
    }
}

} // namespace trellis
