// The commands of the home screen, each in the file of its name.
#pragma once

#include "home/commands/Command.h"

namespace quillpad::home {

Command listCommand();
Command placeholderCommand();
Command snapshotCommand();
Command timelineCommand();
Command tapCommand();
Command renderCommand();
Command treeCommand();
Command galleryCommand();
Command compareCommand();
Command serveCommand();

}  // namespace quillpad::home
