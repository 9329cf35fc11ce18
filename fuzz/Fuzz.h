// What the fuzz targets share.
#pragma once

#include "files/cFile.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace trellis {

inline void Check(bool ok) {
    if (!ok) {
        std::abort();
    }
}

/// A heap block without slack, so that a read past its end shows.
inline cFile FileOf(const uint8_t* data, size_t size) {
    cList<unsigned char> bytes;
    bytes.Resize(int(size), false);
    bytes.AddRange(data, int(size));
    cFile file;
    file.Set(&bytes, "fuzz");
    return file;
}

inline bool StartsWith(const cFile& file, const cFile& other) {
    const int size = other.GetSize();
    return file.GetSize() >= size && std::memcmp(file.GetBytes().Data(), other.GetBytes().Data(), size_t(size)) == 0;
}

inline bool AreSame(const cFile& a, const cFile& b) {
    return a.GetSize() == b.GetSize() && StartsWith(a, b);
}

} // namespace trellis
