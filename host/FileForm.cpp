#include "host/FileForm.h"

#include "host/FileList.h"
#include "host/MessageForm.h"
#include "ui/cButton.h"
#include "ui/cEdit.h"
#include "ui/cThemeText.h"
#include "ui/cWidgets.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace trellis {

namespace {

enum class Item { None, File, Folder };

/// What is there; the write folder's copy goes first, as in loading.
Item ItemAt(const cStr& path) {
    const auto at = [](const cStr& p) {
        std::error_code error;
        const auto status = std::filesystem::status(p.Text(), error);
        return !std::filesystem::exists(status)        ? Item::None
               : std::filesystem::is_directory(status) ? Item::Folder
                                                       : Item::File;
    };
    cStr copy = path;
    const Item item = cIO::ReplaceReadPath(&copy) ? at(copy) : Item::None;
    return item == Item::None ? at(path) : item;
}

bool IsReadable(const cStr& folder) {
    const auto opens = [](const cStr& path) {
        std::error_code error;
        const std::filesystem::directory_iterator items(path.Text(), error);
        return !error;
    };
    cStr copy = folder;
    return opens(folder) || (cIO::ReplaceReadPath(&copy) && opens(copy));
}

/// Absolute, without "." and "..", and without a slash at the end.
cStr Tidy(const cStr& path) {
    const cStr absolute = cIO::EnsureAbsolutePath(path);
    std::string normal = std::filesystem::path(absolute.Text()).lexically_normal().string();
    while (normal.size() > 1 && normal.ends_with('/')) {
        normal.pop_back();
    }
    return normal.c_str();
}

cStr ParentOf(const cStr& path) {
    cStr parent = path;
    parent.RemoveFileName();
    return parent.IsEmpty() ? cStr("/") : parent;
}

cStr NearestFolder(const char* wanted) {
    cStr folder = Tidy(wanted && *wanted ? wanted : cIO::GetDefaultSourceFolder().Text());
    while (ItemAt(folder) != Item::Folder && folder != "/") {
        folder = ParentOf(folder);
    }
    return folder;
}

const char* CaptionOf(FileForm::Purpose purpose) {
    switch (purpose) {
    case FileForm::Purpose::Load:
        return "Open";
    case FileForm::Purpose::Save:
        return "Save";
    case FileForm::Purpose::Folder:
        return "Select";
    }
    return "";
}

/// The end of the text, behind three dots, when it has not room as a whole.
cStr ShortenedAtFront(int font, const cStr& text, float room) {
    cStr shown = text;
    for (int at = 0; at < text.Length() && cThemeText::Width(font, shown) > room;) {
        at += cStr::UTF8LengthOf(text[at]);
        shown = cStr("...") + cStr(text.Text() + std::min(at, text.Length()));
    }
    return shown;
}

} // namespace

/// Arrow keys go on to the list, and the keys that end the editing to the dialog.
class FileForm::NameEdit : public Through<cEdit> {
public:
    explicit NameEdit(FileForm* form)
        : Through(form, &form->m_Name, "Name", 0.0f, 0.0f, int(cRect::LeftTop), true, true), m_Form(form) {}

    bool OnButtonDown(int code) override {
        const bool wasEditing = cWidgets::IsCaptured(this);
        const bool isEnd = code == cInput::Enter || code == cInput::Esc || code == cInput::ButtonA;
        const bool isUsed = cEdit::OnButtonDown(code);
        if (wasEditing && isEnd && !cWidgets::IsCaptured(this)) {
            return m_Form->OnButtonDown(code);
        }
        return isUsed;
    }
    bool OnChar(int c, int code) override {
        if (!cWidgets::IsCaptured(this)) {
            return false;
        }
        if (IsHeld(code)) {
            return true;
        }
        const bool isRow =
            code == cInput::Up || code == cInput::Down || code == cInput::PageUp || code == cInput::PageDown;
        return isRow && !m_MouseSelecting ? m_Form->OnListKey(code) : cEdit::OnChar(c, code);
    }

private:
    FileForm* m_Form;
};

FileForm::FileForm(Purpose purpose, const cIO::FileDialog& dialog, cStr* chosen, const cTheme* theme,
                   std::function<bool()> frame)
    : DialogForm(dialog.Title ? dialog.Title : "", theme, false), m_Purpose(purpose), m_Chosen(chosen),
      m_Frame(std::move(frame)), m_Folder(NearestFolder(dialog.InitialPath)), m_Name(dialog.InitialFile) {
    m_FitWidth = true;
    m_WheelEnabled = false;
    cStr::Split(dialog.Extensions ? dialog.Extensions : "", &m_Extensions, ";");
}

FileForm::~FileForm() {
    if (m_NameEdit && cWidgets::GetWidgetID(m_NameEdit) != -1) {
        m_NameEdit->Unbind(); // it may outlive the name
    }
}

// ---- Controls

