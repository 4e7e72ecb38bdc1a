// Copyright 2026 The Veltmark authors.
//
// The interpreter's private types, shared by vb_interpreter.cc (statements)
// and vb_evaluator.cc (expressions). Not part of the component's API.

#ifndef RZ_VBSCRIPT_VB_INTERPRETER_INTERNAL_H_
#define RZ_VBSCRIPT_VB_INTERPRETER_INTERNAL_H_

#include "vbscript/vb_interpreter.h"

namespace rz::vb {

// A variable. Shared between a caller and a ByRef parameter.
struct Interpreter::Slot {
  Variant value;
  bool is_const = false;
  bool fixed_array = false;  // Dim a(n): ReDim refuses it
};

struct Interpreter::Frame {
  const Procedure* procedure = nullptr;  // null for the top level
  const SourceLines* lines = nullptr;
  std::unordered_map<std::string, SlotPtr> locals;
  bool resume_next = false;
  std::vector<std::shared_ptr<Dispatch>> with_objects;
};

struct Interpreter::NamedObject {
  std::string key;
  std::shared_ptr<Dispatch> object;
  bool add_members;
};

// Nothing: an object variant without an object.
inline Variant NothingValue() { return Variant(std::shared_ptr<Dispatch>()); }
inline bool IsNothing(const Variant& value) {
  return value.IsObject() && value == NothingValue();
}

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_INTERPRETER_INTERNAL_H_
