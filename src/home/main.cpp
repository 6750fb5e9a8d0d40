// quillpad-home, the home screen: one command a run.
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#include <variant>

#include "application/SettingsCommands.h"
#include "home/commands/CommandLine.h"
#include "home/commands/Serve.h"
#include "home/commands/TextTable.h"

using namespace quillpad;

namespace {

using namespace home;

Done withExtension(const CommandLine& line, auto command) {
  auto extension = ExtensionClient::start(line.extension);
  if (!extension) {
    return std::unexpected(extension.error());
  }
  return command(*extension);
}

// One operation for each command.
struct Run {
  const CommandLine& line;

  Done operator()(const ListCommand& command) const {
    return withExtension(
        line, [&](ExtensionClient& extension) { return list(extension, command.form); });
  }
  Done operator()(const ShowCommand& command) const {
    return withExtension(line, [&](ExtensionClient& extension) {
      return show(extension, command.state, command.kind, command.form);
    });
  }
  Done operator()(const TapCommand& command) const {
    return withExtension(line, [&](ExtensionClient& extension) {
      return tap(extension, command.kind, command.action);
    });
  }
  Done operator()(const RenderCommand& command) const {
    return withExtension(
        line, [&](ExtensionClient& extension) { return render(extension, command.choice); });
  }
  Done operator()(const TreeCommand& command) const {
    return withExtension(
        line, [&](ExtensionClient& extension) { return tree(extension, command.choice); });
  }
  Done operator()(const GalleryCommand& command) const {
    return withExtension(
        line, [&](ExtensionClient& extension) { return gallery(extension, command.choice); });
  }
  Done operator()(const CompareCommand& command) const { return compare(command.choice); }
  Done operator()(const CheckGalleryCommand& command) const {
    return withExtension(
        line, [&](ExtensionClient& extension) { return checkGallery(extension, command.choice); });
  }
  Done operator()(const ServeCommand& command) const {
    return serve({.extension = line.extension, .port = command.port});
  }
  Done operator()(const ShowSettingsCommand& /*command*/) const { return showSettings(); }
  Done operator()(const SignInCommand& command) const {
    return signIn(command.businessId, command.tokenFile);
  }
  Done operator()(const SetCurrencyCommand& command) const { return setCurrency(command.currency); }
  Done operator()(const SignOutCommand& /*command*/) const { return signOut(); }
};

// A standard descriptor that the caller left closed would otherwise become a pipe of the
// extension's.
void openStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  ::close(descriptor);
}

Done run(int argc, const char* const* argv) {
  const auto line = parseCommandLine(argc, argv);
  if (!line) {
    return std::unexpected(line.error());
  }
  return std::visit(Run{*line}, line->command);
}

}  // namespace

int main(int argc, char** argv) {
  openStandardDescriptors();
  const Done done = run(argc, argv);
  if (done) {
    return 0;
  }
  if (!done.error().message.empty()) {
    std::fprintf(stderr, "quillpad-home: %s\n", home::printable(done.error().message).c_str());
  }
  return static_cast<int>(done.error().status);
}
