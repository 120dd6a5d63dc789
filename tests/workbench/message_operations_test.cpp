// The four message operations (serial Send and Scan, TCP/IP Send and Scan)
// placed in the workbench behind their Config and filled in their real
// dialogs with keys and the mouse: text typed and corrected in the message
// grid, a field through the field dialog, control characters through the
// popups and the selector, the framing of the serial ones, every toolbar
// command, the links through the operand picker. What the workbench stores
// is held byte for byte against the same edit made on a message set of the
// library's own, then saved, reopened, edited again and cancelled; and the
// qxfb program shows and bundles the project the workbench wrote.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "apps/cli_run.h"
#include "component/built_paths.h"
#include "message/protocol_message.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/host/host_context.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/scratch_files.h"
#include "support/test_helpers.h"
#include "workbench_support.h"

namespace qx {
namespace {

using test::actTcpIpConfig;
using test::ConfigPerson;
using test::doubleClick;
using test::onModal;
using test::paletteItem;
using test::pickWithKeys;

constexpr int32_t SerialSend = 170103, SerialScan = 170102, EthSend = 170203, EthScan = 170202;

// ---- Acting on the dialogs --------------------------------------------------

template <class W>
W* child(QWidget& window, const char* name) {
    W* widget = window.findChild<W*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

void click(QWidget& window, const char* name) {
    if (auto* button = child<QAbstractButton>(window, name)) QTest::mouseClick(button, Qt::LeftButton);
}

// A check box or an option button is clicked on its indicator.
void tick(QWidget& window, const char* name) {
    if (auto* box = child<QAbstractButton>(window, name))
        QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
}

// Rows and columns of a message grid are those of its model: no header row.
QPoint cellCentre(QTableView& grid, int row, int col) {
    const QModelIndex index = grid.model()->index(row, col);
    grid.scrollTo(index);
    return grid.visualRect(index).center();
}

void clickCell(QTableView& grid, int row, int col, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(grid.viewport(), button, {}, cellCentre(grid, row, col));
}

// As a person double-clicks: the first click makes the cell current.
void doubleClickCell(QTableView& grid, int row, int col) {
    clickCell(grid, row, col);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, cellCentre(grid, row, col));
}

QString cell(QTableView& grid, int row, int col) { return grid.model()->index(row, col).data().toString(); }

// The cells of a row from a column on, as one text (a control character's
// two digits and a field's number included).
QString rowText(QTableView& grid, int row, int fromCol, int count) {
    QString text;
    for (int c = fromCol; c < fromCol + count; ++c)
        text += cell(grid, row, c).isEmpty() ? QStringLiteral(" ") : cell(grid, row, c);
    return text;
}

// Clicks the button of a tool on the dialog's toolbar.
void clickTool(QWidget& dialog, const char* bar, const char* id) {
    auto* toolbar = child<QToolBar>(dialog, bar);
    if (!toolbar) return;
    QToolButton* button = nullptr;
    for (QAction* action : toolbar->actions())
        if (action->objectName() == QLatin1String(id))
            button = qobject_cast<QToolButton*>(toolbar->widgetForAction(action));
    if (!button || !button->isVisible()) {
        ADD_FAILURE() << "no visible button for " << id;
        return;
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

// Right-clicks a cell of the grid and picks a tool of the popup menu that
// opens there; says which band opened.
QString pickFromPopup(QTableView& grid, int row, int col, const char* id) {
    clickCell(grid, row, col, Qt::RightButton);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) {
        ADD_FAILURE() << "no popup over the grid";
        return {};
    }
    const QString band = menu->objectName();
    QAction* picked = nullptr;
    for (QAction* action : menu->actions())
        if (action->objectName() == QLatin1String(id)) picked = action;
    if (!picked) {
        ADD_FAILURE() << "no " << id << " in " << band.toStdString();
        menu->close();
        return band;
    }
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(picked).center());
    QTest::qWait(10);
    return band;
}

// The next message box of the component is answered with the button; its
// text is kept.
void answerBox(QMessageBox::StandardButton button, QString& text) {
    onModal(QString(), [button, &text](QWidget& window) {
        auto* box = qobject_cast<QMessageBox*>(&window);
        if (!box) {
            ADD_FAILURE() << "not a message box";
            return;
        }
        text = box->text();
        QAbstractButton* pressed = box->button(button);
        if (!pressed) {
            ADD_FAILURE() << "no such button on \"" << text.toStdString() << "\"";
            pressed = box->buttons().value(0);
        }
        if (pressed) QTest::mouseClick(pressed, Qt::LeftButton);
    });
}

// The control-character selector, once it is up: the row of the code, OK.
void chooseControlChar(int code) {
    onModal(QStringLiteral("frmProtocolHexSelector"), [code](QWidget& selector) {
        QApplication::setActiveWindow(&selector);
        auto* codes = child<QTableView>(selector, "flgLowChars");
        QTest::mouseClick(codes->viewport(), Qt::LeftButton, {}, cellCentre(*codes, code, 0));
        click(selector, "cmdOk");
    });
}

// The field dialog of a new field, once it is up, filled as little as it
// takes: its operand linked through the picker, and a Scan's numeric field
// also the operand of its decimal point; OK.
void fillNewField(int32_t type, int32_t address, int32_t decimalPointAddress = 0) {
    onModal(QStringLiteral("frmProtocolVars"), [=](QWidget& vars) {
        QApplication::setActiveWindow(&vars);
        onModal(QStringLiteral("OperandPicker"), [=](QWidget& picker) { pickWithKeys(picker, type, address); });
        click(vars, "cmdLink");
        if (decimalPointAddress) {
            onModal(QStringLiteral("OperandPicker"),
                    [=](QWidget& picker) { pickWithKeys(picker, 3, decimalPointAddress); });
            click(vars, "cmdDecimalPointOp");
        }
        click(vars, "cmdOk");
    });
}

// The field dialog of an existing field: what it shows as the link, Cancel.
void lookAtFieldAndCancel(QString& link) {
    onModal(QStringLiteral("frmProtocolVars"), [&link](QWidget& vars) {
        QApplication::setActiveWindow(&vars);
        link = child<QLabel>(vars, "lblOpData")->text();
        click(vars, "cmdCancel");
    });
}

// The pickers a new operation opens by itself, one after the other.
void pickInTurn(std::vector<std::pair<int32_t, int32_t>> picks) {
    if (picks.empty()) return;
    onModal(QStringLiteral("OperandPicker"), [picks](QWidget& picker) {
        pickInTurn(std::vector<std::pair<int32_t, int32_t>>(picks.begin() + 1, picks.end()));
        pickWithKeys(picker, picks.front().first, picks.front().second);
    });
}

// A message dialog, once it is up, wide enough for its whole toolbar, the
// focus in its message grid.
void onMessageDialog(const char* name, const char* gridName, std::function<void(QWidget&, QTableView&)> act) {
    onModal(QString::fromLatin1(name), [gridName, act = std::move(act)](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        dialog.resize(1100, 680);
        QApplication::processEvents();
        auto* grid = child<QTableView>(dialog, gridName);
        if (!grid) return;
        grid->setFocus(Qt::OtherFocusReason);
        act(dialog, *grid);
    });
}

// ---- The same edits on message sets of the library's own -------------------

using FindOnly = std::vector<std::pair<int32_t, int32_t>>;

FindOnly sorted(FindOnly list) {
    std::sort(list.begin(), list.end());
    return list;
}

FindOnly findOnlyOf(const OperandCollection& operands) {
    FindOnly list;
    for (const OperandPtr& operand : operands) list.emplace_back(operand->OperandType(), operand->OperandAddress());
    return sorted(list);
}

void typeInto(clsProtocolMessage& message, int32_t position, const std::wstring& text) {
    for (size_t i = 0; i < text.size(); ++i) message.InsertChar(position + static_cast<int32_t>(i), text.substr(i, 1));
}

// A new field as the field dialog gives it back when only its operands are
// linked. The Send numeric tab writes its settings into the field, which
// then measures its length anew (a sign and five digits, where a fresh
// field says 5); the Scan numeric tab leaves the length as it was.
template <class Field>
std::shared_ptr<Field> newField() {
    auto field = std::make_shared<Field>();
    if constexpr (std::is_same_v<Field, clsProtocolNumericVar>) field->BeforePoint(field->BeforePoint());
    return field;
}

template <class Field>
int32_t placeField(clsProtocolMessage& message, int32_t position, int32_t address, int32_t decimalPointAddress = 0) {
    auto field = newField<Field>();
    field->StartPosition(position);
    test::linkOperand(*field->LikedOperand(), 3, address);
    if constexpr (std::is_same_v<Field, clsProtocolScanNumericVar>)
        test::linkOperand(*field->DecimalPointOperand(), 3, decimalPointAddress);
    const int32_t length = field->Length();
    message.InsertBlanks(position, length);
    message.AddVar(field);
    return length;
}

int32_t sendFieldLength() { return newField<clsProtocolNumericVar>()->Length(); }
int32_t scanFieldLength() { return newField<clsProtocolScanNumericVar>()->Length(); }

// What a set's image hands to the host's search, and the image itself.
struct Expected {
    Bytes image;
    FindOnly findOnly;
};

template <class Set>
Expected expectedOf(Set& set) {
    Expected out;
    out.image = set.BinaryData();
    OperandCollection operands;
    set.AddOperandsToFindOnly(operands);
    out.findOnly = findOnlyOf(operands);
    return out;
}

// A second edit as the operation makes it: a new set read from the image of
// the first, the change, the image written again. (A Scan's numeric field
// that the field dialog left at the length of a fresh field, 5, is read
// back with its computed length, 6.)
template <class Set, class Change>
Expected editedFromImage(Set& first, const Change& change) {
    Set again;
    again.BinaryData(first.BinaryData());
    change(again);
    return expectedOf(again);
}

// The serial Send of the road below: "HLL", a field on MI 40, CR and LF;
// "ST"; a copy of the first; STX 02, ETX "#"; the message number from MI 50.
// Stage 1 adds "X" behind "ST", as the second edit does.
Expected expectedSerialSend(int stage) {
    ScopedHostContext own;
    clsProtocolSendSrv set;
    clsProtocolMessage& first = *set.GetMessage(1);
    typeInto(first, 0, L"HELLO");
    first.DeleteByPosition(4);  // Backspace
    first.DeleteByPosition(1);  // Home, Right, Delete
    const int32_t length = placeField<clsProtocolNumericVar>(first, 3, 40);
    first.AddControlChar(3 + length, 13);
    first.AddControlChar(4 + length, 10);
    set.SendSTXLength(1);
    set.SetSendSTXValue(0, 0x02, false);
    set.SendETXLength(1);
    set.SetSendETXValue(0, '#', true);
    set.AppendMessage();
    typeInto(*set.GetMessage(2), 0, L"ST");
    set.CopyMessage(1);
    set.AppendMessage();
    set.PasteMessage(3);
    test::linkOperand(*set.OpMessageNumber(), 3, 50);
    return stage == 0
               ? expectedOf(set)
               : editedFromImage(set, [](clsProtocolSendSrv& again) { again.GetMessage(2)->InsertChar(2, L"X"); });
}

// The serial Scan of the road below: "NAK"; "CK", a field on MI 63 (its decimal point at MI 64), CR;
// STX 02, ETX "$". Stage 1 adds "!" behind "NAK".
Expected expectedSerialScan(int stage) {
    ScopedHostContext own;
    clsProtocolScanSrv set;
    clsProtocolMessage& first = *set.GetMessage(1);
    typeInto(first, 0, L"ACK:");
    first.DeleteByPosition(3);
    first.DeleteByPosition(0);
    const int32_t length = placeField<clsProtocolScanNumericVar>(first, 2, 63, 64);
    first.AddControlChar(2 + length, 13);
    set.ScanSTXLength(1);
    set.SetScanSTXValue(0, 0x02, false);
    set.MessageLengthValue(0);
    set.SilenceTimeValue(0);
    set.ScanETXLength(1);
    set.SetScanETXValue(0, '$', true);
    set.InsertMessageBefore(1);
    set.InsertMessageBefore(1);
    typeInto(*set.GetMessage(1), 0, L"NAK");
    set.DeleteMessage(2);
    return stage == 0
               ? expectedOf(set)
               : editedFromImage(set, [](clsProtocolScanSrv& again) { again.GetMessage(1)->InsertChar(3, L"!"); });
}

// The TCP/IP Send of the road below: "PING"; "RY", a field on MI 72, CR;
// the message number from MI 71. Stage 1 adds "!" behind "PING".
Expected expectedEthSend(int stage) {
    ScopedHostContext own;
    clsEthProtocolSendSrv set;
    clsProtocolMessage& first = *set.GetMessage(1);
    typeInto(first, 0, L"QRY?");
    first.DeleteByPosition(3);
    first.DeleteByPosition(0);
    const int32_t length = placeField<clsProtocolNumericVar>(first, 2, 72);
    first.AddControlChar(2 + length, 13);
    set.InsertMessage(1);
    typeInto(*set.GetMessage(2), 0, L"ACK");
    set.CutMessage(1);
    set.PasteMessage(2);
    typeInto(*set.GetMessage(1), 0, L"PING");
    test::linkOperand(*set.OpMessageNumber(), 3, 71);
    return stage == 0
               ? expectedOf(set)
               : editedFromImage(set, [](clsEthProtocolSendSrv& again) { again.GetMessage(1)->InsertChar(4, L"!"); });
}

// The TCP/IP Scan of the road below: "AL=", a field on MI 90 (its decimal point at MI 91), CR (the LF
// placed after it deleted again). Stage 1 puts "V" back in front.
Expected expectedEthScan(int stage) {
    ScopedHostContext own;
    clsEthProtocolScanSrv set;
    typeInto(*set.GetMessage(1), 0, L"ZZ");
    set.ClearAll();
    clsProtocolMessage& first = *set.GetMessage(1);
    typeInto(first, 0, L"VAL=X");
    first.DeleteByPosition(4);
    first.DeleteByPosition(0);
    const int32_t length = placeField<clsProtocolScanNumericVar>(first, 3, 90, 91);
    first.AddControlChar(3 + length, 13);
    first.AddControlChar(4 + length, 10);
    first.DeleteControlChar(4 + length);
    return stage == 0
               ? expectedOf(set)
               : editedFromImage(set, [](clsEthProtocolScanSrv& again) { again.GetMessage(1)->InsertChar(0, L"V"); });
}

// Where two images part, for the message of a failed comparison.
std::string whereTheyDiffer(const Bytes& got, const Bytes& wanted) {
    size_t at = 0;
    while (at < got.size() && at < wanted.size() && got[at] == wanted[at]) ++at;
    if (at == got.size() && at == wanted.size()) return "the same";
    auto around = [at](const Bytes& image) {
        std::string text;
        for (size_t i = at; i < image.size() && i < at + 12; ++i) text += std::to_string(image[i]) + " ";
        return text;
    };
    return "sizes " + std::to_string(got.size()) + " and " + std::to_string(wanted.size()) + ", first difference at " +
           std::to_string(at) + ": got " + around(got) + "wanted " + around(wanted);
}

// ---- The fixture: the roads through the workbench --------------------------

class MessageOperationsTest : public test::WorkbenchTest {
protected:
    // A window that no step of the test answers would hold the test for
    // ever: one that stays the active modal window for some seconds fails
    // the test and is closed with Escape.
    void SetUp() override {
        test::WorkbenchTest::SetUp();
        watchdog.setInterval(500);
        QObject::connect(&watchdog, &QTimer::timeout, [this] {
            QWidget* shown = QApplication::activeModalWidget();
            if (!shown || shown != lastModal) {
                lastModal = shown;
                ticks = 0;
                return;
            }
            if (++ticks < 10) return;
            ADD_FAILURE() << "nobody answered the window " << shown->objectName().toStdString() << " \""
                          << shown->windowTitle().toStdString() << "\"";
            ticks = 0;
            QTest::keyClick(shown, Qt::Key_Escape);
        });
        watchdog.start();
    }
    void TearDown() override {
        watchdog.stop();
        test::WorkbenchTest::TearDown();
    }

