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
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/TransferReport.h"
#include "platform/foundation/Value.h"
#include "platform/ui/Environment.h"
#include "platform/ui/View.h"

namespace quillpad::channel {

// The environment variable that holds the number of the extension's end of the socketpair.
inline constexpr const char* descriptorVariable = "QUILLPAD_CHANNEL";

// The longest line that either end accepts, without its line feed.
inline constexpr std::size_t longestFrame = std::size_t{8} * 1024 * 1024;

// Requests.

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
  Value entry;  // {"date", "data"} as a snapshot or a timeline brought it
  std::optional<ui::WidgetFamily> family;  // absent: the kind's own
  std::string locale;                      // empty: the extension's own
};
using Request = std::
    variant<CatalogueRequest, PlaceholderRequest, SnapshotRequest, TimelineRequest, RenderRequest>;

struct NumberedRequest {
  std::uint64_t id = 0;
  Request request;
};

// Replies.

struct CatalogueItem {
  std::string kind;
  std::string displayName;
  std::string description;
  std::vector<ui::WidgetFamily> families;
};
struct Catalogue {
  std::vector<CatalogueItem> items;
};
// {"date":"2026-03-07T09:05:03.250Z","data":{…}}
struct Entry {
  Value entry;
};
struct Timeline {
  std::vector<Value> entries;
  Date reloadAfter;
};
struct Rendering {
  ui::View view;
};
// The provider let the request go without an answer.
struct Dropped {};
// The request could not be taken; the extension lives on.
struct Refused {
  int code = 0;  // of JSON-RPC 2.0
  std::string message;
};
using Reply = std::variant<Catalogue, Entry, Timeline, Rendering, Dropped, Refused>;

struct NumberedReply {
  std::optional<std::uint64_t> id;  // absent where the request's could not be read
  Reply reply;
};

// A transfer of the extension has ended; its activity is the id of the request that it belongs to.
struct TransferNotice {
  TransferReport report;
};

inline constexpr int parseError = -32700;
inline constexpr int invalidRequest = -32600;
inline constexpr int methodNotFound = -32601;
inline constexpr int invalidParams = -32602;
inline constexpr int internalError = -32603;

// "systemSmall" or "systemMedium".
std::string_view familyName(ui::WidgetFamily family);
std::optional<ui::WidgetFamily> familyFromName(std::string_view name);

// One line each, without the line feed. A reply that JSON cannot hold, or that would be longer than
// a frame, becomes a refusal that says so.
std::string encode(const NumberedRequest& request);
std::string encode(const NumberedReply& reply);
std::string encode(const TransferNotice& notice);

// The request on the line, or the refusal to answer it with.
std::expected<NumberedRequest, NumberedReply> decodeRequest(std::string_view line);

// What the extension said on the line; on failure what is wrong with it, in words. The kind of a
// reply follows from the members of its result, so that no state is needed to read it.
std::expected<std::variant<NumberedReply, TransferNotice>, std::string> decodeFromExtension(
    std::string_view line);

// The JSON that stands in a reply's result, and that `list --json` and `timeline --json` print.
Value toValue(const Catalogue& catalogue);
Value toValue(const Timeline& timeline);

}  // namespace quillpad::channel
