#include "workbench_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QInputDialog>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QUndoCommand>
#include <QVBoxLayout>
#include <filesystem>

#include "checksum_table_dialog.h"
#include "framework/shared_helpers.h"
#include "inspect/image_words.h"
#include "platform/basics/ansi.h"
#include "platform/basics/runtime_error.h"
#include "platform/host/host_services.h"
#include "project/download_bundle.h"
#include "project/project_file.h"
#include "qt/colours.h"
#include "qt/qt_modal_driver.h"
#include "qt/qt_text.h"
#include "qt/view_checksums.h"

namespace qx {

namespace {

constexpr int MaxRecentFiles = 8;

// The user's settings of the workbench: an ini file in the user's
// configuration folder, so that tests can point it elsewhere.
QSettings userSettings() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("QxFBCom2"),
                     QStringLiteral("workbench"));
}

// What a palette or ladder item stands for.
constexpr int MethodIdRole = Qt::UserRole;
constexpr int NetRole = Qt::UserRole + 1;
constexpr int PlaceRole = Qt::UserRole + 2;

// A block's visible operands, each a row under the block: its caption and
// what it is linked to.
void addOperandRows(QTreeWidgetItem& block, const OperandCollectionPtr& operands) {
    if (!operands) return;
    for (int32_t i = 1; i <= operands->Count(); ++i) {
        const clsOperand& operand = *operands->Item(i);
        auto* row = new QTreeWidgetItem(&block);
        row->setText(0, toQString(operand.OperandCaption()));
        row->setText(2, operand.IsNew() ? QStringLiteral("(not linked)") : toQString(GetOperandDisplayText(operand)));
        row->setData(0, NetRole, block.data(0, NetRole));
        row->setData(0, PlaceRole, block.data(0, PlaceRole));
        row->setFlags(row->flags() & ~Qt::ItemIsSelectable);
    }
}

// The first picture the component gives: it has none for some operations,
// which then show their menu icon, or their family's.
QIcon iconOf(std::initializer_list<PicturePtr> pictures) {
    for (const PicturePtr& picture : pictures)
        if (picture) return QIcon(toQPixmap(picture));
    return QIcon();
}

QIcon blockIcon(itfFBMethod& operation, const WorkbenchHost& host) {
    const FatherPtr family = host.Family(familyOf(operation.itfFBMethod_MethodID()));
    return iconOf({operation.itfFBMethod_LadderImage(), operation.itfFBMethod_MenuIcon(),
                   family ? family->itfFBFather_MenuIcon() : nullptr});
}

// The runtime versions of a family found in the runtime folder.
QStringList versionsOf(itfFBFather& family) {
    QStringList versions;
    for (int32_t version : family.itfFBFather_HexFileVersionsList()) versions << QString::number(version);
    return versions;
}

// One change of the project for the undo stack: the whole project before
// and after it, as the project file would keep it. The change is made
// already when the command is pushed, so its first redo does nothing.
class ProjectChange : public QUndoCommand {
public:
    ProjectChange(const QString& text, Project before, Project after, std::function<void(const Project&)> restore)
        : QUndoCommand(text), before_(std::move(before)), after_(std::move(after)), restore_(std::move(restore)) {}
    void undo() override { restore_(before_); }
    void redo() override {
        if (!done_) {
            done_ = true;
            return;
        }
        restore_(after_);
    }

private:
    Project before_, after_;
    std::function<void(const Project&)> restore_;
    bool done_ = false;
};

// A project is held twice per change; a long session keeps the last ones.
constexpr int UndoLimit = 100;

// A block's Config: its instance, and on the Config itself what it opens,
// the serial port (byte 0 of its image) or the TCP/IP socket (its first
// operand).
QString configText(itfFBMethod& operation) {
    const int32_t instance = operation.itfFBMethod_FatherInstanceNum();
    if (!instance) return {};
    QString text = QStringLiteral("%1 %2").arg(instance).arg(toQString(operation.itfFBMethod_FatherInstanceName()));
    if (operation.itfFBMethod_MethodID() == 170101) {
        const Bytes image = operation.itfFBMethod_BinaryOperands();
        if (!image.empty() && !words::comPort(image[0]).empty())
            text += QStringLiteral(", ") + QString::fromStdString(words::comPort(image[0]));
    } else if (operation.itfFBMethod_MethodID() == 170201) {
        const OperandCollectionPtr in = operation.itfFBMethod_InOperands();
        if (in && in->Count() > 0 && in->Item(1) && !in->Item(1)->IsNew())
            text += QStringLiteral(", socket ") + toQString(GetOperandDisplayText(*in->Item(1)));
    }
    return text;
}

QTreeWidget* newTree(const QString& name, const QStringList& headers, QWidget* parent) {
    auto* tree = new QTreeWidget(parent);
    tree->setObjectName(name);
    tree->setHeaderLabels(headers);
    tree->setIconSize(QSize(16, 16));
    tree->setExpandsOnDoubleClick(false);
    // Column widths from the first rows: a plant's ladder has thousands.
    tree->header()->setResizeContentsPrecision(200);
    return tree;
}

}  // namespace

