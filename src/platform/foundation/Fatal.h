// How a broken contract ends the process. Callable from any thread.
#pragma once

#include <source_location>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Value.h"

namespace quillpad {

// Prints the message as one line to standard error and ends the process (SIGABRT, no core file).
// The message must hold no secret.
[[noreturn]] void fatal(std::string_view message);

// Keeps this process from leaving a core file, which would hold the access token. For programs that
// read the settings, at their start; `fatal` does it too.
void forbidCoreFiles();

// Ends the process with "<unit> line <line>: <what>", the caller's source unit and line.
[[noreturn]] void fatalAt(const std::source_location& where, std::string_view what);

// The value behind the optional or pointer; an absent one ends the process at the caller's line,
// naming `what`.
template <class Optional>
auto&& forced(
    Optional&& optional,
    std::string_view what,
    std::source_location where = std::source_location::current()) {
  if (!optional) {
    fatalAt(where, std::string(what) + " is absent");
  }
  return *std::forward<Optional>(optional);
}

// The value as a T; a value of another kind ends the process at the caller's line, naming `what`.
template <class T>
const T& forcedAs(
    const Value& value,
    std::string_view what,
    std::source_location where = std::source_location::current()) {
  const T* typed = value.as<T>();
  if (typed == nullptr) {
    fatalAt(where, std::string(what) + " is of another kind than expected");
  }
  return *typed;
}

// The dictionary's member as a T; an absent one, or one of another kind, ends the process at the
// caller's line.
template <class T>
const T& forcedMember(
    const Dictionary& dictionary,
    std::string_view key,
    std::source_location where = std::source_location::current()) {
  return forcedAs<T>(forced(dictionary.find(key), key, where), key, where);
}

}  // namespace quillpad
