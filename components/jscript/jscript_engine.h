// Copyright 2026 The Veltmark authors.
//
// JScriptEngine is the ScriptEngine for JScript, on an embedded Duktape
// heap (ECMAScript 5.1 with a few later additions). It speaks only JScript:
// Language() is "JSCRIPT" from the start, SetLanguage accepts "JSCRIPT" in
// any case and raises error 5 for anything else, "VBSCRIPT" included (a
// host that needs both switches between two engines).
//
// What the code sees:
//   - the named objects, as proxies onto their Dispatch (dispatch_proxy.h);
//     with add_members their members are global accessors too;
//   - MsgBox(text[, buttons[, title]]): the usual button and icon numbers
//     (1 OK/Cancel, 3 and 4 Yes/No, 16/32/48/64 icons), answering 1 OK,
//     2 Cancel, 6 Yes, 7 No; answers 1 without showing anything when the
//     engine has no toolkit;
//   - Enumerator(collection) with atEnd/moveNext/moveFirst/item over
//     Dispatch::Enumerate (or an array);
//   - errors with JScript's `number` and `description`: every error the
//     interpreter makes gets the number of its kind (script_fault.h), an
//     error of a named object carries the object's number.
// Values cross as js_value.h says (dates as day numbers).
//
// Procedures() lists the global functions the added code defined, in the
// order they were first defined (function declarations of one chunk are
// hoisted before `var f = function ...` of the same chunk). Run finds a
// procedure by exact name first, then without regard to case. Arguments
// are passed by value: JScript has no by-reference parameters, so Run
// never writes back into `args`.
//
// Failures land in LastError() (script_fault.h has the numbers): sources
// "JScript compilation error" and "JScript runtime error", the line within
// the code of the AddCode call it came from and that line's text. A time
// limit is checked while script code runs (not inside a long native call)
// and cannot be caught by the script (a run that catches it and returns
// still fails); it reports number
// kTimeoutErrorNumber, "Script timed out". Runaway recursion is error 28
// "Out of stack space", tail calls included (they take a level each, like
// any call, so `return f(n + 1)` cannot loop for ever). The heap holds at
// most kMaxJScriptHeapBytes (heap_hooks.h); a script that needs more gets
// error 7 "Out of memory". The heap survives all three and stays usable.
// Nothing else leaves AddCode or Run either: a C++ failure on the engine's
// own side (memory exhausted while keeping the code) lands in LastError as
// error 7, or 5 with the failure's text.
//
// Owns its heap; the toolkit (may be null) must outlive the engine. Not
// thread-safe; not copyable.

#ifndef RZ_JSCRIPT_JSCRIPT_ENGINE_H_
#define RZ_JSCRIPT_JSCRIPT_ENGINE_H_

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "jscript/heap_hooks.h"
#include "platform/script_engine.h"
#include "platform/toolkit.h"

struct duk_hthread;

namespace rz {

inline constexpr std::string_view kJScriptCompilationError =
    "JScript compilation error";
inline constexpr std::string_view kJScriptRuntimeError =
    "JScript runtime error";

class JScriptEngine : public ScriptEngine {
 public:
  explicit JScriptEngine(Toolkit* toolkit);
  ~JScriptEngine() override;
  JScriptEngine(const JScriptEngine&) = delete;
  JScriptEngine& operator=(const JScriptEngine&) = delete;

  void SetLanguage(std::string_view language) override;
  std::string Language() const override;
  void Reset() override;
  void SetTimeout(int32_t milliseconds) override;
  void AddObject(std::string_view name, std::shared_ptr<Dispatch> object,
                 bool add_members) override;
  bool AddCode(std::string_view code) override;
  std::vector<std::string> Procedures() const override;
  std::optional<Variant> Run(std::string_view name,
                             DispatchArgs& args) override;
  const ScriptError& LastError() const override { return last_error_; }

 private:
  void CreateHeap();
  void DestroyHeap();
  void InstallGlobals();
  void InstallMsgBox();
  void InstallEnumerator();
  void InstallErrorNumbers();
  // Runs the built-in script `source`, an expression giving a function, on
  // `native`; leaves the function's result on the stack.
  void RunPrelude(const char* source, int (*native)(duk_hthread*),
                  int native_args);
  // The global names present before any code: never procedures.
  void NoteHostGlobals();

  bool CompileAndRun(std::string_view code);
  std::optional<Variant> RunProcedureNamed(std::string_view name,
                                           DispatchArgs& args);
  void RecordHostFailure(const std::exception& failure);
  // A run whose time ran out fails even when the script caught the error
  // and finished: records the timeout (no line) and answers false.
  bool RecordCaughtTimeout();
  // Records the thrown value on top of the stack as the last error.
  // `compile_chunk` is the chunk being compiled, -1 for a runtime error.
  void RecordThrown(std::string_view source, int compile_chunk);
  void RecordError(int32_t number, std::string description,
                   std::string_view source, int chunk, int32_t line);
  std::string LineOfChunk(int chunk, int32_t line) const;
  // The exact name of the procedure `name` (any case), if there is one.
  std::optional<std::string> FindProcedure(std::string_view name) const;

  Toolkit* toolkit_;
  int32_t timeout_ms_ = -1;
  HeapHooks hooks_;
  duk_hthread* ctx_ = nullptr;
  std::set<std::string> host_globals_;
  std::vector<std::string> object_names_;
  std::vector<std::string> chunks_;  // the code of each AddCode, in order
  ScriptError last_error_;
};

}  // namespace rz

#endif  // RZ_JSCRIPT_JSCRIPT_ENGINE_H_
