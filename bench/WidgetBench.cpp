// A frame of 300 controls in one form beside Dear ImGui's of as many, in widgets a second; events through all layers.
#include "bench/BenchTheme.h"
#include "foundation/cTimer.h"
#include "tests/render/Allocations.h"
#include "ui/cButton.h"
#include "ui/cCheckBox.h"
#include "ui/cComboBox.h"
#include "ui/cEdit.h"
#include "ui/cForm.h"
#include "ui/cLabel.h"
#include "ui/cPanel.h"
#include "ui/cSeparator.h"
#include "ui/cSlider.h"
#include "ui/cWidgets.h"
#include "view/cViewer.h"

#include <benchmark/benchmark.h>
#include <imgui.h>

using namespace trellis;

namespace {

constexpr int Widgets = 300;
constexpr float Width = 800, Height = 12000; // all are in view

/// What both sides show.
struct Values {
    float Number = 0.25f, Min = 0, Max = 1;
    bool Flag = true;
    int Choice = 1;
    cStr Text{"harbour"};
    char Buffer[32] = "harbour";
};

cInput::MouseState s_Mouse;

void FillPanel(cPanel* panel, Values* values) {
    const float *min = &values->Min, *max = &values->Max;
    cList<cStr> items;
    for (const char* item : {"Nearest", "Bilinear", "Cubic"}) {
        items.Add(item);
    }
    for (int i = 0; i < Widgets; i++) {
        const auto make = [&]() -> cWnd* {
            switch (i % 8) {
            case 0:
                return new cButton(panel, "Roughness", 0, 0, 0, true, true);
            case 1:
                return new cSlider(panel, &values->Number, min, max, "Roughness", 0, 0, 0, true, true);
            case 2:
                return new cCheckBox(panel, &values->Flag, "Roughness", 0, 0, 0, true, true);
            case 3:
                return new cComboBox(panel, &values->Choice, items, "Roughness", 0, 0, 0, true, true);
            case 4:
                return new cEdit(panel, &values->Number, min, max, "Roughness", 0, 0, 0, true, true);
            case 5:
                return new cLabel(panel, &values->Text, "Roughness", 0, 0, 0, true, true);
            case 6:
                return new cSeparator(panel, "Roughness", true);
            default:
                return new cEdit(panel, &values->Text, "Roughness", 0, 0, 0, true, true);
            }
        };
        panel->AddChild(make());
    }
}

/// The mouse goes down the column, so that what is hot changes.
cVec2 MouseAt(int frame) {
    return {400, float(frame * 7 % int(Height))};
}

void BM_FrameOf300(benchmark::State& state) {
    const cTheme& theme = BenchTheme(state.range(0) == 1);
    cViewer viewer;
    viewer.Viewport = {0, 0, Width, Height};
    viewer.Update(false);
    cRender::SetViewer(&viewer);
    cInput::Samplers samplers;
    samplers.Mouse = [](cInput::MouseState* out) { *out = s_Mouse; };
    cInput::SetSamplers(samplers);
    Values values;
    auto* form = new cForm(nullptr, "Form", {10, 10, Width - 10, Height - 10}, &theme);
    cWidgets::AddWidget(form, 3);
    auto* panel = new cPanel(form, "", 0, 0, true, true);
    form->AddChild(panel);
    FillPanel(panel, &values);

    int frames = 0;
    const auto frame = [&] {
        s_Mouse.Position = MouseAt(frames++);
        cTimer::Acquire();
        cInput::Acquire();
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
        cWidgets::Render(-1);
    };
    for (int i = 0; i < 300; i++) { // fades, and what is kept for later frames
        frame();
    }
    const int before = AllocationCount();
    for (int i = 0; i < 100; i++) {
        frame();
    }
    state.counters["allocations"] = AllocationCount() - before;
    for (auto _ : state) {
        frame();
    }
    cWidgets::FreeAll();
    cRender::SetViewer(nullptr);
    cInput::SetSamplers({});
    state.SetLabel(state.range(0) == 1 ? "Fragile" : "WindowsStandard");
    state.SetItemsProcessed(state.iterations() * Widgets);
}
BENCHMARK(BM_FrameOf300)->Arg(0)->Arg(1);

void BM_FrameOf300_ImGui(benchmark::State& state) {
    ImGui::CreateContext();
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.DisplaySize = {Width, Height};
    unsigned char* pixels;
    int width, height;
    io.Fonts->GetTexDataAsRGBA32(&pixels, &width, &height);
    Values values;
    int frames = 0, vertices = 0;
    const auto frame = [&] {
        const cVec2 mouse = MouseAt(frames++);
        io.MousePos = {mouse.x, mouse.y};
        io.DeltaTime = 1.0f / 60;
        ImGui::NewFrame();
        ImGui::SetNextWindowPos({0, 0});
        ImGui::SetNextWindowSize({Width, Height});
        ImGui::Begin("Form");
        for (int i = 0; i < Widgets; i++) {
            ImGui::PushID(i);
            switch (i % 8) {
            case 0:
                ImGui::Button("Roughness");
                break;
            case 1:
                ImGui::SliderFloat("Roughness", &values.Number, values.Min, values.Max);
                break;
            case 2:
                ImGui::Checkbox("Roughness", &values.Flag);
                break;
            case 3:
                ImGui::Combo("Roughness", &values.Choice, "Nearest\0Bilinear\0Cubic\0");
                break;
            case 4:
                ImGui::InputFloat("Roughness", &values.Number);
                break;
            case 5:
                ImGui::LabelText("Roughness", "%s", values.Buffer);
                break;
            case 6:
                ImGui::Separator();
                break;
            default:
                ImGui::InputText("Roughness", values.Buffer, sizeof(values.Buffer));
            }
            ImGui::PopID();
        }
        ImGui::End();
        ImGui::Render();
        vertices = ImGui::GetDrawData()->TotalVtxCount;
    };
    for (int i = 0; i < 300; i++) {
        frame();
    }
    for (auto _ : state) {
        frame();
    }
    state.counters["vertices"] = vertices;
    ImGui::DestroyContext();
    state.SetItemsProcessed(state.iterations() * Widgets);
}
BENCHMARK(BM_FrameOf300_ImGui);

/// A widget in each layer, none of which consumes anything.
void BM_EventsThroughAllLayers(benchmark::State& state) {
    for (int layer = 0; layer < cWidgets::LayerCount; layer++) {
        cWidgets::AddWidget(new cWidget, layer);
    }
    constexpr int Events = 10'000;
    for (auto _ : state) {
        for (int i = 0; i < Events; i++) {
            auto* event = new cInput::Event;
            event->Type = cInput::MouseMoveEvent;
            event->Position = {float(i), 1};
            cInput::AddEvent(event);
        }
        cWidgets::HandleInputEvents();
        cInput::FreeEvents();
    }
    cWidgets::FreeAll();
    state.SetItemsProcessed(state.iterations() * Events);
}
BENCHMARK(BM_EventsThroughAllLayers);

} // namespace
