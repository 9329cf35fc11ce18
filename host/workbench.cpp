// The workbench: a window in which a person looks at models, moves them, and edits everything in the class explorer.
//
//     workbench DATA [PATH]                                   DATA holds Fonts/ and Textures/; PATH is a scene's XML,
//     workbench --headless --script FILE [--shot FILE]        a folder of models, or one model. Without a window a
//               [--resolved FILE] DATA [PATH]                 script of input (InputScript.h) plays the person.
//
// Alt and a mouse button orbit, track and dolly, the left one alone selects. 0 to 4 choose the handles, F frames what
// is selected, Delete deletes it, P pauses; F1 shows and hides the form of buttons, F9 the class explorer, F10 the
// settings; F12 saves a picture; Control with O and S opens and saves the scene.
#include "files/SourceFolder.h"
#include "foundation/cImmortal.h"
#include "foundation/cMain.h"
#include "host/Daylight.h"
#include "host/FormParts.h"
#include "host/HandleParts.h"
#include "host/InputScript.h"
#include "host/cSoftwareDevice.h"
#include "host/cWorkbench.h"
#include "image/cImage.h"
#include "render/cRender.h"
#include "tests/foundation/FakeClock.h"
#include "ui/cTheme.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#if defined(TRELLIS_WINDOW)
#include "host/HostWindow.h"
#endif

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

namespace trellis {

namespace {

constexpr int s_Width = 1280, s_Height = 720;

cSoftwareDevice* s_Device = nullptr; // the front end's
cWorkbench* s_Workbench = nullptr;
cWorkbench::Driver s_Driver;
cImmortal<cStr> s_Title __attribute__((init_priority(300))) ("Trellis workbench");

void Resize(int width, int height) {
    s_Device->SetSize(width, height);
    s_Workbench->Resize(width, height);
}

bool SavePicture(const std::string& path) {
    cImage picture;
    cRender::ScreenShot(&picture);
    return cIO::SaveImage(path.c_str(), picture);
}

std::string Absolute(const char* path) {
    std::error_code error;
    return path && *path ? std::filesystem::absolute(path, error).string() : "";
}

} // namespace

// ---- The hooks of the framework

void cMain_OnPreInit() {}
int cMain_OnSetInitialWindowSize(int* width, int* height, int*, int*) {
    *width = s_Width;
    *height = s_Height;
    return 1;
}
void cMain_OnInit() {
    s_Workbench = new cWorkbench(s_Driver);
}
void cMain_OnRender(const cRect&) {} // the scene is one of the widgets
void cMain_OnFree() {
    delete s_Workbench;
    s_Workbench = nullptr;
}
void cMain_OnPostFree() {}
int cMain_OnClose() {
    return s_Workbench->MayClose();
}
void cMain_OnActivate() {}
void cMain_OnCrash() {}
void cMain_OnDrop(const char* filePn) {
    s_Workbench->Open(filePn);
}
void cMain_OnDropURL(const char*) {}
void cMain_OnDownloadProgress(int) {}
void cMain_OnInitPath(cStr*) {}

constinit const cStr& cMain_Title = s_Title.Value;
constinit cStr cMain_LoadSceneXmlFilePn;
constinit bool cMain_LoadSceneEnableIntro = false;

namespace {

// ---- With a window

#if defined(TRELLIS_WINDOW)

/// Draws while something happens, and for a second after: what grows and fades comes to rest. Then it waits.
class WindowLoop {
public:
    explicit WindowLoop(HostWindow* window) : m_Window(window) {}

