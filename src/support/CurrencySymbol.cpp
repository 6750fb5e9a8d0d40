#include "support/CurrencySymbol.h"

#include <optional>

#include "platform/foundation/Fatal.h"
#include "platform/settings/UserDefaults.h"
#include "support/AppGroup.h"

namespace quillpad {
namespace {

constexpr const char* defaultSymbol = "$";

}  // namespace

std::string currencySymbol() {
  const auto settings = UserDefaults::open(appGroup());
  if (!settings) {
    return defaultSymbol;
  }
  const auto business = settings->object("currentBusiness");
  const auto* members = business ? business->as<Dictionary>() : nullptr;
  const auto* currency = members != nullptr ? members->find("currency") : nullptr;
  if (currency == nullptr) {
    return defaultSymbol;
  }
  const auto& text = forcedAs<std::string>(*currency, "the current business's \"currency\"");
  std::string symbol = text.substr(0, text.find('-'));
  std::erase(symbol, ' ');
  return symbol;
}

}  // namespace quillpad
