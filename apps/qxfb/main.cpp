// qxfb: a command-line host of the component. It loads libQxFBCom2.so with
// dlopen and reaches the library only through the exported entry points, as
// the ladder IDE does: it lists the families and plays the road of a new
// serial Config, a Copy buffer and a TCP/IP Config with a scripted person,
// and it registers the component.
// It also shows a project file and writes its download bundle; the commands
// of the other files read images and text forms and run sets through the
// runtime model (command_line.h).
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "command_line.h"
#include "component/com_abi.h"
#include "component/com_server.h"
#include "component/registry.h"
#include "component_loader.h"
#include "editors/frm_protocol_scan.h"
#include "editors/frm_protocol_send.h"
#include "field_editors/frm_protocol_hex_selector.h"
#include "field_editors/frm_protocol_vars.h"
#include "framework/shared_helpers.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/fb_instances_double.h"
#include "platform/host/host_context.h"
#include "platform/host/operand.h"
#include "project/download_bundle.h"
#include "project/project.h"
#include "project/project_export.h"
#include "project/project_file.h"
#include "serial/frm_protocol_config.h"
#include "serial/frm_protocol_copy_bytes.h"
#include "tcpip/frm_eth_address_param.h"
#include "tcpip/frm_eth_protocol_config.h"

namespace qx::cli {

namespace {

constexpr const char* helpTitle = "qxfb - command-line host of the QxFBCom2 function-block component\n\n";

constexpr const char* helpText =
    R"(
The commands in detail:
  qxfb demo [--component PATH] [--app-folder DIR]
      Loads the component with dlopen and DllGetClassObject, as the ladder IDE
      does, creates QxFBCom2.clsGate, and lists both function-block families
      with their operations (FatherID, MethodID, Title, Description), their
      runtime versions (CurrentHexFileVersion, HexFileVersionsList) and the
      sizes of their runtime files (GetHexFileDetails). Then it plays a new
      serial Config with a scripted person: a new instance, both operands
      linked through the operand picker, "COM2" chosen in cbComport, OK; and
      prints the operation's blocks. It goes on with a Copy buffer, a serial
      Send typed into the Send dialog's grid, a serial Scan that receives it
      typed into the Scan dialog's grid, and a TCP/IP Config, and prints
      "Send image bytes: N", "Scan image bytes: M", the address table, the
      Copy buffer image and last the Config's image, the line
      "BinaryOperands: 02 00". Error reports of the component go to standard
      error.
  qxfb classes [--component PATH]
      Lists the public classes: ProgID and class identifier (CLSID), as the
      component itself resolves them.
  qxfb register [--component PATH]
      Calls DllRegisterServer: writes every public class (CLSID, ProgID,
      library path) into the registry file, keeping its other entries.
  qxfb unregister [--component PATH]
      Calls DllUnregisterServer: removes exactly those entries again.
  qxfb project info FILE
      Shows the project file FILE without loading the component: its
      settings, each net with its operations (MethodID, HexFileVersion,
      FatherInstanceNum, the size of BinaryOperands, every operand with its
      key, caption and link or constant value), the instances (FatherID,
      InstanceNum, name, data size) and the sizes of the constant and operand
      tables. Texts from the file are shown with control characters escaped
      (\e, \t, \x00, \u2028) and bytes that are not UTF-8 as \xHH.
  qxfb project bundle FILE DIR [--component PATH] [--app-folder DIR]
                               [--app-folder-from-project]
      Writes the download bundle of the project FILE into the folder DIR,
      which must be missing or empty: every operation's BinaryOperands
      (operations/net001_op001_170101.bin), every instance's data
      (instances/170100_0001.bin), the runtime files of each family and
      version in use, as the component gives them (runtime/170100V100.FBs and
      .Jmp), and last manifest.json with the runtime folder used and the
      size, SHA-256 and meaning of each file. The files are written into a
      fresh folder beside DIR, which becomes DIR when all are on the disk:
      DIR holds the whole bundle or nothing, and of two bundles written into
      one folder at once the second fails. The application folder is
      --app-folder, else the component's own; the one the project names is
      used only with --app-folder-from-project. ExtendedOperands comes from
      the project. Prints the application and runtime folders, each file with
      its size and SHA-256, last the line "Bundle: N files in DIR".
  qxfb project export FILE DIR
      Writes the project FILE as JSON files that a person can read, diff and
      keep in version control into the folder DIR, missing or empty:
      project.json (settings, nets, operations with their operand links,
      instances, constants, descriptions), checksums.json (the checksum
      table, which preview, loopback and decode take with --checksums) and
      messages/net001_op002_send.json, the text form of every Send and Scan.
      Whole or nothing, as a bundle. Needs no component.
  qxfb dump FILE [--kind KIND] [--json]
      Shows what the image in FILE means, range by range: the offset, the
      length, the name and the value in words of every part (the header, the
      messages, their segments, each field record with every setting, the
      texts, the checksum, the frame characters, the terminators), with the
      bytes in hex. KIND is send, scan, config, copy or address; without
      --kind the content tells it. --json writes the same tree as JSON. Loads
      no component. A malformed image fails with the offset and what was
      expected there.
  qxfb diff A B [--kind KIND]
      Compares two images of one kind in the words of dump, one line for
      each setting that differs ("message 2, field at position 5:
      BeforePoint 4 -> 5"), nothing when they are equal. Exit status 0 when
      equal, 1 when different, 2 on a usage error or an unreadable image.
  qxfb --help
      Shows this text; qxfb COMMAND --help shows the arguments and options
      of one command.

Options:
  --component PATH   the component to load; by default the one installed
                     beside qxfb (../lib/libQxFBCom2.so), else the
                     libQxFBCom2.so of the build that made qxfb
  --app-folder DIR   the host's application folder inside the component (demo
                     and project bundle); the
                     runtime files are read from DIR/../FB_Lib/RT/. By default
                     the component's own: $QXFB_APP_FOLDER, else for an
                     installed component share/QxFBCom2/bin of its prefix, else
                     runtime/bin of the source tree it was built from

Environment:
  QXFB_APP_FOLDER    application folder the component starts with
  QXFB_REGISTRY      registry file; default $XDG_CONFIG_HOME/QxFBCom2/registry.ini
                     or ~/.config/QxFBCom2/registry.ini

Exit status: 0 on success, 1 when the component or a file failed or standard
output could not be written, 2 on a usage error.
)";

std::string hexBytes(const Bytes& bytes) {
    std::string text;
    char byte[4];
    for (size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(byte, sizeof byte, "%02X", bytes[i]);
        if (i) text += ' ';
        text += byte;
    }
    return text;
}

std::string u8(const std::wstring& text) { return toUtf8(text); }

// Text from a file or the command line as a terminal may show it: nothing in
// it can move the cursor, change colours or reorder what follows. Control
// characters and the characters that break or reorder lines are escaped
// (\e, \t, \x00, \u2028), a byte that is not UTF-8 is \xHH, a backslash \\.
std::string shown(const std::string& bytes) {
    std::string out;
    char escape[12];
    const auto byte = [&bytes](size_t i) { return static_cast<uint8_t>(bytes[i]); };
    for (size_t i = 0; i < bytes.size();) {
        const uint8_t c = byte(i);
        if (c < 0x80) {
            if (c == 0x1B) {
                out += "\\e";
            } else if (c == '\\') {
                out += "\\\\";
            } else if (c == '\t') {
                out += "\\t";
            } else if (c == '\n') {
                out += "\\n";
            } else if (c == '\r') {
                out += "\\r";
            } else if (c < 0x20 || c == 0x7F) {
                std::snprintf(escape, sizeof escape, "\\x%02x", c);
                out += escape;
            } else {
                out += static_cast<char>(c);
            }
            ++i;
            continue;
        }
        // One UTF-8 sequence: its length, its code point, and whether it is
        // the shortest form of a code point that is no surrogate.
        const size_t length = c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 0;
        uint32_t code = length == 4 ? c & 0x07u : length == 3 ? c & 0x0Fu : c & 0x1Fu;
        bool valid = length != 0 && c <= 0xF4 && bytes.size() - i >= length;
        for (size_t k = 1; valid && k < length; ++k) {
            valid = (byte(i + k) & 0xC0) == 0x80;
            code = (code << 6) | (byte(i + k) & 0x3Fu);
        }
        static constexpr uint32_t Smallest[] = {0, 0, 0x80, 0x800, 0x10000};
        valid = valid && code >= Smallest[length] && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF);
        if (!valid) {
            std::snprintf(escape, sizeof escape, "\\x%02x", c);
            out += escape;
            ++i;
            continue;
        }
        const bool hidden = code <= 0x9F || code == 0x2028 || code == 0x2029 || code == 0x200E || code == 0x200F ||
                            (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
        if (hidden) {
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(code));
            out += escape;
        } else {
            out.append(bytes, i, length);
        }
        i += length;
    }
    return out;
}

