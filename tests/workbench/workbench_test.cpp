// The workbench driven as a person drives it: real key and mouse events on
// its window and on the component's dialogs, which it loads through the
// component's entry points.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <filesystem>
#include <functional>
#include <random>

#include "framework/shared_helpers.h"
#include "platform/basics/ansi.h"
#include "platform/controls/form.h"
#include "project/project_file.h"
#include "qt/qt_text.h"
#include "qt_test_support.h"
#include "serial/frm_protocol_config.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "support/scratch_files.h"
#include "support/sqlite_files.h"
#include "workbench_support.h"
#include "workbench_window.h"

namespace qx {
namespace {

using test::actTcpIpConfig;
using test::cellText;
using test::clickCell;
using test::ConfigPerson;
using test::doubleClick;
using test::paletteItem;
using test::WorkbenchTest;

// The address table image of one record, written from its layout: used flag,
// 0, the IP and the port parameters (1 constant with four value bytes, 0 an
// MI with its address in two), twelve description characters.
Bytes addressRecord(uint8_t used, Bytes ip, Bytes port, std::string description) {
    Bytes out{used, 0};
    out.insert(out.end(), ip.begin(), ip.end());
    out.insert(out.end(), port.begin(), port.end());
    description.resize(12, ' ');
    out.insert(out.end(), description.begin(), description.end());
    return out;
}

Bytes tableRecord(const Bytes& table, int index) {
    if (table.size() < static_cast<size_t>(2 + (index + 1) * 26)) return {};
    return Bytes(table.begin() + 2 + index * 26, table.begin() + 2 + (index + 1) * 26);
}

TEST_F(WorkbenchTest, ThePaletteShowsTheFamiliesAndOperationsOfTheGate) {
    QTreeWidget& palette = *window->Palette();
    ASSERT_EQ(palette.topLevelItemCount(), 2);
    EXPECT_EQ(palette.topLevelItem(0)->childCount(), 5);
    EXPECT_EQ(palette.topLevelItem(1)->childCount(), 3);
    for (int32_t method : {170101, 170102, 170103, 170104, 170105, 170201, 170202, 170203}) {
        QTreeWidgetItem* item = paletteItem(palette, method);
        ASSERT_NE(item, nullptr) << method;
        EXPECT_FALSE(item->icon(0).isNull()) << method;
        EXPECT_FALSE(item->toolTip(0).isEmpty()) << method;
    }
    const FatherPtr serial = host->Family(170100);
    EXPECT_EQ(palette.topLevelItem(0)->text(0), toQString(serial->itfFBFather_Title()));
    EXPECT_EQ(palette.topLevelItem(0)->toolTip(0), toQString(serial->itfFBFather_Description()));
}

TEST_F(WorkbenchTest, ASerialConfigPlacedWithKeysAndMouseGivesTheImageOfTheHeadlessRun) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    EXPECT_EQ(person.beepsAfterBadKey, 1);
    EXPECT_EQ(person.nameAfterBadKey, QString());

    const MethodPtr config = host->Nets()[0].Operations[0];
    test::saveScreenshot(*window, QStringLiteral("workbench.png"));
    EXPECT_EQ(config->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
    EXPECT_EQ(config->itfFBMethod_FatherInstanceNum(), 1);
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Printer");
    const OperandCollectionPtr out = config->itfFBMethod_OutOperands();
    EXPECT_EQ(out->Item(1)->OperandType(), 1);
    EXPECT_EQ(out->Item(1)->OperandAddress(), 100);
    EXPECT_EQ(out->Item(2)->OperandType(), 3);
    EXPECT_EQ(out->Item(2)->OperandAddress(), 200);
    EXPECT_EQ(host->Context().Operands.LinkCount(1, 100), 1);

    // The block shows its title, its Config and its linked operands.
    QTreeWidgetItem* block = window->Ladder()->topLevelItem(0)->child(0);
    EXPECT_EQ(block->text(0), toQString(config->itfFBMethod_Title()));
    // The Config shows the port it opens.
    EXPECT_EQ(block->text(1), QStringLiteral("1 Printer, COM3"));
    ASSERT_EQ(block->childCount(), 2);
    EXPECT_EQ(block->child(0)->text(0), toQString(out->Item(1)->OperandCaption()));
    EXPECT_EQ(block->child(0)->text(2), toQString(GetOperandDisplayText(*out->Item(1))));
    EXPECT_TRUE(block->child(1)->text(2).startsWith(QStringLiteral("MI 200")))
        << block->child(1)->text(2).toStdString();
    EXPECT_FALSE(block->icon(0).isNull());
    EXPECT_EQ(window->Instances()->topLevelItem(0)->child(0)->text(1), QStringLiteral("Printer"));
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("untitled *")));
    EXPECT_EQ(config->itfFBMethod_BinaryOperands(), headlessConfigImage());
}

