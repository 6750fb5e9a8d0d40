// The extension as a child process with its streams of lines. Entirely passive: its owner polls the
// descriptors and then takes what has come; nothing here blocks. Belongs to one thread, which must
// outlive the extension: the kernel ends a child with the thread that started it.
#pragma once

#include <array>
#include <cstddef>
#include <expected>
#include <filesystem>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "home/extension/PrintedLine.h"
#include "platform/channel/LineReader.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {

class ExtensionProcess {
 public:
  struct End {
    int exitStatus = 0;
    int signal = 0;  // 0 where it ended by itself

    // For a person: "exit status 1" or "signal 6, Aborted".
    std::string manner() const;
  };

  // What has come since the last time, each stream in order.
  struct Arrivals {
    std::vector<PrintedLine> printed;
    std::vector<channel::Line> messages;  // those that were sent after the lines were printed
    std::optional<End> end;               // nothing comes after it
  };

  // Starts the program; on failure one sentence for a person.
  static std::expected<ExtensionProcess, std::string> start(const std::filesystem::path& program);

  // Kills the extension if it still runs, and waits a moment for its end.
  ~ExtensionProcess();
  ExtensionProcess(ExtensionProcess&&) noexcept = default;
  ExtensionProcess& operator=(ExtensionProcess&&) = delete;

  // Of the child; 0 once it has ended.
  pid_t pid() const { return process_ ? pid_ : 0; }

  // Sends the line, or as much of it as the extension takes now.
  void send(std::string_view line);

  // What to poll for; those of no interest now are negative.
  std::array<pollfd, 4> descriptors() const;

  // Takes what has come, at most some megabytes at a time, and sends what could not be sent before.
  Arrivals take();

  // Ends the extension at once, with what it may have started.
  void kill() const;

 private:
  ExtensionProcess() = default;
  void writePending();
  void readPrinted(PrintedLine::Stream stream, std::vector<PrintedLine>& printed);
  End reap();

  pid_t pid_ = 0;
  FileDescriptor process_;  // readable once the child has ended; closed once that was seen
  FileDescriptor channel_;
  FileDescriptor output_;
  FileDescriptor error_;
  std::string pending_;  // what the channel has not taken yet
  channel::LineReader messages_{channel::maxFrame};
  channel::LineReader outputLines_{maxPrintedLine};
  channel::LineReader errorLines_{maxPrintedLine};

  static constexpr std::size_t maxPrintedLine = std::size_t{64} * 1024;
};

}  // namespace quillpad::home
