// A whole frame of the workbench at 1280 by 720, with a model of 20,000 triangles and two forms open: input, layout and
// drawing; without the way to the screen. The processors share the drawing, so it is real time that counts.
#include "Bench.h"

#include "editor/cClassExplorer.h"
#include "files/SourceFolder.h"
#include "host/Daylight.h"
#include "host/cSoftwareDevice.h"
#include "host/cWorkbench.h"
#include "render/cRender.h"
#include "ui/cTheme.h"
#include "view/cFreeViewer.h"

#include <cmath>
#include <filesystem>
#include <fstream>

using namespace trellis;

namespace {

constexpr int s_Width = 1280, s_Height = 720, s_Side = 100; // of the model: two triangles a field

/// Waves, as an OBJ file.
std::string WriteModel() {
    const auto path = std::filesystem::temp_directory_path() / "trellis_bench_waves.obj";
    std::ofstream out(path);
    out << "usemtl white\n";
    for (int y = 0; y <= s_Side; y++) {
        for (int x = 0; x <= s_Side; x++) {
            out << "v " << x * 0.2 << ' ' << std::sin(x * 0.2) + std::cos(y * 0.3) << ' ' << y * 0.2 << '\n';
        }
    }
    for (int y = 0; y < s_Side; y++) {
        for (int x = 0; x < s_Side; x++) {
            const int a = y * (s_Side + 1) + x + 1, b = a + s_Side + 1;
            out << "f " << a << ' ' << b << ' ' << b + 1 << "\nf " << a << ' ' << b + 1 << ' ' << a + 1 << '\n';
        }
    }
    return path.string();
}

/// There is one device in a process, as there is one set of themes.
cWorkbench& Program() {
    static cWorkbench* s_Program = nullptr;
    if (!s_Program) {
        static_cast<SourceFolder*>(cIO::GetSourcesMutable()[0])->SetPath(TRELLIS_DATA);
        RegisterDaylight();
        cRender::SetFactory([](int) -> cRender::Stub* { return new cSoftwareDevice(s_Width, s_Height); });
        cRender::Init(0);
        cTheme::Init();
        cWorkbench::Driver driver;
        driver.Next = [] {
            cInput::Acquire();
            return true;
        };
        driver.Show = [] {};
        s_Program = new cWorkbench(driver); // to the end of the process
        s_Program->Resize(s_Width, s_Height);
        const std::string modelPn = WriteModel();
        s_Program->Open(modelPn.c_str());
        std::filesystem::remove(modelPn);
        s_Program->ToggleForm();
        cClassExplorer::ToggleClassExplorer();
        cClassExplorer::ToggleMainMenu();
    }
    return *s_Program;
}

/// @param forms  false: they are closed
void Frame(benchmark::State& state, const cTheme* theme, bool forms) {
    cWorkbench& program = Program();
    program.SetTheme(theme);
    if (!forms) {
        cClassExplorer::ToggleClassExplorer();
        cClassExplorer::ToggleMainMenu();
    }
    for (int i = 0; i < 100; i++) {
        program.RunFrame(); // what has opened comes to rest
    }
    auto* viewer = static_cast<cFreeViewer*>(const_cast<cViewer*>(cRender::GetViewer()));
    for (auto _ : state) {
        viewer->Tumble({3, 0});
        program.RunFrame();
    }
    state.counters["triangles"] = program.GetScene().GetTriangleCount();
    if (!forms) {
        cClassExplorer::ToggleClassExplorer();
        cClassExplorer::ToggleMainMenu();
    }
}

void WorkbenchStandard(benchmark::State& state) {
    Program();
    Frame(state, cTheme::WindowsStandard, true);
}
void WorkbenchFragile(benchmark::State& state) {
    Program();
    Frame(state, cTheme::Fragile, true);
}
void WorkbenchBare(benchmark::State& state) {
    Program();
    Frame(state, cTheme::WindowsStandard, false);
}

BENCHMARK(WorkbenchBare)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WorkbenchStandard)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(WorkbenchFragile)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