std::string shown(const std::wstring& text) { return shown(toUtf8(text)); }

struct Options {
    std::string component;
    std::string appFolder;
    bool appFolderFromProject = false;
};

void printFamily(itfFBFather& father) {
    std::cout << "\nFamily " << father.itfFBFather_FatherID() << " " << u8(father.itfFBFather_Title()) << " ("
              << u8(father.itfFBFather_FatherName()) << ")\n";
    std::cout << "  Description: " << u8(father.itfFBFather_Description()) << "\n";
    std::cout << "  InstanceType: " << father.itfFBFather_InstanceType() << "\n";
    const int32_t current = father.itfFBFather_CurrentHexFileVersion();
    std::cout << "  CurrentHexFileVersion: " << current << "\n";
    std::cout << "  HexFileVersionsList:";
    const std::vector<int32_t> versions = father.itfFBFather_HexFileVersionsList();
    for (int32_t version : versions) std::cout << " " << version;
    std::cout << "\n";
    for (int32_t version : versions) {
        FBHexFileDetails details = father.itfFBFather_GetHexFileDetails(version);
        std::cout << "  Runtime files of version " << version << ": FBs " << details.FBsSize << " bytes, Jmp "
                  << details.Jmp.size() << " bytes, MinBiosVersion " << details.MinBiosVersion
                  << ", RealTimeMemorySize " << details.RealTimeMemorySize << "\n";
    }
    auto methods = father.itfFBFather_GetFBmethodsCollection();
    std::cout << "  Operations:\n";
    for (int32_t i = 1; i <= methods->Count(); ++i) {
        MethodPtr method = methods->Item(i);
        std::cout << "    FatherID " << father.itfFBFather_FatherID() << "  MethodID " << method->itfFBMethod_MethodID()
                  << "  " << u8(method->itfFBMethod_Title()) << "  (" << u8(method->itfFBMethod_MethodName())
                  << ")\n      " << u8(method->itfFBMethod_Description()) << "\n";
    }
}

void printOperands(const char* name, const OperandCollectionPtr& operands) {
    std::cout << "  " << name << ":";
    if (!operands || operands->Count() == 0) {
        std::cout << " none\n";
        return;
    }
    std::cout << "\n";
    for (int32_t i = 1; i <= operands->Count(); ++i) {
        const clsOperand& operand = *operands->Item(i);
        std::cout << "    " << u8(operands->KeyAt(i)) << "  " << u8(operand.OperandCaption()) << "  "
                  << u8(GetOperandDisplayText(operand)) << "\n";
    }
}

