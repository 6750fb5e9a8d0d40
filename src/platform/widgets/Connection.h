// The extension's end of the channel. One thread reads; any thread may send, whole lines at a time.
#pragma once

#include <mutex>
#include <optional>
#include <string>

#include "platform/channel/LineReader.h"
#include "platform/os/FileDescriptor.h"

namespace quillpad::widgets {

class Connection {
 public:
  explicit Connection(FileDescriptor socket);

  // The next line, waited for; nothing once the home screen has closed the channel.
  std::optional<channel::Line> receive();

  // Sends the line. What the home screen no longer takes is lost.
  void send(std::string line);

 private:
  FileDescriptor socket_;
  channel::LineReader lines_;
  std::mutex sending_;
};

}  // namespace quillpad::widgets