    QTimer watchdog;
    QPointer<QWidget> lastModal;
    int ticks = 0;

    // What a road saw on the way, for the assertions.
    struct Seen {
        QStringList cells;  // texts of grid cells, in the order the road names them
        QStringList boxes;  // questions of the message set
        QStringList bands;  // popup bands that opened
        QString fieldLink;  // the field dialog on the placed field
        bool okBeforeLink = true;
        int endColumn = -1;   // where End took the caret
        int homeColumn = -1;  // and Home
        int numbersAt = -1;   // where the number column then stood in the view
    };

    MethodPtr operation(size_t place) const {
        return host->Nets().empty() || host->Nets()[0].Operations.size() <= place ? nullptr
                                                                                  : host->Nets()[0].Operations[place];
    }
    Bytes imageAt(size_t place) const {
        const MethodPtr op = operation(place);
        return op ? op->itfFBMethod_BinaryOperands() : Bytes{};
    }
    FindOnly findOnlyAt(size_t place) const {
        const MethodPtr op = operation(place);
        return op ? findOnlyOf(*op->itfFBMethod_OperandsForFindOnly()) : FindOnly{};
    }
    // Type and address of each of the operation's out operands.
    FindOnly outLinksAt(size_t place) const {
        FindOnly links;
        const MethodPtr op = operation(place);
        if (!op) return links;
        const OperandCollectionPtr out = op->itfFBMethod_OutOperands();
        for (int32_t i = 1; i <= out->Count(); ++i)
            links.emplace_back(out->Item(i)->OperandType(), out->Item(i)->OperandAddress());
        return links;
    }

