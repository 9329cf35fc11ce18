// Runs of pixels from one uncompressed colour format into another, for `cImage::ToFormat`.
#pragma once

#include "image/cFormat.h"

#include <cstddef>

namespace trellis {

/// `Plain` takes each pixel through four floats. `Fast` has short cuts beside it that give the same bytes.
enum class PixelPath { Plain, Fast };

/// @param to    `R8` to `Rgba32f`
/// @param from  `None` to `Rgba32f`; a pixel of `None` is opaque black
/// The two runs do not overlap and are aligned to their channels.
void ConvertPixels(cFormat::Enum to, unsigned char* target, cFormat::Enum from, const unsigned char* source,
                   size_t count, PixelPath path = PixelPath::Fast);

} // namespace trellis
