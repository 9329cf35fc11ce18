#include "image/cCodecPvr.h"

#include <cstring>

#include "image/CodecBytes.h"
#include "image/Levels.h"

namespace trellis {

namespace {

constexpr int s_HeaderSize = 17;

} // namespace

bool cCodecPvr::Decode(const cFile& file, cImage* out) {
    out->Free();
    const unsigned char* header = TakeBytes(file, s_HeaderSize);
    if (!header || std::memcmp(header, "PVR ", 4) != 0) {
        return false;
    }
    const int width = IntAt(header + 4), height = IntAt(header + 8);
    const int levels = CutLevelCount(IntAt(header + 12), width, height, 1);
    if (width < 1 || height < 1 || levels < 1) {
        return false;
    }
    const cFormat::Enum format = header[16] == 0 ? cFormat::Pvr4Rgb : cFormat::Pvr4Rgba;
    const long long size = cImage::CalcImageSize64(format, width, height, 1, levels);
    const unsigned char* pixels = TakeBytes(file, size);
    if (!pixels) {
        return false;
    }
    // Row 0 is the first of the file: the blocks cannot be turned over, so the tools store them the right way up.
    std::memcpy(out->Create(format, width, height, 1, levels), pixels, size_t(size));
    return true;
}

bool cCodecPvr::Encode(const cImage&, cFile*) {
    return false;
}

} // namespace trellis
