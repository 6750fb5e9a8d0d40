// The extension as a child process. Entirely passive: its owner polls the descriptors and then
// takes what has come; nothing here blocks. Belongs to one thread, which must outlive the
// extension: the kernel ends a child with the thread that started it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <poll.h>
#include <string>
#include <sys/types.h>
#include <variant>
#include <vector>

#include "platform/channel/LineReader.h"
#include "platform/channel/Messages.h"
#include "platform/foundation/FileDescriptor.h"

namespace quillpad::home {

// A line that the extension printed.
struct PrintedLine {
  enum class Stream { output, error };
  Stream stream;
  std::string text;
};

// Something on the channel that is no message, in words.
struct Garbage {
  std::string reason;
};

// The extension is gone; nothing comes after this.
struct ExtensionEnd {
  int exitStatus = 0;
  int signal = 0;         // 0 where it ended by itself
  std::string lastWords;  // the last line that it wrote to standard error, if any

  // For a person: "exit status 1" or "signal 6, Aborted".
  std::string manner() const;
};

using ExtensionEvent = std::
    variant<channel::NumberedReply, channel::TransferNotice, PrintedLine, Garbage, ExtensionEnd>;

class ExtensionProcess {
 public:
  // Starts the program; on failure one sentence for a person.
  static std::expected<ExtensionProcess, std::string> start(const std::filesystem::path& program);

  // Kills the extension if it still runs, and waits for its end.
  ~ExtensionProcess();
  ExtensionProcess(ExtensionProcess&& other) noexcept;
  ExtensionProcess& operator=(ExtensionProcess&&) = delete;

  // Of the child; 0 once it has ended.
  pid_t pid() const { return pid_; }

  // Sends the request, or as much of it as the extension takes now; returns its id.
  std::uint64_t send(const channel::Request& request);

  // What to poll for; those of no interest now are negative.
  std::array<pollfd, 4> descriptors() const;

  // Everything that has come since, in order, printed lines before the replies that followed them.
  // Also sends what could not be sent before.
  std::vector<ExtensionEvent> takeEvents();

  // Ends the extension at once, with what it may have started; its end is the last event.
  void kill() const;

 private:
  ExtensionProcess() = default;
  void writePending();
  void readPrinted(
      FileDescriptor& descriptor,
      channel::LineReader& reader,
      PrintedLine::Stream stream,
      std::vector<ExtensionEvent>& events);
  void addPrinted(
      PrintedLine::Stream stream, std::string text, std::vector<ExtensionEvent>& events);

  pid_t pid_ = 0;
  FileDescriptor process_;  // readable once the child has ended
  FileDescriptor channel_;
  FileDescriptor output_;
  FileDescriptor error_;
  std::uint64_t lastId_ = 0;
  std::string pending_;  // of the requests, what the channel has not taken yet
  channel::LineReader messages_{channel::longestFrame};
  channel::LineReader outputLines_{longestPrintedLine};
  channel::LineReader errorLines_{longestPrintedLine};
  std::string lastWords_;

  static constexpr std::size_t longestPrintedLine = std::size_t{64} * 1024;
};

}  // namespace quillpad::home
