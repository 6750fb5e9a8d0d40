// Files read and written whole or not at all. Callable from any thread and process.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace quillpad {

// The bytes of a regular file as it is at this moment. Fails for anything but a regular file (and
// never waits on one), and with file_too_large where it holds more than the given number of bytes.
std::expected<std::string, std::error_code> readWholeFile(
    const std::filesystem::path& file, std::size_t maximumBytes);

// Puts the bytes in the file's place, durably and readable by its owner alone (mode 0600): who
// opens the file finds what was there before or all of the new. On failure the old file stands.
std::error_code writeWholeFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace quillpad
