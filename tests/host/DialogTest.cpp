#include "host/DialogForm.h"
#include "host/FileList.h"
#include "host/FormParts.h"
#include "host/HostDialogs.h"
#include "host/InputScript.h"
#include "host/MessageForm.h"
#include "tests/render/Allocations.h"
#include "tests/ui/UiFixture.h"
#include "ui/cButton.h"
#include "ui/cMessageBox.h"
#include "view/cViewer.h"

#include <cmath>

using namespace trellis;

namespace {

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// What the program shows beneath: "Go" opens the dialog.
class Beneath : public cForm {
public:
    explicit Beneath(const cTheme* theme) : cForm(nullptr, "Main", {10, 10, 400, 300}, theme) {}

    void MsgProc(int id, int, const void*, const void*) override {
        const auto* button = static_cast<cButton*>(cWidgets::GetWidget(id));
        button->m_Text == "Go" ? s_Go(this) : void(s_Seen += "pressed ");
    }
    bool OnButtonDown(int code) override { return See(code, "+ ") || cForm::OnButtonDown(code); }
    bool OnButtonUp(int code) override { return See(code, "- ") || cForm::OnButtonUp(code); }
    bool OnMouseMove() override { return See(-1, "move ") || cForm::OnMouseMove(); }
    bool OnChar(int c, int code) override { return See(code, "char ") || cForm::OnChar(c, code); }

    static inline std::function<void(Beneath*)> s_Go;
    static inline std::string s_Seen; ///< While a dialog is open.

private:
    static bool See(int code, const char* what) {
        if (HostDialogs::IsOpen()) {
            s_Seen += cInput::ToString(code).Text() + std::string(what);
        }
        return false;
    }
};

class Dialogs : public Ui {
public:
    Dialogs() {
        cRender::SetViewer(&Viewer);
        HostDialogs::AddTo(&Host);
        for (const char* name :
             {"a.tga", "B.tga", "b.dds", ".no.tga", "note.txt", "sub/d.tga", "sub/deep/e.tga", "Old/f.tga"}) {
            Put(In(name));
        }
        Put(Write("in/c.tga"));
    }
    ~Dialogs() override {
        HostDialogs::SetTheme(nullptr);
        cRender::SetViewer(nullptr);
        cRender::ResetStates();
        Beneath::s_Go = nullptr;
    }

    std::string In(const std::string& name = "") const { return Read(name.empty() ? "in" : "in/" + name); }

