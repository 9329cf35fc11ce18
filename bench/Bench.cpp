#include "Bench.h"

#include <cstdio>
#include <utility>
#include <vector>

namespace {

std::vector<std::pair<const char*, bool (*)()>>& Checks() {
    static std::vector<std::pair<const char*, bool (*)()>> s_Checks;
    return s_Checks;
}

} // namespace

cBenchCheck::cBenchCheck(const char* name, bool (*check)()) {
    Checks().emplace_back(name, check);
}

int main(int argc, char** argv) {
    for (const auto& [name, check] : Checks()) {
        if (!check()) {
            std::fprintf(stderr, "%s: the two sides give different answers\n", name);
            return 1;
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
