// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_err_object.h"

#include "vbscript/vb_errors.h"

namespace rz::vb {

const DispatchTable<ErrObject>& ErrObject::Table() {
  static const DispatchTable<ErrObject> table = [] {
    DispatchTable<ErrObject> t;
    t.Property(
        "Number",
        [](ErrObject& self, DispatchArgs&) { return Variant(self.Number()); },
        [](ErrObject& self, const Variant& value, DispatchArgs&) {
          // Assigning Number keeps the other fields.
          self.Record(Error(value.ToLong(), self.Description(), self.Source()));
        });
    t.Property(
        "Description",
        [](ErrObject& self, DispatchArgs&) {
          return Variant(self.Description());
        },
        [](ErrObject& self, const Variant& value, DispatchArgs&) {
          self.Record(Error(self.Number(), value.ToString(), self.Source()));
        });
    t.Property(
        "Source",
        [](ErrObject& self, DispatchArgs&) { return Variant(self.Source()); },
        [](ErrObject& self, const Variant& value, DispatchArgs&) {
          self.Record(
              Error(self.Number(), self.Description(), value.ToString()));
        });
    t.Property(
        "HelpFile",
        [](ErrObject& self, DispatchArgs&) { return Variant(self.help_file_); },
        [](ErrObject& self, const Variant& value, DispatchArgs&) {
          self.help_file_ = value.ToString();
        });
    t.Property(
        "HelpContext",
        [](ErrObject& self, DispatchArgs&) {
          return Variant(self.help_context_);
        },
        [](ErrObject& self, const Variant& value, DispatchArgs&) {
          self.help_context_ = value.ToLong();
        });
    t.Method("Clear", [](ErrObject& self, DispatchArgs&) {
      self.Clear();
      return Variant();
    });
    t.Method(
        "Raise",
        [](ErrObject& self, DispatchArgs& args) -> Variant {
          self.Raise(args);
        },
        1, 5);
    t.Default("Number");
    return t;
  }();
  return table;
}

Variant ErrObject::Invoke(std::string_view name, InvokeKind kind,
                          DispatchArgs& args) {
  return Table().Invoke(*this, name, kind, args);
}

std::vector<std::string> ErrObject::MemberNames() const {
  return Table().Names();
}

void ErrObject::Record(const Error& error) {
  number_ = error.Number();
  description_ = error.Description();
  source_ = error.Source();
  if (source_.empty() && number_ != 0) source_ = std::string(kRuntimeSource);
}

void ErrObject::Clear() {
  number_ = 0;
  description_.clear();
  source_.clear();
  help_file_.clear();
  help_context_ = 0;
}

void ErrObject::Raise(const DispatchArgs& args) {
  const int32_t number = args[0].ToLong();
  if (number == 0) throw Error::InvalidArgument("Err.Raise 0");
  std::string source = args.size() > 1 && !args[1].IsEmpty()
                           ? args[1].ToString()
                           : std::string(kRuntimeSource);
  std::string description = args.size() > 2 && !args[2].IsEmpty()
                                ? args[2].ToString()
                                : RuntimeMessage(number);
  throw Error(number, std::move(description), std::move(source));
}

}  // namespace rz::vb
