// The themes on a device that does nothing, for benchmarks of what draws.
#pragma once

#include "bench/BenchFonts.h"
#include "tests/render/RecordingDevice.h"
#include "ui/cTheme.h"

namespace trellis {

class QuietDevice : public RecordingDevice {
public:
    QuietDevice() { Quiet = true; }
    int GetTextureID(const char*) override { return 0; }
};

inline const cTheme& BenchTheme(bool fragile) {
    if (!cRender::GetInstance()) {
        cRender::SetFactory([](int) -> cRender::Stub* { return new QuietDevice; });
        cRender::Init(3);
        const BenchFonts fonts({"Tahoma 8", "Tahoma B8", "Calibri 11", "Calibri 16", "Calibri B24"});
        cTheme::Init();
    }
    return fragile ? *cTheme::Fragile : *cTheme::WindowsStandard;
}

} // namespace trellis