TEST_F(WorkbenchTest, CancelOnANewOperationDropsItAndTheInstanceItAdded) {
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    test::onModal(QStringLiteral("frmProtocolConfig"),
                  [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170101));
    ASSERT_EQ(host->Nets().size(), 1u);
    EXPECT_TRUE(host->Nets()[0].Operations.empty());
    EXPECT_TRUE(host->InstancesOf(170100).Stored().empty());
    EXPECT_EQ(window->Ladder()->topLevelItem(0)->childCount(), 0);
}

TEST_F(WorkbenchTest, CancelAfterLinkingReleasesTheLinksOfTheDroppedOperation) {
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) {
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& second) { test::pickWithKeys(second, 3, 200); });
        test::pickWithKeys(picker, 1, 100);
    });
    test::onModal(QStringLiteral("frmProtocolConfig"), [](QWidget& dialog) {
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170101));
    EXPECT_TRUE(host->Nets()[0].Operations.empty());
    EXPECT_EQ(host->Context().Operands.LinkCount(1, 100), 0);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 0);
    EXPECT_EQ(window->Operands()->topLevelItemCount(), 0);
    EXPECT_TRUE(host->InstancesOf(170100).Stored().empty());
}

TEST_F(WorkbenchTest, AnOperationThatCannotBeReopenedIsKeptAndSavedAgain) {
    Project project;
    StoredOperation config;  // a Config without its two links: BuildOperands refuses it
    config.MethodID = 170101;
    config.FatherInstanceNum = 1;
    config.BinaryOperands = {0x02, 0x00};
    StoredOperation foreign;  // of a family this component does not have
    foreign.MethodID = 990101;
    foreign.BinaryOperands = {1, 2, 3};
    project.Nets = {LadderNet{L"", {config, foreign}}};
    project.Instances = {{170100, 1, L"Printer", {}}, {990100, 4, L"Elsewhere", {9}}};
    const QString file = QString::fromStdString((folder.path() / "old.qxfbproj").string());
    saveProject(file.toStdString(), project);
    QString shown;
    test::onModal(QStringLiteral("WorkbenchError"), [&](QWidget& box) {
        shown = static_cast<QMessageBox&>(box).text();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    ASSERT_TRUE(window->OpenFile(file));
    EXPECT_TRUE(shown.contains(QStringLiteral("net 1: operation 170101 could not be reopened"))) << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("net 1: operation 990101 is unknown to the component")));
    ASSERT_EQ(host->Nets()[0].Unopened.size(), 2u);
    EXPECT_EQ(window->Ladder()->topLevelItem(0)->childCount(), 2);
    EXPECT_EQ(host->ToProject(), project);
    ASSERT_TRUE(window->SaveFile(file));
    EXPECT_EQ(loadProject(file.toStdString()), project);
}

TEST_F(WorkbenchTest, AProjectKeepsNoApplicationFolderOfItsOwnUnlessGivenOne) {
    const std::wstring componentFolder = host->Context().AppFolder;
    EXPECT_TRUE(host->ToProject().Settings.AppFolder.empty());
    Project elsewhere;
    elsewhere.Settings.AppFolder = L"/opt/plant/bin";
    // Not taken unless the caller says so.
    ASSERT_TRUE(host->Open(elsewhere).empty());
    EXPECT_EQ(host->Context().AppFolder, host->ComponentAppFolder());
    ASSERT_TRUE(host->Open(elsewhere, true).empty());
    EXPECT_EQ(host->Context().AppFolder, L"/opt/plant/bin");
    EXPECT_EQ(host->ToProject().Settings.AppFolder, L"/opt/plant/bin");
    // The next project without one is back on the component's own.
    ASSERT_TRUE(host->Open(Project{}).empty());
    EXPECT_EQ(host->Context().AppFolder, componentFolder);
}