void FileForm::Fill() {
    const auto add = [this](auto* control) {
        AddChild(control, false);
        return control;
    };
    const auto button = [&](const char* text) {
        return add(new Through<cButton>(this, text, 0.0f, 0.0f, int(cRect::LeftTop), true, true));
    };
    m_PathLine = add(new TextLine(this, ""));
    m_Up = button("Up");
    m_List = add(new Through<FileList>(this));
    m_NameEdit = add(new NameEdit(this));
    m_Message = add(new TextLine(this, ""));
    m_Accept = button(CaptionOf(m_Purpose));
    m_CancelButton = button("Cancel");
    List();
}

float FileForm::GetHeightOfOthers() const {
    return 2 * m_Theme->ButtonHeight + m_Theme->EditHeight + 5 * GetGap();
}

cVec2 FileForm::GetWish() const {
    constexpr float Rows = 15;
    const float unit = m_Theme->ButtonHeight / 23, row = m_List->GetRowHeight();
    const cVec2 screen = GetBaseRect().Size() * 0.8f;
    const float rows = std::clamp(std::floor((screen.y - GetHeightOfOthers()) / row), 4.0f, Rows);
    return {std::min(std::floor(440 * unit), screen.x), GetHeightOfOthers() + rows * row};
}

void FileForm::LayOut(const cVec2& client) {
    const cTheme& theme = *m_Theme;
    const float gap = GetGap(), row = m_List->GetRowHeight(), text = TextLine::GetHeight(theme);
    const float width = std::max(client.x - 2 * gap, 1.0f), right = gap + width;
    const float textTop = std::floor((theme.ButtonHeight - text) / 2);
    constexpr float NoWidth = 1; // 0 would be the text's

    cControl* const ups[] = {m_Up};
    const float up = GetButtonsWidth(ups);
    PutButtons(ups, right - up, gap);
    Put(m_PathLine, gap, gap + textTop, std::max(width - up - gap, NoWidth), 0);
    ShowPath();

    const float list = gap + theme.ButtonHeight + gap;
    const float height = std::max(client.y - GetHeightOfOthers(), 3 * row);
    Put(m_List, gap, list, width, height);

    const float name = list + height + gap;
    const float label = std::ceil(cThemeText::Width(theme.EditFont, m_NameEdit->m_Text)) + theme.EditPadding;
    Put(m_NameEdit, gap + label, name, std::max(width - label, NoWidth), theme.EditHeight);

    const float last = name + theme.EditHeight + gap;
    cControl* const buttons[] = {m_Accept, m_CancelButton};
    const float left = std::max(right - GetButtonsWidth(buttons), gap);
    Put(m_Message, gap, last + textTop, std::max(left - 2 * gap, NoWidth), 0);
    PutButtons(buttons, left, last);
}

void FileForm::OnOpened() {
    SetFocus(m_List);
    for (int row = 0; row < m_List->GetRows().Count(); row++) {
        if (m_List->GetRows()[row] == m_Name && m_Purpose == Purpose::Load) {
            m_List->Select(row);
        }
    }
    if (m_Purpose == Purpose::Save) {
        m_NameEdit->OnTabStop();
    }
}

void FileForm::ShowPath() {
    m_PathLine->m_Text = ShortenedAtFront(m_Theme->LabelFont, m_Folder, m_PathLine->m_Size.x);
}

/// @param isAboutName  the name is to be written anew
void FileForm::Say(const cStr& sentence, bool isAboutName) {
    m_Message->m_Text = sentence;
    if (isAboutName) {
        m_NameEdit->OnTabStop();
    }
}

// ---- The folder

void FileForm::List() {
    cList<cStr> folders, files, rows;
    const cStr pattern = m_Folder == "/" ? cStr("/*") : m_Folder + "/*"; // a folder's own name may look like a pattern
    cIO::SearchFolders(pattern, &folders);
    if (m_Purpose != Purpose::Folder) {
        cIO::SearchFiles(pattern, &files);
    }
    const auto add = [&rows](const cList<cStr>& paths, const char* tail, const auto& isWanted) {
        const int first = rows.Count();
        for (const cStr& path : paths) {
            const cStr name = path.GetFileName();
            if (name[0] != '.' && isWanted(name)) {
                rows.Add(name);
            }
        }
        // Anew: the write folder's stand behind the others.
        std::sort(rows.begin() + first, rows.end(),
                  [](const cStr& a, const cStr& b) { return cStr::ComparePath(a, b) < 0; });
        for (int i = first; i < rows.Count(); i++) {
            rows[i].Append(tail);
        }
    };
    add(folders, "/", [](const cStr&) { return true; });
    add(files, "", [this](const cStr& name) {
        return m_Extensions.IsEmpty() || m_Extensions.IndexOf(name.GetFileExtension(), cStr::EqualsNoCase) != -1;
    });
    m_List->SetRows(std::move(rows));
    Say(IsReadable(m_Folder) ? "" : "This folder cannot be read.", false);
}

void FileForm::Enter(const cStr& folder) {
    m_Folder = folder;
    List();
    ShowPath();
    SetFocus(m_List);
}

void FileForm::GoUp() {
    cStr from = m_Folder;
    from.RemoveFilePath();
    Enter(ParentOf(m_Folder));
    m_List->ScrollTo(m_List->GetRows().IndexOf(from + "/"));
}

