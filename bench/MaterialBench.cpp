// Names of 10,000 materials, as the meshes of a level bring them. The peer knows all full names beforehand; the tree
// is searched in its order with every name, since an editor may have renamed what comes first.
#include "Bench.h"

#include "mesh/cMaterial_Bump.h"
#include "mesh/cMaterials.h"

#include <algorithm>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

using namespace trellis;

namespace {

constexpr int s_Count = 10000;

struct Ours {
    explicit Ours(int perGroup) {
        cMaterial_Category* category = nullptr;
        cMaterial_Group* group = nullptr;
        for (int i = 0; i < s_Count; i++) {
            if (i % 1000 == 0) {
                Tree.Categories.Add(category = new cMaterial_Category);
            }
            if (i % perGroup == 0) {
                category->Groups.Add(group = new cMaterial_Group);
                group->GroupName = cStr::Format("Group %d", i / perGroup);
            }
            auto* material = new cMaterial_Bump;
            material->MaterialName = cStr::Format("Material %d", i % perGroup);
            group->Materials.Add(material);
        }
    }
    int Find(const std::string& name) { return Tree.GetMaterialID(name.c_str()); }

    cMaterials Tree;
};

struct Peer {
    explicit Peer(int perGroup) {
        for (int i = 0; i < s_Count; i++) {
            const int category = i / 1000, group = i % 1000 / perGroup;
            Map["group " + std::to_string(i / perGroup) + "/material " + std::to_string(i % perGroup)] =
                cMaterials::ComposeID(category, group, i % perGroup);
        }
    }
    int Find(const std::string& name) {
        Folded = name;
        for (char& c : Folded) {
            c = c >= 'A' && c <= 'Z' ? char(c + 32) : c == '.' || c == '_' || c == '\\' ? '/' : c;
        }
        const auto found = Map.find(Folded);
        return found == Map.end() ? -1 : found->second;
    }

    std::unordered_map<std::string, int> Map;
    std::string Folded;
};

std::vector<std::string> Names(int perGroup) {
    std::vector<std::string> names;
    for (int i = 0; i < s_Count; i++) {
        names.push_back("Group " + std::to_string(i / perGroup) + "_Material " + std::to_string(i % perGroup));
    }
    std::shuffle(names.begin(), names.end(), std::mt19937(1));
    return names;
}

const cBenchCheck s_Check("material names", [] {
    Ours ours(100);
    Peer peer(100);
    const auto names = Names(100);
    return std::all_of(names.begin(), names.end(),
                       [&](const auto& name) { return ours.Find(name) != -1 && ours.Find(name) == peer.Find(name); });
});

template <class T> void BM_MaterialNames(benchmark::State& state) {
    T materials(int(state.range(0)));
    const auto names = Names(int(state.range(0)));
    for (auto _ : state) {
        int sum = 0;
        for (const std::string& name : names) {
            sum += materials.Find(name);
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * s_Count);
}
BENCHMARK_TEMPLATE(BM_MaterialNames, Ours)->ArgName("per_group")->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_MaterialNames, Peer)->ArgName("per_group")->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
