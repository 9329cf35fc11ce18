#include "host/cWorkbench.h"

#include "editor/cClassExplorer.h"
#include "editor/cSettings.h"
#include "files/cFile.h"
#include "files/cIO.h"
#include "foundation/cLog.h"
#include "foundation/cMain.h"
#include "foundation/cPause.h"
#include "foundation/cTimer.h"
#include "host/cWorkbenchForm.h"
#include "image/cImage.h"
#include "mesh/cMaterials.h"
#include "reflection/cXml.h"
#include "render/cRender.h"
#include "ui/cMessageBox.h"
#include "ui/cPanel.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cFreeViewer.h"
#include "view/cManipulator.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <sstream>

namespace trellis {

namespace {

namespace fs = std::filesystem;

constexpr int s_FormLayer = 3, s_StatusLayer = 5;

void DressWnd(cWnd* wnd, const cTheme* theme) {
    wnd->m_Theme = theme;
    wnd->CalcRelBounds();
}

/// "Name.bmp", or with a number what is not there yet.
fs::path FreeName(const fs::path& folder, const std::string& name, const char* extension) {
    std::error_code error;
    fs::path path = folder / (name + extension);
    for (int i = 2; fs::exists(path, error); i++) {
        path = folder / (name + " " + std::to_string(i) + extension);
    }
    return path;
}

bool HasFonts(const cTheme* theme) {
    return theme && theme->ButtonFont != -1;
}

/// Windows keep the theme that they were made with.
void DressForm(cForm* form, const cTheme* theme) {
    form->m_Theme = theme;
    cList<cWnd*> inside;
    form->ListChildren(&inside, false);
    for (cWnd* wnd : inside) {
        DressWnd(wnd, theme);
    }
    for (int i = inside.Count(); i-- > 0;) { // the innermost panels first
        if (auto* panel = dynamic_cast<cPanel*>(inside[i])) {
            panel->AlignChildren();
        }
    }
    if (cToolBar* bar = form->m_ToolBar) {
        bar->m_Theme = theme;
        for (cWnd* wnd : bar->m_Children) {
            DressWnd(wnd, theme);
        }
        bar->AlignChildren();
    }
}

} // namespace

/// The scene among the widgets, behind the handles: draws it, and has the keys of the program.
class cWorkbench::SceneWidget : public cWidget {
public:
    explicit SceneWidget(cWorkbench* program) : m_Program(program) {}

    bool OnButtonDown(int code) override {
        const bool isControl = cInput::IsDown(cInput::Control);
        if (isControl && (code == cInput::O || code == cInput::S)) {
            code == cInput::O ? m_Program->AskToOpen() : void(m_Program->AskToSave());
            return true;
        }
        if (code >= cInput::Key0 && code <= cInput::Key4) {
            g_ManipulatorsType = code - cInput::Key0;
            return true;
        }
        switch (code) {
        case cInput::LeftButton:
            if (cInput::IsDown(cInput::Alt)) {
                return false; // the camera's
            }
            m_Program->Click();
            return true;
        case cInput::Delete:
            m_Program->DeleteSelected();
            return true;
        case cInput::F:
            m_Program->FrameView();
            return true;
        case cInput::P:
            cPause::SetUserPause(!cPause::GetUserPause());
            return true;
        case cInput::F1:
            m_Program->ToggleForm();
            return true;
        case cInput::F9:
            cClassExplorer::ToggleClassExplorer();
            return true;
        case cInput::F10:
            cClassExplorer::ToggleMainMenu();
            return true;
        case cInput::F12:
            m_Program->SaveShot();
            return true;
        }
        return false;
    }
    void OnRender() override {
        m_Program->m_IsMoving = m_Program->m_Scene.Step(cTimer::GetFrameTimeSec()) && !cPause::GetPause();
        cRender::SetWireframe(g_Settings.Wireframe);
        m_Program->m_Scene.Draw(g_Settings.ShowGrid);
        cRender::SetWireframe(false);
    }

private:
    cWorkbench* m_Program;
};

/// The last sentence, in the lower left corner.
class cWorkbench::StatusLine : public cWidget {
public:
    explicit StatusLine(cWorkbench* program) : m_Program(program) {}

