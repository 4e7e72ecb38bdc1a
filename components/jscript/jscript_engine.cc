// Copyright 2026 The Veltmark authors.

#include "jscript/jscript_engine.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

#include "core/error.h"
#include "core/text.h"
#include "duktape.h"
#include "jscript/dispatch_proxy.h"
#include "jscript/js_value.h"
#include "jscript/script_fault.h"

namespace rz {
namespace {

constexpr const char* kToolkitKey = DUK_HIDDEN_SYMBOL("rzToolkit");

// The Enumerator object of JScript, over the items EnumerateItems gives.
constexpr char kEnumeratorSource[] = R"js((function (enumerate) {
  function Enumerator(collection) {
    if (!(this instanceof Enumerator)) return new Enumerator(collection);
    this.items_ = enumerate(collection);
    this.index_ = 0;
  }
  Enumerator.prototype.atEnd = function () {
    return this.index_ >= this.items_.length;
  };
  Enumerator.prototype.moveNext = function () {
    if (this.index_ < this.items_.length) this.index_++;
  };
  Enumerator.prototype.moveFirst = function () { this.index_ = 0; };
  Enumerator.prototype.item = function () { return this.items_[this.index_]; };
  return Enumerator;
}))js";

// Only misuse of the API reaches this (every script runs protected): there
// is nothing left to do but stop.
void FatalError(void* /*udata*/, const char* message) {
  std::fprintf(stderr, "JScript engine: fatal error: %s\n",
               message == nullptr ? "" : message);
  std::abort();
}

std::string TextArg(duk_context* ctx, duk_idx_t index) {
  duk_dup(ctx, index);
  std::string text = duk_safe_to_string(ctx, -1);
  duk_pop(ctx);
  return text;
}

duk_ret_t MsgBox(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    duk_push_current_function(ctx);
    duk_get_prop_string(ctx, -1, kToolkitKey);
    auto* toolkit = static_cast<Toolkit*>(duk_get_pointer(ctx, -1));
    duk_pop_2(ctx);
    const duk_idx_t count = duk_get_top(ctx);
    const std::string text = count > 0 ? TextArg(ctx, 0) : std::string();
    const int32_t flags =
        count > 1 && !duk_is_undefined(ctx, 1) ? duk_to_int32(ctx, 1) : 0;
    const std::string title =
        count > 2 && !duk_is_undefined(ctx, 2) ? TextArg(ctx, 2) : "JScript";
    int32_t answer = 1;
    if (toolkit != nullptr) {
      answer = MessageAnswerCode(
          toolkit->MessageBox(title, text, MessageIconOfFlags(flags),
                              MessageButtonsOfFlags(flags)));
    }
    duk_push_int(ctx, answer);
    return duk_ret_t{1};
  });
}

// Error.prototype.number and .description: the JScript number and text of
// an error's kind, read when asked for (making them when an error is made
// would need stack the error may be reporting the lack of). Assigning
// gives the error its own value.
constexpr char kErrorNumberSource[] = R"js((function (classify) {
  function accessor(index) {
    return {
      get: function () { return classify(this.name, this.message)[index]; },
      set: function (value) {
        Object.defineProperty(this, index === 0 ? 'number' : 'description',
            {value: value, writable: true, configurable: true});
      },
      configurable: true
    };
  }
  Object.defineProperty(Error.prototype, 'number', accessor(0));
  Object.defineProperty(Error.prototype, 'description', accessor(1));
}))js";

std::string StringOrEmpty(duk_context* ctx, duk_idx_t index) {
  return duk_is_string(ctx, index) ? duk_get_string(ctx, index) : "";
}

// classify(name, message) -> [number, description].
duk_ret_t ClassifyForScript(duk_context* ctx) {
  return GuardNative(ctx, [ctx] {
    const JsFault fault = ClassifyError(
        StringOrEmpty(ctx, 0), StringOrEmpty(ctx, 1), FaultPhase::kRuntime);
    duk_push_array(ctx);
    duk_push_int(ctx, fault.number);
    duk_put_prop_index(ctx, -2, 0);
    duk_push_lstring(ctx, fault.description.data(), fault.description.size());
    duk_put_prop_index(ctx, -2, 1);
    return duk_ret_t{1};
  });
}

// Pushes the global names in their order; none of them runs any code.
struct GlobalNames {
  std::vector<std::string> names;
  bool functions_only = false;
};

duk_ret_t CollectGlobals(duk_context* ctx, void* udata) {
  GlobalNames& out = *static_cast<GlobalNames*>(udata);
  duk_push_global_object(ctx);
  const duk_uint_t flags =
      DUK_ENUM_OWN_PROPERTIES_ONLY |
      (out.functions_only ? 0 : DUK_ENUM_INCLUDE_NONENUMERABLE);
  duk_enum(ctx, -1, flags);
  while (duk_next(ctx, -1, 0)) {
    std::string name = duk_get_string(ctx, -1);
    bool keep = true;
    if (out.functions_only) {
      duk_dup(ctx, -1);
      duk_get_prop_desc(ctx, -4, 0);
      duk_get_prop_string(ctx, -1, "value");
      keep = duk_is_function(ctx, -1) != 0;
      duk_pop_2(ctx);
    }
    if (keep) out.names.push_back(std::move(name));
    duk_pop(ctx);
  }
  duk_pop_2(ctx);
  return 0;
}

