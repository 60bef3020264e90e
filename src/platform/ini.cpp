#include "platform/ini.hpp"

#include <algorithm>
#include <cstddef>

namespace vela::platform {
namespace {

using View = std::u16string_view;

constexpr View lineEnds = u"\r\n";
constexpr View blanks = u" \t\v\f\r\n\x1A";
constexpr std::size_t longestNumber = 29;

// --- Encodings ---

enum class Encoding { Bytes, Utf16Little, Utf16Big };

// A file as characters. Unless it is UTF-16, one byte counts as one character: only ASCII has a meaning here.
struct Text {
    std::string_view mark;
    Encoding encoding = Encoding::Bytes;
    std::u16string characters;
};

std::u16string widen(std::string_view bytes)
{
    std::u16string characters(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), characters.begin(),
                   [](char byte) { return static_cast<unsigned char>(byte); });
    return characters;
}

std::u16string decodeUtf16(std::string_view bytes, Encoding encoding)
{
    const std::u16string units = widen(bytes);
    const std::size_t low = encoding == Encoding::Utf16Little ? 0 : 1;
    std::u16string characters(units.size() / 2, u'\0');
    for (std::size_t i = 0; i < characters.size(); ++i)
        characters[i] = static_cast<char16_t>(units[2 * i + low] | units[2 * i + 1 - low] << 8);
    return characters;
}

Text decode(std::string_view file)
{
    if (file.starts_with("\xFF\xFE"))
        return {"\xFF\xFE", Encoding::Utf16Little, decodeUtf16(file.substr(2), Encoding::Utf16Little)};
    if (file.starts_with("\xFE\xFF"))
        return {"\xFE\xFF", Encoding::Utf16Big, decodeUtf16(file.substr(2), Encoding::Utf16Big)};
    if (file.starts_with("\xEF\xBB\xBF"))
        return {"\xEF\xBB\xBF", Encoding::Bytes, widen(file.substr(3))};
    return {"", Encoding::Bytes, widen(file)};
}

std::string encode(const Text &text)
{
    std::string file(text.mark);
    for (char16_t character : text.characters) {
        const char high = static_cast<char>(character >> 8);
        if (text.encoding == Encoding::Utf16Big)
            file += high;
        file += static_cast<char>(character & 0xFF);
        if (text.encoding == Encoding::Utf16Little)
            file += high;
    }
    return file;
}

// --- Lines ---

View trimmed(View text)
{
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == View::npos)
        return text.substr(text.size());
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// What a C string of these characters would hold.
View upToNul(View text) { return text.substr(0, text.find(u'\0')); }

char16_t lower(char16_t character)
{
    return character >= u'A' && character <= u'Z' ? static_cast<char16_t>(character + (u'a' - u'A')) : character;
}

// Whether the text between two marks of a line is the given name.
bool names(View text, View name)
{
    const View found = upToNul(trimmed(text));
    return std::equal(found.begin(), found.end(), name.begin(), name.end(),
                      [](char16_t a, char16_t b) { return lower(a) == lower(b); });
}

// The end of the line that begins at begin, and the begin of the next one.
struct LineEnd {
    std::size_t end = 0;
    std::size_t next = 0;
};

LineEnd lineEnd(View text, std::size_t begin)
{
    const std::size_t end = std::min(text.find_first_of(lineEnds, begin), text.size());
    if (end == text.size())
        return {end, end};
    return {end, end + (text.substr(end).starts_with(u"\r\n") ? 2 : 1)};
}

// Whether a trimmed line opens a section.
bool isSection(View line) { return line.starts_with(u'[') && line.find(u']') != View::npos; }

View sectionName(View line) { return line.substr(1, line.rfind(u']') - 1); }

// --- Search ---

// Where a key is, or where it belongs.
struct Place {
    bool hasSection = false;
    bool hasKey = false;
    bool hasEquals = false;     // of the key's line
    std::size_t valueBegin = 0; // of the key's line: the trimmed value
    std::size_t valueEnd = 0;   //
    std::size_t sectionEnd = 0; // behind the section's last line that is not blank
};

Place findKey(View text, View section, View key)
{
    Place place;
    place.hasSection = section.empty();
    for (std::size_t begin = 0; begin < text.size();) {
        const LineEnd bounds = lineEnd(text, begin);
        const View line = trimmed(text.substr(begin, bounds.end - begin));
        begin = bounds.next;
        if (line.empty())
            continue;
        if (isSection(line)) {
            if (place.hasSection)
                return place;
            place.hasSection = names(sectionName(line), section);
            place.sectionEnd = bounds.next;
            continue;
        }
        if (!place.hasSection)
            continue;
        place.sectionEnd = bounds.next;
        const std::size_t equals = line.find(u'=');
        if (!names(line.substr(0, equals), key))
            continue;
        place.hasKey = true;
        place.hasEquals = equals != View::npos;
        const View value = place.hasEquals ? trimmed(line.substr(equals + 1)) : line.substr(line.size());
        place.valueBegin = static_cast<std::size_t>(value.data() - text.data());
        place.valueEnd = place.valueBegin + value.size();
        return place;
    }
    return place;
}

// --- Numbers ---

View unquoted(View value)
{
    const bool quoted = value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'');
    return quoted && value.back() == value.front() ? value.substr(1, value.size() - 2) : value;
}

