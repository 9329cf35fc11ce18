// What the sources of the built-in shaders share.
#pragma once

#include "host/cSoftwareShader.h"

#include <cstring>

namespace trellis {

struct cSoftwareShaders {
    /// Hands over the shaders of the interface.
    static void RegisterInterface(void (*add)(const char* name, cSoftwareShader::Factory factory));

    /// A packed colour of a vertex; at any address.
    static cVec4 ReadColor(const unsigned char* bytes) {
        constexpr float scale = 1.0f / 255;
        return cVec4(float(bytes[0]), float(bytes[1]), float(bytes[2]), float(bytes[3])) * scale;
    }
};

} // namespace trellis
