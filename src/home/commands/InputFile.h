// Files that a command is given.
#pragma once

#include <cstddef>
#include <expected>
#include <string>

#include "home/extension/Failure.h"

namespace quillpad::home {

// The bytes of the file; "-" is standard input. Fails with `notPossible` where it cannot be read,
// with `wrongUsage` where it holds more than the given number of bytes.
std::expected<std::string, Failure> readInput(const std::string& file, std::size_t maximumBytes);

// How messages call the file.
std::string inputName(const std::string& file);

}  // namespace quillpad::home
