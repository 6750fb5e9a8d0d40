#include "platform/widgets/Connection.h"

#include <array>
#include <cerrno>
#include <string_view>
#include <sys/socket.h>

#include "platform/channel/Messages.h"

namespace quillpad::widgets {

Connection::Connection(FileDescriptor socket)
    : socket_(std::move(socket)), lines_(channel::maxFrame) {}

std::optional<channel::Line> Connection::receive() {
  std::array<char, 65536> buffer{};
  while (true) {
    if (auto line = lines_.next()) {
      return line;
    }
    const ssize_t count = ::recv(socket_.get(), buffer.data(), buffer.size(), 0);
    if (count > 0) {
      lines_.append({buffer.data(), static_cast<std::size_t>(count)});
    } else if (count == 0 || errno != EINTR) {
      return std::nullopt;
    }
  }
}

void Connection::send(std::string line) {
  line += '\n';
  const std::scoped_lock lock(sending_);
  std::string_view rest = line;
  while (!rest.empty()) {
    const ssize_t count = ::send(socket_.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (count >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace quillpad::widgets