    // Those of the operands that the host's operand table holds a link for.
    FindOnly inHostTable(const FindOnly& operands) const {
        FindOnly linked;
        for (const auto& [type, address] : operands)
            if (host->Context().Operands.LinkCount(type, address) > 0) linked.emplace_back(type, address);
        return linked;
    }

    bool place(int32_t methodId) {
        const size_t before = host->Nets().empty() ? 0 : host->Nets()[0].Operations.size();
        doubleClick(*window->Palette(), paletteItem(*window->Palette(), methodId));
        return !host->Nets().empty() && host->Nets()[0].Operations.size() == before + 1;
    }

    // Double-clicks the operation's block in the ladder: its dialog opens again.
    void editAgain(size_t place) {
        QTreeWidgetItem* block = window->Ladder()->topLevelItem(0)->child(static_cast<int>(place));
        ASSERT_NE(block, nullptr);
        window->Ladder()->setCurrentItem(block);
        doubleClick(*window->Ladder(), block);
    }

    // Saved, the window closed and the host cleared, a new window, the file
    // opened again: as on another day.
    void saveCloseAndReopen(const QString& file) {
        ASSERT_TRUE(window->SaveFile(file));
        window.reset();
        host->Clear();
        window = std::make_unique<WorkbenchWindow>(*host);
        window->show();
        ASSERT_TRUE(window->OpenFile(file));
    }

    QString fileNamed(const char* name) const { return QString::fromStdString((folder.path() / name).string()); }