    bool Next() {
        constexpr int IdleMs = 500, TickingMs = 100, Settling = 60;
        for (;;) {
            m_Window->Poll();
            if (!m_Window->GetFailure().empty()) {
                return false;
            }
            if (HostDialogs::IsOpen()) {
                m_Window->TakeClose(); // wants its answer first
            }
            if (m_Window->TakeChange() || s_Workbench->IsMoving()) {
                m_Busy = Settling;
            }
            if (m_Busy > 0) {
                m_Busy--;
                break;
            }
            const bool isTicking = cWidgets::IsCaptured() || s_Workbench->IsSaying(); // a caret blinks, a sentence goes
            m_Window->Wait(isTicking ? TickingMs : IdleMs);
            m_Busy = isTicking ? 1 : 0;
        }
        if (m_Width != m_Window->GetWidth() || m_Height != m_Window->GetHeight()) {
            m_Width = m_Window->GetWidth();
            m_Height = m_Window->GetHeight();
            Resize(m_Width, m_Height);
        }
        m_Start = std::chrono::steady_clock::now();
        cInput::Acquire();
        return true;
    }
    void Show() {
        constexpr auto FrameTime = std::chrono::microseconds(1'000'000 / 60);
        m_Window->Show(s_Device->GetBackBuffer());
        std::this_thread::sleep_until(m_Start + FrameTime);
    }

private:
    HostWindow* m_Window;
    int m_Width = 0, m_Height = 0, m_Busy = 0;
    std::chrono::steady_clock::time_point m_Start;
};

int RunInWindow(const std::string& path) {
    int width = 0, height = 0, minWidth = 0, minHeight = 0;
    cMain_OnSetInitialWindowSize(&width, &height, &minWidth, &minHeight);
    std::string error;
    const auto window = HostWindow::Open(cMain_Title, width, height, &error);
    if (!window) {
        std::fprintf(stderr, "workbench: %s\n", error.c_str());
        return 1;
    }
    WindowLoop loop(window.get());
    s_Driver.Next = [&loop] { return loop.Next(); };
    s_Driver.Show = [&loop] { loop.Show(); };
    HostWindow::AddTo(&s_Driver.Host);
    cMain_OnInit();
    if (!s_Workbench->GetTheme()) {
        window->SetTitle("Trellis workbench - there are no fonts in the data folder");
    }
    Resize(width, height);
    if (!path.empty()) {
        cMain_OnDrop(path.c_str());
    }
    while (s_Workbench->RunFrame()) {
        if (window->TakeClose() && cMain_OnClose()) {
            break;
        }
    }
    if (!window->GetFailure().empty()) {
        s_Workbench->Rescue();
    }
    cMain_OnFree();
    if (!window->GetFailure().empty()) {
        std::fprintf(stderr, "workbench: %s\n", window->GetFailure().c_str());
        return 1;
    }
    return 0;
}

#else

int RunInWindow(const std::string&) {
    std::fprintf(stderr, "workbench: built without a window system; --headless works.\n");
    return 1;
}

#endif

// ---- Without one

struct Options {
    bool IsHeadless = false;
    const char* Script = nullptr;
    const char* Shot = nullptr;
    const char* Resolved = nullptr;
    const char* Data = nullptr;
    const char* Path = nullptr;
};

int RunScript(const Options& options) {
    InputScript script;
    std::string error;
    if (!script.Load(options.Script, &error) || (options.Resolved && !script.Trace(options.Resolved, &error))) {
        std::fprintf(stderr, "workbench: %s\n", error.c_str());
        return 1;
    }
    cFakeClock clock;
    const InputScript::Listener listener{
        Resize,
        [](const std::string& name, cVec2* at) {
            return FindInForms(name, at) || FindHandle(name, at) || s_Workbench->Find(name, at);
        },
        [](const std::string& name) { return SavePicture(Absolute((name + ".bmp").c_str())); },
    };
    s_Driver.Next = [&] {
        constexpr long long FrameUs = 1'000'000 / 60;
        clock.Advance(FrameUs);
        return script.Next(listener, &error);
    };
    s_Driver.Show = [] {};
    cMain_OnInit();
    Resize(s_Width, s_Height);
    if (options.Path) {
        cMain_OnDrop(Absolute(options.Path).c_str());
    }
    while (s_Workbench->RunFrame()) {
    }
    if (error.empty() && options.Shot && !SavePicture(Absolute(options.Shot))) {
        error = std::string("cannot save ") + options.Shot;
    }
    cMain_OnFree();
    if (!error.empty()) {
        std::fprintf(stderr, "workbench: %s\n", error.c_str());
    }
    return error.empty() ? 0 : 1;
}

bool Parse(int argc, char** argv, Options* out) {
    const struct {
        const char* Name;
        const char** Value;
    } options[] = {{"--script", &out->Script}, {"--shot", &out->Shot}, {"--resolved", &out->Resolved}};
    for (int i = 1; i < argc; i++) {
        if (std::strcmp(argv[i], "--headless") == 0) {
            out->IsHeadless = true;
            continue;
        }
        const char** value = nullptr;
        for (const auto& option : options) {
            if (std::strcmp(argv[i], option.Name) == 0) {
                value = i + 1 < argc ? option.Value : nullptr;
                i++;
            }
        }
        if (!value && i < argc && argv[i][0] != '-') {
            value = !out->Data ? &out->Data : !out->Path ? &out->Path : nullptr;
        }
        if (!value) {
            return false;
        }
        *value = argv[i];
    }
    return out->Data && out->IsHeadless == (out->Script != nullptr);
}

int Run(const Options& options) {
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(Absolute(options.Data).c_str());
    RegisterDaylight();
    cRender::SetFactory([](int) -> cRender::Stub* { return s_Device = new cSoftwareDevice(s_Width, s_Height); });
    if (!cRender::Init(0)) {
        std::fprintf(stderr, "workbench: there is no memory for the pictures.\n");
        return 1;
    }
    cTheme::Init();
    const int result = options.IsHeadless ? RunScript(options) : RunInWindow(Absolute(options.Path));
    cRender::Free();
    return result;
}

} // namespace

} // namespace trellis

int main(int argc, char** argv) {
    trellis::Options options;
    if (!trellis::Parse(argc, argv, &options)) {
        std::fprintf(stderr, "usage: workbench [--headless --script FILE [--shot FILE] [--resolved FILE]] DATA"
                             " [SCENE.Xml|FOLDER|MODEL]\n");
        return 2;
    }
    return trellis::Run(options);
}
