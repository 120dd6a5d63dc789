// The address-parameter dialog on its own: a constant IP or port typed in,
// or an MI linked, each with its OK rule; it hands back the parameter on OK
// only.
#include "tcpip/frm_eth_address_param.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "platform/host/host_context.h"
#include "tcpip/eth_config_bench.h"

namespace qx {
namespace {

using testing_eth::memoryChoice;

class AddressParamTest : public ::testing::Test {
protected:
    ScopedHostContext context;
    ScriptedModalDriver& driver = *context->Script();

    // Runs the dialog on param with the person's actions; returns pCanceled.
    bool edit(AddressParam& param, int32_t kind, std::function<void(frmEthAddressParam&)> script) {
        driver.QueueDialog(scriptFor<frmEthAddressParam>(std::move(script)));
        bool canceled = false;
        frmEthAddressParam().Edit(param, kind, canceled);
        return canceled;
    }
    // Whether OK is enabled after the person typed text into the entry of kind.
    bool okAfterTyping(int32_t kind, const std::wstring& text) {
        bool ok = true;
        AddressParam param;
        edit(param, kind, [&](frmEthAddressParam& dialog) {
            if (kind == eth::AddressKindIP)
                dialog.ctlIPAddress.UserType(text);
            else
                dialog.txtConstValueEx.UserType(text);
            ok = dialog.cmdOK.Enabled();
            dialog.cmdCancel.UserClick();
        });
        return ok;
    }
};

TEST_F(AddressParamTest, AnIPDialogShowsTheIPEntryAndItsConstant) {
    AddressParam param{nullptr, 0x0A01A8C0};
    std::wstring caption, optionCaption, text;
    bool ipVisible = false, portVisible = true, constSelected = false, miEnabled = true, ok = false;
    uint32_t entryColour = 0;
    edit(param, eth::AddressKindIP, [&](frmEthAddressParam& dialog) {
        caption = dialog.Caption();
        optionCaption = dialog.optConst.Caption();
        text = dialog.ctlIPAddress.Text();
        ipVisible = dialog.ctlIPAddress.Visible();
        portVisible = dialog.txtConstValueEx.Visible();
        constSelected = dialog.optConst.Value();
        miEnabled = dialog.cmdMI.Enabled() || dialog.lblMI.Enabled();
        entryColour = dialog.ctlIPAddress.BackColor();
        ok = dialog.cmdOK.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(caption, L"IP Address");
    EXPECT_EQ(optionCaption, L"IP Address");
    EXPECT_EQ(text, L"192.168.1.10");
    EXPECT_TRUE(ipVisible);
    EXPECT_FALSE(portVisible);
    EXPECT_TRUE(constSelected);
    EXPECT_FALSE(miEnabled);
    EXPECT_EQ(entryColour, colour::Window);
    EXPECT_TRUE(ok);
}

TEST_F(AddressParamTest, APortDialogWithAnMIShowsTheLinkAndGraysTheEntry) {
    AddressParam param{test::linkedOperand(3, 204), 0};
    std::wstring caption, label, text = L"x";
    bool portVisible = false, miSelected = false, entryEnabled = true;
    uint32_t entryColour = 0;
    edit(param, eth::AddressKindPort, [&](frmEthAddressParam& dialog) {
        caption = dialog.Caption();
        label = dialog.lblMI.Caption();
        text = dialog.txtConstValueEx.Text();
        portVisible = dialog.txtConstValueEx.Visible();
        miSelected = dialog.optMI.Value();
        entryEnabled = dialog.txtConstValueEx.Enabled();
        entryColour = dialog.txtConstValueEx.BackColor();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(caption, L"Port");
    EXPECT_EQ(label, L"MI 204");
    EXPECT_EQ(text, L"");
    EXPECT_TRUE(portVisible);
    EXPECT_TRUE(miSelected);
    EXPECT_FALSE(entryEnabled);
    EXPECT_EQ(entryColour, colour::ButtonFace);
}

TEST_F(AddressParamTest, OKTakesTheTypedIPWithItsFirstOctetInTheLowestByte) {
    AddressParam param;
    bool canceled = edit(param, eth::AddressKindIP, [](frmEthAddressParam& dialog) {
        dialog.ctlIPAddress.UserType(L"10.20.30.40");
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(canceled);
    EXPECT_EQ(param.Value, 0x281E140A);
    EXPECT_EQ(param.Operand, nullptr);
}

TEST_F(AddressParamTest, AnIPAbove127InTheLastOctetGivesANegativeValue) {
    AddressParam param;
    edit(param, eth::AddressKindIP, [](frmEthAddressParam& dialog) {
        dialog.ctlIPAddress.UserType(L"1.2.3.200");
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(static_cast<uint32_t>(param.Value), 0xC8030201u);
}

TEST_F(AddressParamTest, AnIPIsAcceptedOnlyWhenCompleteWithAFirstOctetAboveZero) {
    EXPECT_TRUE(okAfterTyping(eth::AddressKindIP, L"192.168.1.10"));
    EXPECT_TRUE(okAfterTyping(eth::AddressKindIP, L"1.0.0.0"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindIP, L"0.1.2.3"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindIP, L"192.168.1"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindIP, L"192.168.1.256"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindIP, L""));
}

TEST_F(AddressParamTest, APortIsAcceptedFrom1To32767WrittenAsItsOwnDecimalText) {
    EXPECT_TRUE(okAfterTyping(eth::AddressKindPort, L"1"));
    EXPECT_TRUE(okAfterTyping(eth::AddressKindPort, L"502"));
    EXPECT_TRUE(okAfterTyping(eth::AddressKindPort, L"32767"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"0"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"32768"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"080"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L" 80"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"-5"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"8a"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L"99999999999999999999"));
    EXPECT_FALSE(okAfterTyping(eth::AddressKindPort, L""));
}

TEST_F(AddressParamTest, EachRuleOfTheEntryIsExplainedAndAGoodEntryExplainsNothing) {
    struct Case {
        int32_t kind;
        std::wstring typed, explained;
    };
    const std::wstring fourNumbers = L"IP address must be four numbers separated by dots, as in 192.168.0.10";
    const std::wstring portRange = L"Port must be 1 to 32767";
    const Case cases[] = {
        {eth::AddressKindIP, L"192.168.1.10", L""},
        {eth::AddressKindIP, L"1.0.0.0", L""},
        {eth::AddressKindIP, L"", fourNumbers},
        {eth::AddressKindIP, L"192.168.1", fourNumbers},
        {eth::AddressKindIP, L"192..1.2", fourNumbers},
        {eth::AddressKindIP, L"256.1.2.3", L"IP address part 1 must be 0 to 255"},
        {eth::AddressKindIP, L"192.168.1.256", L"IP address part 4 must be 0 to 255"},
        {eth::AddressKindIP, L"0.1.2.3", L"IP address part 1 must not be 0"},
        {eth::AddressKindPort, L"1", L""},
        {eth::AddressKindPort, L"32767", L""},
        {eth::AddressKindPort, L"", portRange},
        {eth::AddressKindPort, L"0", portRange},
        {eth::AddressKindPort, L"32768", portRange},
        {eth::AddressKindPort, L"8a", portRange},
        {eth::AddressKindPort, L"-5", portRange},
        {eth::AddressKindPort, L" 80", portRange},
        {eth::AddressKindPort, L"99999999999999999999", portRange},
        {eth::AddressKindPort, L"080", L"Port must be written without leading zeros"},
    };
    for (const Case& c : cases) {
        std::wstring explained = L"?";
        bool ok = false;
        AddressParam param;
        edit(param, c.kind, [&](frmEthAddressParam& dialog) {
            if (c.kind == eth::AddressKindIP)
                dialog.ctlIPAddress.UserType(c.typed);
            else
                dialog.txtConstValueEx.UserType(c.typed);
            explained = dialog.inputProblem();
            ok = dialog.cmdOK.Enabled();
            dialog.cmdCancel.UserClick();
        });
        EXPECT_EQ(explained, c.explained) << std::string(c.typed.begin(), c.typed.end());
        // The words explain the button exactly: none while it is enabled.
        EXPECT_EQ(explained.empty(), ok) << std::string(c.typed.begin(), c.typed.end());
    }
}

TEST_F(AddressParamTest, AnAddressOfMIWithoutItsLinkIsExplainedUntilLinked) {
    std::wstring beforeLink, afterLink = L"?";
    AddressParam param{nullptr, 20000};
    driver.QueuePick(memoryChoice(3, 40, L"port"));
    edit(param, eth::AddressKindPort, [&](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        beforeLink = dialog.inputProblem();
        dialog.cmdMI.UserClick();
        afterLink = dialog.inputProblem();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(beforeLink, L"Address of MI must be linked to an MI: press ...");
    EXPECT_EQ(afterLink, L"");
}

TEST_F(AddressParamTest, OKTakesTheTypedPort) {
    AddressParam param{nullptr, 20000};
    edit(param, eth::AddressKindPort, [](frmEthAddressParam& dialog) {
        dialog.txtConstValueEx.UserType(L"502");
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(param.Value, 502);
}

TEST_F(AddressParamTest, SwitchingToTheMIClearsTheValueAtOnceAndOKWaitsForALink) {
    AddressParam param{nullptr, 20000};
    std::wstring text = L"x";
    bool ok = true, linkEnabled = false;
    bool canceled = edit(param, eth::AddressKindPort, [&](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        text = dialog.txtConstValueEx.Text();
        ok = dialog.cmdOK.Enabled();
        linkEnabled = dialog.cmdMI.Enabled() && dialog.lblMI.Enabled();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(text, L"");
    EXPECT_FALSE(ok);
    EXPECT_TRUE(linkEnabled);
    EXPECT_TRUE(canceled);
    EXPECT_EQ(param.Value, 20000);  // Cancel hands nothing back
}

TEST_F(AddressParamTest, AnIPLinkedToAnMITakesFourConsecutiveMIs) {
    AddressParam param;
    int32_t vectorLength = 0;
    std::vector<AllowedType> allowed;
    driver.QueuePick([&](clsOperand& operand) {
        vectorLength = operand.OperandVectorLength();
        allowed = operand.AllowedTypes();
        operand.OperandType(3);
        operand.OperandAddress(200);
        return true;
    });
    std::wstring label;
    edit(param, eth::AddressKindIP, [&](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        dialog.lblMI.UserClick();
        label = dialog.lblMI.Caption();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(vectorLength, 4);
    EXPECT_EQ(allowed, (std::vector<AllowedType>{{1, 3, true}}));
    EXPECT_EQ(label, L"MI 200");
    ASSERT_NE(param.Operand, nullptr);
    EXPECT_EQ(param.Operand->OperandAddress(), 200);
    EXPECT_FALSE(param.Operand->IsNew());
    EXPECT_EQ(param.Value, 0);
    EXPECT_EQ(context->Operands.LinkCount(3, 200), 1);
}

TEST_F(AddressParamTest, APortLinkKeepsAVectorOfOne) {
    AddressParam param;
    int32_t vectorLength = 0;
    driver.QueuePick([&](clsOperand& operand) {
        vectorLength = operand.OperandVectorLength();
        operand.OperandAddress(7);
        return true;
    });
    edit(param, eth::AddressKindPort, [](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        dialog.cmdMI.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(vectorLength, 1);
    EXPECT_EQ(param.Operand->OperandAddress(), 7);
}

TEST_F(AddressParamTest, ACanceledFirstLinkDropsTheNewOperand) {
    AddressParam param;
    driver.QueuePickCancel();
    bool ok = true;
    std::wstring label = L"x";
    edit(param, eth::AddressKindPort, [&](frmEthAddressParam& dialog) {
        dialog.optMI.UserClick();
        dialog.cmdMI.UserClick();
        ok = dialog.cmdOK.Enabled();
        label = dialog.lblMI.Caption();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_FALSE(ok);
    EXPECT_EQ(label, L"");
}

TEST_F(AddressParamTest, ACanceledRelinkKeepsTheOldLink) {
    AddressParam param{test::linkedOperand(3, 204), 0};
    driver.QueuePickCancel();
    bool canceled = edit(param, eth::AddressKindPort, [](frmEthAddressParam& dialog) {
        dialog.cmdMI.UserClick();
        dialog.cmdOK.UserClick();
    });
    EXPECT_FALSE(canceled);
    ASSERT_NE(param.Operand, nullptr);
    EXPECT_EQ(param.Operand->OperandAddress(), 204);
}

TEST_F(AddressParamTest, SwitchingBackToAConstantDropsTheLink) {
    AddressParam param{test::linkedOperand(3, 204), 0};
    edit(param, eth::AddressKindPort, [](frmEthAddressParam& dialog) {
        dialog.optConst.UserClick();
        dialog.txtConstValueEx.UserType(L"80");
        dialog.cmdOK.UserClick();
    });
    EXPECT_EQ(param.Operand, nullptr);
    EXPECT_EQ(param.Value, 80);
}

TEST_F(AddressParamTest, TheControlBoxCancels) {
    AddressParam param{nullptr, 502};
    bool canceled = edit(param, eth::AddressKindPort, [](frmEthAddressParam& dialog) {
        dialog.txtConstValueEx.UserType(L"80");
        dialog.UserClose();
    });
    EXPECT_TRUE(canceled);
    EXPECT_EQ(param.Value, 502);
}

}  // namespace
}  // namespace qx
