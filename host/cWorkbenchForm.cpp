#include "host/cWorkbenchForm.h"

#include "editor/cClassExplorer.h"
#include "editor/cSettings.h"
#include "foundation/cPause.h"
#include "host/cWorkbench.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cComboBox.h"
#include "ui/cPanel.h"
#include "ui/cSeparator.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cManipulator.h"

namespace trellis {

namespace {

const cTheme* const* const s_Themes[] = {&cTheme::WindowsStandard, &cTheme::Fragile};

cList<cStr> List(std::initializer_list<const char*> items) {
    cList<cStr> list;
    for (const char* item : items) {
        list.Add(item);
    }
    return list;
}

} // namespace

cWorkbenchForm::cWorkbenchForm(cWorkbench* program, const cRect& bounds, const cTheme* theme)
    : cForm(nullptr, "Workbench", bounds, theme), m_Program(program), m_ThemeIndex(theme == cTheme::Fragile ? 1 : 0) {}

void cWorkbenchForm::Add(cWnd* parent, cWnd* control, void (*action)(cWorkbenchForm* form)) {
    m_Actions.push_back({parent->AddChild(control), action});
}

void cWorkbenchForm::Fill() {
    using Form = cWorkbenchForm;
    m_FitWidth = true;
    auto* bar = new cToolBar(this, true, true);
    SetToolBar(bar);
    const auto icon = [&](cTheme::ToolBarIcon::Enum which, const char* text, void (*action)(Form*)) {
        Add(bar, new cButton(bar, which, false, text, 0, 0, cRect::LeftMiddle, true, true), action);
    };
    icon(cTheme::ToolBarIcon::Load, "Open Scene...", [](Form* f) { f->m_Program->AskToOpen(); });
    icon(cTheme::ToolBarIcon::Save, "Save Scene...", [](Form* f) { f->m_Program->AskToSave(); });

    auto* panel = new cPanel(this, "", 0, 0, true, true);
    AddChild(panel);
    const auto button = [&](const char* text, void (*action)(Form*)) {
        Add(panel, new cButton(panel, text, 0, 0, cRect::LeftTop, true, true), action);
    };
    const auto check = [&](bool* value, const char* text, void (*action)(Form*)) {
        Add(panel, new cCheckBox(panel, value, text, 0, 0, cRect::LeftTop, true, true), action);
    };
    const auto choice = [&](int* value, std::initializer_list<const char*> items, const char* text,
                            void (*action)(Form*)) {
        Add(panel, new cComboBox(panel, value, List(items), text, 0, 0, cRect::LeftTop, true, true), action);
    };
    const auto heading = [&](const char* text) { panel->AddChild(new cSeparator(panel, text, true)); };
    heading("Add");
    button("Folder...", [](Form* f) { f->m_Program->AskForFolder(); });
    button("Model...", [](Form* f) { f->m_Program->AddModel(); });
    button("Path", [](Form* f) { f->m_Program->GetScene().AddPath(); });
    heading("Work");
    choice(&g_ManipulatorsType, {"No Manipulator", "Move", "Rotate", "Scale", "Universal"}, "Handles", nullptr);
    check(&m_IsPaused, "Pause", [](Form* f) { cPause::SetUserPause(f->m_IsPaused); });
    button("Explorer", [](Form*) { cClassExplorer::ToggleClassExplorer(); });
    heading("Look");
    check(&g_Settings.ShowGrid, "Grid", nullptr);
    check(&g_Settings.ShowFps, "Frame Rate", nullptr);
    choice(&m_ThemeIndex, {"Standard", "Fragile"}, "Theme",
           [](Form* f) { f->m_Program->SetTheme(*s_Themes[f->m_ThemeIndex]); });
    button("Settings", [](Form*) { cClassExplorer::ToggleMainMenu(); });
    button("Picture", [](Form* f) { f->m_Program->SaveShot(); });
}

void cWorkbenchForm::OnRender() {
    m_IsPaused = cPause::GetUserPause(); // a key may have changed it
    cForm::OnRender();
}

void cWorkbenchForm::MsgProc(int id, int msg, const void* before, const void* after) {
    for (const Action& action : m_Actions) {
        if (action.ID == id && action.Do) {
            return action.Do(this);
        }
    }
    cForm::MsgProc(id, msg, before, after);
}

} // namespace trellis
