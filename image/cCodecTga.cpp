#include "image/cCodecTga.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "files/cFile.h"
#include "image/CodecBytes.h"

namespace trellis {

namespace {

constexpr int s_HeaderSize = 18;
constexpr int s_TypeMapped = 1, s_TypeColor = 2, s_TypeRunLength = 8; // the last is a flag
constexpr int s_TopDown = 32;                                         // of the descriptor
constexpr int s_MaxPacket = 128;                                      // pixels
constexpr int s_GrayColors = 256;

// Pixels of a file, by their bytes there and in the image. Each copies `count` of them, and answers false for one that
// there is no colour for.

struct Gray8 {
    static constexpr int Bytes = 1, Channels = 1;
    static constexpr cFormat::Enum Format = cFormat::R8;
    bool Copy(unsigned char* target, const unsigned char* source, int count) const {
        std::memcpy(target, source, size_t(count));
        return true;
    }
};

struct Mapped8 {
    static constexpr int Bytes = 1, Channels = 3;
    static constexpr cFormat::Enum Format = cFormat::Rgb8;
    const unsigned char* Map; // entries of 3 bytes, whatever size the header gives them
    int Colors;
    bool Copy(unsigned char* target, const unsigned char* source, int count) const {
        for (int i = 0; i < count; i++, target += 3) {
            if (source[i] >= Colors) {
                return false;
            }
            CopySwappedPlain(target, Map + source[i] * 3, 1, 3);
        }
        return true;
    }
};

struct Bgr5 {
    static constexpr int Bytes = 2, Channels = 4;
    static constexpr cFormat::Enum Format = cFormat::Rgba8;
    bool Copy(unsigned char* target, const unsigned char* source, int count) const {
        for (int i = 0; i < count; i++, source += 2, target += 4) {
            const int v = WordAt(source); // five bits of red, green and blue below one of alpha
            target[0] = (unsigned char)(v >> 7 & 0xF8);
            target[1] = (unsigned char)(v >> 2 & 0xF8);
            target[2] = (unsigned char)(v << 3);
            target[3] = v & 0x8000 ? 255 : 0;
        }
        return true;
    }
};

template <int N, cFormat::Enum F> struct Bgr8 {
    static constexpr int Bytes = N, Channels = N;
    static constexpr cFormat::Enum Format = F;
    bool Copy(unsigned char* target, const unsigned char* source, int count) const {
        CopySwapped(target, source, count, N);
        return true;
    }
};

/// Repeats one pixel. Writes past the run, never past `end`: what stands behind a run is not there yet.
template <int Channels>
void Fill(unsigned char* target, const unsigned char* pixel, int count, const unsigned char* end) {
    if constexpr (Channels == 1) {
        std::memset(target, pixel[0], size_t(count));
    } else {
        // Words of 8 bytes in which pixels of 3 and of 4 bytes start over.
        constexpr int Period = 24;
        uint64_t words[3];
        if constexpr (Channels == 3) {
            const uint64_t v = uint64_t(pixel[0]) | uint64_t(pixel[1]) << 8 | uint64_t(pixel[2]) << 16;
            words[0] = v | v << 24 | v << 48;
            words[1] = v >> 16 | v << 8 | v << 32 | v << 56;
            words[2] = v >> 8 | v << 16 | v << 40;
        } else {
            words[0] = words[1] = words[2] = UintAt(pixel) * uint64_t(0x100000001);
        }
        int bytes = count * Channels;
        for (; bytes > 0 && end - target >= Period; bytes -= Period, target += Period) {
            std::memcpy(target, words, Period);
        }
        if (bytes > 0) {
            std::memcpy(target, words, size_t(bytes));
        }
    }
}

/// Undoes the run-length packing. A last packet that holds more than the image takes is cut.
///
/// @param count  pixels of the image, not 0
/// @return false when the packets end early
template <class Pixel>
bool Unpack(const Pixel& kind, unsigned char* target, int count, const unsigned char* source,
            const unsigned char* sourceEnd) {
    const unsigned char* end = target + size_t(count) * Pixel::Channels;
    while (target < end) {
        if (sourceEnd - source < 1 + Pixel::Bytes) {
            return false;
        }
        const int packet = *source++;
        const int n = int(std::min<ptrdiff_t>((packet & 127) + 1, (end - target) / Pixel::Channels));
        if (packet & 128) {
            unsigned char pixel[4];
            if (!kind.Copy(pixel, source, 1)) {
                return false;
            }
            Fill<Pixel::Channels>(target, pixel, n, end);
            source += Pixel::Bytes;
        } else {
            if (sourceEnd - source < n * Pixel::Bytes || !kind.Copy(target, source, n)) {
                return false;
            }
            source += n * Pixel::Bytes;
        }
        target += n * Pixel::Channels;
    }
    return true;
}

/// @param file  at the pixels
template <class Pixel> bool Load(const Pixel& kind, const cFile& file, const unsigned char* header, cImage* out) {
    const int width = WordAt(header + 12), height = WordAt(header + 14);
    const long long count = (long long)width * height;
    const int left = BytesLeft(file);
    const bool runLength = header[2] & s_TypeRunLength, topDown = header[17] & s_TopDown;
    // No packet makes more of its bytes than a run, so that a short file cannot ask for much memory.
    const long long most = runLength ? left / (1 + Pixel::Bytes) * (long long)s_MaxPacket : left / Pixel::Bytes;
    unsigned char* target = count <= most ? CreatePixels(out, Pixel::Format, width, height) : nullptr;
    if (!target) {
        return false;
    }
    const unsigned char* source = TakeBytes(file, left);
    bool ok = true;
    if (runLength) {
        ok = Unpack(kind, target, int(count), source, source + left);
        if (ok && topDown) {
            out->Flip(); // packets may reach over rows, so that these are not to be found beforehand
        }
    } else {
        for (int y = 0; y < height && ok; y++) {
            const size_t row = size_t(topDown ? height - 1 - y : y);
            ok = kind.Copy(target + row * size_t(width) * Pixel::Channels,
                           source + size_t(y) * size_t(width) * Pixel::Bytes, width);
        }
    }
    if (!ok) {
        out->Free();
    }
    return ok;
}

} // namespace

bool cCodecTga::Decode(const cFile& file, cImage* out) {
    out->Free();
    // An ID field or a colour map's mark: such files have been refused always, our own of 8 bits among them, and what
    // they would look like here nobody has decided.
    unsigned char start[2];
    const int position = file.GetPos();
    if (BytesLeft(file) > 2 && file.ReadBytes(start, 2) == 2) {
        file.SetPos(position);
        if (WordAt(start) != 0) {
            return false;
        }
    }
    const unsigned char* header = TakeBytes(file, s_HeaderSize);
    if (!header) {
        return false;
    }
    // With the mark refused, a colour map is there when the header gives it a size.
    const int mapBytes = WordAt(header + 5) * header[7] / 8;
    const unsigned char* map = mapBytes > 0 ? TakeBytes(file, mapBytes) : nullptr;
    if (mapBytes > 0 && !map) {
        return false;
    }
    switch (header[16]) {
    case 8:
        return map ? Load(Mapped8{map, mapBytes / 3}, file, header, out) : Load(Gray8(), file, header, out);
    case 16:
        return Load(Bgr5(), file, header, out);
    case 24:
        return Load(Bgr8<3, cFormat::Rgb8>(), file, header, out);
    case 32:
        return Load(Bgr8<4, cFormat::Rgba8>(), file, header, out);
    default:
        return true; // without pixels: callers have always taken these for empty images, not for failures
    }
}

bool cCodecTga::Encode(const cImage& image, cFile* out) {
    const cFormat::Enum format = image.GetFormat();
    const int width = image.GetWidth(), height = image.GetHeight();
    if ((format != cFormat::R8 && format != cFormat::Rgb8 && format != cFormat::Rgba8) || !image.GetPixels() ||
        width < 0 || height < 0 || width > USHRT_MAX || height > USHRT_MAX) {
        return false;
    }
    const bool gray = format == cFormat::R8;
    const int channels = cFormat::ChannelCount[format];
    unsigned char header[s_HeaderSize] = {};
    header[1] = gray; // a colour map, for readers that know no gray files; `Decode` refuses it
    header[2] = gray ? s_TypeMapped : s_TypeColor;
    header[6] = gray ? s_GrayColors >> 8 : 0; // high byte of the map's length
    header[7] = gray ? 24 : 0;
    header[12] = (unsigned char)width;
    header[13] = (unsigned char)(width >> 8);
    header[14] = (unsigned char)height;
    header[15] = (unsigned char)(height >> 8);
    header[16] = (unsigned char)(channels * 8);
    out->WriteBytes(header, s_HeaderSize);
    if (gray) {
        for (int i = 0; i < s_GrayColors; i++) {
            const unsigned char entry[] = {(unsigned char)i, (unsigned char)i, (unsigned char)i};
            out->WriteBytes(entry, 3);
        }
        out->WriteBytes(image.GetPixels(), width * height);
    } else {
        WriteSwapped(out, image.GetPixels(), width * height, channels);
    }
    return true;
}

} // namespace trellis