// The person at the keyboard of the new Config, acting in the component's own
// host context: both operands through the picker, COM2, OK.
void scriptConfigPerson(HostContext& context) {
    ScriptedModalDriver* person = context.Script();
    if (!person) throw std::runtime_error("the component's host context has no scripted person");
    person->QueuePick(OperandChoice{1, 1, 10, 0, L"Protocol busy"});
    person->QueuePick(OperandChoice{1, 3, 20, 0, L"Protocol status"});
    person->QueueDialog([](Form& form) {
        auto* dialog = dynamic_cast<frmProtocolConfig*>(&form);
        if (!dialog) return;  // not the dialog this person expects: it closes the window
        std::cout << "  Person: links \"" << u8(dialog->lblOpFail.Caption()) << "\" to "
                  << u8(dialog->lbOpFail.Caption()) << "\n";
        std::cout << "  Person: links \"" << u8(dialog->lblStatusOp.Caption()) << "\" to "
                  << u8(dialog->lbStatusOp.Caption()) << "\n";
        for (int32_t i = 0; i < dialog->cbComport.ListCount(); ++i)
            if (dialog->cbComport.List(i) == L"COM2") dialog->cbComport.UserSelect(i);
        std::cout << "  Person: chooses " << u8(dialog->cbComport.Text()) << " in cbComport, presses OK\n";
        dialog->cmdOk.UserClick();
    });
}

// The person's part of a new serial Copy buffer: the destination MI 30
// through the picker, the format of two bytes, OK.
void scriptCopyBufferPerson(HostContext& context) {
    ScriptedModalDriver* person = context.Script();
    if (!person) throw std::runtime_error("the component's host context has no scripted person");
    person->QueuePick(OperandChoice{1, 3, 30, 0, L"Received words"});
    person->QueueDialog([](Form& form) {
        auto* dialog = dynamic_cast<frmProtocolCopyBytes*>(&form);
        if (!dialog) return;
        std::cout << "  Person: Config " << u8(dialog->cbInstanceName.Text()) << " is chosen already\n";
        dialog->cmdOperand.UserClick();
        std::cout << "  Person: links \"" << u8(dialog->lbOpCaption.Caption()) << "\" to "
                  << u8(dialog->lbOperand.Caption()) << "\n";
        for (int32_t i = 0; i < dialog->cbCopyBytes.ListCount(); ++i)
            if (dialog->cbCopyBytes.ItemData(i) == 2) dialog->cbCopyBytes.UserSelect(i);
        std::cout << "  Person: chooses \"" << u8(dialog->cbCopyBytes.Text()) << "\", presses OK\n";
        dialog->cmdOk.UserClick();
    });
}

// The person in the control-character selector takes the code and OK.
ScriptedModalDriver::DialogScript controlCharPerson(int32_t code) {
    return [code](Form& form) {
        auto* dialog = dynamic_cast<frmProtocolHexSelector*>(&form);
        if (!dialog) return;
        dialog->flgLowChars.UserClick(code + 1, 0);
        dialog->cmdOk.UserClick();
    };
}

// The weighing scale's two requests typed into a message grid whose text
// starts in column firstCol: message 0 "W" CR LF, then an appended message 1
// "T", a field placed by ID_NewVar (the field person fills the field dialog)
// and CR LF. Control characters come from the selector through ID_ControlChar.
void typeScaleRequests(ScriptedModalDriver& person, Grid& grid, ToolBar& bar, int32_t firstCol,
                       ScriptedModalDriver::DialogScript fieldPerson) {
    auto controlChar = [&](int32_t code) {
        person.QueueDialog(controlCharPerson(code));
        bar.UserClickTool(L"ID_ControlChar");
        grid.UserKeyDown(keys::Right, 0);
    };
    grid.UserKeyPress('W');
    controlChar(13);
    controlChar(10);
    bar.UserClickTool(L"ID_AppendMsg");
    grid.UserMoveTo(1, firstCol);
    grid.UserKeyPress('T');
    person.QueueDialog(std::move(fieldPerson));
    bar.UserClickTool(L"ID_NewVar");
    // A field's cells show "1"; the end characters follow the field.
    int32_t end = grid.Col();
    while (end < grid.Cols() - 1 && grid.TextMatrix(1, end) == L"1") ++end;
    grid.UserMoveTo(1, end);
    controlChar(13);
    controlChar(10);
}

// The person's part of a new serial Send on that Config, the requests to a
// weighing scale: message 0 "W" CR LF asks for the weight, message 1 "T", a
// numeric field from MI 12 and CR LF sets the tare; STX 02 and ETX 03 from
// the selector, and the message chosen by MI 5.
void scriptSendPerson(HostContext& context) {
    ScriptedModalDriver* person = context.Script();
    if (!person) throw std::runtime_error("the component's host context has no scripted person");
    person->QueueDialog([person](Form& form) {
        auto* dialog = dynamic_cast<frmProtocolSend*>(&form);
        if (!dialog) return;
        std::cout << "  Person: Config " << u8(dialog->cbInstanceName.Text()) << " is chosen already\n";
        person->QueuePick(OperandChoice{1, 3, 12, 0, L"Tare"});
        typeScaleRequests(*person, dialog->FlgSend, dialog->abSend, 1, [](Form& fieldForm) {
            auto* field = dynamic_cast<frmProtocolVars*>(&fieldForm);
            if (!field) return;
            field->tbSMSVars.UserSelect(2);
            field->cmdLink.UserClick();
            field->cmdOk.UserClick();
        });
        std::cout << "  Person: types W and places CR LF in message 0\n";
        std::cout << "  Person: appends message 1: T, a numeric field linked to MI 12, CR LF\n";
        dialog->ckSendSTX.UserClick();
        person->QueueDialog(controlCharPerson(2));
        dialog->flgSendSTX.UserDoubleClick(0, 0);
        dialog->ckSendETX.UserClick();
        person->QueueDialog(controlCharPerson(3));
        dialog->flgSendETX.UserDoubleClick(0, 0);
        std::cout << "  Person: STX " << u8(dialog->flgSendSTX.TextMatrix(0, 0)) << ", ETX "
                  << u8(dialog->flgSendETX.TextMatrix(0, 0)) << ", end of message "
                  << u8(dialog->lbSendETXEndOfMsg.Caption()) << "\n";
        person->QueuePick(OperandChoice{1, 3, 5, 0, L"Request"});
        dialog->cmdOpMsgNumToSend.UserClick();
        std::cout << "  Person: links the message number to " << u8(dialog->lbOpMsgNumToSend.Caption())
                  << ", presses OK\n";
        dialog->cmdOK.UserClick();
    });
}

