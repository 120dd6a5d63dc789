// Helpers of the Qt tests: acting on a modal window once it is up, and
// writing screenshots.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QPointer>
#include <QPushButton>
#include <QSpinBox>
#include <QString>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <vector>

namespace qx::test {

// The waits of onModal still pending; qt_test_main ends them when a test
// ends, so that none fires later into a test whose locals are gone.
inline std::vector<QPointer<QTimer>>& pendingModalWaits() {
    static std::vector<QPointer<QTimer>> waits;
    return waits;
}

inline void dropPendingModalWaits() {
    for (const QPointer<QTimer>& wait : pendingModalWaits()) delete wait.data();
    pendingModalWaits().clear();
}

// Runs the action on the modal window of that object name as soon as it is
// the active modal window; the nested event loop of its exec() runs it.
inline void onModal(const QString& name, std::function<void(QWidget&)> action) {
    auto* timer = new QTimer;
    pendingModalWaits().emplace_back(timer);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, name, action = std::move(action)] {
        QWidget* window = QApplication::activeModalWidget();
        if (!window || window->objectName() != name) return;
        timer->stop();
        timer->deleteLater();
        action(*window);
    });
    timer->start();
}

// Writes a screenshot of the window into QXFB_SCREENSHOT_DIR (CTest and the
// screenshots target set it); a run by hand without it writes nothing, so
// that no folder appears wherever the tests happen to start.
inline void saveScreenshot(QWidget& window, const QString& file) {
    const QString folder = qEnvironmentVariable("QXFB_SCREENSHOT_DIR");
    if (folder.isEmpty()) return;
    QDir().mkpath(folder);
    window.grab().save(QDir(folder).filePath(file));
}

// After a key that should have ended the dialog: one still up is ended by its
// Cancel button, so that the test fails instead of waiting for ever.
inline void endIfStillShown(QWidget& window) {
    if (!window.isVisible()) return;
    ADD_FAILURE() << window.objectName().toStdString() << " is still shown";
    if (auto* cancel = window.findChild<QPushButton*>(QStringLiteral("cmdCancel")))
        QTest::mouseClick(cancel, Qt::LeftButton);
}

// Chooses a memory type and address in the host's operand picker with keys,
// and presses OK with the mouse.
inline void pickWithKeys(QWidget& picker, int32_t operandType, int32_t address) {
    auto* kind = picker.findChild<QComboBox*>(QStringLiteral("cbKind"));
    auto* spin = picker.findChild<QSpinBox*>(QStringLiteral("spAddress"));
    auto* buttons = picker.findChild<QDialogButtonBox*>(QStringLiteral("buttons"));
    if (!kind || !spin || !buttons) {
        ADD_FAILURE() << "not the operand picker";
        return;
    }
    QTest::keyClick(kind, Qt::Key_Home);
    for (int i = 0; i < kind->count() && kind->currentData().toInt() != 0x10000 + operandType; ++i)
        QTest::keyClick(kind, Qt::Key_Down);
    QTest::keyClick(spin, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(spin, QString::number(address));
    QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
}

}  // namespace qx::test