WorkbenchWindow::WorkbenchWindow(WorkbenchHost& host, QWidget* parent)
    : QMainWindow(parent),
      host_(host),
      palette_(newTree(QStringLiteral("palette"), {QStringLiteral("Operation")}, this)),
      ladder_(newTree(QStringLiteral("ladder"),
                      {QStringLiteral("Block"), QStringLiteral("Config"), QStringLiteral("Operation / operand")},
                      this)),
      instances_(newTree(QStringLiteral("instances"),
                         {QStringLiteral("No."), QStringLiteral("Name"), QStringLiteral("Data")}, this)),
      operands_(newTree(QStringLiteral("operands"),
                        {QStringLiteral("Operand"), QStringLiteral("Description"), QStringLiteral("Links"),
                         QStringLiteral("Used by")},
                        this)),
      problems_(newTree(QStringLiteral("problems"), {QStringLiteral("Problem")}, this)) {
    setObjectName(QStringLiteral("WorkbenchWindow"));
    // Every dialog of the component opens over this window from now on.
    previousDriver_ = host_.Context().Driver;
    host_.Context().Driver = std::make_shared<QtModalDriver>(this);
    for (const auto& [father, instances] : host_.AllInstances()) {
        const int32_t id = father;
        instances->Choose = [this, id](const std::vector<FBInstanceRecord>& records, int32_t current) {
            return chooseInstance(id, records, current);
        };
        instances->Help = [this](int32_t fatherId) { showFamilyHelp(fatherId); };
        instances->Changed = [this] { refreshInstances(); };
    }

    setCentralWidget(ladder_);
    // Every row of a ladder is one line: Qt need not measure each of them.
    ladder_->setUniformRowHeights(true);
    instances_->setUniformRowHeights(true);
    auto* paletteDock = new QDockWidget(QStringLiteral("Operations"), this);
    paletteDock->setObjectName(QStringLiteral("paletteDock"));
    paletteDock->setWidget(palette_);
    paletteDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    addDockWidget(Qt::LeftDockWidgetArea, paletteDock);
    auto* instancesDock = new QDockWidget(QStringLiteral("Instances"), this);
    instancesDock->setObjectName(QStringLiteral("instancesDock"));
    instancesDock->setWidget(instances_);
    instancesDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    addDockWidget(Qt::RightDockWidgetArea, instancesDock);
    auto* operandsDock = new QDockWidget(QStringLiteral("Operands"), this);
    operandsDock->setObjectName(QStringLiteral("operandsDock"));
    operandsDock->setWidget(operands_);
    operandsDock->setFeatures(QDockWidget::NoDockWidgetFeatures);
    addDockWidget(Qt::BottomDockWidgetArea, operandsDock);
    resizeDocks({operandsDock}, {150}, Qt::Vertical);
    // The check's findings, beside the operands; a double-click goes to the block.
    problemsDock_ = new QDockWidget(QStringLiteral("Problems"), this);
    problemsDock_->setObjectName(QStringLiteral("problemsDock"));
    problemsDock_->setWidget(problems_);
    problemsDock_->setFeatures(QDockWidget::DockWidgetClosable);
    addDockWidget(Qt::BottomDockWidgetArea, problemsDock_);
    tabifyDockWidget(operandsDock, problemsDock_);
    operandsDock->raise();
    problems_->setRootIsDecorated(false);
    connect(problems_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* problem) {
        for (int n = 0; n < ladder_->topLevelItemCount(); ++n) {
            QTreeWidgetItem* net = ladder_->topLevelItem(n);
            for (int b = 0; b < net->childCount(); ++b)
                if (net->child(b)->data(0, NetRole) == problem->data(0, NetRole) &&
                    net->child(b)->data(0, PlaceRole) == problem->data(0, PlaceRole)) {
                    ladder_->setCurrentItem(net->child(b));
                    ladder_->setFocus();
                }
        }
    });
    operands_->setRootIsDecorated(false);
    operands_->setUniformRowHeights(true);

    undo_.setUndoLimit(UndoLimit);
    // Back at the state of the file, the project is unchanged again.
    connect(&undo_, &QUndoStack::indexChanged, this, [this] {
        if (undo_.isClean())
            host_.MarkSaved();
        else
            host_.MarkModified();
        updateTitle();
    });
    for (QTreeWidget* tree : {ladder_, operands_, instances_}) {
        tree->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(tree, &QTreeWidget::customContextMenuRequested, this, [this, tree](const QPoint& at) {
            if (std::unique_ptr<QMenu> menu = ContextMenuFor(*tree, tree->itemAt(at)))
                menu->exec(tree->viewport()->mapToGlobal(at));
        });
    }
    buildMenus();
    fillPalette();
    connect(palette_, &QTreeWidget::itemDoubleClicked, this, [this] { placeCurrent(); });
    connect(palette_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (item) statusBar()->showMessage(item->toolTip(0));
    });
    connect(ladder_, &QTreeWidget::itemDoubleClicked, this, [this] { editCurrent(); });
    resize(1100, 640);
    // As the person left it last time.
    const QSettings settings = userSettings();
    restoreGeometry(settings.value(QStringLiteral("geometry")).toByteArray());
    restoreState(settings.value(QStringLiteral("panes")).toByteArray());
    refresh();
}

WorkbenchWindow::~WorkbenchWindow() {
    host_.Context().Driver = previousDriver_;
    // The host outlives the window: nothing of it may call back into it.
    for (const auto& [father, instances] : host_.AllInstances()) {
        instances->Choose = nullptr;
        instances->Help = nullptr;
        instances->Changed = nullptr;
    }
}

