#include "host/ScriptedHost.h"

#include "files/SourceFolder.h"
#include "files/cIO.h"
#include "foundation/cTimer.h"
#include "host/FormParts.h"
#include "host/cSoftwareDevice.h"
#include "render/cRender.h"
#include "ui/cWidgets.h"

#include <cstdio>
#include <filesystem>

namespace trellis {

namespace {

cSoftwareDevice* s_Device = nullptr; // the front end's

std::string Absolute(const char* path) {
    return std::filesystem::absolute(path).string();
}

} // namespace

ScriptedHost::ScriptedHost(const char* dataFolder) {
    static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(Absolute(dataFolder).c_str());
    cRender::SetFactory([](int) -> cRender::Stub* { return s_Device = new cSoftwareDevice(640, 480); });
    m_IsReady = cRender::Init(0);
    cTheme::Init();
    cRender::SetViewer(&Viewer);
}

ScriptedHost::~ScriptedHost() {
    cRender::SetViewer(nullptr);
    cRender::Free();
}

bool ScriptedHost::Play(const char* scriptPn, const char* folder, const std::function<void()>& opened) {
    InputScript script;
    std::string error = "no device";
    bool isOpen = false;
    const InputScript::Listener listener{
        [&](int width, int height) {
            Resize(width, height);
            if (!std::exchange(isOpen, true)) {
                opened();
            }
        },
        FindInForms,
        InputScript::SaverTo(Absolute(folder)),
    };
    const bool ok = m_IsReady && script.Load(scriptPn, &error) &&
                    script.Play(
                        listener, [this] { Frame(); }, &error);
    cWidgets::FreeAll();
    if (!ok) {
        std::fprintf(stderr, "%s: %s\n", scriptPn, error.c_str());
    }
    return ok;
}

void ScriptedHost::Resize(int width, int height) {
    s_Device->SetSize(width, height);
    Viewer.Viewport = {0, 0, float(width), float(height)};
    Viewer.Update(false);
}

void ScriptedHost::Frame() {
    m_Clock.Advance(1'000'000 / 60);
    cTimer::Acquire();
    cWidgets::HandleInputEvents();
    cRender::BeginFrame();
    cRender::Clear(true, true, Background, 1);
    cRender::SetViewer(&Viewer);
    for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
        cWidgets::Render(layer);
    }
    cRender::EndFrame();
}

} // namespace trellis
