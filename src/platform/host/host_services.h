// Stand-ins for the helper classes of the host's closed libraries. Each is
// created for one call, as the library uses them, and reads the current
// host context.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/host_context.h"

namespace qx {

// The host's text table: words for text numbers and message numbers.
class clsTextTable {
public:
    std::wstring GetText(int32_t number) const;
    // Message N with %1, %2 ... replaced by the parameters.
    std::wstring GetMessageText(int32_t number, const std::vector<std::wstring>& params) const;
};

class clsPictureTable {
public:
    PicturePtr GetPicture(int32_t number) const;
};

class clsNameLimits {
public:
    int32_t Item(int32_t entry) const;
};

class clsEnvironment {
public:
    bool IsExtendedOperandsEnabled() const { return host().ExtendedOperands; }
};

class clsAppPaths {
public:
    std::wstring AppPath() const { return host().AppFolder; }
};

class clsErrorReporter {
public:
    void Report(const ErrorReport& report) const;
};

class clsAppFont {
public:
    Font GetFont(int32_t which) const;
};

// Short names of the operand types of the host's type numbering.
class clsOperandTypeNames {
public:
    std::wstring GetName(int32_t operandType) const;
};

// Display formats of operand values (3 is plain decimal).
class clsOperandFormats {
public:
    std::wstring GetFormatName(int32_t format) const;
    std::wstring GetValueText(int32_t operandType, int32_t format, int64_t constantValue) const;
};

// The value of the key in the section of ini text: the first such key line,
// trimmed, without one pair of quotes around it; nothing when there is none.
// Section and key names compare in ASCII case only.
std::optional<std::string> findIniValue(const std::string& content, const std::string& section, const std::string& key);

// GetPrivateProfileStringA: copies the value of Key in Section of the ini
// file (or the default) into the buffer, NUL-terminated and cut to size - 1
// characters; returns the number of characters copied.
uint32_t GetPrivateProfileStringA(const std::string& section, const std::string& key, const std::string& defaultValue,
                                  std::string& buffer, uint32_t size, const std::string& fileName);

// The system beep.
void systemBeep();

// MsgBox styles.
inline constexpr int32_t vbOKOnly = 0;
inline constexpr int32_t vbExclamation = 48;

// A plain message box with its own text and title, outside the host's text
// table: shown through the modal driver and recorded with the host's
// messages as number 0. Returns the button pressed (1 is OK).
int32_t MsgBox(const std::wstring& Prompt, int32_t Buttons, const std::wstring& Title);

// GetDeviceCaps of the screen: 88 horizontal, 90 vertical pixels per inch;
// any other index answers 0.
int32_t GetDeviceCaps(int32_t index);

// The caret calls. CreateCaret gives the window a new caret of the size,
// hidden, at (0, 0), and replaces whatever caret there was; a bitmap of 0 is
// a solid bar. SetCaretPos moves the caret in pixels of its window's client
// area and fails while there is none. ShowCaret shows it when the window
// owns it, and fails otherwise. Each call is recorded in the host context.
bool CreateCaret(int32_t hWnd, int32_t hBitmap, int32_t nWidth, int32_t nHeight);
bool SetCaretPos(int32_t X, int32_t Y);
bool ShowCaret(int32_t hWnd);

}  // namespace qx
