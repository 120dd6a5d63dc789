#include "serial/frm_protocol_copy_bytes.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "framework/shared_helpers.h"
#include "serial/copy_buffer_bench.h"

namespace qx {
namespace {

using testing_copy::CopyBufferBench;
using testing_copy::memoryChoice;

const std::wstring convert1 = L"Convert 1 Receive Bytes to ONE Linked Element";
const std::wstring convert2 = L"Convert 2 Receive Bytes to ONE Linked Element";
const std::wstring convert4 = L"Convert 4 Receive Bytes to ONE Linked Element";

struct ListItem {
    std::wstring Text;
    int32_t Data;
    bool operator==(const ListItem&) const = default;
};

std::vector<ListItem> itemsOf(const ComboBox& combo) {
    std::vector<ListItem> items;
    for (int32_t i = 0; i < combo.ListCount(); ++i) items.push_back({combo.List(i), combo.ItemData(i)});
    return items;
}

// What a person saw in the dialog at one moment.
struct Seen {
    int32_t InstanceIndex = -2;
    int32_t FormatIndex = -2;
    std::vector<ListItem> Formats;
    bool OkEnabled = false;
    size_t MessagesShown = 0;
    std::wstring Operand;
};

class FrmProtocolCopyBytesTest : public ::testing::Test {
protected:
    CopyBufferBench bench;

    Seen look(const frmProtocolCopyBytes& dialog) {
        return Seen{dialog.cbInstanceName.ListIndex(), dialog.cbCopyBytes.ListIndex(),
                    itemsOf(dialog.cbCopyBytes),       dialog.cmdOk.Enabled(),
                    bench.context->Messages.size(),    dialog.lbOperand.Caption()};
    }

    // Opens a stored Copy buffer and gives what the person saw on arrival.
    Seen openStored(const Bytes& image, int32_t destinationType = 5) {
        bench.reopen(image, destinationType);
        Seen seen;
        bench.edit([&](frmProtocolCopyBytes& dialog) { seen = look(dialog); });
        return seen;
    }
};

// --- Load ---

TEST_F(FrmProtocolCopyBytesTest, LoadFillsTheFormAndItsControls) {
    bench.context->AppFont = qx::Font{L"Segoe UI", 9};
    bench.reopen(Bytes{0x02, 0x00});
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        EXPECT_EQ(dialog.Caption(), L"Copy To Buffer");
        EXPECT_NE(dialog.Icon(), nullptr);
        EXPECT_EQ(dialog.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.cbCopyBytes.Font().Name, L"Segoe UI");
        EXPECT_EQ(dialog.cmdCancel.Font().Name, L"Segoe UI");
        EXPECT_TRUE(dialog.KeyPreview());
        EXPECT_EQ(dialog.lblInstanceName.Caption(), L"Select Name : ");
        EXPECT_EQ(dialog.lblCopyBytes.Caption(), L"Copy Format :");
        EXPECT_EQ(dialog.lbOpCaption.Caption(), L"Copy to : ");
        EXPECT_EQ(dialog.lbOperand.Caption(), GetOperandDisplayText(*bench.operand(1)));
        EXPECT_FALSE(dialog.lbOperand.Caption().empty());
        EXPECT_EQ(dialog.cmdOperand.ToolTipText(), L"Link Operand to Variable");
        EXPECT_EQ(dialog.cmdCancel.Caption(), L"Cancel");
        EXPECT_EQ(dialog.cbInstanceName.Text(), L"Line1");
        EXPECT_FALSE(dialog.IgnoreListEvents);
    });
}

TEST_F(FrmProtocolCopyBytesTest, InstanceListHoldsEveryConfigWithItsNumberAndSelectsTheLinkedOne) {
    int32_t first = bench.instances->Seed(L"Alpha");
    int32_t linked = bench.reopen(Bytes{0x02, 0x00});
    int32_t last = bench.instances->Seed(L"Omega");
    std::vector<ListItem> items;
    int32_t index = -1;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        items = itemsOf(dialog.cbInstanceName);
        index = dialog.cbInstanceName.ListIndex();
    });
    EXPECT_EQ(items, (std::vector<ListItem>{{L"Alpha", first}, {L"Line1", linked}, {L"Omega", last}}));
    EXPECT_EQ(index, 1);
    EXPECT_TRUE(bench.context->Messages.empty());
}

class WordDestination : public FrmProtocolCopyBytesTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(WordDestination, OffersOneAndTwoBytes) {
    Seen seen = openStored(Bytes{0x01, 0x00}, GetParam());
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}}));
    EXPECT_EQ(seen.FormatIndex, 0);
    EXPECT_TRUE(seen.OkEnabled);
}

INSTANTIATE_TEST_SUITE_P(MiAndItsExtendedTwin, WordDestination, ::testing::Values(3, 65));

class LongDestination : public FrmProtocolCopyBytesTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(LongDestination, OffersOneTwoAndFourBytes) {
    Seen seen = openStored(Bytes{0x04, 0x00}, GetParam());
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}, {convert4, 4}}));
    EXPECT_EQ(seen.FormatIndex, 2);
    EXPECT_TRUE(seen.OkEnabled);
}

INSTANTIATE_TEST_SUITE_P(LongRegistersAndTheirExtendedTwins, LongDestination, ::testing::Values(5, 16, 66, 67));

class DestinationWithoutFormats : public FrmProtocolCopyBytesTest, public ::testing::WithParamInterface<int32_t> {};

TEST_P(DestinationWithoutFormats, LeavesTheListEmptySoNoFormatCanBeChosenAndOkStaysDisabled) {
    bench.reopen(Bytes{0x00, 0x00}, GetParam());
    Seen seen;
    bool stillOpen = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        seen = look(dialog);
        dialog.cmdOk.UserClick();
        stillOpen = dialog.Visible();
    });
    EXPECT_TRUE(seen.Formats.empty());
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_TRUE(stillOpen);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.image(), (Bytes{0x00, 0x00}));
}

INSTANTIATE_TEST_SUITE_P(OtherTypes, DestinationWithoutFormats, ::testing::Values(1, 4, 7, 64));

TEST_F(FrmProtocolCopyBytesTest, StoredFormatOnATypeWithoutFormatsStillCountsForOk) {
    // The OK rule asks for a format above 0, not for a selected item.
    Seen seen = openStored(Bytes{0x02, 0x00}, 7);
    EXPECT_TRUE(seen.Formats.empty());
    EXPECT_TRUE(seen.OkEnabled);
}

TEST_F(FrmProtocolCopyBytesTest, StoredFormatIsSelectedByItsItemData) {
    EXPECT_EQ(openStored(Bytes{0x01, 0x00}).FormatIndex, 0);
    EXPECT_EQ(openStored(Bytes{0x02, 0x00}).FormatIndex, 1);
    EXPECT_EQ(openStored(Bytes{0x04, 0x00}).FormatIndex, 2);
}

TEST_F(FrmProtocolCopyBytesTest, FormatNotYetChosenSelectsNothingAndOkIsDisabled) {
    Seen seen = openStored(Bytes{0x00, 0x00});
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_FALSE(seen.OkEnabled);
}

TEST_F(FrmProtocolCopyBytesTest, Format4OnAnMiIsShownWithNothingSelected) {
    Seen seen = openStored(Bytes{0x04, 0x00}, 3);
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}}));
    EXPECT_EQ(seen.FormatIndex, -1);
}

TEST_F(FrmProtocolCopyBytesTest, Format4OnAnMiStillCountsAsChosenAndOkWritesItBack) {
    bench.reopen(Bytes{0x04, 0x00}, 3);
    bool okEnabled = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        okEnabled = dialog.cmdOk.Enabled();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(okEnabled);
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, ChoosingAFormatStoresItsItemData) {
    bench.reopen(Bytes{0x01, 0x00});
    bench.edit([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
}

// --- The destination operand ---

TEST_F(FrmProtocolCopyBytesTest, NewLinkShowsItsDisplayText) {
    bench.reopen(Bytes{0x02, 0x00});
    std::wstring before, after;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        before = dialog.lbOperand.Caption();
        bench.driver.QueuePick(memoryChoice(16, 321, L"Buffer copy"));
        dialog.cmdOperand.UserClick();
        after = dialog.lbOperand.Caption();
    });
    EXPECT_NE(after, before);
    EXPECT_EQ(after, GetOperandDisplayText(*bench.operand(1)));
    EXPECT_EQ(bench.operand(1)->OperandType(), 16);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 321);
}

