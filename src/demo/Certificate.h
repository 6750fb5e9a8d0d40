// The gateway's own certificate: made at the first start, kept in the state folder, renewed when
// it has run out. Who trusts the file trusts the gateway.
#pragma once

#include <expected>
#include <filesystem>
#include <string>

namespace quillpad::demo {

struct Certificate {
  std::string certificate;  // PEM
  std::string key;          // PEM

  // The file that clients are told to trust.
  static std::filesystem::path file(const std::filesystem::path& stateFolder);

  // The kept certificate and key, or new ones for localhost, 127.0.0.1 and ::1, written before they
  // are returned. On failure one sentence for a person.
  static std::expected<Certificate, std::string> loadOrMake(
      const std::filesystem::path& stateFolder);
};

}  // namespace quillpad::demo
