#include "message/row_text.h"

#include <algorithm>

namespace qx {

RowText::RowText(size_t count, wchar_t ch) : rowSize_(std::min(count, Positions)) {
    std::fill_n(row_.begin(), rowSize_, ch);
}

void RowText::assign(std::wstring_view text) {
    rowSize_ = std::min(text.size(), Positions);
    std::copy_n(text.begin(), rowSize_, row_.begin());
    beyond_.assign(text.substr(rowSize_));
}

std::wstring RowText::str() const {
    std::wstring text;
    text.reserve(size());
    text.append(row()).append(beyond_);
    return text;
}

void RowText::fillRow(wchar_t fill) {
    std::fill(row_.begin() + static_cast<std::ptrdiff_t>(rowSize_), row_.end(), fill);
    rowSize_ = Positions;
}

size_t RowText::findLastNot(wchar_t ch) const {
    const size_t inBeyond = beyond_.find_last_not_of(ch);
    if (inBeyond != std::wstring::npos) return rowSize_ + inBeyond;
    return row().find_last_not_of(ch);
}

}  // namespace qx
