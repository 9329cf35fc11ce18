// The levels and slices of an image, in the order of its block. Private to this room.
#pragma once

#include "image/cImage.h"

#include <algorithm>

namespace trellis {

/// A side at a level, at least 1; any level will do.
inline int LevelSide(int side, int level) {
    return std::max(level > 30 ? 0 : side >> std::max(level, 0), 1);
}

/// Levels that an image of these sides can hold: `count`, or how often the largest side can be halved.
inline int CutLevelCount(int count, int width, int height, int depth) {
    int levels = 0;
    for (int side = std::max({width, height, depth}); side > 0 && levels < count; side >>= 1) {
        levels++;
    }
    return levels;
}

/// Slices, or faces, of a level.
inline int LevelSlices(const cImage& image, int level) {
    return image.IsCube() ? cImage::CubeFaces : LevelSide(image.GetDepth(), level);
}

/// Levels that the block really holds: an image may claim more than its sides can be halved, and those have no pixels.
inline int StoredLevels(const cImage& image) {
    return CutLevelCount(image.GetMipMapCount(), std::max(image.GetWidth(), 1), image.GetHeight(), image.GetDepth());
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
