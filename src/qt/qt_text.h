// Texts between the library (wide strings) and Qt (UTF-16 strings).
#pragma once
#include <QString>
#include <algorithm>
#include <cstdint>
#include <string>

namespace qx {

inline QString toQString(const std::wstring& text) { return QString::fromStdWString(text); }
inline std::wstring fromQString(const QString& text) { return text.toStdWString(); }

// A position in a text: the library counts characters, Qt UTF-16 units,
// which differ past a character outside the Basic Multilingual Plane.
inline int qtPosition(const std::wstring& text, int32_t position) {
    const size_t end = std::min(text.size(), static_cast<size_t>(std::max(position, 0)));
    return static_cast<int>(QString::fromStdWString(text.substr(0, end)).size());
}
inline int32_t modelPosition(const QString& text, int position) {
    return static_cast<int32_t>(text.left(position).toStdWString().size());
}

}  // namespace qx
