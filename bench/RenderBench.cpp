// The cost of state calls that the front end filters, beside the same calls handed straight to the device.
#include "math/cRect.h"
#include "tests/render/RecordingDevice.h"

#include <benchmark/benchmark.h>

using namespace trellis;

namespace {

/// Counts what reaches it.
class CountingDevice : public RecordingDevice {
public:
    void SetDepthState(int) override { Calls++; }
    void SetClipRect(const cRect*) override { Calls++; }
    void ApplyTransforms() override { Calls++; }
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

} // namespace
