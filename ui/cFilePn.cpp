#include "ui/cFilePn.h"

#include "files/cIO.h"
#include "ui/cButton.h"
#include "ui/cEdit.h"
#include "ui/cWidgets.h"

#include <iterator>

namespace trellis {

namespace {

/// What the dialog of a file type is opened with.
struct Dialog {
    bool (*Load)(cStr*);
    void (*SetFile)(const char*);
    void (*SetPath)(const char*);
};
constexpr Dialog s_Dialogs[] = {
    // indexed by file type
    {cIO::LoadImageDialog, cIO::SetImageDialogInitialFile, cIO::SetImageDialogInitialPath},
    {cIO::LoadModelDialog, cIO::SetModelDialogInitialFile, cIO::SetModelAnimCameraBspDialogsInitialPath},
    {cIO::LoadAnimDialog, cIO::SetAnimDialogInitialFile, cIO::SetModelAnimCameraBspDialogsInitialPath},
    {cIO::LoadCameraDialog, cIO::SetCameraDialogInitialFile, cIO::SetModelAnimCameraBspDialogsInitialPath},
    {cIO::LoadBspDialog, cIO::SetBspDialogInitialFile, cIO::SetModelAnimCameraBspDialogsInitialPath},
    {cIO::LoadSoundDialog, cIO::SetSoundDialogInitialFile, cIO::SetSoundDialogInitialPath},
    {cIO::LoadXmlDialog, cIO::SetXmlDialogInitialFile, cIO::SetXmlDialogInitialPath},
};
static_assert(std::size(s_Dialogs) == cFilePn::Xml + 1, "a file type without its dialog");

} // namespace

cFilePn::cFilePn(cWnd* parent, int fileType, cStr* value, const char* text, float x, float y, int align, bool visible,
                 bool enabled)
    : cComposite(parent, x, y, align, visible, enabled), m_FileType(fileType), m_Value(value) {
    const cTheme& theme = *m_Theme;
    m_Edit = new cEdit(this, value, text, 0, 0, cRect::LeftTop, visible, enabled);
    m_Edit->m_Size = {theme.EditMinWidth, theme.EditHeight};
    m_Button = new cButton(this, "...", 0, 0, cRect::LeftTop, visible, enabled);
    m_Button->m_Size = {theme.FilePnButtonWidth, theme.EditHeight};
    SetParts({m_Edit, m_Button}, theme.EditFont, theme.EditPadding, theme.FilePnSpacing);
}

void cFilePn::Unbind() {
    cComposite::Unbind();
    m_Value = nullptr;
}

void cFilePn::MsgProc(int id, int msg, const void* before, const void* after) {
    if (msg == Pressed && id == cWidgets::GetWidgetID(m_Button)) {
        Browse();
    } else {
        cComposite::MsgProc(id, msg, before, after);
    }
}

/// The dialog may free the control, and take the value from it.
void cFilePn::Browse() {
    if (!m_Value || m_IsBrowsing || m_FileType < 0 || m_FileType >= int(std::size(s_Dialogs))) {
        return;
    }
    const Dialog& dialog = s_Dialogs[m_FileType];
    if (!m_Value->IsEmpty()) {
        cStr folder = cIO::EnsureAbsolutePath(*m_Value);
        if (cIO::PathIsAbsolute(folder)) { // and no URL
            folder.RemoveFileName();
            dialog.SetPath(folder);
        }
    }
    dialog.SetFile(m_Value->GetFileName());

    const Guard guard(this);
    cStr chosen;
    m_IsBrowsing = true;
    const bool accepted = dialog.Load(&chosen);
    if (guard.IsGone()) {
        return;
    }
    m_IsBrowsing = false;
    if (!accepted || !m_Value || *m_Value == chosen) {
        return;
    }
    const cStr former = *m_Value;
    *m_Value = chosen;
    m_Edit->SetBufferFromValue();
    Send(FileChosen, former.Text(), chosen.Text()); // whoever hears of it may write over the value
}

} // namespace trellis
