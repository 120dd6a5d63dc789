// The TCP/IP Config operation and its dialog, driven as the host and a
// person drive them: the socket constant and the status operand, the
// instance's address table written on OK, the name rules and Cancel.
#include "tcpip/eth_protocol_config.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/runtime_catalogue.h"
#include "support/test_helpers.h"
#include "tcpip/eth_config_bench.h"

namespace qx {
namespace {

using test::runtimeErrorOf;
using testing_eth::EthConfigBench;
using testing_eth::memoryChoice;

// Parameters and records of the address table, written from its layout.
Bytes constantParam(uint32_t value) {
    return {1,
            0,
            static_cast<uint8_t>(value),
            static_cast<uint8_t>(value >> 8),
            static_cast<uint8_t>(value >> 16),
            static_cast<uint8_t>(value >> 24)};
}
Bytes memoryParam(uint16_t address) {
    return {0, 0, static_cast<uint8_t>(address), static_cast<uint8_t>(address >> 8), 0, 0};
}
Bytes record(uint8_t used, const Bytes& ip, const Bytes& port, const std::string& description) {
    Bytes out{used, 0};
    out.insert(out.end(), ip.begin(), ip.end());
    out.insert(out.end(), port.begin(), port.end());
    std::string padded = description + std::string(12 - description.size(), ' ');
    out.insert(out.end(), padded.begin(), padded.end());
    return out;
}
// The table of a new instance: port 20000 and "Address i" everywhere, no IP.
Bytes defaultTable() {
    Bytes out{100, 16};
    for (int i = 0; i < 16; ++i) {
        Bytes one = record(0, constantParam(0), constantParam(20000), "Address " + std::to_string(i));
        out.insert(out.end(), one.begin(), one.end());
    }
    return out;
}
// The default table with some records replaced.
Bytes tableWith(const std::vector<std::pair<int, Bytes>>& records) {
    Bytes out = defaultTable();
    for (const auto& [index, bytes] : records) std::copy(bytes.begin(), bytes.end(), out.begin() + 2 + index * 26);
    return out;
}

class EthConfigTest : public ::testing::Test {
protected:
    EthConfigBench bench;
    std::shared_ptr<clsEthProtocolConfig>& config = bench.config;

