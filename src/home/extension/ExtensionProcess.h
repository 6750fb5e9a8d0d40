// The extension as a child process with its streams of lines. Entirely passive: its owner polls the
// descriptors and then takes what has come; nothing here blocks. Belongs to one thread, which must
// outlive the extension: the kernel ends a child with the thread that started it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

#include "home/extension/ChildProcess.h"
#include "home/extension/PrintedLine.h"
#include "platform/channel/LineReader.h"
#include "platform/channel/Messages.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::home {

class ExtensionProcess {
 public:
  // What has come since the last time, each stream in order.
  struct Arrivals {
    std::vector<PrintedLine> printed;
    std::vector<channel::Line> messages;   // those that were sent after the lines were printed
    std::optional<ChildProcess::End> end;  // nothing comes after it
  };

  // Starts the program; on failure one sentence for a person.
  static std::expected<ExtensionProcess, std::string> start(const std::filesystem::path& program);

  // Of the child; 0 once it has ended.
  pid_t pid() const { return child_.pid(); }

  // Sends the line, or as much of it as the extension takes now. Returns where it ends in all that
  // is sent.
  std::uint64_t send(std::string_view line);

  // How much of all that is sent has left.
  std::uint64_t sentBytes() const { return sentBytes_; }

  // What to poll for; those of no interest now are negative.
  std::array<pollfd, 4> descriptors() const;

  // Takes what has come, at most some megabytes at a time, and sends what could not be sent before.
  Arrivals take();

  // Whether there is something to read that only another run would see.
  bool needsRestart() const { return confinement_.isStale(); }

  // Ends the extension at once.
  void kill() const { child_.kill(); }

 private:
  ExtensionProcess(ChildProcess child, Confinement confinement)
      : child_(std::move(child)), confinement_(std::move(confinement)) {}
  void writePending();
  void readPrinted(PrintedLine::Stream stream, std::vector<PrintedLine>& printed);

  ChildProcess child_;
  Confinement confinement_;
  FileDescriptor channel_;
  FileDescriptor output_;
  FileDescriptor error_;
  std::string pending_;  // what the channel has not taken yet
  std::uint64_t sentBytes_ = 0;
  channel::LineReader messages_{channel::maxFrame};
  channel::LineReader outputLines_{maxPrintedLine};
  channel::LineReader errorLines_{maxPrintedLine};

  static constexpr std::size_t maxPrintedLine = std::size_t{64} * 1024;
};

}  // namespace quillpad::home
