// The message grid on screen: the grid model bound to a QTableView shown
// offscreen at the size of a message dialog's grid, measured to the painted
// frame. A typed character goes in as the view's key event (the binding's
// KeyPress, InsertChar on the full message, the row painted again in the
// grid model, the caret moved) and ends when the view has painted what
// changed; set against a memcpy of the message's Send image and model. The
// full rebuild of 255 dense rows (Redraw off, every row built and painted,
// Redraw on) ends with the view's first frame after it; set against a memcpy
// of the set's image and model.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QTableView>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench_support.h"
#include "editors/message_grid.h"
#include "editors/message_toolbar.h"
#include "platform/controls/form.h"
#include "platform/host/host_context.h"
#include "qt/control_binding.h"
#include "qt/wire_preview.h"
#include "sets/send_set.h"

namespace qx::bench {
namespace {

constexpr size_t messageModelBytes =
    clsProtocolMessage::MaxPositions * sizeof(wchar_t) + sizeof(clsProtocolMessage::ControlCharArray);

// The grid's widget at about the size a message dialog gives it.
constexpr int viewWidth = 960;
constexpr int viewHeight = 360;

// Counts the paint events of the view's viewport, and the pixels they
// cover: a frame is painted when the count moves.
class PaintCounter : public QObject {
public:
    int Paints = 0;
    double Pixels = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++Paints;
            for (const QRect& rect : static_cast<QPaintEvent*>(event)->region())
                Pixels += static_cast<double>(rect.width()) * rect.height();
        }
        return false;
    }
};

// A Send dialog's grid and toolbar on a form, the grid bound to a view that
// is shown offscreen.
struct SendGridOnScreen : Form {
    Grid FlgSend{L"FlgSend"};
    ToolBar abSend{L"abSend"};
    MessageGridEditor editor{MessageGridKind::Send, FlgSend, abSend};
    QTableView view;
    PaintCounter painted;
    std::unique_ptr<ControlBinding> binding;

    SendGridOnScreen() : Form(L"frmProtocolSend") {
        addControls({&abSend, &FlgSend});
        buildMessageToolBar(abSend);
        view.resize(viewWidth, viewHeight);
        view.viewport()->installEventFilter(&painted);
    }
    void bindAndShow() {
        binding = ControlBinding::bind(FlgSend, view);
        if (!binding) throw std::logic_error("the grid was not bound");
        view.show();
        FlgSend.SetFocus();
        frame();
    }
    // Delivers what is pending to the view and has it paint; throws when
    // nothing was painted, so that no figure is of a frame that never came.
    void frame() {
        const int before = painted.Paints;
        QApplication::processEvents();
        if (painted.Paints == before) throw std::logic_error("the view painted no frame");
    }
};

void BM_GridViewTypedCharacter(benchmark::State& state) {
    ScopedHostContext host;
    const MessagePtr full = fullMessage();
    std::vector<MessagePtr> messages{full->GetReplica()};
    SendGridOnScreen form;
    form.editor.setSource({[&] { return static_cast<int32_t>(messages.size()); },
                           [&](int32_t n) { return messages[static_cast<size_t>(n - 1)]; }});
    form.editor.Reload();
    form.bindAndShow();
    QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("X"));
    CopyRatio ratio(state, sendImageSizeOf(*full), messageModelBytes);
    int32_t typed = 0;
    double pixels = 0;
    ratio.start();
    for (auto _ : state) {
        if (typed == FullMessageSlack) {
            // Back to a fresh copy at position 0 before a field would leave the row.
            state.PauseTiming();
            ratio.pause();
            messages[0] = full->GetReplica();
            form.editor.Reload();
            form.frame();
            host->CaretCalls.clear();
            typed = 0;
            ratio.resume();
            state.ResumeTiming();
        }
        QApplication::sendEvent(&form.view, &key);
        const double before = form.painted.Pixels;
        form.frame();
        pixels += form.painted.Pixels - before;
        ++typed;
    }
    ratio.finish();
    if (messages[0]->MessageString().front() != L'X') throw std::logic_error("the key did not reach the message");
    state.counters["fields"] = messages[0]->NumberOfVars();
    state.counters["beeps"] = host->BeepCount;
    // The share of the viewport a typed character has painted again.
    state.counters["painted_share"] =
        pixels / static_cast<double>(state.iterations()) /
        (static_cast<double>(form.view.viewport()->width()) * form.view.viewport()->height());
}

// A typed character with the pane of wire bytes under the grid: the grid as
// above, then the pane renders the message through the runtime model and
// paints it, all in the one frame.
void BM_GridViewTypedCharacterWithWirePreview(benchmark::State& state) {
    ScopedHostContext host;
    const auto set = denseSendSet();
    SendGridOnScreen form;
    form.editor.setSource(messageSourceOf(*set));
    form.editor.Reload();
    WirePreview preview({[&set] { return set.get(); }, [&form] { return form.FlgSend.Row() + 1; }}, {&form.FlgSend});
    preview.resize(viewWidth, 80);
    preview.show();
    form.bindAndShow();
    const Bytes original = set->BinaryData();
    CopyRatio ratio(state, original.size(), modelBytesOf(*set));
    QKeyEvent key(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("X"));
    int32_t typed = 0;
    ratio.start();
    for (auto _ : state) {
        if (typed == FullMessageSlack) {
            state.PauseTiming();
            ratio.pause();
            set->BinaryData(original);
            form.editor.Reload();
            form.frame();
            host->CaretCalls.clear();
            typed = 0;
            ratio.resume();
            state.ResumeTiming();
        }
        QApplication::sendEvent(&form.view, &key);
        form.frame();
        ++typed;
    }
    ratio.finish();
    if (!preview.PlainText().contains(QLatin1Char('X'))) throw std::logic_error("the pane did not follow the key");
    state.counters["wire_bytes"] = static_cast<double>(preview.HexText().size() + 1) / 3;
}

void BM_GridViewFullRebuild255Rows(benchmark::State& state) {
    ScopedHostContext host;
    const auto set = denseSendSet();
    SendGridOnScreen form;
    form.editor.setSource(messageSourceOf(*set));
    form.editor.Reload();
    form.FlgSend.Select(100, 250);
    form.bindAndShow();
    CopyRatio ratio(state, set->BinaryData().size(), modelBytesOf(*set));
    const auto nothingChanges = [](int32_t) { return true; };
    ratio.start();
    for (auto _ : state) {
        form.editor.rebuildAfter(nothingChanges, MessageGridEditor::LandingRow::SameRow);
        form.frame();
        if (host->CaretCalls.size() > 3000) host->CaretCalls.clear();
    }
    ratio.finish();
    if (form.view.model()->rowCount() != set->NumberOfMessages()) throw std::logic_error("the view lost rows");
    state.counters["rows"] = form.FlgSend.Rows();
}

}  // namespace

QXFB_BENCHMARK(BM_GridViewTypedCharacter)->Unit(benchmark::kMicrosecond);
QXFB_BENCHMARK(BM_GridViewTypedCharacterWithWirePreview)->Unit(benchmark::kMicrosecond);
QXFB_BENCHMARK(BM_GridViewFullRebuild255Rows)->Unit(benchmark::kMillisecond);

}  // namespace qx::bench
