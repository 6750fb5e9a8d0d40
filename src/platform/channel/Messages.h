// What the home screen and the extension say to each other: JSON-RPC 2.0, one document a line, over
// one inherited socketpair. Plain values and pure functions, callable from any thread.
// docs/channel.md shows the lines.
//
//   home screen -> extension: requests with an id; each gets one reply, in any order, unless the
//     extension ends
//   extension -> home screen: replies, and a `transfer` notification at the end of each of its
//     network transfers
#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/Decoder.h"
#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"

namespace quillpad::channel {

// The environment variable that holds the number of the extension's end of the socketpair.
inline constexpr const char* descriptorVariable = "QUILLPAD_CHANNEL";

// The longest line that either end accepts, without its line feed.
inline constexpr std::size_t maxFrame = std::size_t{8} * 1024 * 1024;

// The most values that the home screen accepts in a line: those of 1,000 widgets in 100 languages.
inline constexpr std::size_t maxValues = 200'000;

// A point in time and what to show from then on: a record as its provider made it.
struct Entry {
  Date date;
  Value data;
  friend bool operator==(const Entry&, const Entry&) = default;
};

// Requests, and the methods that they ask for, in one order.

struct CatalogueRequest {};
struct PlaceholderRequest {
  std::string kind;
};
struct SnapshotRequest {
  std::string kind;
};
struct TimelineRequest {
  std::string kind;
};
struct RenderRequest {
  std::string kind;
  Entry entry;
  std::optional<ui::WidgetFamily> family;  // absent: the kind's first
  std::string locale{};                    // empty: the extension's own
  std::string currency{};                  // for example "€"; empty: that of the settings
};
struct PingRequest {};
using Request = std::variant<
    CatalogueRequest,
    PlaceholderRequest,
    SnapshotRequest,
    TimelineRequest,
    RenderRequest,
    PingRequest>;

enum class Method { catalogue, placeholder, snapshot, timeline, render, ping };
Method methodOf(const Request& request);

struct NumberedRequest {
  std::uint64_t id = 0;
  Request request;
};

// Replies: to `catalogue`,
struct CatalogueItem {
  std::string kind;
  std::string displayName;
  std::string description;
  std::vector<ui::WidgetFamily> families;
  std::vector<std::string> languages;      // that its texts are translated into: "de", "zh-Hans"
  std::vector<std::string> linkSchemes{};  // of the links that its views may have: "quillpad"
};
struct Catalogue {
  std::vector<CatalogueItem> items;
};
// to `placeholder` and `snapshot` an Entry, to `timeline`,
struct ReloadPolicy {
  Date after;
};
struct Timeline {
  std::vector<Entry> entries;
  ReloadPolicy policy;
};
// to `render`,
struct Rendering {
  ui::View view = ui::Spacer();
};
// to `ping`,
struct Pong {};
// to `snapshot` and `timeline`, where the provider let the request go without an answer,
struct Dropped {
  std::string reason;  // a sentence for a person; empty where there is none
};
// and to any request that could not be taken; the extension lives on.
struct Refused {
  int code = 0;  // of JSON-RPC 2.0
  std::string message;
};
using Reply = std::variant<Catalogue, Entry, Timeline, Rendering, Pong, Dropped, Refused>;

struct NumberedReply {
  std::optional<std::uint64_t> id;  // absent where the request's could not be read
  Reply reply;
};

// A reply to a request that is not under way; what it holds is not read.
struct StrayReply {};

// A report is of a transfer that has ended; its activity is the id of the request that it belongs
// to.
using MessageOfExtension = std::variant<NumberedReply, TransferReport, StrayReply>;

inline constexpr int parseError = -32700;
inline constexpr int invalidRequest = -32600;
inline constexpr int methodNotFound = -32601;
inline constexpr int invalidParams = -32602;
inline constexpr int internalError = -32603;

// One line each, without the line feed. A reply that JSON cannot hold, or that would be longer than
// a frame, becomes a refusal that says so.
std::string encode(const NumberedRequest& request);
std::string encode(const NumberedReply& reply);
std::string encode(const TransferReport& transfer);

// The request on the line, or the refusal to answer it with.
std::expected<NumberedRequest, NumberedReply> decodeRequest(std::string_view line);

// The method that a request under way asked for, or nothing where there is none of that id.
using MethodOfId = std::function<std::optional<Method>(std::uint64_t id)>;

// What the extension said on the line, a reply read as its request's method has it; on failure what
// is wrong with it, in words.
std::expected<MessageOfExtension, std::string> decodeFromExtension(
    std::string_view line, const MethodOfId& methodOfId);

// The JSON that is in a reply's result, and that the home screen prints and keeps; and what
// such JSON says, an error staying with the decoder.
Value toValue(const Catalogue& catalogue);
Value toValue(const Entry& entry);
Value toValue(const Timeline& timeline);
Catalogue catalogueFrom(const Decoder& d);
Entry entryFrom(const Decoder& d);

}  // namespace quillpad::channel
