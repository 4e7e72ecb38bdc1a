// Copyright 2026 The Veltmark authors.
//
// RZselectEvents is the outgoing interface of RZselect: a host that wants
// records one by one implements it and registers with
// RZselect::AddEventHandler; EventHandlerList is the engine's list of
// registered handlers, which the run raises the events through. Events are
// raised synchronously on the host's thread while Refresh runs with FireEvent
// true, never otherwise. Each takes the run's cancel flag by reference, false
// on the first event; setting it to true in OpenDataSource or WriteDataSource
// ends the run. A handler must not call back into the engine (other than
// reading the repository).

#ifndef RZ_PLATFORM_RZSELECT_EVENTS_H_
#define RZ_PLATFORM_RZSELECT_EVENTS_H_

#include <vector>

namespace rz {

class RZselectEvents {
 public:
  virtual ~RZselectEvents() = default;

  // Once per run, before the first record is read.
  virtual void OpenDataSource(bool& Cancel) { (void)Cancel; }
  // After each output record has been written to the repository.
  virtual void WriteDataSource(bool& Cancel) { (void)Cancel; }
  // Once, after extraction is done; Cancel is not examined.
  virtual void CloseDataSource(bool& Cancel) { (void)Cancel; }
};

// The registered handlers, in registration order. The list does not own
// them: a handler must outlive its registration.
class EventHandlerList {
 public:
  // Error 91 for a null handler.
  void Add(RZselectEvents* handler);
  // Removes every registration of `handler`; unknown handlers are ignored.
  void Remove(RZselectEvents* handler);
  bool Empty() const { return handlers_.empty(); }

  // Raise one event to every handler in order with the same flag.
  void RaiseOpenDataSource(bool& cancel) const;
  void RaiseWriteDataSource(bool& cancel) const;
  void RaiseCloseDataSource(bool& cancel) const;

 private:
  std::vector<RZselectEvents*> handlers_;
};

}  // namespace rz

#endif  // RZ_PLATFORM_RZSELECT_EVENTS_H_
