// Texts between the library (wide strings) and Qt (UTF-16 strings).
#pragma once
#include <QString>
#include <string>

namespace qx {

inline QString toQString(const std::wstring& text) { return QString::fromStdWString(text); }
inline std::wstring fromQString(const QString& text) { return text.toStdWString(); }

}  // namespace qx