bool FileForm::IsFolderSelected() const {
    const int row = m_List->GetSelected();
    return row != -1 && m_List->GetRows()[row].Text()[m_List->GetRows()[row].Length() - 1] == '/';
}

void FileForm::OpenRow() {
    if (m_List->GetSelected() == -1) {
        return;
    }
    if (IsFolderSelected()) {
        Enter(PathOf(m_List->GetRows()[m_List->GetSelected()]));
    } else {
        Accept();
    }
}

// ---- Input

bool FileForm::OnListKey(int code) {
    if (cWidgets::IsCaptured(m_NameEdit)) {
        m_NameEdit->SetValueFromBuffer();
        cWidgets::ReleaseCapture();
    }
    return m_List->OnKey(code);
}

bool FileForm::OnChar(int c, int code) {
    if (m_Closed || IsHeld(code)) {
        return DialogForm::OnChar(c, code);
    }
    constexpr int Rubout = 127;
    if (c > ' ' && c != Rubout) {
        m_NameEdit->OnTabStop();
        return m_NameEdit->OnChar(c, code);
    }
    if (code == cInput::BackSpace) {
        GoUp();
        return true;
    }
    return OnListKey(code) || DialogForm::OnChar(c, code);
}

void FileForm::OnDefault() {
    IsFolderSelected() ? OpenRow() : Accept();
}

void FileForm::MsgProc(int id, int msg, const void*, const void*) {
    const cWidget* sender = cWidgets::GetWidget(id);
    if (sender == m_List && msg == cControl::Selected) {
        m_Message->m_Text.Clear();
        if (m_List->GetSelected() != -1 && !IsFolderSelected()) {
            m_Name = m_List->GetRows()[m_List->GetSelected()];
        }
    } else if (sender == m_List && msg == cControl::Pressed) {
        OpenRow();
    } else if (sender == m_NameEdit && msg == cControl::TextCommitted) {
        m_List->Unselect(); // what was typed last counts
        m_Message->m_Text.Clear();
    } else if (sender == m_Up) {
        GoUp();
    } else if (sender == m_Accept) {
        Accept();
    } else if (sender == m_CancelButton) {
        Cancel();
    }
}

// ---- Choosing

cStr FileForm::PathOf(const cStr& name) const {
    return Tidy(cIO::PathIsAbsolute(name) ? name : m_Folder + "/" + name);
}

void FileForm::Choose(const cStr& path) {
    *m_Chosen = path;
    Answer(0);
}

void FileForm::Accept() {
    if (IsFolderSelected()) {
        const cStr folder = PathOf(m_List->GetRows()[m_List->GetSelected()]);
        return m_Purpose == Purpose::Folder ? Choose(folder) : Enter(folder);
    }
    m_Name.TrimStart(" ");
    m_Name.TrimEnd(" ");
    if (m_Name.IsEmpty()) {
        return m_Purpose == Purpose::Folder ? Choose(m_Folder) : Say("Type a name, or choose one of the list.", true);
    }
    const cStr path = PathOf(m_Name);
    const Item item = ItemAt(path);
    if (m_Purpose == Purpose::Folder) {
        return item == Item::Folder ? Choose(path) : Say(cStr("There is no folder \"") + m_Name + "\".", true);
    }
    if (item == Item::Folder) {
        m_Name.Clear();
        return Enter(path);
    }
    m_Purpose == Purpose::Load ? AcceptToLoad(path) : AcceptToSave(path);
}

void FileForm::AcceptToLoad(const cStr& path) {
    if (ItemAt(path) == Item::File) {
        return Choose(path);
    }
    for (const cStr& extension : m_Extensions) {
        const cStr whole = path + "." + extension;
        if (ItemAt(whole) == Item::File) {
            return Choose(whole);
        }
    }
    Say(cStr("There is no file \"") + m_Name + "\".", true);
}

void FileForm::AcceptToSave(cStr path) {
    const cStr folder = ParentOf(path);
    if (ItemAt(folder) != Item::Folder) {
        return Say(cStr("There is no folder \"") + folder.GetFileName() + "\".", true);
    }
    if (m_Name[m_Name.Length() - 1] == '/') {
        return Say(cStr("There is no folder \"") + m_Name + "\".", true);
    }
    if (!m_Extensions.IsEmpty()) {
        path.SetFileDefaultExtension(m_Extensions[0]); // as the caller would: the question is about what is written
    }
    const Item item = ItemAt(path);
    if (item == Item::Folder) {
        return Say(cStr("\"") + path.GetFileName() + "\" is a folder.", true);
    }
    if (item == Item::File) {
        const cStr question = cStr("Replace ") + path.GetFileName() + "?";
        auto form =
            std::make_unique<MessageForm>(m_Title, question, std::initializer_list<const char*>{"Yes", "No"}, m_Theme);
        const std::function<bool()> frame = m_Frame; // it shall live on if this form does not
        const Guard guard(this);
        if (Run(std::move(form), frame) != 0 || guard.IsGone()) {
            return;
        }
    }
    Choose(path);
}

} // namespace trellis
