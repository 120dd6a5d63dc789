// The text form of the operations that hold message sets: each Send and Scan
// of either family has its set's JSON, the project file keeps it beside the
// image, and any other operation, or an image that does not read, has none.
#include "project/operation_text_form.h"

#include <gtest/gtest.h>

#include <random>

#include "inspect/text_form.h"
#include "platform/host/host_context.h"
#include "project/project_file.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "support/scratch_files.h"
#include "support/sqlite_files.h"

namespace qx {
namespace {

// A random set's image and its text form, made in a host of their own.
template <class Set>
std::pair<Bytes, std::string> randomSet(unsigned seed) {
    ScopedHostContext host;
    std::mt19937 random(seed);
    Set set;
    if constexpr (std::is_base_of_v<clsProtocolSendSrv, Set>) {
        test::fillRandomSendSet(set, random);
        return {set.BinaryData(), textform::exportSendSet(set)};
    } else {
        test::fillRandomScanSet(set, random);
        return {set.BinaryData(), textform::exportScanSet(set)};
    }
}

StoredOperation operation(int32_t methodId, Bytes image) {
    StoredOperation stored;
    stored.MethodID = methodId;
    stored.BinaryOperands = std::move(image);
    return stored;
}

TEST(OperationTextForm, SendsAndScansOfBothFamiliesHaveTheirSetsText) {
    const auto [send, sendText] = randomSet<clsProtocolSendSrv>(1);
    const auto [scan, scanText] = randomSet<clsProtocolScanSrv>(2);
    const auto [ethSend, ethSendText] = randomSet<clsEthProtocolSendSrv>(3);
    const auto [ethScan, ethScanText] = randomSet<clsEthProtocolScanSrv>(4);
    EXPECT_EQ(textFormOf(operation(170103, send), false), sendText);
    EXPECT_EQ(textFormOf(operation(170102, scan), false), scanText);
    EXPECT_EQ(textFormOf(operation(170203, ethSend), false), ethSendText);
    EXPECT_EQ(textFormOf(operation(170202, ethScan), false), ethScanText);
    EXPECT_EQ(messageSetKindOf(operation(170203, {})), MessageSetKind::Send);
    EXPECT_EQ(messageSetKindOf(operation(170102, {})), MessageSetKind::Scan);
}

TEST(OperationTextForm, OtherOperationsAndImagesThatDoNotReadHaveNone) {
    const auto [send, sendText] = randomSet<clsProtocolSendSrv>(5);
    for (int32_t methodId : {170101, 170104, 170105, 170201, 170003, 170303})
        EXPECT_EQ(textFormOf(operation(methodId, send), false), std::nullopt) << methodId;
    EXPECT_EQ(textFormOf(operation(170103, {1, 2, 3}), false), std::nullopt);
    EXPECT_EQ(textFormOf(operation(170102, {}), false), std::nullopt);
}

TEST(OperationTextForm, TheProjectFileKeepsEachTextBesideItsImage) {
    test::ScratchFolder folder{"qxfb_text_forms"};
    const std::filesystem::path file = folder.path() / "plant.qxfbproj";
    const auto [send, sendText] = randomSet<clsProtocolSendSrv>(6);
    const auto [scan, scanText] = randomSet<clsEthProtocolScanSrv>(7);
    Project project;
    StoredOperation config = operation(170101, {2, 0});
    project.Nets = {LadderNet{L"", {config, operation(170103, send)}}, LadderNet{L"", {operation(170202, scan)}}};
    saveProject(file.string(), project);
    EXPECT_EQ(test::querySql(file,
                             "SELECT o.method_id, t.json = (SELECT json FROM text_forms LIMIT 1) FROM text_forms t"
                             " JOIN operations o ON o.id = t.operation_id ORDER BY o.id"),
              "170103|1\n170202|0");
    EXPECT_EQ(test::querySql(file,
                             "SELECT t.json FROM text_forms t JOIN operations o ON o.id = t.operation_id"
                             " WHERE o.method_id = 170103"),
              sendText);
    EXPECT_EQ(test::querySql(file,
                             "SELECT t.json FROM text_forms t JOIN operations o ON o.id = t.operation_id"
                             " WHERE o.method_id = 170202"),
              scanText);
    // The text is for people: loading takes the image.
    test::runSql(file, "UPDATE text_forms SET json = '{}'");
    EXPECT_EQ(loadProject(file.string()), project);
}

}  // namespace
}  // namespace qx
