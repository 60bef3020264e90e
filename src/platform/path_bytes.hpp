// Wide paths to the byte strings that Linux knows, and back; platform.hpp describes the mapping.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vela::platform {

std::wstring widePath(std::string_view bytes);

// Nothing if a character has no bytes: beyond U+10FFFF, or a surrogate that widePath does not make.
std::optional<std::string> bytePath(std::wstring_view path);

// widePath into a buffer with room for bytes.size() + 1 characters, terminated.
void widenPath(std::string_view bytes, wchar_t *path) noexcept;

} // namespace vela::platform
