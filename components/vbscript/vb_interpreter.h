// Copyright 2026 The Veltmark authors.
//
// Interpreter runs compiled VBScript programs: it holds the global
// variables, the procedures of every program loaded so far, the named
// objects and the Err object, and walks the syntax tree.
//
// Runtime errors are rz::Error. A statement that fails inside a frame with
// On Error Resume Next records the error in Err and the next statement
// runs; otherwise the error leaves Load/Call and ErrorLine()/ErrorText()
// name the statement where it happened. ScriptAborted (time limit) is never
// caught by a script. Recursion is bounded by a call depth, a stack budget
// per run and the thread's own stack floor (error 28), so runs nested
// through named objects cannot exhaust the stack either. Not thread-safe.

#ifndef RZ_VBSCRIPT_VB_INTERPRETER_H_
#define RZ_VBSCRIPT_VB_INTERPRETER_H_

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/dispatch.h"
#include "vbscript/vb_ast.h"
#include "vbscript/vb_builtins.h"
#include "vbscript/vb_err_object.h"

namespace rz::vb {

// The deepest procedure nesting a script may reach.
inline constexpr size_t kMaxCallDepth = 1000;
// The most stack a script run may use below its entry point; a thread
// with a smaller stack gets half of what it has.
inline constexpr size_t kMaxStackBudget = size_t{3} << 20;

class Interpreter {
 public:
  using Clock = std::chrono::steady_clock;

  // `context` is not owned and must outlive the interpreter.
  explicit Interpreter(BuiltinContext* context);
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  // REQUIRES: the name is not added yet (the engine checks).
  void AddObject(std::string_view name, std::shared_ptr<Dispatch> object,
                 bool add_members);
  bool HasObject(std::string_view name) const;

  // Prepares a run: the stack base, the deadline, no error location.
  void BeginRun(std::optional<Clock::time_point> deadline);

  // Defines the program's procedures (a later definition replaces an
  // earlier one of the same name) and runs its top-level statements.
  void Load(Program program);

  // The procedure named `name` (any case), or null.
  const Procedure* FindProcedure(std::string_view name) const;
  std::vector<std::string> ProcedureNames() const;

  // Runs `procedure` with `args`; ByRef parameters write back into `args`.
  Variant Call(const Procedure& procedure, DispatchArgs& args);

  // The bytes the script's variables hold in texts and arrays (an estimate
  // that counts a shared array once per variable holding it).
  size_t HeldBytes() const;

  // Where the last error that left Load/Call happened (0/"" if unknown).
  int32_t ErrorLine() const { return error_line_; }
  std::string ErrorText() const;

 private:
  struct Slot;
  struct Frame;
  struct NamedObject;
  enum class Flow { kNormal, kExitFor, kExitDo, kExitProcedure };
  class FrameGuard;
  class WithGuard;
  using SlotPtr = std::shared_ptr<Slot>;

  // ---- statements (vb_interpreter.cc) ----
  Flow ExecBlock(const Block& block);
  Flow Exec(const Stmt& stmt);
  bool HandleError(const Error& error, const Stmt& stmt);
  void Locate(const Stmt& stmt);
  void Tick();
  Flow ExecIf(const Stmt& stmt);
  Flow ExecSelect(const Stmt& stmt);
  bool CaseMatches(const CaseTest& test, const Variant& value);
  Flow ExecFor(const Stmt& stmt);
  Flow ExecForEach(const Stmt& stmt);
  Flow ExecDo(const Stmt& stmt);
  Flow ExecWith(const Stmt& stmt);
  void ExecDim(const Stmt& stmt);
  void ExecReDim(const Stmt& stmt);
  void ExecConst(const Stmt& stmt);
  void ExecErase(const Stmt& stmt);
  void ExecOnError(bool resume_next);
  Variant MakeArray(const std::vector<int32_t>& bounds, size_t dimension,
                    const Variant* old);
  std::vector<int32_t> EvalBounds(const DimItem& item);
  Variant CallProcedure(const Procedure& procedure,
                        const std::vector<SlotPtr>& slots);
  void CheckStack() const;

  // ---- expressions and names (vb_evaluator.cc) ----
  Variant Eval(const Expr& expr);
  Variant ValueOf(Variant value);
  Variant EvalValue(const Expr& expr) { return ValueOf(Eval(expr)); }
  bool Truth(const Expr& expr);
  Variant EvalBinary(const Expr& expr);
  bool SameObject(const Variant& a, const Variant& b) const;
  Variant EvalName(const Expr& expr);
  Variant EvalCall(const Expr& expr, bool statement);
  Variant CallByName(const Expr& name, const std::vector<ExprPtr>& args,
                     bool statement);
  Variant CallBuiltin(const Builtin& builtin, const std::vector<ExprPtr>& args);
  Variant InvokeMember(const Expr& member, const std::vector<ExprPtr>& args,
                       InvokeKind kind);
  std::shared_ptr<Dispatch> ObjectOf(const Expr* expr);
  Variant Index(const Variant& base, DispatchArgs& args);
  DispatchArgs EvalArgs(const std::vector<ExprPtr>& args,
                        std::vector<SlotPtr>* refs);
  std::vector<SlotPtr> BindArguments(const std::vector<ExprPtr>& args);
  void Assign(const Expr& target, const Expr& value_expr, bool is_set);
  void AssignIndexed(const Expr& target, Variant value, bool is_set);
  void StoreElement(Slot& slot, const DispatchArgs& indices, Variant value);
  void AssignName(const std::string& key, std::string_view spelling,
                  Variant value);
  Slot* FindSlot(const std::string& key);
  SlotPtr FindSlotShared(const std::string& key);
  SlotPtr DeclareLocal(const std::string& key);
  bool IsUnknownName(const std::string& key) const;
  const NamedObject* FindObject(std::string_view key) const;
  std::optional<Variant> FindGlobalMember(const std::string& spelling,
                                          const std::vector<ExprPtr>& args,
                                          bool* found);
  Frame& Current() { return *frames_.back(); }

  BuiltinContext* context_;
  std::shared_ptr<ErrObject> err_;
  std::vector<std::unique_ptr<Frame>> frames_;  // [0] holds the globals
  std::unordered_map<std::string, std::shared_ptr<Procedure>> procedures_;
  std::vector<std::string> procedure_order_;  // keys, definition order
  std::vector<NamedObject> objects_;
  std::vector<std::shared_ptr<const SourceLines>> programs_lines_;
  bool option_explicit_ = false;
  std::optional<Clock::time_point> deadline_;
  uint32_t ticks_ = 0;
  const char* stack_base_ = nullptr;
  size_t stack_budget_ = 0;
  bool error_located_ = false;
  int32_t error_line_ = 0;
  const SourceLines* error_lines_ = nullptr;
};

}  // namespace rz::vb

#endif  // RZ_VBSCRIPT_VB_INTERPRETER_H_