TEST_F(FrmProtocolCopyBytesTest, ClickingTheOperandLabelLinksToo) {
    bench.reopen(Bytes{0x02, 0x00});
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(5, 12, L"Elsewhere"));
        dialog.lbOperand.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(bench.driver.PendingPicks(), 0u);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 12);
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, NewLinkToAnMiTurnsFormat4Into1) {
    bench.reopen(Bytes{0x04, 0x00}, 5);
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(3, 7, L"Word"));
        dialog.cmdOperand.UserClick();
        seen = look(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}}));
    EXPECT_EQ(seen.FormatIndex, 0);
    EXPECT_TRUE(seen.OkEnabled);
    EXPECT_EQ(bench.image(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, NewLinkToAnExtendedMiTurnsFormat4Into1) {
    bench.reopen(Bytes{0x04, 0x00}, 66);
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(65, 7, L"Word"));
        dialog.cmdOperand.UserClick();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(bench.image(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, StoredFormat4OnAnMiBecomes1AfterANewLinkToAnMi) {
    bench.reopen(Bytes{0x04, 0x00}, 3);
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(3, 8, L"Other word"));
        dialog.cmdOperand.UserClick();
        seen = look(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(seen.FormatIndex, 0);
    EXPECT_EQ(bench.image(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, NewLinkToALongRegisterKeepsTheFormatAndOffersFour) {
    bench.reopen(Bytes{0x02, 0x00}, 3);
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(16, 9, L"Long"));
        dialog.cmdOperand.UserClick();
        seen = look(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}, {convert4, 4}}));
    EXPECT_EQ(seen.FormatIndex, 1);
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, NewLinkToATypeWithoutFormatsEmptiesTheListButKeepsTheFormat) {
    bench.reopen(Bytes{0x02, 0x00}, 5);
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        // A host whose picker offers a type the list has no format for.
        bench.driver.QueuePick(memoryChoice(7, 3, L"Float"));
        dialog.cmdOperand.UserClick();
        seen = look(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(seen.Formats.empty());
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_TRUE(seen.OkEnabled);
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, RefillAfterALinkSelectsUnderTheGuard) {
    bench.reopen(Bytes{0x02, 0x00}, 5);
    std::vector<bool> guardAtClick;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        auto handler = dialog.cbCopyBytes.OnClick;
        dialog.cbCopyBytes.OnClick = [&, handler] {
            guardAtClick.push_back(dialog.IgnoreListEvents);
            handler();
        };
        bench.driver.QueuePick(memoryChoice(3, 7, L"Word"));
        dialog.cmdOperand.UserClick();
        EXPECT_FALSE(dialog.IgnoreListEvents);
        dialog.cbCopyBytes.UserSelect(0);
    });
    EXPECT_EQ(guardAtClick, (std::vector<bool>{true, false}));
}

TEST_F(FrmProtocolCopyBytesTest, CanceledPickerKeepsTheLinkAndTheFormat) {
    bench.reopen(Bytes{0x04, 0x00}, 5);
    Seen before, after;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        before = look(dialog);
        bench.driver.QueuePickCancel();
        dialog.cmdOperand.UserClick();
        after = look(dialog);
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(after.Operand, before.Operand);
    EXPECT_EQ(after.Formats, before.Formats);
    EXPECT_EQ(after.FormatIndex, 2);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 40);
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, CanceledPickerOnAnMiWithFormat4StillTakesFormat1) {
    // The refill after the picker runs whether or not a link was made.
    bench.reopen(Bytes{0x04, 0x00}, 3);
    int32_t index = -2;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePickCancel();
        dialog.cmdOperand.UserClick();
        index = dialog.cbCopyBytes.ListIndex();
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(index, 0);
    EXPECT_EQ(bench.image(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, CancelKeepsANewLinkButNotTheFormat) {
    bench.reopen(Bytes{0x04, 0x00}, 5);
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(3, 77, L"Word"));
        dialog.cmdOperand.UserClick();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.operand(1)->OperandType(), 3);
    EXPECT_EQ(bench.operand(1)->OperandAddress(), 77);
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
}

// --- The Config instance ---

TEST_F(FrmProtocolCopyBytesTest, NoConfigInstanceShowsMessage140AndNoDialog) {
    bench.makeNew();
    int32_t format = 2;
    frmProtocolCopyBytes dialog;
    bench.onDialog([](frmProtocolCopyBytes& shown) { shown.cmdOk.UserClick(); });
    EXPECT_FALSE(dialog.Edit(format, bench.operand(1), L"Copy to : ", *bench.copy, bench.instances));
    EXPECT_EQ(bench.messageNumbers(), std::vector<int32_t>{140});
    EXPECT_EQ(bench.driver.PendingDialogs(), 1u);
    EXPECT_FALSE(dialog.IsLoaded());
    EXPECT_EQ(format, 2);
}

