// Dialog that chooses a file or a folder.
#pragma once

#include "files/cIO.h"
#include "host/DialogForm.h"

namespace trellis {

class cButton;
class cEdit;
class FileList;

/// Answers 0 when something was chosen. Folders stand ahead of files and end in a slash; what begins with a dot is not
/// listed. What stands only in the write folder is listed too.
class FileForm : public DialogForm {
public:
    enum class Purpose { Load, Save, Folder };

    /// @param dialog  its texts are copied  @param chosen  receives the path; borrowed to the end of `Run`
    /// @param frame   of the questions that the dialog asks itself
    FileForm(Purpose purpose, const cIO::FileDialog& dialog, cStr* chosen, const cTheme* theme,
             std::function<bool()> frame);
    ~FileForm() override;

    void MsgProc(int id, int msg, const void* before, const void* after) override;
    bool OnChar(int c, int code) override;

protected:
    void Fill() override;
    cVec2 GetWish() const override;
    void LayOut(const cVec2& client) override;
    void OnOpened() override;
    void OnDefault() override;

private:
    class NameEdit;

    float GetHeightOfOthers() const; // than the list
    bool IsFolderSelected() const;
    bool OnListKey(int code);
    void OpenRow();
    void Enter(const cStr& folder);
    void GoUp();
    void List();
    void ShowPath();
    void Say(const cStr& sentence, bool isAboutName);

    void Accept();
    void AcceptToLoad(const cStr& path);
    void AcceptToSave(cStr path);
    void Choose(const cStr& path);
    cStr PathOf(const cStr& name) const;

    Purpose m_Purpose;
    cList<cStr> m_Extensions;
    cStr* m_Chosen;
    std::function<bool()> m_Frame;
    cStr m_Folder; // absolute, with forward slashes
    cStr m_Name;
    TextLine* m_PathLine = nullptr;
    TextLine* m_Message = nullptr;
    FileList* m_List = nullptr;
    cEdit* m_NameEdit = nullptr;
    cButton* m_Up = nullptr;
    cButton* m_Accept = nullptr;
    cButton* m_CancelButton = nullptr;
};

} // namespace trellis
