// A person's action on a dialog runs the dialog's code, which may raise (a
// run-time error of the component, say). No exception may cross Qt's event
// loop, so every action a widget hands to a control model runs through
// runModelAction: the first exception is kept and the abort hook is called,
// which the modal driver sets to end the dialog it shows; the driver raises
// the exception again where the dialog was shown, outside the event loop.
#pragma once
#include <exception>
#include <functional>

namespace qx {

void runModelAction(const std::function<void()>& action);
// The exception an action raised since the last call, or none; taken once.
std::exception_ptr takeModelActionError();
// What to call when an action raised; returns the hook it replaces.
std::function<void()> setModelActionAbort(std::function<void()> abort);

}  // namespace qx
