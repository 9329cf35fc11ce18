#include "math/cMath.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace trellis {
namespace {

static_assert(cMath::DegsPerRad == 0x1.ca5dcp+5f); // the nearest float to 180 / pi is 0x1.ca5dc2p+5

TEST(Math, ChecksumHasItsOwnPolynomial) {
    EXPECT_EQ(cMath::Checksum("123456789", 9), 0x960DE1BCu);
    EXPECT_EQ(cMath::Checksum("", 0), 0u);
    EXPECT_EQ(cMath::Checksum(nullptr, 0), 0u);

    // Bit by bit, at every length and alignment that the sixteen-byte steps can meet.
    std::mt19937 engine(7);
    std::vector<unsigned char> bytes(96);
    for (auto& b : bytes) {
        b = (unsigned char)engine();
    }
    for (unsigned int start = 0; start < 4; start++) {
        for (unsigned int size = 1; size <= 80; size++) {
            uint32_t c = 0xFFFFFFFFu;
            for (unsigned int i = start; i < start + size; i++) {
                c ^= bytes[i];
                for (int bit = 0; bit < 8; bit++) {
                    c = c & 1 ? c >> 1 ^ 0xDEBB20E3u : c >> 1;
                }
            }
            ASSERT_EQ(cMath::Checksum(&bytes[start], size), ~c) << start << " " << size;
        }
    }
}

TEST(Math, EveryHalfComesBack) {
    for (int h = 0; h < 65536; h++) {
        const int e = h >> 10 & 31, m = h & 1023;
        const float f = cMath::Half2Float((unsigned short)h);
        if (e < 31) { // the definition of binary16
            const double size = e == 0 ? std::ldexp(m, -24) : std::ldexp(1024 + m, e - 25);
            ASSERT_EQ(double(f), h & 0x8000 ? -size : size) << h;
            ASSERT_EQ(std::signbit(f), (h & 0x8000) != 0) << h;
            ASSERT_EQ(cMath::Float2Half(f), h) << h;
        } else if (m == 0) {
            ASSERT_EQ(f, h & 0x8000 ? -INFINITY : INFINITY);
        } else { // no bits of a NaN are compared: some calls move it through a register that makes it quiet
            ASSERT_TRUE(std::isnan(f)) << h;
            ASSERT_GT(cMath::Float2Half(f) & 0x7FFF, 0x7C00) << h;
        }
    }
}

TEST(Math, FloatToHalf) {
    constexpr struct {
        const char* Name;
        uint32_t Float;
        unsigned short Half;
    } cases[] = {
        {"below 65520 rounds down", 0x477FEFFF, 0x7BFF},
        {"65520 is infinite", 0x477FF000, 0x7C00},
        {"1 + 2^-11 rounds half up", 0x3F801000, 0x3C01},
        {"just below it", 0x3F800FFF, 0x3C00},
        {"mantissa carries into the exponent", 0x3FFFF000, 0x4000},
        {"NaN whose high bits are 0", 0x7F800001, 0x7C01},
        {"NaN with the last such mantissa", 0x7F801FFF, 0x7C01},
        {"NaN with bit 13", 0x7F802000, 0x7C01},
        {"2^-24, by a shift of 10", 0x33800000, 0x0001},
        {"exponent 81 shifts by 0 and not by 32", 0x28800000, 0x0400},
        {"exponent 82 shifts by 31", 0x29000000, 0x0000},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(cMath::Float2Half(std::bit_cast<float>(c.Float)), c.Half) << c.Name;
    }
}

TEST(Math, RandomNumbersFollowTheirSeed) {
    cMath::Randomize(0);
    const uint32_t seed = 1013904223;
    EXPECT_EQ(cMath::Rand01(), float(seed & 0x7FFFFF) / 8388608.0f);
    const uint32_t next = seed * 1664525u + 1013904223u;
    EXPECT_EQ(cMath::RandRange1(), float(next & 0x7FFFFF) / 4194304.0f - 1);
    for (int i = 0; i < 10000; i++) {
        const float a = cMath::Rand01(), b = cMath::RandRange1();
        ASSERT_TRUE(a >= 0 && a < 1 && b >= -1 && b < 1);
    }
}

TEST(Math, EndianSwaps) {
    constexpr struct {
        const char* Name;
        const char* Pattern;
        int Count;
        const char* After; // of "0123456789ABCDEF"
        int Moved;
    } cases[] = {
        {"words and a double word", "2wd", 1, "1032765489ABCDEF", 8},
        {"two records", "bw", 2, "0213546789ABCDEF", 6},
        {"quad word", "q", 1, "7654321089ABCDEF", 8},
        {"other letters", "wxw", 1, "1032456789ABCDEF", 4},
        {"letters that move on only", "10bw", 1, "0123456789BACDEF", 12},
        {"digits at the end", "w3", 2, "1032456789ABCDEF", 4},
        {"none of them", "0w2b", 1, "0123456789ABCDEF", 2},
        {"null", nullptr, 3, "0123456789ABCDEF", 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Name);
        char bytes[] = "0123456789ABCDEF";
        EXPECT_EQ(cMath::EndianSwap(bytes, c.Pattern, c.Count), bytes + c.Moved);
        EXPECT_STREQ(bytes, c.After);
    }
    char bytes[] = "0123456789ABCDEF";
    EXPECT_EQ(cMath::EndianSwap2(bytes, -1), bytes);
    EXPECT_EQ(cMath::EndianSwap2(bytes, 1), bytes + 2);
    EXPECT_EQ(cMath::EndianSwap4(bytes + 2, 1), bytes + 6);
    EXPECT_EQ(cMath::EndianSwap8(bytes + 6, 1), bytes + 14);
    EXPECT_STREQ(bytes, "105432DCBA9876EF");
}

TEST(Math, PeriodicWraps) {
    constexpr struct {
        float Value, Min, Max, Result;
        int Cycles;
    } cases[] = {{370, 0, 360, 10, 1}, {-10, 0, 360, 350, -1}, {0, 0, 360, 0, 0},
                 {360, 0, 360, 0, 1},  {-720, 0, 360, 0, -2},  {5, 5, 5, 5, 0},
                 {8, 5, 5, 5, 0},      {-1, -2, 2, -1, 0},     {9, -2, 2, 1, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.Value);
        int cycles = 99;
        EXPECT_EQ(cMath::Periodic(c.Value, c.Min, c.Max, &cycles), c.Result);
        EXPECT_EQ(cycles, c.Cycles);
    }
    int cycles = 0;
    cMath::Periodic(1e20f, 0, 1, &cycles);
    EXPECT_EQ(cycles, INT_MIN) << "more than an int can count";
    EXPECT_TRUE(std::isnan(cMath::Periodic(5, 5, 5))) << "the division runs its course";
}

TEST(Math, WhatAnIntCannotHoldIsItsMinimum) {
    EXPECT_EQ(cMath::TruncateToInt(-1.9f), -1);
    EXPECT_EQ(cMath::TruncateToInt(2147483520.0f), 2147483520);
    for (const float f : {2147483648.0f, -3e9f, NAN, INFINITY}) {
        EXPECT_EQ(cMath::TruncateToInt(f), INT_MIN);
    }
}

} // namespace
} // namespace trellis
