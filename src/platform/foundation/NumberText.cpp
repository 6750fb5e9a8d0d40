#include "platform/foundation/NumberText.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <limits>

namespace quillpad {
namespace {

constexpr std::size_t maxDigits = 38;

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

}  // namespace

std::optional<double> doubleFromText(std::string_view text) {
  static const locale_t plainLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  if (text.empty() || isBlank(text.front())) {
    return std::nullopt;
  }
  const std::string terminated(text);
  char* end = nullptr;
  const double value = strtod_l(terminated.c_str(), &end, plainLocale);
  if (end != terminated.c_str() + terminated.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<Number> wholeNumberFromText(std::string_view text) {
  const char* const begin = text.data();
  const char* const end = begin + text.size();
  std::int64_t value = 0;
  std::uint64_t large = 0;
  if (const auto read = std::from_chars(begin, end, value);
      read.ptr == end && read.ec == std::errc()) {
    return value;
  }
  if (const auto read = std::from_chars(begin, end, large);
      read.ptr == end && read.ec == std::errc()) {
    return large;
  }
  const bool negative = text.starts_with('-');
  std::string_view digits = text.substr(negative ? 1 : 0);
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  if (digits.empty() || digits.size() > maxDigits || !std::ranges::all_of(digits, isDigit)) {
    return std::nullopt;
  }
  return WideInteger{(negative ? "-" : "") + std::string(digits)};
}

std::int64_t integerValue(std::string_view text) {
  using Limits = std::numeric_limits<std::int64_t>;
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }

  std::int64_t value = 0;
  while (!text.empty() && isDigit(text.front())) {
    const int digit = text.front() - '0';
    if (__builtin_mul_overflow(value, 10, &value) ||
        __builtin_add_overflow(value, negative ? -digit : digit, &value)) {
      return negative ? Limits::min() : Limits::max();
    }
    text.remove_prefix(1);
  }
  return value;
}

std::string bytesText(std::size_t bytes) {
  constexpr std::size_t step = 1024;
  if (bytes < step) {
    return std::to_string(bytes) + " bytes";
  }
  return bytes < step * step ? std::to_string(bytes / step) + " KiB"
                             : std::to_string(bytes / (step * step)) + " MiB";
}

}  // namespace quillpad
