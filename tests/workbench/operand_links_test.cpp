// The host's operand table as the workbench keeps it: derived from what the
// blocks and instances name, so that a re-link leaves nothing behind; moves
// that reach the TCP/IP address tables and refuse an overlap; descriptions
// that survive a save; a Config deleted with a question; undo and redo of
// every change; the context menus.
#include <gtest/gtest.h>

#include <QAction>
#include <QMenu>
#include <QMessageBox>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>
#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <stdexcept>

#include "project/project_file.h"
#include "qt_test_support.h"
#include "workbench_support.h"

namespace qx {
namespace {

using test::WorkbenchTest;

// A TCP/IP instance's address table: record 0 takes its IP from MI 100 (and
// so MI 100 to 103) and its port from MI 104; the other 15 are empty.
Bytes addressTable() {
    Bytes table{100, 16};
    const Bytes first{1, 0, 0, 0, 100, 0, 0, 0, 0, 0, 104, 0, 0, 0};
    const Bytes empty{0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0};
    table.insert(table.end(), first.begin(), first.end());
    table.insert(table.end(), 12, 0x20);
    for (int i = 1; i < 16; ++i) {
        table.insert(table.end(), empty.begin(), empty.end());
        table.insert(table.end(), 12, 0x20);
    }
    return table;
}

class OperandLinksTest : public WorkbenchTest {
protected:
    // A serial Config through the scripted person: MB 100 and the given MI,
    // the name, the third port, OK. Placed through the window, so that the
    // change is recorded for undo.
    bool placeConfig(const std::wstring& name, int32_t mi, const std::wstring& description = L"") {
        auto person = std::make_shared<ScriptedModalDriver>();
        person->QueuePick(OperandChoice{1, 1, 100, 0, L"", 0});
        person->QueuePick(OperandChoice{1, 3, mi, 0, description, 0});
        person->QueueDialog(
            scriptFor<frmProtocolConfig>(std::function<void(frmProtocolConfig&)>([name](frmProtocolConfig& dialog) {
                dialog.txtInstanceName.UserType(name);
                dialog.cbComport.UserSelect(2);
                dialog.cmdOk.UserClick();
            })));
        return withPerson(person, [&] { return window->PlaceOperation(170101); });
    }

    // The Config's status operand linked again to another MI, OK.
    bool relinkStatus(size_t net, size_t place, int32_t mi, const std::wstring& description = L"") {
        auto person = std::make_shared<ScriptedModalDriver>();
        person->QueuePick(OperandChoice{1, 3, mi, 0, description, 0});
        person->QueueDialog(
            scriptFor<frmProtocolConfig>(std::function<void(frmProtocolConfig&)>([](frmProtocolConfig& dialog) {
                dialog.cmdStatusOp.UserClick();
                dialog.cmdOk.UserClick();
            })));
        selectBlock(net, place);
        return withPerson(person, [&] {
            window->findChild<QAction*>(QStringLiteral("actionEdit"))->trigger();
            return true;
        });
    }

    // A Buffer reset on the given instance of the serial family.
    bool placeBufferReset(int32_t instance) {
        auto& instances = host->InstancesOf(170100);
        const auto choose = instances.Choose;
        instances.Choose = [instance](const std::vector<FBInstanceRecord>&, int32_t) { return instance; };
        const bool placed = window->PlaceOperation(170105);
        instances.Choose = choose;
        return placed;
    }

    bool withPerson(const std::shared_ptr<ScriptedModalDriver>& person, const std::function<bool()>& act) {
        const std::shared_ptr<ModalDriver> onScreen = host->Context().Driver;
        host->Context().Driver = person;
        const bool done = act();
        host->Context().Driver = onScreen;
        EXPECT_EQ(person->PendingDialogs(), 0u);
        EXPECT_EQ(person->PendingPicks(), 0u);
        return done;
    }

    void selectBlock(size_t net, size_t place) {
        window->Ladder()->setCurrentItem(
            window->Ladder()->topLevelItem(static_cast<int>(net))->child(static_cast<int>(place)));
    }

    QAction* action(const char* name) { return window->findChild<QAction*>(QString::fromLatin1(name)); }

    // The identities of the operands view, as it shows them.
    QStringList operandRows() const {
        QStringList rows;
        for (int i = 0; i < window->Operands()->topLevelItemCount(); ++i)
            rows << window->Operands()->topLevelItem(i)->text(0);
        return rows;
    }

