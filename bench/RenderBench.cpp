// The cost of state calls that the front end filters, beside the same calls handed straight to the device; and drawing
// on a device that does nothing.
#include "bench/BenchFonts.h"
#include "math/cRect.h"
#include "tests/render/RecordingDevice.h"

#include <string>

#include <benchmark/benchmark.h>

using namespace trellis;

namespace {

/// Counts what reaches it.
class CountingDevice : public RecordingDevice {
public:
    CountingDevice() { Quiet = true; }
    void SetDepthState(int) override { Calls++; }
    void SetClipRect(const cRect*) override { Calls++; }
    void ApplyTransforms() override { Calls++; }
    int GetTextureID(const char*) override { return 0; }
    int Calls = 0;
};

CountingDevice& Device() {
    if (!cRender::GetInstance()) {
        cRender::SetFactory([](int) -> cRender::Stub* { return new CountingDevice; });
        cRender::Init(3);
    }
    return static_cast<CountingDevice&>(*cRender::GetInstance());
}

void BM_DepthStateFiltered(benchmark::State& state) {
    CountingDevice& device = Device();
    cRender::SetDepthState(1);
    device.Calls = 0;
    for (auto _ : state) {
        cRender::SetDepthState(1);
    }
    if (device.Calls != 0) {
        state.SkipWithError("not filtered");
    }
}
BENCHMARK(BM_DepthStateFiltered);

void BM_DepthStateToDevice(benchmark::State& state) {
    CountingDevice& device = Device();
    device.Calls = 0;
    for (auto _ : state) {
        cRender::GetInstance()->SetDepthState(1);
        benchmark::ClobberMemory();
    }
    if (device.Calls == 0) {
        state.SkipWithError("no call");
    }
}
BENCHMARK(BM_DepthStateToDevice);

void BM_ClipRectFiltered(benchmark::State& state) {
    CountingDevice& device = Device();
    cRender::SetClipRect(cRect(0, 0, 100, 100));
    device.Calls = 0;
    float jitter = 0;
    for (auto _ : state) {
        jitter = 0.0005f - jitter;
        cRender::SetClipRect(cRect(jitter, 0, 100, 100));
    }
    if (device.Calls != 0) {
        state.SkipWithError("not filtered");
    }
}
BENCHMARK(BM_ClipRectFiltered);

void BM_PushPopStates(benchmark::State& state) {
    Device();
    for (auto _ : state) {
        cRender::PushDepthState();
        cRender::PushBlendState();
        cRender::PushCullMode();
        cRender::PushClipRect();
        cRender::PopClipRect();
        cRender::PopCullMode();
        cRender::PopBlendState();
        cRender::PopDepthState();
    }
}
BENCHMARK(BM_PushPopStates);

int TestFont() {
    static const int s_ID = [] {
        Device();
        const BenchFonts fonts({"Bench"});
        return cRender::GetFontID("Bench");
    }();
    return s_ID;
}

constexpr const char* s_Text = "The quick brown fox jumps over the lazy dog, 0123456789 times.";

void BM_DrawString(benchmark::State& state) {
    const int font = TestFont();
    for (auto _ : state) {
        benchmark::DoNotOptimize(cRender::DrawString(font, s_Text, 10, 20, cColor::White));
    }
    state.SetItemsProcessed(state.iterations() * int(std::char_traits<char>::length(s_Text)));
}
BENCHMARK(BM_DrawString);

void BM_MeasureStringCells(benchmark::State& state) {
    const int font = TestFont();
    if (cRender::MeasureStringCells(font, s_Text).IsEmpty()) {
        state.SkipWithError("no font");
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(cRender::MeasureStringCells(font, s_Text));
    }
    state.SetItemsProcessed(state.iterations() * int(std::char_traits<char>::length(s_Text)));
}
BENCHMARK(BM_MeasureStringCells);

void BM_FillRectanglesSolid(benchmark::State& state) {
    Device();
    cList<cRect> rects;
    for (int i = 0; i < state.range(0); i++) {
        rects.Add(cRect(float(i), 0, float(i + 5), 9));
    }
    for (auto _ : state) {
        cRender::FillRectanglesSolid(rects.Data(), rects.Count(), cColor::Red);
    }
    state.SetItemsProcessed(state.iterations() * rects.Count());
}
BENCHMARK(BM_FillRectanglesSolid)->Arg(1)->Arg(64)->Arg(4096);

} // namespace
