#include "editors/message_toolbar.h"

#include <iterator>
#include <string>

namespace qx {

namespace {

struct ToolText {
    const wchar_t* Id;
    const wchar_t* Caption;
    const wchar_t* Icon;
};

// In the order MainToolBar shows them; a null id is a separator.
constexpr ToolText mainTools[] = {
    {tools::ID_Cut, L"Cut message", L"edit-cut"},
    {tools::ID_Copy, L"Copy message", L"edit-copy"},
    {tools::ID_Paste, L"Paste message", L"edit-paste"},
    {nullptr, nullptr, nullptr},
    {tools::ID_NewVar, L"Create\\Edit new var", L"insert-object"},
    {tools::ID_ControlChar, L"Add Control Char", L"insert-text"},
    {nullptr, nullptr, nullptr},
    {tools::ID_InsertBefore, L"Insert Message (Before)", L"go-up"},
    {tools::ID_InsertMsg, L"Insert message (After)", L"go-down"},
    {tools::ID_AppendMsg, L"Append message", L"list-add"},
    {tools::ID_DeleteMsg, L"Delete message", L"list-remove"},
    {nullptr, nullptr, nullptr},
    {tools::ID_ClearAll, L"Clear All Messages", L"edit-delete"},
};

}  // namespace

void buildMessageToolBar(ToolBar& bar, Control* cbInstanceName) {
    ToolBand& main = bar.AddBand(tools::MainToolBar, ToolBand::Kind::Docked);
    ToolBand& empty = bar.AddBand(tools::popEmptyArea, ToolBand::Kind::Popup);
    for (const ToolText& tool : mainTools) {
        if (!tool.Id) {
            main.AddSeparator();
            continue;
        }
        const bool clearAll = std::wstring(tool.Id) == tools::ID_ClearAll;
        main.AddTool(tool.Id, tool.Caption, clearAll ? L"Clear All" : tool.Caption, tool.Icon);
    }
    // The popup of a cell without a field or a control character offers the
    // same commands but Clear All, grouped alike.
    const auto isClearAll = [](const ToolText& tool) { return tool.Id && std::wstring(tool.Id) == tools::ID_ClearAll; };
    const size_t count = std::size(mainTools);
    for (size_t i = 0; i < count; ++i) {
        const ToolText& tool = mainTools[i];
        if (isClearAll(tool)) continue;
        if (tool.Id)
            empty.AddTool(tool.Id, tool.Caption, L"", tool.Icon);
        else if (i + 1 < count && !isClearAll(mainTools[i + 1]))
            empty.AddSeparator();
    }
    main.AddSeparator();
    main.AddLabel(tools::lbSelectName, L"Select Name : ");
    if (cbInstanceName) main.AddControl(cbInstanceName->Name(), *cbInstanceName);

    ToolBand& onVar = bar.AddBand(tools::popOnVar, ToolBand::Kind::Popup);
    onVar.AddTool(tools::ID_EditVar, L"Properties...", L"", L"document-properties");
    onVar.AddTool(tools::ID_DeleteVar, L"Delete Var", L"", L"edit-delete");
    ToolBand& onControlChar = bar.AddBand(tools::popOnControlChar, ToolBand::Kind::Popup);
    onControlChar.AddTool(tools::ID_DeleteControlChar, L"Delete Control Char", L"", L"edit-delete");
}

void enablePasteTool(ToolBar& bar) { bar.Bands(tools::MainToolBar).Tools(tools::ID_Paste).Enabled(true); }

}  // namespace qx
