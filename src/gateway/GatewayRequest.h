// What the fetches have in common: the checks before a request, the request itself, and reading the
// document that an answer carries inside a text. A fetch is started on any thread and returns at
// once; its parse and its callback run on the URL session's own thread.
//
//   const std::optional<std::string> businessId = checkedBusinessId();
//   if (!businessId) return;
//   postToGateway("/path", {{"businessId", *businessId}}, parseFigures, std::move(callback));
#pragma once

#include <expected>
#include <functional>
#include <optional>
#include <source_location>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Value.h"
#include "platform/net/URLSession.h"

namespace quillpad {

template <class T>
using FetchResult = std::expected<T, TransportError>;

// Called at most once; destroyed uncalled where a request is refused.
template <class T>
using FetchCallback = std::move_only_function<void(FetchResult<T>)>;

// The business identifier of a request that may be sent. Nothing, and one line on standard output,
// where the identifier or the token is empty; an absent one ends the process.
std::optional<std::string> checkedBusinessId();

// Now as "2026-03-07 09:05:03" in local time, the same in every locale.
std::string currentTimeString();

// The object that the text describes as JSON, empty where the text is not JSON. JSON of any other
// kind ends the process at the caller's line.
Dictionary dictionaryFromJSONString(
    std::string_view text, std::source_location where = std::source_location::current());

// Posts the body, all of whose values are texts, to the path on the gateway. The callback gets the
// bytes of the answer, whatever its status, or the transport's error.
void postToGateway(
    std::string_view path, const Dictionary& body, FetchCallback<std::string> callback);

// The same, with the answer's bytes turned into the fetch's value by parse(std::string_view).
template <class T, class Parse>
void postToGateway(
    std::string_view path, const Dictionary& body, Parse parse, FetchCallback<T> callback) {
  postToGateway(
      path, body, [parse, callback = std::move(callback)](FetchResult<std::string> answer) mutable {
        callback(
            answer ? FetchResult<T>(parse(*answer)) : std::unexpected(std::move(answer.error())));
      });
}

}  // namespace quillpad
