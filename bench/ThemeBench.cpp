// A frame of 200 controls, drawn by each theme on a device that does nothing, in parts a second; and what it allocates.
#include "bench/BenchTheme.h"
#include "tests/render/Allocations.h"

#include <benchmark/benchmark.h>

#include <vector>

using namespace trellis;

namespace {

/// Rows of a panel, as an editor has them.
std::vector<cTheme::DrawArgs> Controls(int count) {
    using Parts = cTheme::Parts;
    constexpr Parts::Enum s_Parts[] = {Parts::Button, Parts::Slider, Parts::CheckBox, Parts::ComboBox,
                                       Parts::Edit,   Parts::Label,  Parts::Panel,    Parts::Separator};
    std::vector<cTheme::DrawArgs> controls{size_t(count)};
    for (int i = 0; i < count; i++) {
        cTheme::DrawArgs& args = controls[size_t(i)];
        const float y = float(i * 30);
        args.Part = s_Parts[size_t(i) % std::size(s_Parts)];
        args.Clip = cRect(0, 0, 500, 10000);
        args.Rect = cRect(10, y, 400, y + 26);
        args.LabelRect = cRect(10, y, 150, y + 26);
        args.ValueRect = cRect(160, y, 400, y + 26);
        args.TextRect = cRect(165, y, 395, y + 26);
        args.ThumbRect = cRect(200, y, 220, y + 26);
        args.Text = "Roughness";
        args.Value = "0.250";
        args.Activity = 1;
    }
    return controls;
}

void BM_ThemeFrame(benchmark::State& state) {
    const cTheme& theme = BenchTheme(state.range(0) == 1);
    const std::vector<cTheme::DrawArgs> controls = Controls(200);
    const auto frame = [&] {
        for (const cTheme::DrawArgs& args : controls) {
            theme.Draw(args);
        }
    };
    frame();
    const int before = AllocationCount();
    frame();
    state.counters["allocations"] = AllocationCount() - before;
    for (auto _ : state) {
        frame();
    }
    state.SetLabel(state.range(0) == 1 ? "Fragile" : "WindowsStandard");
    state.SetItemsProcessed(state.iterations() * int(controls.size()));
}
BENCHMARK(BM_ThemeFrame)->Arg(0)->Arg(1);

} // namespace
