#include "gateway/GatewayRequest.h"

#include "gateway/GatewayOrigin.h"
#include "platform/foundation/Activity.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Fatal.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/LocalTime.h"
#include "platform/foundation/URL.h"
#include "platform/net/URLRequest.h"
#include "support/SharedSettings.h"

namespace quillpad {
namespace {

std::string serialized(const Dictionary& body) {
  auto text = writeJson(body, JsonLayout::pretty);
  if (!text) {
    printLine(text.error().localizedDescription);
    return {};
  }
  return *std::move(text);
}

}  // namespace

std::optional<std::string> checkedBusinessId() {
  std::string businessId =
      forced(readSharedString(businessIdKey), "the text \"businessId\" in the shared settings");
  if (businessId.empty()) {
    printLine("没有获取到businessID");
    return std::nullopt;
  }
  const std::string token =
      forced(readSharedString(tokenKey), "the text \"token\" in the shared settings");
  if (token.empty()) {
    printLine("没有token");
    return std::nullopt;
  }
  return businessId;
}

std::string currentTimeString() { return localTimeText(currentDate(), "%Y-%m-%d %H:%M:%S"); }

Dictionary dictionaryFromJSONString(std::string_view text, std::source_location where) {
  const auto document = readJson(text, JsonFragments::allowed);
  if (!document) {
    return {};
  }
  return forcedAs<Dictionary>(*document, "the document inside the answer's \"data\"", where);
}

void postToGateway(
    std::string_view path, const Dictionary& body, FetchCallback<std::string> callback) {
  std::string bodyText = serialized(body);
  const auto url = URL::parse(std::string(gatewayOrigin()).append(path));
  URLRequest request(forced(url, "the URL of the gateway's operation"));
  request.setValue(std::to_string(bodyText.size()), "content-length");
  request.setValue("application/json", "Content-type");
  // Read again, not kept from the check: the host application may have renewed it.
  request.setValue(readSharedString(tokenKey), "Authorization");
  request.httpMethod = "POST";
  request.httpBody = std::move(bodyText);

  URLSession::shared()
      .dataTask(
          std::move(request),
          [callback = std::move(callback)](
              std::optional<std::string> data,
              const std::optional<URLResponse>&,
              std::optional<TransportError> error) mutable {
            if (error) {
              callback(std::unexpected(*std::move(error)));
              return;
            }
            callback(forced(std::move(data), "the answer's data"));
          })
      .resume();
}

}  // namespace quillpad
