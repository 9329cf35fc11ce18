#include "image/CodecBytes.h"

#include <algorithm>
#include <climits>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "files/cFile.h"

namespace trellis {

namespace {

#if defined(__SSE2__)
/// The first pixel, and then 48 bytes at a time while that stays inside the block. @return pixels done
int CopySwapped3(unsigned char* target, const unsigned char* source, int count) {
    constexpr int Step = 16; // pixels: three vectors, after which the pattern repeats
    if (count < 2 + Step) {
        return 0;
    }
    CopySwappedPlain(target, source, 1, 3); // the vectors look two bytes to either side
    // Byte i of the result is byte i + 2, i or i - 2 of the source, by i modulo 3.
    const __m128i every[3] = {
        _mm_setr_epi8(-1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1),
        _mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0),
        _mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0),
    };
    const auto swapped = [](const unsigned char* p, __m128i red, __m128i green, __m128i blue) {
        const auto load = [](const unsigned char* q) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(q)); };
        return _mm_or_si128(_mm_or_si128(_mm_and_si128(load(p + 2), red), _mm_and_si128(load(p), green)),
                            _mm_and_si128(load(p - 2), blue));
    };
    int i = 1;
    for (; i + Step < count; i += Step) {
        const unsigned char* p = source + size_t(i) * 3;
        auto* out = reinterpret_cast<__m128i*>(target + size_t(i) * 3);
        _mm_storeu_si128(out, swapped(p, every[0], every[1], every[2]));
        _mm_storeu_si128(out + 1, swapped(p + 16, every[2], every[0], every[1]));
        _mm_storeu_si128(out + 2, swapped(p + 32, every[1], every[2], every[0]));
    }
    return i;
}

int CopySwapped4(unsigned char* target, const unsigned char* source, int count) {
    const __m128i low = _mm_set1_epi32(255), keep = _mm_set1_epi32(int(0xFF00FF00));
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source + size_t(i) * 4));
        const __m128i ends =
            _mm_or_si128(_mm_and_si128(_mm_srli_epi32(v, 16), low), _mm_slli_epi32(_mm_and_si128(v, low), 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target + size_t(i) * 4),
                         _mm_or_si128(_mm_and_si128(v, keep), ends));
    }
    return i;
}
#else
int CopySwapped3(unsigned char*, const unsigned char*, int) {
    return 0;
}
int CopySwapped4(unsigned char*, const unsigned char*, int) {
    return 0;
}
#endif

} // namespace

int BytesLeft(const cFile& file) {
    return file.GetSize() - file.GetPos();
}

const unsigned char* TakeBytes(const cFile& file, long long size) {
    if (size > BytesLeft(file)) {
        return nullptr;
    }
    const unsigned char* bytes = file.GetBytes().Data() + file.GetPos();
    file.SetPos(file.GetPos() + int(size));
    return bytes;
}

unsigned char* CreatePixels(cImage* image, cFormat::Enum format, int width, int height) {
    if (width < 1 || height < 1 || cImage::CalcImageSize64(format, width, height, 1, 1) > INT_MAX) {
        return nullptr;
    }
    return image->Create(format, width, height, 1, 1);
}

void CopySwappedPlain(unsigned char* target, const unsigned char* source, int count, int channels) {
    for (int i = 0; i < count; i++, source += channels, target += channels) {
        target[0] = source[2];
        target[1] = source[1];
        target[2] = source[0];
        if (channels == 4) {
            target[3] = source[3];
        }
    }
}

void CopySwapped(unsigned char* target, const unsigned char* source, int count, int channels) {
    const int done = channels == 4 ? CopySwapped4(target, source, count) : CopySwapped3(target, source, count);
    const size_t offset = size_t(done) * size_t(channels);
    CopySwappedPlain(target + offset, source + offset, count - done, channels);
}

void WriteSwapped(cFile* file, const unsigned char* pixels, int count, int channels) {
    unsigned char chunk[4096 * 4];
    const int most = int(sizeof(chunk)) / channels;
    while (count > 0) {
        const int n = std::min(count, most);
        CopySwapped(chunk, pixels, n, channels);
        file->WriteBytes(chunk, n * channels);
        pixels += n * channels;
        count -= n;
    }
}

} // namespace trellis
