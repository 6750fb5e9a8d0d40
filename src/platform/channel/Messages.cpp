#include "platform/channel/Messages.h"

#include <array>
#include <utility>

#include "platform/foundation/Codec.h"
#include "platform/foundation/Json.h"
#include "platform/foundation/NumberText.h"
#include "platform/foundation/Overloaded.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad {

template <>
constexpr auto namesOf<ui::WidgetFamily> = ui::widgetFamilyNames;

template <>
struct Codec<ui::View> {
  static Value encode(const ui::View& view) { return ui::toValue(view); }
  static ui::View decode(const Decoder& d) { return ui::viewFrom(d); }
};

template <>
struct Codec<std::chrono::microseconds> {
  static Value encode(std::chrono::microseconds duration) { return duration.count(); }
  static std::chrono::microseconds decode(const Decoder& d) {
    return std::chrono::microseconds(d.whole<std::uint64_t>());
  }
};

template <>
constexpr std::tuple fieldsOf<channel::Entry>{
    Field{"date", &channel::Entry::date}, Field{"data", &channel::Entry::data}};

// Requests.

template <>
constexpr std::tuple<> fieldsOf<channel::CatalogueRequest>{};

template <>
constexpr std::tuple fieldsOf<channel::PlaceholderRequest>{
    Field{"kind", &channel::PlaceholderRequest::kind}};

template <>
constexpr std::tuple fieldsOf<channel::SnapshotRequest>{
    Field{"kind", &channel::SnapshotRequest::kind}};

template <>
constexpr std::tuple fieldsOf<channel::TimelineRequest>{
    Field{"kind", &channel::TimelineRequest::kind}};

template <>
constexpr std::tuple fieldsOf<channel::RenderRequest>{
    Field{"kind", &channel::RenderRequest::kind},
    Field{"entry", &channel::RenderRequest::entry},
    Field{"family", &channel::RenderRequest::family},
    Field{"locale", &channel::RenderRequest::locale, Presence::optional},
    Field{"currency", &channel::RenderRequest::currency, Presence::optional}};

template <>
constexpr std::tuple<> fieldsOf<channel::PingRequest>{};

// Replies.

template <>
constexpr std::tuple fieldsOf<channel::CatalogueItem>{
    Field{"kind", &channel::CatalogueItem::kind},
    Field{"displayName", &channel::CatalogueItem::displayName},
    Field{"description", &channel::CatalogueItem::description},
    Field{"families", &channel::CatalogueItem::families},
    Field{"languages", &channel::CatalogueItem::languages, Presence::defaulted},
    Field{"linkSchemes", &channel::CatalogueItem::linkSchemes, Presence::defaulted}};

template <>
constexpr auto fieldsOf<channel::Catalogue> = &channel::Catalogue::items;

template <>
constexpr std::tuple fieldsOf<channel::ReloadPolicy>{Field{"after", &channel::ReloadPolicy::after}};

template <>
constexpr std::tuple fieldsOf<channel::Timeline>{
    Field{"entries", &channel::Timeline::entries}, Field{"policy", &channel::Timeline::policy}};

template <>
constexpr std::tuple fieldsOf<channel::Rendering>{Field{"view", &channel::Rendering::view}};

template <>
constexpr std::tuple<> fieldsOf<channel::Pong>{};

template <>
constexpr std::tuple fieldsOf<channel::Dropped>{
    Field{"reason", &channel::Dropped::reason, Presence::optional}};

template <>
constexpr std::tuple fieldsOf<channel::Refused>{
    Field{"code", &channel::Refused::code}, Field{"message", &channel::Refused::message}};

// Transfers.

template <>
constexpr std::tuple fieldsOf<TransportError>{
    Field{"code", &TransportError::code}, Field{"message", &TransportError::localizedDescription}};

template <>
constexpr std::tuple fieldsOf<TransferReport>{
    Field{"activity", &TransferReport::activity},
    Field{"path", &TransferReport::path},
    Field{"statusCode", &TransferReport::statusCode},
    Field{"microseconds", &TransferReport::duration},
    Field{"sentBytes", &TransferReport::sentBytes},
    Field{"receivedBytes", &TransferReport::receivedBytes},
    Field{"error", &TransferReport::error}};

