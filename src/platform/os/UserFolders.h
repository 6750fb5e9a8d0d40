// Where programs keep what belongs to the user, from XDG_DATA_HOME, XDG_STATE_HOME and HOME;
// relative paths in them do not count. From any thread, as long as none sets the environment.
#pragma once

#include <filesystem>
#include <optional>
#include <system_error>

namespace quillpad {

// "quillpad" in ${XDG_DATA_HOME:-$HOME/.local/share}, or nothing where neither names a folder.
std::optional<std::filesystem::path> userDataFolder();

// "quillpad" in ${XDG_STATE_HOME:-$HOME/.local/state}, or nothing where neither names a folder.
std::optional<std::filesystem::path> userStateFolder();

// Makes the folder and those above it that are missing, for their owner alone.
std::error_code makePrivateFolders(const std::filesystem::path& folder);

}  // namespace quillpad
