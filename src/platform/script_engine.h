// Copyright 2026 The Veltmark authors.
//
// ScriptEngine runs user scripts (VBScript or JScript): one global module
// holds the code added to it, named objects are visible to that code, and
// its procedures are run by name. The engine's script host creates one
// through Platform::CreateScriptEngine and owns it (std::unique_ptr); the
// two components (components/vbscript, components/jscript) implement it.
//
// Failures of the script are not exceptions. AddCode and Run report them by
// their result and fill LastError(): a compile error, a runtime error the
// script does not handle, an rz::Error raised by a named object and not
// handled by the script, and an exceeded time limit all end up there. So
// the script host needs no try/catch to keep a script error from leaving
// it. Only misuse by the caller throws rz::Error (documented per member).
// Not thread-safe.

#ifndef RZ_PLATFORM_SCRIPT_ENGINE_H_
#define RZ_PLATFORM_SCRIPT_ENGINE_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"

namespace rz {

// The language names SetLanguage accepts.
inline constexpr std::string_view kLanguageVBScript = "VBSCRIPT";
inline constexpr std::string_view kLanguageJScript = "JSCRIPT";

// The record of the last failure.
struct ScriptError {
  int32_t number = 0;  // the language's error number
  std::string source;  // "VBScript compilation error", ...
  std::string description;
  int32_t line = 0;  // 1-based line in the added code; 0 = unknown
  std::string text;  // the text of that line as the engine saw it
  bool operator==(const ScriptError&) const = default;
};

class ScriptEngine {
 public:
  virtual ~ScriptEngine() = default;

  // "VBSCRIPT" or "JSCRIPT", in any case; error 5 for anything else.
  // Changing the language discards the added code and objects.
  virtual void SetLanguage(std::string_view language) = 0;
  // The current language in capitals ("VBSCRIPT" for a new engine).
  virtual std::string Language() const = 0;

  // Discards the added code, the named objects and the error record; the
  // language and the time limit stay.
  virtual void Reset() = 0;

  // The time limit of one Run or AddCode in milliseconds; -1 = none (the
  // default). A run that exceeds it fails (LastError describes it).
  virtual void SetTimeout(int32_t milliseconds) = 0;

  // Makes `object` visible to the code under `name`; with `add_members`
  // its members are also visible as globals. Error 91 when `object` is
  // null, error 5 when the name is empty or already added.
  virtual void AddObject(std::string_view name,
                         std::shared_ptr<Dispatch> object,
                         bool add_members) = 0;

  // Adds code to the global module and runs its top-level statements.
  // Returns false on a compile or runtime error (see LastError); the code
  // added before stays.
  virtual bool AddCode(std::string_view code) = 0;

  // The names of the global module's procedures in definition order.
  virtual std::vector<std::string> Procedures() const = 0;

  // Runs the procedure `name` (compared without regard to case) with
  // `args`; parameters passed by reference write back into `args`. Returns
  // the procedure's value (Empty for a procedure without one), or nullopt
  // when it failed, including when there is no such procedure (see
  // LastError).
  virtual std::optional<Variant> Run(std::string_view name,
                                     DispatchArgs& args) = 0;

  // The last failure of AddCode or Run (number 0 before any).
  virtual const ScriptError& LastError() const = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_SCRIPT_ENGINE_H_
