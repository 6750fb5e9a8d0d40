#include <unistd.h>

#include "home/cards/CardRenderer.h"
#include "home/commands/CardChoice.h"
#include "home/commands/Commands.h"
#include "home/commands/Files.h"
#include "home/commands/ViewChoice.h"

namespace quillpad::home {
namespace {

struct Render {
  ViewChoice view{};
  std::string output{};
  std::optional<PictureFormat> format{};
  ui::Appearance appearance = ui::Appearance::light;
  CardChoice card{};

  void declare(Options& options) {
    view.declare(options);
    options.text("-o,--output", output, "Where to; -: standard output", "FILE", Need::required);
    options.choice(
        "--format", format, "png, svg or json; else by the file's ending", pictureFormatNames);
    options.choice("--appearance", appearance, "The appearance to draw in", ui::appearanceNames);
    card.declare(options);
  }

  Done run(const CommandContext& context) const {
    const auto picture = formatOfOutput();
    if (!picture) {
      return std::unexpected(picture.error());
    }
    if (const auto checked = card.check(); !checked) {
      return checked;
    }
    if (output == "-" && *picture == PictureFormat::png && ::isatty(STDOUT_FILENO) == 1) {
      return failure(
          ExitStatus::wrongUsage,
          "a terminal cannot show PNG; name a file with -o, or redirect standard output");
    }
    auto extension = ExtensionClient::start(context.extension);
    if (!extension) {
      return std::unexpected(extension.error());
    }
    const auto bytes = draw(*extension, *picture);
    if (!bytes) {
      return std::unexpected(bytes.error());
    }
    return output == "-" ? print(*bytes) : writeOutput(output, *bytes);
  }

 private:
  std::expected<PictureFormat, Failure> formatOfOutput() const {
    if (format) {
      return *format;
    }
    const std::string ending = std::filesystem::path(output).extension();
    const auto* named = ending.empty()
                            ? nullptr
                            : valueNamed(pictureFormatNames, std::string_view(ending).substr(1));
    if (named != nullptr) {
      return *named;
    }
    return failure(
        ExitStatus::wrongUsage,
        output == "-" ? "-o - needs --format png, svg or json"
                      : "\"" + output + "\" does not end in .png, .svg or .json");
  }

  std::expected<std::string, Failure> draw(
      ExtensionClient& extension, PictureFormat picture) const {
    CardRenderer cards;  // first, so that its libraries are loaded while the extension starts
    const auto request = card.request(extension, view);
    if (!request) {
      return std::unexpected(request.error());
    }
    const auto tree = viewOf(extension, view);
    if (!tree) {
      return std::unexpected(tree.error());
    }
    const auto list = cards.compose(*tree, *request, view.localeOrOwn());
    auto bytes = cards.write(list, picture, appearance);
    if (!bytes) {
      return failure(ExitStatus::wrongUsage, bytes.error());
    }
    return std::move(*bytes);
  }
};

}  // namespace

Command renderCommand() {
  return command<Render>(
      "render", "Draw a widget", "render KIND -o card.png --appearance dark --scale 3");
}

}  // namespace quillpad::home
