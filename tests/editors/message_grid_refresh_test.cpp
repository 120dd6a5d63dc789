// Keeping the grid in step with the message set: the row swap of cut and
// paste, the full rebuild of the commands that change the number of
// messages, Reload; and the editor on the real Send and Scan sets.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "editors/message_grid_form.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"

namespace qx::test {
namespace {

using LandingRow = MessageGridEditor::LandingRow;

class GridRefreshTest : public MessageGridTestBase {
protected:
    void SetUp() override { load(MessageGridKind::Send, {L"ZERO", L"ONE", L"TWO"}); }

    static MessagePtr messageOf(const std::wstring& text) {
        auto made = std::make_shared<clsProtocolMessage>();
        made->MessageString(padded(text));
        return made;
    }
    // An operation of the set as the dialogs pass it: inserts a message
    // before the 1-based number and reports a change.
    std::function<bool(int32_t)> insertBefore(const std::wstring& text) {
        return [this, text](int32_t number) {
            form->messages.insert(form->messages.begin() + (number - 1), messageOf(text));
            return true;
        };
    }
    std::vector<std::string> redraws;
    void listenForRedraw() {
        grid().Subscribe([this](std::string_view property) {
            if (property == "Redraw") redraws.push_back(grid().Redraw() ? "on" : "off");
        });
    }
};

TEST_F(GridRefreshTest, RowSwapTakesTheRowsMessageFromTheSetAgain) {
    moveTo(1, 2);
    form->messages[1] = messageOf(L"REPLACED");
    editor().swapRow();
    EXPECT_EQ(editor().CurrentMessage, form->messages[1]);
    EXPECT_EQ(cells(1, 0, 8), L"REPLACED");
    EXPECT_EQ(cells(0, 0, 4), L"ZERO");
    EXPECT_EQ(caretPosition(), 2);
    type(L"_");
    EXPECT_EQ(form->messages[1]->MessageString().substr(0, 9), L"RE_PLACED");
}

TEST_F(GridRefreshTest, RowRefreshPaintsTheCurrentRowFromCurrentMessage) {
    moveTo(2, 0);
    message(2).MessageString(padded(L"CHANGED"));
    editor().refreshRow();
    EXPECT_EQ(cells(2, 0, 7), L"CHANGED");
}

TEST_F(GridRefreshTest, AFullRebuildRenumbersTheRowsAndKeepsTheCaretInItsColumn) {
    moveTo(1, 6);
    listenForRedraw();
    EXPECT_TRUE(editor().rebuildAfter(insertBefore(L"NEW"), LandingRow::SameRow));
    EXPECT_EQ(redraws, (std::vector<std::string>{"off", "on"}));
    ASSERT_EQ(grid().Rows(), 4);
    for (int32_t r = 0; r < 4; ++r) EXPECT_EQ(grid().TextMatrix(r, 0), std::to_wstring(r));
    EXPECT_EQ(cells(1, 0, 3), L"NEW");
    EXPECT_EQ(cells(2, 0, 3), L"ONE");
    EXPECT_EQ(cells(3, 0, 3), L"TWO");
    EXPECT_EQ(grid().Row(), 1);
    EXPECT_EQ(caretPosition(), 6);
    EXPECT_EQ(editor().CurrentMessage, form->messages[1]);
    EXPECT_EQ(context->Caret.X, (345 + 6 * 300) / 15);
    EXPECT_EQ(context->Caret.Y, 20);
    EXPECT_EQ(form->ActiveControl(), &grid());
    EXPECT_FALSE(editor().IgnoreGridEvents);
}

TEST_F(GridRefreshTest, AFullRebuildLandsOnTheRowBelowOrTheLastRow) {
    moveTo(0, 1);
    editor().rebuildAfter(insertBefore(L"AFTER"), LandingRow::NextRow);
    EXPECT_EQ(grid().Row(), 1);
    EXPECT_EQ(editor().CurrentMessage, form->messages[1]);
    editor().rebuildAfter(
        [this](int32_t) {
            form->messages.push_back(messageOf(L"LAST"));
            return true;
        },
        LandingRow::LastRow);
    EXPECT_EQ(grid().Rows(), 5);
    EXPECT_EQ(grid().Row(), 4);
    EXPECT_EQ(cells(4, 0, 4), L"LAST");
    EXPECT_EQ(caretPosition(), 1);
}

TEST_F(GridRefreshTest, AfterDeletingTheLastRowTheCaretLandsOnTheNewLastRow) {
    moveTo(2, 3);
    int32_t asked = 0;
    editor().rebuildAfter(
        [&](int32_t number) {
            asked = number;
            form->messages.erase(form->messages.begin() + (number - 1));
            return true;
        },
        LandingRow::SameRow);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(grid().Rows(), 2);
    EXPECT_EQ(grid().Row(), 1);
    EXPECT_EQ(editor().CurrentMessage, form->messages[1]);
    EXPECT_EQ(caretPosition(), 3);
}

TEST_F(GridRefreshTest, AnOperationThatReportsNoChangeLeavesTheGridAsItIs) {
    moveTo(2, 3);
    listenForRedraw();
    context->CaretCalls.clear();
    EXPECT_FALSE(editor().rebuildAfter([](int32_t) { return false; }, LandingRow::LastRow));
    EXPECT_TRUE(redraws.empty());
    EXPECT_TRUE(context->CaretCalls.empty());
    EXPECT_EQ(grid().Row(), 2);
}

TEST_F(GridRefreshTest, ReloadStartsOverOnTheFirstMessage) {
    moveTo(2, 9);
    form->messages = {messageOf(L"ONLY")};
    editor().Reload();
    EXPECT_EQ(grid().Rows(), 1);
    EXPECT_EQ(grid().Row(), 0);
    EXPECT_EQ(grid().Col(), 1);
    EXPECT_EQ(editor().CurrentMessage, form->messages[0]);
    EXPECT_EQ(cells(0, 0, 5), L"ONLY ");
    EXPECT_EQ(context->Caret, (CaretState{grid().hWnd(), 0, 4, 20, 23, 0, true}));
    EXPECT_FALSE(editor().IgnoreGridEvents);
}

// --- On the message sets ---

TEST(GridOnSets, TheSendSetsClearAllReloadsTheGrid) {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    MessageGridForm form(MessageGridKind::Send);
    form.editor.setSource(messageSourceOf(set));
    set.OnMessagesCleared = [&] { form.editor.Reload(); };
    set.AppendMessage();
    set.AppendMessage();
    form.editor.Reload();
    ASSERT_EQ(form.grid.Rows(), 3);
    form.grid.UserClick(2, 4);
    form.grid.UserKeyPress('A');
    EXPECT_EQ(set.GetMessage(3)->MessageString().substr(2, 3), L" A ");  // column 4 is position 3
    set.ClearAll();
    EXPECT_EQ(form.grid.Rows(), 1);
    EXPECT_EQ(form.grid.Row(), 0);
    EXPECT_EQ(form.editor.CurrentMessage, set.GetMessage(1));
}

TEST(GridOnSets, CutOnTheSendSetIsARowSwapAndAppendAFullRebuild) {
    ScopedHostContext context;
    clsProtocolSendSrv set;
    MessageGridForm form(MessageGridKind::Send);
    form.editor.setSource(messageSourceOf(set));
    form.editor.Reload();
    form.grid.UserKeyPress('C');
    set.CutMessage(1);
    form.editor.swapRow();
    EXPECT_EQ(form.grid.TextMatrix(0, 1), L" ");
    EXPECT_EQ(form.editor.CurrentMessage, set.GetMessage(1));
    EXPECT_TRUE(
        form.editor.rebuildAfter([&](int32_t) { return set.AppendMessage(); }, MessageGridEditor::LandingRow::LastRow));
    EXPECT_EQ(form.grid.Rows(), 2);
    set.PasteMessage(2);
    form.editor.swapRow();
    EXPECT_EQ(form.grid.TextMatrix(1, 1), L"C");
}

TEST(GridOnSets, TheScanSetsAndTheirTcpIpTwinFitTheScanGrid) {
    ScopedHostContext context;
    clsEthProtocolScanSrv set;
    MessageGridForm form(MessageGridKind::Scan);
    form.editor.setSource(messageSourceOf(set));
    set.GetMessage(1)->MessageLength(42);
    form.editor.Reload();
    EXPECT_EQ(form.grid.Cols(), 502);
    EXPECT_EQ(form.grid.TextMatrix(0, 1), L"42");
    form.grid.UserKeyPress('s');
    EXPECT_EQ(set.GetMessage(1)->MessageString()[0], L's');
}

TEST(GridOnSets, WithoutASourceTheGridIsEmptyAndNothingBreaks) {
    ScopedHostContext context;
    MessageGridForm form(MessageGridKind::Send);
    form.editor.setSource({});
    form.editor.Reload();
    EXPECT_EQ(form.grid.Rows(), 0);
    EXPECT_EQ(form.editor.CurrentMessage, nullptr);
    form.grid.UserKeyPress('x');
    form.editor.refreshRow();
    form.editor.swapRow();
    form.editor.editVarAtCaret();
    EXPECT_EQ(context->BeepCount, 1);
}

}  // namespace
}  // namespace qx::test
