#include "application/SignedInAccount.h"

#include <array>
#include <gnutls/crypto.h>
#include <optional>
#include <string>

#include "platform/foundation/Fatal.h"
#include "platform/foundation/Hex.h"
#include "platform/foundation/LateLibrary.h"
#include "platform/settings/UserDefaults.h"
#include "support/SharedSettings.h"

namespace quillpad::application {
namespace {

// The home screen's server has loaded it already.
constexpr const char* libgnutls = "libgnutls.so.30";
QUILLPAD_LATE_FUNCTION(libgnutls, gnutls_hash_fast);

std::string markOf(const std::string& businessId) {
  std::array<unsigned char, 32> hash{};
  if (gnutls_hash_fast(GNUTLS_DIG_SHA256, businessId.data(), businessId.size(), hash.data()) != 0) {
    fatal("the account's mark cannot be computed");
  }
  std::string mark;
  for (const unsigned char byte : hash) {
    mark += hexByte(byte);
  }
  return mark;
}

// A store that cannot be read, perhaps because someone is writing it, tells nothing.
std::optional<std::string> currentMark() {
  const auto settings = UserDefaults::open(appGroup());
  if (!settings) {
    return settings.error() == SettingsError::absent ? std::optional<std::string>("")
                                                     : std::nullopt;
  }
  const auto textOf = [&](const char* key) {
    const auto object = settings->object(key);
    const auto* text = object ? object->as<std::string>() : nullptr;
    return text == nullptr ? std::string() : *text;
  };
  const std::string businessId = textOf(businessIdKey);
  const bool isSignedIn = !businessId.empty() && !textOf(tokenKey).empty();
  return isSignedIn ? markOf(businessId) : std::string();
}

}  // namespace

home::Account signedInAccount() {
  return {
      .mark = currentMark,
      .store = UserDefaults::path(appGroup()),
      .hint =
          "Nobody is signed in: sign in with \"quillpad-home settings sign-in --business-id ID "
          "--token-file FILE\"."};
}

}  // namespace quillpad::application
