// Sample entries with names: a folder of files NAME.json, each an entry as `snapshot --json` prints
// it, laid out as one likes. Read from disk at each call, as somebody may be at work on them.
// Callable from any thread.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/channel/Messages.h"
#include "platform/foundation/Value.h"

namespace quillpad::home {

// What is wrong with an entry's text.
struct EntryProblem {
  std::string reason;    // one line for a person
  std::size_t line = 0;  // where, from 1; 0 where it is not at one place
};

// "line 3: it is not JSON: ..."
std::string describe(const EntryProblem& problem);

// The entry that the JSON text is.
std::expected<channel::Entry, EntryProblem> entryFromText(std::string_view text);

// The entry as text to work on.
std::string textOf(const channel::Entry& entry);

// The line of the text that an error of the extension is about, by the first member that it names
// in quotes; 0 where there is none.
std::size_t lineNamedIn(std::string_view error, std::string_view text);

// Whether an entry is made for a widget that shows this data: their members have the same names.
bool suits(const channel::Entry& sample, const Value& data);

class SampleFolder {
 public:
  struct Sample {
    std::string name;
    std::string text;
  };

  // An empty path is the folder that comes with the programs.
  explicit SampleFolder(const std::filesystem::path& folder);

  const std::filesystem::path& folder() const { return folder_; }

  // In the alphabetical order of their names, the first 200; on failure one line that says what is
  // missing, or which of them cannot be read.
  std::expected<std::vector<Sample>, std::string> read() const;

  // The entry of the name; on failure one line that says where it is wrong, or which names there
  // are.
  std::expected<channel::Entry, std::string> entry(const std::string& name) const;

 private:
  std::expected<std::vector<std::string>, std::string> names() const;
  std::expected<std::string, std::string> textOf(const std::string& name) const;

  std::filesystem::path folder_;
};

}  // namespace quillpad::home