void WorkbenchWindow::buildMenus() {
    auto add = [this](QMenu* menu, const QString& name, const QString& text, const QKeySequence& keys, auto slot) {
        QAction* action = menu->addAction(text);
        action->setObjectName(name);
        if (!keys.isEmpty()) action->setShortcut(keys);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    add(file, QStringLiteral("actionNew"), QStringLiteral("&New project"), QKeySequence::New, [this] { newProject(); });
    add(file, QStringLiteral("actionOpen"), QStringLiteral("&Open..."), QKeySequence::Open, [this] { openProject(); });
    recentMenu_ = file->addMenu(QStringLiteral("Open &recent"));
    recentMenu_->setObjectName(QStringLiteral("menuRecent"));
    fillRecentMenu();
    add(file, QStringLiteral("actionSave"), QStringLiteral("&Save"), QKeySequence::Save, [this] { saveProject(); });
    QAction* saveAs = add(file, QStringLiteral("actionSaveAs"), QStringLiteral("Save &as..."), QKeySequence(),
                          [this] { saveProjectAs(); });
    // Ctrl+Shift+S everywhere, also where the platform binds no key to Save as.
    QList<QKeySequence> saveAsKeys{QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)};
    for (const QKeySequence& keys : QKeySequence::keyBindings(QKeySequence::SaveAs))
        if (!saveAsKeys.contains(keys)) saveAsKeys << keys;
    saveAs->setShortcuts(saveAsKeys);
    file->addSeparator();
    add(file, QStringLiteral("actionCheckProject"), QStringLiteral("&Check project"), QKeySequence(Qt::Key_F7),
        [this] { CheckProject(); });
    add(file, QStringLiteral("actionExportBundle"), QStringLiteral("&Export download bundle..."),
        QKeySequence(Qt::CTRL | Qt::Key_E), [this] { exportBundle(); });
    file->addSeparator();
    add(file, QStringLiteral("actionQuit"), QStringLiteral("&Quit"), QKeySequence::Quit, [this] { close(); });

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edit"));
    QAction* undo = undo_.createUndoAction(this, QStringLiteral("&Undo"));
    undo->setObjectName(QStringLiteral("actionUndo"));
    undo->setShortcuts(QKeySequence::Undo);
    QAction* redo = undo_.createRedoAction(this, QStringLiteral("&Redo"));
    redo->setObjectName(QStringLiteral("actionRedo"));
    redo->setShortcuts(QKeySequence::Redo);
    edit->addAction(undo);
    edit->addAction(redo);
    edit->addSeparator();
    add(edit, QStringLiteral("actionAddNet"), QStringLiteral("Add &net"), QKeySequence(Qt::CTRL | Qt::Key_R), [this] {
        changeProject(QStringLiteral("Add net"), [this] {
            host_.AddNet();
            return true;
        });
        refresh();
        ladder_->setCurrentItem(ladder_->topLevelItem(ladder_->topLevelItemCount() - 1));
    });
    add(edit, QStringLiteral("actionPlace"), QStringLiteral("&Place operation"), QKeySequence(Qt::Key_Insert),
        [this] { placeCurrent(); });
    add(edit, QStringLiteral("actionEdit"), QStringLiteral("&Edit operation..."), QKeySequence(Qt::Key_F2),
        [this] { editCurrent(); });
    add(edit, QStringLiteral("actionDelete"), QStringLiteral("&Delete operation"), QKeySequence::Delete,
        [this] { deleteCurrent(); });
    add(edit, QStringLiteral("actionDeleteInstance"), QStringLiteral("Delete &instance"), QKeySequence(),
        [this] { deleteCurrentInstance(); });
    add(edit, QStringLiteral("actionMoveOperand"), QStringLiteral("&Move operand..."),
        QKeySequence(Qt::CTRL | Qt::Key_M), [this] { MoveCurrentOperand(); });
    add(edit, QStringLiteral("actionRuntimeVersion"), QStringLiteral("&Runtime version..."), QKeySequence(),
        [this] { chooseRuntimeVersion(); });

    QMenu* settings = menuBar()->addMenu(QStringLiteral("&Settings"));
    actionExtendedOperands_ = add(settings, QStringLiteral("actionExtendedOperands"),
                                  QStringLiteral("&Extended operands"), QKeySequence(), [this](bool on) {
                                      changeProject(QStringLiteral("Extended operands"), [this, on] {
                                          host_.Context().ExtendedOperands = on;
                                          return true;
                                      });
                                      updateTitle();
                                  });
    actionExtendedOperands_->setCheckable(true);
    add(settings, QStringLiteral("actionAppFolder"), QStringLiteral("&Application folder..."), QKeySequence(),
        [this] { chooseAppFolder(); });
    add(settings, QStringLiteral("actionChecksums"), QStringLiteral("&Checksums..."), QKeySequence(),
        [this] { chooseChecksums(); });

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    add(help, QStringLiteral("actionFamilyHelp"), QStringLiteral("Help on the &family"), QKeySequence::HelpContents,
        [this] {
            QTreeWidgetItem* item = palette_->currentItem();
            const int32_t method = item ? item->data(0, MethodIdRole).toInt() : 0;
            // The operations ask their family's help as the dialogs do.
            guarded([&] {
                if (method)
                    showFamilyHelp(familyOf(method));
                else if (!host_.Families().empty())
                    showFamilyHelp(host_.Families().front()->itfFBFather_FatherID());
            });
        });
}

void WorkbenchWindow::fillPalette() {
    for (const FatherPtr& family : host_.Families()) {
        auto* familyItem = new QTreeWidgetItem(palette_, {toQString(family->itfFBFather_Title())});
        familyItem->setIcon(0, iconOf({family->itfFBFather_MenuIcon()}));
        familyItem->setToolTip(0, toQString(family->itfFBFather_Description()));
        const MethodCollectionPtr methods = family->itfFBFather_GetFBmethodsCollection();
        for (int32_t i = 1; i <= methods->Count(); ++i) {
            const MethodPtr& method = methods->Item(i);
            auto* item = new QTreeWidgetItem(familyItem, {toQString(method->itfFBMethod_MethodName())});
            item->setIcon(0, iconOf({method->itfFBMethod_MenuIcon(), family->itfFBFather_MenuIcon()}));
            item->setToolTip(0, toQString(method->itfFBMethod_Description()));
            item->setData(0, MethodIdRole, method->itfFBMethod_MethodID());
        }
    }
    palette_->expandAll();
}

