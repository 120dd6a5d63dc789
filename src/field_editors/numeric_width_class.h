// What the numeric and stream tabs offer depends on how wide the linked
// operand is: a word, a long or a float. Shared by the Send and Scan panels.
#pragma once
#include <cstdint>

#include "field_editors/number_lists.h"

namespace qx {

enum class WidthClass { Word, Long, Float, Other };

// After a link a type outside the three classes leaves the lists as they stand.
inline WidthClass widthClassOfLink(int32_t operandType) {
    switch (operandType) {
        case 3:
        case 4:
        case 65:
            return WidthClass::Word;
        case 5:
        case 6:
        case 16:
        case 36:
        case 66:
        case 67:
            return WidthClass::Long;
        case 7:
            return WidthClass::Float;
        default:
            return WidthClass::Other;
    }
}

// On load every type that is neither a word nor a float counts as a long.
inline WidthClass widthClassOnLoad(int32_t operandType) {
    const WidthClass width = widthClassOfLink(operandType);
    return width == WidthClass::Other ? WidthClass::Long : width;
}

// Sets IsLoading for a scope and gives back what it was, so that a step the
// frame already runs with IsLoading set leaves it set.
class LoadingScope {
public:
    explicit LoadingScope(bool& isLoading) : isLoading_(isLoading), was_(isLoading) { isLoading_ = true; }
    ~LoadingScope() { isLoading_ = was_; }
    LoadingScope(const LoadingScope&) = delete;
    LoadingScope& operator=(const LoadingScope&) = delete;

private:
    bool& isLoading_;
    bool was_;
};

}  // namespace qx
