// The check before a download: each kind of problem is found and named by
// its block, a double-click on a problem goes to the block, and Export asks
// before it writes a bundle of a project with problems.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <filesystem>

#include "project/project_file.h"
#include "qt_test_support.h"
#include "workbench_support.h"

namespace qx {
namespace {

StoredOperand linkedTo(int32_t type, int32_t address, const wchar_t* key) {
    StoredOperand operand;
    operand.Key = key;
    operand.IsNew = false;
    operand.Type = type;
    operand.Address = address;
    return operand;
}

StoredOperand open(const wchar_t* key) {
    StoredOperand operand;
    operand.Key = key;
    return operand;
}

class ProjectCheckTest : public test::WorkbenchTest {
protected:
    // Config 1 "Line"; net 1: a Scan of Config 1 with its image and its three
    // links, a Send of Config 1 never confirmed (no image); net 2: a Scan of
    // Config 7, which is gone, writing MI 20 as the first Scan does, its
    // message index not linked.
    void openProjectWithProblems() {
        Project project;
        project.Instances.push_back({170100, 1, L"Line", {}});
        StoredOperation scan;
        scan.MethodID = 170102;
        scan.FatherInstanceNum = 1;
        scan.BinaryOperands = Bytes{1};
        scan.OutOperands = {linkedTo(1, 10, L"1"), linkedTo(3, 20, L"2"), linkedTo(3, 21, L"3")};
        StoredOperation send;
        send.MethodID = 170103;
        send.FatherInstanceNum = 1;
        StoredOperation orphan = scan;
        orphan.FatherInstanceNum = 7;
        orphan.OutOperands = {linkedTo(1, 11, L"1"), linkedTo(3, 20, L"2"), open(L"3")};
        project.Nets = {{L"", {scan, send}}, {L"", {orphan}}};
        const std::filesystem::path file = folder.path() / "problems.qxfbproj";
        saveProject(file.string(), project);
        ASSERT_TRUE(window->OpenFile(QString::fromStdString(file.string())));
    }
};

TEST_F(ProjectCheckTest, EveryKindOfProblemIsFoundAndNamedByItsBlock) {
    openProjectWithProblems();
    const std::vector<WorkbenchHost::Problem> problems = host->CheckProject();
    std::vector<std::wstring> texts;
    for (const WorkbenchHost::Problem& problem : problems) texts.push_back(problem.Text);
    EXPECT_EQ(texts, (std::vector<std::wstring>{
                         L"net 1, block 2 (SEND) has no messages: open it and confirm its dialog with OK",
                         L"net 2, block 1 (SCAN) names Config instance 7, which is gone",
                         L"net 2, block 1 (SCAN): the operand \"Received message index\" is not linked",
                         L"net 2, block 1 (SCAN) writes MI 20, which net 1, block 1 (SCAN) writes too",
                     }));
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_EQ(problems[1].Net, 1u);
    EXPECT_EQ(problems[1].Place, 0u);
}

TEST_F(ProjectCheckTest, TheProblemsPaneListsThemAndADoubleClickGoesToTheBlock) {
    openProjectWithProblems();
    EXPECT_EQ(window->CheckProject(), 4);
    QTreeWidget& pane = *window->Problems();
    ASSERT_EQ(pane.topLevelItemCount(), 4);
    EXPECT_TRUE(pane.isVisible());
    QTreeWidgetItem* orphan = pane.topLevelItem(1);
    pane.scrollToItem(orphan);
    const QPoint at = pane.visualItemRect(orphan).center();
    QTest::mouseClick(pane.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(pane.viewport(), Qt::LeftButton, {}, at);
    QTreeWidgetItem* current = window->Ladder()->currentItem();
    ASSERT_NE(current, nullptr);
    EXPECT_EQ(current->parent(), window->Ladder()->topLevelItem(1));
    EXPECT_EQ(current->parent()->indexOfChild(current), 0);
    test::saveScreenshot(*window, QStringLiteral("check_project.png"));
}

TEST_F(ProjectCheckTest, ExportAsksBeforeItWritesAProjectWithProblems) {
    openProjectWithProblems();
    const std::filesystem::path bundle = folder.path() / "bundle";
    QString asked;
    test::onModal(QStringLiteral("ExportWithProblems"), [&](QWidget& box) {
        asked = static_cast<QMessageBox&>(box).text();
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::No), Qt::LeftButton);
    });
    EXPECT_FALSE(window->ExportBundle(QString::fromStdString(bundle.string())));
    EXPECT_FALSE(std::filesystem::exists(bundle));
    EXPECT_TRUE(
        asked.startsWith(QStringLiteral("The project has problems that keep blocks from working:\n\nnet 1, "
                                        "block 2 (SEND) has no messages")))
        << asked.toStdString();
    EXPECT_TRUE(asked.endsWith(QStringLiteral("\n\nExport anyway?")));
    test::onModal(QStringLiteral("ExportWithProblems"), [](QWidget& box) {
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
    });
    test::onModal(QStringLiteral("BundleWritten"), [](QWidget& box) {
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Ok), Qt::LeftButton);
    });
    EXPECT_TRUE(window->ExportBundle(QString::fromStdString(bundle.string())));
    EXPECT_TRUE(std::filesystem::exists(bundle / "manifest.json"));
}

TEST_F(ProjectCheckTest, AProjectWithoutProblemsExportsWithoutAQuestion) {
    test::ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    EXPECT_TRUE(host->CheckProject().empty());
    EXPECT_EQ(window->CheckProject(), 0);
    EXPECT_EQ(window->Problems()->topLevelItemCount(), 0);
}

}  // namespace
}  // namespace qx
