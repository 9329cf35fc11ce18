// Walks over the levels and slices of an image, in the order of its block. Private to the sources of cImage.
#pragma once

#include "image/cImage.h"

#include <algorithm>

namespace trellis {

inline int LevelSide(int side, int level) {
    return std::max(side >> level, 1);
}

/// Slices, or faces, of a level.
inline int LevelSlices(const cImage& image, int level) {
    return image.IsCube() ? cImage::CubeFaces : LevelSide(image.GetDepth(), level);
}

/// Levels that the block really holds: an image may claim more than its sides can be halved, and those have no pixels.
inline int StoredLevels(const cImage& image) {
    const int side = std::max({image.GetWidth(), image.GetHeight(), image.GetDepth()});
    int levels = 0;
    while (levels < image.GetMipMapCount() && (levels == 0 || side >> levels > 0)) {
        levels++;
    }
    return levels;
}

/// Calls f(level, width, height) for every slice of every level.
template <class F> void ForEachSlice(const cImage& image, F&& f) {
    for (int level = 0, levels = StoredLevels(image); level < levels; level++) {
        for (int slice = LevelSlices(image, level); slice > 0; slice--) {
            f(level, LevelSide(image.GetWidth(), level), LevelSide(image.GetHeight(), level));
        }
    }
}

} // namespace trellis
