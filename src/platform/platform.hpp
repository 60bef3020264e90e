// The operating system, as the frame sees it. posix.cpp and windows.cpp implement it; no other file of the
// library asks which system it is on (but for spelling the exported data in assembly).
//
// Paths are wide strings. On Linux they stand for byte strings: UTF-8, with every byte that is not part of valid
// UTF-8 mapped to the lone surrogate U+DC00 + byte and back, so that any file name survives the round trip.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace vela::platform {

inline constexpr wchar_t pathSeparator =
#if defined(_WIN32)
    L'\\';
#else
    L'/';
#endif

// Opens a file by wide path; mode as fopen's. Null on failure.
std::FILE *openFile(const wchar_t *path, const char *mode) noexcept;

// Absolute seek and relative seek with 64-bit offsets; false on failure.
bool seekTo(std::FILE *file, std::int64_t offset) noexcept;
bool skip(std::FILE *file, std::int64_t bytes) noexcept;

} // namespace vela::platform