    Bytes instanceData(int32_t number) {
        Bytes data;
        bench.instances->GetInstanceData(number, data);
        return data;
    }
    std::vector<int32_t> messageNumbers() {
        std::vector<int32_t> numbers;
        for (const auto& message : bench.context->Messages) numbers.push_back(message.Number);
        return numbers;
    }
    // Opens the address dialog of a cell through its ellipsis button.
    static void openAddressDialog(frmEthProtocolConfig& dialog, int32_t row, int32_t col) {
        dialog.vsfSlaves.UserClick(row, col);
        dialog.vsfSlaves.UserCellButtonClick();
    }
};

// --- The operation ---

TEST_F(EthConfigTest, CreateDummyOperandsMakesTheSocketAConstantOfTheConstantTable) {
    bench.makeNew();
    OperandPtr socket = config->itfFBMethod_InOperands()->Item(L"1");
    EXPECT_TRUE(config->itfFBMethod_IsNew());
    EXPECT_EQ(socket->OperandMode(), 2);
    EXPECT_EQ(socket->OperandType(), 37);
    EXPECT_EQ(socket->OperandAddress(), 1);
    EXPECT_EQ(socket->OperandConstantValue(), 0);
    EXPECT_EQ(socket->OperandDescription(), L"Socket 0");
    EXPECT_EQ(socket->OperandFormat(), 3);
    EXPECT_TRUE(socket->OperandConstantListOnly());
    EXPECT_EQ(bench.context->Operands.ConstantValue(1), 0);
    EXPECT_EQ(bench.context->Operands.LinkCount(37, 1), 1);
    EXPECT_EQ(config->itfFBMethod_VisbleInCout(), 1);
    EXPECT_EQ(config->itfFBMethod_VisbleOutCout(), 1);
    EXPECT_EQ(config->itfFBMethod_VisbleInOperands()->Item(1), socket);
    OperandPtr status = config->itfFBMethod_OutOperands()->Item(L"1");
    EXPECT_TRUE(status->IsNew());
    EXPECT_EQ(status->OperandType(), 3);
    EXPECT_EQ(status->OperandDescription(), GetText(34));
}

TEST_F(EthConfigTest, BuildOperandsOffersTheFourSocketsOfTheConstantListOnly) {
    bench.context->ExtendedOperands = true;
    bench.makeNew();
    OperandPtr socket = config->itfFBMethod_VisbleInOperands()->Item(1);
    EXPECT_EQ(socket->AllowedTypes(), (std::vector<AllowedType>{{2, 37, true}, {2, 34, true}}));
    EXPECT_EQ(socket->OperandConstantListMode(), 1);
    EXPECT_TRUE(socket->OperandConstantListOnly());
    ASSERT_EQ(socket->ConstantList().size(), 4u);
    EXPECT_EQ(socket->ConstantList()[0],
              (std::pair<int32_t, std::wstring>{0, L"Socket 0 Default: UDP (20000), PLC MODBUS Network"}));
    EXPECT_EQ(socket->ConstantList()[1],
              (std::pair<int32_t, std::wstring>{1, L"Socket 1 Default: TCP (20256), Rungmere etc."}));
    EXPECT_EQ(socket->ConstantList()[2],
              (std::pair<int32_t, std::wstring>{2, L"Socket 2 Default: TCP (502), MODBUS slave"}));
    EXPECT_EQ(socket->ConstantList()[3],
              (std::pair<int32_t, std::wstring>{3, L"Socket 3 Default: TCP (20257), slave"}));
    EXPECT_EQ(socket->OperandCaption(), GetText(26));
    EXPECT_EQ(socket->OperandTitle(), GetText(26));
    OperandPtr status = config->itfFBMethod_VisbleOutOperands()->Item(1);
    EXPECT_EQ(status->AllowedTypes(), (std::vector<AllowedType>{{1, 3, true}, {1, 65, true}}));
}

TEST_F(EthConfigTest, TheOperationHasNoBinaryImage) {
    bench.makeNew();
    config->itfFBMethod_BinaryOperands(Bytes{1, 2});
    EXPECT_TRUE(config->itfFBMethod_BinaryOperands().empty());
}

TEST_F(EthConfigTest, FatherInstanceNumFetchesTheNameAndTheAddressTable) {
    int32_t number = bench.instances->Seed(L"Plant", defaultTable());
    config->itfFBMethod_FatherInstanceNum(number);
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Plant");
    EXPECT_EQ(config->itfFBMethod_InstanceData(), defaultTable());
}

// --- A new Config ---

TEST_F(EthConfigTest, ANewConfigAddsAnInstanceAndShowsSixteenDefaultAddresses) {
    bench.makeNew();
    std::wstring caption, name;
    bool okAtShow = true;
    std::vector<std::vector<std::wstring>> rows;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        caption = dialog.Caption();
        name = dialog.txtInstanceName.Text();
        okAtShow = dialog.cmdOK.Enabled();
        for (int32_t r = 0; r < dialog.vsfSlaves.Rows(); ++r) {
            std::vector<std::wstring> cells;
            for (int32_t c = 0; c < dialog.vsfSlaves.Cols(); ++c) cells.push_back(dialog.vsfSlaves.TextMatrix(r, c));
            rows.push_back(cells);
        }
        dialog.cmdCancel.UserClick();
    });
    bench.driver.QueuePickCancel();  // the walk stops at once
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(caption, L"Stub " + GetText(203));
    EXPECT_EQ(name, L"Config1");
    EXPECT_FALSE(okAtShow);
    ASSERT_EQ(rows.size(), 17u);
    EXPECT_EQ(rows[0], (std::vector<std::wstring>{L"Index", L"IP Address", L"Port", L"Description"}));
    EXPECT_EQ(rows[1], (std::vector<std::wstring>{L"0", L"", L"20000", L"Address 0"}));
    EXPECT_EQ(rows[16], (std::vector<std::wstring>{L"15", L"", L"20000", L"Address 15"}));
}