void WorkbenchWindow::refresh() {
    const auto place = currentPlace();
    ladder_->clear();
    for (size_t n = 0; n < host_.Nets().size(); ++n) {
        const WorkbenchHost::Net& net = host_.Nets()[n];
        QString title = QStringLiteral("Net %1").arg(n + 1);
        if (!net.Comment.empty()) title += QStringLiteral(": ") + toQString(net.Comment);
        auto* netItem = new QTreeWidgetItem(ladder_, {title});
        netItem->setFirstColumnSpanned(true);
        netItem->setData(0, NetRole, static_cast<qulonglong>(n));
        netItem->setData(0, PlaceRole, -1);
        for (size_t i = 0; i < net.Operations.size(); ++i) {
            itfFBMethod& operation = *net.Operations[i];
            auto* item = new QTreeWidgetItem(netItem, {toQString(operation.itfFBMethod_Title()), configText(operation),
                                                       toQString(operation.itfFBMethod_MethodName())});
            // The images are those of the MethodID: made into icons once.
            auto icon = blockIcons_.find(operation.itfFBMethod_MethodID());
            if (icon == blockIcons_.end())
                icon = blockIcons_.emplace(operation.itfFBMethod_MethodID(), blockIcon(operation, host_)).first;
            item->setIcon(0, icon->second);
            item->setToolTip(0, toQString(operation.itfFBMethod_Description()));
            item->setData(0, NetRole, static_cast<qulonglong>(n));
            item->setData(0, PlaceRole, static_cast<qulonglong>(i));
            item->setData(0, MethodIdRole, operation.itfFBMethod_MethodID());
            addOperandRows(*item, operation.itfFBMethod_VisbleOutOperands());
            if (place && place->first == n && place->second == i) ladder_->setCurrentItem(item);
        }
        for (const StoredOperation& kept : net.Unopened) {
            auto* item = new QTreeWidgetItem(netItem, {QStringLiteral("%1").arg(kept.MethodID), QString(),
                                                       QStringLiteral("not reopened; kept as stored")});
            item->setData(0, NetRole, static_cast<qulonglong>(n));
            item->setData(0, PlaceRole, -1);
            item->setDisabled(true);
        }
        if (place && place->first == n && !ladder_->currentItem()) ladder_->setCurrentItem(netItem);
    }
    ladder_->expandAll();
    for (int column = 0; column < ladder_->columnCount(); ++column) ladder_->resizeColumnToContents(column);
    actionExtendedOperands_->setChecked(host_.Context().ExtendedOperands);
    setViewChecksumTable(host_.Checksums());
    refreshInstances();
    refreshOperands();
    updateTitle();
}

void WorkbenchWindow::refreshInstances() {
    instances_->clear();
    for (const auto& [father, instances] : host_.AllInstances()) {
        const FatherPtr family = host_.Family(father);
        auto* familyItem = new QTreeWidgetItem(
            instances_, {family ? toQString(family->itfFBFather_Title()) : QString::number(father)});
        familyItem->setFirstColumnSpanned(true);
        for (const StoredInstance& instance : instances->Stored()) {
            auto* item =
                new QTreeWidgetItem(familyItem, {QString::number(instance.InstanceNum), toQString(instance.Name),
                                                 QStringLiteral("%1 bytes").arg(instance.Data.size())});
            item->setData(0, Qt::UserRole, father);
            item->setData(0, Qt::UserRole + 1, instance.InstanceNum);
        }
    }
    instances_->expandAll();
    for (int column = 0; column < instances_->columnCount(); ++column) instances_->resizeColumnToContents(column);
}

void WorkbenchWindow::refreshOperands() {
    operands_->clear();
    const clsOperandTypeNames names;
    auto placeText = [this](const std::pair<size_t, size_t>& place) {
        return toQString(host_.BlockName(place.first, place.second));
    };
    for (const WorkbenchHost::OperandUse& use : host_.OperandUses()) {
        QStringList users;
        for (const auto& place : use.Links) users << placeText(place);
        for (const auto& place : use.FindOnly) users << placeText(place) + QStringLiteral(" (in its image)");
        for (const auto& [family, number] : use.Instances) {
            std::wstring name;
            host_.InstancesOf(family).GetInstanceName(number, name);
            users << QStringLiteral("instance %1 %2 (its address table)").arg(number).arg(toQString(name));
        }
        auto* item = new QTreeWidgetItem(
            operands_, {toQString(names.GetName(use.Type)) + QStringLiteral(" %1").arg(use.Address),
                        toQString(use.Description), QString::number(use.LinkCount), users.join(QStringLiteral("; "))});
        item->setData(0, Qt::UserRole, use.Type);
        item->setData(0, Qt::UserRole + 1, use.Address);
        item->setData(0, Qt::UserRole + 2, use.NetID);
        item->setData(0, Qt::UserRole + 3, use.Mode);
    }
    for (int column = 0; column < operands_->columnCount(); ++column) operands_->resizeColumnToContents(column);
}

bool WorkbenchWindow::MoveCurrentOperand() {
    const QTreeWidgetItem* item = operands_->currentItem();
    if (!item) return false;
    const int32_t type = item->data(0, Qt::UserRole).toInt();
    const int32_t address = item->data(0, Qt::UserRole + 1).toInt();
    const int32_t netId = item->data(0, Qt::UserRole + 2).toInt();
    if (item->data(0, Qt::UserRole + 3).toInt() != 1) {
        showError(QStringLiteral("%1 is a constant; only memory operands move.").arg(item->text(0)));
        return false;
    }
    QInputDialog ask(this);
    ask.setObjectName(QStringLiteral("MoveOperand"));
    ask.setWindowTitle(QStringLiteral("Move operand"));
    ask.setLabelText(QStringLiteral("New address of %1:").arg(item->text(0)));
    ask.setInputMode(QInputDialog::IntInput);
    ask.setIntRange(0, 65535);
    ask.setIntValue(address);
    if (ask.exec() != QDialog::Accepted) return false;
    const QString from = item->text(0);
    WorkbenchHost::Moved changed;
    const bool moved = changeProject(QStringLiteral("Move %1 to %2").arg(from).arg(ask.intValue()), [&] {
        return guarded([&] { changed = host_.MoveOperand(netId, type, address, ask.intValue()); });
    });
    // Refreshed also after an image refused the command halfway.
    refresh();
    if (moved)
        statusBar()->showMessage(QStringLiteral("%1 moved to %2; %3 operations and %4 instances changed.")
                                     .arg(from)
                                     .arg(ask.intValue())
                                     .arg(changed.Operations.size())
                                     .arg(changed.Instances.size()));
    return moved;
}