// Duktape's allocation functions, on the engine's HeapHooks.
void* HeapAllocate(void* udata, duk_size_t size) {
  return static_cast<HeapHooks*>(udata)->Allocate(size);
}

void* HeapReallocate(void* udata, void* block, duk_size_t size) {
  return static_cast<HeapHooks*>(udata)->Reallocate(block, size);
}

void HeapFree(void* udata, void* block) {
  static_cast<HeapHooks*>(udata)->Free(block);
}

struct RunRequest {
  std::string name;
  const DispatchArgs* args;
  Variant result;
};

duk_ret_t RunProcedure(duk_context* ctx, void* udata) {
  RunRequest& request = *static_cast<RunRequest*>(udata);
  return GuardNative(ctx, [ctx, &request] {
    duk_get_global_lstring(ctx, request.name.data(), request.name.size());
    for (const Variant& arg : *request.args) PushVariant(ctx, arg);
    duk_call(ctx, static_cast<duk_idx_t>(request.args->size()));
    request.result = ToVariant(ctx, -1);
    return duk_ret_t{1};
  });
}

}  // namespace

JScriptEngine::JScriptEngine(Toolkit* toolkit) : toolkit_(toolkit) {
  CreateHeap();
}

JScriptEngine::~JScriptEngine() { DestroyHeap(); }

void JScriptEngine::CreateHeap() {
  ctx_ = duk_create_heap(HeapAllocate, HeapReallocate, HeapFree, &hooks_,
                         FatalError);
  if (ctx_ == nullptr) throw Error::OutOfMemory();
  InstallDispatchProxies(ctx_);
  InstallGlobals();
  NoteHostGlobals();
}

void JScriptEngine::DestroyHeap() {
  if (ctx_ == nullptr) return;
  duk_destroy_heap(ctx_);
  ctx_ = nullptr;
}

void JScriptEngine::InstallGlobals() {
  InstallMsgBox();
  InstallEnumerator();
  InstallErrorNumbers();
}

void JScriptEngine::InstallMsgBox() {
  duk_push_c_function(ctx_, MsgBox, DUK_VARARGS);
  duk_push_pointer(ctx_, toolkit_);
  duk_put_prop_string(ctx_, -2, kToolkitKey);
  duk_put_global_string(ctx_, "MsgBox");
}

void JScriptEngine::RunPrelude(const char* source, duk_c_function native,
                               int native_args) {
  if (duk_peval_string(ctx_, source) != 0) {
    FatalError(nullptr, duk_safe_to_string(ctx_, -1));
  }
  duk_push_c_function(ctx_, native, native_args);
  if (duk_pcall(ctx_, 1) != 0) {
    FatalError(nullptr, duk_safe_to_string(ctx_, -1));
  }
}

void JScriptEngine::InstallEnumerator() {
  RunPrelude(kEnumeratorSource, EnumerateItems, 1);
  duk_put_global_string(ctx_, "Enumerator");
}

void JScriptEngine::InstallErrorNumbers() {
  RunPrelude(kErrorNumberSource, ClassifyForScript, 2);
  duk_pop(ctx_);
}

void JScriptEngine::NoteHostGlobals() {
  GlobalNames globals;
  duk_safe_call(ctx_, CollectGlobals, &globals, 0, 1);
  duk_pop(ctx_);
  host_globals_ =
      std::set<std::string>(globals.names.begin(), globals.names.end());
}

void JScriptEngine::SetLanguage(std::string_view language) {
  if (UpperCase(language) != kLanguageJScript) {
    throw Error::InvalidArgument("this engine runs JScript only, not '" +
                                 std::string(language) + "'");
  }
}

std::string JScriptEngine::Language() const {
  return std::string(kLanguageJScript);
}

void JScriptEngine::Reset() {
  DestroyHeap();
  object_names_.clear();
  chunks_.clear();
  last_error_ = ScriptError();
  CreateHeap();
}

void JScriptEngine::SetTimeout(int32_t milliseconds) {
  timeout_ms_ = milliseconds;
}

void JScriptEngine::AddObject(std::string_view name,
                              std::shared_ptr<Dispatch> object,
                              bool add_members) {
  if (object == nullptr) throw Error::ObjectNotSet(name);
  if (name.empty()) throw Error::InvalidArgument("empty object name");
  for (const std::string& known : object_names_) {
    if (EqualsIgnoreCase(known, name)) {
      throw Error::InvalidArgument("object '" + std::string(name) +
                                   "' added twice");
    }
  }
  object_names_.emplace_back(name);
  host_globals_.emplace(name);
  if (add_members) {
    DefineMemberGlobals(ctx_, object);
    for (const std::string& member : object->MemberNames()) {
      host_globals_.insert(member);
    }
  }
  PushDispatchProxy(ctx_, std::move(object));
  duk_put_global_lstring(ctx_, name.data(), name.size());
}

