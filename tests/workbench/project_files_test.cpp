// A project file in use: a second workbench on the same file opens it
// read-only and cannot overwrite it, a file changed on disk is not
// overwritten without a question, and Save as keeps to files no other
// workbench holds.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QTest>
#include <chrono>
#include <thread>

#include "project/project_file.h"
#include "qt_test_support.h"
#include "workbench_support.h"

namespace qx {
namespace {

class ProjectFilesTest : public test::WorkbenchTest {
protected:
    QString file(const char* name) { return QString::fromStdString((folder.path() / name).string()); }

    // A saved project of one net.
    QString savedProject(const char* name) {
        host->AddNet(L"first");
        const QString path = file(name);
        EXPECT_TRUE(window->SaveFile(path));
        return path;
    }

    // Answers the next box of that name with the button and says what it said.
    QString answer(const char* name, QMessageBox::StandardButton button = QMessageBox::Ok) {
        auto text = std::make_shared<QString>();
        test::onModal(QString::fromLatin1(name), [text, button](QWidget& box) {
            auto& message = static_cast<QMessageBox&>(box);
            *text = message.text();
            QTest::mouseClick(message.button(button), Qt::LeftButton);
        });
        texts_.push_back(text);
        return {};
    }
    QString said(size_t index) const { return *texts_.at(index); }

private:
    std::vector<std::shared_ptr<QString>> texts_;
};

TEST_F(ProjectFilesTest, TheOpenFileIsLockedAndTheLockGoesWithTheWindow) {
    const QString path = savedProject("locked.qxfbproj");
    EXPECT_TRUE(QFileInfo::exists(ProjectGuard::LockPathOf(path)));
    EXPECT_FALSE(window->ReadOnly());
    ProjectGuard second;
    QString reason;
    EXPECT_EQ(second.Lock(path, reason), ProjectGuard::LockResult::HeldByOther);
    EXPECT_TRUE(reason.startsWith(QStringLiteral("it is open in "))) << reason.toStdString();
    window.reset();
    EXPECT_EQ(second.Lock(path, reason), ProjectGuard::LockResult::Taken);
}

TEST_F(ProjectFilesTest, ASecondWorkbenchProcessKeepsTheFileFromBeingOverwritten) {
    const QString path = savedProject("shared.qxfbproj");
    host->MarkSaved();
    window = std::make_unique<WorkbenchWindow>(*host);  // gives the lock back
    window->show();

    // The other workbench, a process of its own, opens the file first.
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    other.setProcessEnvironment(environment);
    other.start(QStringLiteral(QXFB_BUILT_WORKBENCH),
                {QStringLiteral("--component"), QStringLiteral(QXFB_BUILT_COMPONENT), path});
    ASSERT_TRUE(other.waitForStarted(20000));
    ProjectGuard probe;
    QString reason;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (probe.Lock(path, reason) == ProjectGuard::LockResult::Taken && std::chrono::steady_clock::now() < deadline) {
        probe = ProjectGuard();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_TRUE(reason.contains(QStringLiteral("process %1").arg(other.processId()))) << reason.toStdString();

    // This one opens it read-only, says why, and will not save over it.
    answer("ReadOnlyProject");
    ASSERT_TRUE(window->OpenFile(path));
    EXPECT_TRUE(window->ReadOnly());
    EXPECT_TRUE(said(0).startsWith(path + QStringLiteral(" is opened read-only: it is open in ")))
        << said(0).toStdString();
    EXPECT_TRUE(window->windowTitle().contains(QStringLiteral("(read-only)")));
    host->AddNet(L"second");
    answer("WorkbenchError");
    EXPECT_FALSE(window->SaveFile(path));
    EXPECT_EQ(said(1), QStringLiteral("Cannot save %1: it was opened read-only, since another workbench has it open. "
                                      "Save as writes this project under another name.")
                           .arg(path));
    EXPECT_EQ(loadProject(QFile::encodeName(path).toStdString()).Nets.size(), 1u);
    // Save as into another file works and that file is this window's.
    const QString copy = file("copy.qxfbproj");
    EXPECT_TRUE(window->SaveFile(copy));
    EXPECT_FALSE(window->ReadOnly());
    EXPECT_EQ(loadProject(QFile::encodeName(copy).toStdString()).Nets.size(), 2u);
    // Save as back over the file the other workbench holds is refused too.
    answer("WorkbenchError");
    EXPECT_FALSE(window->SaveFile(path));
    EXPECT_TRUE(said(2).startsWith(QStringLiteral("Cannot save %1: it is open in ").arg(path)))
        << said(2).toStdString();

    other.kill();
    other.waitForFinished(10000);
    // The lock of a process that is gone does not hold.
    host->MarkSaved();
    ASSERT_TRUE(window->OpenFile(path));
    EXPECT_FALSE(window->ReadOnly());
    EXPECT_TRUE(window->SaveFile(path));
}

TEST_F(ProjectFilesTest, AFileChangedOnDiskIsNotOverwrittenWithoutAQuestion) {
    const QString path = savedProject("changed.qxfbproj");
    // Someone else writes the file: three nets, a second later.
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));
    Project theirs;
    theirs.Nets.resize(3);
    saveProject(QFile::encodeName(path).toStdString(), theirs);
    host->AddNet(L"mine");
    answer("ChangedOnDisk", QMessageBox::No);
    EXPECT_FALSE(window->SaveFile(path));
    EXPECT_EQ(said(0), QStringLiteral("%1 was changed on disk since this workbench opened or saved it. Overwrite those "
                                      "changes with this project?")
                           .arg(path));
    EXPECT_EQ(loadProject(QFile::encodeName(path).toStdString()).Nets.size(), 3u);
    answer("ChangedOnDisk", QMessageBox::Yes);
    EXPECT_TRUE(window->SaveFile(path));
    EXPECT_EQ(loadProject(QFile::encodeName(path).toStdString()).Nets.size(), 2u);
    // Saved by this window, it is no longer a change of someone else.
    host->AddNet(L"again");
    EXPECT_TRUE(window->SaveFile(path));
}

TEST_F(ProjectFilesTest, RecentFilesComeFirstInTheFileMenuAndOpenAgain) {
    const QString first = savedProject("first.qxfbproj");
    const QString second = file("second.qxfbproj");
    ASSERT_TRUE(window->SaveFile(second));
    ASSERT_TRUE(window->SaveFile(first));
    const QStringList recent = window->RecentFiles();
    ASSERT_GE(recent.size(), 2);
    EXPECT_EQ(recent[0], QFileInfo(first).absoluteFilePath());
    EXPECT_EQ(recent[1], QFileInfo(second).absoluteFilePath());
    EXPECT_EQ(recent.count(QFileInfo(first).absoluteFilePath()), 1);
    // Its menu item opens the second one again.
    auto* item = window->findChild<QAction*>(QStringLiteral("actionRecent2"));
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->text().endsWith(QFileInfo(second).absoluteFilePath()));
    item->trigger();
    EXPECT_EQ(window->FilePath(), QFileInfo(second).absoluteFilePath());
}

