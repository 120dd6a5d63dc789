// The end-of-message dialog of a Send or Scan set: what closes a message
// ("ETX", "Checksum & ETX", "ETX & Checksum") and, for the two with a
// checksum, the checksum's settings in the shared checksum panel. It works on
// the replica and the number its caller hands it.
#pragma once
#include <cstdint>

#include "field_editors/checksum_panel.h"
#include "message/protocol_cs_var.h"
#include "platform/controls/combo_box.h"
#include "platform/controls/controls.h"
#include "platform/controls/form.h"

namespace qx {

class frmProtocolConfigAdvanced : public Form {
public:
    frmProtocolConfigAdvanced();

    // Runs the dialog on pChecksum; true when it was left with OK.
    // pEndOfMessage gets the dialog's number back in either case, and
    // pChecksum may have changed even on Cancel: the caller hands in copies
    // and keeps them only when accepted. A missing checksum is error 91.
    bool Edit(CSVarPtr pChecksum, int32_t& pEndOfMessage);

    // Declared before the panel, which reads it.
    bool IsLoading = false;
    bool IsAccepted = false;

    Label lbEndOfMsg{L"lbEndOfMsg"};
    ComboBox cbEndOfMsg{L"cbEndOfMsg"};
    Frame fCSConfig{L"fCSConfig"};
    ChecksumPanel Panel{IsLoading};
    CommandButton cmdOk{L"cmdOk"};
    CommandButton cmdCancel{L"cmdCancel"};

    void Form_Load() override;
    void Form_Unload(int32_t& Cancel) override;
    void Form_KeyPress(int32_t& KeyAscii) override;
    void cbEndOfMsg_Click();
    void cmdOk_Click();
    void cmdCancel_Click();

    CSVarPtr Candidate() const { return candidate_; }
    int32_t EndOfMessage() const { return endOfMessage_; }

private:
    // Fills and positions everything; runs on opening and after each "ETX".
    void load();
    void enableChecksum(bool enabled);

    CSVarPtr candidate_;
    int32_t endOfMessage_ = 1;
};

}  // namespace qx