TEST_F(WorkbenchTest, BufferResetPicksItsConfigThroughTheHostsDialog) {
    host->InstancesOf(170100).Restore({{170100, 1, L"Printer", {}}, {170100, 2, L"Scale", {}}});
    QStringList offered;
    test::onModal(QStringLiteral("SelectInstance"), [&](QWidget& dialog) {
        auto* list = dialog.findChild<QListWidget*>(QStringLiteral("lstInstances"));
        for (int i = 0; i < list->count(); ++i) offered << list->item(i)->text();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Down);
        QTest::keyClick(&dialog, Qt::Key_Return);
    });
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170105));
    EXPECT_EQ(offered, (QStringList{QStringLiteral("1  Printer"), QStringLiteral("2  Scale")}));
    ASSERT_EQ(host->Nets()[0].Operations.size(), 1u);
    const MethodPtr reset = host->Nets()[0].Operations[0];
    EXPECT_EQ(reset->itfFBMethod_FatherInstanceNum(), 2);
    EXPECT_FALSE(reset->itfFBMethod_IsNew());
    EXPECT_EQ(window->Ladder()->topLevelItem(0)->child(0)->text(1), QStringLiteral("2 Scale"));
}

TEST_F(WorkbenchTest, ASavedProjectReopensWithTheSameImagesLinksAndInstances) {
    // Extended operands switched on in the settings menu first: the links
    // then allow the extended twins, which the reopen must give back.
    window->findChild<QAction*>(QStringLiteral("actionExtendedOperands"))->trigger();
    ASSERT_TRUE(host->Context().ExtendedOperands);
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    const Project before = host->ToProject();
    const QString file = QString::fromStdString((folder.path() / "plant.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    EXPECT_FALSE(host->Modified());
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("plant.qxfbproj -")));

    // Closed and opened again in a fresh window, as on another day.
    window.reset();
    host->Clear();
    host->Context().ExtendedOperands = false;
    EXPECT_EQ(host->Context().Operands.LinkCount(1, 100), 0);
    window = std::make_unique<WorkbenchWindow>(*host);
    ASSERT_TRUE(window->OpenFile(file));
    const Project after = host->ToProject();
    EXPECT_EQ(after.Settings, before.Settings);
    EXPECT_EQ(after.Instances, before.Instances);
    EXPECT_EQ(after.Links, before.Links);
    EXPECT_EQ(after.Constants, before.Constants);
    ASSERT_EQ(after.Nets.size(), 1u);
    EXPECT_EQ(after.Nets[0].Operations[0].BinaryOperands, before.Nets[0].Operations[0].BinaryOperands);
    EXPECT_EQ(after.Nets[0].Operations[0].OutOperands[0].AllowedTypes.size(), 2u);
    EXPECT_EQ(after, before);
    EXPECT_EQ(host->Nets()[0].Operations[0]->itfFBMethod_BinaryOperands(), (Bytes{0x03, 0x00}));
    EXPECT_EQ(host->Nets()[0].Operations[0]->itfFBMethod_FatherInstanceName(), L"Printer");
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
    EXPECT_TRUE(host->Context().ExtendedOperands);
    EXPECT_EQ(window->Ladder()->topLevelItem(0)->child(0)->text(1), QStringLiteral("1 Printer, COM3"));
}

