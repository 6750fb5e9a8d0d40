// The files that a command reads and writes; "-" is standard input or output.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

#include "home/commands/Failure.h"

namespace quillpad::home {

// The bytes of the file, which may be a pipe. Fails with `notPossible` where it cannot be read,
// with `wrongUsage` where it holds more than the given number of bytes.
std::expected<std::string, Failure> readInput(const std::string& file, std::size_t maximumBytes);

// How messages call the file.
std::string inputName(const std::string& file);

// Writes the text to standard output, all of it.
Done print(std::string_view text);

// Puts the bytes in the file's place: whole, or not at all. A file that is replaced keeps its mode.
Done writeOutput(const std::filesystem::path& file, std::string_view bytes);

}  // namespace quillpad::home
