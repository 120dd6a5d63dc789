// The toolbar and popup menus of the four message dialogs (abSend, abScan
// and their TCP/IP twins): the same bands and tools in all of them. A dialog
// builds its toolbar with buildMessageToolBar and hears each tool by its id.
#pragma once

#include "platform/controls/toolbar.h"

namespace qx {

namespace tools {
// Bands.
inline constexpr const wchar_t* MainToolBar = L"MainToolBar";
inline constexpr const wchar_t* popEmptyArea = L"popEmptyArea";
inline constexpr const wchar_t* popOnVar = L"popOnVar";
inline constexpr const wchar_t* popOnControlChar = L"popOnControlChar";
// Tools: the message commands, which the dialogs run on their message set.
inline constexpr const wchar_t* ID_Cut = L"ID_Cut";
inline constexpr const wchar_t* ID_Copy = L"ID_Copy";
inline constexpr const wchar_t* ID_Paste = L"ID_Paste";
inline constexpr const wchar_t* ID_InsertBefore = L"ID_InsertBefore";
inline constexpr const wchar_t* ID_InsertMsg = L"ID_InsertMsg";
inline constexpr const wchar_t* ID_AppendMsg = L"ID_AppendMsg";
inline constexpr const wchar_t* ID_DeleteMsg = L"ID_DeleteMsg";
inline constexpr const wchar_t* ID_ClearAll = L"ID_ClearAll";
// Tools: the commands on the caret position, which MessageGridEditor runs.
inline constexpr const wchar_t* ID_NewVar = L"ID_NewVar";
inline constexpr const wchar_t* ID_EditVar = L"ID_EditVar";
inline constexpr const wchar_t* ID_DeleteVar = L"ID_DeleteVar";
inline constexpr const wchar_t* ID_ControlChar = L"ID_ControlChar";
inline constexpr const wchar_t* ID_DeleteControlChar = L"ID_DeleteControlChar";
// The label in front of the instance list on MainToolBar.
inline constexpr const wchar_t* lbSelectName = L"lbSelectName";
}  // namespace tools

// Adds the four bands with their tools, captions and tooltips to an empty
// toolbar. MainToolBar ends with the label "Select Name : " and, when one is
// given, the dialog's list of Config instances (cbInstanceName) as a control
// tool. All tools start enabled.
void buildMessageToolBar(ToolBar& bar, Control* cbInstanceName = nullptr);

// What ID_Copy and ID_Cut do to the toolbar: ID_Paste of MainToolBar enabled.
void enablePasteTool(ToolBar& bar);

}  // namespace qx
