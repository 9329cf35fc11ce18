#include "editor/cSettings.h"

#include "editor/cClassExplorer.h"
#include "files/cIO.h"
#include "foundation/cImmortal.h"
#include "foundation/cLog.h"
#include "foundation/cMain.h"
#include "foundation/cTimer.h"
#include "reflection/cEnum.h"
#include "render/cRender.h"
#include "ui/cFpsDisplay.h"
#include "ui/cMessageBox.h"
#include "ui/cWidgets.h"
#include "view/cHomeButton.h"

#include <memory>
#include <utility>

namespace trellis {

namespace {

// Ahead of globals that read it. At the end of the process the widget manager's lists may be gone before it.
cImmortal<cSettings> s_Settings __attribute__((init_priority(400)));
[[maybe_unused]] const bool s_IsSource = [] {
    cHomeButton::SetSource(&s_Settings.Value.HomeButtonOnTheRight, &s_Settings.Value.HomeButtonOnTheLeft);
    return true;
}();

/// What the manager owns in place of `g_Settings`, which it must not delete.
class SettingsWidget : public cWidget {
public:
    bool OnButtonDown(int code) override { return g_Settings.OnButtonDown(code); }
    void OnRender() override { g_Settings.OnRender(); }
};

template <size_t N> void Fill(const char* name, const char* const (&values)[N]) {
    cEnum* target = cEnums::Get(name);
    target->Clear();
    for (size_t i = 0; i < N; i++) {
        target->Add(values[i], unsigned(i));
    }
}

constexpr const char* s_Languages[] = {"English", "Russian", "German",   "Polish", "French",
                                       "Italian", "Spanish", "Japanese", "Chinese"};
constexpr const char* s_Resources[] = {"Materials", "Textures", "Models", "Anims", "Cameras", "BSP", "Sounds"};
constexpr const char* s_ShadersPlatforms[] = {"PC", "Xbox 360"};
constexpr const char* s_Platforms[] = {"iOS", "Tizen"};
static_assert(std::size(s_Resources) == size_t(cSettings::Sounds) + 1, "kind added without its name");
static_assert(std::size(s_Platforms) == size_t(cSettings::Tizen) + 1, "platform added without its name");

} // namespace

constinit cSettings& g_Settings = s_Settings.Value;

void cSettings_ClearColor::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddParent<cColorEdit>();
    }
}

void cSettings::CustomCtor() {
    Fill("cSettings_ShadersPlatform", s_ShadersPlatforms);
    Fill("cSettings_Resources", s_Resources);
    Fill("cSettings_Language", s_Languages);
    Fill("cSettings_Platform", s_Platforms);
    TimeScale = {1, 0, 2};
    Multithreading = true;
    m_FpsDisplayID = -1;
    m_FpsDisplay = nullptr;
}

void cSettings::CustomDtor() {
    ShowFps = false;
    UpdateFpsDisplay();
}

