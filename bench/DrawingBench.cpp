// What the parts of drawing a card cost, short of pixels, and how they grow with rows and texts.
#include <benchmark/benchmark.h>
#include <memory>
#include <string>

#include "platform/foundation/Json.h"
#include "platform/foundation/Value.h"
#include "platform/layout/Layout.h"
#include "platform/paint/Card.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "platform/ui/ViewCodec.h"
#include "views/ListViews.h"
#include "views/SmallViews.h"

using namespace quillpad;

namespace {

ui::View salesCard(int i) {
  return quillpad::SalesMallView{"1234." + std::to_string(i % 10), "quillpad://Report"};
}

ui::View unpaidCard() {
  Array records;
  for (const char* name : {"Acme Studio", "Northwind Traders", "Globex Ltd"}) {
    records.emplace_back(Dictionary{{"clientName", name}, {"total", 1250.5}});
  }
  return quillpad::UnpaidMediumView{std::move(records)};
}

drawing::Size pictureSize(const std::string& /*name*/) { return {20, 20}; }

const drawing::CardRequest mediumCard{
    .kind = "UnpaidMediumWidget", .family = "systemMedium", .size = {338, 158}, .scale = 3};

// Measures that cost nothing, so that what is left is the layout.
class FreeMetrics final : public drawing::Metrics {
 public:
  drawing::Size textSize(const ui::Text& text, drawing::Size proposed) override {
    return {std::min(8.0 * static_cast<double>(text.text.size()), proposed.width), 18};
  }
  drawing::Size imageSize(const std::string& /*name*/) override { return {20, 20}; }
  double scale() const override { return 3; }
};

void buildTree(benchmark::State& state) {
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(unpaidCard());
  }
}
BENCHMARK(buildTree);

void copyTree(benchmark::State& state) {
  const ui::View view = unpaidCard();
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(ui::View(view));
  }
}
BENCHMARK(copyTree);

void encodeTree(benchmark::State& state) {
  const ui::View view = unpaidCard();
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(writeJson(ui::toValue(view), JsonLayout::compact));
  }
}
BENCHMARK(encodeTree);

void decodeTree(benchmark::State& state) {
  const auto json = writeJson(ui::toValue(unpaidCard()), JsonLayout::compact);
  while (state.KeepRunning()) {
    const auto value = readJson(*json, JsonFragments::refused);
    benchmark::DoNotOptimize(ui::viewFromValue(*value));
  }
}
BENCHMARK(decodeTree);

void layOutCard(benchmark::State& state) {
  const ui::View view = unpaidCard();
  FreeMetrics metrics;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(
        drawing::layOut(view, {338, 158}, drawing::LayoutDirection::leftToRight, metrics));
  }
}
BENCHMARK(layOutCard);

void composeSalesCard(benchmark::State& state) {
  drawing::FontBook fonts;
  drawing::TextEngine texts(fonts);
  const drawing::CardRequest request{.kind = "SalesSmallWidget", .scale = 3};
  const ui::View views[] = {salesCard(1), salesCard(2)};
  std::size_t i = 0;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(drawing::compose(views[i++ % 2], request, pictureSize, texts));
  }
}
BENCHMARK(composeSalesCard);

void composeUnpaidCard(benchmark::State& state) {
  drawing::FontBook fonts;
  drawing::TextEngine texts(fonts);
  const ui::View view = unpaidCard();
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(drawing::compose(view, mediumCard, pictureSize, texts));
  }
}
BENCHMARK(composeUnpaidCard);

// A text that has not been shaped before.
void shapeNewText(benchmark::State& state, const char* sample) {
  drawing::FontBook fonts;
  drawing::TextEngine texts(fonts);
  int i = 0;
  while (state.KeepRunning()) {
    const ui::Text text = ui::Text::verbatim(sample + std::to_string(i++));
    benchmark::DoNotOptimize(texts.measure(text, {.language = "en"}, {306, 24}));
  }
}
BENCHMARK_CAPTURE(shapeNewText, latin, "Northwind ");
BENCHMARK_CAPTURE(shapeNewText, arabic, "مرحبا بالعالم ");
BENCHMARK_CAPTURE(shapeNewText, japanese, "株式会社漢字 ");
BENCHMARK_CAPTURE(shapeNewText, emoji, "👨‍👩‍👧‍👦🇩🇪 ");

void growRows(benchmark::State& state) {
  drawing::FontBook fonts;
  drawing::TextEngine texts(fonts);
  ui::Group rows;
  for (int i = 0; i < state.range(0); ++i) {
    rows.views.push_back(ui::HStack(
        ui::Text::verbatim("Client " + std::to_string(i)),
        ui::Spacer(),
        ui::Text::verbatim("$" + std::to_string(i))));
  }
  const ui::View view = ui::VStack(std::move(rows));
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(drawing::compose(view, mediumCard, pictureSize, texts));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(growRows)->RangeMultiplier(10)->Range(3, 30000)->Complexity();

// A card as high as its text, so that all of it is shaped.
void growText(benchmark::State& state) {
  std::string characters;
  while (characters.size() < static_cast<std::size_t>(state.range(0))) {
    characters += "words that wrap ";
  }
  const ui::View view = ui::Text::verbatim(characters);
  drawing::CardRequest request = mediumCard;
  request.size.height = 30'000;
  while (state.KeepRunning()) {
    state.PauseTiming();
    drawing::FontBook fonts;
    drawing::TextEngine texts(fonts);
    state.ResumeTiming();
    benchmark::DoNotOptimize(drawing::compose(view, request, pictureSize, texts));
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(growText)->RangeMultiplier(10)->Range(100, 100'000)->Complexity();

void nestStacks(benchmark::State& state) {
  ui::View view = ui::Text::verbatim("innermost");
  for (int level = 0; level < state.range(0); ++level) {
    view = level % 2 == 0 ? ui::HStack(std::move(view), ui::Text::verbatim("beside"), ui::Spacer())
                          : ui::VStack(std::move(view), ui::Text::verbatim("below"), ui::Spacer());
  }
  FreeMetrics metrics;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(
        drawing::layOut(view, {338, 158}, drawing::LayoutDirection::leftToRight, metrics));
  }
}
BENCHMARK(nestStacks)->RangeMultiplier(2)->Range(2, 128);

}  // namespace

BENCHMARK_MAIN();
