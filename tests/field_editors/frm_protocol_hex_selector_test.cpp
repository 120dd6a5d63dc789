// The control-character selector driven as a person would: its tables, the
// click that takes a row, arrow keys that do not, the double click that
// accepts, and the three ways out that cancel.
#include "field_editors/frm_protocol_hex_selector.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/host/host_context.h"

namespace qx {
namespace {

constexpr int32_t keyEscape = 27;

class HexSelectorTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();

    // Runs Edit with the person's actions; the result and pSelectedValue.
    std::pair<bool, uint8_t> edit(int32_t type, std::function<void(frmProtocolHexSelector&)> script) {
        driver.QueueDialog(scriptFor<frmProtocolHexSelector>(std::move(script)));
        uint8_t value = 0xEE;
        bool accepted = frmProtocolHexSelector().Edit(value, type);
        return {accepted, value};
    }
    // The table as the dialog shows it, looked at while it is open.
    std::vector<std::vector<std::wstring>> table(int32_t type) {
        std::vector<std::vector<std::wstring>> rows;
        edit(type, [&](frmProtocolHexSelector& dialog) {
            for (int32_t r = 0; r < dialog.flgLowChars.Rows(); ++r)
                rows.push_back({dialog.flgLowChars.TextMatrix(r, 0), dialog.flgLowChars.TextMatrix(r, 1),
                                dialog.flgLowChars.TextMatrix(r, 2)});
        });
        return rows;
    }
};

TEST_F(HexSelectorTest, OpensWithItsCaptionFrameButtonsAndThreeColumnsOfTheirWidths) {
    std::wstring caption, frame, ok, cancel;
    int32_t cols = 0, fixedRows = 0, fixedCols = -1, row = 0;
    std::vector<int32_t> widths;
    bool hasIcon = false, byRow = false;
    edit(0, [&](frmProtocolHexSelector& dialog) {
        caption = dialog.Caption();
        frame = dialog.fSelectCharacter.Caption();
        ok = dialog.cmdOk.Caption();
        cancel = dialog.cmdCancel.Caption();
        cols = dialog.flgLowChars.Cols();
        fixedRows = dialog.flgLowChars.FixedRows();
        fixedCols = dialog.flgLowChars.FixedCols();
        row = dialog.flgLowChars.Row();
        byRow = dialog.flgLowChars.SelectionMode() == Grid::SelectionByRow;
        for (int32_t c = 0; c < cols; ++c) widths.push_back(dialog.flgLowChars.ColWidth(c));
        hasIcon = dialog.Icon() != nullptr;
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(caption, L"Control Characters");
    EXPECT_EQ(frame, L"Select Character");
    EXPECT_EQ(ok, L"OK");
    EXPECT_EQ(cancel, L"Cancel");
    EXPECT_EQ(cols, 3);
    EXPECT_EQ(fixedRows, 1);
    EXPECT_EQ(fixedCols, 0);
    EXPECT_EQ(widths, (std::vector<int32_t>{795, 795, 900}));
    EXPECT_EQ(row, 1);
    EXPECT_TRUE(byRow);
    EXPECT_TRUE(hasIcon);
}

TEST_F(HexSelectorTest, TypeZeroShowsTheThirtyTwoControlCharactersUnderTheHeader) {
    auto rows = table(0);
    ASSERT_EQ(rows.size(), 33u);
    EXPECT_EQ(rows[0], (std::vector<std::wstring>{L"Dec", L"Hex", L"Description"}));
    EXPECT_EQ(rows[1], (std::vector<std::wstring>{L"0", L"00", L"(NUL)"}));
    EXPECT_EQ(rows[4], (std::vector<std::wstring>{L"3", L"03", L"(ETX)"}));
    EXPECT_EQ(rows[11], (std::vector<std::wstring>{L"10", L"0A", L"(LF)"}));
    EXPECT_EQ(rows[28], (std::vector<std::wstring>{L"27", L"1B", L"(ESC)"}));
    EXPECT_EQ(rows[32], (std::vector<std::wstring>{L"31", L"1F", L"(US)"}));
}

TEST_F(HexSelectorTest, EveryControlCharacterHasItsName) {
    const wchar_t* names[] = {L"(NUL)", L"(SOH)", L"(STX)", L"(ETX)", L"(EOT)", L"(ENQ)", L"(ACK)", L"(BEL)",
                              L"(BS)",  L"(HT)",  L"(LF)",  L"(VT)",  L"(FF)",  L"(CR)",  L"(SO)",  L"(SI)",
                              L"(DLE)", L"(DC1)", L"(DC2)", L"(DC3)", L"(DC4)", L"(NAK)", L"(SYN)", L"(ETB)",
                              L"(CAN)", L"(EM)",  L"(SUB)", L"(ESC)", L"(FS)",  L"(GS)",  L"(RS)",  L"(US)"};
    for (int32_t code = 0; code < 32; ++code) EXPECT_EQ(controlCharacterName(code), names[code]) << code;
    EXPECT_EQ(controlCharacterName(32), L"");
    EXPECT_EQ(controlCharacterName(255), L"");
    EXPECT_EQ(controlCharacterName(-1), L"");
}

TEST_F(HexSelectorTest, TypeOneShowsAllCodesWithPrintableCharactersUpTo126) {
    auto rows = table(1);
    ASSERT_EQ(rows.size(), 257u);
    EXPECT_EQ(rows[32], (std::vector<std::wstring>{L"31", L"1F", L"(US)"}));
    EXPECT_EQ(rows[33], (std::vector<std::wstring>{L"32", L"20", L" "}));
    EXPECT_EQ(rows[66], (std::vector<std::wstring>{L"65", L"41", L"A"}));
    EXPECT_EQ(rows[127], (std::vector<std::wstring>{L"126", L"7E", L"~"}));
    EXPECT_EQ(rows[128], (std::vector<std::wstring>{L"127", L"7F", L""}));
    EXPECT_EQ(rows[256], (std::vector<std::wstring>{L"255", L"FF", L""}));
    for (int32_t code = 127; code <= 255; ++code) EXPECT_EQ(rows[code + 1][2], L"") << code;
}

TEST_F(HexSelectorTest, AnyOtherTypeShowsTheLowTable) {
    EXPECT_EQ(table(7).size(), 33u);
    EXPECT_EQ(table(-1).size(), 33u);
}

TEST_F(HexSelectorTest, OkAtOnceGivesCodeZero) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) { dialog.cmdOk.UserClick(); });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 0);
}

