#include "platform/Text.h"

#include <benchmark/benchmark.h>

namespace {

void CaseInsensitiveNameCompare(benchmark::State& state) {
    const std::u16string a = u"lastBuildDate";
    const std::u16string b = u"LASTBUILDDATE";
    for (auto _ : state) {
        benchmark::DoNotOptimize(qf::EqualsIgnoreCase(a, b));
    }
}
BENCHMARK(CaseInsensitiveNameCompare);

} // namespace
