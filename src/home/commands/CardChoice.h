// How large the card of a view is: the options that `render` and `tree --frames` share.
#pragma once

#include <expected>
#include <string>

#include "home/commands/ExtensionClient.h"
#include "home/commands/Failure.h"
#include "home/commands/Options.h"
#include "home/commands/ViewChoice.h"
#include "platform/paint/Card.h"

namespace quillpad::home {

struct CardChoice {
  int scale = 2;
  std::string size{};  // empty: that of the view's family

  void declare(Options& options);

  // Whether the size is one.
  Done check() const;

  // The card for the view, once the options are checked.
  std::expected<drawing::CardRequest, Failure> request(
      ExtensionClient& extension, const ViewChoice& view) const;
};

}  // namespace quillpad::home