TEST_F(WorkbenchTest, TheDownloadBundleHoldsTheImagesTheInstancesAndTheRuntimeFiles) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    const std::filesystem::path bundle = folder.path() / "bundle";
    QString said;
    test::onModal(QStringLiteral("BundleWritten"), [&](QWidget& box) {
        said = static_cast<QMessageBox&>(box).text();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    ASSERT_TRUE(window->ExportBundle(QString::fromStdString(bundle.string())));
    EXPECT_TRUE(said.startsWith(QStringLiteral("5 files written"))) << said.toStdString();
    EXPECT_EQ(test::readFile(bundle / "operations/net001_op001_170101.bin"), std::string("\x03\x00", 2));
    EXPECT_EQ(test::readFile(bundle / "instances/170100_0001.bin"), "");
    EXPECT_EQ(test::readFile(bundle / "runtime/170100V100.FBs"),
              test::readFile(QXFB_SOURCE_TREE "/runtime/FB_Lib/RT/170100V100.FBs"));
    const std::string manifest = test::readFile(bundle / "manifest.json");
    EXPECT_NE(manifest.find("\"Name\": \"Printer\""), std::string::npos) << manifest;

    // A second export into the same folder is refused: it is not empty.
    test::onModal(QStringLiteral("WorkbenchError"), [&](QWidget& box) {
        said = static_cast<QMessageBox&>(box).text();
        QTest::keyClick(&box, Qt::Key_Return);
    });
    EXPECT_FALSE(window->ExportBundle(QString::fromStdString(bundle.string())));
    EXPECT_TRUE(said.contains(QStringLiteral("is not empty"))) << said.toStdString();
}

TEST_F(WorkbenchTest, TheOperandsViewListsEveryLinkAndMovesOneWithItsOperations) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    QTreeWidget& operands = *window->Operands();
    ASSERT_EQ(operands.topLevelItemCount(), 2);
    EXPECT_EQ(operands.topLevelItem(0)->text(0), QStringLiteral("MB 100"));
    EXPECT_EQ(operands.topLevelItem(1)->text(0), QStringLiteral("MI 200"));
    EXPECT_EQ(operands.topLevelItem(1)->text(2), QStringLiteral("1"));
    EXPECT_EQ(operands.topLevelItem(1)->text(3), QStringLiteral("net 1, block 1 (CONFIG)"));

    QTest::mouseClick(operands.viewport(), Qt::LeftButton, {},
                      operands.visualItemRect(operands.topLevelItem(1)).center());
    test::onModal(QStringLiteral("MoveOperand"), [](QWidget& ask) {
        auto* spin = ask.findChild<QSpinBox*>();
        QTest::keyClick(spin, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(spin, QStringLiteral("300"));
        QTest::keyClick(&ask, Qt::Key_Return);
    });
    window->findChild<QAction*>(QStringLiteral("actionMoveOperand"))->trigger();

    const MethodPtr config = host->Nets()[0].Operations[0];
    EXPECT_EQ(config->itfFBMethod_OutOperands()->Item(2)->OperandAddress(), 300);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 0);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 300), 1);
    EXPECT_EQ(operands.topLevelItem(1)->text(0), QStringLiteral("MI 300"));
    EXPECT_TRUE(window->Ladder()->topLevelItem(0)->child(0)->child(1)->text(2).startsWith(QStringLiteral("MI 300")));
    EXPECT_TRUE(host->Modified());
}

