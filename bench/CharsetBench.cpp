#include "parse/Charset.h"

#include <string>

#include <benchmark/benchmark.h>

namespace {

// A typical item title, in the code pages feeds mostly come in; code page 0 (UTF-8) is the
// common case, since a feed declaring utf-8 gets it.
struct Sample {
    const char* name;
    int32_t codePage;
    std::u16string text;
};

const Sample kSamples[] = {
    {"ascii/0", 0, u"Quarterly results beat expectations as cloud revenue grows"},
    {"utf8/0", 0, u"Zürich: Börse schließt höher, Anleger setzen auf Zinssenkung"},
    {"cyrillic/1251", 1251, u"Курс рубля укрепился на открытии торгов Московской биржи"},
    {"japanese/932", 932, u"東京株式市場で日経平均株価が続伸、半導体関連が買われる"},
};

void Decode(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    const std::string bytes = qf::WideToBytes(sample.text, sample.codePage);
    state.SetLabel(sample.name);
    for (auto _ : state) {
        benchmark::DoNotOptimize(qf::BytesToWide(bytes, sample.codePage));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(Decode)->DenseRange(0, std::size(kSamples) - 1);

void Encode(benchmark::State& state) {
    const Sample& sample = kSamples[state.range(0)];
    state.SetLabel(sample.name);
    for (auto _ : state) {
        benchmark::DoNotOptimize(qf::WideToBytes(sample.text, sample.codePage));
    }
}
BENCHMARK(Encode)->DenseRange(0, std::size(kSamples) - 1);

} // namespace
