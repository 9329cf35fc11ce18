#include "reflection/cImageSwatchFile.h"

namespace trellis {

void cImageSwatchFile::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cImageID>(TextureID, "Image");
    members.Add<_cLabel>(Info, "Info");
    members.Add<_cImageFile>(File, "File");
}

cStr cImageSwatchFile::ToString(bool* full) {
    *full = true;
    return File.IsEmpty() ? cStr() : " - " + File;
}

} // namespace trellis
