// Writes a project file through the installed project store and opens it
// again, then shows the control-character selector through the installed Qt
// view layer (offscreen unless QT_QPA_PLATFORM names another platform),
// clicks a row and OK on its widgets, and prints what both gave.
#include <field_editors/frm_protocol_hex_selector.h>
#include <platform/basics/ansi.h>
#include <platform/host/host_context.h>
#include <project/project_file.h>
#include <qt/qt_modal_driver.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPushButton>
#include <QTableView>
#include <QTimer>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

namespace {

// A left click in the middle of the table row that shows this code.
void clickRow(QTableView& table, int row) {
    const QPoint at = table.visualRect(table.model()->index(row, 0)).center();
    const QPointF local(at), global(table.viewport()->mapToGlobal(at));
    QMouseEvent press(QEvent::MouseButtonPress, local, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent release(QEvent::MouseButtonRelease, local, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(table.viewport(), &press);
    QApplication::sendEvent(table.viewport(), &release);
}

int run(const std::filesystem::path& file) {
    // The project: one TCP/IP Config instance, written and read back.
    qx::Project written;
    written.Instances.push_back({170200, 1, L"Plant", {100, 16}});
    qx::saveProject(file.string(), written);
    const qx::Project opened = qx::loadProject(file.string());
    if (opened != written || opened.Instances.size() != 1) {
        std::cerr << "the project read back differs from the one written\n";
        return 1;
    }

    // The dialog: the person clicks the row of code 3 (ETX), then OK.
    qx::host().Driver = std::make_shared<qx::QtModalDriver>();
    std::string title;
    QTimer person;
    person.setInterval(5);
    QObject::connect(&person, &QTimer::timeout, [&] {
        QWidget* window = QApplication::activeModalWidget();
        if (!window || window->objectName() != QStringLiteral("frmProtocolHexSelector")) return;
        person.stop();
        title = window->windowTitle().toStdString();
        auto* table = window->findChild<QTableView*>(QStringLiteral("flgLowChars"));
        auto* ok = window->findChild<QPushButton*>(QStringLiteral("cmdOk"));
        if (table) clickRow(*table, 3);
        if (ok) ok->click();
    });
    person.start();
    uint8_t code = 0;
    const bool accepted = qx::frmProtocolHexSelector().Edit(code, qx::frmProtocolHexSelector::LowCharsTable);

    std::cout << "Instance " << qx::toUtf8(opened.Instances[0].Name) << " of " << opened.Instances[0].FatherID
              << ", dialog " << title << ", " << (accepted ? "OK" : "Cancel") << " with code " << int{code} << "\n";
    return accepted && code == 3 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const std::filesystem::path file =
        std::filesystem::temp_directory_path() /
        ("qxfb_consumer_qt_project_" + std::to_string(QCoreApplication::applicationPid()) + ".qxfbproj");
    try {
        std::filesystem::remove(file);
        const int status = run(file);
        std::filesystem::remove(file);
        return status;
    } catch (const std::exception& error) {
        std::cerr << "error: " << error.what() << "\n";
        return 1;
    }
}