bool WorkbenchWindow::guarded(const std::function<void()>& action) {
    const size_t reportsBefore = host_.Context().Reports.size();
    bool done = false;
    QString error;
    try {
        action();
        done = true;
    } catch (const RuntimeError& e) {
        error = toQString(e.Description());
    } catch (const std::exception& e) {
        error = QString::fromUtf8(e.what());
    }
    std::vector<ErrorReport>& reports = host_.Context().Reports;
    QStringList lines;
    for (size_t i = reportsBefore; i < reports.size(); ++i) {
        const ErrorReport& report = reports[i];
        // A family whose ini file the runtime folder lacks, or whose ini file
        // lacks a key, fails with an error that names neither: said in words.
        const int key = static_cast<int>(report.Text.rfind(L"Key: "));
        const int family = static_cast<int>(report.Text.rfind(L"FatherID: "));
        if (report.Name == L"KeyNotFount" && key >= 0 && family >= 0) {
            const QString text = toQString(report.Text);
            const QString id = text.mid(family + 10).section(QLatin1Char('\n'), 0, 0).trimmed();
            const QString ini = toQString(host_.Context().RuntimeFolder()) + id + QStringLiteral(".ini");
            error = (QFileInfo(ini).isFile()
                         ? QStringLiteral("%1 has no value for %2.").arg(ini, text.mid(key + 5).trimmed())
                         : QStringLiteral("The runtime folder has no file %1.").arg(ini)) +
                    QStringLiteral(
                        " The application folder %1 (Settings, Application folder) must hold the "
                        "runtime folder FB_Lib/RT of the families.")
                        .arg(toQString(host_.Context().AppFolder));
            lines.clear();
            break;
        }
        lines
            << QStringLiteral("%1 (%2): %3").arg(toQString(report.Name)).arg(report.Number).arg(toQString(report.Text));
    }
    reports.resize(reportsBefore);
    if (!error.isEmpty()) showError(error);
    // What else the component reported meanwhile, in its own words.
    if (!lines.isEmpty())
        showBox(QStringLiteral("ComponentReports"), QMessageBox::Warning, QStringLiteral("QxFBCom2 workbench"),
                QStringLiteral("The component reported:\n") + lines.join('\n'));
    return done;
}

void WorkbenchWindow::updateTitle() {
    const QString name = filePath_.isEmpty() ? QStringLiteral("untitled") : QFileInfo(filePath_).fileName();
    setWindowTitle(name + (readOnly_ ? QStringLiteral(" (read-only)") : QString()) +
                   (host_.Modified() ? QStringLiteral(" *") : QString()) + QStringLiteral(" - QxFBCom2 workbench"));
}

std::optional<std::pair<size_t, size_t>> WorkbenchWindow::currentPlace() const {
    const QTreeWidgetItem* item = ladder_->currentItem();
    if (!item) return std::nullopt;
    const int place = item->data(0, PlaceRole).toInt();
    return std::pair<size_t, size_t>(item->data(0, NetRole).toULongLong(),
                                     place < 0 ? SIZE_MAX : static_cast<size_t>(place));
}

MethodPtr WorkbenchWindow::CurrentOperation() const {
    const auto place = currentPlace();
    if (!place || place->second == SIZE_MAX || place->first >= host_.Nets().size()) return nullptr;
    const auto& operations = host_.Nets()[place->first].Operations;
    return place->second < operations.size() ? operations[place->second] : nullptr;
}

bool WorkbenchWindow::PlaceOperation(int32_t methodId) {
    const auto place = currentPlace();
    size_t net = 0;
    MethodPtr placed;
    // A new net for it, when there is none, is part of the change.
    changeProject(QStringLiteral("Place operation"), [&] {
        net = place && place->first < host_.Nets().size() ? place->first : host_.AddNet();
        guarded([&] { placed = host_.PlaceOperation(net, methodId); });
        return placed != nullptr;
    });
    refresh();
    if (!placed) return false;
    QTreeWidgetItem* netItem = ladder_->topLevelItem(static_cast<int>(net));
    ladder_->setCurrentItem(netItem->child(static_cast<int>(host_.Nets()[net].Operations.size()) - 1));
    return true;
}

void WorkbenchWindow::placeCurrent() {
    QTreeWidgetItem* item = palette_->currentItem();
    const int32_t method = item ? item->data(0, MethodIdRole).toInt() : 0;
    if (method) PlaceOperation(method);
}

void WorkbenchWindow::editCurrent() {
    const MethodPtr operation = CurrentOperation();
    const auto place = currentPlace();
    if (!operation) return;
    changeProject(QStringLiteral("Edit %1").arg(toQString(host_.BlockName(place->first, place->second))), [&] {
        bool ok = false;
        guarded([&] { ok = host_.EditOperation(operation); });
        return ok;
    });
    refresh();
}

