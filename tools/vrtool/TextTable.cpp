#include "tools/vrtool/TextTable.h"

#include "tools/vrtool/TextWidth.h"
#include "tools/vrtool/Utf8.h"

#include <algorithm>

namespace {

constexpr wchar_t ellipsis = L'\u2026';
constexpr std::size_t narrowIndent = 2;

std::wstring withoutControlCharacters(std::wstring text) {
    auto const isControl = [](wchar_t unit) { return unit < 32 || (unit >= 127 && unit < 160); };
    std::replace_if(text.begin(), text.end(), isControl, L'\uFFFD');
    return text;
}

std::wstring cutTo(std::size_t width, std::wstring_view text) {
    if (widthOf(text) <= width)
        return std::wstring(text);
    return std::wstring(text.substr(0, unitsWithin(text, width - 1))) + ellipsis;
}

// Where a line of a longer text ends: behind a separator if one is near, and never before its first
// character, however wide.
std::size_t lineEnd(std::wstring_view text, std::size_t width) {
    auto const units = unitsWithin(text, std::max<std::size_t>(width, 2));
    if (units == text.size())
        return units;
    auto const separator = text.substr(0, units).find_last_of(L"\\ ");
    return separator != text.npos && separator >= units / 2 ? separator + 1 : units;
}

std::vector<std::wstring> wrapTo(std::size_t width, std::wstring_view text) {
    std::vector<std::wstring> lines;
    do {
        auto const units = lineEnd(text, width);
        lines.emplace_back(text.substr(0, units));
        text.remove_prefix(units);
    } while (!text.empty());
    return lines;
}

void printLine(std::wstring line, std::string& text) {
    line.erase(line.find_last_not_of(L' ') + 1);
    text += toUtf8(line);
    text += '\n';
}

} // namespace

// Where everything stands. A column that left the row has no width.
struct TextTable::Layout {
    std::vector<std::optional<std::size_t>> widths;
    std::size_t indent = 0;
    std::size_t gap = 2;
    std::size_t lineWidth = 0;

    std::size_t total() const {
        std::size_t sum = indent;
        for (auto const& width : widths)
            sum += width ? *width + gap : 0;
        return sum > gap ? sum - gap : 0;
    }
};

TextTable::TextTable(std::vector<Column> columns) : m_columns(std::move(columns)) {
    Row headings;
    for (auto const& column : m_columns)
        headings.push_back(column.heading);
    m_rows.push_back(std::move(headings));
}

void TextTable::addRow(std::vector<std::wstring> cells) {
    for (auto& cell : cells)
        cell = withoutControlCharacters(std::move(cell));
    cells.resize(m_columns.size());
    m_rows.push_back(std::move(cells));
}

std::string TextTable::text(std::optional<std::size_t> width) const {
    Layout layout = fullLayout();
    if (width && layout.total() > *width)
        layout = narrowLayout(*width);

    std::string text;
    for (auto const& row : m_rows)
        print(row, layout, text);
    return text;
}

TextTable::Layout TextTable::fullLayout() const {
    Layout layout;
    layout.widths.assign(m_columns.size(), 0);
    for (auto const& row : m_rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            layout.widths[column] = std::max(*layout.widths[column], widthOf(row[column]));
    return layout;
}

TextTable::Layout TextTable::narrowLayout(std::size_t width) const {
    Layout layout = fullLayout();
    layout.lineWidth = width;
    layout.gap = 1;
    for (std::size_t column = 0; column < m_columns.size(); ++column)
        if (m_columns[column].narrow == Narrow::ownLine) {
            layout.widths[column].reset();
            layout.indent = narrowIndent;
        }

    // The widest gives way first, so that short texts stay whole. No column gets narrower than
    // four: what then is still too wide is the terminal's to break.
    constexpr std::size_t narrowest = 4;
    for (std::size_t total = layout.total(); total > width; --total) {
        std::optional<std::size_t>* widest = nullptr;
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            auto const narrow = m_columns[column].narrow;
            bool const flexible = narrow == Narrow::cut || narrow == Narrow::wrap;
            if (flexible && (!widest || *layout.widths[column] > **widest))
                widest = &layout.widths[column];
        }
        if (!widest || **widest <= narrowest)
            break;
        --**widest;
    }
    return layout;
}

void TextTable::print(Row const& row, Layout const& layout, std::string& text) const {
    std::size_t column = 0;
    for (; column < row.size() && !layout.widths[column]; ++column)
        printOwnLine(row[column], 0, layout.lineWidth, text);

    printAligned(row, layout, text);

    for (; column < row.size(); ++column)
        if (!layout.widths[column])
            printOwnLine(row[column], layout.indent, layout.lineWidth, text);
}

void TextTable::printOwnLine(
    std::wstring_view cell, std::size_t indent, std::size_t width, std::string& text) const {
    if (cell.empty())
        return;
    for (auto const& line : wrapTo(std::max(width, indent + 1) - indent, cell))
        printLine(std::wstring(indent, L' ') + line, text);
}

void TextTable::printAligned(Row const& row, Layout const& layout, std::string& text) const {
    std::vector<std::vector<std::wstring>> cells(row.size());
    std::size_t lineCount = 1;
    for (std::size_t column = 0; column < row.size(); ++column) {
        if (!layout.widths[column])
            continue;
        auto const width = *layout.widths[column];
        cells[column] = m_columns[column].narrow == Narrow::wrap
                            ? wrapTo(width, row[column])
                            : std::vector<std::wstring>{cutTo(width, row[column])};
        lineCount = std::max(lineCount, cells[column].size());
    }

    for (std::size_t number = 0; number < lineCount; ++number) {
        std::wstring line(layout.indent, L' ');
        for (std::size_t column = 0; column < row.size(); ++column) {
            if (!layout.widths[column])
                continue;
            auto const cell =
                number < cells[column].size() ? cells[column][number] : std::wstring();
            auto const columns = widthOf(cell);
            std::wstring const padding(std::max(*layout.widths[column], columns) - columns, L' ');
            line += m_columns[column].align == Align::left ? cell + padding : padding + cell;
            line.append(layout.gap, L' ');
        }
        printLine(std::move(line), text);
    }
}