    // A project of one TCP/IP instance whose table names MI 100 and MI 104,
    // with the descriptions of both.
    Project tcpipProject() {
        Project project;
        project.Instances = {{170200, 1, L"Plant", addressTable()}};
        project.Descriptions = {{0, 3, 100, L"Remote IP"}, {0, 3, 104, L"Remote port"}};
        return project;
    }

    const WorkbenchHost::OperandUse* useOf(int32_t type, int32_t address) {
        uses = host->OperandUses();
        const auto found = std::find_if(uses.begin(), uses.end(), [&](const WorkbenchHost::OperandUse& use) {
            return use.Type == type && use.Address == address;
        });
        return found == uses.end() ? nullptr : &*found;
    }

    std::vector<WorkbenchHost::OperandUse> uses;
};

TEST_F(OperandLinksTest, ReLinkingAnOperandLeavesNoTraceOfTheOldLink) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
    ASSERT_TRUE(relinkStatus(0, 0, 201));
    EXPECT_EQ(host->Nets()[0].Operations[0]->itfFBMethod_OutOperands()->Item(2)->OperandAddress(), 201);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 0);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 201), 1);
    EXPECT_EQ(useOf(3, 200), nullptr);
    EXPECT_EQ(operandRows(), (QStringList{QStringLiteral("MB 100"), QStringLiteral("MI 201")}));
    const Project project = host->ToProject();
    EXPECT_EQ(project.Links, (std::vector<StoredLink>{{1, 100, 1, 0, 1}, {3, 201, 1, 0, 1}}));
    // The old address is free again.
    EXPECT_NO_THROW(host->MoveOperand(0, 3, 201, 200));
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
}

TEST_F(OperandLinksTest, ADescriptionGivenInThePickerIsTheHostsAndSurvivesASave) {
    ASSERT_TRUE(placeConfig(L"Printer", 200, L"Fault lamp"));
    ASSERT_NE(useOf(3, 200), nullptr);
    EXPECT_EQ(useOf(3, 200)->Description, L"Fault lamp");
    // Given anew in the next edit, the new words win.
    ASSERT_TRUE(relinkStatus(0, 0, 200, L"Fault horn"));
    EXPECT_EQ(host->Description(0, 3, 200), L"Fault horn");
    const QString file = QString::fromStdString((folder.path() / "described.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    host->Clear();
    ASSERT_TRUE(window->OpenFile(file));
    EXPECT_EQ(host->Description(0, 3, 200), L"Fault horn");
    EXPECT_EQ(window->Operands()->topLevelItem(1)->text(1), QStringLiteral("Fault horn"));
}

TEST_F(OperandLinksTest, TheAddressTablesOperandsAreListedWithTheirSpansAndDescriptions) {
    ASSERT_TRUE(host->Open(tcpipProject()).empty());
    const WorkbenchHost::OperandUse* ip = useOf(3, 100);
    ASSERT_NE(ip, nullptr);
    EXPECT_EQ(ip->VectorLength, 4);
    EXPECT_EQ(ip->Description, L"Remote IP");
    EXPECT_EQ(ip->Instances, (std::vector<std::pair<int32_t, int32_t>>{{170200, 1}}));
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 100), 1);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 104), 1);

    // Saved and opened again, the descriptions are there still.
    const std::string file = (folder.path() / "tcpip.qxfbproj").string();
    saveProject(file, host->ToProject());
    host->Clear();
    EXPECT_EQ(host->Description(0, 3, 100), L"");
    ASSERT_TRUE(window->OpenFile(QString::fromStdString(file)));
    EXPECT_EQ(host->Description(0, 3, 100), L"Remote IP");
    EXPECT_EQ(host->Description(0, 3, 104), L"Remote port");
    ASSERT_EQ(operandRows(), (QStringList{QStringLiteral("MI 100"), QStringLiteral("MI 104")}));
    EXPECT_EQ(window->Operands()->topLevelItem(0)->text(1), QStringLiteral("Remote IP"));
    EXPECT_EQ(window->Operands()->topLevelItem(0)->text(3), QStringLiteral("instance 1 Plant (its address table)"));
}

