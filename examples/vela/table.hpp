// Text tables with aligned columns.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

class Table {
public:
    enum class Align { left, right };
    struct Column {
        std::string title;
        Align align = Align::left;
    };

    explicit Table(std::vector<Column> columnsInOrder) : columns(std::move(columnsInOrder)) {}

    // One cell per column; missing cells stay empty, surplus ones are dropped.
    void addRow(std::vector<std::string> cells) { rows.push_back(std::move(cells)); }

    void print(std::ostream &out) const;

private:
    std::vector<Column> columns;
    std::vector<std::vector<std::string>> rows;
};

// A number as a cell: pattern is printf's, for one double.
std::string formatted(const char *pattern, double value);

} // namespace host
