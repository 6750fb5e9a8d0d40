// Who may see the page. Another user of the machine can connect to the loopback address as well, so
// requests are answered to those alone who bring a key that only the home screen's owner can read:
// as the parameter "key", as in the printed address, or in the cookie that the page sets then.
// Belongs to one thread.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "home/server/WebMessages.h"

namespace quillpad::home {

class PageAccess {
 public:
  // With the key that is kept in the folder, so that open tabs go on after a restart. Where there
  // is none a new one is made, and kept if that can be.
  explicit PageAccess(const std::optional<std::filesystem::path>& folder);

  const std::string& key() const { return key_; }

  // Whether the request to the server at the port brings the key.
  bool admits(const WebRequest& request, std::uint16_t port) const;

  // The cookie as it is set. Cookies do not tell ports apart, so the port is part of its name.
  std::string cookie(std::uint16_t port) const;

 private:
  std::string key_;
};

}  // namespace quillpad::home