    // Serial Send, after a serial Config. Message 0: "HELLO", Backspace,
    // Home, Right, Delete gives "HLL"; End and Home; a field on MI 40 by the
    // toolbar's new-field tool at position 3; CR through the popup of the
    // cell behind it, LF by a double-click on the next; STX 02 by a
    // double-click in its grid, ETX "#" typed. Message 1 appended, "ST"
    // typed; message 0 copied, message 2 appended and the copy pasted in.
    // The message number from MI 50 through the picker; OK.
    Seen serialSendRoad() {
        Seen seen;
        const int L = sendFieldLength();
        onMessageDialog("frmProtocolSend", "FlgSend", [&, L](QWidget& dialog, QTableView& grid) {
            QTest::keyClicks(&grid, QStringLiteral("HELLO"));
            QTest::keyClick(&grid, Qt::Key_Backspace);
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClick(&grid, Qt::Key_Right);
            QTest::keyClick(&grid, Qt::Key_Delete);
            QTest::keyClick(&grid, Qt::Key_End);
            seen.endColumn = grid.currentIndex().column();
            QTest::keyClick(&grid, Qt::Key_Home);
            seen.homeColumn = grid.currentIndex().column();
            seen.numbersAt = grid.columnViewportPosition(0);
            clickCell(grid, 0, 4);
            fillNewField(3, 40);
            clickTool(dialog, "abSend", "ID_NewVar");
            lookAtFieldAndCancel(seen.fieldLink);
            doubleClickCell(grid, 0, 4 + L - 1);
            chooseControlChar(13);
            seen.bands << pickFromPopup(grid, 0, 4 + L, "ID_ControlChar");
            chooseControlChar(10);
            doubleClickCell(grid, 0, 5 + L);
            seen.cells << rowText(grid, 0, 1, 5 + L);

            tick(dialog, "ckSendSTX");
            auto* stx = child<QTableView>(dialog, "flgSendSTX");
            chooseControlChar(2);
            doubleClickCell(*stx, 0, 0);
            seen.cells << cell(*stx, 0, 0);
            tick(dialog, "ckSendETX");
            auto* etx = child<QTableView>(dialog, "flgSendETX");
            QTest::keyClicks(etx, QStringLiteral("#"));
            seen.cells << cell(*etx, 0, 0);

            grid.setFocus(Qt::OtherFocusReason);
            clickTool(dialog, "abSend", "ID_AppendMsg");
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClicks(&grid, QStringLiteral("ST"));
            clickCell(grid, 0, 1);
            clickTool(dialog, "abSend", "ID_Copy");
            clickTool(dialog, "abSend", "ID_AppendMsg");
            clickTool(dialog, "abSend", "ID_Paste");
            seen.cells << rowText(grid, 1, 1, 3) << rowText(grid, 2, 1, 5 + L);
            seen.okBeforeLink = child<QPushButton>(dialog, "cmdOK")->isEnabled();
            onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { pickWithKeys(picker, 3, 50); });
            click(dialog, "cmdOpMsgNumToSend");
            seen.cells << child<QLabel>(dialog, "lbOpMsgNumToSend")->text();
            test::saveScreenshot(dialog, QStringLiteral("workbench_send_dialog.png"));
            click(dialog, "cmdOK");
        });
        EXPECT_TRUE(place(SerialSend));
        return seen;
    }

    // Serial Scan, after a serial Config. The pickers open by themselves:
    // MB 60, MI 61, MI 62. "ACK:", Backspace, Home, Delete gives "CK"; End,
    // Home, two Right; a field on MI 63 through the popup of position 2;
    // CR by the toolbar's control-character tool behind it; STX 02 by a
    // double-click, end of text "$" typed; two messages inserted before
    // (Yes), "NAK" typed into the first, the second deleted (Yes); OK.
    Seen serialScanRoad() {
        Seen seen;
        const int L = scanFieldLength();
        pickInTurn({{1, 60}, {3, 61}, {3, 62}});
        onMessageDialog("frmProtocolScan", "FlgScan", [&, L](QWidget& dialog, QTableView& grid) {
            QTest::keyClicks(&grid, QStringLiteral("ACK:"));
            QTest::keyClick(&grid, Qt::Key_Backspace);
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClick(&grid, Qt::Key_Delete);
            QTest::keyClick(&grid, Qt::Key_End);
            seen.endColumn = grid.currentIndex().column();
            QTest::keyClick(&grid, Qt::Key_Home);
            seen.homeColumn = grid.currentIndex().column();
            seen.numbersAt = grid.columnViewportPosition(0);
            QTest::keyClick(&grid, Qt::Key_Right);
            QTest::keyClick(&grid, Qt::Key_Right);
            fillNewField(3, 63, 64);
            seen.bands << pickFromPopup(grid, 0, grid.currentIndex().column(), "ID_NewVar");
            lookAtFieldAndCancel(seen.fieldLink);
            doubleClickCell(grid, 0, 4);
            clickCell(grid, 0, 4 + L);
            chooseControlChar(13);
            clickTool(dialog, "abScan", "ID_ControlChar");
            seen.cells << rowText(grid, 0, 2, 3 + L);

            tick(dialog, "ckSTX");
            auto* stx = child<QTableView>(dialog, "flgSTX");
            chooseControlChar(2);
            doubleClickCell(*stx, 0, 0);
            tick(dialog, "opEndOfText");
            auto* etx = child<QTableView>(dialog, "flgETX");
            QTest::keyClicks(etx, QStringLiteral("$"));
            seen.cells << cell(*stx, 0, 0) << cell(*etx, 0, 0);

            clickCell(grid, 0, 2);
            QString question;
            answerBox(QMessageBox::Yes, question);
            clickTool(dialog, "abScan", "ID_InsertBefore");
            seen.boxes << question;
            answerBox(QMessageBox::Yes, question);
            clickTool(dialog, "abScan", "ID_InsertBefore");
            QTest::keyClicks(&grid, QStringLiteral("NAK"));
            clickCell(grid, 1, 2);
            answerBox(QMessageBox::Yes, question);
            clickTool(dialog, "abScan", "ID_DeleteMsg");
            seen.boxes << question;
            seen.cells << QString::number(grid.model()->rowCount()) << rowText(grid, 0, 2, 3) << rowText(grid, 1, 2, 2);
            test::saveScreenshot(dialog, QStringLiteral("workbench_scan_dialog.png"));
            click(dialog, "cmdOK");
        });
        EXPECT_TRUE(place(SerialScan));
        return seen;
    }

