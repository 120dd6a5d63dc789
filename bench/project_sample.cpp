#include "project_sample.h"

#include <algorithm>
#include <random>
#include <utility>
#include <vector>

#include "platform/host/host_context.h"
#include "sets/scan_set.h"
#include "sets/send_set.h"
#include "support/random_sets.h"
#include "support/stored_link.h"

namespace qx::bench {

namespace {

// Distinct images of each kind, used in turn.
constexpr int ImagesPerKind = 16;

test::RandomSetShape plantShape() {
    test::RandomSetShape shape;
    shape.MinMessages = 5;
    shape.MaxMessages = 20;
    shape.MaxFieldsPerMessage = 6;
    shape.MaxTextRun = 30;
    return shape;
}

template <class Set, class Fill>
std::vector<Bytes> images(uint32_t seed, Fill fill) {
    std::vector<Bytes> made;
    ScopedHostContext context;
    std::mt19937 random(seed);
    for (int i = 0; i < ImagesPerKind; ++i) {
        Set set;
        fill(set, random, plantShape());
        made.push_back(set.BinaryData());
    }
    return made;
}

StoredOperand link(const std::wstring& key, const std::wstring& caption, int32_t type, int32_t address) {
    StoredOperand operand = test::storedLink(key, caption, type, address, caption + L" " + std::to_wstring(address));
    operand.AllowedTypes = {{1, type, true}};
    return operand;
}

}  // namespace

Project sampleProject(int32_t operations) {
    const std::vector<Bytes> sends = images<clsProtocolSendSrv>(1, test::fillRandomSendSet);
    const std::vector<Bytes> scans = images<clsProtocolScanSrv>(2, test::fillRandomScanSet);
    Project project;
    int32_t configs = 0;
    for (int32_t i = 0; i < operations; ++i) {
        if (i % 10 == 0) project.Nets.push_back(LadderNet{L"Net " + std::to_wstring(i / 10 + 1), {}});
        StoredOperation operation;
        switch (i % 3) {
            case 0:
                operation.MethodID = 170101;
                operation.FatherInstanceNum = ++configs;
                operation.BinaryOperands = {static_cast<uint8_t>(1 + configs % 4), 0};
                operation.OutOperands = {link(L"1", L"Function in progress", 1, 2 * i),
                                         link(L"2", L"Status", 3, 2 * i + 1)};
                project.Instances.push_back({170100, configs, L"Line " + std::to_wstring(configs), {}});
                break;
            case 1:
                operation.MethodID = 170103;
                operation.FatherInstanceNum = configs;
                operation.BinaryOperands = sends[static_cast<size_t>(i) % sends.size()];
                break;
            default:
                operation.MethodID = 170102;
                operation.FatherInstanceNum = configs;
                operation.BinaryOperands = scans[static_cast<size_t>(i) % scans.size()];
                operation.OutOperands = {link(L"1", L"Session complete", 1, 2 * i),
                                         link(L"2", L"Bytes received", 3, 2 * i + 1),
                                         link(L"3", L"Message index", 3, 2 * i + 2)};
                break;
        }
        for (const StoredOperand& operand : operation.OutOperands)
            project.Links.push_back({operand.Type, operand.Address, 1, 3, 1});
        project.Nets.back().Operations.push_back(std::move(operation));
    }
    // The host's table is kept by type and address, as the file gives it back.
    std::sort(project.Links.begin(), project.Links.end(), [](const StoredLink& a, const StoredLink& b) {
        return std::pair(a.Type, a.Address) < std::pair(b.Type, b.Address);
    });
    return project;
}

}  // namespace qx::bench