    /// Presses "Go", and plays steps that are separated by "; ", with '%' for the folder.
    void Play(const UiTheme& theme, const std::string& steps, const std::function<void(Beneath*)>& go) {
        std::string text;
        int frame = 2;
        for (std::string rest = "point Go; press LeftButton; " + Replaced(steps, "%", In()); !rest.empty();) {
            const std::string step = rest.substr(0, rest.find("; "));
            text += std::to_string(frame) + " " + step + (step == "save" ? " look\n" : "\n");
            frame += 3 + (step.starts_with("type") ? int(step.size()) : 0);
            rest.erase(0, step.size() + 2);
        }
        InputScript script;
        std::string error;
        ASSERT_TRUE(script.Parse(text, &error)) << error;
        Seen.clear();
        Beneath::s_Seen.clear();
        Beneath::s_Go = go;
        const InputScript::Listener listener{[this](int width, int height) { SetScreen(float(width), float(height)); },
                                             FindInForms, [&](const std::string& name) { return Save(name, theme); }};
        SetScreen(1600, 900);
        auto* form = new Beneath(&theme);
        cWidgets::AddWidget(form, 3);
        form->AddChild(new cButton(form, "Go", 20, -20, cRect::LeftTop, true, true));
        form->AddChild(new cButton(form, "Other", 220, -20, cRect::LeftTop, true, true));
        HasEnded = false;
        const auto step = [&] {
            if (!script.Next(listener, &error)) {
                HasEnded = true;
                return false;
            }
            Clock.Advance(16'666);
            cTimer::Acquire();
            theme.Drawn.clear();
            cWidgets::HandleInputEvents();
            cInput::FreeEvents();
            cWidgets::Render(-1);
            return true;
        };
        HostDialogs::SetTheme(&theme);
        HostDialogs dialogs(step);
        while (step()) {
        }
        EXPECT_EQ(error, "");
        EXPECT_FALSE(HostDialogs::IsOpen());
        cWidgets::FreeAll();
        EXPECT_EQ(cForm::s_Forms.Count(), 0);
    }

    /// What stands behind "save": something that happens, or else a look at the dialog.
    bool Save(const std::string& name, const UiTheme& theme) {
        if (name == "remove") {
            std::filesystem::remove_all(In("sub"));
        } else if (name == "free") {
            cWidgets::FreeAll();
        } else if (name == "repeat") {
            Repeat();
        } else {
            Seen += Look(theme);
        }
        return true;
    }

    void SetScreen(float width, float height) {
        Viewer.Viewport = {0, 0, width, height};
        Viewer.Update(false);
    }

    /// Title, folder and sentence of the dialog in front, and what its list shows.
    static std::string Look(const UiTheme& theme) {
        const int last = cForm::s_Forms.Count() - 1;
        const auto* form = last >= 0 ? dynamic_cast<const DialogForm*>(cForm::s_Forms[last]) : nullptr;
        if (!form) {
            return "none";
        }
        std::string seen = form->m_Title.Text();
        const cVec2 off = form->m_Bounds.Center() - cRender::GetViewer()->Viewport.Center();
        if (form->m_State != cForm::Normal || std::max(std::fabs(off.x), std::fabs(off.y)) > 1) {
            seen += "|not in the middle";
        }
        for (const cWnd* child : form->m_Children) {
            if (const auto* line = dynamic_cast<const TextLine*>(child); line && !line->m_Text.IsEmpty()) {
                const bool isPath = line->m_Text[0] == '/' || line->m_Text[0] == '.';
                seen += "|" + std::string(isPath ? line->m_Text.GetFileName() : line->m_Text);
            }
        }
        const cTheme::DrawArgs* list = theme.Find(cTheme::Parts::DropDown);
        for (int i = 0; form->m_Children.Count() > 6 && i < list->Items.Count(); i++) {
            seen += (i == 0 ? "|" : " ") + std::string(i == list->SelStart ? "*" : "") + list->Items[i].Text();
        }
        return seen;
    }

    cIO::Host Host;
    cViewer Viewer;
    std::string Seen; ///< At each "save".
    bool HasEnded = false;
    void (*Repeat)() = nullptr;
};

enum class Kind { Load, Save, Folder };
constexpr Kind ToLoad = Kind::Load, ToSave = Kind::Save, Folder = Kind::Folder;

constexpr struct {
    const char* Name;
    Kind Purpose;
    const char *Path, *File, *Steps, *Chosen, *Seen; ///< Chosen: within the folder; null: cancelled.
} s_Choices[] = {
    {"double clicks", ToLoad, "%", "", "point sub/; double; point deep/; double; point e.tga; double", "sub/deep/e.tga",
     ""},
    {"all rows", ToLoad, "%", "", "save; press Esc", nullptr, "T|in|Old/ sub/ a.tga b.dds B.tga c.tga"},
    {"initial file", ToLoad, "%/sub", "d.tga", "save; point Open; press LeftButton", "sub/d.tga", "T|sub|deep/ *d.tga"},
    {"initial folder gone", ToLoad, "%/sub/no/where", "", "save; press Esc", nullptr, "T|sub|deep/ d.tga"},
    {"typed at once", ToLoad, "%", "", "type a.tga; press Enter", "a.tga", ""},
    {"typed in the field", ToLoad, "%", "x", "point Name; press LeftButton; type b.dds; press Enter", "b.dds", ""},
    {"without extension", ToLoad, "%", "", "type b; press Enter", "b.dds", ""},
    {"absolute, with dots", ToLoad, "%/sub", "", "type %/Old/../Old/f; press Enter", "Old/f.tga", ""},
    {"folder's name", ToLoad, "%", "", "type sub; press Enter; press End; press Enter", "sub/d.tga", ""},
    {"the read folder at first", ToLoad, "", "", "type in/a.tga; press Enter", "a.tga", ""},
    {"missing", ToLoad, "%/Old", "", "type no; press Enter; save; type f; press Enter", "Old/f.tga",
     "T|Old|There is no file \"no\".|f.tga"},
    {"no name", ToLoad, "%/Old", "", "press Enter; save; press Esc", nullptr,
     "T|Old|Type a name, or choose one of the list.|f.tga"},
    {"keys", ToLoad, "%", "", "press Down; press Down; press Up; press Enter; press Home; press Enter", "Old/f.tga",
     ""},
    {"keys out of the field", ToLoad, "%", "", "type x; press PageDown; press Enter", "c.tga", ""},
    {"name goes before an older row", ToLoad, "%", "", "point sub/; press LeftButton; type a.tga; press Enter", "a.tga",
     ""},
    {"up", ToLoad, "%/sub/deep", "", "point Up; press LeftButton; press BackSpace; point c.tga; double", "c.tga", ""},
    {"removed meanwhile", ToLoad, "%", "", "save remove; point sub/; double; save; press Esc", nullptr,
     "T|sub|This folder cannot be read."},
    {"cancel", ToLoad, "%", "a.tga", "point Cancel; press LeftButton; save", nullptr, "none"},
    {"close", ToLoad, "%", "a.tga", "point T/close; press LeftButton; save", nullptr, "none"},
    {"small screen", ToLoad, "%", "a.tga", "size 420 380; point Open; press LeftButton", "a.tga", ""},
    {"replace", ToSave, "%", "a.tga", "save; press Enter; save; press Enter", "a.tga",
     "T|in|Old/ sub/ a.tga b.dds B.tga c.tgaT|Replace a.tga?"},
    {"replace not", ToSave, "%", "a.tga", "press Enter; point No; press LeftButton; save; press Esc", nullptr,
     "T|in|Old/ sub/ a.tga b.dds B.tga c.tga"},
    {"new with the default extension", ToSave, "%", "", "type c; press Enter; save", "c.dds", "none"},
    {"asks with the extension", ToSave, "%", "", "type b; press Enter; save; press Enter", "b.dds", "T|Replace b.dds?"},
    {"new in a folder", ToSave, "%", "n", "point sub/; double; point Save; press LeftButton", "sub/n.dds", ""},
    {"typed for a folder's row", ToSave, "%", "", "type n; press Down; press Enter; point Save; press LeftButton",
     "Old/n.dds", ""},
    {"no such folder", ToSave, "%/Old", "", "type no/n; press Enter; save; type no/; press Enter; save; press Esc",
     nullptr, "T|Old|There is no folder \"no\".|f.tgaT|Old|There is no folder \"no/\".|f.tga"},
    {"shown folder", Folder, "%/sub", "", "save; point Select; press LeftButton", "sub", "T|sub|deep/"},
    {"row of a folder", Folder, "%", "", "point sub/; press LeftButton; point Select; press LeftButton", "sub", ""},
    {"entered folder", Folder, "%", "", "point sub/; double; press Down; press Enter; press Enter", "sub/deep", ""},
    {"typed folder", Folder, "%", "", "type sub/deep/; press Enter", "sub/deep", ""},
};

} // namespace

TEST_F(Dialogs, ChooseFilesAndFolders) {
    for (const UiTheme* theme : {&Classic, &Fragile}) {
        for (const auto& c : s_Choices) {
            SCOPED_TRACE(c.Name);
            Put(In("sub/d.tga"));
            Put(In("sub/deep/e.tga"));
            const std::string path = Replaced(c.Path, "%", In());
            cIO::FileDialog dialog;
            dialog.Title = "T";
            dialog.Extensions = "dds;tga";
            dialog.InitialPath = path.c_str();
            dialog.InitialFile = c.File;
            cStr chosen("before");
            bool ok = false, isEnd = true;
            Play(*theme, c.Steps, [&](Beneath*) {
                ok = c.Purpose == ToLoad   ? Host.ShowLoadFile(dialog, &chosen)
                     : c.Purpose == ToSave ? Host.ShowSaveFile(dialog, &chosen)
                                           : Host.ShowSelectFolder("T", path.c_str(), &chosen);
                isEnd = HasEnded;
            });
            EXPECT_EQ(ok, c.Chosen != nullptr);
            EXPECT_EQ(chosen.Text(), c.Chosen ? In(c.Chosen) : "before");
            EXPECT_EQ(Seen, c.Seen);
            EXPECT_FALSE(isEnd);
        }
    }
}

TEST_F(Dialogs, AskQuestions) {
    using D = HostDialogs;
    const auto ask = [] { return D::Ask("T", "Well?"); };
    const auto yesNo = [] { return cMessageBox::YesNo("T", "Well?") ? D::Yes : D::No; };
    const auto tell = [] { return D::Tell("T", "Well?"), D::Yes; };
    const auto nested = [] { return D::Ask("T", "One?") == D::Yes ? D::Ask("U", "Two?") : D::Cancel; };
    const struct {
        const char* Steps;
        std::function<D::Answer()> Call;
        D::Answer Answer;
        bool IsEnd;
    } rows[] = {
        {"press Enter", ask, D::Yes, false},
        {"press Tab; press Enter", ask, D::No, false},
        {"press Tab; press Tab; press Space", ask, D::Cancel, false},
        {"press Esc", ask, D::Cancel, false},
        {"point No; press LeftButton", ask, D::No, false},
        {"point T/close; press LeftButton", ask, D::Cancel, false},
        {"point T; double; save; point T/close; press LeftButton", ask, D::Cancel, false},
        {"move 5 5", ask, D::Cancel, true},
        {"save free; move 2 2", ask, D::Cancel, false},
        {"press Enter", yesNo, D::Yes, false},
        {"press Esc", yesNo, D::No, false},
        {"size 220 200; save; point OK; press LeftButton", tell, D::Yes, false},
        {"press Enter; point No; press LeftButton", nested, D::No, false},
    };
    for (const UiTheme* theme : {&Classic, &Fragile}) {
        for (const auto& row : rows) {
            SCOPED_TRACE(row.Steps);
            D::Answer answer = D::Cancel;
            bool isEnd = !row.IsEnd;
            Play(*theme, row.Steps + std::string(row.IsEnd ? "" : "; move 1 1"), [&](Beneath*) {
                answer = row.Call();
                isEnd = HasEnded;
            });
            EXPECT_EQ(answer, row.Answer);
            EXPECT_EQ(isEnd, row.IsEnd);
            EXPECT_TRUE(Seen.empty() || Seen == "T|Well?") << Seen;
        }
    }
}

TEST_F(Dialogs, KeepInputFromWhatIsBeneath) {
    Play(Classic,
         "down Alt; point Go; press LeftButton; move 3 3; point Other; press LeftButton; wheel 1; down A; up A; "
         "type x; up Alt; press Esc; point Other; press LeftButton",
         [count = 0](Beneath* form) mutable {
             if (count++ == 1) { // with Alt held
                 HostDialogs::Tell("T", "Well.");
                 EXPECT_TRUE(form->IsActive());
                 EXPECT_EQ(static_cast<cControl*>(form->m_Children[1])->m_Hot.Target, 0); // under the mouse
             }
         });
    EXPECT_EQ(Beneath::s_Seen, "LeftButton- A- Alt- pressed ");
}

// The name field holds the capture, and yet lets what it has not seen pressed go by; nor does a held key type.
TEST_F(Dialogs, LetHeldKeysGoUnderAnEdit) {
    class Shortcut : public cWidget {
        bool OnButtonDown(int code) override {
            if (code == cInput::S) {
                cStr chosen;
                cWidgets::SetCapture();
                Type(-1); // still in the queue
                EXPECT_FALSE(Save(cIO::FileDialog(), &chosen));
                EXPECT_FALSE(cWidgets::IsCaptured());
            }
            return code == cInput::S;
        }

    public:
        static void Type(int code) {
            auto* event = new cInput::Event;
            event->Type = cInput::CharEvent;
            event->Code = code;
            event->Char = 's';
            cInput::AddEvent(event);
        }
        decltype(cIO::Host::ShowSaveFile) Save = nullptr;
    };
    auto* shortcut = new Shortcut;
    shortcut->Save = Host.ShowSaveFile;
    cWidgets::AddWidget(shortcut, 2);
    Repeat = [] { Shortcut::Type(cInput::S); };
    Play(Classic, "down S; save repeat; up S; press Enter; save; press Esc", [](Beneath*) {});
    EXPECT_NE(Seen.find("Type a name"), std::string::npos) << Seen; // nothing is in the field
    EXPECT_EQ(Beneath::s_Seen, "S- ");                              // and nothing of what the dialog has seen pressed
}

TEST_F(Dialogs, OutliveTheFormThatAsked) {
    Play(Classic, "press Enter; move 5 5; save; move 6 6", [](Beneath* form) {
        if (HostDialogs::Ask("T", "Close?") == HostDialogs::Yes) {
            form->Close();
        }
    });
    EXPECT_EQ(Seen, "none");
}

TEST_F(Dialogs, AreCancelledWhereNothingCanBeShown) {
    const cTheme *classic = std::exchange(cTheme::WindowsStandard, nullptr),
                 *fragile = std::exchange(cTheme::Fragile, nullptr);
    cStr path("before");
    for (const bool isRunning : {false, true}) {
        cLog::GetLogMutable().Clear();
        const std::unique_ptr<HostDialogs> dialogs(isRunning ? new HostDialogs([] { return true; }) : nullptr);
        EXPECT_FALSE(Host.ShowLoadFile(cIO::FileDialog(), &path));
        EXPECT_EQ(HostDialogs::Ask("T", "Well?"), HostDialogs::Cancel);
        EXPECT_NE(cLog::GetLog().IndexOf(isRunning ? "\"T\" is cancelled: there is no theme" : "no program"), -1);
    }
    EXPECT_EQ(path, "before");
    cLog::GetLogMutable().Clear();
    EXPECT_FALSE(cMessageBox::YesNo("T", "Well?"));
    EXPECT_TRUE(cLog::GetLog().IsEmpty()); // nobody was asked
    cTheme::WindowsStandard = classic;
    cTheme::Fragile = fragile;
}

// Ten rows in sight of ten thousand.
TEST_F(Dialogs, ListsScroll) {
    cList<cStr> rows;
    for (int i = 0; i < 10'000; i++) {
        rows.Add(cStr::Format("%d", i));
    }
    UiRoot* root = NewRoot(&Classic);
    auto* list = new FileList(root);
    const float row = list->GetRowHeight();
    list->m_Size = {200, 10 * row};
    list->SetRows(rows);
    Add(root, list);
    Frame();
    const struct {
        int Start, Key, Row, First; ///< First: at the top then.
    } keys[] = {
        {-1, cInput::Down, 0, 0},         {-1, cInput::Up, 0, 0},    {0, cInput::Up, 0, 0},
        {9, cInput::Down, 10, 1},         {4, cInput::PageUp, 0, 0}, {0, cInput::PageDown, 9, 0},
        {9, cInput::PageDown, 18, 9},     {5, cInput::Home, 0, 0},   {5, cInput::End, 9999, 9990},
        {9999, cInput::Down, 9999, 9990},
    };
    for (const auto& k : keys) {
        list->SetRows(rows);
        list->Select(k.Start);
        Frame();
        EXPECT_TRUE(list->OnKey(k.Key));
        Frame();
        EXPECT_EQ(list->GetSelected(), k.Row);
        const cTheme::DrawArgs* drawn = Classic.Find(cTheme::Parts::DropDown);
        EXPECT_LE(drawn->Items.Count(), 12);
        EXPECT_EQ(drawn->Items[0], std::to_string(k.First).c_str());
        EXPECT_EQ(drawn->SelStart, k.Row - k.First);
    }
    list->ScrollTo(0);
    MoveTo(150, 400 - 0.5f * row);
    Wheel(-2);
    Press(cInput::LeftButton);
    EXPECT_EQ(list->GetSelected(), 6); // three rows a notch
    EXPECT_EQ(list->GetRows()[6], "6") << "not given back";

    Classic.Recording = false;
    const int before = AllocationCount();
    for (int i = 0; i < 20; i++) {
        cWidgets::Render(-1);
    }
    EXPECT_EQ(AllocationCount(), before);
}

TEST_F(Dialogs, WrapTexts) {
    const struct {
        const char* Text;
        int Glyphs; ///< That have room.
        const char* Lines;
    } rows[] = {
        {"", 10, ""},
        {"ab", 0, "a|b|"},
        {"one two", 10, "one two|"},
        {"ten glyphs", 10, "ten glyphs|"},
        {"one two three", 10, "one two|three|"},
        {"eleven glyph  more", 10, "eleven|glyph|more|"},
        {"a\n\nb\r\nc\n", 10, "a||b|c|"},
        {"onewordthatislong", 10, "onewordtha|tislong|"},
        {"\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", 10,
         "\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4|\xC3\xA4|"},
    };
    for (const auto& row : rows) {
        std::string lines;
        for (const cStr& line : MessageForm::Wrap(Classic.LabelFont, row.Text, 6 * float(row.Glyphs))) {
            lines += line.Text() + std::string("|");
        }
        EXPECT_EQ(lines, row.Lines) << row.Text;
    }
}