    // TCP/IP Send, after a TCP/IP Config. The picker opens by itself for
    // the success flag: MB 70. "QRY?", Backspace, Home, Delete gives "RY";
    // End, Home, two Right; a field on MI 72 through the popup, looked at
    // by a double-click and through its own popup; CR through
    // the popup behind it; a message inserted after (Yes), "ACK" typed;
    // message 0 cut, pasted over message 1, "PING" typed into the empty
    // message 0; the message number from MI 71; OK.
    Seen ethSendRoad() {
        Seen seen;
        const int L = sendFieldLength();
        pickInTurn({{1, 70}});
        onMessageDialog("frmEthProtocolSend", "FlgSend", [&, L](QWidget& dialog, QTableView& grid) {
            QTest::keyClicks(&grid, QStringLiteral("QRY?"));
            QTest::keyClick(&grid, Qt::Key_Backspace);
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClick(&grid, Qt::Key_Delete);
            QTest::keyClick(&grid, Qt::Key_End);
            seen.endColumn = grid.currentIndex().column();
            QTest::keyClick(&grid, Qt::Key_Home);
            seen.homeColumn = grid.currentIndex().column();
            seen.numbersAt = grid.columnViewportPosition(0);
            QTest::keyClick(&grid, Qt::Key_Right);
            QTest::keyClick(&grid, Qt::Key_Right);
            fillNewField(3, 72);
            seen.bands << pickFromPopup(grid, 0, 3, "ID_NewVar");
            lookAtFieldAndCancel(seen.fieldLink);
            doubleClickCell(grid, 0, 3);
            // The field's own popup opens the same dialog.
            QString linkFromPopup;
            lookAtFieldAndCancel(linkFromPopup);
            seen.bands << pickFromPopup(grid, 0, 4, "ID_EditVar");
            seen.cells << linkFromPopup;
            chooseControlChar(13);
            seen.bands << pickFromPopup(grid, 0, 3 + L, "ID_ControlChar");
            seen.cells << rowText(grid, 0, 1, 3 + L);

            QString question;
            answerBox(QMessageBox::Yes, question);
            clickTool(dialog, "abSend", "ID_InsertMsg");
            seen.boxes << question;
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClicks(&grid, QStringLiteral("ACK"));
            clickCell(grid, 0, 1);
            clickTool(dialog, "abSend", "ID_Cut");
            clickCell(grid, 1, 1);
            clickTool(dialog, "abSend", "ID_Paste");
            clickCell(grid, 0, 1);
            QTest::keyClicks(&grid, QStringLiteral("PING"));
            seen.cells << rowText(grid, 0, 1, 4) << rowText(grid, 1, 1, 3 + L);
            seen.okBeforeLink = child<QPushButton>(dialog, "cmdOK")->isEnabled();
            onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { pickWithKeys(picker, 3, 71); });
            click(dialog, "cmdOpMsgNumToSend");
            seen.cells << child<QLabel>(dialog, "lbOpMsgNumToSend")->text()
                       << child<QLabel>(dialog, "lbOpMsgsucceeded")->text();
            click(dialog, "cmdOK");
        });
        EXPECT_TRUE(place(EthSend));
        return seen;
    }

    // TCP/IP Scan, after a TCP/IP Config. The five pickers open by
    // themselves: MB 80, MI 81, 82, 83 and the vector at MI 84. "ZZ" typed
    // and every message cleared (Yes); "VAL=X", Backspace, Home, Delete
    // gives "AL="; End, Home, three Right; a field on MI 90 through the
    // popup; CR through the popup behind it, LF by a double-click on the
    // next cell and deleted again through its own popup; OK.
    Seen ethScanRoad() {
        Seen seen;
        const int L = scanFieldLength();
        pickInTurn({{1, 80}, {3, 81}, {3, 82}, {3, 83}, {3, 84}});
        onMessageDialog("frmEthProtocolScan", "FlgScan", [&, L](QWidget& dialog, QTableView& grid) {
            QTest::keyClicks(&grid, QStringLiteral("ZZ"));
            QString question;
            answerBox(QMessageBox::Yes, question);
            clickTool(dialog, "abScan", "ID_ClearAll");
            seen.boxes << question;
            seen.cells << rowText(grid, 0, 2, 2);
            grid.setFocus(Qt::OtherFocusReason);
            QTest::keyClicks(&grid, QStringLiteral("VAL=X"));
            QTest::keyClick(&grid, Qt::Key_Backspace);
            QTest::keyClick(&grid, Qt::Key_Home);
            QTest::keyClick(&grid, Qt::Key_Delete);
            QTest::keyClick(&grid, Qt::Key_End);
            seen.endColumn = grid.currentIndex().column();
            QTest::keyClick(&grid, Qt::Key_Home);
            seen.homeColumn = grid.currentIndex().column();
            seen.numbersAt = grid.columnViewportPosition(0);
            for (int i = 0; i < 3; ++i) QTest::keyClick(&grid, Qt::Key_Right);
            fillNewField(3, 90, 91);
            seen.bands << pickFromPopup(grid, 0, 5, "ID_NewVar");
            lookAtFieldAndCancel(seen.fieldLink);
            doubleClickCell(grid, 0, 5);
            chooseControlChar(13);
            seen.bands << pickFromPopup(grid, 0, 5 + L, "ID_ControlChar");
            chooseControlChar(10);
            doubleClickCell(grid, 0, 6 + L);
            seen.cells << rowText(grid, 0, 2, 5 + L);
            seen.bands << pickFromPopup(grid, 0, 6 + L, "ID_DeleteControlChar");
            seen.cells << rowText(grid, 0, 2, 5 + L);
            seen.cells << child<QLabel>(dialog, "lbIpStartOfVector")->text();
            click(dialog, "cmdOK");
        });
        EXPECT_TRUE(place(EthScan));
        return seen;
    }

    // The second edit of a road: a click on a cell, text typed there, OK;
    // or, cancelled, other text typed and Cancel.
    void typeAgain(size_t place, const char* dialogName, const char* gridName, int row, int col, const QString& text,
                   bool ok) {
        onMessageDialog(dialogName, gridName, [=](QWidget& dialog, QTableView& grid) {
            clickCell(grid, row, col);
            QTest::keyClicks(&grid, text);
            click(dialog, ok ? "cmdOK" : "cmdCancel");
        });
        editAgain(place);
    }
};