// The person's part of a new serial Scan that receives those requests, as
// the scale's side of the line would: the dialog offers its three links at
// once (request received MB 50, bytes MI 51, which request MI 52); message 0
// "W" CR LF, message 1 "T", a number of five digits into MI 53 (where its
// decimal point stood into MI 54) and CR LF; STX 02 and the end of text ETX
// 03 as the terminator.
void scriptScanPerson(HostContext& context) {
    ScriptedModalDriver* person = context.Script();
    if (!person) throw std::runtime_error("the component's host context has no scripted person");
    person->QueuePick(OperandChoice{1, 1, 50, 0, L"Request received"});
    person->QueuePick(OperandChoice{1, 3, 51, 0, L"Request bytes"});
    person->QueuePick(OperandChoice{1, 3, 52, 0, L"Request index"});
    person->QueueDialog([person](Form& form) {
        auto* dialog = dynamic_cast<frmProtocolScan*>(&form);
        if (!dialog) return;
        std::cout << "  Person: Config " << u8(dialog->cbInstanceName.Text()) << " is chosen already; links "
                  << u8(dialog->lbOpFail.Caption()) << ", " << u8(dialog->lblOpReceived.Caption()) << ", "
                  << u8(dialog->lbOpMessageNum.Caption()) << "\n";
        person->QueuePick(OperandChoice{1, 3, 53, 0, L"Tare in"});
        person->QueuePick(OperandChoice{1, 3, 54, 0, L"Tare decimals"});
        // Column 1 is each message's length; its text starts in column 2.
        typeScaleRequests(*person, dialog->FlgScan, dialog->abScan, 2, [](Form& fieldForm) {
            auto* field = dynamic_cast<frmProtocolVars*>(&fieldForm);
            if (!field) return;
            field->ScanNumeric.cbScanLength.UserSelect(4);
            field->cmdLink.UserClick();
            field->ScanNumeric.cmdDecimalPointOp.UserClick();
            field->cmdOk.UserClick();
        });
        std::cout << "  Person: types the two requests, the tare as a field into MI 53\n";
        dialog->ckSTX.UserClick();
        person->QueueDialog(controlCharPerson(2));
        dialog->flgSTX.UserDoubleClick(0, 0);
        dialog->opEndOfText.UserClick();
        person->QueueDialog(controlCharPerson(3));
        dialog->flgETX.UserDoubleClick(0, 0);
        std::cout << "  Person: STX " << u8(dialog->flgSTX.TextMatrix(0, 0)) << ", terminator ETX "
                  << u8(dialog->flgETX.TextMatrix(0, 0)) << ", presses OK\n";
        dialog->cmdOK.UserClick();
    });
}

// One address parameter typed into the address dialog: a constant, or the MI picked for it.
ScriptedModalDriver::DialogScript addressPerson(const std::wstring& constant) {
    return [constant](Form& form) {
        auto* dialog = dynamic_cast<frmEthAddressParam*>(&form);
        if (!dialog) return;
        if (constant.empty()) {
            dialog->optMI.UserClick();
            dialog->cmdMI.UserClick();
        } else if (dialog->ctlIPAddress.Visible()) {
            dialog->ctlIPAddress.UserType(constant);
        } else {
            dialog->txtConstValueEx.UserType(constant);
        }
        dialog->cmdOK.UserClick();
    };
}

// The person's part of a new TCP/IP Config: socket 1 from the constant list
// and the status MI 21, the name "Plant"; address 0 is 192.168.1.10 port 502,
// address 1 takes its IP from MI 100 to 103 and its port from MI 104.
void scriptTcpIpConfigPerson(HostContext& context) {
    ScriptedModalDriver* person = context.Script();
    if (!person) throw std::runtime_error("the component's host context has no scripted person");
    person->QueuePick(OperandChoice{2, 37, -1, 0, L"Socket 1", 10000});
    person->QueuePick(OperandChoice{1, 3, 21, 0, L"Ethernet status"});
    person->QueueDialog([person](Form& form) {
        auto* dialog = dynamic_cast<frmEthProtocolConfig*>(&form);
        if (!dialog) return;
        dialog->txtInstanceName.UserType(L"Plant");
        std::cout << "  Person: names the instance " << u8(dialog->txtInstanceName.Text()) << ", socket "
                  << u8(dialog->vsfOperands.TextMatrix(1, 3)) << ", status " << u8(dialog->vsfOperands.TextMatrix(2, 1))
                  << " " << u8(dialog->vsfOperands.TextMatrix(2, 2)) << "\n";
        person->QueuePick(OperandChoice{1, 3, 100, 0, L"Remote IP"});
        person->QueuePick(OperandChoice{1, 3, 104, 0, L"Remote port"});
        for (const auto& [row, col, constant] : {std::tuple{1, 1, L"192.168.1.10"}, std::tuple{1, 2, L"502"},
                                                 std::tuple{2, 1, L""}, std::tuple{2, 2, L""}}) {
            person->QueueDialog(addressPerson(constant));
            dialog->vsfSlaves.UserClick(row, col);
            dialog->vsfSlaves.UserCellButtonClick();
            std::cout << "  Person: address " << row - 1 << (col == 1 ? " IP " : " port ")
                      << u8(dialog->vsfSlaves.TextMatrix(row, col)) << "\n";
        }
        std::cout << "  Person: presses OK\n";
        dialog->cmdOK.UserClick();
    });
}

