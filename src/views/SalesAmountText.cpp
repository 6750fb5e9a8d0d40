#include "views/SalesAmountText.h"

#include <optional>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/NumberText.h"
#include "support/CurrencySymbol.h"
#include "support/FormattedTotal.h"

namespace quillpad {

std::string salesAmountText(const std::string& salesMonth) {
  const std::optional<double> number = doubleFromText(salesMonth);
  // Before the amount is forced: a broken currency is reported first.
  const std::string symbol = currencySymbol();
  const double amount = forced(number, R"(a number in "salesMonth")");
  std::string text = symbol + formattedAmount(amount);
  // Not "at least 9999.99": a not-a-number is capped, too.
  if (!(amount < 9999.99)) {
    text = ">" + currencySymbol() + "9,999.99";
  }
  return text;
}

}  // namespace quillpad