TEST_F(EthConfigTest, TheFirstActivationWalksTheSocketThenTheStatusAndEnablesOK) {
    bench.placeNew(1, 100);
    bool okAfterWalk = false;
    std::vector<std::wstring> socketRow, statusRow;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        okAfterWalk = dialog.cmdOK.Enabled();
        for (int32_t c = 0; c < 6; ++c) {
            socketRow.push_back(dialog.vsfOperands.TextMatrix(1, c));
            statusRow.push_back(dialog.vsfOperands.TextMatrix(2, c));
        }
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
    EXPECT_TRUE(okAfterWalk);
    EXPECT_EQ(socketRow, (std::vector<std::wstring>{L"IN", L"#I", L"", L"1", L"Decimal", L"Socket 1"}));
    EXPECT_EQ(statusRow, (std::vector<std::wstring>{L"OUT", L"MI", L"100", L"", L"Format 0", L"status"}));
    EXPECT_FALSE(config->itfFBMethod_IsCanceled());
    EXPECT_FALSE(config->itfFBMethod_IsNew());
    EXPECT_EQ(config->itfFBMethod_InOperands()->Item(1)->OperandConstantValue(), 10000);
}

TEST_F(EthConfigTest, ACanceledLinkEndsTheWalkAndKeepsOKDisabled) {
    bench.makeNew();
    bench.driver.QueuePickCancel();
    bench.driver.QueuePick(memoryChoice(3, 100));
    bool ok = true;
    std::wstring statusDescription;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        ok = dialog.cmdOK.Enabled();
        statusDescription = dialog.vsfOperands.TextMatrix(2, 5);
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(ok);
    EXPECT_EQ(bench.driver.PendingPicks(), 1u);
    // The unlinked status shows its caption only.
    EXPECT_EQ(statusDescription, GetText(34));
}

TEST_F(EthConfigTest, OKWritesTheDefaultTableIntoTheNewInstance) {
    bench.placeNew();
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdOK.UserClick(); });
    config->itfFBMethod_EditOperands();
    int32_t number = config->itfFBMethod_FatherInstanceNum();
    EXPECT_EQ(instanceData(number), defaultTable());
    EXPECT_EQ(instanceData(number).size(), 418u);
    EXPECT_EQ(config->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST_F(EthConfigTest, InstanceDataStaysTheFetchedImageUntilFatherInstanceNumIsSetAgain) {
    bench.placeNew();
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdOK.UserClick(); });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(config->itfFBMethod_InstanceData().empty());
    config->itfFBMethod_FatherInstanceNum(config->itfFBMethod_FatherInstanceNum());
    EXPECT_EQ(config->itfFBMethod_InstanceData(), defaultTable());
}

TEST_F(EthConfigTest, CancelOfANewConfigDeletesItsInstance) {
    bench.placeNew();
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdCancel.UserClick(); });
    config->itfFBMethod_EditOperands();
    int32_t number = config->itfFBMethod_FatherInstanceNum();
    EXPECT_TRUE(config->itfFBMethod_IsCanceled());
    EXPECT_TRUE(config->itfFBMethod_IsNew());
    EXPECT_FALSE(bench.instances->Has(number));
    EXPECT_EQ(bench.instances->Deleted, (std::vector<int32_t>{number}));
}

TEST_F(EthConfigTest, TheControlBoxCancelsAndDeletesANewInstanceToo) {
    bench.placeNew();
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.UserClose(); });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(config->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.instances->Count(), 0u);
}

// --- An existing Config ---

