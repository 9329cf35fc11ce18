// Searches in short texts, for the parser and the writer of documents. Private to this room.
#pragma once

#include "foundation/cStr.h"

#include <cstring>

#if defined(__SSE2__)
#include <algorithm>
#include <bit>
#include <emmintrin.h>
#endif

namespace trellis::text_search {

constexpr int Block = 16; ///< Bytes looked at together.

namespace plain {

/// First `c` in [from, end), or null.
inline const char* Find(const char* from, const char* end, char c) {
    return static_cast<const char*>(std::memchr(from, c, size_t(end - from)));
}

/// Whether `count` bytes at `a` and `b` are equal; `a` stands in front of `b` in a text that goes to `end`.
inline bool SameBytes(const char* a, const char* b, int count, const char* end) {
    return end - b >= count && std::memcmp(a, b, size_t(count)) == 0;
}

/// First `a` or `b` in the text from `index` on, or its length.
inline int FindEither(const cStr& text, int index, char a, char b) {
    const char* s = text.Text();
    while (index < text.Length() && s[index] != a && s[index] != b) {
        index++;
    }
    return index;
}

} // namespace plain

#if defined(__SSE2__)

// Tags and bodies are short, so most searches end within one block, and a call to the library costs more than that.

inline __m128i Load(const char* s) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(s));
}

/// Bit i is set where byte i of the two is equal.
inline unsigned Equal(__m128i a, __m128i b) {
    return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
}

inline const char* Find(const char* from, const char* end, char c) {
    if (end - from >= Block) {
        if (const unsigned hits = Equal(Load(from), _mm_set1_epi8(c))) {
            return from + std::countr_zero(hits);
        }
        from += Block;
    }
    return plain::Find(from, end, c);
}

inline bool SameBytes(const char* a, const char* b, int count, const char* end) {
    if (count <= Block && end - b >= Block) {
        return (~Equal(Load(a), Load(b)) & ((1u << count) - 1)) == 0;
    }
    return plain::SameBytes(a, b, count, end);
}

/// Looks at whole blocks, as far as the capacity goes.
inline int FindEither(const cStr& text, int index, char a, char b) {
    const int length = text.Length();
    for (; index < length && text.Capacity() - index >= Block; index += Block) {
        const __m128i block = Load(text.Text() + index);
        if (const unsigned hits = Equal(block, _mm_set1_epi8(a)) | Equal(block, _mm_set1_epi8(b))) {
            return std::min(index + std::countr_zero(hits), length);
        }
    }
    return std::min(plain::FindEither(text, index, a, b), length);
}

#else
using namespace plain;
#endif

} // namespace trellis::text_search