TEST_F(OperandLinksTest, AMoveReachesTheAddressTableAndRefusesAnOverlap) {
    ASSERT_TRUE(host->Open(tcpipProject()).empty());
    const auto refused = [&](int32_t from, int32_t to) {
        try {
            host->MoveOperand(0, 3, from, to);
        } catch (const std::invalid_argument& e) {
            return std::string(e.what());
        }
        return std::string("moved");
    };
    EXPECT_EQ(refused(104, 102),
              "MI 104 cannot move to 102: it would overlap MI 100 (4 addresses), which the instance 1 (Plant) uses.");
    EXPECT_EQ(refused(100, 101),
              "MI 100 (4 addresses) cannot move to 101: it would overlap MI 104, which the "
              "instance 1 (Plant) uses.");
    EXPECT_EQ(refused(100, 65533),
              "MI 100 (4 addresses) cannot move to 65533: the addresses of its type end at 65535.");
    EXPECT_EQ(host->InstancesOf(170200).Stored()[0].Data, addressTable());

    const WorkbenchHost::Moved moved = host->MoveOperand(0, 3, 100, 200);
    EXPECT_TRUE(moved.Operations.empty());
    EXPECT_EQ(moved.Instances, (std::vector<std::pair<int32_t, int32_t>>{{170200, 1}}));
    Bytes expected = addressTable();
    expected[6] = 200;
    EXPECT_EQ(host->InstancesOf(170200).Stored()[0].Data, expected);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 100), 0);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
    EXPECT_EQ(host->Description(0, 3, 200), L"Remote IP");
    EXPECT_EQ(host->Description(0, 3, 100), L"");
    // Right behind the port now: 101 to 104 would overlap it, 100 itself is free.
    EXPECT_EQ(refused(200, 101),
              "MI 200 (4 addresses) cannot move to 101: it would overlap MI 104, which the "
              "instance 1 (Plant) uses.");
    EXPECT_EQ(refused(104, 203),
              "MI 104 cannot move to 203: it would overlap MI 200 (4 addresses), which the "
              "instance 1 (Plant) uses.");
    EXPECT_EQ(refused(104, 204), "moved");
}

TEST_F(OperandLinksTest, TheWindowsMoveCountsTheInstancesItChanged) {
    const std::string file = (folder.path() / "tcpip.qxfbproj").string();
    saveProject(file, tcpipProject());
    ASSERT_TRUE(window->OpenFile(QString::fromStdString(file)));
    QTreeWidget& operands = *window->Operands();
    window->ContextMenuFor(operands, operands.topLevelItem(0));  // selects the row, as a right click does
    test::onModal(QStringLiteral("MoveOperand"), [](QWidget& ask) {
        auto* spin = ask.findChild<QSpinBox*>();
        QTest::keyClick(spin, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(spin, QStringLiteral("300"));
        QTest::keyClick(&ask, Qt::Key_Return);
    });
    ASSERT_TRUE(window->MoveCurrentOperand());
    EXPECT_EQ(window->statusBar()->currentMessage(),
              QStringLiteral("MI 100 moved to 300; 0 operations and 1 instances changed."));
    EXPECT_EQ(operandRows(), (QStringList{QStringLiteral("MI 104"), QStringLiteral("MI 300")}));
    // Undone: the table names MI 100 again.
    action("actionUndo")->trigger();
    EXPECT_EQ(host->InstancesOf(170200).Stored()[0].Data, addressTable());
    EXPECT_EQ(operandRows(), (QStringList{QStringLiteral("MI 100"), QStringLiteral("MI 104")}));
}

TEST_F(OperandLinksTest, DeletingAConfigOthersUseAsksAndKeepsItsInstanceForThem) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    ASSERT_TRUE(placeBufferReset(1));
    ASSERT_EQ(host->Nets()[0].Operations.size(), 2u);
    selectBlock(0, 0);
    QString asked;
    test::onModal(QStringLiteral("DeleteConfig"), [&](QWidget& box) {
        asked = static_cast<QMessageBox&>(box).text();
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::No), Qt::LeftButton);
    });
    action("actionDelete")->trigger();
    EXPECT_EQ(asked.toStdString(),
              "net 1, block 1 (CONFIG) is the Config of instance 1 Printer, which net 1, block 2 (BUFFER RST) uses. "
              "Delete the Config anyway? The instance stays for them.");
    EXPECT_EQ(host->Nets()[0].Operations.size(), 2u);

    test::onModal(QStringLiteral("DeleteConfig"), [&](QWidget& box) {
        QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
    });
    selectBlock(0, 0);
    action("actionDelete")->trigger();
    ASSERT_EQ(host->Nets()[0].Operations.size(), 1u);
    EXPECT_EQ(host->InstancesOf(170100).Stored().size(), 1u);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 0);

    // The Buffer reset goes without a question, and the instance with the
    // last block that ran on it only when that block is a Config: here it stays.
    selectBlock(0, 0);
    action("actionDelete")->trigger();
    EXPECT_TRUE(host->Nets()[0].Operations.empty());
    EXPECT_EQ(host->InstancesOf(170100).Stored().size(), 1u);
}

