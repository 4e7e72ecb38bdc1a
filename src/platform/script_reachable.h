// Copyright 2026 The Veltmark authors.
//
// ScriptReachable is a mix-in for objects that a script can reach as a
// named object and that refuse some of their members to scripts while a
// host program calling them in C++ keeps full control. The script host
// holds the object (ScriptHold) from the moment it hands it to a script
// engine until that engine is gone; while any script holds it,
// HeldByScript() is true and the object's late-bound members (the surface
// scripts call) apply their script rules. Holds nest: a hook that runs
// another hook with the same object holds it twice. OnScriptEntered runs
// when the first hold starts, so the object can note what the script may
// reach (its own application, say).
//
// Not thread-safe: used on the host's thread, as the objects are.

#ifndef RZ_PLATFORM_SCRIPT_REACHABLE_H_
#define RZ_PLATFORM_SCRIPT_REACHABLE_H_

#include <memory>
#include <utility>

#include "core/dispatch.h"

namespace rz {

class ScriptReachable {
 public:
  bool HeldByScript() const { return script_holds_ > 0; }

 protected:
  ScriptReachable() = default;
  ~ScriptReachable() = default;
  // Called when a script starts to hold an object no script held.
  virtual void OnScriptEntered() {}

 private:
  friend class ScriptHold;
  int script_holds_ = 0;
};

// One script's hold on an object; objects that are not ScriptReachable
// are held without effect. Movable, not copyable.
class ScriptHold {
 public:
  explicit ScriptHold(std::shared_ptr<Dispatch> object)
      : object_(std::move(object)),
        reachable_(dynamic_cast<ScriptReachable*>(object_.get())) {
    if (reachable_ != nullptr && reachable_->script_holds_++ == 0) {
      reachable_->OnScriptEntered();
    }
  }
  ~ScriptHold() {
    if (reachable_ != nullptr) --reachable_->script_holds_;
  }
  ScriptHold(ScriptHold&& other) noexcept
      : object_(std::move(other.object_)),
        reachable_(std::exchange(other.reachable_, nullptr)) {}
  ScriptHold& operator=(ScriptHold&&) = delete;
  ScriptHold(const ScriptHold&) = delete;
  ScriptHold& operator=(const ScriptHold&) = delete;

 private:
  std::shared_ptr<Dispatch> object_;  // keeps the object alive
  ScriptReachable* reachable_;
};

}  // namespace rz

#endif  // RZ_PLATFORM_SCRIPT_REACHABLE_H_
