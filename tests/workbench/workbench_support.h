// What the workbench tests share: finding and clicking things in the
// workbench's window and in the component's dialogs, the person who fills a
// new serial or TCP/IP Config, and the fixture that loads the built
// component into a workbench with its window shown.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>
#include <functional>
#include <memory>

#include "platform/basics/ansi.h"
#include "platform/controls/form.h"
#include "qt_test_support.h"
#include "serial/frm_protocol_config.h"
#include "support/scratch_files.h"
#include "workbench_window.h"

namespace qx::test {

inline QTreeWidgetItem* paletteItem(QTreeWidget& palette, int32_t methodId) {
    for (int f = 0; f < palette.topLevelItemCount(); ++f)
        for (int m = 0; m < palette.topLevelItem(f)->childCount(); ++m)
            if (palette.topLevelItem(f)->child(m)->data(0, Qt::UserRole).toInt() == methodId)
                return palette.topLevelItem(f)->child(m);
    return nullptr;
}

inline void doubleClick(QTreeWidget& tree, QTreeWidgetItem* item) {
    tree.scrollToItem(item);
    const QPoint at = tree.visualItemRect(item).center();
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, at);
}

// Clicks a cell of a grid view (row and column as the grid counts them, its
// header being row 0), or the ellipsis button at the cell's right edge.
inline void clickCell(QTableView& grid, int row, int col, bool ellipsis = false) {
    const QRect cell = grid.visualRect(grid.model()->index(row - 1, col));
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                      ellipsis ? QPoint(cell.right() - 6, cell.center().y()) : cell.center());
}

inline QString cellText(QTableView& grid, int row, int col) {
    return grid.model()->index(row - 1, col).data().toString();
}

// Chooses the entry `steps` down the picker's constant list and presses OK.
inline void pickFromConstantList(QWidget& picker, int steps) {
    auto* list = picker.findChild<QComboBox*>(QStringLiteral("cbConstantList"));
    auto* buttons = picker.findChild<QDialogButtonBox*>(QStringLiteral("buttons"));
    if (!list || !buttons) {
        ADD_FAILURE() << "no constant list in the picker";
        return;
    }
    for (int i = 0; i < steps; ++i) QTest::keyClick(list, Qt::Key_Down);
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
}

// The person's part of a new TCP/IP Config: socket 1 from the constant list
// and the status MI 150 through the pickers, the name, a constant IP for
// address 0 and a port from MI 300 for address 1, OK.
inline void actTcpIpConfig(const QString& name) {
    onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) {
        onModal(QStringLiteral("OperandPicker"), [](QWidget& second) { pickWithKeys(second, 3, 150); });
        pickFromConstantList(picker, 1);
    });
    onModal(QStringLiteral("frmEthProtocolConfig"), [name](QWidget& window) {
        QApplication::setActiveWindow(&window);
        auto* text = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
        auto* grid = window.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        text->setFocus(Qt::TabFocusReason);
        QTest::keyClick(text, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(text, name);
        onModal(QStringLiteral("frmEthAddressParam"), [](QWidget& dialog) {
            QApplication::setActiveWindow(&dialog);
            auto* ip = dialog.findChild<QLineEdit*>(QStringLiteral("ctlIPAddress"));
            ip->setFocus(Qt::TabFocusReason);
            QTest::keyClicks(ip, QStringLiteral("10.0.0.7"));
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
        });
        clickCell(*grid, 1, 1);
        clickCell(*grid, 1, 1, true);
        onModal(QStringLiteral("frmEthAddressParam"), [](QWidget& dialog) {
            QApplication::setActiveWindow(&dialog);
            onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { pickWithKeys(picker, 3, 300); });
            QTest::mouseClick(dialog.findChild<QRadioButton*>(QStringLiteral("optMI")), Qt::LeftButton);
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdMI")), Qt::LeftButton);
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
        });
        clickCell(*grid, 2, 2);
        clickCell(*grid, 2, 2, true);
        QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
}

// The person's part of a new serial Config: both operands through the
// picker (the dialog asks for them at once), a name with a forbidden
// character on the way, the third port, OK.
struct ConfigPerson {
    int beepsAfterBadKey = -1;
    QString nameAfterBadKey = QStringLiteral("unchanged");

    void act(HostContext& context, const QString& name) {
        onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) {
            onModal(QStringLiteral("OperandPicker"), [](QWidget& second) { pickWithKeys(second, 3, 200); });
            pickWithKeys(picker, 1, 100);
        });
        onModal(QStringLiteral("frmProtocolConfig"), [this, &context, name](QWidget& window) {
            auto* text = window.findChild<QLineEdit*>(QStringLiteral("txtInstanceName"));
            QApplication::setActiveWindow(&window);
            text->setFocus(Qt::TabFocusReason);
            const int beepsBefore = context.BeepCount;
            QTest::keyClicks(text, QStringLiteral("Pr|"));
            beepsAfterBadKey = context.BeepCount - beepsBefore;
            nameAfterBadKey = text->text();
            QTest::keyClicks(text, name);
            auto* port = window.findChild<QComboBox*>(QStringLiteral("cbComport"));
            QTest::keyClick(port, Qt::Key_Down);
            QTest::keyClick(port, Qt::Key_Down);
            QTest::mouseClick(window.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
        });
    }
};

class WorkbenchTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(component.Load(QXFB_BUILT_COMPONENT)) << component.Error();
        host = std::make_unique<WorkbenchHost>(component);
        host->Context().AppFolder = fromUtf8(QXFB_SOURCE_TREE "/runtime/bin");
        window = std::make_unique<WorkbenchWindow>(*host);
        window->show();
        QApplication::setActiveWindow(window.get());
    }
    void TearDown() override {
        if (host) host->MarkSaved();  // no question about unsaved changes at the end
        window.reset();
        if (host) host->Clear();
        host.reset();
    }

    // Places a serial Config through the palette, as the person above fills it.
    bool placeConfig(ConfigPerson& person, const QString& name = QStringLiteral("Printer")) {
        person.act(host->Context(), name);
        doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170101));
        return !host->Nets().empty() && !host->Nets().back().Operations.empty();
    }

    // The same Config made headless in the same component, by the scripted
    // person of the library's own tests: both links, a name (another one:
    // names of instances are unique), the third port, OK. The Config is
    // placed in a net of its own and removed again.
    Bytes headlessConfigImage() {
        auto person = std::make_shared<ScriptedModalDriver>();
        person->QueuePick(OperandChoice{1, 1, 100, 0, L"", 0});
        person->QueuePick(OperandChoice{1, 3, 200, 0, L"", 0});
        person->QueueDialog(
            scriptFor<frmProtocolConfig>(std::function<void(frmProtocolConfig&)>([](frmProtocolConfig& dialog) {
                dialog.txtInstanceName.UserType(L"Scale");
                dialog.cbComport.UserSelect(2);
                dialog.cmdOk.UserClick();
            })));
        const std::shared_ptr<ModalDriver> onScreen = host->Context().Driver;
        host->Context().Driver = person;
        const size_t net = host->AddNet();
        const MethodPtr config = host->PlaceOperation(net, 170101);
        host->Context().Driver = onScreen;
        EXPECT_EQ(person->PendingDialogs(), 0u);
        if (!config) return {};
        const Bytes image = config->itfFBMethod_BinaryOperands();
        host->RemoveOperation(net, 0);
        return image;
    }

    LoadedComponent component;
    std::unique_ptr<WorkbenchHost> host;
    std::unique_ptr<WorkbenchWindow> window;
    test::ScratchFolder folder{"qxfb_workbench"};
};

}  // namespace qx::test