TEST_F(EthConfigTest, AnExistingConfigShowsItsTableAndStartsWithOKEnabled) {
    Bytes table = tableWith({{0, record(1, constantParam(0x0A01A8C0), constantParam(502), "PLC north")},
                             {1, record(1, memoryParam(200), memoryParam(204), "From MIs")}});
    bench.reopen(L"Plant", table);
    bool ok = false;
    std::wstring name, ip0, port0, description0, ip1, port1, socketValue;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        ok = dialog.cmdOK.Enabled();
        name = dialog.txtInstanceName.Text();
        ip0 = dialog.vsfSlaves.TextMatrix(1, 1);
        port0 = dialog.vsfSlaves.TextMatrix(1, 2);
        description0 = dialog.vsfSlaves.TextMatrix(1, 3);
        ip1 = dialog.vsfSlaves.TextMatrix(2, 1);
        port1 = dialog.vsfSlaves.TextMatrix(2, 2);
        socketValue = dialog.vsfOperands.TextMatrix(1, 3);
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(ok);
    EXPECT_EQ(name, L"Plant");
    EXPECT_EQ(ip0, L"192.168.1.10");
    EXPECT_EQ(port0, L"502");
    EXPECT_EQ(description0, L"PLC north   ");  // the padding comes back with the text
    EXPECT_EQ(ip1, L"MI 200");
    EXPECT_EQ(port1, L"MI 204");
    EXPECT_EQ(socketValue, L"2");
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
}

TEST_F(EthConfigTest, CancelOfAnExistingConfigKeepsItsInstanceAndTable) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    bench.onDialog([](frmEthProtocolConfig& dialog) {
        dialog.cmdClearLink.UserClick();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(bench.instances->Has(number));
    EXPECT_EQ(instanceData(number), defaultTable());
    EXPECT_TRUE(config->itfFBMethod_IsCanceled());
}

TEST_F(EthConfigTest, OKListsTheTableMIsAsFindOnlyOperandsIPBeforePortInIndexOrder) {
    Bytes table = tableWith({{3, record(1, memoryParam(300), memoryParam(310), "c")},
                             {1, record(0, constantParam(0), memoryParam(120), "b")}});
    int32_t number = bench.reopen(L"Plant", table);
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdOK.UserClick(); });
    config->itfFBMethod_EditOperands();
    OperandCollectionPtr findOnly = config->itfFBMethod_OperandsForFindOnly();
    ASSERT_EQ(findOnly->Count(), 3);
    EXPECT_EQ(findOnly->Item(1)->OperandAddress(), 120);
    EXPECT_EQ(findOnly->Item(2)->OperandAddress(), 300);
    EXPECT_EQ(findOnly->Item(3)->OperandAddress(), 310);
    EXPECT_EQ(findOnly->Item(1)->OperandType(), 3);
    // A row with a port but no IP keeps its port and its used flag 0.
    EXPECT_EQ(instanceData(number), table);
}

TEST_F(EthConfigTest, AnImageShorterThanItsCountGoesUpAsError9) {
    Bytes table = defaultTable();
    table.resize(400);
    bench.reopen(L"Plant", table);
    EXPECT_EQ(runtimeErrorOf([&] { config->itfFBMethod_EditOperands(); }), err::SubscriptOutOfRange);
    EXPECT_EQ(bench.driver.PendingDialogs(), 0u);
}

TEST_F(EthConfigTest, ADoubleClickOnAnOperandRowLinksItAgainAndShowsTheNewLink) {
    bench.reopen(L"Plant", defaultTable());
    bench.driver.QueuePick(memoryChoice(3, 77, L"new status"));
    std::wstring address, description;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.vsfOperands.UserDoubleClick(0, 2);  // the header row is no operand
        EXPECT_EQ(bench.driver.PendingPicks(), 1u);
        dialog.vsfOperands.UserDoubleClick(2, 2);
        address = dialog.vsfOperands.TextMatrix(2, 2);
        description = dialog.vsfOperands.TextMatrix(2, 5);
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(address, L"77");
    EXPECT_EQ(description, L"new status");
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 77);
    EXPECT_EQ(bench.context->Operands.LinkCount(3, 50), 0);
}

TEST_F(EthConfigTest, TheOperandGridPointerAndTheIconComeFromThePictureTable) {
    bench.reopen(L"Plant", defaultTable());
    bool hasIcon = false, hasPointer = false;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        hasIcon = dialog.Icon() && dialog.Icon()->Pixels.at(0) == 401 % 256;
        hasPointer = dialog.vsfOperands.MouseIcon() && dialog.vsfOperands.MouseIcon()->Pixels.at(0) == 201;
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(hasIcon);
    EXPECT_TRUE(hasPointer);
}