TEST_F(FrmProtocolCopyBytesTest, SingleConfigIsPreselectedForANewOperation) {
    int32_t config = bench.instances->Seed(L"Only");
    bench.makeNew();
    Seen seen;
    std::wstring name;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        seen = look(dialog);
        name = dialog.cbInstanceName.Text();
    });
    EXPECT_EQ(seen.InstanceIndex, 0);
    EXPECT_EQ(name, L"Only");
    EXPECT_EQ(seen.Formats, (std::vector<ListItem>{{convert1, 1}, {convert2, 2}}));
    EXPECT_EQ(seen.FormatIndex, -1);
    EXPECT_EQ(seen.Operand, L"");
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_EQ(seen.MessagesShown, 0u);
    // Set before the dialog, so the Cancel the person walked away with keeps it.
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceName(), L"Only");
}

TEST_F(FrmProtocolCopyBytesTest, NewOperationAmongSeveralConfigsStartsWithNoneSelected) {
    bench.instances->Seed(L"Alpha");
    bench.instances->Seed(L"Beta");
    bench.makeNew();
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) { seen = look(dialog); });
    EXPECT_EQ(seen.InstanceIndex, -1);
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_TRUE(bench.context->Messages.empty());
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), 0);
}

TEST_F(FrmProtocolCopyBytesTest, ConfigOfAnExistingOperationIsGoneShows141ThenTheDialogWithNothingSelected) {
    int32_t gone = bench.reopen(Bytes{0x02, 0x00});
    bench.instances->DeleteInstance(gone);
    bench.instances->Seed(L"Alpha");
    bench.instances->Seed(L"Beta");
    Seen seen;
    bool shown = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        shown = true;
        seen = look(dialog);
    });
    EXPECT_TRUE(shown);
    EXPECT_EQ(seen.MessagesShown, 1u);
    EXPECT_EQ(bench.messageNumbers(), std::vector<int32_t>{141});
    EXPECT_EQ(seen.InstanceIndex, -1);
    EXPECT_EQ(seen.FormatIndex, 1);
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), gone);
}

TEST_F(FrmProtocolCopyBytesTest, SingleConfigOtherThanTheLinkedOneIsNotTakenForAnExistingOperation) {
    int32_t gone = bench.reopen(Bytes{0x02, 0x00});
    bench.instances->DeleteInstance(gone);
    bench.instances->Seed(L"Other");
    Seen seen;
    bench.edit([&](frmProtocolCopyBytes& dialog) { seen = look(dialog); });
    EXPECT_EQ(bench.messageNumbers(), std::vector<int32_t>{141});
    EXPECT_EQ(seen.InstanceIndex, -1);
    EXPECT_FALSE(seen.OkEnabled);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), gone);
}

TEST_F(FrmProtocolCopyBytesTest, ChoosingAnotherConfigAfter141EnablesOkAndLinksIt) {
    int32_t gone = bench.reopen(Bytes{0x02, 0x00});
    bench.instances->DeleteInstance(gone);
    int32_t other = bench.instances->Seed(L"Other");
    bool okEnabled = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbInstanceName.UserSelect(0);
        okEnabled = dialog.cmdOk.Enabled();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(okEnabled);
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), other);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceName(), L"Other");
}

TEST_F(FrmProtocolCopyBytesTest, ClickingAnInstanceSetsFatherInstanceNumAtOnceAndCancelKeepsIt) {
    bench.reopen(Bytes{0x02, 0x00});
    int32_t other = bench.instances->Seed(L"Other");
    int32_t during = 0;
    std::wstring nameDuring;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbInstanceName.UserSelect(1);
        during = bench.copy->itfFBMethod_FatherInstanceNum();
        nameDuring = bench.copy->itfFBMethod_FatherInstanceName();
        dialog.cmdCancel.UserClick();
    });
    EXPECT_EQ(during, other);
    EXPECT_EQ(nameDuring, L"Other");
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), other);
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, SingleConfigTakenForANewOperationSurvivesCancel) {
    int32_t config = bench.instances->Seed(L"Only");
    bench.makeNew();
    bench.edit([](frmProtocolCopyBytes& dialog) { dialog.cmdCancel.UserClick(); });
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), config);
}