TEST_F(WorkbenchTest, MovingAnOperandRewritesEverySendImageThatNamesIt) {
    // A Send of a real image, as a project of another day holds it.
    Bytes image;
    OperandChoice named;
    {
        ScopedHostContext own;
        clsProtocolSendSrv set;
        std::mt19937 random(7);
        test::RandomSetShape shape;
        shape.MinMessages = 3;
        test::fillRandomSendSet(set, random, shape);
        image = set.BinaryData();
        OperandCollection inImage;
        set.AddOperandsToFindOnly(inImage);
        ASSERT_GT(inImage.Count(), 0);
        // The first MI the image names; constants do not move.
        for (const OperandPtr& operand : inImage)
            if (operand->OperandType() == 3 && named.OperandType == 0)
                named = {1, 3, operand->OperandAddress(), operand->OperandNetID(), L"", 0};
        ASSERT_EQ(named.OperandType, 3);
    }
    Project project;
    StoredOperation send;
    send.MethodID = 170103;
    send.BinaryOperands = image;
    project.Nets = {LadderNet{L"", {send}}};
    ASSERT_TRUE(host->Open(project).empty());
    // The first address after it where its span overlaps no other MI.
    int32_t newAddress = named.OperandAddress;
    int32_t span = 1;
    for (const WorkbenchHost::OperandUse& use : host->OperandUses())
        if (use.Type == 3 && use.Address == named.OperandAddress) span = use.VectorLength;
    for (bool taken = true; taken;) {
        newAddress = (newAddress + 1) % (65536 - span);
        taken = newAddress == named.OperandAddress;
        for (const WorkbenchHost::OperandUse& use : host->OperandUses())
            taken = taken || (use.Type == 3 && use.Address != named.OperandAddress &&
                              newAddress < use.Address + use.VectorLength && use.Address < newAddress + span);
    }

    const auto changed = host->MoveOperand(named.OperandNetID, named.OperandType, named.OperandAddress, newAddress);
    EXPECT_EQ(changed.Operations, (std::vector<std::pair<size_t, size_t>>{{0, 0}}));
    EXPECT_TRUE(changed.Instances.empty());
    ScopedHostContext own;
    clsProtocolSendSrv reread;
    reread.BinaryData(host->Nets()[0].Operations[0]->itfFBMethod_BinaryOperands());
    OperandCollection inImage;
    reread.AddOperandsToFindOnly(inImage);
    int atNew = 0;
    for (const OperandPtr& operand : inImage) {
        EXPECT_FALSE(operand->OperandType() == named.OperandType && operand->OperandAddress() == named.OperandAddress);
        atNew += operand->OperandType() == named.OperandType && operand->OperandAddress() == newAddress;
    }
    EXPECT_GT(atNew, 0);
}

using test::runSql;

