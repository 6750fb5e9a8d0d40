// The settings commands: they play the host application, which alone writes the store that it
// shares with the extension.
#pragma once

#include "home/commands/Command.h"

namespace quillpad::application {

// `settings` with show, sign-in, currency and sign-out.
home::Command settingsCommand();

}  // namespace quillpad::application
