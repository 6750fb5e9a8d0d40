// What a command takes from the command line: each option is named once, with the variable that it
// fills and the words that --help says of it. A thin front of CLI11, which only CommandLine.cpp
// includes, as it is slow to compile.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Named.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quillpad::home {

enum class Need { optional, required };

// Belongs to the parser; the variables must outlive the parsing.
class Options {
 public:
  explicit Options(CLI::App& parser) : parser_(parser) {}

  // A name without dashes is a positional argument.
  void text(
      const std::string& name,
      std::string& value,
      const std::string& help,
      const std::string& type,
      Need need = Need::optional);

  // The required argument "kind", of one of the extension's widgets.
  void kind(std::string& value);

  // A locale's identifier.
  void locale(const std::string& name, std::string& value, const std::string& help);

  void flag(const std::string& name, bool& value, const std::string& help);

  // An option whose text may be left out.
  void flagOrText(
      const std::string& name,
      bool& given,
      std::string& value,
      const std::string& help,
      const std::string& type);

  template <class Number>
  void number(
      const std::string& name,
      Number& value,
      const std::string& help,
      Number lowest,
      Number highest) {
    addNumber(name, static_cast<long>(value), help, lowest, highest, [&value](long given) {
      value = static_cast<Number>(given);
    });
  }

  // One of the values of the table, which must outlive the parsing too; the variable's own is the
  // default, if it is one of them.
  template <class Value, class Choice, std::size_t count>
  void choice(
      const std::string& name,
      Value& value,
      const std::string& help,
      const std::array<Named<Choice>, count>& choices) {
    std::vector<std::string> names;
    std::string preset;
    for (const Named<Choice>& each : choices) {
      names.emplace_back(each.name);
      if (each.value == value) {
        preset = each.name;
      }
    }
    addChoice(name, names, preset, help, [&value, &choices](std::string_view given) {
      value = *valueNamed(choices, given);
    });
  }

 private:
  void addNumber(
      const std::string& name,
      long preset,
      const std::string& help,
      long lowest,
      long highest,
      const std::function<void(long)>& take);
  void addChoice(
      const std::string& name,
      const std::vector<std::string>& names,
      const std::string& preset,
      const std::string& help,
      const std::function<void(std::string_view)>& take);

  CLI::App& parser_;
};

}  // namespace quillpad::home
