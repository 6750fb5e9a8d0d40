#include "home/cards/Samples.h"

#include <algorithm>

#include "platform/foundation/Bundle.h"
#include "platform/foundation/Json.h"
#include "platform/os/FolderListing.h"
#include "platform/os/WholeFile.h"

namespace quillpad::home {
namespace {

constexpr std::size_t maxSamples = 200;
constexpr std::size_t maxSampleBytes = std::size_t{1} << 20;

std::size_t lineAt(std::string_view text, std::size_t position) {
  return position == std::string_view::npos
             ? 0
             : static_cast<std::size_t>(1 + std::ranges::count(text.substr(0, position), '\n'));
}

std::vector<std::string_view> namesOf(const Value& data) {
  std::vector<std::string_view> names;
  if (const auto* members = data.as<Dictionary>()) {
    for (const auto& [key, value] : *members) {
      names.push_back(key);
    }
  }
  std::ranges::sort(names);
  return names;
}

}  // namespace

std::expected<channel::Entry, EntryProblem> entryFromText(std::string_view text) {
  const auto document = readJson(text, JsonFragments::allowed);
  if (!document) {
    return std::unexpected(
        EntryProblem{"it is not JSON: " + document.error().reason, document.error().line});
  }
  const Decoder d(*document);
  channel::Entry entry = channel::entryFrom(d);
  if (const std::string& error = d.error(); !error.empty()) {
    const std::string member = "\"" + error.substr(0, error.find(':')) + "\"";
    return std::unexpected(EntryProblem{"it is not an entry: " + error, lineNamedIn(member, text)});
  }
  return entry;
}

std::string describe(const EntryProblem& problem) {
  return (problem.line == 0 ? "" : "line " + std::to_string(problem.line) + ": ") + problem.reason;
}

std::string textOf(const channel::Entry& entry) {
  return writeJson(channel::toValue(entry), JsonLayout::pretty).value_or("");
}

std::size_t lineNamedIn(std::string_view error, std::string_view text) {
  const std::size_t begin = error.find('"');
  const std::size_t end = begin == std::string_view::npos ? begin : error.find('"', begin + 1);
  return end == std::string_view::npos
             ? 0
             : lineAt(text, text.find(error.substr(begin, end - begin + 1)));
}

bool suits(const channel::Entry& sample, const Value& data) {
  return namesOf(sample.data) == namesOf(data);
}

SampleFolder::SampleFolder(const std::filesystem::path& folder)
    : folder_(folder.empty() ? Bundle::main().folder() / "samples" : folder) {}

std::expected<std::vector<std::string>, std::string> SampleFolder::names() const {
  auto names = stemsIn(folder_, ".json");
  if (!names) {
    return std::unexpected(
        "the samples in " + folder_.string() + " cannot be read: " + names.error().message() +
        "; --samples names the folder of files NAME.json");
  }
  names->resize(std::min(names->size(), maxSamples));
  return *std::move(names);
}

std::expected<std::string, std::string> SampleFolder::textOf(const std::string& name) const {
  const std::filesystem::path file = folder_ / (name + ".json");
  auto text = readWholeFile(file, maxSampleBytes);
  if (!text) {
    return std::unexpected(
        "the sample " + file.string() + " cannot be read: " + text.error().message());
  }
  return *std::move(text);
}

std::expected<std::vector<SampleFolder::Sample>, std::string> SampleFolder::read() const {
  const auto names = this->names();
  if (!names) {
    return std::unexpected(names.error());
  }
  std::vector<Sample> samples;
  for (const std::string& name : *names) {
    auto text = textOf(name);
    if (!text) {
      return std::unexpected(text.error());
    }
    samples.push_back({name, *std::move(text)});
  }
  return samples;
}

std::expected<channel::Entry, std::string> SampleFolder::entry(const std::string& name) const {
  const auto names = this->names();
  if (!names) {
    return std::unexpected(names.error());
  }
  if (!std::ranges::binary_search(*names, name)) {
    std::string known;
    for (const std::string& each : *names) {
      known += (known.empty() ? "" : ", ") + each;
    }
    return std::unexpected(
        "there is no sample \"" + name + "\" in " + folder_.string() +
        (known.empty() ? ", which holds none" : "; there are " + known));
  }
  const auto text = textOf(name);
  if (!text) {
    return std::unexpected(text.error());
  }
  auto entry = entryFromText(*text);
  if (entry) {
    return *std::move(entry);
  }
  return std::unexpected(
      "the sample " + (folder_ / (name + ".json")).string() + ", " + describe(entry.error()));
}

}  // namespace quillpad::home
