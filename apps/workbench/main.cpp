// qxfb-workbench: a desktop host of the component. It loads libQxFBCom2.so
// through its entry points as the ladder IDE does, and keeps projects in a
// file of their own.
#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QMessageBox>
#include <iostream>

#include "component_loader.h"
#include "platform/basics/ansi.h"
#include "qt/qt_text.h"
#include "workbench_window.h"

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("qxfb-workbench"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Desktop host of the QxFBCom2 function-block component"));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("project"), QStringLiteral("A project file to open."));
    const QCommandLineOption component(QStringLiteral("component"), QStringLiteral("The component to load."),
                                       QStringLiteral("path"));
    const QCommandLineOption appFolder(QStringLiteral("app-folder"),
                                       QStringLiteral("The host's application folder inside the component."),
                                       QStringLiteral("folder"));
    parser.addOption(component);
    parser.addOption(appFolder);
    parser.process(app);

    qx::LoadedComponent loaded;
    const std::string path =
        parser.isSet(component) ? QFile::encodeName(parser.value(component)).toStdString() : qx::defaultComponentPath();
    if (!loaded.Load(path)) {
        QMessageBox::critical(nullptr, QStringLiteral("qxfb-workbench"), QString::fromStdString(loaded.Error()));
        return 1;
    }
    try {
        qx::WorkbenchHost host(loaded);
        if (parser.isSet(appFolder))
            host.Context().AppFolder = qx::fromUtf8(QFile::encodeName(parser.value(appFolder)).toStdString());
        qx::WorkbenchWindow window(host);
        window.show();
        if (!parser.positionalArguments().isEmpty()) window.OpenFile(parser.positionalArguments().first());
        return QApplication::exec();
    } catch (const std::exception& e) {
        QMessageBox::critical(nullptr, QStringLiteral("qxfb-workbench"), QString::fromUtf8(e.what()));
        return 1;
    }
}
