// Copyright 2026 The Veltmark authors.
//
// VBScriptEngine is the ScriptEngine for VBScript: it compiles the code
// added to it (compile errors are found before anything of that code
// runs), runs its top-level statements, lists its procedures in definition
// order and runs them by name. Script failures end up in LastError() with
// VBScript's numbers, the sources "VBScript compilation error" /
// "VBScript runtime error" (or the source an object's rz::Error carries),
// the 1-based line and its text; a passed time limit reports number
// 0x80004004. It speaks only VBScript: SetLanguage("JSCRIPT") raises
// error 5.
//
// The toolkit (may be null: MsgBox then answers 1 without showing
// anything) is not owned and must outlive the engine. Not thread-safe.

#ifndef RZ_VBSCRIPT_VBSCRIPT_ENGINE_H_
#define RZ_VBSCRIPT_VBSCRIPT_ENGINE_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/script_engine.h"
#include "vbscript/vb_builtins.h"

namespace rz {

class Toolkit;

namespace vb {
class Interpreter;
}

// The largest code text AddCode accepts (a compile error 1001 beyond).
inline constexpr size_t kMaxVBScriptCodeSize = size_t{4} << 20;

class VBScriptEngine : public ScriptEngine {
 public:
  explicit VBScriptEngine(Toolkit* toolkit);
  ~VBScriptEngine() override;
  VBScriptEngine(const VBScriptEngine&) = delete;
  VBScriptEngine& operator=(const VBScriptEngine&) = delete;

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
  const ScriptError& LastError() const override;

  // Replaces the clock of Now, Date, Time and Randomize: a function giving
  // the current date serial. The default reads the system's local time.
  void SetClock(std::function<double()> now);

 private:
  // Runs `body` under the time limit; false (and LastError filled) when
  // it fails.
  bool Execute(const std::function<void()>& body);
  void RecordRuntimeError(int32_t number, std::string description,
                          std::string source);

  vb::BuiltinContext context_;
  std::unique_ptr<vb::Interpreter> interpreter_;
  int32_t timeout_ms_ = -1;
  ScriptError error_;
};

}  // namespace rz

#endif  // RZ_VBSCRIPT_VBSCRIPT_ENGINE_H_