TEST_F(WorkbenchTest, EveryBadFileShowsItsErrorAndChangesNothing) {
    const std::filesystem::path file = folder.path() / "plant.qxfbproj";
    struct Case {
        const char* name;
        std::function<void()> make;
        QString cause;
    };
    sqlite3* locker = nullptr;
    const std::vector<Case> cases{
        {"missing", [] {}, QStringLiteral("not found")},
        {"text", [&] { test::writeFile(file, "not a project"); },
         QStringLiteral("is not a project file (not an SQLite database)")},
        {"foreign", [&] { runSql(file, "CREATE TABLE customers(name TEXT);"); },
         QStringLiteral("is an SQLite database of another program, not a project file")},
        {"newer",
         [&] {
             saveProject(file.string(), Project{});
             runSql(file, "PRAGMA user_version = 4;");
         },
         QStringLiteral("was written by a newer version of the program (project schema 4; this one reads schema 3 "
                        "and older)")},
        {"damaged",
         [&] {
             saveProject(file.string(), Project{});
             runSql(file, "DROP TABLE links;");
         },
         QStringLiteral("is damaged (no such table: links)")},
        {"locked",
         [&] {
             saveProject(file.string(), Project{});
             ASSERT_EQ(sqlite3_open(file.c_str(), &locker), SQLITE_OK);
             ASSERT_EQ(sqlite3_exec(locker, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr), SQLITE_OK);
         },
         QStringLiteral("is locked by another program")},
    };
    host->AddNet(L"kept");
    for (const Case& each : cases) {
        std::filesystem::remove(file);
        each.make();
        const std::string before = std::filesystem::exists(file) ? test::readFile(file) : "";
        QString shown;
        test::onModal(QStringLiteral("WorkbenchError"), [&](QWidget& box) {
            shown = static_cast<QMessageBox&>(box).text();
            QTest::keyClick(&box, Qt::Key_Return);
        });
        EXPECT_FALSE(window->OpenFile(QString::fromStdString(file.string()))) << each.name;
        EXPECT_EQ(shown,
                  QStringLiteral("project file \"%1\": ").arg(QString::fromStdString(file.string())) + each.cause)
            << each.name;
        ASSERT_EQ(host->Nets().size(), 1u) << each.name;
        EXPECT_EQ(host->Nets()[0].Comment, L"kept") << each.name;
        if (std::filesystem::exists(file)) {
            EXPECT_EQ(test::readFile(file), before) << each.name;
        }
        // Saving over it is refused as well, and leaves it as it was.
        if (std::string(each.name) != "missing") {
            test::onModal(QStringLiteral("WorkbenchError"),
                          [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
            EXPECT_FALSE(window->SaveFile(QString::fromStdString(file.string()))) << each.name;
            EXPECT_EQ(test::readFile(file), before) << each.name;
        }
        if (locker) {
            sqlite3_exec(locker, "COMMIT", nullptr, nullptr, nullptr);
            sqlite3_close(locker);
            locker = nullptr;
        }
    }
}

TEST_F(WorkbenchTest, ATcpIpConfigIsPlacedSavedReopenedAndEditedAgain) {
    actTcpIpConfig(QStringLiteral("Plant"));
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170201));
    ASSERT_EQ(host->Nets().size(), 1u);
    ASSERT_EQ(host->Nets()[0].Operations.size(), 1u);
    const MethodPtr config = host->Nets()[0].Operations[0];
    EXPECT_EQ(config->itfFBMethod_FatherInstanceName(), L"Plant");
    EXPECT_EQ(config->itfFBMethod_InOperands()->Item(1)->OperandConstantValue(), 10000);
    EXPECT_EQ(config->itfFBMethod_OutOperands()->Item(1)->OperandAddress(), 150);
    ASSERT_EQ(host->InstancesOf(170200).Stored().size(), 1u);
    const Bytes table = host->InstancesOf(170200).Stored()[0].Data;
    ASSERT_EQ(table.size(), 418u);
    EXPECT_EQ(Bytes(table.begin(), table.begin() + 2), (Bytes{100, 16}));
    EXPECT_EQ(tableRecord(table, 0), addressRecord(1, {1, 0, 10, 0, 0, 7}, {1, 0, 0x20, 0x4E, 0, 0}, "Address 0"));
    EXPECT_EQ(tableRecord(table, 1), addressRecord(0, {1, 0, 0, 0, 0, 0}, {0, 0, 0x2C, 0x01, 0, 0}, "Address 1"));
    // The host's instance list shows the name the dialog gave, and the table's size.
    QTreeWidgetItem* family = window->Instances()->topLevelItem(1);
    ASSERT_NE(family, nullptr);
    ASSERT_EQ(family->childCount(), 1);
    EXPECT_EQ(family->child(0)->text(1), QStringLiteral("Plant"));
    // The TCP/IP Config shows its socket on its block.
    EXPECT_TRUE(window->Ladder()->topLevelItem(0)->child(0)->text(1).startsWith(QStringLiteral("1 Plant, socket ")))
        << window->Ladder()->topLevelItem(0)->child(0)->text(1).toStdString();
    EXPECT_EQ(family->child(0)->text(2), QStringLiteral("418 bytes"));
    // The port's MI is listed for the host's search.
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 300), 1);
    ASSERT_EQ(config->itfFBMethod_OperandsForFindOnly()->Count(), 1);

    const QString file = QString::fromStdString((folder.path() / "tcpip.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    const Project before = host->ToProject();
    window.reset();
    host->Clear();
    window = std::make_unique<WorkbenchWindow>(*host);
    window->show();
    ASSERT_TRUE(window->OpenFile(file));
    EXPECT_EQ(host->ToProject(), before);
    const MethodPtr reopened = host->Nets()[0].Operations[0];
    EXPECT_EQ(reopened->itfFBMethod_InstanceData(), table);

    // Edited again: the table comes back into the grid; address 0 is cleared.
    QString ipShown, portShown;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        auto* grid = dialog.findChild<QTableView*>(QStringLiteral("vsfSlaves"));
        ipShown = cellText(*grid, 1, 1);
        portShown = cellText(*grid, 2, 2);
        clickCell(*grid, 1, 2);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdClearLink")), Qt::LeftButton);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    QTreeWidgetItem* block = window->Ladder()->topLevelItem(0)->child(0);
    window->Ladder()->setCurrentItem(block);
    doubleClick(*window->Ladder(), block);
    EXPECT_EQ(ipShown, QStringLiteral("10.0.0.7"));
    EXPECT_EQ(portShown, QStringLiteral("MI 300"));
    const Bytes edited = host->InstancesOf(170200).Stored()[0].Data;
    EXPECT_EQ(tableRecord(edited, 0), addressRecord(0, {1, 0, 0, 0, 0, 0}, {1, 0, 0, 0, 0, 0}, ""));
    EXPECT_EQ(tableRecord(edited, 1), tableRecord(table, 1));

    // The download bundle carries the instance's table.
    const std::filesystem::path bundle = folder.path() / "bundle";
    test::onModal(QStringLiteral("BundleWritten"), [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Return); });
    ASSERT_TRUE(window->ExportBundle(QString::fromStdString(bundle.string())));
    const std::string written = test::readFile(bundle / "instances/170200_0001.bin");
    EXPECT_EQ(Bytes(written.begin(), written.end()), edited);
}

