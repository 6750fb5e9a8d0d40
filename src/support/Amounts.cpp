#include "support/Amounts.h"

#include <optional>

#include "platform/foundation/Fatal.h"
#include "platform/locale/NumberFormatter.h"
#include "support/SharedSettings.h"

namespace quillpad {

std::string currencySymbol() {
  const std::optional<Value> business = readSharedObject("currentBusiness");
  const auto* members = business ? business->as<Dictionary>() : nullptr;
  const Value* currency = members != nullptr ? members->find("currency") : nullptr;
  if (currency == nullptr) {
    return "$";
  }
  const auto& text = forcedAs<std::string>(*currency, "the current business's \"currency\"");
  std::string symbol = text.substr(0, text.find('-'));
  std::erase(symbol, ' ');
  return symbol;
}

std::string formattedAmount(double amount) {
  NumberFormatter formatter;
  formatter.setPositiveFormat("#,###.##;");
  return forced(formatter.string(amount), "the text of an amount");
}

std::string formattedTotal(const Dictionary& row) {
  const std::string symbol = currencySymbol();
  const auto* amount = row.get<Number>("total");
  return symbol + formattedAmount(amount != nullptr ? amount->doubleValue() : 0);
}

}  // namespace quillpad
