// The front end of the rendering: what the rest of the framework asks about textures.
#pragma once

namespace trellis {

/// There is no device to draw with yet: no texture can be had, and the sizes are 0.
class cRender {
public:
    static int GetTextureID(const char* path, int samplerState); ///< -1 when it cannot be had.
    static int GetTextureWidth(int id);
    static int GetTextureHeight(int id);
    static int GetTextureDepth(int id);  ///< 1 for a flat texture, 0 for a cube.
    static int GetTextureFormat(int id); ///< A `cFormat::Enum`.
    static int GetTextureMipMapCount(int id);
};

} // namespace trellis