TEST_F(OperandLinksTest, AConfigNothingElseUsesTakesItsInstanceWithItAndUndoBringsBothBack) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    const Project placed = host->ToProject();
    selectBlock(0, 0);
    action("actionDelete")->trigger();
    EXPECT_TRUE(host->Nets()[0].Operations.empty());
    EXPECT_TRUE(host->InstancesOf(170100).Stored().empty());
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 0);
    EXPECT_EQ(action("actionUndo")->text(), QStringLiteral("&Undo Delete net 1, block 1 (CONFIG)"));
    action("actionUndo")->trigger();
    EXPECT_EQ(host->ToProject(), placed);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
    EXPECT_EQ(window->Instances()->topLevelItem(0)->child(0)->text(1), QStringLiteral("Printer"));
    action("actionRedo")->trigger();
    EXPECT_TRUE(host->InstancesOf(170100).Stored().empty());
}

TEST_F(OperandLinksTest, EveryChangeIsUndoneAndRedoneAndTheCleanStateIsKnownAgain) {
    const Project empty = host->ToProject();
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    const Project placed = host->ToProject();
    ASSERT_TRUE(relinkStatus(0, 0, 201));
    const Project edited = host->ToProject();
    action("actionExtendedOperands")->trigger();
    EXPECT_TRUE(host->Context().ExtendedOperands);
    const QString file = QString::fromStdString((folder.path() / "history.qxfbproj").string());
    ASSERT_TRUE(window->SaveFile(file));
    EXPECT_FALSE(host->Modified());

    action("actionUndo")->trigger();
    EXPECT_FALSE(host->Context().ExtendedOperands);
    EXPECT_EQ(host->ToProject(), edited);
    EXPECT_TRUE(host->Modified());
    EXPECT_TRUE(window->windowTitle().contains(QStringLiteral(" *")));
    action("actionUndo")->trigger();
    EXPECT_EQ(host->ToProject(), placed);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 200), 1);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 201), 0);
    action("actionUndo")->trigger();
    EXPECT_EQ(host->ToProject(), empty);
    EXPECT_FALSE(action("actionUndo")->isEnabled());

    for (int i = 0; i < 3; ++i) action("actionRedo")->trigger();
    EXPECT_TRUE(host->Context().ExtendedOperands);
    EXPECT_EQ(host->Context().Operands.LinkCount(3, 201), 1);
    // Back where the file was saved: nothing to save.
    EXPECT_FALSE(host->Modified());
    EXPECT_FALSE(window->windowTitle().contains(QStringLiteral(" *")));
}

TEST_F(OperandLinksTest, ACancelledEditIsNoChange) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    const int before = window->UndoStack().count();
    auto person = std::make_shared<ScriptedModalDriver>();
    person->QueueDialog(scriptFor<frmProtocolConfig>(
        std::function<void(frmProtocolConfig&)>([](frmProtocolConfig& dialog) { dialog.cmdCancel.UserClick(); })));
    selectBlock(0, 0);
    withPerson(person, [&] {
        action("actionEdit")->trigger();
        return true;
    });
    EXPECT_EQ(window->UndoStack().count(), before);
}

