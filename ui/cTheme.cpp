#include "ui/cTheme.h"

#include "ui/cTheme_Fragile.h"
#include "ui/cTheme_WindowsStandard.h"

namespace trellis {

void cTheme::Init() {
    if (!WindowsStandard) {
        WindowsStandard = new cTheme_WindowsStandard;
    }
    if (!Fragile) {
        Fragile = new cTheme_Fragile;
    }
}

} // namespace trellis
