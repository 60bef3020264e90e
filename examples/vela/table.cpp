#include "table.hpp"

#include <algorithm>
#include <cstdio>
#include <ostream>

namespace host {
namespace {

constexpr const char *indent = "  ";
constexpr const char *gap = "  ";

std::string padded(const std::string &text, std::size_t width, Table::Align align)
{
    const std::string space(width - text.size(), ' ');
    return align == Table::Align::left ? text + space : space + text;
}

std::string trimmed(std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

void Table::print(std::ostream &out) const
{
    std::vector<std::vector<std::string>> lines(1);
    for (const Column &column : columns)
        lines.front().push_back(column.title);
    lines.insert(lines.end(), rows.begin(), rows.end());

    std::vector<std::size_t> widths(columns.size(), 0);
    for (std::vector<std::string> &line : lines) {
        line.resize(columns.size());
        for (std::size_t i = 0; i < columns.size(); ++i)
            widths[i] = std::max(widths[i], line[i].size());
    }
    for (const std::vector<std::string> &line : lines) {
        std::string text = indent;
        for (std::size_t i = 0; i < columns.size(); ++i)
            text += padded(line[i], widths[i], columns[i].align) + gap;
        out << trimmed(text) << '\n';
    }
}

std::string formatted(const char *pattern, double value)
{
    char text[64];
    std::snprintf(text, sizeof(text), pattern, value);
    return text;
}

} // namespace host
