#include "home/extension/WidgetStatus.h"

#include <array>
#include <cstddef>
#include <utility>

namespace quillpad::home {
namespace {

std::string quoted(const std::string& line) { return "\u201c" + line + "\u201d"; }

std::string fallbackWords(const TransportError& failure) {
  return "The figures could not be fetched, so zeros or a sample stand in for them. " +
         failure.localizedDescription + " (" + std::to_string(failure.code) + ")";
}

}  // namespace

Problem problemOf(const SessionEnd& end, Date now) {
  static constexpr std::array causes{
      Problem::Cause::ended,
      Problem::Cause::overMemory,
      Problem::Cause::late,
      Problem::Cause::protocolError};
  return {
      .cause = causes.at(static_cast<std::size_t>(end.cause)),
      .detail = end.detail,
      .output = end.lastWords,
      .since = now};
}

std::string inPlainWords(const Problem& problem) {
  switch (problem.cause) {
    case Problem::Cause::dropped:
      return "The extension let the request go without an answer. " +
             (problem.detail.empty() ? "It gave no reason." : problem.detail);
    case Problem::Cause::refused:
      return "The extension could not take the request: " + problem.detail + ".";
    case Problem::Cause::late:
      return "No answer came within " + problem.detail + ".";
    case Problem::Cause::protocolError:
      return "The home screen ended the extension, which sent " + problem.detail + ".";
    case Problem::Cause::overMemory:
      return "The home screen ended the extension: " + problem.detail + ".";
    case Problem::Cause::notStarted:
      return "The extension cannot be started: " + problem.detail;
    case Problem::Cause::ended:
      break;
  }
  return "The extension ended (" + problem.detail + ")." +
         (problem.output.empty() ? "" : " Its last words: " + quoted(problem.output) + ".");
}

WidgetStatus statusOf(const WidgetState& widget, const std::string& droppedHint) {
  using Level = WidgetStatus::Level;
  WidgetStatus status;
  const Picture* picture = widget.picture;
  if (picture == nullptr) {
    status = {Level::empty, "No picture yet", "The extension has not sent a picture yet."};
  } else if (picture->failure) {
    status = {Level::fallback, "Stand-in data", fallbackWords(*picture->failure)};
  } else if (picture->source == Picture::Source::placeholder) {
    status = {Level::placeholder, "Placeholder", "The first figures are still on their way."};
  } else if (widget.problem != nullptr) {
    status = {Level::stale, "Old picture", "A newer picture did not come."};
  } else if (picture->restored) {
    status = {
        Level::stale,
        "Old picture",
        "This is from before the home screen was started. Fresh figures "
        "are on their way."};
  } else if (widget.overdue) {
    status = {Level::stale, "Old picture", "A newer picture is overdue."};
  }
  if (widget.problem != nullptr) {
    std::string words = inPlainWords(*widget.problem);
    if (widget.problem->cause == Problem::Cause::dropped && !droppedHint.empty()) {
      words += " " + droppedHint;
    }
    const bool replaces = status.level == Level::placeholder || status.level == Level::empty;
    status.cause = replaces ? words : status.cause + " " + words;
  }
  if (picture != nullptr && picture->statusCode >= 400) {
    status.note = "answered with status " + std::to_string(picture->statusCode);
  }
  return status;
}

std::string_view levelName(WidgetStatus::Level level) {
  static constexpr std::array<std::string_view, 5> names{
      "live", "placeholder", "fallback", "stale", "empty"};
  return names.at(static_cast<std::size_t>(level));
}

std::string noticeOf(Supervisor::Life life, const std::optional<Problem>& lastEnd) {
  if (!lastEnd) {
    return "";
  }
  switch (life) {
    case Supervisor::Life::gaveUp:
      return inPlainWords(*lastEnd) +
             " It failed five times in a row, so it is not started again until you reload.";
    case Supervisor::Life::backingOff:
      return inPlainWords(*lastEnd) + " It is started again shortly.";
    default:
      return "";
  }
}

}  // namespace quillpad::home
