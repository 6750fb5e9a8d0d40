#include "home/extension/WidgetStatus.h"

#include <array>
#include <cstddef>
#include <utility>

#include "platform/foundation/Fatal.h"

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

// As if the widget had met no problem, but that a picture with one is old.
WidgetStatus statusOfPicture(const WidgetState& widget, const Language& language) {
  using enum WidgetStatus::Level;
  const RenderedEntry* picture = widget.picture;
  if (picture == nullptr) {
    return {
        empty,
        language.text("No picture yet"),
        language.text("The extension has not sent a picture yet.")};
  }
  if (picture->failure) {
    return {
        fallback,
        language.text("Stand-in data"),
        language.text("The figures could not be fetched, so zeros or a sample stand in for them.") +
            " " + inWords(*picture->failure, language)};
  }
  if (picture->source == EntrySource::placeholder) {
    return {
        placeholder,
        language.text("Placeholder"),
        language.text("The first figures are still on their way.")};
  }
  const auto old = [&](std::string cause) {
    return WidgetStatus{stale, language.text("Old picture"), std::move(cause)};
  };
  if (widget.problem != nullptr) {
    return old(language.text("A newer picture did not come."));
  }
  if (picture->restored) {
    return old(
        language.text("This is from before the home screen was started. Fresh figures are on their "
                      "way."));
  }
  return widget.overdue ? old(language.text("A newer picture is overdue.")) : WidgetStatus{};
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
  if (!problem.lastWords.empty()) {
    words += " " + language.text("Its last words: “{1}”.", {problem.lastWords});
  }
  return words;
}

WidgetStatus statusOf(
    const WidgetState& widget, const std::string& signInHint, const Language& language) {
  WidgetStatus status = statusOfPicture(widget, language);
  if (widget.problem != nullptr) {
    const std::string words = inWords(*widget.problem, signInHint, language);
    const bool replaces = status.level == WidgetStatus::Level::placeholder ||
                          status.level == WidgetStatus::Level::empty;
    status.cause = replaces ? words : status.cause + " " + words;
  }
  if (widget.picture != nullptr && widget.picture->statusCode >= 400) {
    status.note =
        language.text("answered with status {1}", {std::to_string(widget.picture->statusCode)});
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
  if (!supervisor.keepsEnding()) {
    return "";
  }
  const bool gaveUp = supervisor.life() == Supervisor::Life::gaveUp;
  return inPlainWords(forced(supervisor.lastEnd(), "the last end"), language) + " " +
         (gaveUp ? language.text("It failed five times in a row, so it is not started again until "
                                 "you reload.")
                 : language.text("It is started again shortly."));
}

}  // namespace quillpad::home
