// The swatch's side of the textures, which are the rendering's.
#include "reflection/cImageSwatchFile.h"

#include "image/cFormat.h"
#include "render/cRender.h"

namespace trellis {

void cImageSwatchFile::OnProcess() {
    if (TextureID != -1) {
        if (File.IsEmpty()) {
            Info.Clear();
            LastLoaded.Clear();
        } else if (LastLoaded.IsEmpty()) {
            LastLoaded = File;
        } else if (!cStr::EqualsNoCase(&LastLoaded, &File)) {
            TextureID = -1; // the next frame loads the new file
        }
        return;
    }
    if (File.IsEmpty()) {
        return;
    }
    TextureID = cRender::GetInstance() ? cRender::GetTextureID(File, -1) : -1; // a service draws nothing
    if (TextureID != -1) {
        FillInfo();
        LastLoaded = File;
    } else {
        LastLoaded.Clear();
        File.Clear();
        Info.Clear();
    }
}

void cImageSwatchFile::FillInfo() {
    const int height = cRender::GetTextureHeight(TextureID);
    const int depth = cRender::GetTextureDepth(TextureID); // 0 for a cube, which is as flat as a picture
    Info = cStr::Format("%d", cRender::GetTextureWidth(TextureID));
    if (height > 1 || depth != 1) {
        Info.AppendFormat(" x %d", height);
    }
    if (depth > 1) {
        Info.AppendFormat(" x %d", depth);
    }
    const char* format = cFormat::ToString(cRender::GetTextureFormat(TextureID));
    Info.AppendFormat(", %s, %d", format ? format : "", cRender::GetTextureMipMapCount(TextureID));
}

} // namespace trellis
