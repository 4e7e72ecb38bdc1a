// Copyright 2026 The Veltmark authors.
//
// RZselectEvents is the outgoing interface of RZselect: a host that wants
// records one by one implements it and registers with
// RZselect::AddEventHandler. Events are raised synchronously on the
// host's thread while Refresh runs with FireEvent true, never otherwise.
// Each takes the run's cancel flag by reference, false on the first
// event; setting it to true in OpenDataSource or WriteDataSource ends the
// run. A handler must not call back into the engine (other than reading
// the repository).

#ifndef RZ_ENGINE_RZSELECT_EVENTS_H_
#define RZ_ENGINE_RZSELECT_EVENTS_H_

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

}  // namespace rz

#endif  // RZ_ENGINE_RZSELECT_EVENTS_H_