// The address table, its two header bytes and then one line per record.
void printAddressTable(const Bytes& table) {
    std::cout << "Address table (" << table.size()
              << " bytes): " << hexBytes(Bytes(table.begin(), table.begin() + std::min<size_t>(2, table.size())))
              << "\n";
    for (size_t at = 2, index = 0; at + 26 <= table.size(); at += 26, ++index)
        std::cout << "  " << (index < 10 ? " " : "") << index << ": "
                  << hexBytes(Bytes(table.begin() + static_cast<std::ptrdiff_t>(at),
                                    table.begin() + static_cast<std::ptrdiff_t>(at + 26)))
                  << "\n";
}

// Loads the component and gives its host context, with reports echoed to
// standard error; nullptr (the cause printed) when that fails.
HostContext* loadWithContext(LoadedComponent& component, const Options& options) {
    if (!component.Load(options.component)) {
        std::cerr << "qxfb: " << component.Error() << "\n";
        return nullptr;
    }
    HostContext* context = component.Context();
    if (!context) {
        std::cerr << "qxfb: the component gave no host context\n";
        return nullptr;
    }
    context->EchoReports = true;
    return context;
}

int demo(const Options& options) {
    LoadedComponent component;
    HostContext* context = loadWithContext(component, options);
    if (!context) return 1;
    if (!options.appFolder.empty()) context->AppFolder = fromUtf8(options.appFolder);

    std::cout << "Component: " << component.Path() << "\n";
    std::cout << "Application folder: " << u8(context->AppFolder) << "\n";

    MethodPtr config, copy, send, scan, ethConfig;
    Bytes image, copyImage, sendImage, scanImage, addressTable;
    try {
        GUID clsid{};
        component.CLSIDFromProgID(L"QxFBCom2.clsGate", &clsid);
        auto gate = component.Create<itfFBGate>(L"QxFBCom2.clsGate");
        if (!gate) {
            std::cerr << "qxfb: " << component.Error() << "\n";
            return 1;
        }
        std::cout << "Gate: QxFBCom2.clsGate " << guidToText(clsid) << ", GateID " << gate->itfFBGate_GateID() << "\n";
        auto fathers = gate->itfFBGate_GetFathersCollection();
        for (int32_t i = 1; i <= fathers->Count(); ++i) printFamily(*fathers->Item(i));

        std::cout << "\nNew serial Config\n";
        scriptConfigPerson(*context);
        FatherPtr serial = gate->itfFBGate_GetFatherObject(170100);
        config = serial->itfFBFather_GetFBMethodObject(170101);
        auto instances = std::make_shared<FBInstancesDouble>();
        config->itfFBMethod_Init(instances);
        config->itfFBMethod_CreateDummyOperands();
        config->itfFBMethod_BuildOperands();
        config->itfFBMethod_EditOperands();
        if (config->itfFBMethod_IsCanceled()) {
            std::cerr << "qxfb: the Config dialog ended without OK\n";
            return 1;
        }
        std::cout << "  MethodID: " << config->itfFBMethod_MethodID() << "  " << u8(config->itfFBMethod_Title())
                  << "\n";
        printOperands("InOperands", config->itfFBMethod_InOperands());
        printOperands("OutOperands", config->itfFBMethod_OutOperands());
        std::cout << "  FatherInstanceNum: " << config->itfFBMethod_FatherInstanceNum() << "\n";
        std::cout << "  FatherInstanceName: " << u8(config->itfFBMethod_FatherInstanceName()) << "\n";
        std::cout << "  HexFileVersion: " << config->itfFBMethod_HexFileVersion() << "\n";
        image = config->itfFBMethod_BinaryOperands();

        std::cout << "\nNew serial Copy buffer\n";
        scriptCopyBufferPerson(*context);
        copy = serial->itfFBFather_GetFBMethodObject(170104);
        copy->itfFBMethod_Init(instances);
        copy->itfFBMethod_CreateDummyOperands();
        copy->itfFBMethod_BuildOperands();
        copy->itfFBMethod_EditOperands();
        if (copy->itfFBMethod_IsCanceled()) {
            std::cerr << "qxfb: the Copy buffer dialog ended without OK\n";
            return 1;
        }
        printOperands("OutOperands", copy->itfFBMethod_OutOperands());
        std::cout << "  FatherInstanceName: " << u8(copy->itfFBMethod_FatherInstanceName()) << "\n";
        copyImage = copy->itfFBMethod_BinaryOperands();

        std::cout << "\nNew serial Send\n";
        scriptSendPerson(*context);
        send = serial->itfFBFather_GetFBMethodObject(170103);
        send->itfFBMethod_Init(instances);
        send->itfFBMethod_CreateDummyOperands();
        send->itfFBMethod_BuildOperands();
        send->itfFBMethod_EditOperands();
        if (send->itfFBMethod_IsCanceled()) {
            std::cerr << "qxfb: the Send dialog ended without OK\n";
            return 1;
        }
        printOperands("OperandsForFindOnly", send->itfFBMethod_OperandsForFindOnly());
        std::cout << "  FatherInstanceName: " << u8(send->itfFBMethod_FatherInstanceName()) << "\n";
        sendImage = send->itfFBMethod_BinaryOperands();

        std::cout << "\nNew serial Scan\n";
        scriptScanPerson(*context);
        scan = serial->itfFBFather_GetFBMethodObject(170102);
        scan->itfFBMethod_Init(instances);
        scan->itfFBMethod_CreateDummyOperands();
        scan->itfFBMethod_BuildOperands();
        scan->itfFBMethod_EditOperands();
        if (scan->itfFBMethod_IsCanceled()) {
            std::cerr << "qxfb: the Scan dialog ended without OK\n";
            return 1;
        }
        printOperands("OutOperands", scan->itfFBMethod_OutOperands());
        printOperands("OperandsForFindOnly", scan->itfFBMethod_OperandsForFindOnly());
        std::cout << "  FatherInstanceName: " << u8(scan->itfFBMethod_FatherInstanceName()) << "\n";
        scanImage = scan->itfFBMethod_BinaryOperands();

        std::cout << "\nNew TCP/IP Config\n";
        scriptTcpIpConfigPerson(*context);
        FatherPtr tcpip = gate->itfFBGate_GetFatherObject(170200);
        ethConfig = tcpip->itfFBFather_GetFBMethodObject(170201);
        auto ethInstances = std::make_shared<FBInstancesDouble>();
        ethConfig->itfFBMethod_Init(ethInstances);
        ethConfig->itfFBMethod_CreateDummyOperands();
        ethConfig->itfFBMethod_BuildOperands();
        ethConfig->itfFBMethod_EditOperands();
        if (ethConfig->itfFBMethod_IsCanceled()) {
            std::cerr << "qxfb: the TCP/IP Config dialog ended without OK\n";
            return 1;
        }
        printOperands("InOperands", ethConfig->itfFBMethod_InOperands());
        printOperands("OutOperands", ethConfig->itfFBMethod_OutOperands());
        printOperands("OperandsForFindOnly", ethConfig->itfFBMethod_OperandsForFindOnly());
        std::cout << "  FatherInstanceName: " << u8(ethConfig->itfFBMethod_FatherInstanceName()) << "\n";
        ethInstances->GetInstanceData(ethConfig->itfFBMethod_FatherInstanceNum(), addressTable);
    } catch (const RuntimeError& e) {
        std::cerr << "qxfb: run-time error " << e.Number() << ": " << u8(e.Description()) << "\n";
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "qxfb: " << e.what() << "\n";
        return 1;
    }
    config.reset();
    copy.reset();
    send.reset();
    scan.reset();
    ethConfig.reset();
    if (component.CanUnloadNow() != S_OK) std::cerr << "qxfb: objects of the component are still alive\n";
    printAddressTable(addressTable);
    std::cout << "Send image bytes: " << sendImage.size() << "\n";
    std::cout << "Scan image bytes: " << scanImage.size() << "\n";
    std::cout << "Copy buffer image: " << hexBytes(copyImage) << "\n";
    std::cout << "BinaryOperands: " << hexBytes(image) << std::endl;
    return 0;
}