void WorkbenchWindow::deleteCurrent() {
    const MethodPtr operation = CurrentOperation();
    const auto place = currentPlace();
    if (!operation) return;
    const QString block = toQString(host_.BlockName(place->first, place->second));
    // A Config that other blocks run on: they would lose it.
    const int32_t family = familyOf(operation->itfFBMethod_MethodID());
    const int32_t instance = operation->itfFBMethod_FatherInstanceNum();
    if (WorkbenchHost::IsConfig(*operation) && instance != 0) {
        const QString users = usersOf(family, instance, *place);
        if (!users.isEmpty() &&
            showBox(QStringLiteral("DeleteConfig"), QMessageBox::Warning, QStringLiteral("Delete operation"),
                    QStringLiteral("%1 is the Config of instance %2 %3, which %4. Delete the Config anyway? The "
                                   "instance stays for them.")
                        .arg(block)
                        .arg(instance)
                        .arg(toQString(operation->itfFBMethod_FatherInstanceName()))
                        .arg(users),
                    QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
            return;
    }
    changeProject(QStringLiteral("Delete %1").arg(block),
                  [&] { return guarded([&] { host_.RemoveOperation(place->first, place->second); }); });
    refresh();
}

void WorkbenchWindow::deleteCurrentInstance() {
    const QTreeWidgetItem* item = instances_->currentItem();
    if (!item || !item->parent()) return;
    const int32_t family = item->data(0, Qt::UserRole).toInt();
    const int32_t number = item->data(0, Qt::UserRole + 1).toInt();
    if (const QString users = usersOf(family, number); !users.isEmpty()) {
        showError(QStringLiteral("Instance %1 %2 cannot be deleted: %3 it.").arg(number).arg(item->text(1), users));
        return;
    }
    changeProject(QStringLiteral("Delete instance %1 %2").arg(number).arg(item->text(1)),
                  [&] { return guarded([&] { host_.RemoveInstance(family, number); }); });
    refresh();
}

QString WorkbenchWindow::usersOf(int32_t family, int32_t instance, std::pair<size_t, size_t> except) const {
    QStringList users;
    for (const auto& [n, i] : host_.UsersOfInstance(family, instance, except))
        users << toQString(host_.BlockName(n, i));
    if (users.isEmpty()) return {};
    return users.join(QStringLiteral(", ")) + (users.size() == 1 ? QStringLiteral(" uses") : QStringLiteral(" use"));
}

bool WorkbenchWindow::changeProject(const QString& text, const std::function<bool()>& change) {
    Project before = host_.ToProject();
    const bool done = change();
    // Also a change that ended in an error or a Cancel is kept when it
    // left anything different.
    Project after = host_.ToProject();
    if (after != before)
        undo_.push(new ProjectChange(text, std::move(before), std::move(after),
                                     [this](const Project& project) { restoreProject(project); }));
    return done;
}

void WorkbenchWindow::restoreProject(const Project& project) {
    guarded([&] { host_.Open(project, true); });
    refresh();
}

std::unique_ptr<QMenu> WorkbenchWindow::ContextMenuFor(QTreeWidget& tree, QTreeWidgetItem* item) {
    if (!item) return nullptr;
    auto menu = std::make_unique<QMenu>(this);
    menu->setObjectName(QStringLiteral("contextMenu"));
    const auto action = [this](const char* name) { return findChild<QAction*>(QString::fromLatin1(name)); };
    tree.setCurrentItem(item);
    if (&tree == ladder_) {
        if (CurrentOperation()) {
            for (const char* name : {"actionEdit", "actionDelete", "actionRuntimeVersion"})
                menu->addAction(action(name));
        } else {
            menu->addAction(action("actionPlace"));
            menu->addAction(action("actionAddNet"));
        }
    } else if (&tree == operands_) {
        menu->addAction(action("actionMoveOperand"));
    } else if (&tree == instances_) {
        if (!item->parent()) return nullptr;
        menu->addAction(action("actionDeleteInstance"));
    }
    return menu;
}

void WorkbenchWindow::chooseRuntimeVersion() {
    const MethodPtr operation = CurrentOperation();
    if (!operation) return;
    const FatherPtr family = host_.Family(familyOf(operation->itfFBMethod_MethodID()));
    QStringList versions;
    if (!family || !guarded([&] { versions = versionsOf(*family); })) return;
    if (versions.isEmpty()) {
        showError(QStringLiteral("The runtime folder has no version of this family."));
        return;
    }
    bool ok = false;
    const QString current = QString::number(operation->itfFBMethod_HexFileVersion());
    const QString chosen =
        QInputDialog::getItem(this, QStringLiteral("Runtime version"), QStringLiteral("Version of the runtime:"),
                              versions, std::max<int>(0, static_cast<int>(versions.indexOf(current))), false, &ok);
    if (!ok || chosen == current) return;
    changeProject(QStringLiteral("Runtime version %1").arg(chosen), [&] {
        operation->itfFBMethod_HexFileVersion(chosen.toInt());
        host_.MarkModified();
        return true;
    });
    refresh();
}

void WorkbenchWindow::chooseAppFolder() {
    const QString folder = QFileDialog::getExistingDirectory(this, QStringLiteral("Application folder"),
                                                             toQString(host_.Context().AppFolder));
    if (folder.isEmpty()) return;
    changeProject(QStringLiteral("Application folder"), [&] {
        host_.Context().AppFolder = fromQString(folder);
        host_.MarkModified();
        return true;
    });
    updateTitle();
}

void WorkbenchWindow::chooseChecksums() {
    ChecksumTableDialog dialog(host_.Checksums(), this);
    if (dialog.exec() != QDialog::Accepted || dialog.Table() == host_.Checksums()) return;
    changeProject(QStringLiteral("Checksums"), [&] {
        host_.Checksums(dialog.Table());
        host_.MarkModified();
        return true;
    });
    refresh();
}

void WorkbenchWindow::showFamilyHelp(int32_t fatherId) {
    const FatherPtr family = host_.Family(fatherId);
    if (!family) return;
    QString text = QStringLiteral("<b>%1</b> (FatherID %2)<p>%3</p><p>Operations:</p><ul>")
                       .arg(toQString(family->itfFBFather_Title()).toHtmlEscaped())
                       .arg(fatherId)
                       .arg(toQString(family->itfFBFather_Description()).toHtmlEscaped());
    const MethodCollectionPtr methods = family->itfFBFather_GetFBmethodsCollection();
    for (int32_t i = 1; i <= methods->Count(); ++i)
        text += QStringLiteral("<li><b>%1</b>: %2</li>")
                    .arg(toQString(methods->Item(i)->itfFBMethod_MethodName()).toHtmlEscaped(),
                         toQString(methods->Item(i)->itfFBMethod_Description()).toHtmlEscaped());
    const QStringList versions = versionsOf(*family);
    text += QStringLiteral("</ul><p>Runtime versions in %1: %2</p>")
                .arg(toQString(host_.Context().RuntimeFolder()).toHtmlEscaped(),
                     versions.isEmpty() ? QStringLiteral("none") : versions.join(QStringLiteral(", ")));
    showBox(QStringLiteral("FamilyHelp"), QMessageBox::Information, QStringLiteral("Help"), text);
}

std::optional<int32_t> WorkbenchWindow::chooseInstance(int32_t fatherId, const std::vector<FBInstanceRecord>& records,
                                                       int32_t current) {
    QDialog dialog(QApplication::activeModalWidget() ? QApplication::activeModalWidget() : this);
    dialog.setObjectName(QStringLiteral("SelectInstance"));
    const FatherPtr family = host_.Family(fatherId);
    dialog.setWindowTitle(QStringLiteral("Select the %1 instance")
                              .arg(family ? toQString(family->itfFBFather_Title()) : QString::number(fatherId)));
    auto* list = new QListWidget(&dialog);
    list->setObjectName(QStringLiteral("lstInstances"));
    for (const FBInstanceRecord& record : records) {
        auto* item = new QListWidgetItem(
            QStringLiteral("%1  %2").arg(record.InstanceNum).arg(toQString(record.InstanceName)), list);
        item->setData(Qt::UserRole, record.InstanceNum);
        if (record.InstanceNum == current || (current == 0 && list->count() == 1)) list->setCurrentItem(item);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    buttons->setObjectName(QStringLiteral("buttons"));
    buttons->button(QDialogButtonBox::Ok)->setEnabled(list->currentItem() != nullptr);
    connect(list, &QListWidget::currentItemChanged, buttons,
            [buttons](QListWidgetItem* item) { buttons->button(QDialogButtonBox::Ok)->setEnabled(item != nullptr); });
    connect(list, &QListWidget::itemDoubleClicked, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    if (records.empty())
        layout->addWidget(new QLabel(QStringLiteral("There is no Config of this family yet."), &dialog));
    layout->addWidget(list);
    layout->addWidget(buttons);
    if (dialog.exec() != QDialog::Accepted || !list->currentItem()) return std::nullopt;
    return list->currentItem()->data(Qt::UserRole).toInt();
}

void WorkbenchWindow::showError(const QString& text) {
    showBox(QStringLiteral("WorkbenchError"), QMessageBox::Critical, QStringLiteral("QxFBCom2 workbench"), text);
}

// A message box of the workbench; its name lets tests find it.
int WorkbenchWindow::showBox(const QString& name, QMessageBox::Icon icon, const QString& title, const QString& text,
                             QMessageBox::StandardButtons buttons) {
    QMessageBox box(icon, title, text, buttons, this);
    box.setObjectName(name);
    return box.exec();
}

QStringList WorkbenchWindow::RecentFiles() const {
    return userSettings().value(QStringLiteral("recentFiles")).toStringList();
}

void WorkbenchWindow::remember(const QString& path) {
    QStringList recent = RecentFiles();
    const QString full = QFileInfo(path).absoluteFilePath();
    recent.removeAll(full);
    recent.prepend(full);
    while (recent.size() > MaxRecentFiles) recent.removeLast();
    userSettings().setValue(QStringLiteral("recentFiles"), recent);
    fillRecentMenu();
}

void WorkbenchWindow::fillRecentMenu() {
    recentMenu_->clear();
    const QStringList recent = RecentFiles();
    for (int i = 0; i < recent.size(); ++i) {
        const QString path = recent[i];
        QAction* action = recentMenu_->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(path));
        action->setObjectName(QStringLiteral("actionRecent%1").arg(i + 1));
        connect(action, &QAction::triggered, this, [this, path] {
            if (maySkipUnsaved()) OpenFile(path);
        });
    }
    recentMenu_->setEnabled(!recent.isEmpty());
}

bool WorkbenchWindow::OpenFile(const QString& path) {
    // Read first: a file that cannot be read leaves the open project as it is.
    Project project;
    if (!guarded([&] { project = loadProject(QFile::encodeName(path).toStdString()); })) return false;
    // A project from elsewhere must not choose unasked which runtime code
    // goes to the controller.
    const std::wstring& named = project.Settings.AppFolder;
    const bool takeAppFolder =
        !named.empty() && named != host_.ComponentAppFolder() &&
        showBox(QStringLiteral("ProjectAppFolder"), QMessageBox::Question, QStringLiteral("Open project"),
                QStringLiteral("%1 names its own application folder %2, from which the download bundle takes the "
                               "runtime code for the controller. Use it? No keeps the component's own folder %3.")
                    .arg(path, toQString(named), toQString(host_.ComponentAppFolder())),
                QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
    std::vector<std::wstring> leftOut;
    const bool opened = guarded([&] { leftOut = host_.Open(project, takeAppFolder); });
    undo_.clear();
    guard_ = ProjectGuard();
    readOnly_ = false;
    filePath_ = opened ? path : QString();
    if (opened) {
        remember(path);
        guard_.Stamp(path);
        QString reason;
        if (guard_.Lock(path, reason) != ProjectGuard::LockResult::Taken) {
            readOnly_ = true;
            showBox(QStringLiteral("ReadOnlyProject"), QMessageBox::Information, QStringLiteral("Open project"),
                    QStringLiteral("%1 is opened read-only: %2. Save will not write it; Save as writes a copy.")
                        .arg(path, reason));
        }
    }
    refresh();
    if (!leftOut.empty()) {
        QStringList lines;
        for (const std::wstring& line : leftOut) lines << toQString(line);
        showError(QStringLiteral("Some operations could not be reopened; they are kept as they were stored and saved "
                                 "again:\n") +
                  lines.join('\n'));
    }
    return opened;
}

bool WorkbenchWindow::SaveFile(const QString& path, bool replace) {
    const bool samePlace = !filePath_.isEmpty() && QFileInfo(path) == QFileInfo(filePath_);
    if (samePlace && readOnly_) {
        showError(QStringLiteral("Cannot save %1: it was opened read-only, since another workbench has it open. "
                                 "Save as writes this project under another name.")
                      .arg(path));
        return false;
    }
    // Another file: it must not be open in another workbench either.
    ProjectGuard target;
    if (!samePlace) {
        QString reason;
        // A folder without room for a lock is left to the save to judge.
        if (target.Lock(path, reason) == ProjectGuard::LockResult::HeldByOther) {
            showError(QStringLiteral("Cannot save %1: %2, and saving would overwrite its work.").arg(path, reason));
            return false;
        }
    }
    if (samePlace && guard_.ChangedOnDisk(path) &&
        showBox(QStringLiteral("ChangedOnDisk"), QMessageBox::Warning, QStringLiteral("Save project"),
                QStringLiteral("%1 was changed on disk since this workbench opened or saved it. Overwrite those "
                               "changes with this project?")
                    .arg(path),
                QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return false;
    const std::string file = QFile::encodeName(path).toStdString();
    const bool replacing = replace && !samePlace && QFileInfo(path).isFile() && !QFileInfo(path).isSymLink();
    if (!guarded([&] {
            if (!replacing) return qx::saveProject(file, host_.ToProject());
            // A new file beside it, renamed over it once it is whole: the
            // old file stays as it was until then, whatever it holds.
            const std::string fresh = file + ".saving";
            std::filesystem::remove(fresh);
            try {
                qx::saveProject(fresh, host_.ToProject());
                std::error_code error;
                std::filesystem::rename(fresh, file, error);
                if (error)
                    throw std::runtime_error("project file \"" + file + "\": cannot be saved (" + error.message() +
                                             ")");
            } catch (...) {
                std::error_code ignored;
                std::filesystem::remove(fresh, ignored);
                throw;
            }
        }))
        return false;
    if (!samePlace) {
        guard_ = std::move(target);
        readOnly_ = false;
    }
    guard_.Stamp(path);
    filePath_ = path;
    remember(path);
    undo_.setClean();
    host_.MarkSaved();
    updateTitle();
    return true;
}

bool WorkbenchWindow::ExportBundle(const QString& folder) {
    // Blocks that cannot work go to the controller only when the person says so.
    if (CheckProject() > 0) {
        QStringList lines;
        for (int i = 0; i < problems_->topLevelItemCount() && i < 10; ++i) lines << problems_->topLevelItem(i)->text(0);
        if (problems_->topLevelItemCount() > 10)
            lines << QStringLiteral("... and %1 more in the Problems pane").arg(problems_->topLevelItemCount() - 10);
        if (showBox(QStringLiteral("ExportWithProblems"), QMessageBox::Warning,
                    QStringLiteral("Export download bundle"),
                    QStringLiteral("The project has problems that keep blocks from working:\n\n%1\n\nExport anyway?")
                        .arg(lines.join('\n')),
                    QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
            return false;
    }
    std::vector<BundleFile> files;
    if (!guarded([&] {
            files = writeDownloadBundle(host_.ToProject(), QFile::encodeName(folder).toStdString(),
                                        runtimeFilesFrom(host_.Gate(), host_.Context()));
        }))
        return false;
    showBox(QStringLiteral("BundleWritten"), QMessageBox::Information, QStringLiteral("Export download bundle"),
            QStringLiteral("%1 files written to %2, listed with their sizes and SHA-256 in %3.")
                .arg(files.size())
                .arg(folder, QString::fromUtf8(BundleManifestName)));
    return true;
}

int WorkbenchWindow::CheckProject() {
    const std::vector<WorkbenchHost::Problem> found = host_.CheckProject();
    problems_->clear();
    for (const WorkbenchHost::Problem& problem : found) {
        auto* item = new QTreeWidgetItem(problems_, {toQString(problem.Text)});
        item->setData(0, NetRole, static_cast<qulonglong>(problem.Net));
        item->setData(0, PlaceRole, static_cast<qulonglong>(problem.Place));
    }
    problemsDock_->setWindowTitle(found.empty() ? QStringLiteral("Problems")
                                                : QStringLiteral("Problems (%1)").arg(found.size()));
    problemsDock_->show();
    problemsDock_->raise();
    statusBar()->showMessage(found.empty() ? QStringLiteral("The check found no problem.")
                                           : QStringLiteral("The check found %1 problems.").arg(found.size()));
    return static_cast<int>(found.size());
}

void WorkbenchWindow::exportBundle() {
    const QString folder =
        QFileDialog::getExistingDirectory(this, QStringLiteral("Export download bundle into an empty folder"));
    if (!folder.isEmpty()) ExportBundle(folder);
}

bool WorkbenchWindow::maySkipUnsaved() {
    if (!host_.Modified()) return true;
    switch (showBox(QStringLiteral("UnsavedChanges"), QMessageBox::Question, QStringLiteral("QxFBCom2 workbench"),
                    QStringLiteral("The project has changes that are not saved. Save them?"),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel)) {
        case QMessageBox::Save:
            return saveProject();
        case QMessageBox::Discard:
            return true;
        default:
            return false;
    }
}

void WorkbenchWindow::newProject() {
    if (!maySkipUnsaved()) return;
    host_.Clear();
    undo_.clear();
    guard_ = ProjectGuard();
    readOnly_ = false;
    filePath_.clear();
    refresh();
}

void WorkbenchWindow::openProject() {
    if (!maySkipUnsaved()) return;
    const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open project"), QString(),
                                                      QStringLiteral("Projects (*.qxfbproj);;All files (*)"));
    if (!path.isEmpty()) OpenFile(path);
}

bool WorkbenchWindow::saveProject() { return filePath_.isEmpty() ? saveProjectAs() : SaveFile(filePath_); }

bool WorkbenchWindow::saveProjectAs() {
    QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save project"), filePath_,
                                                QStringLiteral("Projects (*.qxfbproj)"));
    if (path.isEmpty()) return false;
    if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".qxfbproj");
    // The file dialog asked before it named a file that exists.
    return SaveFile(path, true);
}

void WorkbenchWindow::closeEvent(QCloseEvent* event) {
    if (!maySkipUnsaved()) {
        event->ignore();
        return;
    }
    QSettings settings = userSettings();
    settings.setValue(QStringLiteral("geometry"), saveGeometry());
    settings.setValue(QStringLiteral("panes"), saveState());
    event->accept();
}

}  // namespace qx
