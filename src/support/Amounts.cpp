#include "support/Amounts.h"

#include <optional>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Locale.h"
#include "platform/locale/NumberFormatter.h"
#include "support/SharedSettings.h"

namespace quillpad {
namespace {

std::string symbolOf(const std::string& currency) {
  std::string symbol = currency.substr(0, currency.find('-'));
  std::erase(symbol, ' ');
  return symbol;
}

}  // namespace

std::string currencySymbol() {
  if (const std::string& chosen = scopedCurrency(); !chosen.empty()) {
    return symbolOf(chosen);
  }
  const std::optional<Value> business = readSharedObject(businessKey);
  const auto* members = business ? business->as<Dictionary>() : nullptr;
  const Value* currency = members != nullptr ? members->find(currencyKey) : nullptr;
  if (currency == nullptr) {
    return "$";
  }
  return symbolOf(forcedAs<std::string>(*currency, "the current business's \"currency\""));
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