int classes(const Options& options) {
    LoadedComponent component;
    if (!component.Load(options.component)) {
        std::cerr << "qxfb: " << component.Error() << "\n";
        return 1;
    }
    for (const auto& cls : PublicClasses) {
        const std::wstring progId = std::wstring(ProgIDPrefix) + cls.Name;
        GUID clsid{};
        HRESULT hr = component.CLSIDFromProgID(progId.c_str(), &clsid);
        if (FAILED(hr)) {
            std::cerr << "qxfb: " << u8(progId) << " is unknown to the component (" << LoadedComponent::hresultText(hr)
                      << ")\n";
            return 1;
        }
        std::cout << guidToText(clsid) << "  " << u8(progId) << "\n";
    }
    return 0;
}

int registration(const Options& options, bool add) {
    LoadedComponent component;
    if (!component.Load(options.component)) {
        std::cerr << "qxfb: " << component.Error() << "\n";
        return 1;
    }
    HRESULT hr = add ? component.RegisterServer() : component.UnregisterServer();
    const char* entryPoint = add ? "DllRegisterServer" : "DllUnregisterServer";
    if (FAILED(hr)) {
        std::cerr << "qxfb: " << entryPoint << " failed with " << LoadedComponent::hresultText(hr) << " (registry file "
                  << registryFilePath() << ")\n";
        return 1;
    }
    std::cout << entryPoint << ": " << (add ? "registered " : "unregistered ") << std::size(PublicClasses)
              << " classes of " << component.Path() << (add ? " in " : " from ") << registryFilePath() << "\n";
    return 0;
}

