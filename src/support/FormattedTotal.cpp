#include "support/FormattedTotal.h"

#include "platform/foundation/Fatal.h"
#include "platform/locale/NumberFormatter.h"
#include "support/CurrencySymbol.h"

namespace quillpad {

std::string formattedAmount(double amount) {
  NumberFormatter formatter;
  formatter.setPositiveFormat("#,###.##;");
  return forced(formatter.string(amount), "the text of an amount");
}

std::string formattedTotal(const Dictionary& row) {
  const std::string symbol = currencySymbol();
  const Value* total = row.find("total");
  const auto* amount = total != nullptr ? total->as<Number>() : nullptr;
  return symbol + formattedAmount(amount != nullptr ? amount->doubleValue() : 0);
}

}  // namespace quillpad