void cSettings::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cXmlFile>(MenuSceneXmlFile, "MenuSceneXmlFile");
    members.AddEnum(Language, "Language", cEnums::Get("cSettings_Language"));
    members.AddSeparator("Reload Resources");
    members.AddButton(&cSettings::ReloadTextures, "&cSettings::ReloadTextures");
    members.AddButton(&cSettings::ReloadModels, "&cSettings::ReloadModels");
    members.AddButton(&cSettings::ReloadAnims, "&cSettings::ReloadAnims");
    members.AddButton(&cSettings::ReloadCameras, "&cSettings::ReloadCameras");
    members.AddButton(&cSettings::ReloadSounds, "&cSettings::ReloadSounds");
    members.AddButton(&cSettings::ReloadShaders, "&cSettings::ReloadShaders");
    members.AddSeparator("");
    members.Add<_cBool>(FullScreen, "FullScreen");
    members.Add<_cBool>(ShowGrid, "ShowGrid");
    members.Add<_cBool>(Wireframe, "Wireframe");
    members.Add<_cBool>(ShowFps, "ShowFps");
    members.Add<_cBool>(ShowClassExplorerOnStartup, "ShowClassExplorerOnStartup");
    members.Add<_cBool>(ControlViewerWithGamepad, "ControlViewerWithGamepad");
    members.Add<_cBool>(Multithreading, "Multithreading");
    members.Add<_cBool>(Mute, "Mute");
    members.AddObject(ClearColor, "ClearColor");
    members.Add<_cSliderRangedF>(TimeScale, "TimeScale");
    members.AddButton(&cSettings::GenFont, "&cSettings::GenFont");
    members.AddButton(&cSettings::SaveLogToFile, "&cSettings::SaveLogToFile");
    members.Add<_cStr>(Title, "Title");
    members.AddButton(&cSettings::ImportParticle, "&cSettings::ImportParticle");
    members.AddSeparator("Unused Resources");
    members.AddEnum(Resources, "Resources", cEnums::Get("cSettings_Resources"));
    members.AddButton(&cSettings::ListUnused, "&cSettings::ListUnused");
    members.AddSeparator("Precompile Shaders");
    members.AddEnum(ShadersPlatform, "Platform", cEnums::Get("cSettings_ShadersPlatform"));
    members.AddButton(&cSettings::PrecompileShaders, "&cSettings::PrecompileShaders");
    members.AddSeparator("Mobile Platform");
    NoSaveMode = 1;
    members.Add<_cBool>(LowQuality, "LowQuality");
    NoSaveMode = 1;
    members.Add<_cBool>(HomeButtonOnTheRight, "HomeButtonOnTheRight");
    NoSaveMode = 1;
    members.Add<_cBool>(HomeButtonOnTheLeft, "HomeButtonOnTheLeft");
    members.AddSeparator("Build Data");
    // The second of this name, as in all files there are: what they say of it is read into the first.
    members.AddEnum(Platform, "Platform", cEnums::Get("cSettings_Platform"));
    members.Add<_cBool>(IncludeNormalMaps, "Include Normal Maps");
    members.AddButton(&cSettings::BuildData, "&cSettings::BuildData");
}

int cSettings::AddToWidgets() {
    return cWidgets::AddWidget(new SettingsWidget, 0);
}

void cSettings::OnRender() {
    static bool Startup = true;
    if (std::exchange(Startup, false) && ShowClassExplorerOnStartup) {
        cClassExplorer::ToggleClassExplorer();
    }
    UpdateFpsDisplay();
    cTimer::TimeScale = TimeScale.Value;
}

void cSettings::UpdateFpsDisplay() {
    // When the application frees all widgets, another one may get the id.
    const bool exists = m_FpsDisplayID != -1 && cWidgets::GetWidget(m_FpsDisplayID) == m_FpsDisplay;
    if (ShowFps && !exists) {
        auto display = std::make_unique<cFpsDisplay>(-1, 10.0f, -10.0f);
        m_FpsDisplayID = cWidgets::AddWidget(display.get(), 4);
        m_FpsDisplay = m_FpsDisplayID == -1 ? nullptr : display.release();
    } else if (!ShowFps) {
        if (exists) {
            cWidgets::FreeWidget(m_FpsDisplayID, true);
        }
        m_FpsDisplayID = -1;
    }
}

bool cSettings::OnButtonDown(int code) {
    if (code != cInput::Tilde || !Console) {
        return false;
    }
    cLog::ShowDialog(cLog::Mode::Message);
    return true;
}

void cSettings::ReloadTextures() {
    if (cRender::GetInstance()) {
        cRender::ReloadTextures();
    }
}

void cSettings::ReloadModels() {
    cIO::ReloadModels();
}

void cSettings::ReloadAnims() {
    cIO::ReloadAnims();
}

void cSettings::ReloadCameras() {
    cIO::ReloadCameras();
}

void cSettings::ReloadSounds() {}

void cSettings::ReloadShaders() {
    if (cRender::GetInstance()) {
        cRender::ReloadShaders();
    }
}

void cSettings::SaveLogToFile() {
    cLog::SaveToFile("Log.txt");
}

void cSettings::PrecompileShaders() {
    const cStr text = cStr::Format("Are you sure you want to precompile shaders for \"%s\" platform ?",
                                   cEnums::Get("cSettings_ShadersPlatform")->GetName(ShadersPlatform));
    if (cMessageBox::YesNo("Confirm Precompile Shaders", text)) {
        cRender::PrecompileShaders(ShadersPlatform);
    }
}

void cSettings::GoToScene(const char* xmlFilePn) {
    cMain_LoadSceneXmlFilePn = xmlFilePn;
    cMain_LoadSceneEnableIntro = true;
}

void cSettings::ReturnToMenuScene() {
    cMain_LoadSceneXmlFilePn = MenuSceneXmlFile;
    cMain_LoadSceneEnableIntro = false;
}

} // namespace trellis
