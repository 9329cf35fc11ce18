#include "host/WidgetGallery.h"

#include "ui/cBindButton.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cColorSwatch.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cEditSlider.h"
#include "ui/cEditVec.h"
#include "ui/cFilePn.h"
#include "ui/cForm.h"
#include "ui/cFpsDisplay.h"
#include "ui/cImageSwatch.h"
#include "ui/cLabel.h"
#include "ui/cPanel.h"
#include "ui/cSeparator.h"
#include "ui/cSlider.h"
#include "ui/cSliderRanged.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"

#include <cmath>

namespace trellis {

namespace {

cList<cStr> List(std::initializer_list<const char*> items) {
    cList<cStr> list;
    for (const char* item : items) {
        list.Add(item);
    }
    return list;
}

cPanel* AddPanel(cWnd* parent, const char* title, bool expanded) {
    auto* panel = new cPanel(parent, title, 0, 0, true, true);
    panel->m_Expanded = panel->m_Expanded || expanded;
    parent->AddChild(panel);
    return panel;
}

/// A control whose place is the panel's to find.
template <class T, class... Args> T* AddRow(cWnd* panel, Args... args) {
    auto* control = new T(panel, args..., 0.0f, 0.0f, int(cRect::LeftTop), true, true);
    panel->AddChild(control);
    return control;
}

} // namespace

void WidgetGallery::Open(const cTheme* theme, const cVec2& screen, int texture) {
    Texture = texture;
    Jump = cInput::Space;
    const float unit = theme->ButtonHeight / 23;
    const auto formAt = [&](const char* title, float x, float y, float w, float h) {
        const cVec2 at(std::floor(x * unit), screen.y - std::floor(y * unit));
        const cRect bounds(at.x, at.y - std::floor(h * unit), at.x + std::floor(w * unit), at.y);
        cForm* form = NewForm(title, bounds, theme);
        cWidgets::AddWidget(form, 3);
        return form;
    };

    cForm* notes = formAt("Notes", 600, 60, 250, 220);
    auto* row = new cLabel(notes, &Info, "State", 60, -16, cRect::LeftTop, true, true);
    notes->AddChild(row);
    notes->AddChild(new cEdit(notes, &Name, "Name", 60, -50 * unit, cRect::LeftTop, true, true));
    notes->AddChild(new cButton(notes, "Far away", 300 * unit, -300 * unit, cRect::LeftTop, true, true));

    cForm* form = formAt("Controls", 20, 50, 560, 600);
    form->m_FitWidth = true;
    FillToolBar(form);
    cPanel* root = AddPanel(form, "", true);
    FillNumbers(AddPanel(root, "Numbers", true));
    FillTexts(AddPanel(root, "Texts", true));
    FillChoices(AddPanel(root, "Choices", true));
    cPanel* pictures = AddPanel(root, "Pictures", false);
    AddRow<cColorSwatch>(pictures, &Color.r, "Colour");
    AddRow<cImageSwatch>(pictures, &Texture, "Image");
    form->Activate();
    cWidgets::AddWidget(new cFpsDisplay(-1, 10, -10), 4);
}

cForm* WidgetGallery::NewForm(const char* title, const cRect& bounds, const cTheme* theme) {
    return new cForm(nullptr, title, bounds, theme);
}

void WidgetGallery::FillToolBar(cForm* form) {
    using Icon = cTheme::ToolBarIcon;
    auto* bar = new cToolBar(form, true, true);
    form->SetToolBar(bar);
    const auto icon = [bar](Icon::Enum which, const char* text, bool enabled = true) {
        bar->AddChild(new cButton(bar, which, false, text, 0, 0, cRect::LeftMiddle, true, enabled));
    };
    const auto gap = [bar] { bar->AddChild(new cSeparator(bar, "", true)); };
    icon(Icon::Load, "Load...");
    icon(Icon::Save, "Save...");
    gap();
    icon(Icon::Undo, "Undo");
    icon(Icon::Redo, "Redo", false);
    gap();
    bar->AddChild(new cEdit(bar, &Snap, &Zero, nullptr, "Snap", 0, 0, cRect::LeftMiddle, true, true));
    bar->AddChild(new cComboBox(bar, &Tool, List({"No Manipulator", "Move", "Rotate", "Scale"}), "", 0, 0,
                                cRect::LeftMiddle, true, true));
    bar->AddChild(new cCheckBox(bar, &Local, "Local", 0, 0, cRect::LeftMiddle, true, true));
    bar->AddChild(new cButton(bar, Icon::Add, true, "Add", 0, 0, cRect::LeftMiddle, true, true));
}

void WidgetGallery::FillNumbers(cWnd* panel) {
    const float *min = &MassMin, *max = &MassMax;
    AddRow<cEdit>(panel, &Mass, min, max, "Mass");
    AddRow<cEdit>(panel, &Count, static_cast<const int*>(&CountMin), static_cast<const int*>(&CountMax), "Count");
    const float *zero = &Zero, *one = &One;
    AddRow<cSlider>(panel, &Gain, zero, one, "Gain");
    const int *levelMin = &LevelMin, *levelMax = &LevelMax;
    AddRow<cSlider>(panel, &Level, levelMin, levelMax, "Level");
    AddRow<cEditSlider>(panel, &Fade, zero, one, "Fade");
    AddRow<cEditVec>(panel, Offset, 2, "Offset");
    AddRow<cEditVec>(panel, Position, 3, "Position");
    AddRow<cEditVec>(panel, Region, 4, "Region");
    AddRow<cSliderRanged>(panel, Range, "Range");
    AddRow<cSliderRanged>(panel, Steps, "Steps");
}

void WidgetGallery::FillTexts(cWnd* panel) {
    AddRow<cEdit>(panel, &Name, "Name");
    AddRow<cEdit>(panel, &Serial, "Serial")->m_ReadOnly = true;
    AddRow<cFilePn>(panel, int(cFilePn::Image), &File, "File");
    const cStr* info = &Info;
    AddRow<cLabel>(panel, info, "State");
}

void WidgetGallery::FillChoices(cWnd* panel) {
    AddRow<cCheckBox>(panel, &Visible, "Visible");
    AddRow<cCheckBox>(panel, &Shadow, "Casts a shadow");
    AddRow<cComboBox>(panel, &Mode,
                      List({"Nearest", "Bilinear", "Trilinear", "Anisotropic 2x", "Anisotropic 4x", "Anisotropic 8x",
                            "Anisotropic 16x", "Cubic", "Lanczos", "Mitchell"}),
                      "Filter");
    AddRow<cBindButton>(panel, &Jump, "Jump");
    panel->AddChild(new cSeparator(panel, "Actions", true));
    AddRow<cButton>(panel, "Apply");
    AddRow<cButton>(panel, "Revert")->m_Enabled = false;
}

} // namespace trellis