TEST_F(ProjectFilesTest, TheWindowComesBackAtTheSizeItWasClosedAt) {
    window->resize(900, 500);
    QApplication::processEvents();
    host->MarkSaved();
    window->close();
    window = std::make_unique<WorkbenchWindow>(*host);
    window->show();
    QApplication::processEvents();
    EXPECT_EQ(window->size(), QSize(900, 500));
}

TEST_F(ProjectFilesTest, AProjectsOwnApplicationFolderIsTakenOnlyWhenThePersonSaysSo) {
    Project elsewhere;
    elsewhere.Settings.AppFolder = L"/opt/plant/bin";
    const QString path = file("elsewhere.qxfbproj");
    saveProject(QFile::encodeName(path).toStdString(), elsewhere);
    answer("ProjectAppFolder", QMessageBox::No);
    ASSERT_TRUE(window->OpenFile(path));
    EXPECT_EQ(host->Context().AppFolder, host->ComponentAppFolder());
    EXPECT_TRUE(said(0).startsWith(path + QStringLiteral(" names its own application folder /opt/plant/bin, from "
                                                         "which the download bundle takes the runtime code")))
        << said(0).toStdString();
    answer("ProjectAppFolder", QMessageBox::Yes);
    ASSERT_TRUE(window->OpenFile(path));
    EXPECT_EQ(host->Context().AppFolder, L"/opt/plant/bin");
}

TEST_F(ProjectFilesTest, SaveAsHasCtrlShiftS) {
    QAction* saveAs = window->findChild<QAction*>(QStringLiteral("actionSaveAs"));
    ASSERT_NE(saveAs, nullptr);
    EXPECT_TRUE(saveAs->shortcuts().contains(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)));
}

TEST_F(ProjectFilesTest, SaveAsOverAFileThePersonAgreedToReplaceReplacesIt) {
    host->AddNet(L"kept");
    const QString path = file("old.txt");
    test::writeFile(path.toStdString(), "notes of another day");
    // Without the agreement the file is not a project and stays as it was.
    answer("WorkbenchError");
    EXPECT_FALSE(window->SaveFile(path));
    EXPECT_EQ(test::readFile(path.toStdString()), "notes of another day");
    EXPECT_TRUE(window->SaveFile(path, true));
    EXPECT_EQ(loadProject(path.toStdString()).Nets.at(0).Comment, L"kept");
    EXPECT_FALSE(QFileInfo::exists(path + QStringLiteral(".saving")));
    EXPECT_FALSE(host->Modified());
}

TEST_F(ProjectFilesTest, ASaveIntoAFolderThatIsNotThereSaysSoInWords) {
    host->AddNet(L"kept");
    const QString path = file("missing/plant.qxfbproj");
    answer("WorkbenchError");
    EXPECT_FALSE(window->SaveFile(path, true));
    const QString text = said(0);
    EXPECT_TRUE(text.contains(path)) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("cannot be saved"))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("No such file or directory"))) << text.toStdString();
    EXPECT_FALSE(text.contains(QStringLiteral("unable to open database file"))) << text.toStdString();
    EXPECT_TRUE(host->Modified());
}

TEST_F(ProjectFilesTest, AWrongApplicationFolderIsNamedWithWhatItLacks) {
    test::ConfigPerson person;
    ASSERT_TRUE(placeConfig(person));
    host->Context().AppFolder = fromUtf8((folder.path() / "not-the-app").string());
    answer("WorkbenchError");
    EXPECT_FALSE(window->ExportBundle(file("bundle")));
    const std::string text = said(0).toStdString();
    EXPECT_EQ(text.find("KeyNotFount"), std::string::npos) << text;
    EXPECT_EQ(text.find("Type mismatch"), std::string::npos) << text;
    EXPECT_NE(text.find("not-the-app/../FB_Lib/RT/170100.ini"), std::string::npos) << text;
    EXPECT_EQ(window->findChild<QMessageBox*>(QStringLiteral("ComponentReports")), nullptr);
}

}  // namespace
}  // namespace qx