TEST_F(EthConfigTest, HelpAsksForTheFamilysPage) {
    bench.reopen(L"Plant", defaultTable());
    bench.onDialog([](frmEthProtocolConfig& dialog) {
        dialog.cmdHelp.UserClick();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(bench.instances->HelpShown, (std::vector<int32_t>{170200}));
}

// --- The name ---

TEST_F(EthConfigTest, AForbiddenCharacterBeepsAndClearsTheWholeName) {
    bench.reopen(L"Plant", defaultTable());
    bench.context->NameLimits[22] = 12;
    std::wstring name;
    bool ok = true;
    int32_t limit = 0;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        limit = dialog.txtInstanceName.MaxLength();
        dialog.txtInstanceName.UserType(L"Line|");
        name = dialog.txtInstanceName.Text();
        ok = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(limit, 12);
    EXPECT_EQ(name, L"");
    EXPECT_FALSE(ok);
    EXPECT_EQ(bench.context->BeepCount, 1);
}

TEST_F(EthConfigTest, ABlankNameDisablesOK) {
    bench.reopen(L"Plant", defaultTable());
    bool ok = true;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"   ");
        ok = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(ok);
}

TEST_F(EthConfigTest, AGoodConfigExplainsNothingAndABlankNameIsExplained) {
    bench.reopen(L"Plant", defaultTable());
    std::wstring good = L"?", blank;
    bool okWhenBlank = true;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        good = dialog.inputProblem();
        dialog.txtInstanceName.UserType(L"   ");
        blank = dialog.inputProblem();
        okWhenBlank = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(good, L"");
    EXPECT_EQ(blank, L"Name must not be empty");
    EXPECT_FALSE(okWhenBlank);
}

TEST_F(EthConfigTest, AnOperandLeftUnlinkedByTheWalkIsExplainedByItsRow) {
    bench.makeNew();
    bench.driver.QueuePick(testing_eth::socketChoice(1));
    bench.driver.QueuePickCancel();
    std::wstring explained;
    bool ok = true;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        explained = dialog.inputProblem();
        ok = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(explained, L"OUT operand \"" + GetText(34) + L"\" must be linked: double-click its row");
    EXPECT_FALSE(ok);
}

TEST_F(EthConfigTest, TheNameOfAnotherInstanceIsExplainedBeforeOKRefusesIt) {
    bench.instances->Seed(L"Other");
    bench.reopen(L"Plant", defaultTable());
    std::wstring explained;
    bool ok = false;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Other");
        explained = dialog.inputProblem();
        ok = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(explained, L"Name \"Other\" is already used by another instance");
    // OK stays enabled: it is its click that refuses, with message 110.
    EXPECT_TRUE(ok);
    EXPECT_TRUE(messageNumbers().empty());
}

TEST_F(EthConfigTest, TheNameOfAnotherInstanceShowsMessage110AndTheDialogStays) {
    bench.instances->Seed(L"Other");
    int32_t number = bench.reopen(L"Plant", defaultTable());
    bool stillShown = false;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.txtInstanceName.UserType(L"Other");
        dialog.cmdOK.UserClick();
        stillShown = dialog.Visible();
        dialog.txtInstanceName.UserType(L"Renamed");
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(stillShown);
    EXPECT_EQ(messageNumbers(), (std::vector<int32_t>{110}));
    std::wstring name;
    bench.instances->GetInstanceName(number, name);
    EXPECT_EQ(name, L"Renamed");
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Renamed");
}

TEST_F(EthConfigTest, TheNameBoxSelectsItsWholeTextWhenItGetsTheFocus) {
    bench.reopen(L"Plant", defaultTable());
    int32_t start = -1, length = -1, startAgain = -1, lengthAgain = -1;
    std::wstring selected;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.vsfSlaves.UserMoveTo(1, 1);
        dialog.txtInstanceName.SelStart(2);
        dialog.txtInstanceName.SetFocus();
        start = dialog.txtInstanceName.SelStart();
        length = dialog.txtInstanceName.SelLength();
        selected = dialog.txtInstanceName.SelText();
        // Away and back: the caret placed in between does not survive the focus.
        dialog.txtInstanceName.SelStart(3);
        dialog.cmdHelp.UserClick();
        dialog.txtInstanceName.SetFocus();
        startAgain = dialog.txtInstanceName.SelStart();
        lengthAgain = dialog.txtInstanceName.SelLength();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(start, 0);
    EXPECT_EQ(length, 5);
    EXPECT_EQ(selected, L"Plant");
    EXPECT_EQ(startAgain, 0);
    EXPECT_EQ(lengthAgain, 5);
}

TEST_F(EthConfigTest, TypingAfterTheFocusReplacesTheWholeName) {
    bench.reopen(L"Plant", defaultTable());
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.cmdHelp.UserClick();
        dialog.txtInstanceName.SetFocus();
        for (wchar_t ch : std::wstring(L"Mill")) dialog.txtInstanceName.UserKeyPress(ch);
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    ASSERT_FALSE(config->itfFBMethod_IsCanceled());
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Mill");
}

TEST_F(EthConfigTest, AnInstanceMayKeepItsOwnName) {
    bench.reopen(L"Plant", defaultTable());
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdOK.UserClick(); });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(config->itfFBMethod_IsCanceled());
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST_F(EthConfigTest, TheHostMayRenumberTheInstanceOnOK) {
    bench.reopen(L"Plant", defaultTable());
    bench.instances->RenumberOnUpdate = 9;
    bench.onDialog([](frmEthProtocolConfig& dialog) { dialog.cmdOK.UserClick(); });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(config->itfFBMethod_FatherInstanceNum(), 9);
}

