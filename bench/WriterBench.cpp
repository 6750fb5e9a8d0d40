// What drawing costs once a card is laid out: painting and encoding, as PNG and as SVG.
#include <benchmark/benchmark.h>
#include <string>

#include "platform/foundation/Bundle.h"
#include "platform/paint/Card.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/PngWriter.h"
#include "platform/paint/SvgWriter.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "views/SmallViews.h"

using namespace quillpad;

namespace {

class SalesCard {
 public:
  explicit SalesCard(int scale, const char* figure = "1234.5")
      : list_(drawing::compose(
            quillpad::SalesMallView{figure, "quillpad://Report"},
            {.scale = scale},
            [this](const std::string& name) { return pictures_.naturalSize(name); },
            texts_)) {}

  drawing::FontBook& fonts() { return fonts_; }
  drawing::Pictures& pictures() { return pictures_; }
  const drawing::DisplayList& list() const { return list_; }

 private:
  drawing::FontBook fonts_;
  drawing::TextEngine texts_{fonts_};
  drawing::Pictures pictures_{Bundle::main()};
  drawing::DisplayList list_;
};

void writePng(benchmark::State& state) {
  SalesCard card(static_cast<int>(state.range(0)));
  drawing::PngWriter writer(card.fonts(), card.pictures());
  double raster = 0;
  double encode = 0;
  for ([[maybe_unused]] const auto iteration : state) {
    benchmark::DoNotOptimize(writer.write(card.list(), ui::Appearance::light));
    raster += writer.lastSplit().raster;
    encode += writer.lastSplit().encode;
  }
  state.counters["raster_us"] =
      benchmark::Counter(1000 * raster, benchmark::Counter::kAvgIterations);
  state.counters["encode_us"] =
      benchmark::Counter(1000 * encode, benchmark::Counter::kAvgIterations);
}
BENCHMARK(writePng)->Arg(1)->Arg(2)->Arg(3)->Unit(benchmark::kMicrosecond);

void writeSvg(benchmark::State& state) {
  SalesCard card(2);
  for ([[maybe_unused]] const auto iteration : state) {
    benchmark::DoNotOptimize(
        drawing::writeSvg(card.list(), std::nullopt, card.fonts(), card.pictures(), "card"));
  }
}
BENCHMARK(writeSvg)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
