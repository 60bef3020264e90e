// File names travel as UTF-8 in arguments and messages, on both systems.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

inline std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

inline std::string utf8(const std::filesystem::path &path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

// 'name', as messages show it.
inline std::string quoted(const std::filesystem::path &path)
{
    return std::string(1, '\'').append(utf8(path)).append(1, '\'');
}

} // namespace host
