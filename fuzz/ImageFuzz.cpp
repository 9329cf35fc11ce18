// Images from arbitrary bytes, by the codec that the build names. What comes out goes through the operations that
// loaders run on it, and what its codec writes reads back.
#include "foundation/cLog.h"
#include "fuzz/Fuzz.h"
#include "image/cCodecBmp.h"
#include "image/cCodecDds.h"
#include "image/cCodecPvr.h"
#include "image/cCodecTga.h"
#include "image/cImage.h"

using namespace trellis;

namespace {

constexpr int s_MaxPixels = 1 << 14; // what is larger costs time and shows nothing more

int SizeOf(const cImage& image) {
    return image.GetMipMappedSize(0, image.GetMipMapCount());
}

/// Every byte is there, and was set.
uint32_t Sum(const cImage& image) {
    uint32_t sum = 0;
    for (int i = 0; i < SizeOf(image); i++) {
        sum = sum * 31 + image.GetPixels()[i];
    }
    return sum;
}

bool IsPowerOfTwo(int v) {
    return v > 0 && (v & (v - 1)) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    cLog::GetLogMutable().Clear();
    const cFile file = FileOf(data, size);
    IMAGE_CODEC codec;
    cImage image;
    if (!codec.Decode(file, &image)) {
        Check(image.IsEmpty() && image.GetWidth() == 0);
        return 0;
    }
    if (image.IsEmpty() || image.GetPixelCount(0, image.GetMipMapCount()) > s_MaxPixels) {
        return 0;
    }
    uint32_t sum = Sum(image);

    cFile written;
    if (codec.Encode(image, &written)) {
        written.SetPos(0);
        cImage back;
        if (codec.Decode(written, &back)) {
            Check(SizeOf(back) == SizeOf(image));
            Check(std::memcmp(back.GetPixels(), image.GetPixels(), size_t(SizeOf(image))) == 0);
        } else {
            Check(image.GetFormat() == cFormat::R8); // gray Targa files are written for others
        }
    }

    cImage plain = image;
    plain.Uncompress();
    sum += Sum(plain);
    cImage flipped = plain;
    flipped.Flip();
    flipped.Flip();
    Check(Sum(flipped) == Sum(plain)); // not so for blocks, whose rows of a low level are more than its pixels
    cImage converted = plain;
    if (converted.ToFormat(cFormat::Rgba8)) {
        sum += Sum(converted);
        if (IsPowerOfTwo(converted.GetWidth()) && IsPowerOfTwo(converted.GetHeight()) &&
            (converted.GetDepth() == 0 || IsPowerOfTwo(converted.GetDepth()))) {
            Check(converted.CreateMipMaps(converted.GetMipMapCountFromDimensions()));
            sum += Sum(converted);
        }
    }
    volatile uint32_t result = sum; // kept, as uninitialised bytes are to reach a use
    (void)result;
    return 0;
}