TEST_F(OperandLinksTest, ContextMenusOfferWhatAppliesToTheItem) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    const auto names = [](const std::unique_ptr<QMenu>& menu) {
        QStringList found;
        if (menu)
            for (QAction* each : menu->actions()) found << each->objectName();
        return found;
    };
    QTreeWidget& ladder = *window->Ladder();
    EXPECT_EQ(names(window->ContextMenuFor(ladder, ladder.topLevelItem(0)->child(0))),
              (QStringList{QStringLiteral("actionEdit"), QStringLiteral("actionDelete"),
                           QStringLiteral("actionRuntimeVersion")}));
    EXPECT_EQ(names(window->ContextMenuFor(ladder, ladder.topLevelItem(0))),
              (QStringList{QStringLiteral("actionPlace"), QStringLiteral("actionAddNet")}));
    EXPECT_EQ(window->ContextMenuFor(ladder, nullptr), nullptr);
    QTreeWidget& operands = *window->Operands();
    EXPECT_EQ(names(window->ContextMenuFor(operands, operands.topLevelItem(1))),
              (QStringList{QStringLiteral("actionMoveOperand")}));
    QTreeWidget& instances = *window->Instances();
    EXPECT_EQ(names(window->ContextMenuFor(instances, instances.topLevelItem(0)->child(0))),
              (QStringList{QStringLiteral("actionDeleteInstance")}));
    EXPECT_EQ(window->ContextMenuFor(instances, instances.topLevelItem(0)), nullptr);
}

TEST_F(OperandLinksTest, AnInstanceInUseIsNotDeletedAndAnUnusedOneIsWithUndo) {
    ASSERT_TRUE(placeConfig(L"Printer", 200));
    QTreeWidget& instances = *window->Instances();
    instances.setCurrentItem(instances.topLevelItem(0)->child(0));
    QString said;
    test::onModal(QStringLiteral("WorkbenchError"), [&](QWidget& box) {
        said = static_cast<QMessageBox&>(box).text();
        static_cast<QMessageBox&>(box).accept();
    });
    action("actionDeleteInstance")->trigger();
    EXPECT_EQ(said, QStringLiteral("Instance 1 Printer cannot be deleted: net 1, block 1 (CONFIG) uses it."));
    EXPECT_EQ(host->InstancesOf(170100).Stored().size(), 1u);

    // An instance no block runs on, as a project of another day may hold.
    host->InstancesOf(170100).Restore({host->InstancesOf(170100).Stored()[0], {170100, 2, L"Spare", {}}});
    window->UndoStack().clear();
    ASSERT_EQ(instances.topLevelItem(0)->childCount(), 2);
    instances.setCurrentItem(instances.topLevelItem(0)->child(1));
    action("actionDeleteInstance")->trigger();
    ASSERT_EQ(host->InstancesOf(170100).Stored().size(), 1u);
    action("actionUndo")->trigger();
    EXPECT_EQ(host->InstancesOf(170100).Stored().size(), 2u);
}

// What the blocks of a project name, by type and address, and how many
// blocks name each: the operand table the host must hold.
std::map<std::pair<int32_t, int32_t>, int32_t> namedByBlocks(const Project& project) {
    std::map<std::pair<int32_t, int32_t>, int32_t> named;
    for (const LadderNet& net : project.Nets)
        for (const StoredOperation& operation : net.Operations) {
            std::set<std::pair<int32_t, int32_t>> once;
            for (const auto* side : {&operation.InOperands, &operation.OutOperands, &operation.FindOnly})
                for (const StoredOperand& operand : *side)
                    if (!operand.IsNew && operand.Address >= 0) once.emplace(operand.Type, operand.Address);
            for (const auto& key : once) ++named[key];
        }
    return named;
}

std::map<std::pair<int32_t, int32_t>, int32_t> hostTable(const HostContext& context) {
    std::map<std::pair<int32_t, int32_t>, int32_t> table;
    for (const OperandTable::Link& link : context.Operands.Links()) table[{link.Type, link.Address}] = link.Link.Count;
    return table;
}

