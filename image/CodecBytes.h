// Bytes of image files: reading in place, the sizes that a file may claim, and the exchange of blue and red. Private to
// the image codecs.
#pragma once

#include "image/cImage.h"

#include <cstdint>
#include <cstring>

namespace trellis {

class cFile;

inline int WordAt(const unsigned char* p) {
    return p[0] | p[1] << 8;
}
inline uint32_t UintAt(const unsigned char* p) {
    return uint32_t(WordAt(p)) | uint32_t(WordAt(p + 2)) << 16;
}
inline int IntAt(const unsigned char* p) {
    return int(UintAt(p));
}

int BytesLeft(const cFile& file);

/// The next bytes of a file where they lie, the cursor going behind them. They are not copied: a pixel then costs one
/// read and one write, and a load no more memory than its file and its image.
///
/// @param size  at least 1
/// @return null, the cursor staying, when fewer are left; otherwise valid until the file changes
const unsigned char* TakeBytes(const cFile& file, long long size);

/// Makes a 2D image of one level.
///
/// @return its block; null, the image staying, for a side below 1 and for an image of 2 GiB and more
unsigned char* CreatePixels(cImage* image, cFormat::Enum format, int width, int height);

/// Copies pixels of 3 or 4 bytes with their bytes 0 and 2 exchanged. The blocks do not overlap.
void CopySwapped(unsigned char* target, const unsigned char* source, int count, int channels);

/// The same without vector instructions.
void CopySwappedPlain(unsigned char* target, const unsigned char* source, int count, int channels);

/// Appends such pixels to a file, bytes 0 and 2 exchanged.
void WriteSwapped(cFile* file, const unsigned char* pixels, int count, int channels);

} // namespace trellis
