// Forms with every control in use, for pictures and for tests.
#pragma once

#include "foundation/cStr.h"
#include "math/cColor.h"
#include "math/cVec2.h"

namespace trellis {

class cForm;
class cRect;
class cTheme;
class cWnd;

/// Holds the values that the controls show, and so must outlive them. The forms belong to the manager.
class WidgetGallery {
public:
    virtual ~WidgetGallery() = default;

    /// Opens "Controls" with a tool bar and panels of everything, "Notes" with a content larger than itself, and a
    /// frame rate. @param screen  size of the viewport  @param texture  for the swatch, -1 for none
    void Open(const cTheme* theme, const cVec2& screen, int texture);

    float Mass = 12.5f, MassMin = 0, MassMax = 100;
    int Count = 7, CountMin = 1, CountMax = 64;
    float Gain = 0.4f, Zero = 0, One = 1;
    int Level = 3, LevelMin = 0, LevelMax = 10;
    float Fade = 0.75f;
    float Offset[2] = {0.5f, -0.5f};
    float Position[3] = {1, 2.5f, -4};
    int Region[4] = {0, 0, 640, 480};
    float Range[3] = {0.5f, 0, 2};
    int Steps[3] = {4, 1, 9};
    cStr Name{"Harbour light"};
    cStr Serial{"HL-2041"};
    cStr Info{"Ready"};
    cStr File{"Textures/Harbour.bmp"};
    bool Visible = true, Shadow = false, Local = true;
    int Mode = 1, Object = 0, Tool = 1;
    int Jump;
    float Snap = 0.25f;
    cColor Color{0.85f, 0.45f, 0.15f, 1};
    int Texture = -1;

protected:
    virtual cForm* NewForm(const char* title, const cRect& bounds, const cTheme* theme);

private:
    void FillToolBar(cForm* form);
    void FillNumbers(cWnd* panel);
    void FillTexts(cWnd* panel);
    void FillChoices(cWnd* panel);
};

} // namespace trellis
