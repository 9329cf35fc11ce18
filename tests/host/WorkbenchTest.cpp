#include "editor/cClassExplorer.h"
#include "editor/cSettings.h"
#include "foundation/cLog.h"
#include "foundation/cPause.h"
#include "host/Daylight.h"
#include "host/FormParts.h"
#include "host/HandleParts.h"
#include "host/InputScript.h"
#include "host/cWorkbench.h"
#include "mesh/cMaterials.h"
#include "tests/ui/UiFixture.h"
#include "ui/cForm.h"
#include "ui/cToolBar.h"
#include "view/cManipulator.h"

#include <functional>
#include <memory>

using namespace trellis;

namespace {

constexpr char s_Cube[] = "v -1 0 -1\nv 1 0 -1\nv 1 0 1\nv -1 0 1\nv -1 2 -1\nv 1 2 -1\nv 1 2 1\nv -1 2 1\n"
                          "f 1 2 3 4\nf 8 7 6 5\nf 1 5 6 2\nf 2 6 7 3\nf 3 7 8 4\nf 4 8 5 1\n";

class Workbench : public Ui {
protected:
    Workbench() {
        cTheme::WindowsStandard = &Classic;
        cTheme::Fragile = &Fragile;
        Classic.Recording = Fragile.Recording = false;
        cWorkbench::Driver driver;
        driver.Next = [this] {
            Clock.Advance(1'000'000 / 60);
            return Source && Source();
        };
        driver.Show = [] {};
        Program = std::make_unique<cWorkbench>(driver);
        Program->Resize(1280, 720);
        Put(Write("models/a.obj"), s_Cube);
        Put(Write("models/b.obj"), s_Cube);
        Put(Write("other/broken.obj"), "no model");
    }
    ~Workbench() override {
        Program.reset();
        cTheme::WindowsStandard = cTheme::Fragile = nullptr;
        cPause::SetUserPause(false);
        g_ManipulatorsType = cManipulator::None;
    }

    static void Put(const std::string& path, const char* text) {
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        std::ofstream(path) << text;
    }

    /// Frames of a script; what is called in the first of them may ask questions.
    void Play(const std::string& text, const std::function<void()>& first = nullptr) {
        InputScript script;
        std::string error;
        ASSERT_TRUE(script.Parse(text, &error)) << error;
        const InputScript::Listener listener{nullptr,
                                             [this](const std::string& name, cVec2* at) {
                                                 return FindInForms(name, at) || FindHandle(name, at) ||
                                                        Program->Find(name, at);
                                             },
                                             [](const std::string&) { return true; }};
        Source = [&] { return script.Next(listener, &error); };
        if (first) {
            first();
        }
        while (Program->RunFrame()) {
        }
        Source = nullptr;
        EXPECT_EQ(error, "");
    }
    cStr SceneText() {
        cStr text;
        Program->GetScene().WriteToString(&text);
        return text;
    }
    cWorkbenchModel* Model(int i) { return dynamic_cast<cWorkbenchModel*>(Program->GetScene().Objects.Get(i)); }

