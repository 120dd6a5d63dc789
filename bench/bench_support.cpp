#include "bench_support.h"

#include <time.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "message/protocol_cs_var.h"
#include "message/protocol_date_var.h"
#include "message/protocol_numeric_var.h"
#include "message/protocol_scan_numeric_var.h"
#include "platform/basics/runtime_error.h"

namespace qx::bench {

namespace {

using namespace std::chrono_literals;

constexpr int32_t kMessages = 255;
constexpr int32_t kPositions = clsProtocolMessage::MaxPositions;

// Text of a run: printable characters, one control character in five, and
// never a blank, so that no run is trimmed away at the end of a message.
void putRun(std::wstring& text, clsProtocolMessage::ControlCharArray& controls, int32_t from, int32_t length,
            int32_t salt) {
    for (int32_t i = 0; i < length; ++i) {
        int32_t at = from + i;
        if ((at + salt) % 5 == 4)
            controls[static_cast<size_t>(at)] = (at + salt) % 32;
        else
            text[static_cast<size_t>(at)] = static_cast<wchar_t>(L'A' + (at + salt) % 26);
    }
}

void link(clsOperand& operand, int32_t type, int32_t address) {
    operand.OperandType(type);
    operand.OperandAddress(address);
    operand.IsNew(false);
}

// Lays out one message of three text runs of the given length, three fields
// and a last run that ends the message at position 499. makeFields gives the
// three fields for the room they may take.
template <class MakeFields>
void layOut(clsProtocolMessage& message, int32_t run, int32_t salt, MakeFields makeFields) {
    std::wstring text(kPositions, L' ');
    clsProtocolMessage::ControlCharArray controls;
    controls.fill(clsProtocolMessage::NoControlChar);
    std::vector<VarPtr> fields = makeFields(kPositions - 4 * run);
    int32_t q = 0;
    for (const VarPtr& field : fields) {
        putRun(text, controls, q, run, salt);
        q += run;
        field->StartPosition(q);
        q += field->Length();
        message.AddVar(field);
    }
    putRun(text, controls, q, kPositions - q, salt);
    message.MessageString(text);
    message.ControlChars(controls);
}

// The fields of a Send message: half the room a decimal vector of 10
// positions an element, a date of 9, the rest a stream of 4-byte elements.
std::vector<VarPtr> sendFields(int32_t room, int32_t salt) {
    auto decimal = std::make_shared<clsProtocolNumericVar>();
    link(*decimal->LikedOperand(), 3, salt);
    decimal->BeforePoint(9);
    decimal->VectorLength(room / 2 / 10);
    auto date = std::make_shared<clsProtocolDateVar>();
    date->DateFormatType(3);
    auto stream = std::make_shared<clsProtocolNumericVar>();
    link(*stream->LikedOperand(), 5, salt + 1000);
    stream->StreamForm(1);
    stream->CopyBytesFormat(2);
    stream->StreamVectorLength((room - decimal->Length() - date->Length()) / 4);
    return {decimal, date, stream};
}

std::vector<VarPtr> scanFields(int32_t room, int32_t salt) {
    auto decimal = std::make_shared<clsProtocolScanNumericVar>();
    link(*decimal->LikedOperand(), 3, salt);
    decimal->BeforePoint(9);
    decimal->VectorLength(room / 2 / 10);
    auto checksum = std::make_shared<clsProtocolCSVar>();
    checksum->CSLength(4);
    auto stream = std::make_shared<clsProtocolScanNumericVar>();
    link(*stream->LikedOperand(), 5, salt + 1000);
    stream->StreamForm(1);
    stream->VarFormat(3);
    stream->CopyBytesFormat(2);
    stream->StreamVectorLength((room - decimal->Length() - checksum->Length()) / 4);
    return {decimal, checksum, stream};
}

template <class Set, class Fields>
std::unique_ptr<Set> denseSet(int32_t run, Fields fields) {
    auto set = std::make_unique<Set>();
    for (int32_t m = 1; m <= kMessages; ++m) {
        if (m > 1) set->AppendMessage();
        layOut(*set->GetMessage(m), run, m, [&](int32_t room) { return fields(room, m); });
    }
    return set;
}

// The longest runs whose image stays within 65535 bytes. A set whose
// offsets would pass that is refused by the writer with an overflow, which
// here only means "try shorter runs".
template <class Set, class Fields>
std::unique_ptr<Set> largestDenseSet(Fields fields) {
    for (int32_t run = 120; run >= 0; --run) {
        auto set = denseSet<Set>(run, fields);
        try {
            if (set->BinaryData().size() <= LargestImage) return set;
        } catch (const RuntimeError& error) {
            if (error.Number() != err::Overflow) throw;
        }
    }
    throw std::logic_error("no dense set fits a 16-bit image");
}

}  // namespace

namespace {
std::atomic<int> failures{0};
}  // namespace

benchmark::internal::Benchmark* registerGuarded(const char* name, void (*body)(benchmark::State&)) {
    return benchmark::RegisterBenchmark(name, [body](benchmark::State& state) {
        try {
            body(state);
        } catch (const std::exception& error) {
            ++failures;
            state.SkipWithError(error.what());
        } catch (...) {
            ++failures;
            state.SkipWithError("unknown exception");
        }
    });
}

int failedBenchmarks() { return failures.load(); }

ThreadCpuClock::time_point ThreadCpuClock::now() noexcept {
    timespec slot{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &slot);
    return time_point(std::chrono::seconds(slot.tv_sec) + std::chrono::nanoseconds(slot.tv_nsec));
}

double memcpyNanoseconds(size_t size) {
    std::vector<uint8_t> from(size, 0x5A);
    std::vector<uint8_t> to(size, 0);
    double best = std::numeric_limits<double>::max();
    for (int round = 0; round < 7; ++round) {
        size_t copies = 0;
        auto start = ThreadCpuClock::now();
        ThreadCpuClock::duration elapsed{};
        do {
            for (int i = 0; i < 32; ++i) {
                std::memcpy(to.data(), from.data(), size);
                benchmark::DoNotOptimize(to.data());
                benchmark::ClobberMemory();
            }
            copies += 32;
            elapsed = ThreadCpuClock::now() - start;
        } while (elapsed < 2ms);
        best = std::min(best, std::chrono::duration<double, std::nano>(elapsed).count() / static_cast<double>(copies));
    }
    return best;
}

CopyRatio::CopyRatio(benchmark::State& state, size_t imageBytes, size_t modelBytes)
    : state_(state),
      imageBytes_(imageBytes),
      copyNs_(memcpyNanoseconds(imageBytes)),
      modelBytes_(modelBytes),
      modelCopyNs_(modelBytes ? memcpyNanoseconds(modelBytes) : 0) {}

void CopyRatio::finish() {
    auto measured = Clock::now() - start_ - excluded_;
    const uint64_t allocations = allocationCount() - allocationsAtStart_;
    double iterations = static_cast<double>(std::max<benchmark::IterationCount>(state_.iterations(), 1));
    double opNs = std::chrono::duration<double, std::nano>(measured).count() / iterations;
    state_.counters["image_bytes"] = static_cast<double>(imageBytes_);
    state_.counters["memcpy_ns"] = copyNs_;
    state_.counters["op_ns"] = opNs;
    state_.counters["ratio_to_memcpy"] = opNs / copyNs_;
    if (modelBytes_) {
        state_.counters["model_bytes"] = static_cast<double>(modelBytes_);
        state_.counters["model_memcpy_ns"] = modelCopyNs_;
        state_.counters["ratio_to_model_memcpy"] = opNs / modelCopyNs_;
    }
    state_.counters["allocs_per_op"] = static_cast<double>(allocations) / iterations;
    state_.SetBytesProcessed(state_.iterations() * static_cast<int64_t>(imageBytes_));
}

std::unique_ptr<clsProtocolSendSrv> denseSendSet() { return largestDenseSet<clsProtocolSendSrv>(sendFields); }

std::unique_ptr<clsProtocolScanSrv> denseScanSet() { return largestDenseSet<clsProtocolScanSrv>(scanFields); }

MessagePtr fullMessage() {
    auto message = std::make_shared<clsProtocolMessage>();
    std::wstring text(kPositions, L' ');
    clsProtocolMessage::ControlCharArray controls;
    controls.fill(clsProtocolMessage::NoControlChar);
    int32_t q = 0;
    putRun(text, controls, q, FullMessageSlack, 0);
    q += FullMessageSlack;
    for (int32_t i = 0; i < clsProtocolMessage::MaxVars; ++i) {
        auto field = std::make_shared<clsProtocolNumericVar>();
        link(*field->LikedOperand(), 3, i);
        field->PrefixSignFormat(0);
        field->BeforePoint(4);
        field->StartPosition(q);
        q += field->Length();
        message->AddVar(field);
        putRun(text, controls, q, 5, 0);
        q += 5;
    }
    putRun(text, controls, q, kPositions - q, 0);
    message->MessageString(text);
    message->ControlChars(controls);
    return message;
}

size_t sendImageSizeOf(const clsProtocolMessage& message) {
    clsProtocolSendSrv set;
    MessagePtr copy = message.GetReplica();
    set.GetMessage(1)->MessageString(copy->MessageString());
    set.GetMessage(1)->ControlChars(copy->ControlChars());
    for (int32_t i = 1; i <= copy->NumberOfVars(); ++i) set.GetMessage(1)->AddVar(copy->GetVar(i));
    return set.BinaryData().size();
}

}  // namespace qx::bench