// Removes a prefix that names a base.
std::uint32_t takeBase(View &number)
{
    std::uint32_t base = 10;
    if (number.starts_with(u"0x"))
        base = 16;
    else if (number.starts_with(u"0o"))
        base = 8;
    else if (number.starts_with(u"0b"))
        base = 2;
    else
        return base;
    number.remove_prefix(2);
    return base;
}

// The value of a digit; a number that is no digit of any base for other characters.
std::uint32_t digitValue(char16_t character)
{
    if (character >= u'0' && character <= u'9')
        return character - u'0';
    const char16_t letter = lower(character);
    return letter >= u'a' && letter <= u'f' ? letter - u'a' + 10u : 16u;
}

std::int32_t parseInt(View number)
{
    // All control characters count as blanks here.
    while (!number.empty() && number.front() <= u' ')
        number.remove_prefix(1);
    const bool negative = number.starts_with(u'-');
    if (negative || number.starts_with(u'+'))
        number.remove_prefix(1);
    const std::uint32_t base = takeBase(number);
    std::uint32_t value = 0;
    for (char16_t character : number) {
        const std::uint32_t digit = digitValue(character);
        if (digit >= base)
            break;
        value = value * base + digit;
    }
    return static_cast<std::int32_t>(negative ? 0u - value : value);
}

std::u16string name(std::string_view text) { return std::u16string(trimmed(widen(text))); }

} // namespace

std::int32_t iniReadInt(std::string_view file, std::string_view section, std::string_view key, std::int32_t missing)
{
    const Text text = decode(file);
    const View characters = text.characters;
    const Place place = findKey(characters, name(section), name(key));
    if (!place.hasKey)
        return missing;
    const View value = unquoted(upToNul(characters.substr(place.valueBegin, place.valueEnd - place.valueBegin)));
    return value.empty() ? missing : parseInt(value.substr(0, longestNumber));
}

std::string iniWithKey(std::string_view file, std::string_view section, std::string_view key, std::string_view value)
{
    Text text = decode(file);
    std::u16string &characters = text.characters;
    const Place place = findKey(characters, name(section), name(key));
    if (place.hasKey) {
        characters.replace(place.valueBegin, place.valueEnd - place.valueBegin,
                           (place.hasEquals ? u"" : u"=") + widen(value));
        return encode(text);
    }

    const LineEnd firstLine = lineEnd(characters, 0);
    std::u16string newLine = characters.substr(firstLine.end, firstLine.next - firstLine.end);
    if (newLine.empty())
        newLine = u"\r\n";
    const std::size_t position = place.hasSection ? place.sectionEnd : characters.size();
    std::u16string added;
    if (position > 0 && lineEnds.find(characters[position - 1]) == View::npos)
        added += newLine;
    if (!place.hasSection)
        added += u"[" + name(section) + u"]" + newLine;
    added += name(key) + u"=" + widen(value) + newLine;
    characters.insert(position, added);
    return encode(text);
}

} // namespace vela::platform
