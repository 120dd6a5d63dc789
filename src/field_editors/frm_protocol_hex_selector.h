// The control-character selector: a table of character codes with their
// hexadecimal text and name, from which the user picks one code. The message
// editors put the code into a message or a frame; the checksum panel takes
// it as one of its limits.
#pragma once
#include <cstdint>
#include <string>

#include "platform/controls/controls.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"

namespace qx {

class frmProtocolHexSelector : public Form {
public:
    // The tables Edit can show.
    static constexpr int32_t LowCharsTable = 0;  // codes 0 to 31
    static constexpr int32_t AllCharsTable = 1;  // codes 0 to 255

    frmProtocolHexSelector();

    // Runs the dialog; true when it was left with OK. pSelectedValue is
    // written in either case: the code of the row last clicked, 0 without a
    // click. Nothing can be preselected.
    bool Edit(uint8_t& pSelectedValue, int32_t pHexSelectorType);

    Frame fSelectCharacter{L"fSelectCharacter"};
    Grid flgLowChars{L"flgLowChars"};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};

    void Form_Load() override;
    void Form_KeyPress(int32_t& KeyAscii) override;
    void flgLowChars_Click();
    void flgLowChars_DblClick();
    void cmdOk_Click();
    void cmdCancel_Click();

    uint8_t SelectedValue = 0;
    bool IsAccepted = false;

private:
    void fillGrid();

    int32_t hexSelectorType_ = LowCharsTable;
};

// The name of a control character, "(NUL)" to "(US)"; empty above 31.
std::wstring controlCharacterName(int32_t code);

}  // namespace qx
