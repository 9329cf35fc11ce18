// What the framework's own binary files share: names, counts that a file can hold, values quantised to 16 bits.
#pragma once

#include "files/cFile.h"
#include "math/cQuat.h"

namespace trellis {

/// Readers answer false for what is cut short or cannot be.
struct cNativeFile {
    static long long BytesLeft(const cFile& file) { return file.GetSize() - file.GetPos(); }
    static bool ReadByte(const cFile& file, unsigned char* v) { return file.ReadBytes(v, 1) == 1; }

    /// @param size  bytes that each takes at least, so that a small file cannot ask for much memory
    static bool IsCount(const cFile& file, long long count, int size) {
        return count >= 0 && count * size <= BytesLeft(file);
    }

    // A length of 16 bits and the bytes. A zero byte is refused: behind it nobody would see the name.
    static bool ReadName(const cFile& file, cStr* out);
    static bool WriteName(cFile* out, const cStr& name);

    // From -1 to 1: value x 32767, truncated; beyond, the nearest end.
    static bool ReadUnits(const cFile& file, float* out, int count);
    static void WriteUnits(cFile* out, const float* v, int count);

    // From -256 to 256: value x 32767 / 256, truncated. Nothing clamps: what is beyond wraps, as the format has it.
    static bool ReadRanges(const cFile& file, float* out, int count);
    static void WriteRanges(cFile* out, const float* v, int count);

    static float RestoreW(const cQuat& q); ///< Of a unit quaternion whose w was not below 0.
    /// The same rotation, with such a w.
    static cQuat WithoutSign(const cQuat& q) { return q.w < 0.0f ? -q : q; }
};

} // namespace trellis
