// The characters of a message row. The 500 positions lie inside the message
// itself, so that a message and its text are one allocation; characters a
// caller hands beyond the last position are kept apart, so that the text
// still reads back exactly as it was given, shorter or longer.
#pragma once
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace qx {

class RowText {
public:
    static constexpr size_t Positions = 500;

    // count characters ch, count at most Positions.
    RowText(size_t count, wchar_t ch);

    void assign(std::wstring_view text);
    std::wstring str() const;
    size_t size() const { return rowSize_ + beyond_.size(); }
    // The characters that lie on positions of the row.
    std::wstring_view row() const { return {row_.data(), rowSize_}; }
    // Characters past the row (rarely any).
    std::wstring_view beyond() const { return beyond_; }
    // Writable positions; p below row().size().
    wchar_t* rowData() { return row_.data(); }
    // A shorter text grows to all positions, filled with fill.
    void fillRow(wchar_t fill);

    // Index of the last character that is not ch, or npos; the whole text.
    size_t findLastNot(wchar_t ch) const;

private:
    std::array<wchar_t, Positions> row_;
    size_t rowSize_;
    std::wstring beyond_;
};

}  // namespace qx
