#include "demo/Certificate.h"

#include <array>
#include <ctime>
#include <gnutls/crypto.h>
#include <gnutls/gnutls.h>
#include <gnutls/x509.h>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "platform/os/WholeFile.h"

namespace quillpad::demo {
namespace {

constexpr std::time_t day = 24L * 60 * 60;

class Key {
 public:
  Key() { gnutls_x509_privkey_init(&key_); }
  ~Key() { gnutls_x509_privkey_deinit(key_); }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  gnutls_x509_privkey_t get() const { return key_; }

 private:
  gnutls_x509_privkey_t key_ = nullptr;
};

class X509 {
 public:
  X509() { gnutls_x509_crt_init(&certificate_); }
  ~X509() { gnutls_x509_crt_deinit(certificate_); }
  X509(const X509&) = delete;
  X509& operator=(const X509&) = delete;
  gnutls_x509_crt_t get() const { return certificate_; }

 private:
  gnutls_x509_crt_t certificate_ = nullptr;
};

// Takes the memory over.
std::string textOf(gnutls_datum_t& datum) {
  std::string text(reinterpret_cast<const char*>(datum.data), datum.size);
  gnutls_memset(datum.data, 0, datum.size);
  gnutls_free(datum.data);
  return text;
}

gnutls_datum_t view(const std::string& text) {
  auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()));
  return {.data = bytes, .size = static_cast<unsigned>(text.size())};
}

// Whether the two belong together and hold for another day at least.
bool isUsable(const Certificate& kept) {
  const Key key;
  const X509 certificate;
  const gnutls_datum_t keyText = view(kept.key);
  const gnutls_datum_t certificateText = view(kept.certificate);
  if (gnutls_x509_privkey_import(key.get(), &keyText, GNUTLS_X509_FMT_PEM) < 0 ||
      gnutls_x509_crt_import(certificate.get(), &certificateText, GNUTLS_X509_FMT_PEM) < 0) {
    return false;
  }
  std::array<unsigned char, 64> keyId{};
  std::array<unsigned char, 64> certificateId{};
  std::size_t keyIdSize = keyId.size();
  std::size_t certificateIdSize = certificateId.size();
  if (gnutls_x509_privkey_get_key_id(key.get(), 0, keyId.data(), &keyIdSize) < 0 ||
      gnutls_x509_crt_get_key_id(certificate.get(), 0, certificateId.data(), &certificateIdSize) <
          0) {
    return false;
  }
  const std::time_t now = std::time(nullptr);
  return keyId == certificateId && gnutls_x509_crt_get_activation_time(certificate.get()) <= now &&
         gnutls_x509_crt_get_expiration_time(certificate.get()) > now + day;
}

bool allSucceeded(std::initializer_list<int> results) {
  for (const int result : results) {
    if (result < 0) {
      return false;
    }
  }
  return true;
}

// Makes it that of localhost and its addresses for a year, signed with the key.
bool describeAndSign(gnutls_x509_crt_t certificate, gnutls_x509_privkey_t key) {
  constexpr std::string_view name = "Quillpad demo gateway";
  constexpr std::string_view host = "localhost";
  constexpr std::array<unsigned char, 4> loopback4 = {127, 0, 0, 1};
  constexpr std::array<unsigned char, 16> loopback6 = {
      0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
  const auto addName =
      [&](gnutls_x509_subject_alt_name_t kind, const void* data, std::size_t size) {
        return gnutls_x509_crt_set_subject_alt_name(
            certificate, kind, data, static_cast<unsigned>(size), GNUTLS_FSAN_APPEND);
      };
  std::array<unsigned char, 16> serial{};
  const std::time_t now = std::time(nullptr);
  return gnutls_rnd(GNUTLS_RND_NONCE, serial.data(), serial.size()) == 0 &&
         allSucceeded(
             {gnutls_x509_crt_set_version(certificate, 3),
              gnutls_x509_crt_set_serial(certificate, serial.data(), serial.size()),
              gnutls_x509_crt_set_dn_by_oid(
                  certificate, GNUTLS_OID_X520_COMMON_NAME, 0, name.data(), unsigned{name.size()}),
              gnutls_x509_crt_set_activation_time(certificate, now - day),
              gnutls_x509_crt_set_expiration_time(certificate, now + 365 * day),
              gnutls_x509_crt_set_key(certificate, key),
              gnutls_x509_crt_set_basic_constraints(certificate, 1, 0),
              gnutls_x509_crt_set_key_usage(
                  certificate, GNUTLS_KEY_DIGITAL_SIGNATURE | GNUTLS_KEY_KEY_CERT_SIGN),
              gnutls_x509_crt_set_key_purpose_oid(certificate, GNUTLS_KP_TLS_WWW_SERVER, 0),
              addName(GNUTLS_SAN_DNSNAME, host.data(), host.size()),
              addName(GNUTLS_SAN_IPADDRESS, loopback4.data(), loopback4.size()),
              addName(GNUTLS_SAN_IPADDRESS, loopback6.data(), loopback6.size()),
              gnutls_x509_crt_sign2(certificate, certificate, key, GNUTLS_DIG_SHA256, 0)});
}

std::optional<Certificate> makeCertificate() {
  constexpr unsigned keyBits = GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1);
  const Key key;
  const X509 certificate;
  gnutls_datum_t keyText{};
  gnutls_datum_t certificateText{};
  if (gnutls_x509_privkey_generate(key.get(), GNUTLS_PK_ECDSA, keyBits, 0) < 0 ||
      !describeAndSign(certificate.get(), key.get()) ||
      gnutls_x509_privkey_export2(key.get(), GNUTLS_X509_FMT_PEM, &keyText) < 0 ||
      gnutls_x509_crt_export2(certificate.get(), GNUTLS_X509_FMT_PEM, &certificateText) < 0) {
    return {};
  }
  return Certificate{.certificate = textOf(certificateText), .key = textOf(keyText)};
}

}  // namespace

std::filesystem::path Certificate::file(const std::filesystem::path& stateFolder) {
  return stateFolder / "certificate.pem";
}

std::expected<Certificate, std::string> Certificate::loadOrMake(
    const std::filesystem::path& stateFolder) {
  constexpr std::size_t maxBytes = 65536;
  const std::filesystem::path keyFile = stateFolder / "key.pem";
  const std::filesystem::path certificateFile = file(stateFolder);

  const auto keptKey = readWholeFile(keyFile, maxBytes);
  const auto keptCertificate = readWholeFile(certificateFile, maxBytes);
  if (keptKey && keptCertificate) {
    Certificate kept{.certificate = *keptCertificate, .key = *keptKey};
    if (isUsable(kept)) {
      return kept;
    }
  }

  std::optional<Certificate> made = makeCertificate();
  if (!made) {
    return std::unexpected("The gateway's certificate cannot be made.");
  }
  for (const auto& [path, text] :
       {std::pair{keyFile, made->key}, std::pair{certificateFile, made->certificate}}) {
    if (const std::error_code error = writeWholeFile(path, text)) {
      return std::unexpected(
          path.string() + " cannot be written (" + error.message() + "): choose another --state.");
    }
  }
  return *std::move(made);
}

}  // namespace quillpad::demo
