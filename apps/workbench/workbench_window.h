// The workbench's main window: the families and their operations from the
// gate (left), the project's ladder nets with their blocks (middle), each
// family's instances (right). Menus run the host's roads of WorkbenchHost;
// the component's dialogs open through the Qt modal driver, which the
// window installs in the component's host context for its lifetime.
#pragma once
#include <QAction>
#include <QDockWidget>
#include <QIcon>
#include <QMainWindow>
#include <QMessageBox>
#include <QString>
#include <QTreeWidget>
#include <QUndoStack>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "project_guard.h"
#include "workbench_host.h"

namespace qx {

class ModalDriver;

class WorkbenchWindow : public QMainWindow {
public:
    explicit WorkbenchWindow(WorkbenchHost& host, QWidget* parent = nullptr);
    ~WorkbenchWindow() override;

    // File work without the file dialogs (tests, the command line); each
    // shows its error in a message box and returns false on failure.
    bool OpenFile(const QString& path);
    // With replace (the person agreed to replace the file at path, as Save
    // as asks), whatever regular file is there is replaced by the project.
    bool SaveFile(const QString& path, bool replace = false);
    const QString& FilePath() const { return filePath_; }
    // True while another workbench holds the open file: Save refuses it,
    // Save as writes a copy.
    bool ReadOnly() const { return readOnly_; }
    // Writes the download bundle of the project into the folder (new or
    // empty) and says how many files it wrote. The project is checked
    // first; with problems, it asks before it writes anything.
    bool ExportBundle(const QString& folder);

    // Places an operation of the palette in the current net (a new net when
    // there is none); false when the first edit was cancelled.
    bool PlaceOperation(int32_t methodId);
    // The operation of the ladder view's current item, if it is one.
    MethodPtr CurrentOperation() const;

    QTreeWidget* Palette() const { return palette_; }
    QTreeWidget* Ladder() const { return ladder_; }
    QTreeWidget* Instances() const { return instances_; }
    QTreeWidget* Operands() const { return operands_; }
    QTreeWidget* Problems() const { return problems_; }
    // The projects opened or saved last, the latest first (at most 8); kept
    // with the window's size and panes in the user's settings.
    QStringList RecentFiles() const;
    // Runs the check of the project into the Problems pane and shows it;
    // answers how many problems it found.
    int CheckProject();
    // Moves the operand of the operands view's current row, asking for its
    // new address; false when nothing moved.
    bool MoveCurrentOperand();
    // Every change of the project, one command each, as the project was
    // before and after it.
    QUndoStack& UndoStack() { return undo_; }
    // The context menu of an item of the ladder, operands or instances
    // view (none on empty space): the actions that apply to it.
    std::unique_ptr<QMenu> ContextMenuFor(QTreeWidget& tree, QTreeWidgetItem* item);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenus();
    void fillPalette();
    void refresh();
    void refreshInstances();
    void refreshOperands();
    void updateTitle();
    void remember(const QString& path);
    void fillRecentMenu();
    void placeCurrent();
    void editCurrent();
    void deleteCurrent();
    void deleteCurrentInstance();
    // "net 1, block 2 (SEND) uses": the blocks that run on an instance, with
    // the verb; empty when none does.
    QString usersOf(int32_t family, int32_t instance, std::pair<size_t, size_t> except = {SIZE_MAX, SIZE_MAX}) const;
    // Runs a change of the project and records it for undo, when it changed
    // anything; answers what the change answered.
    bool changeProject(const QString& text, const std::function<bool()>& change);
    // The project as an undo or redo leaves it.
    void restoreProject(const Project& project);
    void newProject();
    void openProject();
    bool saveProject();
    bool saveProjectAs();
    void exportBundle();
    void chooseAppFolder();
    void chooseChecksums();
    void chooseRuntimeVersion();
    void showFamilyHelp(int32_t fatherId);
    std::optional<int32_t> chooseInstance(int32_t fatherId, const std::vector<FBInstanceRecord>& records,
                                          int32_t current);
    // Asks about unsaved changes; false when the person cancels.
    bool maySkipUnsaved();
    void showError(const QString& text);
    int showBox(const QString& name, QMessageBox::Icon icon, const QString& title, const QString& text,
                QMessageBox::StandardButtons buttons = QMessageBox::Ok);
    // Runs an action of the host from a slot: an error of it is shown, never
    // left to Qt's event loop, and what the component reported meanwhile is
    // shown too. False when the action raised.
    bool guarded(const std::function<void()>& action);
    // The net and place of the ladder view's current item.
    std::optional<std::pair<size_t, size_t>> currentPlace() const;

    WorkbenchHost& host_;
    std::shared_ptr<ModalDriver> previousDriver_;
    QTreeWidget* palette_;
    QTreeWidget* ladder_;
    QTreeWidget* instances_;
    QTreeWidget* operands_;
    QTreeWidget* problems_;
    QMenu* recentMenu_ = nullptr;
    QDockWidget* problemsDock_ = nullptr;
    QAction* actionExtendedOperands_ = nullptr;
    QString filePath_;
    ProjectGuard guard_;
    bool readOnly_ = false;
    std::map<int32_t, QIcon> blockIcons_;
    QUndoStack undo_;
};

}  // namespace qx