TEST_F(WorkbenchTest, CancelOfANewTcpIpConfigDeletesItsInstance) {
    test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { QTest::keyClick(&picker, Qt::Key_Escape); });
    int instancesWhileShown = -1;
    test::onModal(QStringLiteral("frmEthProtocolConfig"), [&](QWidget& dialog) {
        instancesWhileShown = static_cast<int>(host->InstancesOf(170200).Stored().size());
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170201));
    EXPECT_EQ(instancesWhileShown, 1);
    EXPECT_TRUE(host->Nets()[0].Operations.empty());
    EXPECT_TRUE(host->InstancesOf(170200).Stored().empty());
    EXPECT_EQ(window->Instances()->topLevelItem(1)->childCount(), 0);
}

TEST_F(WorkbenchTest, ACopyBufferIsPlacedWithItsFormatFollowingTheDestinationAndEditedAgain) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    QStringList formatsOnML, formatsOnMI;
    QString chosenOnMI, configShown;
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        auto* formats = dialog.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        configShown = dialog.findChild<QComboBox*>(QStringLiteral("cbInstanceName"))->currentText();
        // The destination first: an ML offers three formats; take 4 bytes.
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 5, 40); });
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOperand")), Qt::LeftButton);
        for (int i = 0; i < formats->count(); ++i) formatsOnML << formats->itemText(i);
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_End);
        // On an MI, 4 is not offered: it turns into 1.
        test::onModal(QStringLiteral("OperandPicker"), [](QWidget& picker) { test::pickWithKeys(picker, 3, 400); });
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOperand")), Qt::LeftButton);
        for (int i = 0; i < formats->count(); ++i) formatsOnMI << formats->itemText(i);
        chosenOnMI = formats->currentText();
        test::saveScreenshot(dialog, QStringLiteral("copy_buffer_dialog.png"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    });
    // Placed beside the Config, in the same net.
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170104));
    ASSERT_EQ(host->Nets()[0].Operations.size(), 2u);
    const MethodPtr copy = host->Nets()[0].Operations[1];
    EXPECT_EQ(configShown, QStringLiteral("Printer"));
    EXPECT_EQ(formatsOnML.size(), 3);
    EXPECT_EQ(formatsOnMI, (QStringList{QStringLiteral("Convert 1 Receive Bytes to ONE Linked Element"),
                                        QStringLiteral("Convert 2 Receive Bytes to ONE Linked Element")}));
    EXPECT_EQ(chosenOnMI, QStringLiteral("Convert 1 Receive Bytes to ONE Linked Element"));
    EXPECT_EQ(copy->itfFBMethod_BinaryOperands(), (Bytes{1, 0}));
    EXPECT_EQ(copy->itfFBMethod_FatherInstanceName(), L"Printer");
    EXPECT_EQ(copy->itfFBMethod_OutOperands()->Item(1)->OperandAddress(), 400);

    // Saved and reopened, then edited again: format 2.
    const QString file = QString::fromStdString((folder.path() / "copy.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    window.reset();
    host->Clear();
    window = std::make_unique<WorkbenchWindow>(*host);
    window->show();
    ASSERT_TRUE(window->OpenFile(file));
    QString chosenOnOpen;
    test::onModal(QStringLiteral("frmProtocolCopyBytes"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        auto* formats = dialog.findChild<QComboBox*>(QStringLiteral("cbCopyBytes"));
        chosenOnOpen = formats->currentText();
        formats->setFocus(Qt::TabFocusReason);
        QTest::keyClick(formats, Qt::Key_Down);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOk")), Qt::LeftButton);
    });
    QTreeWidgetItem* block = window->Ladder()->topLevelItem(0)->child(1);
    window->Ladder()->setCurrentItem(block);
    doubleClick(*window->Ladder(), block);
    EXPECT_EQ(chosenOnOpen, QStringLiteral("Convert 1 Receive Bytes to ONE Linked Element"));
    EXPECT_EQ(host->Nets()[0].Operations[1]->itfFBMethod_BinaryOperands(), (Bytes{2, 0}));
}

// What the first message of a Send image says, read back through a Send set.
std::wstring firstSendMessage(const Bytes& image) {
    clsProtocolSendSrv set;
    set.BinaryData(image);
    std::wstring text = set.GetMessage(1)->MessageString();
    return text.substr(0, text.find_last_not_of(L' ') + 1);
}

TEST_F(WorkbenchTest, ASerialSendIsTypedIntoItsGridSavedReopenedAndEditedAgain) {
    ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    QString configShown;
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        configShown = dialog.findChild<QComboBox*>(QStringLiteral("cbInstanceName"))->currentText();
        auto* grid = dialog.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(grid, QStringLiteral("WQ"));
        QTest::keyClick(grid, Qt::Key_Backspace);
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    doubleClick(*window->Palette(), paletteItem(*window->Palette(), 170103));
    ASSERT_EQ(host->Nets()[0].Operations.size(), 2u);
    const MethodPtr send = host->Nets()[0].Operations[1];
    EXPECT_EQ(configShown, QStringLiteral("Printer"));
    EXPECT_EQ(send->itfFBMethod_FatherInstanceName(), L"Printer");
    EXPECT_EQ(firstSendMessage(send->itfFBMethod_BinaryOperands()), L"W");

    const QString file = QString::fromStdString((folder.path() / "send.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    window.reset();
    host->Clear();
    window = std::make_unique<WorkbenchWindow>(*host);
    window->show();
    ASSERT_TRUE(window->OpenFile(file));
    const Bytes saved = host->Nets()[0].Operations[1]->itfFBMethod_BinaryOperands();
    QTreeWidgetItem* block = window->Ladder()->topLevelItem(0)->child(1);

    // Edited again: Home, then "P" in front; OK.
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        auto* grid = dialog.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::TabFocusReason);
        QTest::keyClick(grid, Qt::Key_Home);
        QTest::keyClicks(grid, QStringLiteral("P"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
    });
    window->Ladder()->setCurrentItem(block);
    doubleClick(*window->Ladder(), block);
    EXPECT_EQ(firstSendMessage(host->Nets()[0].Operations[1]->itfFBMethod_BinaryOperands()), L"PW");

    // And once more, cancelled: the image stays byte for byte.
    const Bytes confirmed = host->Nets()[0].Operations[1]->itfFBMethod_BinaryOperands();
    EXPECT_NE(confirmed, saved);
    test::onModal(QStringLiteral("frmProtocolSend"), [&](QWidget& dialog) {
        QApplication::setActiveWindow(&dialog);
        auto* grid = dialog.findChild<QTableView*>(QStringLiteral("FlgSend"));
        grid->setFocus(Qt::TabFocusReason);
        QTest::keyClicks(grid, QStringLiteral("ZZ"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    // The ladder is drawn anew after an edit: the Send's block is looked up again.
    block = window->Ladder()->topLevelItem(0)->child(1);
    window->Ladder()->setCurrentItem(block);
    doubleClick(*window->Ladder(), block);
    EXPECT_EQ(host->Nets()[0].Operations[1]->itfFBMethod_BinaryOperands(), confirmed);
}

TEST_F(WorkbenchTest, ClosingWithUnsavedChangesAsksAndCancelKeepsTheWindow) {
    host->AddNet();
    test::onModal(QStringLiteral("UnsavedChanges"), [](QWidget& box) {
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Cancel), Qt::LeftButton);
    });
    EXPECT_FALSE(window->close());
    EXPECT_TRUE(window->isVisible());
    test::onModal(QStringLiteral("UnsavedChanges"), [](QWidget& box) {
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Discard), Qt::LeftButton);
    });
    EXPECT_TRUE(window->close());
}

}  // namespace
}  // namespace qx
