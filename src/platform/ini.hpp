// Ini files as the Windows profile calls understand them, for systems without those calls.
//
// A file is bytes, with or without a UTF-8 mark, or UTF-16 behind its mark. A line ends at CR, LF or both. Blanks
// (space, TAB, VT, FF and the end-of-file character 0x1A) around lines, names, keys and values do not count, and
// neither does the case of ASCII letters. A section runs from "[name]" to the next such line; text behind the last
// ']' is ignored, and a line without ']' opens no section. Only the first section of a name and the first key of a
// name in it are seen. Lines before the first section belong to the section named "". A comment is a line that
// begins with ';': a key that nobody asks for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace vela::platform {

// The integer under [section] key in the text of an ini file; `missing` if there is none, or no text behind '='.
// A pair of quotes around the value is removed; the first 29 characters of what remains count. They are read as
// blanks, a sign, a prefix (0x, 0o or 0b; else decimal) and digits; whatever follows is ignored. A value without
// digits is 0, and a larger one than fits wraps modulo 2^32.
std::int32_t iniReadInt(std::string_view file, std::string_view section, std::string_view key, std::int32_t missing);

// The file's text with key=value added or replaced; everything else is kept (but for half a character at the end
// of a UTF-16 file). A key that is added comes last in its section, a section that is added last in the file; new
// lines end as the file's first line does, in a file without line ends with CR LF. Names and value are ASCII
// without line ends, the key without '=', not beginning with '['.
std::string iniWithKey(std::string_view file, std::string_view section, std::string_view key, std::string_view value);

} // namespace vela::platform
