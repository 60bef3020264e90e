#include "platform/path_bytes.hpp"

#include <cstddef>
#include <cstdint>

namespace vela::platform {
namespace {

constexpr char32_t rawByte = 0xDC00; // plus the byte, 0x80 to 0xFF

struct Decoded {
    char32_t character;
    std::size_t bytes;
};

bool isContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// The first character of a text that is not empty. A byte that begins no valid sequence stands for itself.
Decoded decode(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80)
        return {first, 1};

    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const Decoded raw{rawByte + first, 1};
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return raw;
    char32_t character = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (!isContinuation(byte))
            return raw;
        character = (character << 6) | (byte & 0x3F);
    }
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < smallest[length] || surrogate || character > 0x10FFFF)
        return raw;
    return {character, length};
}

void appendByte(std::string &bytes, char32_t value) { bytes.push_back(static_cast<char>(value)); }

void appendContinuation(std::string &bytes, char32_t bits) { appendByte(bytes, 0x80 | (bits & 0x3F)); }

bool encode(std::string &bytes, char32_t character)
{
    if (character < 0x80) {
        appendByte(bytes, character);
    } else if (character < 0x800) {
        appendByte(bytes, 0xC0 | (character >> 6));
        appendContinuation(bytes, character);
    } else if (character >= rawByte + 0x80 && character <= rawByte + 0xFF) {
        appendByte(bytes, character - rawByte);
    } else if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
        return false;
    } else if (character < 0x10000) {
        appendByte(bytes, 0xE0 | (character >> 12));
        appendContinuation(bytes, character >> 6);
        appendContinuation(bytes, character);
    } else {
        appendByte(bytes, 0xF0 | (character >> 18));
        appendContinuation(bytes, character >> 12);
        appendContinuation(bytes, character >> 6);
        appendContinuation(bytes, character);
    }
    return true;
}

} // namespace

void widenPath(std::string_view bytes, wchar_t *path) noexcept
{
    while (!bytes.empty()) {
        const Decoded next = decode(bytes);
        *path++ = static_cast<wchar_t>(next.character);
        bytes.remove_prefix(next.bytes);
    }
    *path = L'\0';
}

std::wstring widePath(std::string_view bytes)
{
    std::wstring path(bytes.size() + 1, L'\0');
    widenPath(bytes, path.data());
    path.resize(path.find(L'\0')); // file names hold no zero byte
    return path;
}

std::optional<std::string> bytePath(std::wstring_view path)
{
    std::string bytes;
    bytes.reserve(path.size());
    for (const wchar_t character : path)
        if (!encode(bytes, static_cast<char32_t>(character)))
            return std::nullopt;
    return bytes;
}

} // namespace vela::platform
