// The toolbar of the message dialogs: its four bands, the tools of each with
// their captions and tooltips, the instance list on the main band, and the
// one tool state the dialogs write.
#include "editors/message_toolbar.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/controls/combo_box.h"

namespace qx {
namespace {

using ToolRow = std::pair<std::wstring, std::wstring>;

std::vector<ToolRow> buttonsOf(const ToolBand& band) {
    std::vector<ToolRow> rows;
    for (int32_t i = 0; i < band.ToolCount(); ++i) {
        const Tool& tool = band.ToolAt(i);
        if (tool.Type() == Tool::Kind::Button) rows.emplace_back(tool.Id(), tool.Caption());
    }
    return rows;
}

class MessageToolBarTest : public ::testing::Test {
protected:
    ToolBar bar{L"abSend"};
    ComboBox cbInstanceName{L"cbInstanceName"};
    void SetUp() override { buildMessageToolBar(bar, &cbInstanceName); }
};

TEST_F(MessageToolBarTest, HasTheMainBandAndThreePopups) {
    ASSERT_EQ(bar.BandCount(), 4);
    EXPECT_EQ(bar.Bands(L"MainToolBar").Type(), ToolBand::Kind::Docked);
    EXPECT_TRUE(bar.Bands(L"popEmptyArea").IsPopup());
    EXPECT_TRUE(bar.Bands(L"popOnVar").IsPopup());
    EXPECT_TRUE(bar.Bands(L"popOnControlChar").IsPopup());
}

TEST_F(MessageToolBarTest, TheMainBandCarriesTheMessageAndCaretCommands) {
    EXPECT_EQ(buttonsOf(bar.Bands(L"MainToolBar")),
              (std::vector<ToolRow>{{L"ID_Cut", L"Cut message"},
                                    {L"ID_Copy", L"Copy message"},
                                    {L"ID_Paste", L"Paste message"},
                                    {L"ID_NewVar", L"Create\\Edit new var"},
                                    {L"ID_ControlChar", L"Add Control Char"},
                                    {L"ID_InsertBefore", L"Insert Message (Before)"},
                                    {L"ID_InsertMsg", L"Insert message (After)"},
                                    {L"ID_AppendMsg", L"Append message"},
                                    {L"ID_DeleteMsg", L"Delete message"},
                                    {L"ID_ClearAll", L"Clear All Messages"}}));
    EXPECT_EQ(bar.Bands(L"MainToolBar").Tools(L"ID_ClearAll").ToolTipText(), L"Clear All");
    EXPECT_EQ(bar.Bands(L"MainToolBar").Tools(L"ID_Cut").ToolTipText(), L"Cut message");
}

TEST_F(MessageToolBarTest, TheMainBandEndsWithTheLabelAndTheInstanceList) {
    const ToolBand& main = bar.Bands(L"MainToolBar");
    const Tool& list = main.ToolAt(main.ToolCount() - 1);
    const Tool& label = main.ToolAt(main.ToolCount() - 2);
    EXPECT_EQ(label.Type(), Tool::Kind::Label);
    EXPECT_EQ(label.Caption(), L"Select Name : ");
    EXPECT_EQ(list.Type(), Tool::Kind::Control);
    EXPECT_EQ(list.Custom(), &cbInstanceName);
}

TEST_F(MessageToolBarTest, TheEmptyAreaPopupHasTheSameCommandsButClearAll) {
    EXPECT_EQ(buttonsOf(bar.Bands(L"popEmptyArea")),
              (std::vector<ToolRow>{{L"ID_Cut", L"Cut message"},
                                    {L"ID_Copy", L"Copy message"},
                                    {L"ID_Paste", L"Paste message"},
                                    {L"ID_NewVar", L"Create\\Edit new var"},
                                    {L"ID_ControlChar", L"Add Control Char"},
                                    {L"ID_InsertBefore", L"Insert Message (Before)"},
                                    {L"ID_InsertMsg", L"Insert message (After)"},
                                    {L"ID_AppendMsg", L"Append message"},
                                    {L"ID_DeleteMsg", L"Delete message"}}));
    const ToolBand& empty = bar.Bands(L"popEmptyArea");
    EXPECT_NE(empty.ToolAt(empty.ToolCount() - 1).Type(), Tool::Kind::Separator);
}

TEST_F(MessageToolBarTest, TheFieldAndControlCharacterPopups) {
    EXPECT_EQ(buttonsOf(bar.Bands(L"popOnVar")),
              (std::vector<ToolRow>{{L"ID_EditVar", L"Properties..."}, {L"ID_DeleteVar", L"Delete Var"}}));
    EXPECT_EQ(buttonsOf(bar.Bands(L"popOnControlChar")),
              (std::vector<ToolRow>{{L"ID_DeleteControlChar", L"Delete Control Char"}}));
}

TEST_F(MessageToolBarTest, AllToolsStartEnabledAndCopyOrCutEnablesPaste) {
    for (int32_t b = 0; b < bar.BandCount(); ++b)
        for (int32_t t = 0; t < bar.BandAt(b).ToolCount(); ++t) EXPECT_TRUE(bar.BandAt(b).ToolAt(t).Enabled());
    bar.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled(false);
    enablePasteTool(bar);
    EXPECT_TRUE(bar.Bands(L"MainToolBar").Tools(L"ID_Paste").Enabled());
}

TEST(MessageToolBarWithoutList, TheMainBandEndsWithTheLabel) {
    ToolBar bar(L"abScan");
    buildMessageToolBar(bar);
    const ToolBand& main = bar.Bands(L"MainToolBar");
    EXPECT_EQ(main.ToolAt(main.ToolCount() - 1).Caption(), L"Select Name : ");
}

}  // namespace
}  // namespace qx
