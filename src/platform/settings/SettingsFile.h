// The file behind a settings store. Callable from any thread and process.
#pragma once

#include <cstddef>
#include <expected>
#include <filesystem>

#include "platform/foundation/Value.h"

namespace quillpad {

// A store may hold this many bytes; larger ones count as damaged.
inline constexpr std::size_t largestSettingsFile = std::size_t{1} << 20;

enum class SettingsFault { absent, unreadable, tooLarge, damaged };

// The objects of the store as they are at this moment.
std::expected<Dictionary, SettingsFault> readSettingsFile(const std::filesystem::path& file);

}  // namespace quillpad
