#include "home/page/PageAccess.h"

#include <string_view>

#include "platform/os/Random.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

constexpr std::size_t keyBytes = 16;

std::string cookieName(std::uint16_t port) { return "quillpad-home-" + std::to_string(port); }

bool isKey(std::string_view text) {
  return text.size() == 2 * keyBytes &&
         text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// In a time that reveals nothing of where they differ.
bool areEqual(std::string_view left, std::string_view right) {
  if (left.size() != right.size()) {
    return false;
  }
  unsigned difference = 0;
  for (std::size_t at = 0; at < left.size(); ++at) {
    difference |= static_cast<unsigned>(left[at] ^ right[at]);
  }
  return difference == 0;
}

}  // namespace

PageAccess::PageAccess(const std::optional<std::filesystem::path>& folder)
    : key_(randomHex(keyBytes)) {
  if (!folder) {
    return;
  }
  const std::filesystem::path file = *folder / "page-key";
  if (const auto kept = readWholeFile(file, 2 * keyBytes); kept && isKey(*kept)) {
    key_ = *kept;
    return;
  }
  if (!makePrivateFolders(*folder)) {
    (void)writeWholeFile(file, key_);  // where this fails, the key is good for this run
  }
}

bool PageAccess::admits(const WebRequest& request, std::uint16_t port) const {
  const auto cookie = request.cookies.find(cookieName(port));
  return areEqual(request.parameter("key"), key_) ||
         (cookie != request.cookies.end() && areEqual(cookie->second, key_));
}

std::string PageAccess::cookie(std::uint16_t port) const {
  return cookieName(port) + "=" + key_ + "; Path=/; Max-Age=31536000; HttpOnly; SameSite=Lax";
}

}  // namespace quillpad::home