// Random roads through the window: place a Config or a Buffer reset, edit a
// Config's link, delete a block, move an operand, undo, redo, save. After
// every step the host's table is the one the blocks name; undone to the
// start the project is the empty one, redone it is the last one again, and
// saved and reopened it is the same.
TEST_F(OperandLinksTest, RandomRoadsKeepTheTableDerivedAndUndoToTheStart) {
    const QString file = QString::fromStdString((folder.path() / "roads.qxfbproj").string());
    for (const unsigned seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        window->UndoStack().clear();
        host->Clear();
        const Project empty = host->ToProject();
        std::mt19937 random(seed);
        const auto pick = [&random](int32_t from, int32_t to) {
            return std::uniform_int_distribution<int32_t>(from, to)(random);
        };
        int names = 0;
        for (int step = 0; step < 40; ++step) {
            const auto& nets = host->Nets();
            const size_t blocks = nets.empty() ? 0 : nets[0].Operations.size();
            switch (pick(0, 7)) {
                case 0:
                    placeConfig(L"C" + std::to_wstring(++names), pick(200, 220));
                    break;
                case 1: {
                    const auto instances = host->InstancesOf(170100).Stored();
                    if (!instances.empty())
                        placeBufferReset(
                            instances[static_cast<size_t>(pick(0, static_cast<int32_t>(instances.size()) - 1))]
                                .InstanceNum);
                    break;
                }
                case 2: {
                    if (blocks == 0) break;
                    const size_t place = static_cast<size_t>(pick(0, static_cast<int32_t>(blocks) - 1));
                    if (nets[0].Operations[place]->itfFBMethod_MethodID() == 170101)
                        relinkStatus(0, place, pick(200, 220));
                    break;
                }
                case 3: {
                    if (blocks == 0) break;
                    const size_t place = static_cast<size_t>(pick(0, static_cast<int32_t>(blocks) - 1));
                    const MethodPtr& block = nets[0].Operations[place];
                    if (block->itfFBMethod_MethodID() == 170101 &&
                        !host->UsersOfInstance(170100, block->itfFBMethod_FatherInstanceNum(), {0, place}).empty())
                        test::onModal(QStringLiteral("DeleteConfig"), [](QWidget& box) {
                            QTest::mouseClick(static_cast<QMessageBox&>(box).button(QMessageBox::Yes), Qt::LeftButton);
                        });
                    selectBlock(0, place);
                    action("actionDelete")->trigger();
                    break;
                }
                case 4: {
                    const std::vector<WorkbenchHost::OperandUse> all = host->OperandUses();
                    if (all.empty()) break;
                    const WorkbenchHost::OperandUse use =
                        all[static_cast<size_t>(pick(0, static_cast<int32_t>(all.size()) - 1))];
                    int32_t to = pick(200, 240);
                    const auto taken = [&](int32_t at) {
                        return std::any_of(all.begin(), all.end(), [&](const WorkbenchHost::OperandUse& other) {
                            return other.Type == use.Type && other.Address == at;
                        });
                    };
                    while (taken(to)) ++to;
                    QTreeWidget& operands = *window->Operands();
                    for (int row = 0; row < operands.topLevelItemCount(); ++row)
                        if (operands.topLevelItem(row)->data(0, Qt::UserRole).toInt() == use.Type &&
                            operands.topLevelItem(row)->data(0, Qt::UserRole + 1).toInt() == use.Address)
                            operands.setCurrentItem(operands.topLevelItem(row));
                    test::onModal(QStringLiteral("MoveOperand"), [to](QWidget& ask) {
                        auto* spin = ask.findChild<QSpinBox*>();
                        spin->setValue(to);
                        QTest::keyClick(&ask, Qt::Key_Return);
                    });
                    EXPECT_TRUE(window->MoveCurrentOperand());
                    break;
                }
                case 5:
                    action("actionUndo")->trigger();
                    break;
                case 6:
                    action("actionRedo")->trigger();
                    break;
                default:
                    ASSERT_TRUE(window->SaveFile(file));
                    break;
            }
            const Project now = host->ToProject();
            ASSERT_EQ(hostTable(host->Context()), namedByBlocks(now)) << "step " << step;
        }
        const Project last = host->ToProject();
        while (window->UndoStack().canUndo()) window->UndoStack().undo();
        EXPECT_EQ(host->ToProject(), empty);
        EXPECT_TRUE(hostTable(host->Context()).empty());
        while (window->UndoStack().canRedo()) window->UndoStack().redo();
        EXPECT_EQ(host->ToProject(), last);
        ASSERT_TRUE(window->SaveFile(file));
        host->Clear();
        ASSERT_TRUE(window->OpenFile(file));
        EXPECT_EQ(host->ToProject(), last);
        EXPECT_EQ(hostTable(host->Context()), namedByBlocks(last));
    }
}

}  // namespace
}  // namespace qx
