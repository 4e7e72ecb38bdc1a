// Copyright 2026 The Veltmark authors.
//
// Statements, frames and procedure calls of the interpreter.

#include "vbscript/vb_interpreter.h"

#include <pthread.h>

#include <algorithm>
#include <new>

#include "core/text.h"
#include "platform/stack_guard.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_interpreter_internal.h"
#include "vbscript/vb_operators.h"

namespace rz::vb {
namespace {

// Statements between two looks at the clock.
constexpr uint32_t kTicksPerClockCheck = 4096;

// Half the calling thread's stack, at most kMaxStackBudget.
size_t StackBudget() {
  size_t stack_size = 0;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
    pthread_attr_getstacksize(&attributes, &stack_size);
    pthread_attr_destroy(&attributes);
  }
  if (stack_size == 0) return size_t{1} << 20;
  return std::min(kMaxStackBudget, stack_size / 2);
}

}  // namespace

class Interpreter::FrameGuard {
 public:
  FrameGuard(Interpreter* interpreter, std::unique_ptr<Frame> frame)
      : interpreter_(interpreter) {
    interpreter_->frames_.push_back(std::move(frame));
  }
  ~FrameGuard() { interpreter_->frames_.pop_back(); }

 private:
  Interpreter* interpreter_;
};

class Interpreter::WithGuard {
 public:
  WithGuard(Frame* frame, std::shared_ptr<Dispatch> object) : frame_(frame) {
    frame_->with_objects.push_back(std::move(object));
  }
  ~WithGuard() { frame_->with_objects.pop_back(); }

 private:
  Frame* frame_;
};

Interpreter::Interpreter(BuiltinContext* context)
    : context_(context), err_(std::make_shared<ErrObject>()) {
  frames_.push_back(std::make_unique<Frame>());
}

Interpreter::~Interpreter() = default;

void Interpreter::AddObject(std::string_view name,
                            std::shared_ptr<Dispatch> object,
                            bool add_members) {
  objects_.push_back({UpperCase(name), std::move(object), add_members});
}

bool Interpreter::HasObject(std::string_view name) const {
  return FindObject(UpperCase(name)) != nullptr;
}

void Interpreter::BeginRun(std::optional<Clock::time_point> deadline) {
  const char marker = 0;
  stack_base_ = &marker;
  if (stack_budget_ == 0) stack_budget_ = StackBudget();
  deadline_ = deadline;
  ticks_ = 0;
  error_located_ = false;
  error_line_ = 0;
  error_lines_ = nullptr;
  frames_.resize(1);
  frames_[0]->resume_next = false;
  frames_[0]->with_objects.clear();
}

size_t Interpreter::HeldBytes() const {
  size_t bytes = 0;
  std::vector<const Variant*> pending;
  for (const std::unique_ptr<Frame>& frame : frames_) {
    for (const auto& [name, slot] : frame->locals)
      pending.push_back(&slot->value);
  }
  // Nested arrays are walked without recursion (they may be deep).
  while (!pending.empty()) {
    const Variant* value = pending.back();
    pending.pop_back();
    bytes += value->TextSize();
    if (!value->IsArray()) continue;
    const VariantArray& items = value->ToArray();
    bytes += items.size() * sizeof(Variant);
    for (const Variant& item : items) {
      if (item.IsArray() || item.TextSize() > 0) pending.push_back(&item);
    }
  }
  return bytes;
}

void Interpreter::Load(Program program) {
  for (auto& procedure : program.procedures) {
    if (procedures_.find(procedure->key) == procedures_.end()) {
      procedure_order_.push_back(procedure->key);
    }
    procedures_[procedure->key] = procedure;
  }
  if (program.option_explicit) option_explicit_ = true;
  programs_lines_.push_back(program.lines);
  frames_[0]->lines = program.lines.get();
  ExecBlock(program.statements);
}

const Procedure* Interpreter::FindProcedure(std::string_view name) const {
  const auto found = procedures_.find(UpperCase(name));
  return found == procedures_.end() ? nullptr : found->second.get();
}

std::vector<std::string> Interpreter::ProcedureNames() const {
  std::vector<std::string> names;
  for (const std::string& key : procedure_order_) {
    names.push_back(procedures_.at(key)->spelling);
  }
  return names;
}

