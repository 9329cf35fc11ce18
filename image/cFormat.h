// Pixel formats, by the numbers that files of images and devices know them by.
#pragma once

namespace trellis {

class cFormat {
public:
    enum Enum : int {
        None,
        R8,
        Rg8,
        Rgb8,
        Rgba8, // bytes
        R16,
        Rg16,
        Rgb16,
        Rgba16, // 16-bit integers
        R16f,
        Rg16f,
        Rgb16f,
        Rgba16f, // half floats
        R32f,
        Rg32f,
        Rgb32f,
        Rgba32f, // floats
        Depth16,
        Depth24,
        Depth24Stencil8,
        Dxt1,
        Dxt3,
        Dxt5, // blocks of 4 by 4 pixels
        Pvr4Rgb,
        Pvr4Rgba, // the same; they can be kept, and not converted
        Count
    };

    static const char* ToString(int format); ///< Null for `Pvr4Rgb`, `Pvr4Rgba` and all that is no format.
    static Enum ToFormat(const char* text);  ///< Case does not count; `None` for an unknown text.

    static const int ChannelCount[Count];
    static const int BytesPerPixel[Count]; ///< -1 where a pixel has no size of its own to a reader: depths and blocks.
};

} // namespace trellis