TEST_F(MessageOperationsTest, ASerialSendIsFilledInItsDialogSavedReopenedEditedAndCancelled) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    const Seen seen = serialSendRoad();
    ASSERT_NE(operation(1), nullptr);
    const int L = sendFieldLength();

    // What the dialog showed on the way.
    EXPECT_EQ(seen.endColumn, 500);
    EXPECT_EQ(seen.homeColumn, 1);
    EXPECT_EQ(seen.numbersAt, 0);
    EXPECT_TRUE(seen.fieldLink.startsWith(QStringLiteral("MI 40"))) << seen.fieldLink.toStdString();
    EXPECT_EQ(seen.bands, QStringList{QStringLiteral("popEmptyArea")});
    ASSERT_EQ(seen.cells.size(), 6);
    EXPECT_EQ(seen.cells[0], QStringLiteral("HLL") + QString(L, QChar('1')) + QStringLiteral("0D0A"));
    EXPECT_EQ(seen.cells[1], QStringLiteral("02"));
    EXPECT_EQ(seen.cells[2], QStringLiteral("#"));
    EXPECT_EQ(seen.cells[3], QStringLiteral("ST "));
    EXPECT_EQ(seen.cells[4], seen.cells[0]);
    EXPECT_FALSE(seen.okBeforeLink);
    EXPECT_TRUE(seen.cells[5].startsWith(QStringLiteral("MI 50"))) << seen.cells[5].toStdString();

    // The image is that of the same edit made on a Send set.
    const Expected expected = expectedSerialSend(0);
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    EXPECT_EQ(findOnlyAt(1), expected.findOnly);
    EXPECT_EQ(expected.findOnly, (FindOnly{{3, 40}, {3, 40}, {3, 50}}));
    EXPECT_EQ(operation(1)->itfFBMethod_FatherInstanceName(), L"Printer");

    // Saved and opened again: the same image and links.
    saveCloseAndReopen(fileNamed("send.qxfbproj"));
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    // The image's own links are in the host's table again; the operation lists
    // them for the search only after its next edit.
    EXPECT_EQ(inHostTable(expected.findOnly), expected.findOnly);
    EXPECT_EQ(operation(1)->itfFBMethod_FatherInstanceNum(), 1);

    // Edited again: "X" behind "ST"; OK.
    typeAgain(1, "frmProtocolSend", "FlgSend", 1, 3, QStringLiteral("X"), true);
    const Expected edited = expectedSerialSend(1);
    EXPECT_NE(edited.image, expected.image);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    EXPECT_EQ(findOnlyAt(1), edited.findOnly);
    // And cancelled: the image stays byte for byte.
    typeAgain(1, "frmProtocolSend", "FlgSend", 2, 1, QStringLiteral("ZZ"), false);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    // A cancelled edit leaves the search list empty, whatever it held.
    EXPECT_TRUE(findOnlyAt(1).empty());
}

TEST_F(MessageOperationsTest, ASerialScanIsFilledInItsDialogSavedReopenedEditedAndCancelled) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    const Seen seen = serialScanRoad();
    ASSERT_NE(operation(1), nullptr);
    const int L = scanFieldLength();

    EXPECT_EQ(seen.endColumn, 501);
    EXPECT_EQ(seen.homeColumn, 2);
    EXPECT_EQ(seen.numbersAt, 0);
    EXPECT_TRUE(seen.fieldLink.startsWith(QStringLiteral("MI 63"))) << seen.fieldLink.toStdString();
    EXPECT_EQ(seen.bands, QStringList{QStringLiteral("popEmptyArea")});
    ASSERT_EQ(seen.cells.size(), 6);
    EXPECT_EQ(seen.cells[0], QStringLiteral("CK") + QString(L, QChar('1')) + QStringLiteral("0D"));
    EXPECT_EQ(seen.cells[1], QStringLiteral("02"));
    EXPECT_EQ(seen.cells[2], QStringLiteral("$"));
    EXPECT_EQ(seen.cells[3], QStringLiteral("2"));
    EXPECT_EQ(seen.cells[4], QStringLiteral("NAK"));
    EXPECT_EQ(seen.cells[5], QStringLiteral("CK"));
    ASSERT_EQ(seen.boxes.size(), 2);
    EXPECT_FALSE(seen.boxes[0].isEmpty());
    EXPECT_NE(seen.boxes[0], seen.boxes[1]);

    const Expected expected = expectedSerialScan(0);
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    EXPECT_EQ(findOnlyAt(1), expected.findOnly);
    EXPECT_EQ(expected.findOnly, (FindOnly{{3, 63}, {3, 64}}));
    const FindOnly links{{1, 60}, {3, 61}, {3, 62}};
    EXPECT_EQ(outLinksAt(1), links);
    EXPECT_EQ(host->Context().Operands.LinkCount(1, 60), 1);

    saveCloseAndReopen(fileNamed("scan.qxfbproj"));
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    // The image's own links are in the host's table again; the operation lists
    // them for the search only after its next edit.
    EXPECT_EQ(inHostTable(expected.findOnly), expected.findOnly);
    EXPECT_EQ(outLinksAt(1), links);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 62), 1);

    typeAgain(1, "frmProtocolScan", "FlgScan", 0, 5, QStringLiteral("!"), true);
    const Expected edited = expectedSerialScan(1);
    EXPECT_NE(edited.image, expected.image);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    EXPECT_EQ(findOnlyAt(1), edited.findOnly);
    typeAgain(1, "frmProtocolScan", "FlgScan", 1, 2, QStringLiteral("ZZ"), false);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    // A cancelled edit leaves the search list empty, whatever it held.
    EXPECT_TRUE(findOnlyAt(1).empty());
    EXPECT_EQ(outLinksAt(1), links);
}