Variant Interpreter::Call(const Procedure& procedure, DispatchArgs& args) {
  std::vector<SlotPtr> slots;
  for (const Variant& arg : args) {
    slots.push_back(std::make_shared<Slot>(Slot{arg}));
  }
  Variant result = CallProcedure(procedure, slots);
  for (size_t i = 0; i < args.size(); ++i) args[i] = slots[i]->value;
  return result;
}

std::string Interpreter::ErrorText() const {
  if (error_lines_ == nullptr || error_line_ < 1 ||
      static_cast<size_t>(error_line_) > error_lines_->size()) {
    return "";
  }
  return (*error_lines_)[static_cast<size_t>(error_line_) - 1];
}

// ---- statements ----

Interpreter::Flow Interpreter::ExecBlock(const Block& block) {
  for (const auto& stmt : block) {
    Tick();
    Flow flow = Flow::kNormal;
    try {
      flow = Exec(*stmt);
    } catch (const ScriptAborted&) {
      Locate(*stmt);
      throw;
    } catch (const Error& error) {
      if (!HandleError(error, *stmt)) throw;
    } catch (const std::bad_alloc&) {
      if (!HandleError(OutOfMemory(), *stmt)) throw OutOfMemory();
    } catch (const std::exception& failure) {
      const Error internal = Error::Internal(failure.what());
      if (!HandleError(internal, *stmt)) throw internal;
    }
    if (flow != Flow::kNormal) return flow;
  }
  return Flow::kNormal;
}

void Interpreter::Locate(const Stmt& stmt) {
  if (error_located_) return;
  error_located_ = true;
  error_line_ = stmt.line;
  error_lines_ = Current().lines;
}

bool Interpreter::HandleError(const Error& error, const Stmt& stmt) {
  Locate(stmt);
  if (!Current().resume_next) return false;
  err_->Record(error);
  error_located_ = false;
  return true;
}

void Interpreter::Tick() {
  if (++ticks_ < kTicksPerClockCheck) return;
  ticks_ = 0;
  if (deadline_ && Clock::now() > *deadline_) throw ScriptAborted();
}