// --- The address grid ---

TEST_F(EthConfigTest, TheAddressGridOffersTheEllipsisInTheIPAndPortColumnsOnly) {
    bench.reopen(L"Plant", defaultTable());
    std::vector<std::wstring> lists;
    int32_t limit = 0;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        for (int32_t col : {1, 2, 3}) {
            dialog.vsfSlaves.UserMoveTo(4, col);
            lists.push_back(dialog.vsfSlaves.ComboList());
        }
        limit = dialog.vsfSlaves.EditMaxLength();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(lists, (std::vector<std::wstring>{L"...", L"...", L""}));
    EXPECT_EQ(limit, 12);
}

TEST_F(EthConfigTest, AClickInTheDescriptionColumnStartsTheEditorAtOnceAndStopsAtTwelveCharacters) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    bool editingAfterClick = false, editingIP = true;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.vsfSlaves.UserClick(2, 1);
        dialog.vsfSlaves.UserType(L"10.0.0.1");
        editingIP = dialog.vsfSlaves.IsEditing();
        dialog.vsfSlaves.UserClick(2, 3);
        editingAfterClick = dialog.vsfSlaves.IsEditing();
        dialog.vsfSlaves.UserType(L"Boiler house north");
        dialog.vsfSlaves.UserEndEdit();
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(editingIP);
    EXPECT_TRUE(editingAfterClick);
    EXPECT_EQ(instanceData(number),
              tableWith({{1, record(0, constantParam(0), constantParam(20000), "Boiler house")}}));
}

TEST_F(EthConfigTest, ADescriptionStillBeingEditedIsStoredWhenOKIsClicked) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    bool editingBeforeOK = false;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.vsfSlaves.UserClick(1, 3);
        dialog.vsfSlaves.UserType(L"Pump");
        editingBeforeOK = dialog.vsfSlaves.IsEditing();
        // No Enter: OK is clicked with the cell editor still open.
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_TRUE(editingBeforeOK);
    ASSERT_FALSE(config->itfFBMethod_IsCanceled());
    EXPECT_EQ(instanceData(number), tableWith({{0, record(0, constantParam(0), constantParam(20000), "Pump")}}));
}

TEST_F(EthConfigTest, ADescriptionBeingEditedEndsBeforeClearLinkActsOnItsRow) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    std::wstring cellAfterClear = L"?";
    bool editingAfterClear = true;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        dialog.vsfSlaves.UserClick(3, 3);
        dialog.vsfSlaves.UserType(L"Tank");
        dialog.cmdClearLink.UserClick();
        editingAfterClear = dialog.vsfSlaves.IsEditing();
        cellAfterClear = dialog.vsfSlaves.TextMatrix(3, 3);
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(editingAfterClear);
    EXPECT_EQ(cellAfterClear, L"");
    Bytes cleared{0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0};
    cleared.resize(26, ' ');
    EXPECT_EQ(instanceData(number), tableWith({{2, cleared}}));
}