TEST_F(MessageOperationsTest, ATcpIpSendIsFilledInItsDialogSavedReopenedEditedAndCancelled) {
    actTcpIpConfig(QStringLiteral("Plant"));
    ASSERT_TRUE(place(170201));
    const Seen seen = ethSendRoad();
    ASSERT_NE(operation(1), nullptr);
    const int L = sendFieldLength();

    EXPECT_EQ(seen.endColumn, 500);
    EXPECT_EQ(seen.homeColumn, 1);
    EXPECT_EQ(seen.numbersAt, 0);
    EXPECT_TRUE(seen.fieldLink.startsWith(QStringLiteral("MI 72"))) << seen.fieldLink.toStdString();
    EXPECT_EQ(seen.bands, (QStringList{QStringLiteral("popEmptyArea"), QStringLiteral("popOnVar"),
                                       QStringLiteral("popEmptyArea")}));
    ASSERT_EQ(seen.cells.size(), 6);
    EXPECT_EQ(seen.cells[0], seen.fieldLink);
    EXPECT_EQ(seen.cells[1], QStringLiteral("RY") + QString(L, QChar('1')) + QStringLiteral("0D"));
    EXPECT_EQ(seen.cells[2], QStringLiteral("PING"));
    EXPECT_EQ(seen.cells[3], seen.cells[1]);
    EXPECT_FALSE(seen.okBeforeLink);
    EXPECT_TRUE(seen.cells[4].startsWith(QStringLiteral("MI 71"))) << seen.cells[4].toStdString();
    EXPECT_TRUE(seen.cells[5].startsWith(QStringLiteral("MB 70"))) << seen.cells[5].toStdString();
    ASSERT_EQ(seen.boxes.size(), 1);
    EXPECT_FALSE(seen.boxes[0].isEmpty());

    const Expected expected = expectedEthSend(0);
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    EXPECT_EQ(findOnlyAt(1), expected.findOnly);
    EXPECT_EQ(expected.findOnly, (FindOnly{{3, 71}, {3, 72}}));
    const FindOnly links{{1, 70}};
    EXPECT_EQ(outLinksAt(1), links);
    EXPECT_EQ(operation(1)->itfFBMethod_FatherInstanceName(), L"Plant");

    saveCloseAndReopen(fileNamed("tcpip_send.qxfbproj"));
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    // The image's own links are in the host's table again; the operation lists
    // them for the search only after its next edit.
    EXPECT_EQ(inHostTable(expected.findOnly), expected.findOnly);
    EXPECT_EQ(outLinksAt(1), links);

    typeAgain(1, "frmEthProtocolSend", "FlgSend", 0, 5, QStringLiteral("!"), true);
    const Expected edited = expectedEthSend(1);
    EXPECT_NE(edited.image, expected.image);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    EXPECT_EQ(findOnlyAt(1), edited.findOnly);
    typeAgain(1, "frmEthProtocolSend", "FlgSend", 1, 1, QStringLiteral("ZZ"), false);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    // A cancelled edit leaves the search list empty, whatever it held.
    EXPECT_TRUE(findOnlyAt(1).empty());
}

TEST_F(MessageOperationsTest, ATcpIpScanIsFilledInItsDialogSavedReopenedEditedAndCancelled) {
    actTcpIpConfig(QStringLiteral("Plant"));
    ASSERT_TRUE(place(170201));
    const Seen seen = ethScanRoad();
    ASSERT_NE(operation(1), nullptr);
    const int L = scanFieldLength();

    EXPECT_EQ(seen.endColumn, 501);
    EXPECT_EQ(seen.homeColumn, 2);
    EXPECT_EQ(seen.numbersAt, 0);
    EXPECT_TRUE(seen.fieldLink.startsWith(QStringLiteral("MI 90"))) << seen.fieldLink.toStdString();
    EXPECT_EQ(seen.bands, (QStringList{QStringLiteral("popEmptyArea"), QStringLiteral("popEmptyArea"),
                                       QStringLiteral("popOnControlChar")}));
    ASSERT_EQ(seen.cells.size(), 4);
    EXPECT_EQ(seen.cells[0], QStringLiteral("  "));
    EXPECT_EQ(seen.cells[1], QStringLiteral("AL=") + QString(L, QChar('1')) + QStringLiteral("0D0A"));
    EXPECT_EQ(seen.cells[2], QStringLiteral("AL=") + QString(L, QChar('1')) + QStringLiteral("0D "));
    EXPECT_TRUE(seen.cells[3].startsWith(QStringLiteral("MI 84"))) << seen.cells[3].toStdString();
    ASSERT_EQ(seen.boxes.size(), 1);
    EXPECT_FALSE(seen.boxes[0].isEmpty());

    const Expected expected = expectedEthScan(0);
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    EXPECT_EQ(findOnlyAt(1), expected.findOnly);
    EXPECT_EQ(expected.findOnly, (FindOnly{{3, 90}, {3, 91}}));
    const FindOnly links{{1, 80}, {3, 81}, {3, 82}, {3, 83}, {3, 84}};
    EXPECT_EQ(outLinksAt(1), links);
    EXPECT_EQ(operation(1)->itfFBMethod_OutOperands()->Item(5)->OperandVectorLength(), 5);

    saveCloseAndReopen(fileNamed("tcpip_scan.qxfbproj"));
    EXPECT_EQ(imageAt(1), expected.image) << whereTheyDiffer(imageAt(1), expected.image);
    // The image's own links are in the host's table again; the operation lists
    // them for the search only after its next edit.
    EXPECT_EQ(inHostTable(expected.findOnly), expected.findOnly);
    EXPECT_EQ(outLinksAt(1), links);
    EXPECT_EQ(operation(1)->itfFBMethod_OutOperands()->Item(5)->OperandVectorLength(), 5);

    typeAgain(1, "frmEthProtocolScan", "FlgScan", 0, 2, QStringLiteral("V"), true);
    const Expected edited = expectedEthScan(1);
    EXPECT_NE(edited.image, expected.image);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    EXPECT_EQ(findOnlyAt(1), edited.findOnly);
    typeAgain(1, "frmEthProtocolScan", "FlgScan", 0, 3, QStringLiteral("ZZ"), false);
    EXPECT_EQ(imageAt(1), edited.image) << whereTheyDiffer(imageAt(1), edited.image);
    // A cancelled edit leaves the search list empty, whatever it held.
    EXPECT_TRUE(findOnlyAt(1).empty());
    EXPECT_EQ(outLinksAt(1), links);
}

// Clear All asks first: No keeps every message, Yes leaves one empty one.
TEST_F(MessageOperationsTest, ClearAllAsksAndNoKeepsEveryMessage) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    QString firstQuestion, secondQuestion;
    QStringList afterNo, afterYes;
    bool okAfterClear = true;
    onMessageDialog("frmProtocolSend", "FlgSend", [&](QWidget& dialog, QTableView& grid) {
        QTest::keyClicks(&grid, QStringLiteral("AB"));
        clickTool(dialog, "abSend", "ID_AppendMsg");
        QTest::keyClick(&grid, Qt::Key_Home);
        QTest::keyClicks(&grid, QStringLiteral("C"));
        answerBox(QMessageBox::No, firstQuestion);
        clickTool(dialog, "abSend", "ID_ClearAll");
        afterNo << QString::number(grid.model()->rowCount()) << rowText(grid, 0, 1, 2) << rowText(grid, 1, 1, 1);
        answerBox(QMessageBox::Yes, secondQuestion);
        clickTool(dialog, "abSend", "ID_ClearAll");
        afterYes << QString::number(grid.model()->rowCount()) << rowText(grid, 0, 1, 2);
        grid.setFocus(Qt::OtherFocusReason);
        QTest::keyClicks(&grid, QStringLiteral("Z"));
        // Clear All leaves the message number's link as the two messages
        // had it, empty, and OK off, until the link is made.
        okAfterClear = child<QPushButton>(dialog, "cmdOK")->isEnabled();
        onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { pickWithKeys(picker, 3, 50); });
        click(dialog, "cmdOpMsgNumToSend");
        click(dialog, "cmdOK");
    });
    ASSERT_TRUE(place(SerialSend));
    EXPECT_EQ(firstQuestion, QStringLiteral("Clear all messages of this Send?"));
    EXPECT_EQ(secondQuestion, firstQuestion);
    EXPECT_EQ(afterNo, (QStringList{QStringLiteral("2"), QStringLiteral("AB"), QStringLiteral("C")}));
    EXPECT_EQ(afterYes, (QStringList{QStringLiteral("1"), QStringLiteral("  ")}));
    EXPECT_FALSE(okAfterClear);
    // One message, "Z": read back through a Send set of the library's own.
    ScopedHostContext own;
    clsProtocolSendSrv stored;
    stored.BinaryData(imageAt(1));
    ASSERT_EQ(stored.NumberOfMessages(), 1);
    EXPECT_EQ(stored.GetMessage(1)->MessageString(), L"Z" + std::wstring(clsProtocolMessage::MaxPositions - 1, L' '));
}

