// The file in which the home screen keeps what outlives it: which widgets are placed, and their
// last entries with the views that they were rendered to. Functions of their arguments and the
// file.
#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "home/extension/WidgetState.h"

namespace quillpad::home {

// home.json in the quillpad folder of ${XDG_STATE_HOME:-$HOME/.local/state}; nothing where neither
// names an absolute folder.
std::optional<std::filesystem::path> stateFile();

// What the file holds; nothing where there is no file yet. On failure one line that says what is
// wrong with it.
std::expected<std::optional<SavedHome>, std::string> readState(const std::filesystem::path& file);

// Puts the state in the file's place, whole or not at all; on failure one line that says why.
std::expected<void, std::string> writeState(
    const std::filesystem::path& file, const SavedHome& state);

// Where a file that is not understood is kept, until the account changes: whose it is nobody knows.
std::filesystem::path asideOf(const std::filesystem::path& file);

// Removes what is kept aside; on failure one line that says why.
std::expected<void, std::string> forgetAside(const std::filesystem::path& file);

// Takes the pictures of any other account than the one with the mark (see Account) out of the file,
// and removes it where it is not understood, as what is kept aside. For who changes the account
// while no home screen may run; one that runs forgets them by itself.
std::expected<void, std::string> forgetOtherAccounts(
    const std::filesystem::path& file, const std::string& mark);

// The file's text and back. Encoding fails for entries that JSON cannot hold.
std::expected<std::string, std::string> encodeState(const SavedHome& state);
std::expected<SavedHome, std::string> decodeState(std::string_view text);

}  // namespace quillpad::home
