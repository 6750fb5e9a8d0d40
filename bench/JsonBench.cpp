// How reading a list answer grows with its rows.
//   build/release/bin/json_bench
#include <benchmark/benchmark.h>
#include <string>

#include "platform/foundation/Json.h"

namespace quillpad {

namespace {

// A list as the gateway sends it: a document of rows, or the same as text in an outer document.
std::string listOf(std::int64_t rows) {
  Array records;
  for (std::int64_t i = 0; i < rows; ++i) {
    records.emplace_back(Dictionary{
        {"id", i},
        {"no", "INV" + std::to_string(i)},
        {"clientName", "Näher & Söhne"},
        {"total", 1234.5 + static_cast<double>(i) / 100},
        {"createTime", "2026-03-07 09:05:03"},
        {"dueDate", "2026-04-07 00:00:00"},
        {"paid", false},
        {"remark", Null()},
    });
  }
  return writeJson(Dictionary{{"records", records}}, JsonLayout::compact).value();
}

void read(benchmark::State& state, const std::string& text) {
  for ([[maybe_unused]] const auto _ : state) {
    benchmark::DoNotOptimize(readJson(text, JsonFragments::allowed));
  }
  state.SetComplexityN(state.range(0));
  state.SetBytesProcessed(
      static_cast<std::int64_t>(text.size()) * static_cast<std::int64_t>(state.iterations()));
}

void readList(benchmark::State& state) { read(state, listOf(state.range(0))); }

void readListWithinText(benchmark::State& state) {
  read(state, writeJson(Dictionary{{"data", listOf(state.range(0))}}, JsonLayout::compact).value());
}

void readOneWideObject(benchmark::State& state) {
  std::string text = "{";
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    text += "\"key" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  }
  text.back() = '}';
  read(state, text);
}

void writeList(benchmark::State& state) {
  const Value list = readJson(listOf(state.range(0)), JsonFragments::allowed).value();
  for ([[maybe_unused]] const auto _ : state) {
    benchmark::DoNotOptimize(writeJson(list, JsonLayout::compact));
  }
  state.SetComplexityN(state.range(0));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Arg(3)->Arg(200)->Arg(2'000)->Arg(20'000)->Arg(200'000)->Complexity();
  benchmark->Unit(benchmark::kMicrosecond);
}

BENCHMARK(readList)->Apply(sizes);
BENCHMARK(readListWithinText)->Apply(sizes);
BENCHMARK(readOneWideObject)->Apply(sizes);
BENCHMARK(writeList)->Apply(sizes);

}  // namespace

}  // namespace quillpad
