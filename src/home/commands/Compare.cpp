#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/PictureDifference.h"
#include "platform/paint/PngReader.h"

namespace quillpad::home {
namespace {

struct Compare {
  std::string expected{};
  std::string actual{};
  std::string output{};
  drawing::Tolerance tolerance{};

  void declare(Options& options) {
    options.text("expected", expected, "The picture as it should be", "EXPECTED", Need::required);
    options.text("actual", actual, "The picture as it is", "ACTUAL", Need::required);
    options.text("-o,--output", output, "A picture of what differs", "DIFF.png");
    declareTolerance(options, tolerance);
  }

  Done run(const CommandContext& /*context*/) const {
    const auto expectedPicture = drawing::readPngFile(expected);
    if (!expectedPicture) {
      return failure(ExitStatus::notPossible, expectedPicture.error());
    }
    const auto actualPicture = drawing::readPngFile(actual);
    if (!actualPicture) {
      return failure(ExitStatus::notPossible, actualPicture.error());
    }
    const PictureDifference found = difference(*expectedPicture, *actualPicture, tolerance);
    if (!output.empty() && !found.png.empty()) {
      if (auto written = writeOutput(output, found.png); !written) {
        return written;
      }
    }
    if (found.looksDifferent) {
      return failure(
          ExitStatus::different, actual + " differs from " + expected + ": " + found.description);
    }
    return print(found.description + "\n");
  }
};

}  // namespace

Command compareCommand() {
  return command<Compare>(
      "compare",
      "Tell whether two PNG pictures look the same",
      "compare expected.png actual.png -o difference.png");
}

}  // namespace quillpad::home
