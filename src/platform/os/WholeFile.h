// Files read and written whole or not at all. Callable from any thread and process.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

namespace quillpad {

// The bytes of a regular file as it is at this moment. Fails for anything but a regular file (and
// never waits on one), and with file_too_large where it holds more than the given number of bytes.
std::expected<std::string, std::error_code> readWholeFile(
    const std::filesystem::path& file, std::size_t maximumBytes);

// What an open descriptor yields up to its end; fails with file_too_large where that is more than
// the given number of bytes.
std::expected<std::string, std::error_code> readToEnd(int descriptor, std::size_t maximumBytes);

std::error_code writeAll(int descriptor, std::string_view bytes);

// Who may open a file that is written.
enum class FileAccess {
  ownerOnly,  // mode 0600, whatever it was before
  asBefore,   // the mode of the file that is replaced; a new file's follows the umask
};

// What a loss of power may take.
enum class Durability { synced, unsynced };

struct WriteOptions {
  FileAccess access = FileAccess::ownerOnly;
  Durability durability = Durability::synced;
};

// Puts the bytes in the file's place, durably unless said otherwise: whoever opens the file finds
// what was there before or all of the new. On failure the old file stays. A symbolic link stays and
// its target is made or replaced; a device or a pipe is written to, but a private file waits for no
// reader.
//
// The bytes are collected in a file without a name where the file system has such files, so a
// process that is killed leaves nothing behind, but for the instant in which a file that replaces
// another one needs a name of its own: such a leftover goes when the next private file is written
// into its folder.
std::error_code writeWholeFile(
    const std::filesystem::path& file, std::string_view bytes, WriteOptions options = {});

// The same with bytes that come in pieces: `produce` hands each to what it is given. Where it
// returns an error, as it has to once a piece could not be written, the old file stays.
using TakePiece = std::function<std::error_code(std::string_view piece)>;
std::error_code writeWholeFile(
    const std::filesystem::path& file,
    const std::function<std::error_code(const TakePiece& take)>& produce,
    WriteOptions options = {});

}  // namespace quillpad
