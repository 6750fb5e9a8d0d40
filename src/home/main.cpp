// quillpad-home, the home screen: one command a run. Joins the home screen, which knows nothing of
// the application, with the application's own commands.
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include "application/HttpsAsker.h"
#include "application/SettingsCommands.h"
#include "application/SignedInAccount.h"
#include "home/commands/CommandLine.h"
#include "home/commands/Commands.h"

using namespace quillpad;

namespace {

// A standard descriptor that the caller left closed would otherwise become a pipe of the
// extension's.
void openStandardDescriptors() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  ::close(descriptor);
}

}  // namespace

int main(int argc, char** argv) {
  ::prctl(PR_SET_DUMPABLE, 0);  // no other process reads the figures or the token out of this one
  openStandardDescriptors();
  const home::Program program{
      .name = "quillpad-home",
      .description = "The home screen of the Quillpad widgets.",
      .commands =
          {home::listCommand(),
           home::placeholderCommand(),
           home::snapshotCommand(),
           home::timelineCommand(),
           home::tapCommand(),
           home::renderCommand(),
           home::treeCommand(),
           home::galleryCommand(),
           home::compareCommand(),
           home::serveCommand(),
           application::settingsCommand()},
      .account = application::signedInAccount(),
      .askOverHttps = application::askOverHttps()};
  return home::runCommandLine(program, argc, argv);
}
