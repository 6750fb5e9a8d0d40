#include "home/commands/ViewChoice.h"

#include <cstdio>
#include <utility>

#include "home/cards/Samples.h"
#include "home/commands/Files.h"
#include "home/commands/TextTable.h"
#include "platform/foundation/Locale.h"

namespace quillpad::home {
namespace {

std::expected<channel::Entry, Failure> entryInFile(const std::string& file) {
  const auto text = readInput(file, channel::maxFrame);
  if (!text) {
    return std::unexpected(text.error());
  }
  auto entry = entryFromText(*text);
  if (!entry) {
    return failure(
        ExitStatus::wrongUsage, inputName(file) + " cannot be taken: " + describe(entry.error()));
  }
  return *std::move(entry);
}

std::expected<channel::Entry, Failure> entryOfSample(
    const std::string& folder, const std::string& name) {
  auto entry = SampleFolder(folder).entry(name);
  if (!entry) {
    return failure(ExitStatus::wrongUsage, entry.error());
  }
  return *std::move(entry);
}

std::expected<channel::Entry, Failure> entryFrom(
    ExtensionClient& extension, EntrySource source, const std::string& kind) {
  auto entry = entryIn(extension.answerTo(requestFor(source, kind)), kind);
  if (source == EntrySource::timeline) {
    reportFailedTransfers(extension.transfers());
  }
  return entry;
}

std::expected<channel::Entry, Failure> entryOf(
    ExtensionClient& extension, const ViewChoice& choice) {
  if (!choice.entryFile.empty() + !choice.sample.empty() + choice.source.has_value() > 1) {
    return failure(
        ExitStatus::wrongUsage, "--state, --sample and --entry exclude each other; give one");
  }
  if (!choice.entryFile.empty()) {
    return entryInFile(choice.entryFile);
  }
  return choice.sample.empty()
             ? entryFrom(extension, choice.source.value_or(EntrySource::timeline), choice.kind)
             : entryOfSample(choice.sampleFolder, choice.sample);
}

}  // namespace

void declareRegion(Options& options, std::string& locale, std::string& currency) {
  options.locale("--locale", locale, "Language, numbers and direction, for example de_DE");
  options.text("--currency", currency, "The currency of amounts, for example €", "TEXT");
}

void declareSamples(Options& options, std::string& folder) {
  options.text("--samples", folder, "The folder of sample entries, files NAME.json", "FOLDER");
}

void ViewChoice::declare(Options& options) {
  options.kind(kind);
  options.choice("--state", source, "The entry to draw, usually the timeline's", providerSources);
  options.text("--sample", sample, "A sample entry by its name", "NAME");
  declareSamples(options, sampleFolder);
  options.text("--entry", entryFile, "An entry of your own, as snapshot --json prints it", "FILE");
  options.choice(
      "--family",
      family,
      "The widget's size class; the content is the same in each",
      ui::widgetFamilyNames);
  declareRegion(options, locale, currency);
}

std::string ViewChoice::localeOrOwn() const { return locale.empty() ? currentLocale() : locale; }

std::expected<channel::Entry, Failure> entryIn(
    ExtensionClient::Answer answer, const std::string& kind) {
  if (!answer || !std::holds_alternative<channel::Timeline>(*answer)) {
    return ExtensionClient::as<channel::Entry>(std::move(answer));
  }
  auto& entries = std::get<channel::Timeline>(*answer).entries;
  if (entries.empty()) {
    return failure(ExitStatus::notPossible, "the timeline of " + kind + " has no entry to draw");
  }
  return std::move(entries.front());
}

std::expected<ui::View, Failure> viewOf(ExtensionClient& extension, const ViewChoice& choice) {
  const auto entry = entryOf(extension, choice);
  if (!entry) {
    return std::unexpected(entry.error());
  }
  auto rendering = extension.ask<channel::Rendering>(
      channel::RenderRequest{choice.kind, *entry, choice.family, choice.locale, choice.currency});
  if (!rendering) {
    return std::unexpected(rendering.error());
  }
  return std::move(rendering->view);
}

void reportFailedTransfers(std::span<const TransferReport> transfers) {
  for (const TransferReport& transfer : transfers) {
    if (transfer.error) {
      std::fprintf(
          stderr,
          "quillpad-home: the transfer of %s failed (%d, %s), so zeros or a sample stand in; check "
          "the network and that the gateway runs, then try again\n",
          printable(transfer.path).c_str(),
          transfer.error->code,
          printable(transfer.error->localizedDescription).c_str());
    }
  }
}

}  // namespace quillpad::home
