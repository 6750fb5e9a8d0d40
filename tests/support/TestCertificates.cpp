#include "support/TestCertificates.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <random>

#include "support/TemporaryHome.h"

namespace support {
namespace {

struct Free {
  void operator()(EVP_PKEY* key) const { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const { X509_free(certificate); }
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using Key = std::unique_ptr<EVP_PKEY, Free>;
using Certificate = std::unique_ptr<X509, Free>;

void require(bool succeeded, const char* what) {
  if (!succeeded) {
    std::fprintf(stderr, "tests/support: %s failed\n", what);
    std::abort();
  }
}

void addExtension(X509* certificate, X509* issuer, int kind, const std::string& value) {
  X509V3_CTX context;
  X509V3_set_ctx_nodb(&context);
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str());
  require(extension != nullptr, "making an extension");
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

Certificate unsignedCertificate(EVP_PKEY* key, const std::string& name, long begin, long end) {
  Certificate certificate(X509_new());
  X509_set_version(certificate.get(), X509_VERSION_3);
  std::random_device random;
  ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate.get()), random());
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), begin);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), end);
  X509_set_pubkey(certificate.get(), key);
  X509_NAME_add_entry_by_txt(
      X509_get_subject_name(certificate.get()),
      "CN",
      MBSTRING_UTF8,
      reinterpret_cast<const unsigned char*>(name.c_str()),
      -1,
      -1,
      0);
  return certificate;
}

constexpr long day = 24L * 60 * 60;

struct Authority {
  explicit Authority(const std::string& name)
      : key(EVP_EC_gen("P-256")), certificate(unsignedCertificate(key.get(), name, -day, day)) {
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(certificate.get()));
    addExtension(certificate.get(), certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), certificate.get(), NID_key_usage, "critical,keyCertSign");
    addExtension(certificate.get(), certificate.get(), NID_subject_key_identifier, "hash");
    require(X509_sign(certificate.get(), key.get(), EVP_sha256()) > 0, "signing the authority");
  }

  Key key;
  Certificate certificate;
};

const Authority& knownAuthority() {
  static const Authority authority("Quillpad test authority");
  return authority;
}

const Authority& unknownAuthority() {
  static const Authority authority("Somebody else's authority");
  return authority;
}

class AuthorityFile {
 public:
  AuthorityFile() : path_((folder_.path() / "authority.pem").string()) {
    const std::unique_ptr<std::FILE, Free> file(std::fopen(path_.c_str(), "w"));
    require(
        file && PEM_write_X509(file.get(), knownAuthority().certificate.get()) == 1,
        "writing the authority");
  }
  const std::string& path() const { return path_; }

 private:
  TemporaryFolder folder_;
  std::string path_;
};

}  // namespace

SSL_CTX* makeServerContext(const CertificateWish& wish) {
  const Authority& authority = wish.fromUnknownAuthority ? unknownAuthority() : knownAuthority();
  const Key key(EVP_EC_gen("P-256"));
  const Certificate certificate =
      unsignedCertificate(key.get(), wish.host, -2 * day, wish.expired ? -day : day);
  X509_set_issuer_name(certificate.get(), X509_get_subject_name(authority.certificate.get()));
  X509* issuer = authority.certificate.get();
  const std::string loopback = wish.host == "localhost" ? ",IP:127.0.0.1,IP:::1" : "";
  addExtension(certificate.get(), issuer, NID_subject_alt_name, "DNS:" + wish.host + loopback);
  addExtension(certificate.get(), issuer, NID_ext_key_usage, "serverAuth");
  addExtension(certificate.get(), issuer, NID_authority_key_identifier, "keyid");
  require(
      X509_sign(certificate.get(), authority.key.get(), EVP_sha256()) > 0,
      "signing the certificate");

  SSL_CTX* context = SSL_CTX_new(TLS_server_method());
  require(
      context != nullptr && SSL_CTX_use_certificate(context, certificate.get()) == 1 &&
          SSL_CTX_use_PrivateKey(context, key.get()) == 1,
      "making the server's context");
  return context;
}

const std::string& testAuthorityFile() {
  static const AuthorityFile file;
  return file.path();
}

}  // namespace support