namespace channel {
namespace {

constexpr std::string_view transferMethod = "transfer";
constexpr std::string_view droppedMember = "dropped";

const auto& requestTypes() {
  static const std::array table{
      Named<Request>{"catalogue", CatalogueRequest{}},
      Named<Request>{"placeholder", PlaceholderRequest{}},
      Named<Request>{"snapshot", SnapshotRequest{}},
      Named<Request>{"timeline", TimelineRequest{}},
      Named<Request>{"render", RenderRequest{}},
      Named<Request>{"ping", PingRequest{}}};
  static_assert(table.size() == std::variant_size_v<Request>);
  return table;
}

std::string lineOf(const Dictionary& document) {
  return writeJson(document, JsonLayout::compact).value_or(std::string());
}

Dictionary replyDocument(const NumberedReply& numbered) {
  Dictionary document{
      {"jsonrpc", "2.0"}, {"id", numbered.id ? Value(*numbered.id) : Value(Null())}};
  std::visit(
      Overloaded{
          [&](const Refused& refused) { document.set("error", quillpad::encode(refused)); },
          [&](const Dropped& dropped) {
            Dictionary result{{std::string(droppedMember), true}};
            encodeMembers(result, dropped);
            document.set("result", std::move(result));
          },
          [&](const auto& reply) { document.set("result", quillpad::encode(reply)); },
      },
      numbered.reply);
  return document;
}

template <class Answer>
Reply answerOrDropped(const Decoder& result) {
  if (result.find(droppedMember)) {
    return decode<Dropped>(result);
  }
  return decode<Answer>(result);
}

Reply replyTo(Method method, const Decoder& result) {
  switch (method) {
    case Method::catalogue:
      return decode<Catalogue>(result);
    case Method::placeholder:
      return decode<Entry>(result);
    case Method::snapshot:
      return answerOrDropped<Entry>(result);
    case Method::timeline:
      return answerOrDropped<Timeline>(result);
    case Method::render:
      return decode<Rendering>(result);
    case Method::ping:
      return Pong{};
  }
  std::unreachable();
}

MessageOfExtension replyFrom(const Decoder& document, const MethodOfId& methodOfId) {
  const auto error = document.find("error");
  if (error && document["id"].value() == Value(Null())) {
    return NumberedReply{std::nullopt, decode<Refused>(*error)};
  }
  const auto id = document["id"].whole<std::uint64_t>();
  const auto method = methodOfId(id);
  if (!method) {
    return StrayReply{};
  }
  if (error) {
    return NumberedReply{id, decode<Refused>(*error)};
  }
  return NumberedReply{id, replyTo(*method, document["result"])};
}

}  // namespace

Method methodOf(const Request& request) { return static_cast<Method>(request.index()); }

std::string encode(const NumberedRequest& numbered) {
  Dictionary document{
      {"jsonrpc", "2.0"},
      {"id", numbered.id},
      {"method", alternativeName(requestTypes(), numbered.request)}};
  Dictionary parameters;
  std::visit([&](const auto& request) { encodeMembers(parameters, request); }, numbered.request);
  if (!parameters.empty()) {
    document.set("params", std::move(parameters));
  }
  return lineOf(document);
}

std::string encode(const NumberedReply& reply) {
  const auto line = writeJson(replyDocument(reply), JsonLayout::compact);
  if (line && line->size() <= maxFrame) {
    return *line;
  }
  const std::string reason = line ? "the answer is longer than " + bytesText(maxFrame)
                                  : "the answer cannot be written: " + line.error().reason;
  return lineOf(replyDocument({reply.id, Refused{internalError, reason}}));
}

std::string encode(const TransferReport& transfer) {
  return lineOf(
      {{"jsonrpc", "2.0"}, {"method", transferMethod}, {"params", quillpad::encode(transfer)}});
}

std::expected<NumberedRequest, NumberedReply> decodeRequest(std::string_view line) {
  std::optional<std::uint64_t> id;
  const auto refusal = [&](int code, std::string message) {
    return std::unexpected(NumberedReply{id, Refused{code, std::move(message)}});
  };
  const auto parsed = readJson(line, JsonFragments::allowed);
  if (!parsed) {
    return refusal(parseError, parsed.error().reason);
  }
  const Decoder document(*parsed, "request");
  const auto number = document["id"].whole<std::uint64_t>();
  if (!document.error().empty()) {
    return refusal(invalidRequest, document.error());
  }
  id = number;
  const std::string& method = document["method"].text();
  if (!document.error().empty()) {
    return refusal(invalidRequest, document.error());
  }
  const auto* type = valueNamed(requestTypes(), method);
  if (type == nullptr) {
    return refusal(methodNotFound, "there is no method \"" + method + "\"");
  }
  static const Value none = Dictionary();
  const auto parameters = document.find("params");
  const Decoder d(parameters ? parameters->value() : none, "params");
  NumberedRequest request{number, decodeAlternative(d, *type)};
  if (!d.error().empty()) {
    return refusal(invalidParams, d.error());
  }
  return request;
}

std::expected<MessageOfExtension, std::string> decodeFromExtension(
    std::string_view line, const MethodOfId& methodOfId) {
  const auto parsed = readJson(line, JsonFragments::allowed, maxValues);
  if (!parsed) {
    return std::unexpected(parsed.error().reason);
  }
  const Decoder document(*parsed);
  const auto method = document.find("method");
  if (method && method->text() != transferMethod) {
    method->fail("not \"transfer\"");
  }
  MessageOfExtension message = method
                                   ? MessageOfExtension(decode<TransferReport>(document["params"]))
                                   : replyFrom(document, methodOfId);
  if (!document.error().empty()) {
    return std::unexpected("a message that cannot be read: " + document.error());
  }
  return message;
}

Value toValue(const Catalogue& catalogue) { return quillpad::encode(catalogue); }
Value toValue(const Entry& entry) { return quillpad::encode(entry); }
Value toValue(const Timeline& timeline) { return quillpad::encode(timeline); }
Catalogue catalogueFrom(const Decoder& d) { return decode<Catalogue>(d); }
Entry entryFrom(const Decoder& d) { return decode<Entry>(d); }

}  // namespace channel

}  // namespace quillpad