TEST_F(HexSelectorTest, AClickedRowIsTakenByOk) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(14, 2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 13);
}

TEST_F(HexSelectorTest, AClickOnAnyColumnTakesTheDecCellOfItsRow) {
    for (int32_t col = 0; col < 3; ++col) {
        auto [accepted, value] = edit(0, [col](frmProtocolHexSelector& dialog) {
            dialog.flgLowChars.UserClick(3, col);
            dialog.cmdOk.UserClick();
        });
        EXPECT_EQ(value, 2) << col;
    }
}

TEST_F(HexSelectorTest, ArrowKeysDownToETXAndOkGiveCodeZero) {
    std::wstring current;
    auto [accepted, value] = edit(0, [&](frmProtocolHexSelector& dialog) {
        for (int32_t row = 2; row <= 4; ++row) dialog.flgLowChars.UserMoveTo(row, 0);
        current = dialog.flgLowChars.TextMatrix(dialog.flgLowChars.Row(), 2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(current, L"(ETX)");
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 0);
}

TEST_F(HexSelectorTest, AfterAClickArrowKeysLeaveTheClickedCode) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(6, 0);
        dialog.flgLowChars.UserMoveTo(7, 0);
        dialog.flgLowChars.UserMoveTo(8, 0);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 5);
}

TEST_F(HexSelectorTest, AClickOnTheHeaderTakesTheCurrentRow) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserMoveTo(9, 0);
        dialog.flgLowChars.UserClick(0, 1);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(value, 8);
}

TEST_F(HexSelectorTest, ADoubleClickAcceptsTheRowItsClickTook) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(28, 0);
        dialog.flgLowChars.UserDoubleClick(28, 0);
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 27);
}

TEST_F(HexSelectorTest, CancelAfterAClickAnswersFalseAndStillWritesThatCode) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(11, 0);
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(accepted);
    EXPECT_EQ(value, 10);
}

TEST_F(HexSelectorTest, EscapeCancelsFromTheGridAndFromTheForm) {
    auto [fromGrid, gridValue] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(5, 0);
        dialog.flgLowChars.UserKeyPress(keyEscape);
    });
    EXPECT_FALSE(fromGrid);
    EXPECT_EQ(gridValue, 4);
    bool visibleAfter = true;
    auto [fromForm, formValue] = edit(0, [&](frmProtocolHexSelector& dialog) {
        dialog.UserKeyPress(keyEscape);
        visibleAfter = dialog.Visible();
    });
    EXPECT_FALSE(visibleAfter);
    EXPECT_FALSE(fromForm);
    EXPECT_EQ(formValue, 0);
}

TEST_F(HexSelectorTest, TheCloseBoxCancels) {
    auto [accepted, value] = edit(0, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(2, 1);
        dialog.UserClose();
    });
    EXPECT_FALSE(accepted);
    EXPECT_EQ(value, 1);
}

TEST_F(HexSelectorTest, TypeOneTakesACodeAbove127) {
    auto [accepted, value] = edit(1, [](frmProtocolHexSelector& dialog) {
        dialog.flgLowChars.UserClick(256, 1);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(accepted);
    EXPECT_EQ(value, 255);
}

TEST_F(HexSelectorTest, EachEditStartsAgainFromCodeZero) {
    frmProtocolHexSelector dialog;
    uint8_t value = 0;
    driver.QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& d) {
        d.flgLowChars.UserClick(20, 0);
        d.cmdOk.UserClick();
    }));
    EXPECT_TRUE(dialog.Edit(value, 0));
    EXPECT_EQ(value, 19);
    driver.QueueDialog(scriptFor<frmProtocolHexSelector>([](frmProtocolHexSelector& d) { d.cmdOk.UserClick(); }));
    EXPECT_TRUE(dialog.Edit(value, 0));
    EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace qx
