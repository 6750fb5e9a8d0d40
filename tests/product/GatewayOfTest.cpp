#include "product/GatewayOfTest.h"

#include <utility>

#include "gateway/GatewayOrigin.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/Value.h"

namespace quillpad {
namespace {

std::string& originOfTest() {
  static std::string origin;
  return origin;
}

}  // namespace

// Linked in the place of the program's own.
std::string_view gatewayOrigin() { return originOfTest(); }

GatewayOfTest::GatewayOfTest()
    : server_([this](const auto&, fixtures::HttpsServer::Exchange& exchange) {
        const std::scoped_lock lock(mutex_);
        if (answer_.status == 0) {
          exchange.close();
        } else {
          exchange.respond(answer_.status, answer_.body);
        }
      }),
      trust_("SSL_CERT_FILE", fixtures::HttpsServer::authorityFile()) {
  originOfTest() = server_.address("");
}

GatewayOfTest::~GatewayOfTest() { originOfTest().clear(); }

void GatewayOfTest::answerWith(int status, std::string body) {
  const std::scoped_lock lock(mutex_);
  answer_ = {.status = status, .body = std::move(body)};
}

void GatewayOfTest::answerWithDocument(const std::string& document) {
  const Dictionary answer{{"code", 200}, {"data", document}};
  answerWith(200, writeJson(answer, JsonLayout::compact).value());
}

void GatewayOfTest::fail() { answerWith(0, {}); }

}  // namespace quillpad