    void OnRender() override {
        if (m_Program->m_SaidSec <= 0) {
            return;
        }
        m_Program->m_SaidSec -= cTimer::GetSystemFrameTimeSec();
        if (!m_Program->m_Theme) {
            return;
        }
        cTheme::DrawArgs args;
        args.Part = cTheme::Parts::ToolTip;
        args.Text = m_Program->m_Said;
        args.Position = {8, 8};
        args.Align = cRect::LeftBottom;
        m_Program->m_Theme->Draw(args);
    }

private:
    cWorkbench* m_Program;
};

cWorkbench::cWorkbench(const Driver& driver)
    : m_Driver(driver), m_Dialogs([this] { return RunFrame(); }),
      m_Theme(HasFonts(cTheme::WindowsStandard) ? cTheme::WindowsStandard : cTheme::Fragile),
      m_Viewer(new cFreeViewer) {
    cWidgets::AddWidget(m_Viewer, 0);
    cWidgets::AddWidget(new SceneWidget(this), 0);
    cWidgets::AddWidget(new StatusLine(this), s_StatusLayer);
    cSettings::AddToWidgets();
    cRender::SetViewer(m_Viewer);
    g_Settings.ShowGrid = g_Settings.ShowFps = true;
    g_Settings.ClearColor.Color = cColor(0.62f, 0.68f, 0.74f);
    g_ManipulatorsType = cManipulator::MoveType;
    cClassExplorer::AddObject("Scene", &m_Scene, "");
    cClassExplorer::AddObject("Materials", &g_Materials, "");
    cClassExplorer::AddMenuObject("Settings", &g_Settings, "");
    m_Scene.WriteToString(&m_Saved);
    g_Materials.WriteToString(&m_SavedMaterials);
    m_LogRead = cLog::GetLog().Length();
    if (!HasFonts(m_Theme)) {
        m_Theme = nullptr;
        cLog::Error("There are no fonts in \"%s/Fonts\": no forms and no texts can be shown.",
                    cIO::GetDefaultSourceFolder().Text());
    }
    HostDialogs::SetTheme(m_Theme);
    HostDialogs::AddTo(&m_Driver.Host);
    cIO::SetHost(m_Driver.Host);
}

cWorkbench::~cWorkbench() {
    cIO::SetHost({});
    m_Scene.Select(nullptr);
    cClassExplorer::RemoveObject(&m_Scene);
    cClassExplorer::RemoveObject(&g_Materials);
    cClassExplorer::RemoveObject(&g_Settings);
    m_Scene.Objects.RemoveAt(0, m_Scene.Objects.Count());
    cRender::SetViewer(nullptr);
    cWidgets::FreeAll();
}

// ---- Frames

bool cWorkbench::RunFrame() {
    if (!m_Driver.Next()) {
        return false;
    }
    cWidgets::HandleInputEvents();
    cTimer::Acquire();
    Render();
    m_Driver.Show();
    return true;
}

void cWorkbench::Render() {
    if (!cMain_LoadSceneXmlFilePn.IsEmpty()) { // a button of the settings, or whoever else wants one
        const cStr filePn = std::exchange(cMain_LoadSceneXmlFilePn, cStr());
        if (MayClose()) {
            OpenScene(filePn);
        }
    }
    ReadLog();
    Dress();
    cRender::BeginFrame();
    cRender::Clear(true, true, g_Settings.ClearColor.Color, 1);
    cRender::SetViewer(m_Viewer);
    cMain_OnRender(m_Viewer->Viewport);
    for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
        cWidgets::Render(layer);
    }
    cRender::EndFrame();
}

void cWorkbench::Resize(int width, int height) {
    m_Viewer->Viewport = {0, 0, float(width), float(height)};
    m_Viewer->Update();
    if (m_FormID == -1) {
        ToggleForm();
    }
}

void cWorkbench::Dress() {
    if (!m_Theme) { // forms without texts keep the one that they opened with
        return;
    }
    for (cForm* form : cForm::s_Forms) {
        if (form->m_Theme != m_Theme) {
            DressForm(form, m_Theme);
            cClassExplorer::ReCreateControls(); // what is made of several windows is measured when it is made
        }
    }
}

void cWorkbench::SetTheme(const cTheme* theme) {
    if (!HasFonts(theme)) {
        Say("The fonts of this theme are missing.");
        return;
    }
    m_Theme = theme;
    HostDialogs::SetTheme(theme);
    if (dynamic_cast<cWorkbenchForm*>(cWidgets::GetWidget(m_FormID))) { // another size
        ToggleForm();
        ToggleForm();
    }
}

void cWorkbench::ToggleForm() {
    // closed by its button, its id may be another one's by now
    if (auto* form = dynamic_cast<cWorkbenchForm*>(cWidgets::GetWidget(m_FormID))) {
        cWidgets::FreeWidget(form, true);
        m_FormID = -1;
        return;
    }
    if (!m_Theme) {
        return;
    }
    constexpr float Margin = 8, StandardButton = 23;
    const float scale = m_Theme->ButtonHeight / StandardButton;
    const float width = std::floor(120 + 180 * scale), height = std::floor(520 * scale);
    const cRect screen = m_Viewer->Viewport;
    const cVec2 corner(screen.x1 - Margin, screen.y1 - Margin);
    const cRect bounds(corner.x - width, std::max(corner.y - height, screen.y0 + Margin), corner.x, corner.y);
    auto* form = new cWorkbenchForm(this, bounds, m_Theme);
    m_FormID = cWidgets::AddWidget(form, s_FormLayer);
    form->Fill();
}

