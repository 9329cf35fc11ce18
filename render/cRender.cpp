#include "render/cRender.h"

namespace trellis {

int cRender::GetTextureID(const char*, int) {
    return -1;
}

int cRender::GetTextureWidth(int) {
    return 0;
}

int cRender::GetTextureHeight(int) {
    return 0;
}

int cRender::GetTextureDepth(int) {
    return 0;
}

int cRender::GetTextureFormat(int) {
    return 0;
}

int cRender::GetTextureMipMapCount(int) {
    return 0;
}

} // namespace trellis
