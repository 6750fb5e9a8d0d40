// quillpad-demo-gateway: a small real gateway with a made-up business, for a first run without an
// account.

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <expected>
#include <fcntl.h>
#include <filesystem>
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

// The options, or the status with which to end.
std::expected<Options, int> readOptions(int count, char** arguments) {
  Options options;
  std::string items = "off";
  CLI::App app(
      "Serves the documents of a made-up business over HTTPS on the loopback addresses.",
      "quillpad-demo-gateway");
  app.set_version_flag("--version", "quillpad-demo-gateway " QUILLPAD_VERSION);
  app.add_option("--port", options.port, "The port to listen on; 0 for a free one")
      ->type_name("N")
      ->check(CLI::Range(0, 65535))
      ->capture_default_str();
  app.add_option("--state", options.state, "Where its certificate and token are kept")
      ->type_name("DIR")
      ->default_str("${XDG_STATE_HOME:-$HOME/.local/state}/quillpad/demo-gateway");
  app.add_option("--fault", items, "Answers with a fault")->type_name("ITEMS");
  app.footer(
      "Faults: " + std::string(demo::faultHelp()) +
      ".\n\nWhile it runs, POST of other ITEMS to the address in DIR/switchboard.json, with the\n"
      "token that stands there in 'Authorization', switches the fault;\n"
      "\"quillpad-home serve --switchboard DIR/switchboard.json\" does so from its page.\n"
      "GET /demo/documents, with the business's token, lists the documents.");
  try {
    app.parse(count, arguments);
  } catch (const CLI::Success& asked) {  // for help, or the version
    return std::unexpected(app.exit(asked));
  } catch (const CLI::ParseError& error) {
    return std::unexpected(fail(wrongUsage, error.what() + std::string("; see --help.")));
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
