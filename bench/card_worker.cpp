// Draws the real sales card ("small") and the real unpaid list with three rows ("medium") for the
// side-by-side timing: view tree in, PNG bytes out, one digit changes from card to card.
//
//   card_worker                         reads lines "CARD SCALE N I0 OUT", draws N cards with the
//                                       figures from I0 on, writes the last to OUT ("-": nowhere)
//                                       and answers with one line of JSON
//   card_worker --once CARD SCALE OUT   draws one card
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Value.h"
#include "platform/paint/Card.h"
#include "platform/paint/Pictures.h"
#include "platform/paint/PngWriter.h"
#include "platform/text/FontBook.h"
#include "platform/text/TextEngine.h"
#include "views/ListViews.h"
#include "views/SmallViews.h"

using namespace quillpad;

namespace {

using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

double milliseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

ui::View salesCard(int i) {
  return quillpad::SalesMallView{"1234." + std::to_string(i % 10), "quillpad://Report"};
}

ui::View unpaidCard(int i) {
  Array records;
  const auto add = [&](const char* name, double total) {
    Dictionary record;
    record.set("clientName", std::string(name));
    record.set("total", total + (i % 10) / 100.0);
    records.emplace_back(std::move(record));
  };
  add("Acme Studio", 1250.0);
  add("Northwind Traders", 842.5);
  add("Globex Ltd", 3019.9);
  return quillpad::UnpaidMediumView{std::move(records)};
}

class Workshop {
 public:
  Bytes draw(const std::string& card, int scale, int i) {
    const Clock::time_point start = Clock::now();
    const ui::View view = card == "small" ? salesCard(i) : unpaidCard(i);
    const Clock::time_point built = Clock::now();
    const drawing::DisplayList list = drawing::compose(
        view,
        {.kind = card,
         .family = card == "small" ? "systemSmall" : "systemMedium",
         .size = {card == "small" ? 158.0 : 338.0, 158},
         .scale = scale},
        [this](const std::string& name) { return pictures_.naturalSize(name); },
        texts_);
    const Clock::time_point composed = Clock::now();
    auto png = writer_.write(list, ui::Appearance::light);
    if (!png) {
      std::cerr << "card_worker: " << png.error() << '\n';
      std::exit(1);
    }
    split = {
        {"tree", milliseconds(built - start)},
        {"layout", milliseconds(composed - built)},
        {"raster", writer_.lastSplit().raster},
        {"encode", writer_.lastSplit().encode}};
    total = milliseconds(Clock::now() - start);
    return *std::move(png);
  }

  std::map<std::string, double> split;
  double total = 0;

 private:
  drawing::FontBook fonts_;
  drawing::TextEngine texts_{fonts_};
  drawing::Pictures pictures_{Bundle::main()};
  drawing::PngWriter writer_{fonts_, pictures_};
};

void save(const std::string& path, const Bytes& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(
          reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

std::string jsonList(const std::vector<double>& values) {
  std::ostringstream text;
  for (std::size_t i = 0; i < values.size(); ++i) {
    text << (i == 0 ? "[" : ",") << values[i];
  }
  text << "]";
  return text.str();
}

void answer(Workshop& workshop, const std::string& line) {
  std::istringstream words(line);
  std::string card;
  std::string out;
  int scale = 3;
  int count = 0;
  int first = 0;
  words >> card >> scale >> count >> first >> out;
  std::vector<double> totals;
  std::map<std::string, std::vector<double>> splits;
  Bytes png;
  for (int k = 0; k < count; ++k) {
    png = workshop.draw(card, scale, first + k + 10);
    totals.push_back(workshop.total);
    for (const auto& [part, value] : workshop.split) {
      splits[part].push_back(value);
    }
  }
  if (out != "-") {
    save(out, png);
  }
  std::cout << "{\"ms\":" << jsonList(totals) << ",\"bytes\":" << png.size() << ",\"split\":{";
  const char* separator = "";
  for (const auto& [part, values] : splits) {
    std::cout << separator << '"' << part << "\":" << jsonList(values);
    separator = ",";
  }
  std::cout << "}}\n" << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  Workshop workshop;
  if (arguments.size() == 4 && arguments[0] == "--once") {
    save(arguments[3], workshop.draw(arguments[1], std::atoi(arguments[2].c_str()), 5));
    return 0;
  }
  for (std::string line; std::getline(std::cin, line);) {
    answer(workshop, line);
  }
}
