// The workbench: a window in which a person looks at a model, moves it, and edits everything in the class explorer.
//
//     workbench DATA [SCENE.Xml]      DATA holds Fonts/ and Textures/
//
// Alt and a mouse button orbit, track and dolly; 0 to 4 choose the handles, F frames the model, F9 opens and closes the
// class explorer, F10 the settings; P plays the animation, F12 saves "ScreenShot.bmp".
#include "editor/cClassExplorer.h"
#include "editor/cSettings.h"
#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cTimer.h"
#include "host/Daylight.h"
#include "host/HostWindow.h"
#include "host/cSoftwareDevice.h"
#include "host/cWorkbenchScene.h"
#include "image/cImage.h"
#include "mesh/cMaterials.h"
#include "render/cRender.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "view/cFreeViewer.h"
#include "view/cManipulator.h"

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

using namespace trellis;

namespace {

cSoftwareDevice* s_Device = nullptr; // the front end's

/// The scene among the widgets, behind the handles: draws it, and has the keys of the program.
class SceneWidget : public cWidget {
public:
    SceneWidget(cWorkbenchScene* scene, cFreeViewer* viewer) : m_Scene(scene), m_Viewer(viewer) {}

    bool OnButtonDown(int code) override {
        if (code >= cInput::Key0 && code <= cInput::Key4) {
            g_ManipulatorsType = code - cInput::Key0;
            m_Scene->Transform.CreateTools();
            return true;
        }
        switch (code) {
        case cInput::F:
            m_Viewer->Frame(m_Scene->GetBounds(), m_Scene->GetPlace(), cRect::Empty);
            return true;
        case cInput::P:
            m_Scene->Play = !m_Scene->Play;
            return true;
        case cInput::F9:
            cClassExplorer::ToggleClassExplorer();
            return true;
        case cInput::F10:
            cClassExplorer::ToggleMainMenu();
            return true;
        case cInput::F12:
            SaveShot();
            return true;
        }
        return false;
    }
    void OnRender() override {
        IsMoving = m_Scene->Step(cTimer::GetFrameTimeSec());
        m_Scene->Draw(g_Settings.ShowGrid);
    }

    static inline bool IsMoving = false; ///< The picture changes by itself.

private:
    static void SaveShot() {
        cImage picture;
        cRender::ScreenShot(&picture);
        cIO::SaveImage("ScreenShot.bmp", picture);
    }

    cWorkbenchScene* m_Scene;
    cFreeViewer* m_Viewer;
};

class Workbench {
public:
    explicit Workbench(const char* scenePn) {
        cWidgets::AddWidget(m_Viewer, 0);
        cWidgets::AddWidget(new SceneWidget(&m_Scene, m_Viewer), 0);
        cSettings::AddToWidgets();
        cRender::SetViewer(m_Viewer);
        g_Settings.ShowGrid = g_Settings.ShowFps = true;
        cClassExplorer::AddObject("Scene", &m_Scene, scenePn);
        cClassExplorer::AddObject("Materials", &g_Materials, "");
        cClassExplorer::AddMenuObject("Settings", &g_Settings, "");
    }
    ~Workbench() {
        cClassExplorer::RemoveObject(&m_Scene);
        m_Scene.Transform.FreeTools();
        m_Scene.Path.FreeTools();
        cRender::SetViewer(nullptr);
        cWidgets::FreeAll();
    }

    void Resize(int width, int height) {
        s_Device->SetSize(width, height);
        m_Viewer->Viewport = {0, 0, float(width), float(height)};
        m_Viewer->Update();
    }

    /// Input has been sampled.
    void Frame() {
        cTimer::Acquire();
        cWidgets::HandleInputEvents();
        cRender::BeginFrame();
        cRender::Clear(true, true, cColor(0.62f, 0.68f, 0.74f), 1);
        cRender::SetViewer(m_Viewer);
        for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
            cWidgets::Render(layer);
        }
        cRender::EndFrame();
    }

private:
    cFreeViewer* m_Viewer = new cFreeViewer; // the manager's
    cWorkbenchScene m_Scene;
};

/// Draws while something happens, and for a second after: what grows and fades comes to rest. Then it waits.
int RunInWindow(Workbench& workbench) {
    constexpr int FrameMs = 16, IdleMs = 500, Settling = 60;
    std::string error;
    const auto window = HostWindow::Open("Trellis workbench", 1280, 720, &error);
    if (!window) {
        std::fprintf(stderr, "workbench: %s\n", error.c_str());
        return 1;
    }
    int width = 0, height = 0, busy = Settling;
    while (!window->IsClosing()) {
        window->Poll();
        if (window->TakeChange() || SceneWidget::IsMoving) {
            busy = Settling;
        }
        if (busy-- <= 0) {
            busy = 0;
            window->Wait(IdleMs);
            continue;
        }
        if (width != window->GetWidth() || height != window->GetHeight()) {
            width = window->GetWidth();
            height = window->GetHeight();
            workbench.Resize(width, height);
        }
        const auto start = std::chrono::steady_clock::now();
        cInput::Acquire();
        workbench.Frame();
        cInput::FreeEvents();
        window->Show(s_Device->GetBackBuffer());
        std::this_thread::sleep_until(start + std::chrono::milliseconds(FrameMs));
    }
    if (!window->GetFailure().empty()) {
        std::fprintf(stderr, "workbench: %s\n", window->GetFailure().c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: workbench DATA [SCENE.Xml]\n");
        return 2;
    }
    const std::string data = std::filesystem::absolute(argv[1]).string();
    const std::string scene = argc == 3 ? std::filesystem::absolute(argv[2]).string() : "";
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(data.c_str());
    RegisterDaylight();
    cRender::SetFactory([](int) -> cRender::Stub* { return s_Device = new cSoftwareDevice(1280, 720); });
    if (!cRender::Init(0)) {
        return 1;
    }
    cTheme::Init();
    int result;
    {
        Workbench workbench(scene.c_str());
        result = RunInWindow(workbench);
    }
    cRender::Free();
    return result;
}
