// quillpad-demo-gateway: a small real gateway with a made-up business, for a first run without an
// account.

#include <array>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <expected>
#include <fcntl.h>
#include <filesystem>
#include <getopt.h>
#include <optional>
#include <pthread.h>
#include <string>
#include <sys/file.h>
#include <unistd.h>

#include "demo/Certificate.h"
#include "demo/Faults.h"
#include "demo/Gateway.h"
#include "demo/Server.h"
#include "platform/foundation/Json.h"
#include "platform/os/Random.h"
#include "platform/os/UserFolders.h"
#include "platform/os/WholeFile.h"

using namespace quillpad;

namespace {

struct Options {
  std::uint16_t port = 8443;
  std::filesystem::path state;
  demo::Fault fault{};
};

constexpr int cannotBeDone = 1;
constexpr int wrongUsage = 2;

int fail(int status, const std::string& sentence) {
  std::fprintf(stderr, "quillpad-demo-gateway: %s\n", sentence.c_str());
  return status;
}

void printHelp() {
  std::printf(
      R"(Serves the documents of a made-up business over HTTPS on the loopback addresses.
Usage: quillpad-demo-gateway [OPTIONS]

Options:
  -h,--help                   Print this help message and exit
  --version                   Print the version and exit
  --port N                    The port to listen on; 0 for a free one, 8443 by itself
  --state DIR                 Where its certificate and token are kept, by itself in
                              ${XDG_STATE_HOME:-$HOME/.local/state}/quillpad/demo-gateway
  --fault ITEMS               Answers with a fault

Faults: %s.

While it runs, POST of other ITEMS to the address in DIR/switchboard.json, with the
token that stands there in 'Authorization', switches the fault;
"quillpad-home serve --switchboard DIR/switchboard.json" does so from its page.
GET /demo/documents, with the business's token, lists the documents.
)",
      std::string(demo::faultHelp()).c_str());
}

// The options, or the status with which to end.
std::expected<Options, int> readOptions(int count, char** arguments) {
  const option known[] = {
      {"help", no_argument, nullptr, 'h'},
      {"version", no_argument, nullptr, 'v'},
      {"port", required_argument, nullptr, 'p'},
      {"state", required_argument, nullptr, 's'},
      {"fault", required_argument, nullptr, 'f'},
      {}};
  const auto wrong = [](const std::string& reason) {
    return std::unexpected(fail(wrongUsage, reason + "; see --help."));
  };
  Options options;
  std::string items = "off";
  opterr = 0;
  for (int given = 0; (given = getopt_long(count, arguments, ":h", known, nullptr)) != -1;) {
    switch (given) {
      case 'h':
        printHelp();
        return std::unexpected(0);
      case 'v':
        std::puts("quillpad-demo-gateway " QUILLPAD_VERSION);
        return std::unexpected(0);
      case 'p': {
        const char* const end = optarg + std::strlen(optarg);
        if (const auto read = std::from_chars(optarg, end, options.port);
            read.ec != std::errc() || read.ptr != end) {
          return wrong("--port needs a number from 0 to 65535");
        }
        break;
      }
      case 's':
        options.state = optarg;
        break;
      case 'f':
        items = optarg;
        break;
      case ':':
        return wrong(arguments[optind - 1] + std::string(" needs a value"));
      default:
        return wrong("unknown argument " + std::string(arguments[optind - 1]));
    }
  }
  if (optind < count) {
    return wrong("unknown argument " + std::string(arguments[optind]));
  }
  auto fault = demo::Fault::parse(items);
  if (!fault) {
    return std::unexpected(
        fail(wrongUsage, "--fault: " + fault.error() + "; see --help for those it knows."));
  }
  options.fault = *std::move(fault);
  if (options.state.empty()) {
    const auto folder = userStateFolder();
    if (!folder) {
      return std::unexpected(fail(
          cannotBeDone, "There is no place for its certificate: set HOME, or choose --state."));
    }
    options.state = *folder / "demo-gateway";
  }
  return options;
}

// The token kept in the file, or a new random one, written first.
std::expected<std::string, std::string> loadOrMakeToken(const std::filesystem::path& file) {
  constexpr std::size_t maxBytes = 4096;
  if (const auto kept = readWholeFile(file, maxBytes); kept && kept->size() >= 32) {
    return *kept;
  }
  std::string token = randomHex(24);
  if (const std::error_code error = writeWholeFile(file, token)) {
    return std::unexpected(
        file.string() + " cannot be written (" + error.message() + "): choose another --state.");
  }
  return token;
}

struct Identity {
  demo::Certificate certificate;
  std::string token;
};

// One gateway at a time makes or reads what lies in the folder.
std::expected<Identity, std::string> loadOrMakeIdentity(const std::filesystem::path& folder) {
  (void)makePrivateFolders(folder);  // what is missing then cannot be opened
  const int lock = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (lock < 0) {
    return std::unexpected(
        "The folder " + folder.string() + " cannot be made or opened: choose another --state.");
  }
  flock(lock, LOCK_EX);
  auto certificate = demo::Certificate::loadOrMake(folder);
  auto token = loadOrMakeToken(folder / "token");
  close(lock);
  if (!certificate) {
    return std::unexpected(certificate.error());
  }
  if (!token) {
    return std::unexpected(token.error());
  }
  return Identity{.certificate = *std::move(certificate), .token = *std::move(token)};
}

std::filesystem::path switchboardFile(const Options& options) {
  return options.state / "switchboard.json";
}

// Writes where the faults are switched, and the token for it, for whoever may read the file.
std::optional<std::string> tellSwitchboard(
    const Options& options, std::uint16_t port, const std::string& token) {
  const std::string address =
      "https://localhost:" + std::to_string(port) + std::string(demo::Gateway::switchboardPath);
  const auto text =
      writeJson(Dictionary{{"address", address}, {"token", token}}, JsonLayout::pretty);
  const std::filesystem::path file = switchboardFile(options);
  if (const std::error_code error = writeWholeFile(file, text.value_or(""))) {
    return file.string() + " cannot be written (" + error.message() + "): choose another --state.";
  }
  return std::nullopt;
}

}  // namespace

int main(int count, char** arguments) {
  const std::expected<Options, int> options = readOptions(count, arguments);
  if (!options) {
    return options.error();
  }

  // Waited for below, so blocked in every thread.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  const std::expected<Identity, std::string> identity = loadOrMakeIdentity(options->state);
  if (!identity) {
    return fail(cannotBeDone, identity.error());
  }
  const std::string switchboardToken = randomHex(24);
  demo::Gateway gateway(identity->token, switchboardToken);
  gateway.setFault(options->fault);
  const auto server = demo::Server::start(options->port, identity->certificate, gateway);
  if (!server) {
    return fail(cannotBeDone, server.error());
  }
  if (const auto problem = tellSwitchboard(*options, (*server)->port(), switchboardToken)) {
    return fail(cannotBeDone, *problem);
  }
  std::printf(
      "Serving https://localhost:%u to business %s; certificate %s; token in %s; switchboard in "
      "%s\n",
      unsigned{(*server)->port()},
      std::string(demo::Gateway::businessId).c_str(),
      demo::Certificate::file(options->state).c_str(),
      (options->state / "token").c_str(),
      switchboardFile(*options).c_str());
  std::fflush(stdout);

  int signal = 0;
  sigwait(&stopSignals, &signal);
  return 0;
}
