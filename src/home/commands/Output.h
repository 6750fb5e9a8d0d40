// Where a command's result goes.
#pragma once

#include <filesystem>
#include <string_view>

#include "home/extension/Failure.h"

namespace quillpad::home {

// Writes the text to standard output, all of it.
Done print(std::string_view text);

// Puts the bytes in the file's place: whole, or not at all. What is no regular file (a device, a
// pipe) is written to as it stands.
Done writeOutput(const std::filesystem::path& file, std::string_view bytes);

}  // namespace quillpad::home
