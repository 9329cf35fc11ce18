#include "image/cFormat.h"

#include "foundation/cStr.h"

#include <iterator>

namespace trellis {

namespace {

// clang-format off
constexpr const char* s_Texts[] = { // indexed by format
    "None",
    "R8", "Rg8", "Rgb8", "Rgba8",
    "R16", "Rg16", "Rgb16", "Rgba16",
    "R16f", "Rg16f", "Rgb16f", "Rgba16f",
    "R32f", "Rg32f", "Rgb32f", "Rgba32f",
    "Depth16", "Depth24", "Depth24Stencil8",
    "Dxt1", "Dxt3", "Dxt5",
};
// clang-format on
static_assert(std::size(s_Texts) == cFormat::Dxt5 + 1, "a format without its text; the two behind it have none");

} // namespace

// clang-format off
constexpr int cFormat::ChannelCount[] = {
    0,
    1, 2, 3, 4,
    1, 2, 3, 4,
    1, 2, 3, 4,
    1, 2, 3, 4,
    1, 1, 1,
    3, 4, 4,
    3, 4,
};
constexpr int cFormat::BytesPerPixel[] = {
    0,
    1, 2, 3, 4,
    2, 4, 6, 8,
    2, 4, 6, 8,
    4, 8, 12, 16,
    -1, -1, -1,
    -1, -1, -1,
    -1, -1,
};
// clang-format on

const char* cFormat::ToString(int format) {
    return format >= 0 && format < int(std::size(s_Texts)) ? s_Texts[format] : nullptr;
}

cFormat::Enum cFormat::ToFormat(const char* text) {
    for (int i = 0; text && i < int(std::size(s_Texts)); i++) {
        if (cStr::CompareNoCase(s_Texts[i], text) == 0) {
            return Enum(i);
        }
    }
    return None;
}

} // namespace trellis
