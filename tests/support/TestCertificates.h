// Certificates for tests, made when first needed: an authority of this process and what it signs.
// Ends the process with a message where OpenSSL cannot make one.
#pragma once

#include <openssl/ssl.h>
#include <string>

namespace support {

struct CertificateWish {
  std::string host = "localhost";  // localhost stands for the loopback addresses, too
  bool expired = false;
  bool fromUnknownAuthority = false;
};

// A context for a server that presents such a certificate.
SSL_CTX* makeServerContext(const CertificateWish& wish);

// The PEM file of the authority, which lasts as long as the process.
const std::string& testAuthorityFile();

}  // namespace support
