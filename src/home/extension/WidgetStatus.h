// How far what a widget shows is live, in plain words of a language. Pure.
#pragma once

#include <string>
#include <string_view>

#include "home/extension/Supervisor.h"
#include "home/extension/WidgetState.h"
#include "home/language/Language.h"

namespace quillpad::home {

struct WidgetStatus {
  enum class Level {
    live,         // the newest entry, from a transfer that went well
    placeholder,  // nothing was fetched yet
    fallback,     // the transfer failed: zeros or a sample stand in
    stale,        // a newer entry was asked for and did not come
    empty,        // there is no picture at all
  };

  Level level = Level::live;
  std::string badge;   // two or three words; empty where it is live
  std::string cause;   // a few sentences; empty where it is live
  std::string note{};  // some words in passing; empty where there is nothing to add
};

// Of what the phone would show. The hint, empty unless nobody is signed in, is said where the
// extension dropped a request or ended: that may be why, and what helps.
WidgetStatus statusOf(
    const WidgetState& widget, const std::string& signInHint = "", const Language& language = {});

// Of the picture that is kept where the transfer behind the phone's failed.
WidgetStatus statusOfKept(
    const WidgetState& widget, const std::string& signInHint = "", const Language& language = {});

// "live", "placeholder", "fallback", "stale" or "empty".
std::string_view levelName(WidgetStatus::Level level);

// The problem in one or two sentences.
std::string inPlainWords(const Problem& problem, const Language& language = {});

// A notice about the whole home screen, or nothing while all is well. The hint is added where
// nobody is signed in.
std::string noticeOf(
    const Supervisor& supervisor, const std::string& signInHint, const Language& language = {});

}  // namespace quillpad::home
