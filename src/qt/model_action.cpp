#include "qt/model_action.h"

#include <utility>

namespace qx {

namespace {
// All of it lives on the one user-interface thread.
std::exception_ptr pending;
std::function<void()> abortHook;
}  // namespace

void runModelAction(const std::function<void()>& action) {
    try {
        action();
    } catch (...) {
        if (!pending) pending = std::current_exception();
        if (abortHook) abortHook();
    }
}

std::exception_ptr takeModelActionError() { return std::exchange(pending, nullptr); }

std::function<void()> setModelActionAbort(std::function<void()> abort) {
    return std::exchange(abortHook, std::move(abort));
}

}  // namespace qx
