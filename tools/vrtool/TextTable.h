#ifndef TOOLS_VRTOOL_TEXTTABLE_H
#define TOOLS_VRTOOL_TEXTTABLE_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Rows of text below headings, in aligned columns.
//
// A table that fits, or has no limit, shows every text in full, one line a row. A table that is too
// wide for its terminal does what its columns say: texts are cut or wrapped, the widest columns
// first, and a column may leave the row for a line of its own, above the row if it stands before
// all others, else below it:
//
//     PATH
//       NAME          BYTES
//     C:\Media\A long path that no narrow column could show.wav
//       A long path… 142684
//
// Control characters become U+FFFD, so that no name can break a row or steer the terminal.
class TextTable {
  public:
    enum class Align { left, right };

    // What a column does where the table is too wide.
    enum class Narrow {
        keep,    // nothing
        cut,     // ends in an ellipsis where its text is too long
        wrap,    // goes on in further lines
        ownLine, // leaves the row, and wraps
    };

    struct Column {
        std::wstring heading;
        Align align = Align::left;
        Narrow narrow = Narrow::keep;
    };

    explicit TextTable(std::vector<Column> columns);

    // One cell for each column.
    void addRow(std::vector<std::wstring> cells);

    // The table in UTF-8, each line ended by a line feed.
    // @param width columns of the terminal; none for a table without limit
    std::string text(std::optional<std::size_t> width) const;

  private:
    using Row = std::vector<std::wstring>;
    struct Layout;

    Layout fullLayout() const;
    Layout narrowLayout(std::size_t width) const;
    void print(Row const& row, Layout const& layout, std::string& text) const;
    void printAligned(Row const& row, Layout const& layout, std::string& text) const;
    void printOwnLine(
        std::wstring_view cell, std::size_t indent, std::size_t width, std::string& text) const;

    std::vector<Column> m_columns;
    // The headings are the first row.
    std::vector<Row> m_rows;
};

#endif
