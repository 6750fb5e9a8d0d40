#include "home/extension/ExtensionProcess.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

#include "platform/foundation/NumberText.h"

namespace quillpad::home {
namespace {

// Where the extension finds its end of the channel.
constexpr int childChannel = 3;

std::string systemError() { return std::strerror(errno); }

std::unexpected<std::string> startFailure(
    const std::filesystem::path& program, const std::string& reason) {
  return std::unexpected("cannot start the extension " + program.string() + ": " + reason);
}

struct Pipe {
  FileDescriptor readEnd;
  FileDescriptor writeEnd;
};

std::expected<Pipe, std::string> makePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return std::unexpected(systemError());
  }
  ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// This process's environment, with the channel's variable.
std::vector<std::string> childEnvironment() {
  const std::string prefix = std::string(channel::descriptorVariable) + "=";
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (!std::string_view(*variable).starts_with(prefix)) {
      variables.emplace_back(*variable);
    }
  }
  variables.push_back(prefix + std::to_string(childChannel));
  return variables;
}

// More than a pipe or a socket holds: what an extension left at its end is taken at once.
constexpr std::size_t maxBytesPerTurn = std::size_t{256} * 1024;

// Takes the lines that are there now; at the end of the stream the descriptor is closed.
template <class Take>
void readLines(FileDescriptor& descriptor, channel::LineReader& lines, Take take) {
  std::array<char, 65536> buffer{};
  for (std::size_t total = 0; descriptor && total < maxBytesPerTurn;) {
    const ssize_t count = ::read(descriptor.get(), buffer.data(), buffer.size());
    if (count > 0) {
      total += static_cast<std::size_t>(count);
      lines.append({buffer.data(), static_cast<std::size_t>(count)});
      while (auto line = lines.next()) {
        take(std::move(*line));
      }
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
      descriptor.close();
    } else if (errno == EAGAIN) {
      return;
    }
  }
}

}  // namespace

std::expected<ExtensionProcess, std::string> ExtensionProcess::start(
    const std::filesystem::path& program) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    return startFailure(program, systemError());
  }
  FileDescriptor ourEnd(ends[0]);
  FileDescriptor childEnd(ends[1]);
  ::fcntl(ourEnd.get(), F_SETFL, O_NONBLOCK);
  auto output = makePipe();
  auto error = makePipe();
  if (!output || !error) {
    return startFailure(program, output ? error.error() : output.error());
  }
  auto confinement = Confinement::of(program);
  if (!confinement) {
    return startFailure(program, confinement.error());
  }
  ChildPlan plan{
      .program = program,
      .environment = childEnvironment(),
      .descriptors = {},
      .confinement = *confinement};
  plan.descriptors.push_back(std::move(output->writeEnd));
  plan.descriptors.push_back(std::move(error->writeEnd));
  plan.descriptors.push_back(std::move(childEnd));
  auto child = ChildProcess::start(std::move(plan));
  if (!child) {
    return startFailure(program, child.error());
  }
  ExtensionProcess process(std::move(*child), std::move(*confinement));
  process.channel_ = std::move(ourEnd);
  process.output_ = std::move(output->readEnd);
  process.error_ = std::move(error->readEnd);
  return process;
}

std::uint64_t ExtensionProcess::send(std::string_view line) {
  pending_ += line;
  pending_ += '\n';
  const std::uint64_t end = sentBytes_ + pending_.size();
  writePending();
  return end;
}

void ExtensionProcess::writePending() {
  while (channel_ && !pending_.empty()) {
    const ssize_t count =
        ::send(channel_.get(), pending_.data(), pending_.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      pending_.erase(0, static_cast<std::size_t>(count));
      sentBytes_ += static_cast<std::uint64_t>(count);
    } else if (errno != EINTR) {
      return;  // the channel is full for now, or its end is about to be read
    }
  }
}

std::array<pollfd, 4> ExtensionProcess::descriptors() const {
  const auto polled = [](int descriptor, int events) {
    return pollfd{.fd = descriptor, .events = static_cast<short>(events), .revents = {}};
  };
  return {
      polled(child_.descriptor(), POLLIN),
      polled(channel_.get(), pending_.empty() ? POLLIN : POLLIN | POLLOUT),
      polled(output_.get(), POLLIN),
      polled(error_.get(), POLLIN)};
}

ExtensionProcess::Arrivals ExtensionProcess::take() {
  Arrivals arrivals;
  if (child_.pid() == 0) {
    return arrivals;
  }
  // The end is looked for first and the streams are read afterwards, so that they are complete when
  // it is told. The channel is read before the printed lines, so that those before a message are
  // there with it.
  const bool ended = child_.hasEnded();

  writePending();
  readLines(channel_, messages_, [&](channel::Line line) {
    arrivals.messages.push_back(std::move(line));
  });
  readPrinted(PrintedLine::Stream::output, arrivals.printed);
  readPrinted(PrintedLine::Stream::error, arrivals.printed);
  if (ended) {
    for (const auto& [stream, lines] :
         {std::pair{PrintedLine::Stream::output, &outputLines_},
          {PrintedLine::Stream::error, &errorLines_}}) {
      if (const std::string rest = lines->takeRest(); !rest.empty()) {
        arrivals.printed.push_back({stream, printableText(rest)});
      }
    }
    arrivals.end = child_.reap();
    channel_.close();
    output_.close();
    error_.close();
  } else if (!channel_) {
    child_.kill();  // it hung up: nothing can be asked of it any more
  }
  return arrivals;
}

void ExtensionProcess::readPrinted(PrintedLine::Stream stream, std::vector<PrintedLine>& printed) {
  const bool isError = stream == PrintedLine::Stream::error;
  readLines(
      isError ? error_ : output_,
      isError ? errorLines_ : outputLines_,
      [&](const channel::Line& line) {
        if (line.tooLong) {
          printed.push_back({stream, "(a line of more than " + bytesText(maxPrintedLine) + ")"});
        } else if (!line.text.empty()) {
          printed.push_back({stream, printableText(line.text)});
        }
      });
}

}  // namespace quillpad::home
