#include "reflection/cColorEdit.h"

namespace trellis {

void cColorEdit::CustomCtor() {
    Color = cColor::White;
    Modulator = {1, 0, 2};
}

void cColorEdit::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cColor>(Color, "Color");
    // The same memory by channel. Saved, these four would be loaded behind the colour and undo it.
    NoSaveMode = 1;
    members.AddRanged<_cEditSliderF>(Color.r, "Red", 0.0f, 1.0f);
    NoSaveMode = 1;
    members.AddRanged<_cEditSliderF>(Color.g, "Green", 0.0f, 1.0f);
    NoSaveMode = 1;
    members.AddRanged<_cEditSliderF>(Color.b, "Blue", 0.0f, 1.0f);
    NoSaveMode = 1;
    members.AddRanged<_cEditSliderF>(Color.a, "Alpha", 0.0f, 1.0f);
    members.Add<_cSliderRangedF>(Modulator, "Modulator");
}

} // namespace trellis
