#include "home/extension/WidgetStatus.h"

#include <array>
#include <cstddef>
#include <utility>

namespace quillpad::home {
namespace {

// The sentence is one of the platform's, which the catalogues know.
std::string inWords(const TransportError& failure, const Language& language) {
  return language.text(failure.localizedDescription) + " (" + std::to_string(failure.code) + ")";
}

std::string inWords(
    const Problem& problem, const std::string& signInHint, const Language& language) {
  using enum Problem::Cause;
  const bool helps = (problem.cause == dropped || problem.cause == ended) && !signInHint.empty();
  return inPlainWords(problem, language) + (helps ? " " + signInHint : "");
}

}  // namespace

std::string inPlainWords(const Problem& problem, const Language& language) {
  const std::string& detail = problem.detail;
  switch (problem.cause) {
    case Problem::Cause::dropped:
      return language.text("The extension let the request go without an answer.") + " " +
             (detail.empty() ? language.text("It gave no reason.") : detail);
    case Problem::Cause::refused:
      return language.text("The extension could not take the request: {1}.", {detail});
    case Problem::Cause::late:
      return language.text("No answer came within {1}.", {detail});
    case Problem::Cause::protocolError:
      return language.text("The home screen ended the extension, which sent {1}.", {detail});
    case Problem::Cause::overMemory:
      return language.text("The home screen ended the extension: {1}.", {detail});
    case Problem::Cause::notStarted:
      return language.text("The extension cannot be started: {1}", {detail});
    case Problem::Cause::ended:
      break;
  }
  std::string words = language.text("The extension ended ({1}).", {detail});
  if (!problem.output.empty()) {
    words += " " + language.text("Its last words: “{1}”.", {problem.output});
  }
  return words;
}

WidgetStatus statusOf(
    const WidgetState& widget, const std::string& signInHint, const Language& language) {
  using Level = WidgetStatus::Level;
  WidgetStatus status;
  const RenderedEntry* picture = widget.picture;
  const auto become = [&](Level level, std::string badge, std::string cause) {
    status = {.level = level, .badge = std::move(badge), .cause = std::move(cause)};
  };
  if (picture == nullptr) {
    become(
        Level::empty,
        language.text("No picture yet"),
        language.text("The extension has not sent a picture yet."));
  } else if (picture->failure) {
    become(
        Level::fallback,
        language.text("Stand-in data"),
        language.text("The figures could not be fetched, so zeros or a sample stand in for them.") +
            " " + inWords(*picture->failure, language));
  } else if (picture->source == EntrySource::placeholder) {
    become(
        Level::placeholder,
        language.text("Placeholder"),
        language.text("The first figures are still on their way."));
  } else if (widget.problem != nullptr) {
    become(
        Level::stale, language.text("Old picture"), language.text("A newer picture did not come."));
  } else if (picture->restored) {
    become(
        Level::stale,
        language.text("Old picture"),
        language.text("This is from before the home screen was started. Fresh figures are on their "
                      "way."));
  } else if (widget.overdue) {
    become(
        Level::stale, language.text("Old picture"), language.text("A newer picture is overdue."));
  }
  if (widget.problem != nullptr) {
    const std::string words = inWords(*widget.problem, signInHint, language);
    const bool replaces = status.level == Level::placeholder || status.level == Level::empty;
    status.cause = replaces ? words : status.cause + " " + words;
  }
  if (picture != nullptr && picture->statusCode >= 400) {
    status.note = language.text("answered with status {1}", {std::to_string(picture->statusCode)});
  }
  return status;
}

WidgetStatus statusOfKept(
    const WidgetState& widget, const std::string& signInHint, const Language& language) {
  WidgetStatus status{
      WidgetStatus::Level::stale,
      language.text("Kept figures"),
      language.text("These figures are the last that could be fetched. The phone would show zeros "
                    "or a sample.")};
  if (widget.picture != nullptr && widget.picture->failure) {
    status.cause += " " + inWords(*widget.picture->failure, language);
  }
  if (widget.problem != nullptr) {
    status.cause += " " + inWords(*widget.problem, signInHint, language);
  }
  return status;
}

std::string_view levelName(WidgetStatus::Level level) {
  static constexpr std::array<std::string_view, 5> names{
      "live", "placeholder", "fallback", "stale", "empty"};
  return names.at(static_cast<std::size_t>(level));
}

// One end alone is mended before anyone could read of it.
std::string noticeOf(
    const Supervisor& supervisor, const std::string& signInHint, const Language& language) {
  if (supervisor.isSignedOut()) {
    return signInHint;
  }
  const std::optional<Problem>& lastEnd = supervisor.lastEnd();
  if (!lastEnd || !supervisor.keepsEnding()) {
    return "";
  }
  const bool gaveUp = supervisor.life() == Supervisor::Life::gaveUp;
  return inPlainWords(*lastEnd, language) + " " +
         (gaveUp ? language.text("It failed five times in a row, so it is not started again until "
                                 "you reload.")
                 : language.text("It is started again shortly."));
}

}  // namespace quillpad::home
