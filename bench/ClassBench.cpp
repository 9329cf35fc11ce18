// The class engine beside RTTR (access by name) and cereal (objects as XML).
#include "bench/Bench.h"
#include "reflection/cClassList.h"
#include "reflection/cClassMembers.h"

#include <cereal/archives/xml.hpp>
#include <cereal/types/string.hpp>
#include <cereal/types/vector.hpp>
#include <rttr/registration>

#include <random>
#include <sstream>

using namespace trellis;

namespace {

/// Twelve members of the kinds that documents hold; S is the text type of the side.
template <class S> struct Values {
    int A, B, C, D;
    float E, F, G, H;
    bool I, J;
    S K, L;
};

class cPart : public cClass, public Values<cStr> {
    TRELLIS_CLASS(cPart)
};

class cParts : public cClass {
    TRELLIS_CLASS(cParts)

public:
    cClassList<cPart> Parts;
};

void cPart::RegisterMembers() {
    cClassMembers members(this);
    if (!members.Begin()) {
        return;
    }
    members.Add<_cInt>(A, "Count");
    members.Add<_cInt>(B, "Width");
    members.Add<_cInt>(C, "Height");
    members.Add<_cInt>(D, "Depth");
    members.Add<_cFloat>(E, "Power");
    members.Add<_cFloat>(F, "Radius");
    members.Add<_cFloat>(G, "Angle");
    members.Add<_cFloat>(H, "Weight");
    members.Add<_cBool>(I, "Visible");
    members.Add<_cBool>(J, "Locked");
    members.Add<_cStr>(K, "Title");
    members.Add<_cStr>(L, "Texture");
}

void cParts::RegisterMembers() {
    cClassMembers members(this);
    if (members.Begin()) {
        members.AddObject(Parts, "Parts");
    }
}

struct Part : Values<std::string> {
    template <class Archive> void serialize(Archive& archive) {
        archive(cereal::make_nvp("Count", A), cereal::make_nvp("Width", B), cereal::make_nvp("Height", C),
                cereal::make_nvp("Depth", D), cereal::make_nvp("Power", E), cereal::make_nvp("Radius", F),
                cereal::make_nvp("Angle", G), cereal::make_nvp("Weight", H), cereal::make_nvp("Visible", I),
                cereal::make_nvp("Locked", J), cereal::make_nvp("Title", K), cereal::make_nvp("Texture", L));
    }
};

RTTR_REGISTRATION {
    rttr::registration::class_<Part>("Part")
        .constructor<>()
        .property("Count", &Part::A)
        .property("Width", &Part::B)
        .property("Height", &Part::C)
        .property("Depth", &Part::D)
        .property("Power", &Part::E)
        .property("Radius", &Part::F)
        .property("Angle", &Part::G)
        .property("Weight", &Part::H)
        .property("Visible", &Part::I)
        .property("Locked", &Part::J)
        .property("Title", &Part::K)
        .property("Texture", &Part::L);
}

/// The same values for both sides, none of them a default, so that nothing is left out.
template <class V> void Fill(V& v, std::mt19937& random) {
    const auto number = [&] { return int(random() % 100000) + 1; };
    v.A = number(), v.B = number(), v.C = number(), v.D = number();
    v.E = number() / 8.0f, v.F = number() / 8.0f, v.G = number() / 8.0f, v.H = number() / 8.0f;
    v.I = v.J = true;
    v.K = ("part " + std::to_string(number())).c_str();
    v.L = ("Textures/Walls/brick_" + std::to_string(number()) + ".dds").c_str();
}

void FillOurs(cParts& parts, int count) {
    std::mt19937 random(7);
    for (int i = 0; i < count; i++) {
        auto* part = new cPart;
        Fill(*part, random);
        parts.Parts.Add(part);
    }
}

std::vector<Part> Theirs(int count) {
    std::mt19937 random(7);
    std::vector<Part> parts(static_cast<size_t>(count));
    for (Part& part : parts) {
        Fill(part, random);
    }
    return parts;
}

std::string Archived(const std::vector<Part>& parts) {
    std::ostringstream out;
    {
        cereal::XMLOutputArchive archive(out);
        archive(cereal::make_nvp("Parts", parts));
    }
    return out.str();
}

const cBenchCheck s_ObjectsCheck("objects come back as they went, on both sides", [] {
    cParts parts;
    FillOurs(parts, 100);
    cParts back;
    cStr text;
    parts.WriteToString(&text);
    back.ReadFromString(text);
    const std::vector<Part> theirs = Theirs(100);
    std::vector<Part> theirsBack;
    std::istringstream in(Archived(theirs));
    cereal::XMLInputArchive archive(in);
    archive(cereal::make_nvp("Parts", theirsBack));
    bool same = back.Parts.Count() == 100 && theirsBack.size() == 100;
    for (int i = 0; same && i < 100; i++) {
        const cPart& ours = *back.Parts.Get(i);
        const Part& other = theirsBack[size_t(i)];
        same = ours.D == other.D && ours.H == other.H && ours.J == other.J && ours.L.Text() == other.L;
    }
    return same;
});

void BM_SaveObjects_Ours(benchmark::State& state) {
    cParts parts;
    FillOurs(parts, int(state.range(0)));
    cStr text;
    for (auto _ : state) {
        parts.WriteToString(&text);
        benchmark::DoNotOptimize(text.Data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SaveObjects_Ours)->Arg(4000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_SaveObjects_Cereal(benchmark::State& state) {
    const std::vector<Part> parts = Theirs(int(state.range(0)));
    for (auto _ : state) {
        const std::string text = Archived(parts);
        benchmark::DoNotOptimize(text.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SaveObjects_Cereal)->Arg(4000)->Unit(benchmark::kMillisecond);

void BM_LoadObjects_Ours(benchmark::State& state) {
    cStr text;
    {
        cParts parts;
        FillOurs(parts, int(state.range(0)));
        parts.WriteToString(&text);
    }
    for (auto _ : state) {
        cParts parts;
        parts.ReadFromString(text);
        benchmark::DoNotOptimize(parts.Parts.Count());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LoadObjects_Ours)->Arg(4000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_LoadObjects_Cereal(benchmark::State& state) {
    const std::string text = Archived(Theirs(int(state.range(0))));
    for (auto _ : state) {
        std::vector<Part> parts;
        std::istringstream in(text);
        cereal::XMLInputArchive archive(in);
        archive(cereal::make_nvp("Parts", parts));
        benchmark::DoNotOptimize(parts.size());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_LoadObjects_Cereal)->Arg(4000)->Unit(benchmark::kMillisecond);

constexpr const char* s_Names[] = {"Count", "Depth"}; // the first and the fourth

void BM_SetByName_Ours(benchmark::State& state) {
    cPart part;
    int i = 0;
    for (auto _ : state) {
        cClass* kind;
        void* data;
        void* extra;
        if (part.GetElementByName(s_Names[i & 1], &kind, &data, &extra, &part)) {
            *static_cast<int*>(data) = i;
        }
        i++;
    }
    benchmark::DoNotOptimize(part.A + part.D);
}
BENCHMARK(BM_SetByName_Ours);

void BM_SetByName_Rttr(benchmark::State& state) {
    Part part{};
    int i = 0;
    const rttr::type type = rttr::type::get<Part>();
    for (auto _ : state) {
        type.set_property_value(s_Names[i & 1], part, i);
        i++;
    }
    benchmark::DoNotOptimize(part.A + part.D);
}
BENCHMARK(BM_SetByName_Rttr);

void BM_ConstructObject(benchmark::State& state) {
    for (auto _ : state) {
        cPart part;
        benchmark::DoNotOptimize(part.A);
    }
}
BENCHMARK(BM_ConstructObject);

} // namespace
