// A texture chosen by its file, with a picture of it and a line about it.
#pragma once

#include "reflection/cClassMembers.h"

namespace trellis {

class cImageSwatchFile : public cClass {
    TRELLIS_CLASS(cImageSwatchFile)

public:
    using cClass::ToString;

    void CustomCtor() override { TextureID = -1; }

    /// While edited: fetches the texture of a new path. A path without a texture is emptied; a changed one has its
    /// texture in the frame after the next.
    void OnProcess() override;
    void FillInfo(); ///< Size, format and mip maps of the texture, as in "256 x 128, Dxt5, 9".

    cStr ToString(bool* full) override; ///< " - " and the path; empty without one. `*full` becomes true.

    int TextureID; ///< -1: none, or not looked for yet.
    cStr File;
    cStr Info;
    cStr LastLoaded; ///< The path behind `TextureID`; empty: none.
};

} // namespace trellis
