// The message grid: one typed character end to end (the key through the
// grid's KeyPress: InsertChar, the row painted again, the caret moved) on
// the full message, set against a memcpy of that message's Send image and of
// its model; and the full rebuild of 255 dense rows that the commands
// changing the number of messages run, set against a memcpy of the set's
// image and model.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench_support.h"
#include "editors/message_grid.h"
#include "editors/message_toolbar.h"
#include "platform/host/host_context.h"

namespace qx::bench {
namespace {

constexpr size_t messageModelBytes =
    clsProtocolMessage::MaxPositions * sizeof(wchar_t) + sizeof(clsProtocolMessage::ControlCharArray);

// A grid and toolbar as a Send dialog holds them, bound to a source.
struct SendGrid {
    Grid FlgSend{L"FlgSend"};
    ToolBar abSend{L"abSend"};
    MessageGridEditor editor{MessageGridKind::Send, FlgSend, abSend};
    SendGrid() { buildMessageToolBar(abSend); }
};

void BM_GridTypedCharacter(benchmark::State& state) {
    ScopedHostContext host;
    const MessagePtr full = fullMessage();
    std::vector<MessagePtr> messages{full->GetReplica()};
    SendGrid form;
    form.editor.setSource({[&] { return static_cast<int32_t>(messages.size()); },
                           [&](int32_t n) { return messages[static_cast<size_t>(n - 1)]; }});
    form.editor.Reload();
    CopyRatio ratio(state, sendImageSizeOf(*full), messageModelBytes);
    int32_t typed = 0;
    ratio.start();
    for (auto _ : state) {
        if (typed == FullMessageSlack) {
            // Back to a fresh copy at position 0 before a field would leave the row.
            state.PauseTiming();
            ratio.pause();
            messages[0] = full->GetReplica();
            form.editor.Reload();
            host->CaretCalls.clear();
            typed = 0;
            ratio.resume();
            state.ResumeTiming();
        }
        form.FlgSend.UserKeyPress('X');
        ++typed;
    }
    ratio.finish();
    state.counters["fields"] = messages[0]->NumberOfVars();
    state.counters["beeps"] = host->BeepCount;
}

void BM_GridFullRebuild255Rows(benchmark::State& state) {
    ScopedHostContext host;
    const auto set = denseSendSet();
    SendGrid form;
    form.editor.setSource(messageSourceOf(*set));
    form.editor.Reload();
    form.FlgSend.Select(100, 250);
    CopyRatio ratio(state, set->BinaryData().size(), modelBytesOf(*set));
    const auto nothingChanges = [](int32_t) { return true; };
    ratio.start();
    for (auto _ : state) {
        form.editor.rebuildAfter(nothingChanges, MessageGridEditor::LandingRow::SameRow);
        if (host->CaretCalls.size() > 3000) host->CaretCalls.clear();
    }
    ratio.finish();
    state.counters["rows"] = form.FlgSend.Rows();
}

QXFB_BENCHMARK(BM_GridTypedCharacter);
QXFB_BENCHMARK(BM_GridFullRebuild255Rows);

}  // namespace
}  // namespace qx::bench
