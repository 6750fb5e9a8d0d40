#include "support/FormattedTotal.h"

#include "platform/foundation/Fatal.h"
#include "platform/foundation/NumberFormatter.h"
#include "support/CurrencySymbol.h"

namespace quillpad {

std::string formattedAmount(double amount) {
  foundation::NumberFormatter formatter;
  formatter.setPositiveFormat("#,###.##;");
  return foundation::forced(formatter.string(amount), "the text of an amount");
}

std::string formattedTotal(const foundation::Dictionary& row) {
  const std::string symbol = currencySymbol();
  const foundation::Value* total = row.find("total");
  const auto* amount = total != nullptr ? total->as<foundation::Number>() : nullptr;
  return symbol + formattedAmount(amount != nullptr ? amount->doubleValue() : 0);
}

}  // namespace quillpad
