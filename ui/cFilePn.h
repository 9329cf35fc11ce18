// Path and name of a file, with a button that asks for one.
#pragma once

#include "ui/cComposite.h"

namespace trellis {

class cButton;
class cEdit;

/// Sends `FileChosen` with its own id after the dialog has changed the text.
class cFilePn : public cComposite {
public:
    enum FileType : int { Image, Model, Anim, Camera, Bsp, Sound, Xml };

    cFilePn(cWnd* parent, int fileType, cStr* value, const char* text, float x, float y, int align, bool visible,
            bool enabled);

    int GetType() const override { return FilePnType; }
    void MsgProc(int id, int msg, const void* before, const void* after) override;
    void Unbind() override;

    int m_FileType;
    cStr* m_Value; ///< Not owned.
    cEdit* m_Edit;
    cButton* m_Button;

private:
    void Browse();

    bool m_IsBrowsing = false; // a dialog may let the rest of the program run on
};

} // namespace trellis
