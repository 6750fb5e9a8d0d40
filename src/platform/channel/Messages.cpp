#include "platform/channel/Messages.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/foundation/Clock.h"
#include "platform/foundation/Json.h"
#include "platform/ui/ViewCodec.h"

namespace quillpad::channel {
namespace {

template <class... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <class... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

constexpr std::string_view transferMethod = "transfer";

// Reading members.

template <class T>
const T* member(const Dictionary& dictionary, std::string_view key) {
  const Value* value = dictionary.find(key);
  return value == nullptr ? nullptr : value->as<T>();
}

std::string textMember(const Dictionary& dictionary, std::string_view key) {
  const auto* text = member<std::string>(dictionary, key);
  return text == nullptr ? std::string() : *text;
}

std::optional<std::int64_t> wholeNumber(const Value* value) {
  const auto* number = value == nullptr ? nullptr : value->as<Number>();
  if (number == nullptr) {
    return std::nullopt;
  }
  if (const auto* plain = std::get_if<std::int64_t>(&number->storage())) {
    return *plain;
  }
  if (const auto* large = std::get_if<std::uint64_t>(&number->storage())) {
    if (std::in_range<std::int64_t>(*large)) {
      return static_cast<std::int64_t>(*large);
    }
  }
  return std::nullopt;
}

std::optional<std::uint64_t> count(const Value* value) {
  const auto number = wholeNumber(value);
  return number && *number >= 0 ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
}

std::string lineOf(const Dictionary& document) {
  return writeJson(document, JsonLayout::compact).value_or(std::string());
}

// Requests.

struct Method {
  std::string_view name;
  Request (*request)(std::string kind);
};

// The methods whose only parameter is a kind.
constexpr std::array kindMethods{
    Method{
        "placeholder",
        [](std::string kind) -> Request { return PlaceholderRequest{std::move(kind)}; }},
    Method{
        "snapshot", [](std::string kind) -> Request { return SnapshotRequest{std::move(kind)}; }},
    Method{
        "timeline", [](std::string kind) -> Request { return TimelineRequest{std::move(kind)}; }},
};

Dictionary requestDocument(std::uint64_t id, std::string_view method) {
  return {{"jsonrpc", "2.0"}, {"id", id}, {"method", method}};
}

Dictionary kindRequest(std::uint64_t id, std::string_view method, const std::string& kind) {
  Dictionary document = requestDocument(id, method);
  document.set("params", Dictionary{{"kind", kind}});
  return document;
}

Dictionary renderRequest(std::uint64_t id, const RenderRequest& request) {
  Dictionary parameters{{"kind", request.kind}, {"entry", request.entry}};
  if (request.family) {
    parameters.set("family", familyName(*request.family));
  }
  if (!request.locale.empty()) {
    parameters.set("locale", request.locale);
  }
  Dictionary document = requestDocument(id, "render");
  document.set("params", std::move(parameters));
  return document;
}

std::unexpected<NumberedReply> refusal(
    std::optional<std::uint64_t> id, int code, std::string message) {
  return std::unexpected(NumberedReply{id, Refused{code, std::move(message)}});
}

std::expected<Request, Refused> readRender(const Dictionary& parameters, std::string kind) {
  const Value* entry = parameters.find("entry");
  if (entry == nullptr) {
    return std::unexpected(Refused{invalidParams, "\"entry\" is missing"});
  }
  RenderRequest request{std::move(kind), *entry, std::nullopt, textMember(parameters, "locale")};
  if (parameters.find("family") != nullptr) {
    request.family = familyFromName(textMember(parameters, "family"));
    if (!request.family) {
      return std::unexpected(
          Refused{invalidParams, R"("family" is neither "systemSmall" nor "systemMedium")"});
    }
  }
  return request;
}

std::expected<Request, Refused> readRequest(
    const std::string& method, const Dictionary& parameters) {
  if (method == "catalogue") {
    return CatalogueRequest{};
  }
  const auto* known = std::ranges::find(kindMethods, method, &Method::name);
  if (known == kindMethods.end() && method != "render") {
    return std::unexpected(Refused{methodNotFound, "there is no method \"" + method + "\""});
  }
  const auto* kind = member<std::string>(parameters, "kind");
  if (kind == nullptr) {
    return std::unexpected(Refused{invalidParams, "\"kind\" is missing or no text"});
  }
  if (method == "render") {
    return readRender(parameters, *kind);
  }
  return known->request(*kind);
}

// Replies.

Dictionary toValue(const CatalogueItem& item) {
  Array families;
  for (const ui::WidgetFamily family : item.families) {
    families.emplace_back(familyName(family));
  }
  return {
      {"kind", item.kind},
      {"displayName", item.displayName},
      {"description", item.description},
      {"families", std::move(families)}};
}

Value resultOf(const Reply& reply) {
  return std::visit(
      Overloaded{
          [](const Catalogue& catalogue) { return channel::toValue(catalogue); },
          [](const Entry& entry) { return entry.entry; },
          [](const Timeline& timeline) { return channel::toValue(timeline); },
          [](const Rendering& rendering) {
            return Value(Dictionary{{"view", ui::toValue(rendering.view)}});
          },
          [](const Dropped&) { return Value(Dictionary{{"dropped", true}}); },
          [](const Refused&) { return Value(); },
      },
      reply);
}

Dictionary replyDocument(const NumberedReply& reply) {
  Dictionary document{{"jsonrpc", "2.0"}, {"id", reply.id ? Value(*reply.id) : Value(Null())}};
  if (const auto* refused = std::get_if<Refused>(&reply.reply)) {
    document.set("error", Dictionary{{"code", refused->code}, {"message", refused->message}});
  } else {
    document.set("result", resultOf(reply.reply));
  }
  return document;
}

std::expected<Reply, std::string> readCatalogue(const Array& items) {
  Catalogue catalogue;
  for (const Value& value : items) {
    const auto* members = value.as<Dictionary>();
    const auto* families = members == nullptr ? nullptr : member<Array>(*members, "families");
    if (families == nullptr) {
      return std::unexpected("a catalogue item without families");
    }
    CatalogueItem item{
        textMember(*members, "kind"),
        textMember(*members, "displayName"),
        textMember(*members, "description"),
        {}};
    for (const Value& name : *families) {
      const auto* text = name.as<std::string>();
      const auto family = text == nullptr ? std::nullopt : familyFromName(*text);
      if (!family) {
        return std::unexpected("a catalogue item with an unknown family");
      }
      item.families.push_back(*family);
    }
    catalogue.items.push_back(std::move(item));
  }
  return catalogue;
}

std::expected<Reply, std::string> readTimeline(const Array& entries, const Dictionary& result) {
  const auto* policy = member<Dictionary>(result, "policy");
  const auto after =
      policy == nullptr ? std::nullopt : dateFromIso8601(textMember(*policy, "after"));
  if (!after) {
    return std::unexpected("a timeline without a date to reload after");
  }
  return Timeline{entries, *after};
}

std::expected<Reply, std::string> readResult(const Value& result) {
  if (const auto* items = result.as<Array>()) {
    return readCatalogue(*items);
  }
  const auto* members = result.as<Dictionary>();
  if (members == nullptr) {
    return std::unexpected("a result of unknown shape");
  }
  if (const auto* entries = member<Array>(*members, "entries")) {
    return readTimeline(*entries, *members);
  }
  if (const Value* tree = members->find("view")) {
    auto view = ui::viewFromValue(*tree);
    if (!view) {
      return std::unexpected("a view that cannot be read: " + view.error());
    }
    return Rendering{std::move(*view)};
  }
  if (members->find("date") != nullptr && members->find("data") != nullptr) {
    return Entry{result};
  }
  if (members->find("dropped") != nullptr) {
    return Dropped{};
  }
  return std::unexpected("a result of unknown shape");
}

std::expected<NumberedReply, std::string> readReply(const Dictionary& document) {
  const auto id = count(document.find("id"));
  if (const auto* error = member<Dictionary>(document, "error")) {
    const int code = static_cast<int>(wholeNumber(error->find("code")).value_or(internalError));
    return NumberedReply{id, Refused{code, textMember(*error, "message")}};
  }
  const Value* result = document.find("result");
  if (!id || result == nullptr) {
    return std::unexpected("a reply without id or result");
  }
  auto reply = readResult(*result);
  if (!reply) {
    return std::unexpected(reply.error());
  }
  return NumberedReply{id, std::move(*reply)};
}

TransferNotice readTransfer(const Dictionary& parameters) {
  TransferReport report;
  report.activity = count(parameters.find("activity")).value_or(0);
  report.path = textMember(parameters, "path");
  if (const auto* error = member<Dictionary>(parameters, "error")) {
    report.error = TransportError{
        static_cast<int>(wholeNumber(error->find("code")).value_or(0)),
        textMember(*error, "message")};
  }
  report.statusCode = static_cast<int>(wholeNumber(parameters.find("statusCode")).value_or(0));
  report.duration =
      std::chrono::microseconds(wholeNumber(parameters.find("microseconds")).value_or(0));
  report.sentBytes = count(parameters.find("sentBytes")).value_or(0);
  report.receivedBytes = count(parameters.find("receivedBytes")).value_or(0);
  return {report};
}

}  // namespace

std::string_view familyName(ui::WidgetFamily family) {
  return family == ui::WidgetFamily::systemSmall ? "systemSmall" : "systemMedium";
}

std::optional<ui::WidgetFamily> familyFromName(std::string_view name) {
  if (name == "systemSmall") {
    return ui::WidgetFamily::systemSmall;
  }
  if (name == "systemMedium") {
    return ui::WidgetFamily::systemMedium;
  }
  return std::nullopt;
}

std::string encode(const NumberedRequest& request) {
  return lineOf(std::visit(
      Overloaded{
          [&](const CatalogueRequest&) { return requestDocument(request.id, "catalogue"); },
          [&](const PlaceholderRequest& placeholder) {
            return kindRequest(request.id, "placeholder", placeholder.kind);
          },
          [&](const SnapshotRequest& snapshot) {
            return kindRequest(request.id, "snapshot", snapshot.kind);
          },
          [&](const TimelineRequest& timeline) {
            return kindRequest(request.id, "timeline", timeline.kind);
          },
          [&](const RenderRequest& render) { return renderRequest(request.id, render); },
      },
      request.request));
}

std::string encode(const NumberedReply& reply) {
  const auto line = writeJson(replyDocument(reply), JsonLayout::compact);
  if (line && line->size() <= longestFrame) {
    return *line;
  }
  const std::string reason = line ? "the answer is longer than 8 MiB"
                                  : "the answer cannot be written: " + line.error().reason;
  return lineOf(replyDocument({reply.id, Refused{internalError, reason}}));
}

std::string encode(const TransferNotice& notice) {
  const TransferReport& report = notice.report;
  Dictionary parameters{
      {"activity", report.activity},
      {"path", report.path},
      {"statusCode", report.statusCode},
      {"microseconds", std::int64_t{report.duration.count()}},
      {"sentBytes", report.sentBytes},
      {"receivedBytes", report.receivedBytes}};
  if (report.error) {
    parameters.set(
        "error",
        Dictionary{{"code", report.error->code}, {"message", report.error->localizedDescription}});
  }
  return lineOf(
      {{"jsonrpc", "2.0"}, {"method", transferMethod}, {"params", std::move(parameters)}});
}

std::expected<NumberedRequest, NumberedReply> decodeRequest(std::string_view line) {
  const auto parsed = readJson(line, JsonFragments::allowed);
  if (!parsed) {
    return refusal(std::nullopt, parseError, "the line is not JSON: " + parsed.error().reason);
  }
  const auto* document = parsed->as<Dictionary>();
  const auto id = document == nullptr ? std::nullopt : count(document->find("id"));
  const auto* method = document == nullptr ? nullptr : member<std::string>(*document, "method");
  if (!id || method == nullptr) {
    return refusal(
        id, invalidRequest, "a request is an object with a whole-number id and a method");
  }
  const auto* parameters = member<Dictionary>(*document, "params");
  auto request = readRequest(*method, parameters == nullptr ? Dictionary() : *parameters);
  if (!request) {
    return refusal(id, request.error().code, request.error().message);
  }
  return NumberedRequest{*id, std::move(*request)};
}

std::expected<std::variant<NumberedReply, TransferNotice>, std::string> decodeFromExtension(
    std::string_view line) {
  const auto parsed = readJson(line, JsonFragments::refused);
  const auto* document = parsed ? parsed->as<Dictionary>() : nullptr;
  if (document == nullptr) {
    return std::unexpected(
        parsed ? "a message that is no object"
               : "a line that is not JSON: " + parsed.error().reason);
  }
  if (textMember(*document, "method") == transferMethod) {
    const auto* parameters = member<Dictionary>(*document, "params");
    return readTransfer(parameters == nullptr ? Dictionary() : *parameters);
  }
  auto reply = readReply(*document);
  if (!reply) {
    return std::unexpected(reply.error());
  }
  return std::move(*reply);
}

Value toValue(const Catalogue& catalogue) {
  Array items;
  for (const CatalogueItem& item : catalogue.items) {
    items.emplace_back(toValue(item));
  }
  return items;
}

Value toValue(const Timeline& timeline) {
  return Dictionary{
      {"entries", timeline.entries},
      {"policy", Dictionary{{"after", iso8601(timeline.reloadAfter)}}}};
}

}  // namespace quillpad::channel