Interpreter::Flow Interpreter::Exec(const Stmt& stmt) {
  switch (stmt.kind) {
    case StmtKind::kAssign:
      Assign(*stmt.target, *stmt.value, false);
      break;
    case StmtKind::kSet:
      Assign(*stmt.target, *stmt.value, true);
      break;
    case StmtKind::kCall:
      if (stmt.target->kind == ExprKind::kCall) {
        EvalCall(*stmt.target, true);
      } else if (stmt.target->kind == ExprKind::kMember) {
        InvokeMember(*stmt.target, {}, InvokeKind::kCall);
      } else {
        CallByName(*stmt.target, {}, true);
      }
      break;
    case StmtKind::kDim:
      ExecDim(stmt);
      break;
    case StmtKind::kReDim:
      ExecReDim(stmt);
      break;
    case StmtKind::kConst:
      ExecConst(stmt);
      break;
    case StmtKind::kIf:
      return ExecIf(stmt);
    case StmtKind::kSelect:
      return ExecSelect(stmt);
    case StmtKind::kFor:
      return ExecFor(stmt);
    case StmtKind::kForEach:
      return ExecForEach(stmt);
    case StmtKind::kDo:
      return ExecDo(stmt);
    case StmtKind::kWith:
      return ExecWith(stmt);
    case StmtKind::kErase:
      ExecErase(stmt);
      break;
    case StmtKind::kOnErrorResumeNext:
      ExecOnError(true);
      break;
    case StmtKind::kOnErrorGotoZero:
      ExecOnError(false);
      break;
    case StmtKind::kExit:
      if (stmt.exit_kind == ExitKind::kFor) return Flow::kExitFor;
      if (stmt.exit_kind == ExitKind::kDo) return Flow::kExitDo;
      return Flow::kExitProcedure;
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::ExecIf(const Stmt& stmt) {
  for (const IfBranch& branch : stmt.branches) {
    if (Truth(*branch.condition)) return ExecBlock(branch.body);
  }
  return ExecBlock(stmt.else_block);
}

Interpreter::Flow Interpreter::ExecSelect(const Stmt& stmt) {
  const Variant value = EvalValue(*stmt.value);
  for (const SelectCase& select_case : stmt.cases) {
    bool matches = select_case.is_else;
    for (const CaseTest& test : select_case.tests) {
      if (matches) break;
      matches = CaseMatches(test, value);
    }
    if (matches) return ExecBlock(select_case.body);
  }
  return Flow::kNormal;
}

bool Interpreter::CaseMatches(const CaseTest& test, const Variant& value) {
  auto holds = [&](BinaryOp op, const Expr& expr) {
    const Variant result = ApplyBinary(op, value, EvalValue(expr));
    return !result.IsNull() && result.ToBool();
  };
  switch (test.kind) {
    case CaseTest::Kind::kValue:
      return holds(BinaryOp::kEq, *test.first);
    case CaseTest::Kind::kIs:
      return holds(test.op, *test.first);
    case CaseTest::Kind::kRange:
      return holds(BinaryOp::kGe, *test.first) &&
             holds(BinaryOp::kLe, *test.last);
  }
  return false;
}

Interpreter::Flow Interpreter::ExecFor(const Stmt& stmt) {
  const Variant from = EvalValue(*stmt.from);
  const Variant to = EvalValue(*stmt.to);
  const Variant step = stmt.step ? EvalValue(*stmt.step) : Variant(int16_t{1});
  const double last = to.ToDouble();
  const double increment = step.ToDouble();
  from.ToDouble();  // a non-numeric start is a type mismatch
  AssignName(stmt.key, stmt.spelling, from);
  while (true) {
    Tick();
    Slot* counter = FindSlot(stmt.key);
    const double current = counter ? counter->value.ToDouble() : 0;
    if (increment >= 0 ? current > last : current < last) break;
    const Flow flow = ExecBlock(stmt.body);
    if (flow == Flow::kExitFor) break;
    if (flow != Flow::kNormal) return flow;
    counter = FindSlot(stmt.key);
    AssignName(stmt.key, stmt.spelling,
               ApplyBinary(BinaryOp::kAdd, counter ? counter->value : Variant(),
                           step));
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::ExecForEach(const Stmt& stmt) {
  const Variant group = Eval(*stmt.value);
  VariantArray items;
  if (group.IsArray()) {
    items = group.ToArray();
  } else if (group.IsObject() && !IsNothing(group)) {
    items = group.ToObject()->Enumerate();
  } else {
    throw NotACollection();
  }
  for (Variant& item : items) {
    Tick();
    AssignName(stmt.key, stmt.spelling, std::move(item));
    const Flow flow = ExecBlock(stmt.body);
    if (flow == Flow::kExitFor) break;
    if (flow != Flow::kNormal) return flow;
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::ExecDo(const Stmt& stmt) {
  while (true) {
    Tick();
    if (stmt.loop_test == LoopTest::kPreWhile && !Truth(*stmt.value)) break;
    if (stmt.loop_test == LoopTest::kPreUntil && Truth(*stmt.value)) break;
    const Flow flow = ExecBlock(stmt.body);
    if (flow == Flow::kExitDo) break;
    if (flow != Flow::kNormal) return flow;
    if (stmt.loop_test == LoopTest::kPostWhile && !Truth(*stmt.value)) break;
    if (stmt.loop_test == LoopTest::kPostUntil && Truth(*stmt.value)) break;
  }
  return Flow::kNormal;
}

Interpreter::Flow Interpreter::ExecWith(const Stmt& stmt) {
  WithGuard guard(&Current(), ObjectOf(stmt.value.get()));
  return ExecBlock(stmt.body);
}

std::vector<int32_t> Interpreter::EvalBounds(const DimItem& item) {
  // Each dimension is a level of nesting that making the array recurses
  // through.
  if (item.bounds.size() > kMaxArrayDimensions) {
    throw Error::SubscriptOutOfRange(item.spelling + ": more than " +
                                     std::to_string(kMaxArrayDimensions) +
                                     " dimensions");
  }
  std::vector<int32_t> bounds;
  int64_t elements = 1;
  for (const ExprPtr& bound : item.bounds) {
    const int32_t upper = EvalValue(*bound).ToLong();
    if (upper < -1) throw Error::SubscriptOutOfRange(item.spelling);
    elements *= static_cast<int64_t>(upper) + 1;
    if (elements > kMaxArrayElements) throw OutOfMemory();
    bounds.push_back(upper);
  }
  return bounds;
}

// A nested array with the given upper bounds; `old` (may be null) provides
// the values kept by ReDim Preserve.
Variant Interpreter::MakeArray(const std::vector<int32_t>& bounds,
                               size_t dimension, const Variant* old) {
  VariantArray items(static_cast<size_t>(bounds[dimension] + 1));
  const VariantArray* kept = old && old->IsArray() ? &old->ToArray() : nullptr;
  for (size_t i = 0; i < items.size(); ++i) {
    const Variant* previous = kept && i < kept->size() ? &(*kept)[i] : nullptr;
    if (dimension + 1 < bounds.size()) {
      items[i] = MakeArray(bounds, dimension + 1, previous);
    } else if (previous) {
      items[i] = *previous;
    }
  }
  return Variant(std::move(items));
}

void Interpreter::ExecDim(const Stmt& stmt) {
  for (const DimItem& item : stmt.dims) {
    if (Current().locals.count(item.key) > 0) continue;
    SlotPtr slot = DeclareLocal(item.key);
    if (!item.is_array) continue;
    if (item.bounds.empty()) {
      slot->value = Variant(VariantArray{});
    } else {
      slot->value = MakeArray(EvalBounds(item), 0, nullptr);
      slot->fixed_array = true;
    }
  }
}

void Interpreter::ExecReDim(const Stmt& stmt) {
  for (const DimItem& item : stmt.dims) {
    SlotPtr slot = FindSlotShared(item.key);
    if (!slot) slot = DeclareLocal(item.key);
    if (slot->fixed_array) throw ArrayFixed(item.spelling);
    if (slot->is_const) throw IllegalAssignment(item.spelling);
    const std::vector<int32_t> bounds = EvalBounds(item);
    const Variant old = slot->value;
    slot->value = MakeArray(bounds, 0, stmt.preserve ? &old : nullptr);
  }
}

void Interpreter::ExecConst(const Stmt& stmt) {
  for (size_t i = 0; i < stmt.dims.size(); ++i) {
    const DimItem& item = stmt.dims[i];
    if (Current().locals.count(item.key) > 0) {
      throw IllegalAssignment(item.spelling);
    }
    Variant value = EvalValue(*stmt.consts[i]);
    SlotPtr slot = DeclareLocal(item.key);
    slot->value = std::move(value);
    slot->is_const = true;
  }
}

void Interpreter::ExecErase(const Stmt& stmt) {
  Slot* slot = FindSlot(stmt.key);
  if (slot == nullptr || !slot->value.IsArray()) {
    throw Error::TypeMismatch(stmt.spelling);
  }
  if (!slot->fixed_array) {
    slot->value = Variant(VariantArray{});
    return;
  }
  for (Variant& item : slot->value.MutableArray()) {
    if (!item.IsArray()) item = Variant();
  }
}

void Interpreter::ExecOnError(bool resume_next) {
  Current().resume_next = resume_next;
  err_->Clear();
}

// ---- procedures ----

void Interpreter::CheckStack() const {
  const char marker = 0;
  const char* here = &marker;
  const size_t used = stack_base_ == nullptr ? 0
                      : here < stack_base_
                          ? static_cast<size_t>(stack_base_ - here)
                          : static_cast<size_t>(here - stack_base_);
  // The budget counts from this run's start; the thread's own floor also
  // catches runs nested through named objects that call back into scripts.
  if (frames_.size() >= kMaxCallDepth || used > stack_budget_ ||
      NativeStackLow()) {
    throw OutOfStackSpace();
  }
}

Variant Interpreter::CallProcedure(const Procedure& procedure,
                                   const std::vector<SlotPtr>& slots) {
  if (slots.size() != procedure.params.size()) {
    throw Error::WrongArgumentCount(procedure.spelling);
  }
  CheckStack();
  Tick();
  auto frame = std::make_unique<Frame>();
  frame->procedure = &procedure;
  frame->lines = procedure.lines.get();
  SlotPtr result;
  if (procedure.is_function) {
    result = std::make_shared<Slot>();
    frame->locals[procedure.key] = result;
  }
  for (size_t i = 0; i < slots.size(); ++i) {
    const Parameter& param = procedure.params[i];
    frame->locals[param.key] =
        param.by_value ? std::make_shared<Slot>(Slot{slots[i]->value})
                       : slots[i];
  }
  FrameGuard guard(this, std::move(frame));
  ExecBlock(procedure.body);
  return result ? result->value : Variant();
}

}  // namespace rz::vb
