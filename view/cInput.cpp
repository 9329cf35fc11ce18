#include "view/cInput.h"

#include "foundation/cMain.h"

namespace trellis {

namespace {

struct Tablet {
    int Pressure;
    bool PenPressed;
    bool EraserUsed;
};
constexpr Tablet s_Tablet = {0, false, false}; // no tablet is attached

} // namespace

void cInput::StopVibrations() {}

void cMain_GetTabletState(int* pressure, bool* penPressed, bool* eraserUsed, int* last) {
    if (pressure) {
        *pressure = s_Tablet.Pressure;
    }
    if (penPressed) {
        *penPressed = s_Tablet.PenPressed;
    }
    if (eraserUsed) {
        *eraserUsed = s_Tablet.EraserUsed;
    }
    if (last) {
        *last = -1;
    }
}

} // namespace trellis