TEST_F(FrmProtocolCopyBytesTest, OperationWithoutOperandsAndASingleConfigEndsWithoutADialog) {
    int32_t config = bench.instances->Seed(L"Only");
    bench.makeNew();
    OperandPtr destination = bench.operand(1);
    bench.copy->itfFBMethod_InOperands(std::make_shared<OperandCollection>());
    bench.copy->itfFBMethod_OutOperands(std::make_shared<OperandCollection>());
    bench.onDialog([](frmProtocolCopyBytes& shown) { shown.cmdOk.UserClick(); });
    int32_t format = 0;
    frmProtocolCopyBytes dialog;
    EXPECT_FALSE(dialog.Edit(format, destination, L"Copy to : ", *bench.copy, bench.instances));
    EXPECT_EQ(bench.driver.PendingDialogs(), 1u);
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), config);
    EXPECT_TRUE(bench.context->Messages.empty());
}

TEST_F(FrmProtocolCopyBytesTest, OperationWithoutOperandsAmongSeveralConfigsStillShowsTheDialog) {
    bench.instances->Seed(L"Alpha");
    bench.instances->Seed(L"Beta");
    bench.makeNew();
    OperandPtr destination = bench.operand(1);
    bench.copy->itfFBMethod_OutOperands(std::make_shared<OperandCollection>());
    bool shown = false;
    bench.onDialog([&](frmProtocolCopyBytes&) { shown = true; });
    int32_t format = 0;
    frmProtocolCopyBytes dialog;
    EXPECT_FALSE(dialog.Edit(format, destination, L"Copy to : ", *bench.copy, bench.instances));
    EXPECT_TRUE(shown);
}

// --- The OK rule ---

TEST_F(FrmProtocolCopyBytesTest, OkIsEnabledWithAnInstanceALinkAndAFormat) {
    EXPECT_TRUE(openStored(Bytes{0x02, 0x00}).OkEnabled);
}

TEST_F(FrmProtocolCopyBytesTest, OkWaitsForTheDestinationLink) {
    bench.instances->Seed(L"Only");
    bench.makeNew();
    std::vector<bool> okStates;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(1);
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();  // does nothing while disabled
        okStates.push_back(dialog.Visible());
        bench.driver.QueuePickCancel();
        dialog.cmdOperand.UserClick();
        okStates.push_back(dialog.cmdOk.Enabled());
        bench.driver.QueuePick(memoryChoice(3, 5, L"Word"));
        dialog.cmdOperand.UserClick();
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(okStates, (std::vector<bool>{false, true, false, true}));
    EXPECT_TRUE(bench.accepted());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, OkWaitsForAFormat) {
    bench.reopen(Bytes{0x00, 0x00});
    std::vector<bool> okStates;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cbCopyBytes.UserSelect(0);
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(okStates, (std::vector<bool>{false, true}));
    EXPECT_EQ(bench.image(), (Bytes{0x01, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, OkWaitsForAnInstanceSelection) {
    bench.instances->Seed(L"Alpha");
    bench.instances->Seed(L"Beta");
    bench.makeNew();
    std::vector<bool> okStates;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        bench.driver.QueuePick(memoryChoice(5, 40, L"Target"));
        dialog.cmdOperand.UserClick();
        dialog.cbCopyBytes.UserSelect(2);
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cbInstanceName.UserSelect(1);
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(okStates, (std::vector<bool>{false, true}));
    EXPECT_EQ(bench.image(), (Bytes{0x04, 0x00}));
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), 2);
}

TEST_F(FrmProtocolCopyBytesTest, EachReasonOkIsOffIsNamedInTheOrderOfTheFields) {
    bench.instances->Seed(L"Alpha");
    bench.instances->Seed(L"Beta");
    bench.makeNew();
    std::vector<std::wstring> problems;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        problems.push_back(dialog.inputProblem());
        dialog.cbInstanceName.UserSelect(1);
        problems.push_back(dialog.inputProblem());
        bench.driver.QueuePick(memoryChoice(5, 40, L"Target"));
        dialog.cmdOperand.UserClick();
        problems.push_back(dialog.inputProblem());
        dialog.cbCopyBytes.UserSelect(2);
        problems.push_back(dialog.inputProblem());
        EXPECT_TRUE(dialog.cmdOk.Enabled());
        dialog.cmdOk.UserClick();
    });
    EXPECT_EQ(problems, (std::vector<std::wstring>{L"\"Select Name\" must be chosen from the list",
                                                   L"\"Copy to\" must be linked: press ...",
                                                   L"\"Copy Format\" must be chosen from the list", L""}));
}

