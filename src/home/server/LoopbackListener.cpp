#include "home/server/LoopbackListener.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <utility>

namespace quillpad::home {

std::expected<LoopbackListener, std::error_code> LoopbackListener::open(std::uint16_t port) {
  FileDescriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  const int yes = 1;
  sockaddr_in address{};
  socklen_t size = sizeof address;
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (!socket || ::setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) != 0 ||
      ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
      ::listen(socket.get(), SOMAXCONN) != 0 ||
      ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
    return std::unexpected(std::error_code(errno, std::generic_category()));
  }
  return LoopbackListener{std::move(socket), ntohs(address.sin_port)};
}

std::uint64_t allowDescriptors(std::uint64_t count) {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < count) {
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, count);
    ::setrlimit(RLIMIT_NOFILE, &limit);
  }
  return limit.rlim_cur;
}

}  // namespace quillpad::home
