// The Qt tests run in a QApplication on the offscreen platform, unless the
// environment names another one (to watch them on a desktop).
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

#include "qt_test_support.h"

namespace {

// A wait for a window that never came ends with its test.
class DropPendingModalWaits : public ::testing::EmptyTestEventListener {
    void OnTestEnd(const ::testing::TestInfo&) override { qx::test::dropPendingModalWaits(); }
};

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The windows under test keep their settings in a folder of this run,
    // never in the user's own.
    QTemporaryDir settings;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new DropPendingModalWaits);
    return RUN_ALL_TESTS();
}