void cWorkbench::Click() {
    const cVec2 at = m_Viewer->ScreenToClip(cInput::GetMousePositionOrient());
    cWorkbenchObject* object = m_Scene.Pick(m_Viewer->GetPickRay(at));
    m_Scene.Select(object);
    if (object) {
        cClassExplorer::FocusObject(object);
    }
}

void cWorkbench::FrameView() {
    cWorkbenchObject* selected = m_Scene.GetSelected();
    if (selected && !selected->GetBounds().IsEmpty()) {
        m_Viewer->Frame(selected->GetBounds(), selected->GetPlace(), cRect::Empty);
    } else {
        m_Viewer->Frame(m_Scene.GetBounds(), cMat4::Identity, cRect::Empty);
    }
}

void cWorkbench::DeleteSelected() {
    cWorkbenchObject* selected = m_Scene.GetSelected();
    if (!selected || !cMessageBox::YesNo("Delete", "Delete what is selected?") || selected != m_Scene.GetSelected()) {
        return;
    }
    m_Scene.Select(nullptr);
    cClassExplorer::ReCreateControls();
    m_Scene.Objects.RemoveAt(m_Scene.Objects.IndexOf(static_cast<cClass*>(selected)));
}

bool cWorkbench::Find(const std::string& name, cVec2* position) {
    for (int i = 0; i < m_Scene.Objects.Count(); i++) {
        cWorkbenchObject* object = m_Scene.Objects.Get(i);
        if (object && (name == object->ToString().Text() || name == object->GetClassName())) {
            return m_Viewer->WorldToClosestScreenPoint(object->GetBounds().Center() * object->GetPlace(), position);
        }
    }
    return false;
}

// ---- Files

void cWorkbench::AskForFolder() {
    cStr folder;
    if (MayClose() && cIO::SelectFolderDialog("Open Folder", "Models", &folder)) {
        Open(folder);
    }
}

void cWorkbench::AddModel() {
    const bool isFirst = m_Scene.Objects.Count() == 0;
    m_Scene.AddModel();
    if (isFirst) {
        FrameView();
    }
}

bool cWorkbench::Open(const char* path) {
    std::error_code error;
    const bool isFolder = fs::is_directory(path, error);
    const fs::path folder = isFolder ? fs::path(path) : fs::path(path).parent_path();
    cIO::SetFileDialogInitialFolder("Models", folder.c_str());
    cIO::SetModelAnimCameraBspDialogsInitialPath(folder.c_str());
    cIO::SetXmlDialogInitialPath(folder.c_str());
    if (!isFolder && cStr::CompareNoCase(cStr(path).GetFileExtension(), "Xml") == 0) {
        return OpenScene(path);
    }
    if (isFolder) {
        cIO::SetXmlDialogInitialFile("");
    }
    const bool isKept = isFolder || IsSaved(&m_Scene, m_Saved); // what can be opened again is no change
    if (!(isFolder ? m_Scene.OpenFolder(path) : m_Scene.Open(path))) {
        return false;
    }
    if (isKept) {
        m_Scene.WriteToString(&m_Saved);
    }
    if (isFolder && fs::exists(folder / "Materials.Xml", error)) {
        g_Materials.WriteToString(&m_SavedMaterials);
    }
    FrameView();
    return true;
}

bool cWorkbench::OpenScene(const char* filePn) {
    cXml document; // a scene that is no XML must not cost the one that is open
    if (cStr::CompareNoCase(cStr(filePn).GetFileExtension(), "Xml") != 0 ||
        !document.ReadFromFile(filePn, cClass::MaxFileDepth) || !(document.GetName() == cWorkbenchScene::ClassName)) {
        const cStr text = cStr::Format("\"%s\" is no scene of the workbench.", filePn);
        HostDialogs::Tell("Open Scene", text);
        Say(text);
        return false;
    }
    m_Scene.Select(nullptr);
    cClassExplorer::ReloadObject(&m_Scene, filePn);
    m_Scene.WriteToString(&m_Saved);
    RememberFile(filePn);
    m_Scene.Step(0);
    FrameView();
    return true;
}

/// The next dialog begins with it.
void cWorkbench::RememberFile(const char* filePn) {
    cIO::SetXmlDialogInitialPath(fs::path(filePn).parent_path().c_str());
    cIO::SetXmlDialogInitialFile(fs::path(filePn).filename().c_str());
}

bool cWorkbench::SaveScene(const char* filePn) {
    if (!Save(&m_Scene, &m_Saved, filePn)) {
        return false;
    }
    RememberFile(filePn);
    return true;
}

