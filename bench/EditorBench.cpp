// The class explorer on an object of 500 members: a frame, a frame that makes all controls anew, an undo.
#include "bench/BenchTheme.h"
#include "editor/cClassExplorer.h"
#include "foundation/cTimer.h"
#include "reflection/cClassMembers.h"
#include "tests/render/Allocations.h"
#include "ui/cControl.h"
#include "ui/cForm.h"
#include "ui/cToolBar.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <benchmark/benchmark.h>

using namespace trellis;

namespace {

constexpr int Members = 500;

class Large : public cClass {
    TRELLIS_CLASS(Large)

public:
    float Numbers[Members / 5];
    int Steps[Members / 5];
    bool Flags[Members / 5];
    cStr Texts[Members / 5];
    float Places[Members / 5][3];
};

void Large::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    for (int i = 0; i < Members / 5; i++) {
        members.Add<_cFloat>(Numbers[i], cStr::Format("Number%d", i));
        members.AddRanged<_cSliderI>(Steps[i], cStr::Format("Step%d", i), 0, 10);
        members.Add<_cBool>(Flags[i], cStr::Format("Flag%d", i));
        members.Add<_cStr>(Texts[i], cStr::Format("Text%d", i));
        members.Add<_cFloat3>(Places[i], cStr::Format("Place%d", i));
    }
}

class Explorer {
public:
    Explorer() {
        BenchTheme(false);
        m_Viewer.Viewport = {0, 0, 1280, 720};
        cRender::SetViewer(&m_Viewer);
        cClassExplorer::AddObject("Large", &Object, "");
        cClassExplorer::ToggleClassExplorer();
        for (int i = 0; i < 5; i++) {
            Frame();
        }
    }
    ~Explorer() {
        cClassExplorer::RemoveObject(&Object);
        cClassExplorer::ToggleClassExplorer();
        cWidgets::FreeAll();
        cRender::SetViewer(nullptr);
    }
    void Frame() {
        cTimer::Acquire();
        cInput::Acquire();
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
        cWidgets::Render(-1);
    }
    void Press(const char* caption) {
        cForm* form = cForm::s_Forms[0];
        for (cWnd* wnd : form->m_ToolBar->m_Children) {
            if (static_cast<cControl*>(wnd)->m_Text == caption) {
                form->MsgProc(cWidgets::GetWidgetID(wnd), cControl::Pressed, nullptr, nullptr);
                return;
            }
        }
    }

    Large Object;

private:
    cViewer m_Viewer;
};

void BM_Explorer_Frame(benchmark::State& state) {
    Explorer explorer;
    const int before = AllocationCount();
    for (auto _ : state) {
        explorer.Frame();
    }
    state.counters["allocations"] =
        benchmark::Counter(double(AllocationCount() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_Explorer_Frame)->Unit(benchmark::kMicrosecond);

void BM_Explorer_ReCreateControls(benchmark::State& state) {
    Explorer explorer;
    for (auto _ : state) {
        cClassExplorer::ReCreateControls();
        explorer.Frame();
    }
}
BENCHMARK(BM_Explorer_ReCreateControls)->Unit(benchmark::kMicrosecond);

void BM_Explorer_Undo(benchmark::State& state) {
    Explorer explorer;
    cClassExplorer::UndoRedoNode node;
    node.Float = &explorer.Object.Places[Members / 5 - 1][2]; // the last one
    cClassExplorer::Object& object = cClassExplorer::GetObjects()[0];
    for (auto _ : state) {
        object.UndoIndex = object.Undo.IsEmpty() ? object.Undo.Add(node) : 0;
        explorer.Press("Undo");
        explorer.Frame();
    }
}
BENCHMARK(BM_Explorer_Undo)->Unit(benchmark::kMicrosecond);

} // namespace
