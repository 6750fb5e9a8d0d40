#include "platform/foundation/URL.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/foundation/Hex.h"
#include "platform/foundation/Icu.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Utf8.h"

namespace quillpad {
namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// The characters that may appear in each part as they are, beside letters and digits.
constexpr std::string_view userCharacters = "-._~!$&'()*+,;=:";
constexpr std::string_view hostCharacters = "-._~!$&'()*+,;=";
constexpr std::string_view pathCharacters = "-._~!$&'()*+,;=:@/";
constexpr std::string_view queryCharacters = "-._~!$&'()*+,;=:@/?";

bool mayAppear(char c, std::string_view allowed) {
  return isLetter(c) || isDigit(c) || allowed.contains(c);
}

bool isValid(std::string_view part, std::string_view allowed) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (part[i] == '%') {
      if (i + 2 >= part.size() || !isHexDigit(part[i + 1]) || !isHexDigit(part[i + 2])) {
        return false;
      }
      i += 2;
    } else if (!mayAppear(part[i], allowed)) {
      return false;
    }
  }
  return true;
}

// A part with one character out of place is encoded again as a whole, its "%" too, as on the phone.
std::string encoded(std::string_view part, std::string_view allowed) {
  if (isValid(part, allowed)) {
    return std::string(part);
  }
  std::string text;
  for (const char c : part) {
    if (mayAppear(c, allowed)) {
      text += c;
    } else {
      text += "%" + upperHexByte(static_cast<unsigned char>(c));
    }
  }
  return text;
}

bool isScheme(std::string_view text) {
  return !text.empty() && isLetter(text.front()) && std::ranges::all_of(text, [](char c) {
    return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
  });
}

struct CloseIdna {
  void operator()(UIDNA* idna) const { uidna_close(idna); }
};

std::optional<std::string> internationalHost(std::string_view host) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UIDNA, CloseIdna> idna(
      uidna_openUTS46(UIDNA_NONTRANSITIONAL_TO_ASCII, &status));
  std::array<char, 256> text{};  // more than a host name may have
  UIDNAInfo info = UIDNA_INFO_INITIALIZER;
  const int32_t length = uidna_nameToASCII_UTF8(
      idna.get(),
      host.data(),
      static_cast<int32_t>(host.size()),
      text.data(),
      text.size(),
      &info,
      &status);
  if (U_FAILURE(status) != 0 || info.errors != 0) {
    return std::nullopt;
  }
  const std::string ascii(text.data(), static_cast<std::size_t>(length));
  return isValid(ascii, hostCharacters) ? std::optional(ascii) : std::nullopt;
}

std::optional<std::string> hostOf(std::string_view text) {
  if (text.starts_with('[')) {
    const std::string_view address = text.substr(1, text.size() - 2);
    const bool isAddress =
        text.size() > 2 && text.ends_with(']') &&
        std::ranges::all_of(address, [](char c) { return isHexDigit(c) || c == ':' || c == '.'; });
    return isAddress ? std::optional(std::string(text)) : std::nullopt;
  }
  if (isValid(text, hostCharacters)) {
    return std::string(text);
  }
  const bool isAscii =
      std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return isAscii ? std::nullopt : internationalHost(text);
}

struct Authority {
  std::string user;  // with its "@"
  std::string host;
  std::string port;  // with its ":"
};

std::optional<Authority> authorityOf(std::string_view text) {
  Authority authority;
  if (const std::size_t at = text.rfind('@'); at != std::string_view::npos) {
    authority.user = encoded(text.substr(0, at), userCharacters) + "@";
    text.remove_prefix(at + 1);
  }
  const std::size_t colon = text.find(':', text.starts_with('[') ? text.find(']') : 0);
  if (colon != std::string_view::npos) {
    if (!std::ranges::all_of(text.substr(colon + 1), isDigit)) {
      return std::nullopt;
    }
    authority.port = text.substr(colon);
  }
  std::optional<std::string> host = hostOf(text.substr(0, colon));
  if (!host) {
    return std::nullopt;
  }
  authority.host = std::move(*host);
  return authority;
}

}  // namespace

std::optional<URL> URL::parse(std::string_view text) {
  if (text.empty() || !isUtf8(text)) {
    return std::nullopt;
  }
  // Takes the front of the text up to the first of the delimiters.
  const auto takeUntil = [&text](std::string_view delimiters) {
    const std::string_view front = text.substr(0, text.find_first_of(delimiters));
    text.remove_prefix(front.size());
    return front;
  };

  URL url;
  if (const std::size_t end = text.find_first_of(":/?#");
      end != std::string_view::npos && text[end] == ':') {
    if (!isScheme(text.substr(0, end))) {
      return std::nullopt;
    }
    url.scheme_ = takeUntil(":");
    url.text_ = url.scheme_ + ":";
    text.remove_prefix(1);
  }
  if (text.starts_with("//")) {
    text.remove_prefix(2);
    std::optional<Authority> authority = authorityOf(takeUntil("/?#"));
    if (!authority) {
      return std::nullopt;
    }
    url.text_ += "//" + authority->user + authority->host + authority->port;
    url.host_ = std::move(authority->host);
  }
  url.text_ += encoded(takeUntil("?#"), pathCharacters);
  if (text.starts_with('?')) {
    text.remove_prefix(1);
    url.text_ += "?" + encoded(takeUntil("#"), queryCharacters);
  }
  if (text.starts_with('#')) {
    url.text_ += "#" + encoded(text.substr(1), queryCharacters);
  }
  return url;
}

}  // namespace quillpad