std::string countOf(size_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

void printStoredOperands(const char* name, const std::vector<StoredOperand>& operands) {
    std::cout << "    " << name << ":";
    if (operands.empty()) {
        std::cout << " none\n";
        return;
    }
    std::cout << "\n";
    for (const StoredOperand& stored : operands) {
        // The host's own operand object says how a link or a constant reads.
        OperandPtr operand = newOperand();
        restoreOperand(stored, *operand);
        const std::wstring display = GetOperandDisplayText(*operand);
        std::cout << "      " << shown(stored.Key) << "  " << shown(stored.Caption) << "  "
                  << (display.empty() ? std::string("not linked") : shown(display)) << "\n";
    }
}

// Reads the project file; false (the cause printed) when it cannot.
bool loadProjectFile(const std::string& file, Project& project) {
    try {
        project = loadProject(file);
        return true;
    } catch (const RuntimeError& e) {
        std::cerr << "qxfb: " << shown(e.Description()) << "\n";
        return false;
    }
}

int projectInfo(const std::string& file) {
    Project project;
    if (!loadProjectFile(file, project)) return 1;
    std::cout << "Project: " << shown(file) << "\n";
    std::cout << "ExtendedOperands: " << (project.Settings.ExtendedOperands ? "on" : "off") << "\n";
    std::cout << "AppFolder: "
              << (project.Settings.AppFolder.empty() ? std::string("(the component's own)")
                                                     : shown(project.Settings.AppFolder))
              << "\n";
    for (size_t n = 0; n < project.Nets.size(); ++n) {
        const LadderNet& net = project.Nets[n];
        std::cout << "Net " << n + 1 << (net.Comment.empty() ? "" : ": " + shown(net.Comment)) << "\n";
        if (net.Operations.empty()) std::cout << "  no operations\n";
        for (size_t i = 0; i < net.Operations.size(); ++i) {
            const StoredOperation& op = net.Operations[i];
            std::cout << "  Operation " << i + 1 << ": MethodID " << op.MethodID << "  HexFileVersion "
                      << op.HexFileVersion << "  FatherInstanceNum " << op.FatherInstanceNum << "  BinaryOperands "
                      << countOf(op.BinaryOperands.size(), "byte", "bytes") << (op.IsConducting ? "  conducting" : "")
                      << "\n";
            printStoredOperands("InOperands", op.InOperands);
            printStoredOperands("OutOperands", op.OutOperands);
        }
    }
    std::cout << "Instances:" << (project.Instances.empty() ? " none" : "") << "\n";
    for (const StoredInstance& instance : project.Instances)
        std::cout << "  FatherID " << instance.FatherID << "  InstanceNum " << instance.InstanceNum << "  "
                  << shown(instance.Name) << "  Data " << countOf(instance.Data.size(), "byte", "bytes") << "\n";
    std::cout << "Constants: " << project.Constants.size() << "\n";
    std::cout << "Links: " << project.Links.size() << "\n";
    return 0;
}

int projectBundle(const Options& options, const std::string& file, const std::string& folder) {
    Project project;
    if (!loadProjectFile(file, project)) return 1;
    LoadedComponent component;
    HostContext* context = loadWithContext(component, options);
    if (!context) return 1;
    // The runtime code sent to the controller comes from the component's own
    // folder unless the person says otherwise: a project file, which may come
    // from anywhere, does not choose it by itself.
    std::string from = "the component's own";
    if (!options.appFolder.empty()) {
        context->AppFolder = fromUtf8(options.appFolder);
        from = "given with --app-folder";
    } else if (options.appFolderFromProject && !project.Settings.AppFolder.empty()) {
        context->AppFolder = project.Settings.AppFolder;
        from = "the project's, with --app-folder-from-project";
    }
    context->ExtendedOperands = project.Settings.ExtendedOperands;
    const std::wstring runtimeFolder =
        fromUtf8(std::filesystem::path(u8(context->RuntimeFolder())).lexically_normal().string());

    std::cout << "Project: " << shown(file) << "\n";
    std::cout << "Component: " << shown(component.Path()) << "\n";
    std::cout << "Application folder: " << shown(context->AppFolder) << " (" << from << ")\n";
    if (!options.appFolderFromProject && options.appFolder.empty() && !project.Settings.AppFolder.empty())
        std::cout << "  The project names the application folder " << shown(project.Settings.AppFolder)
                  << "; --app-folder-from-project uses it\n";
    std::cout << "Runtime folder: " << shown(runtimeFolder) << "\n";
    std::vector<BundleFile> files;
    try {
        auto gate = component.Create<itfFBGate>(L"QxFBCom2.clsGate");
        if (!gate) {
            std::cerr << "qxfb: " << component.Error() << "\n";
            return 1;
        }
        files = writeDownloadBundle(project, folder, runtimeFilesFrom(*gate, *context), runtimeFolder);
    } catch (const RuntimeError& e) {
        std::cerr << "qxfb: " << shown(e.Description()) << "\n";
        return 1;
    } catch (const std::exception& e) {
        std::cerr << "qxfb: " << shown(std::string(e.what())) << "\n";
        return 1;
    }
    for (const BundleFile& written : files)
        std::cout << "  " << written.Path << "  " << countOf(written.Size, "byte", "bytes") << "  " << written.Sha256
                  << "\n";
    std::cout << "Bundle: " << countOf(files.size(), "file", "files") << " in " << shown(folder) << std::endl;
    return 0;
}

int projectExport(const std::string& file, const std::string& folder) {
    Project project;
    if (!loadProjectFile(file, project)) return 1;
    std::vector<BundleFile> files;
    try {
        ScopedHostContext host;
        files = writeProjectExport(project, folder);
    } catch (const RuntimeError& e) {
        std::cerr << "qxfb: " << shown(e.Description()) << "\n";
        return 1;
    }
    for (const BundleFile& written : files)
        std::cout << "  " << written.Path << "  " << countOf(written.Size, "byte", "bytes") << "\n";
    std::cout << "Export: " << countOf(files.size(), "file", "files") << " in " << shown(folder) << std::endl;
    return 0;
}

// Everything the command printed must have reached standard output: a
// listing cut short by a full disk or a closed pipe is a failure.
int checkedOutput(int status) {
    std::cout.flush();
    if (std::cout.good()) return status;
    const int error = errno;
    std::cerr << "qxfb: standard output cannot be written (" << std::strerror(error) << ")\n";
    return status == 0 ? 1 : status;
}

// qxfb --help: the commands in a list, then each explained, the options
// and the environment. A command's own --help is CLI11's.
class QxfbHelp : public CLI::Formatter {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode mode) const override {
        if (app->get_parent() || mode == CLI::AppFormatMode::Sub) return CLI::Formatter::make_help(app, name, mode);
        const std::string text = helpText;
        const size_t options = text.find("\nOptions:");
        return helpTitle + std::string("Usage: qxfb COMMAND [ARGUMENTS] [OPTIONS]\n") + make_subcommands(app, mode) +
               text.substr(0, options) + modelCommandsHelp + linkCommandsHelp + textFormCommandsHelp +
               text.substr(options);
    }
};

// The command that a usage error belongs to: the last one the words named.
const CLI::App& lastCommand(const CLI::App& qxfb) {
    const CLI::App* command = &qxfb;
    while (!command->get_subcommands().empty()) command = command->get_subcommands().front();
    return *command;
}