// The lines of qxfb's output from the first that starts with the text on.
std::vector<std::string> linesFrom(const std::vector<std::string>& lines, const std::string& start) {
    for (size_t i = 0; i < lines.size(); ++i)
        if (lines[i].rfind(start, 0) == 0)
            return std::vector<std::string>(lines.begin() + static_cast<long>(i), lines.end());
    return {};
}

TEST_F(MessageOperationsTest, QxfbShowsAndBundlesTheFourOperationsAsTheWorkbenchSavedThem) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    serialSendRoad();
    serialScanRoad();
    actTcpIpConfig(QStringLiteral("Plant"));
    ASSERT_TRUE(place(170201));
    ethSendRoad();
    ethScanRoad();
    ASSERT_EQ(host->Nets()[0].Operations.size(), 6u);
    // The four images, each that of its edit on a set of the library's own.
    struct Placed {
        size_t place;
        int32_t method;
        Bytes image;
    };
    const std::vector<Placed> placed{{1, SerialSend, expectedSerialSend(0).image},
                                     {2, SerialScan, expectedSerialScan(0).image},
                                     {4, EthSend, expectedEthSend(0).image},
                                     {5, EthScan, expectedEthScan(0).image}};
    for (const Placed& each : placed) {
        ASSERT_EQ(operation(each.place)->itfFBMethod_MethodID(), each.method);
        EXPECT_EQ(imageAt(each.place), each.image)
            << each.method << ": " << whereTheyDiffer(imageAt(each.place), each.image);
    }
    const std::filesystem::path file = folder.path() / "plant.qxfbproj";
    ASSERT_TRUE(window->SaveFile(QString::fromStdString(file.string())));

    const std::string program = paths::builtCli();
    ASSERT_FALSE(program.empty());
    const test::CliRun info = test::runCli(program, "project info " + test::shellQuoted(file.string()), folder.path());
    ASSERT_EQ(info.status, 0) << info.err;
    const std::vector<std::string> lines = info.lines();
    // Each operation with its Config and the size of its image, then its links.
    const auto shown = [&](const Placed& each, int32_t instance) {
        const std::string head = "  Operation " + std::to_string(each.place + 1) + ": MethodID " +
                                 std::to_string(each.method) + "  HexFileVersion " +
                                 std::to_string(operation(each.place)->itfFBMethod_HexFileVersion()) +
                                 "  FatherInstanceNum " + std::to_string(instance) + "  BinaryOperands " +
                                 std::to_string(each.image.size()) + " bytes";
        std::vector<std::string> block = linesFrom(lines, head);
        EXPECT_FALSE(block.empty()) << head << "\n" << info.out;
        return block;
    };
    const auto expectLinks = [](const std::vector<std::string>& block, const std::vector<std::string>& links) {
        ASSERT_GE(block.size(), links.size() + 3);
        EXPECT_EQ(block[1], "    InOperands: none");
        EXPECT_EQ(block[2], links.empty() ? "    OutOperands: none" : "    OutOperands:");
        for (size_t i = 0; i < links.size(); ++i) {
            EXPECT_EQ(block[3 + i].rfind("      " + std::to_string(i + 1) + "  ", 0), 0u) << block[3 + i];
            EXPECT_NE(block[3 + i].find("  " + links[i]), std::string::npos) << block[3 + i];
        }
    };
    expectLinks(shown(placed[0], 1), {});
    expectLinks(shown(placed[1], 1), {"MB 60", "MI 61", "MI 62"});
    expectLinks(shown(placed[2], 1), {"MB 70"});
    expectLinks(shown(placed[3], 1), {"MB 80", "MI 81", "MI 82", "MI 83", "MI 84"});
    EXPECT_NE(std::find(lines.begin(), lines.end(), "  FatherID 170100  InstanceNum 1  Printer  Data 0 bytes"),
              lines.end())
        << info.out;
    EXPECT_NE(std::find(lines.begin(), lines.end(), "Links: " + std::to_string(host->ToProject().Links.size())),
              lines.end())
        << info.out;

    // The bundle qxfb writes, and the one the workbench exports, carry the
    // four images byte for byte.
    const std::filesystem::path cliBundle = folder.path() / "cli_bundle", ownBundle = folder.path() / "bundle";
    const test::CliRun bundle = test::runCli(program,
                                             "project bundle " + test::shellQuoted(file.string()) + " " +
                                                 test::shellQuoted(cliBundle.string()) + " --component " +
                                                 test::shellQuoted(QXFB_BUILT_COMPONENT) + " --app-folder " +
                                                 test::shellQuoted(QXFB_SOURCE_TREE "/runtime/bin"),
                                             folder.path());
    ASSERT_EQ(bundle.status, 0) << bundle.err;
    onModal(QStringLiteral("BundleWritten"), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
    ASSERT_TRUE(window->ExportBundle(QString::fromStdString(ownBundle.string())));
    for (const Placed& each : placed) {
        const std::string name =
            "operations/net001_op00" + std::to_string(each.place + 1) + "_" + std::to_string(each.method) + ".bin";
        const std::string image(each.image.begin(), each.image.end());
        EXPECT_EQ(test::readFile(cliBundle / name), image) << name;
        EXPECT_EQ(test::readFile(ownBundle / name), image) << name;
    }
    EXPECT_NE(test::readFile(cliBundle / "manifest.json").find("net001_op006_170202.bin"), std::string::npos);
}

}  // namespace
}  // namespace qx