TEST_F(EthConfigTest, ClearLinkStartsDisabledAndEmptiesTheCurrentAddress) {
    Bytes table = tableWith({{2, record(1, memoryParam(200), constantParam(502), "PLC")}});
    int32_t number = bench.reopen(L"Plant", table);
    bool atStart = true, onFilledRow = false, afterClear = true;
    std::vector<std::wstring> cells;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        atStart = dialog.cmdClearLink.Enabled();
        dialog.vsfSlaves.UserClick(3, 1);
        onFilledRow = dialog.cmdClearLink.Enabled();
        dialog.cmdClearLink.UserClick();
        for (int32_t c = 0; c < 4; ++c) cells.push_back(dialog.vsfSlaves.TextMatrix(3, c));
        afterClear = dialog.cmdClearLink.Enabled();
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_FALSE(atStart);
    EXPECT_TRUE(onFilledRow);
    EXPECT_FALSE(afterClear);
    EXPECT_EQ(cells, (std::vector<std::wstring>{L"2", L"", L"", L""}));
    EXPECT_EQ(instanceData(number), tableWith({{2, record(0, constantParam(0), constantParam(0), "")}}));
    EXPECT_EQ(config->itfFBMethod_OperandsForFindOnly()->Count(), 0);
}

TEST_F(EthConfigTest, AnIPTypedInTheAddressDialogReachesTheCellAndTheImage) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    std::wstring cell;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        openAddressDialog(dialog, 1, 1);
        cell = dialog.vsfSlaves.TextMatrix(1, 1);
        dialog.cmdOK.UserClick();
    });
    bench.onAddressDialog([](frmEthAddressParam& dialog) {
        dialog.ctlIPAddress.UserType(L"192.168.1.10");
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(cell, L"192.168.1.10");
    EXPECT_EQ(instanceData(number),
              tableWith({{0, record(1, constantParam(0x0A01A8C0), constantParam(20000), "Address 0")}}));
}

TEST_F(EthConfigTest, APortFromAnMIReachesTheCellTheImageAndTheFindOnlyList) {
    int32_t number = bench.reopen(L"Plant", defaultTable());
    bench.driver.QueuePick(memoryChoice(3, 410));
    std::wstring cell;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        openAddressDialog(dialog, 6, 2);
        cell = dialog.vsfSlaves.TextMatrix(6, 2);
        dialog.cmdOK.UserClick();
    });
    bench.onAddressDialog([](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        dialog.cmdMI.UserClick();
        dialog.cmdOK.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(cell, L"MI 410");
    EXPECT_EQ(instanceData(number), tableWith({{5, record(0, constantParam(0), memoryParam(410), "Address 5")}}));
    ASSERT_EQ(config->itfFBMethod_OperandsForFindOnly()->Count(), 1);
    EXPECT_EQ(config->itfFBMethod_OperandsForFindOnly()->Item(1)->OperandAddress(), 410);
}

TEST_F(EthConfigTest, ACanceledAddressDialogKeepsTheRecordAsItWas) {
    Bytes table = tableWith({{0, record(1, constantParam(0x0A01A8C0), constantParam(502), "PLC")}});
    int32_t number = bench.reopen(L"Plant", table);
    std::wstring ipTextAfterSwitch = L"x";
    std::wstring cell;
    bench.onDialog([&](frmEthProtocolConfig& dialog) {
        openAddressDialog(dialog, 1, 1);
        cell = dialog.vsfSlaves.TextMatrix(1, 1);
        dialog.cmdOK.UserClick();
    });
    bench.onAddressDialog([&](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        ipTextAfterSwitch = dialog.ctlIPAddress.Text();
        dialog.cmdCancel.UserClick();
    });
    config->itfFBMethod_EditOperands();
    EXPECT_EQ(ipTextAfterSwitch, L"");
    EXPECT_EQ(cell, L"192.168.1.10");
    EXPECT_EQ(instanceData(number), table);
}

}  // namespace
}  // namespace qx