bool JScriptEngine::AddCode(std::string_view code) {
  try {
    return CompileAndRun(code);
  } catch (const std::exception& failure) {
    RecordHostFailure(failure);
  }
  return false;
}

bool JScriptEngine::CompileAndRun(std::string_view code) {
  const int chunk = static_cast<int>(chunks_.size());
  chunks_.emplace_back(code);
  const std::string file_name = ChunkName(chunk);
  duk_push_lstring(ctx_, code.data(), code.size());
  duk_push_lstring(ctx_, file_name.data(), file_name.size());
  if (duk_pcompile(ctx_, 0) != 0) {
    RecordThrown(kJScriptCompilationError, chunk);
    duk_pop(ctx_);
    return false;
  }
  hooks_.Arm(timeout_ms_);
  bool ok = duk_pcall(ctx_, 0) == 0;
  hooks_.Disarm();
  if (!ok) RecordThrown(kJScriptRuntimeError, -1);
  duk_pop(ctx_);
  if (ok && hooks_.Expired()) ok = RecordCaughtTimeout();
  return ok;
}

std::vector<std::string> JScriptEngine::Procedures() const {
  GlobalNames globals;
  globals.functions_only = true;
  duk_safe_call(ctx_, CollectGlobals, &globals, 0, 1);
  duk_pop(ctx_);
  std::vector<std::string> procedures;
  for (std::string& name : globals.names) {
    if (host_globals_.count(name) == 0) procedures.push_back(std::move(name));
  }
  return procedures;
}

std::optional<std::string> JScriptEngine::FindProcedure(
    std::string_view name) const {
  const std::vector<std::string> procedures = Procedures();
  for (const std::string& procedure : procedures) {
    if (procedure == name) return procedure;
  }
  for (const std::string& procedure : procedures) {
    if (EqualsIgnoreCase(procedure, name)) return procedure;
  }
  return std::nullopt;
}

std::optional<Variant> JScriptEngine::Run(std::string_view name,
                                          DispatchArgs& args) {
  try {
    return RunProcedureNamed(name, args);
  } catch (const std::exception& failure) {
    RecordHostFailure(failure);
  }
  return std::nullopt;
}

std::optional<Variant> JScriptEngine::RunProcedureNamed(std::string_view name,
                                                        DispatchArgs& args) {
  const std::optional<std::string> procedure = FindProcedure(name);
  if (!procedure) {
    RecordError(5009, "'" + std::string(name) + "' is undefined",
                kJScriptRuntimeError, -1, 0);
    return std::nullopt;
  }
  RunRequest request{*procedure, &args, Variant()};
  hooks_.Arm(timeout_ms_);
  bool ok = duk_safe_call(ctx_, RunProcedure, &request, 0, 1) == 0;
  hooks_.Disarm();
  if (!ok) RecordThrown(kJScriptRuntimeError, -1);
  duk_pop(ctx_);
  if (ok && hooks_.Expired()) ok = RecordCaughtTimeout();
  if (!ok) return std::nullopt;
  return std::move(request.result);
}

bool JScriptEngine::RecordCaughtTimeout() {
  RecordError(kTimeoutErrorNumber, "Script timed out", kJScriptRuntimeError, -1,
              0);
  return false;
}

void JScriptEngine::RecordHostFailure(const std::exception& failure) {
  const Error error = dynamic_cast<const std::bad_alloc*>(&failure) != nullptr
                          ? Error::OutOfMemory()
                          : Error::InvalidArgument(failure.what());
  RecordError(error.Number(), error.Description(), kJScriptRuntimeError, -1, 0);
}

void JScriptEngine::RecordThrown(std::string_view source, int compile_chunk) {
  const bool compiling = compile_chunk >= 0;
  ThrownValue thrown = DescribeThrown(
      ctx_, compiling ? FaultPhase::kCompile : FaultPhase::kRuntime);
  if (hooks_.Expired())
    thrown.fault = {kTimeoutErrorNumber, "Script timed out"};
  if (compiling && thrown.place.chunk < 0) thrown.place.chunk = compile_chunk;
  RecordError(thrown.fault.number, std::move(thrown.fault.description), source,
              thrown.place.chunk, thrown.place.line);
}

void JScriptEngine::RecordError(int32_t number, std::string description,
                                std::string_view source, int chunk,
                                int32_t line) {
  last_error_.number = number;
  last_error_.source = std::string(source);
  last_error_.description = std::move(description);
  last_error_.line = chunk >= 0 ? line : 0;
  last_error_.text = chunk >= 0 ? LineOfChunk(chunk, line) : std::string();
}

std::string JScriptEngine::LineOfChunk(int chunk, int32_t line) const {
  if (chunk < 0 || chunk >= static_cast<int>(chunks_.size()) || line < 1) {
    return "";
  }
  std::string_view rest = chunks_[chunk];
  for (int32_t i = 1; i < line; ++i) {
    const size_t feed = rest.find('\n');
    if (feed == std::string_view::npos) return "";
    rest.remove_prefix(feed + 1);
  }
  std::string_view text = rest.substr(0, rest.find('\n'));
  if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  return std::string(text);
}

}  // namespace rz