bool cWorkbench::Save(cClass* object, cStr* saved, const char* filePn) {
    if (!object->WriteToFile(filePn)) {
        const cStr text = cStr::Format("Nothing could be saved to \"%s\".", filePn);
        HostDialogs::Tell("Save", text);
        Say(text);
        return false;
    }
    object->WriteToString(saved);
    Say(cStr::Format("Saved to \"%s\".", filePn));
    return true;
}

void cWorkbench::AskToOpen() {
    cStr filePn;
    if (MayClose() && cIO::LoadXmlDialog(&filePn)) {
        OpenScene(filePn);
    }
}

bool cWorkbench::AskToSave() {
    cStr filePn;
    return cIO::SaveXmlDialog(&filePn) && SaveScene(filePn);
}

/// The class explorer saves and loads as well, and keeps the name of the file.
bool cWorkbench::IsSaved(cClass* object, const cStr& saved) {
    cStr now;
    object->WriteToString(&now);
    if (now == saved) {
        return true;
    }
    for (const cClassExplorer::Object& known : cClassExplorer::GetObjects()) {
        cFile file;
        if (known.Class == object && !known.FileName.IsEmpty() &&
            cIO::LoadFile(known.Folder + known.FileName, &file, false)) {
            std::string onDisk(size_t(file.GetSize()), '\0');
            file.ReadBytes(onDisk.data(), file.GetSize());
            return onDisk == now.Text();
        }
    }
    return false;
}

void cWorkbench::Rescue() {
    std::error_code error;
    const struct {
        cClass* Object;
        const cStr& Saved;
        const char* Name;
    } rows[] = {{&m_Scene, m_Saved, "Rescued"}, {&g_Materials, m_SavedMaterials, "Rescued Materials"}};
    for (const auto& row : rows) {
        bool isSaved = IsSaved(row.Object, row.Saved);
        for (const fs::path& folder : {fs::current_path(error), fs::temp_directory_path(error)}) {
            const fs::path path = FreeName(folder, row.Name, ".Xml");
            if (!isSaved && row.Object->WriteToFile(path.c_str())) {
                isSaved = true;
                std::fprintf(stderr, "workbench: what had changed was saved to \"%s\".\n", path.c_str());
            }
        }
        if (!isSaved) {
            std::fprintf(stderr, "workbench: what had changed could not be saved.\n");
        }
    }
}

bool cWorkbench::MayClose() {
    return MayLose(&m_Scene, m_Saved, "The scene has changed. Save it?") &&
           MayLose(&g_Materials, m_SavedMaterials, "The materials have changed. Save them?");
}

bool cWorkbench::MayLose(cClass* object, const cStr& saved, const char* question) {
    if (IsSaved(object, saved)) {
        return true;
    }
    const HostDialogs::Answer answer = HostDialogs::Ask("Workbench", question);
    if (answer != HostDialogs::Yes) {
        return answer == HostDialogs::No;
    }
    if (object == &m_Scene) {
        return AskToSave();
    }
    const cStr sceneFile = cIO::GetXmlDialogInitialFile();
    cIO::SetXmlDialogInitialFile("Materials.Xml");
    cStr filePn;
    const bool isSaved = cIO::SaveXmlDialog(&filePn) && Save(object, &m_SavedMaterials, filePn);
    cIO::SetXmlDialogInitialFile(sceneFile); // what the next save of the scene begins with
    return isSaved;
}

void cWorkbench::SaveShot() {
    std::error_code error;
    const fs::path path = FreeName(fs::current_path(error), "ScreenShot", ".bmp");
    cImage picture;
    cRender::ScreenShot(&picture);
    const bool isSaved = cIO::SaveImage(path.c_str(), picture);
    Say(cStr::Format(isSaved ? "Saved to \"%s\"." : "The picture could not be saved to \"%s\".", path.c_str()));
}

// ---- Sentences

void cWorkbench::Say(const char* sentence) {
    ReadLog(); // it says more than what led to it
    Show(sentence);
}

void cWorkbench::Show(const char* sentence) {
    constexpr float SaidSec = 5;
    m_Said = sentence;
    m_SaidSec = SaidSec;
}

/// Warnings reach the person as well.
void cWorkbench::ReadLog() {
    const cStr& log = cLog::GetLog();
    const int from = std::min(m_LogRead, log.Length());
    if (from == log.Length()) {
        m_LogRead = from;
        return;
    }
    std::fputs(log.Text() + from, stderr);
    std::istringstream lines(log.Text() + from);
    m_LogRead = log.Length();
    for (std::string line; std::getline(lines, line);) {
        line.erase(line.find_last_not_of("\r") + 1);
        if (!line.empty() && line.find("Load") > 3) { // that something has been loaded is no news
            Show(line.c_str());
        }
    }
}

} // namespace trellis
