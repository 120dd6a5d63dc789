// The checksum table as a page of the project's settings: chosen with the
// mouse and keys in its dialog, kept in the project file, undone like every
// change, left alone by Cancel, and used by the panes that compute wire bytes.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>

#include "checksum_table_dialog.h"
#include "project/project_file.h"
#include "qt/view_checksums.h"
#include "qt_test_support.h"
#include "runtime_model/checksum_table_json.h"
#include "workbench_support.h"

namespace qx {
namespace {

using test::WorkbenchTest;

// Chooses an entry of a box with the keyboard, as a person would: the box
// takes focus, Home, then Down until the entry is current.
void chooseWithKeys(QComboBox& box, const QString& entry) {
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Home);
    for (int i = 0; i < box.count() && box.currentText() != entry; ++i) QTest::keyClick(&box, Qt::Key_Down);
    ASSERT_EQ(box.currentText(), entry);
}

void openChecksums(WorkbenchWindow& window) {
    window.findChild<QAction*>(QStringLiteral("actionChecksums"))->trigger();
}

void press(QWidget& dialog, QDialogButtonBox::StandardButton which) {
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(which), Qt::LeftButton);
}

TEST_F(WorkbenchTest, TheChecksumPageSetsACodeThatTheFileKeepsAndUndoTakesBack) {
    const model::ChecksumTable defaults = model::ChecksumTable::Default();
    EXPECT_EQ(host->Checksums(), defaults);
    test::onModal(QStringLiteral("ChecksumTableDialog"), [](QWidget& window) {
        auto& dialog = static_cast<ChecksumTableDialog&>(window);
        // The page shows each code with its default and the check value.
        auto* grid = dialog.findChild<QTableWidget*>(QStringLiteral("checksumGrid"));
        EXPECT_EQ(grid->item(2, 0)->text(), QStringLiteral("3  CRC-16"));
        EXPECT_EQ(dialog.DefinitionBox(3)->currentText(), QStringLiteral("CRC-16/ARC"));
        EXPECT_EQ(grid->item(2, 3)->text(),
                  QStringLiteral("16 bits, poly 0x8005, init 0x0000, reflected, xorout 0x0000"));
        EXPECT_EQ(grid->item(2, 4)->text(), QStringLiteral("0xBB3D"));
        chooseWithKeys(*dialog.DefinitionBox(3), QStringLiteral("CRC-16/MODBUS"));
        // Modbus RTU's CRC brings its byte order.
        EXPECT_EQ(dialog.ByteOrderBox(3)->currentText(), QStringLiteral("low byte first"));
        EXPECT_EQ(grid->item(2, 4)->text(), QStringLiteral("0x4B37"));
        chooseWithKeys(*dialog.ByteOrderBox(1), QStringLiteral("low byte first"));
        test::saveScreenshot(dialog, QStringLiteral("workbench_checksums.png"));
        press(dialog, QDialogButtonBox::Ok);
    });
    openChecksums(*window);
    EXPECT_EQ(host->Checksums().Definition(3).Name, "CRC-16/MODBUS");
    EXPECT_TRUE(host->Checksums().Definition(3).LowByteFirst);
    EXPECT_TRUE(host->Checksums().Definition(1).LowByteFirst);
    EXPECT_EQ(viewChecksumTable(), host->Checksums());
    EXPECT_TRUE(host->Modified());

    const std::string file = (folder.path() / "checksums.qxfbproj").string();
    saveProject(file, host->ToProject());
    EXPECT_EQ(loadProject(file).Settings.Checksums, host->Checksums());

    QAction* undo = window->findChild<QAction*>(QStringLiteral("actionUndo"));
    EXPECT_EQ(undo->text(), QStringLiteral("&Undo Checksums"));
    undo->trigger();
    EXPECT_EQ(host->Checksums(), defaults);
    EXPECT_EQ(viewChecksumTable(), defaults);
    window->findChild<QAction*>(QStringLiteral("actionRedo"))->trigger();
    EXPECT_EQ(host->Checksums().Definition(3).Name, "CRC-16/MODBUS");
}

TEST_F(WorkbenchTest, CancelOnTheChecksumPageChangesNothing) {
    test::onModal(QStringLiteral("ChecksumTableDialog"), [](QWidget& window) {
        auto& dialog = static_cast<ChecksumTableDialog&>(window);
        chooseWithKeys(*dialog.DefinitionBox(6), QStringLiteral("CRC-16/GENIBUS"));
        press(dialog, QDialogButtonBox::Cancel);
    });
    openChecksums(*window);
    EXPECT_EQ(host->Checksums(), model::ChecksumTable::Default());
    EXPECT_FALSE(host->Modified());
    EXPECT_EQ(window->UndoStack().count(), 0);
}

TEST_F(WorkbenchTest, TheChecksumPageLoadsAndSavesATableFileAndSaysWhyOneIsRefused) {
    model::ChecksumTable custom = model::ChecksumTable::Default();
    // A calculation no list offers, from a file.
    custom.Definition(9, {"CRC-16/CUSTOM", model::ChecksumRule::Crc, 16, 0x1234, 0xABCD, false, true, 0x00FF, 0});
    model::ChecksumDefinition d = custom.Definition(9);
    d.Check = model::checkValueOf(d);
    custom.Definition(9, d);
    test::writeFile(folder.path() / "custom.json", model::checksumTableToJson(custom));
    test::writeFile(folder.path() / "bad.json", "{\"format\": \"qxfbcom2-checksum-table\", \"version\": 2}");

    ChecksumTableDialog dialog(model::ChecksumTable::Default(), window.get());
    ASSERT_TRUE(dialog.LoadFile(QString::fromStdString((folder.path() / "custom.json").string())));
    EXPECT_EQ(dialog.Table(), custom);
    EXPECT_EQ(dialog.DefinitionBox(9)->currentText(), QStringLiteral("CRC-16/CUSTOM"));
    EXPECT_EQ(dialog.findChild<QTableWidget*>()->item(8, 3)->text(),
              QStringLiteral("16 bits, poly 0x1234, init 0xABCD, reflected out, xorout 0x00FF"));

    QString refusal;
    test::onModal(QStringLiteral("ChecksumLoadError"), [&refusal](QWidget& box) {
        refusal = static_cast<QMessageBox&>(box).text();
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    const QString bad = QString::fromStdString((folder.path() / "bad.json").string());
    EXPECT_FALSE(dialog.LoadFile(bad));
    EXPECT_EQ(refusal, bad + QStringLiteral(" cannot be loaded: the checksum table: \"version\" must be 1"));
    EXPECT_EQ(dialog.Table(), custom);

    const QString saved = QString::fromStdString((folder.path() / "saved.json").string());
    ASSERT_TRUE(dialog.SaveFile(saved));
    EXPECT_EQ(test::readFile(folder.path() / "saved.json"), model::checksumTableToJson(custom));
}

}  // namespace
}  // namespace qx
