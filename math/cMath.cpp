#include "math/cMath.h"

#include "foundation/cList.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>

namespace trellis {

namespace {

// Threads only disturb each other's sequences, so loads and stores are enough.
constinit std::atomic<unsigned int> s_RandSeed{0};

/// One step of the generator of "Numerical Recipes" (1664525, 1013904223). @return a float in [1, 2) of its low 23 bits
float NextRandom() {
    const unsigned int seed = s_RandSeed.load(std::memory_order_relaxed) * 1664525u + 1013904223u;
    s_RandSeed.store(seed, std::memory_order_relaxed);
    return std::bit_cast<float>((seed & 0x7FFFFFu) | 0x3F800000u);
}

constexpr int Slices = 16; // bytes that one step of the checksum takes in

/// Table k gives what a byte does to the checksum k steps later (Kounavis and Berry, "Novel Table Lookup-Based
/// Algorithms for High-Performance CRC Generation"); table 0 is the plain one.
cList<uint32_t> BuildChecksumTable() {
    cList<uint32_t> table;
    table.SetCount(256 * Slices);
    for (uint32_t i = 0; i < 256; i++) {
        uint32_t c = i;
        for (int bit = 0; bit < 8; bit++) {
            c = c & 1 ? c >> 1 ^ 0xDEBB20E3u : c >> 1; // not the common polynomial: stored checksums depend on this one
        }
        table[int(i)] = c;
    }
    for (int i = 256; i < 256 * Slices; i++) {
        const uint32_t c = table[i - 256];
        table[i] = c >> 8 ^ table[int(c & 255)];
    }
    return table;
}

uint32_t LoadLittle32(const unsigned char* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

/// What four bytes do to the checksum; `table` is that of the last of them.
inline uint32_t Slice(const uint32_t* table, uint32_t word) {
    return table[3 * 256 + (word & 255)] ^ table[2 * 256 + (word >> 8 & 255)] ^ table[256 + (word >> 16 & 255)] ^
           table[word >> 24];
}

void* SwapItems(void* data, int size, int count) {
    auto* p = static_cast<unsigned char*>(data);
    for (int i = 0; i < count; i++, p += size) {
        std::reverse(p, p + size);
    }
    return p;
}

int ItemSize(char letter) {
    switch (letter) {
    case 'b':
        return 1;
    case 'w':
        return 2;
    case 'd':
        return 4;
    case 'q':
        return 8;
    }
    return 0;
}

} // namespace

float cMath::Normalize360(float degrees) {
    if (degrees >= 0 && degrees < 360) {
        return degrees;
    }
    const float wrapped = degrees - std::floor(degrees / 360) * 360;
    // A tiny negative angle rounds up to the full turn, and a huge one has lost what is left of its last turn.
    return wrapped < 0 || wrapped >= 360 ? 0 : wrapped;
}

float cMath::Normalize180(float degrees) {
    const float wrapped = Normalize360(degrees);
    return wrapped > 180 ? wrapped - 360 : wrapped;
}

float cMath::ArcSin(float v) {
    return v >= 1 ? 90 : v <= -1 ? -90 : std::asin(v) * DegsPerRad;
}

float cMath::ArcTan2(float y, float x) {
    return std::atan2(y, x) * DegsPerRad;
}

void cMath::Randomize(unsigned int seed) {
    s_RandSeed.store(seed, std::memory_order_relaxed);
}

float cMath::Rand01() {
    return NextRandom() - 1;
}

float cMath::RandRange1() {
    const float x = NextRandom();
    return x + x - 3;
}

unsigned int cMath::Checksum(const void* data, unsigned int size) {
    static const cList<uint32_t> s_Table = BuildChecksumTable();
    if (size < 1) {
        return 0;
    }
    const uint32_t* table = s_Table.Data();
    const auto* p = static_cast<const unsigned char*>(data);
    uint32_t c = 0xFFFFFFFFu;
    for (; size >= Slices; size -= Slices, p += Slices) {
        c = Slice(table + 12 * 256, c ^ LoadLittle32(p)) ^ Slice(table + 8 * 256, LoadLittle32(p + 4)) ^
            Slice(table + 4 * 256, LoadLittle32(p + 8)) ^ Slice(table, LoadLittle32(p + 12));
    }
    for (; size > 0; size--) {
        c = c >> 8 ^ table[(c ^ *p++) & 255];
    }
    return ~c;
}

unsigned short cMath::Float2Half(float f) {
    const uint32_t bits = std::bit_cast<uint32_t>(f);
    const uint32_t m = bits & 0x7FFFFFu;
    const int e = int(bits >> 23 & 255);
    const uint32_t sign = bits >> 16 & 0x8000u;
    int k = e - 112;
    if (k < 1) {
        const int shift = (113 - e) & 31; // modulo 32, on purpose: an exponent of 81 shifts by 0
        return (unsigned short)((((m | 0x800000u) >> shift) + 4096) >> 13 | sign);
    }
    if (k == 143) {
        const uint32_t nan = m == 0 ? 0 : m >> 13 | uint32_t(m <= 8191); // a NaN stays one though its high bits are 0
        return (unsigned short)(sign | 0x7C00u | nan);
    }
    uint32_t r = m + 4096;
    if (m > 0x7FEFFFu) {
        k++;
        r = 0;
    }
    if (k > 30) {
        return (unsigned short)(sign | 0x7C00u);
    }
    return (unsigned short)(uint32_t(k) << 10 | r >> 13 | sign);
}

float cMath::Half2Float(unsigned short h) {
    uint32_t m = h & 0x3FFu;
    int e = h >> 10 & 31;
    const uint32_t sign = uint32_t(h & 0x8000) << 16;
    if (e == 0 && m == 0) {
        return std::bit_cast<float>(sign);
    }
    if (e == 31) {
        return std::bit_cast<float>(m << 13 | 0x7F800000u | sign);
    }
    if (e == 0) {
        const int shift = std::countl_zero(m) - 21; // brings the leading bit to bit 10
        m = m << shift & 0x3FFu;
        e = 1 - shift;
    }
    return std::bit_cast<float>(m << 13 | sign | uint32_t(e + 112) << 23);
}

void* cMath::EndianSwap2(void* data, int count) {
    return SwapItems(data, 2, count);
}

void* cMath::EndianSwap4(void* data, int count) {
    return SwapItems(data, 4, count);
}

void* cMath::EndianSwap8(void* data, int count) {
    return SwapItems(data, 8, count);
}

void* cMath::EndianSwap(void* data, const char* pattern, int count) {
    if (!pattern) {
        return data;
    }
    for (int record = 0; record < count; record++) {
        int times = -1; // no number yet
        for (const char* p = pattern; *p; p++) {
            if (*p >= '0' && *p <= '9') {
                const int64_t wide = int64_t(std::max(times, 0)) * 10 + (*p - '0');
                times = int(std::min<int64_t>(wide, IntMaxValue));
                continue;
            }
            if (const int size = ItemSize(*p)) {
                data = SwapItems(data, size, times < 0 ? 1 : times);
            }
            times = -1;
        }
    }
    return data;
}

float cMath::Periodic(float value, float min, float max, int* cycles) {
    const float period = max - min;
    if (period == 0 && cycles) {
        *cycles = 0;
        return min;
    }
    const float result = value - std::floor((value - min) / period) * period;
    if (cycles) {
        const int turns = TruncateToInt((result - value) / period + (result > value ? 0.5f : -0.5f));
        *cycles = int(0u - unsigned(turns)); // wraps, as the target's negation does
    }
    return result;
}

} // namespace trellis
