#include "host/FormParts.h"

#include "host/DialogForm.h"
#include "host/FileList.h"
#include "ui/cControl.h"
#include "ui/cForm.h"
#include "ui/cPanel.h"
#include "ui/cToolBar.h"

namespace trellis {

namespace {

bool FindInForm(const cForm* form, const std::string& name, cVec2* position) {
    const size_t slash = name.find('/');
    const std::string caption = name.substr(0, slash), part = slash == std::string::npos ? "" : name.substr(slash + 1);
    cList<cWnd*> wnds;
    const_cast<cForm*>(form)->ListChildren(&wnds, true);
    if (form->m_ToolBar) {
        const_cast<cToolBar*>(form->m_ToolBar)->ListChildren(&wnds, true);
    }
    for (const cWnd* wnd : wnds) {
        const auto* control = dynamic_cast<const cControl*>(wnd);
        const auto* panel = dynamic_cast<const cPanel*>(wnd);
        const auto* list = dynamic_cast<const FileList*>(wnd);
        if (list && list->Find(name, position)) {
            return true;
        }
        if (control && part.empty() && caption == control->m_Text.Text() && !control->m_ValueRect.IsEmpty()) {
            *position = control->m_ValueRect.Center();
            return true;
        }
        if (panel && part.empty() && caption == panel->m_Title.Text()) {
            *position = panel->m_Title2.Center();
            return true;
        }
    }
    if (caption != form->m_Title.Text()) {
        return false;
    }
    const struct {
        const char* Name;
        const cRect& Rect;
    } parts[] = {
        {"", form->m_TitleRect},
        {"close", form->m_CloseRect},
        {"minimize", form->m_MinimizeRect},
        {"maximize", form->m_MaximizeRect},
        {"grip", form->m_GripRect},
        {"left", form->m_Edges[0]},
        {"top", form->m_Edges[1]},
        {"right", form->m_Edges[2]},
        {"bottom", form->m_Edges[3]},
        {"client", form->m_Client},
        {"up", form->m_VArrows[0]},
        {"down", form->m_VArrows[1]},
        {"thumb", form->m_VThumb},
    };
    for (const auto& p : parts) {
        if (part == p.Name && !p.Rect.IsEmpty()) {
            *position = p.Rect.Center();
            return true;
        }
    }
    if (part == "corner") {
        *position = {form->m_Bounds.x1 - 1, form->m_Bounds.y0 + 1};
        return true;
    }
    return false;
}

} // namespace

bool FindInForms(const std::string& name, cVec2* position) {
    const cList<cForm*>& forms = cForm::s_Forms;
    const auto isDialog = [](const cForm* form) { return dynamic_cast<const DialogForm*>(form); };
    for (int i = forms.Count() - 1; i >= 0; i--) {
        if (isDialog(forms[i]) && FindInForm(forms[i], name, position)) {
            return true;
        }
    }
    for (const cForm* form : forms) {
        if (!isDialog(form) && FindInForm(form, name, position)) {
            return true;
        }
    }
    return false;
}

} // namespace trellis