// CLI11's error in the words of qxfb where they say more.
std::string usageMessage(const CLI::App& qxfb, const CLI::ParseError& error) {
    const CLI::App& command = lastCommand(qxfb);
    const std::vector<std::string> left = command.remaining();
    const bool top = &command == &qxfb;
    const bool hasCommands = !command.get_subcommands({}).empty();
    if (dynamic_cast<const CLI::RequiredError*>(&error)) {
        if (hasCommands && !left.empty() && left[0].rfind('-', 0) != 0)
            return top ? "unknown command " + left[0] : "unknown " + command.get_name() + " command " + left[0];
        if (top) return "no command given";
        if (hasCommands) {
            std::string names;
            for (const CLI::App* sub : command.get_subcommands({}))
                names += (names.empty() ? "" : " or ") + sub->get_name();
            return command.get_name() + " needs a command: " + names;
        }
        const std::string needs = neededBy(command);
        if (!needs.empty()) return needs;
    }
    if (dynamic_cast<const CLI::ExtrasError*>(&error) && !left.empty()) {
        if (left[0].rfind('-', 0) == 0 && left[0].size() > 1) return "unknown option " + left[0];
        return "unexpected argument " + left[0];
    }
    return error.what();
}

void addProjectCommands(CLI::App& qxfb, Command& chosen) {
    CLI::App* project = addCommand(qxfb, "project", "Shows a project file, writes its download bundle or its JSON", "");
    project->require_subcommand(1);

    auto file = std::make_shared<std::string>();
    CLI::App* info = addCommand(*project, "info", "Shows a project file without loading the component",
                                "project info needs a project file");
    info->add_option("FILE", *file, "the project file")->type_name("FILE")->required();
    info->callback([&chosen, file] { chosen = [file] { return projectInfo(*file); }; });

    struct Bundle {
        Options options;
        std::string file, folder;
    };
    auto bundle = std::make_shared<Bundle>();
    bundle->options.component = defaultComponentPath();
    CLI::App* bundled = addCommand(*project, "bundle", "Writes a project's download bundle into a folder",
                                   "project bundle needs a project file and a folder");
    bundled->add_option("FILE", bundle->file, "the project file")->type_name("FILE")->required();
    bundled->add_option("DIR", bundle->folder, "the bundle's folder, missing or empty")->type_name("DIR")->required();
    bundled->add_option("--component", bundle->options.component, "the component to load")->type_name("PATH");
    CLI::Option* appFolder =
        bundled->add_option("--app-folder", bundle->options.appFolder, "the host's application folder")
            ->type_name("DIR");
    bundled
        ->add_flag("--app-folder-from-project", bundle->options.appFolderFromProject,
                   "takes the application folder that the project names")
        ->excludes(appFolder);
    bundled->callback([&chosen, bundle] {
        chosen = [bundle] { return projectBundle(bundle->options, bundle->file, bundle->folder); };
    });

    auto exported = std::make_shared<std::pair<std::string, std::string>>();
    CLI::App* exportCommand = addCommand(*project, "export", "Writes a project as JSON files into a folder",
                                         "project export needs a project file and a folder");
    exportCommand->add_option("FILE", exported->first, "the project file")->type_name("FILE")->required();
    exportCommand->add_option("DIR", exported->second, "the folder, missing or empty")->type_name("DIR")->required();
    exportCommand->callback(
        [&chosen, exported] { chosen = [exported] { return projectExport(exported->first, exported->second); }; });
}

}  // namespace

void addBaseCommands(CLI::App& qxfb, Command& chosen) {
    auto options = std::make_shared<Options>();
    options->component = defaultComponentPath();
    const auto componentOption = [&options](CLI::App& command) {
        command.add_option("--component", options->component, "the component to load")->type_name("PATH");
    };
    CLI::App* demoCommand = addCommand(qxfb, "demo", "Plays the road of new operations with a scripted person", "");
    componentOption(*demoCommand);
    demoCommand->add_option("--app-folder", options->appFolder, "the host's application folder inside the component")
        ->type_name("DIR");
    demoCommand->callback([&chosen, options] { chosen = [options] { return demo(*options); }; });

    CLI::App* classesCommand = addCommand(qxfb, "classes", "Lists the ProgID and CLSID of every public class", "");
    componentOption(*classesCommand);
    classesCommand->callback([&chosen, options] { chosen = [options] { return classes(*options); }; });

    CLI::App* registerCommand = addCommand(qxfb, "register", "Calls DllRegisterServer", "");
    componentOption(*registerCommand);
    registerCommand->callback([&chosen, options] { chosen = [options] { return registration(*options, true); }; });

    CLI::App* unregisterCommand = addCommand(qxfb, "unregister", "Calls DllUnregisterServer", "");
    componentOption(*unregisterCommand);
    unregisterCommand->callback([&chosen, options] { chosen = [options] { return registration(*options, false); }; });

    addProjectCommands(qxfb, chosen);
}

}  // namespace qx::cli

int main(int argc, char** argv) {
    using namespace qx::cli;
    CLI::App qxfb("qxfb - command-line host of the QxFBCom2 function-block component", "qxfb");
    qxfb.require_subcommand(1);
    Command chosen;
    addBaseCommands(qxfb, chosen);
    addImageCommands(qxfb, chosen);
    addTextFormCommands(qxfb, chosen);
    addModelCommands(qxfb, chosen);
    addLinkCommands(qxfb, chosen);
    // Set last: the commands keep CLI11's own formatter.
    qxfb.formatter(std::make_shared<QxfbHelp>());

    std::vector<std::string> args(argv + 1, argv + argc);
    // "qxfb help" is "qxfb --help", as it always was.
    if (args.size() == 1 && args[0] == "help") args[0] = "--help";
    std::reverse(args.begin(), args.end());  // CLI11 takes the words last first
    try {
        qxfb.parse(args);
    } catch (const CLI::CallForHelp&) {
        std::cout << qxfb.help();
        return checkedOutput(0);
    } catch (const CLI::CallForAllHelp&) {
        std::cout << qxfb.help("", CLI::AppFormatMode::All);
        return checkedOutput(0);
    } catch (const CLI::ParseError& error) {
        return usageError(shown(usageMessage(qxfb, error)));
    }
    return checkedOutput(chosen());
}
