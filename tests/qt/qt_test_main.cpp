// The Qt tests run in a QApplication on the offscreen platform, unless the
// environment names another one (to watch them on a desktop).
#include <gtest/gtest.h>

#include <QApplication>

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
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new DropPendingModalWaits);
    return RUN_ALL_TESTS();
}