    cFakeClock Clock;
    std::function<bool()> Source;
    std::unique_ptr<cWorkbench> Program;
};

TEST_F(Workbench, FoldersScenesAndModels) {
    ASSERT_TRUE(Program->Open(Write("models").c_str()));
    ASSERT_EQ(Program->GetScene().Objects.Count(), 2);
    EXPECT_EQ(Program->GetScene().GetTriangleCount(), 24);
    const cBounds a = cBounds::Transform(Model(0)->GetBounds(), Model(0)->GetPlace());
    const cBounds b = cBounds::Transform(Model(1)->GetBounds(), Model(1)->GetPlace());
    EXPECT_GT(b.min[0], a.max[0]);

    const std::string saved = Write("models/scene.Xml");
    ASSERT_TRUE(Program->SaveScene(saved.c_str()));
    const cStr text = SceneText();
    ASSERT_TRUE(Program->Open((Write("models/a.obj")).c_str()));
    EXPECT_EQ(Program->GetScene().Objects.Count(), 3);
    ASSERT_TRUE(Program->Open(saved.c_str()));
    EXPECT_EQ(SceneText(), text);
    EXPECT_EQ(Program->GetScene().GetTriangleCount(), 24);

    // a folder may move with its scene; a scene may be saved elsewhere
    EXPECT_NE(text.IndexOf("<ModelFile>a.obj<"), -1) << text;
    std::filesystem::rename(Write("models"), Write("moved"));
    ASSERT_TRUE(Program->Open(Write("moved/scene.Xml").c_str()));
    EXPECT_EQ(Program->GetScene().GetTriangleCount(), 24);
    std::filesystem::create_directories(Write("far"));
    ASSERT_TRUE(Program->SaveScene(Write("far/scene.Xml").c_str()));
    ASSERT_TRUE(Program->Open(Write("far/scene.Xml").c_str()));
    EXPECT_EQ(Program->GetScene().GetTriangleCount(), 24);
}

/// What cannot be used costs nothing that is there, and there is a sentence.
TEST_F(Workbench, WhatCannotBeOpenedOrSaved) {
    ASSERT_TRUE(Program->Open(Write("models").c_str()));
    const cStr text = SceneText();
    Put(Write("other/list.Xml"), "<cShowcase></cShowcase>");
    Put(Write("other/torn.Xml"), "<cWorkbenchScene><Objects>");
    Put(Write("other/note.txt"), "");
    std::filesystem::create_directories(Write("none"));
    const struct {
        const char *Path, *Said;
    } rows[] = {{"other/list.Xml", "is no scene of the workbench"},
                {"other/torn.Xml", "is no scene of the workbench"},
                {"other/absent.Xml", "is no scene of the workbench"},
                {"none", "There are no models in"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Path);
        bool isOpen = true;
        Play("30 press Enter\n40 move 1 1\n", [&] { isOpen = Program->Open(Write(row.Path).c_str()); });
        EXPECT_FALSE(isOpen);
        EXPECT_NE(Program->GetSaid().IndexOf(row.Said), -1) << Program->GetSaid();
        EXPECT_EQ(SceneText(), text);
    }
    bool isSaved = true;
    Play("30 press Enter\n40 move 1 1\n", [&] { isSaved = Program->SaveScene("/proc/no/scene.Xml"); });
    EXPECT_FALSE(isSaved);
    EXPECT_NE(Program->GetSaid().IndexOf("Nothing could be saved"), -1);

    EXPECT_FALSE(Program->Open(Write("other/broken.obj").c_str()));
    EXPECT_NE(cLog::GetLog().IndexOf("There is no model to be had"), -1);
    EXPECT_EQ(SceneText(), text);
}

TEST_F(Workbench, SelectsMovesAndDeletes) {
    ASSERT_TRUE(Program->Open(Write("models").c_str()));
    Play("5 press F9\n20 point b\n22 press LeftButton\n30 point move/y\n32 down LeftButton\n34 drag 0 40 10\n"
         "50 up LeftButton\n");
    EXPECT_EQ(Program->GetScene().GetSelected(), Model(1));
    EXPECT_GT(Model(1)->Transform.Translate.y, 0.1f);
    EXPECT_EQ(Model(0)->Transform.Translate.y, 0);
    Play("5 press 2\n10 point rotate/free\n15 press P\n");
    EXPECT_TRUE(cPause::GetUserPause());

    Play("5 press Delete\n20 point No\n22 press LeftButton\n40 move 1 1\n");
    EXPECT_EQ(Program->GetScene().Objects.Count(), 2);
    Play("5 press Delete\n20 point Yes\n22 press LeftButton\n40 move 1 1\n");
    ASSERT_EQ(Program->GetScene().Objects.Count(), 1);
    EXPECT_EQ(Program->GetScene().GetSelected(), nullptr);
    EXPECT_EQ(Model(0)->ToString(), "a");
    Play("5 move 640 700\n7 press LeftButton\n9 press Delete\n20 move 1 1\n"); // nothing there, nothing asked
    EXPECT_EQ(Program->GetScene().Objects.Count(), 1);
}

TEST_F(Workbench, AChangeIsNotLost) {
    bool mayClose = false;
    const auto close = [&] { mayClose = Program->MayClose(); };
    Play("5 move 1 1\n", close); // nothing to lose
    EXPECT_TRUE(mayClose);
    ASSERT_TRUE(Program->Open(Write("models").c_str()));
    Play("5 move 1 1\n", close); // the folder is still there
    EXPECT_TRUE(mayClose);
    Program->GetScene().AddPath();
    const std::string saved = Write("models/kept.Xml");
    const struct {
        const char* Script;
        bool MayClose, IsSaved;
    } rows[] = {
        {"20 press Esc\n30 move 1 1\n", false, false},
        {"20 point Cancel\n22 press LeftButton\n40 move 1 1\n", false, false},
        {"20 point No\n22 press LeftButton\n40 move 1 1\n", true, false},
        {"20 point Yes\n22 press LeftButton\n40 press Esc\n50 move 1 1\n", false, false}, // no name, no end
        {"20 move 1 1\n", false, false},                                                  // the program ends meanwhile
        {"20 point Yes\n22 press LeftButton\n40 down Control\n42 press A\n44 up Control\n50 type %\n300 press Enter\n"
         "320 move 1 1\n",
         true, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.Script);
        std::string script = row.Script;
        if (const size_t at = script.find('%'); at != std::string::npos) {
            script.replace(at, 1, saved);
        }
        Play(script, close);
        EXPECT_EQ(mayClose, row.MayClose);
        EXPECT_EQ(std::filesystem::exists(saved), row.IsSaved);
    }
    Play("5 move 1 1\n", close); // saved by now
    EXPECT_TRUE(mayClose);
    g_Materials.Categories.Add(new cMaterial_Category);
    Play("20 press Esc\n30 move 1 1\n", close); // these are the person's work as well
    EXPECT_FALSE(mayClose);
    g_Materials.Categories.RemoveAt(0);
}

TEST_F(Workbench, FormsTakeTheTheme) {
    Play("5 press F9\n10 press F10\n20 move 1 1\n");
    ASSERT_EQ(cForm::s_Forms.Count(), 3);
    Program->SetTheme(&Fragile);
    Play("10 move 1 1\n");
    ASSERT_EQ(cForm::s_Forms.Count(), 3);
    for (const cForm* form : cForm::s_Forms) {
        EXPECT_EQ(form->m_Theme, &Fragile);
        EXPECT_EQ(form->m_ToolBar->m_Children[0]->m_Theme, &Fragile);
    }
    Play("5 press F1\n10 press F9\n15 press F10\n20 move 1 1\n");
    EXPECT_EQ(cForm::s_Forms.Count(), 0);
    Play("5 press F1\n10 move 1 1\n");
    EXPECT_EQ(cForm::s_Forms.Count(), 1);
}

} // namespace
