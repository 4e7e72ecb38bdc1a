// Copyright 2026 The Veltmark authors.
//
// ErrObject is the script's Err object: the record of the last runtime
// error a script handled (On Error Resume Next). Number (the default
// member), Description, Source, HelpFile and HelpContext are read-write;
// Clear empties them; Raise(number, [source], [description]) raises a
// runtime error as an rz::Error (error 5 when the number is 0).
// The interpreter owns it and shares it with the scripts that reach it.

#ifndef RZ_VBSCRIPT_VB_ERR_OBJECT_H_
#define RZ_VBSCRIPT_VB_ERR_OBJECT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/error.h"

namespace rz::vb {

class ErrObject : public Dispatch {
 public:
  std::string_view ClassName() const override { return "ErrObject"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

  // Records a caught error; an empty source becomes the runtime source.
  void Record(const Error& error);
  void Clear();
  // Raises the error described by Raise's arguments.
  [[noreturn]] void Raise(const DispatchArgs& args);

  int32_t Number() const { return number_; }
  const std::string& Description() const { return description_; }
  const std::string& Source() const { return source_; }

 private:
  // Every member, Help* included (kept for scripts, not used otherwise).
  static const DispatchTable<ErrObject>& Table();

  int32_t number_ = 0;
  std::string description_;
  std::string source_;
  std::string help_file_;
  int32_t help_context_ = 0;
};

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_ERR_OBJECT_H_