// A host that lists an instance numbered 0, which no real instance has.
class InstancesWithANumberZero : public FBInstancesDouble {
public:
    void GetInstances(bool& IsEmpty, std::vector<FBInstanceRecord>& Instances) override {
        Instances = {{0, L"Zero"}, {1, L"Line1"}};
        IsEmpty = false;
    }
};

TEST_F(FrmProtocolCopyBytesTest, OkWaitsForAnInstanceNumberOfAtLeastOne) {
    bench.reopen(Bytes{0x02, 0x00});
    bench.copy->itfFBMethod_Init(std::make_shared<InstancesWithANumberZero>());
    std::vector<bool> okStates;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        okStates.push_back(dialog.cmdOk.Enabled());
        dialog.cbInstanceName.UserSelect(0);
        okStates.push_back(dialog.cbInstanceName.ListIndex() == 0);
        okStates.push_back(dialog.cmdOk.Enabled());
    });
    EXPECT_EQ(okStates, (std::vector<bool>{true, true, false}));
    EXPECT_EQ(bench.copy->itfFBMethod_FatherInstanceNum(), 0);
}

// --- Ending the dialog ---

TEST_F(FrmProtocolCopyBytesTest, CancelButtonEndsWithFalse) {
    bench.reopen(Bytes{0x02, 0x00});
    bool hidden = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.cmdCancel.UserClick();
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, EscapeOnAControlEndsWithFalse) {
    bench.reopen(Bytes{0x02, 0x00});
    bool hidden = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(0);
        dialog.cbCopyBytes.UserKeyPress(27);
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, EscapeOnTheFormItselfEndsWithFalse) {
    bench.reopen(Bytes{0x02, 0x00});
    bool hidden = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.UserKeyPress(27);
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
}

TEST_F(FrmProtocolCopyBytesTest, ControlBoxEndsWithFalse) {
    bench.reopen(Bytes{0x02, 0x00});
    bool hidden = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(2);
        dialog.UserClose();
        hidden = !dialog.Visible();
    });
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(bench.copy->itfFBMethod_IsCanceled());
    EXPECT_EQ(bench.image(), (Bytes{0x02, 0x00}));
}

TEST_F(FrmProtocolCopyBytesTest, OtherKeysLeaveTheDialogOpen) {
    bench.reopen(Bytes{0x02, 0x00});
    bool open = false;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        dialog.UserKeyPress(13);
        dialog.UserKeyPress('a');
        open = dialog.Visible();
        dialog.cmdOk.UserClick();
    });
    EXPECT_TRUE(open);
    EXPECT_TRUE(bench.accepted());
}

TEST_F(FrmProtocolCopyBytesTest, OkGivesTheFormatBackToTheCaller) {
    bench.reopen(Bytes{0x01, 0x00});
    int32_t format = 1;
    bench.onDialog([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(1);
        dialog.cmdOk.UserClick();
    });
    frmProtocolCopyBytes dialog;
    EXPECT_TRUE(dialog.Edit(format, bench.operand(1), L"Copy to : ", *bench.copy, bench.instances));
    EXPECT_EQ(format, 2);
}

TEST_F(FrmProtocolCopyBytesTest, CancelLeavesTheCallersFormat) {
    bench.reopen(Bytes{0x01, 0x00});
    int32_t format = 1;
    bench.onDialog([](frmProtocolCopyBytes& dialog) {
        dialog.cbCopyBytes.UserSelect(1);
        dialog.cmdCancel.UserClick();
    });
    frmProtocolCopyBytes dialog;
    EXPECT_FALSE(dialog.Edit(format, bench.operand(1), L"Copy to : ", *bench.copy, bench.instances));
    EXPECT_EQ(format, 1);
}

TEST_F(FrmProtocolCopyBytesTest, DialogIsUnloadedAfterTheEdit) {
    bench.reopen(Bytes{0x02, 0x00});
    frmProtocolCopyBytes* seen = nullptr;
    bool loadedAtEnd = true;
    bench.edit([&](frmProtocolCopyBytes& dialog) {
        seen = &dialog;
        dialog.Subscribe([&](std::string_view property) {
            if (property == "Loaded") loadedAtEnd = dialog.IsLoaded();
        });
        dialog.cmdOk.UserClick();
    });
    ASSERT_NE(seen, nullptr);
    EXPECT_FALSE(loadedAtEnd);
}

}  // namespace
}  // namespace qx
