// What a folder holds. Callable from any thread.
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace quillpad {

// The names, without the extension and in order, of the folder's files that have it.
std::expected<std::vector<std::string>, std::error_code> stemsIn(
    const std::filesystem::path& folder, std::string_view extension);

}  // namespace quillpad
