// Copyright 2026 The Veltmark authors.

#include "vbscript/vbscript_engine.h"

#include <chrono>
#include <ctime>
#include <new>

#include "core/date_time.h"
#include "core/error.h"
#include "core/text.h"
#include "vbscript/vb_errors.h"
#include "vbscript/vb_interpreter.h"
#include "vbscript/vb_parser.h"
#include "vbscript/vb_work_clock.h"

namespace rz {
namespace {

double LocalNow() {
  const auto now = std::chrono::system_clock::now();
  const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  std::tm parts{};
  localtime_r(&seconds, &parts);
  return DateSerial(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday) +
         TimeSerial(parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string LineOf(std::string_view code, int32_t line) {
  size_t start = 0;
  for (int32_t i = 1; i < line; ++i) {
    start = code.find('\n', start);
    if (start == std::string_view::npos) return "";
    ++start;
  }
  std::string_view text = code.substr(start);
  text = text.substr(0, text.find('\n'));
  if (!text.empty() && text.back() == '\r') text.remove_suffix(1);
  return std::string(text);
}

}  // namespace

VBScriptEngine::VBScriptEngine(Toolkit* toolkit) {
  context_.toolkit = toolkit;
  context_.now = LocalNow;
  interpreter_ = std::make_unique<vb::Interpreter>(&context_);
}

VBScriptEngine::~VBScriptEngine() = default;

void VBScriptEngine::SetLanguage(std::string_view language) {
  if (!EqualsIgnoreCase(language, kLanguageVBScript)) {
    throw Error::InvalidArgument("language '" + std::string(language) +
                                 "' (this engine runs VBScript only)");
  }
  Reset();
}

std::string VBScriptEngine::Language() const {
  return std::string(kLanguageVBScript);
}

void VBScriptEngine::Reset() {
  interpreter_ = std::make_unique<vb::Interpreter>(&context_);
  error_ = ScriptError{};
}

void VBScriptEngine::SetTimeout(int32_t milliseconds) {
  timeout_ms_ = milliseconds;
}

void VBScriptEngine::AddObject(std::string_view name,
                               std::shared_ptr<Dispatch> object,
                               bool add_members) {
  if (!object) throw Error::ObjectNotSet(name);
  if (name.empty()) throw Error::InvalidArgument("empty object name");
  if (interpreter_->HasObject(name)) {
    throw Error::InvalidArgument("object '" + std::string(name) +
                                 "' already added");
  }
  interpreter_->AddObject(name, std::move(object), add_members);
}

bool VBScriptEngine::AddCode(std::string_view code) {
  if (code.size() > kMaxVBScriptCodeSize) {
    error_ = {1001, std::string(vb::kCompileSource), "Out of memory", 0, ""};
    return false;
  }
  std::shared_ptr<vb::Program> program;
  try {
    program = std::make_shared<vb::Program>(vb::Parse(code));
  } catch (const vb::VbCompileError& failure) {
    error_ = {failure.number, std::string(vb::kCompileSource),
              failure.description, failure.line, LineOf(code, failure.line)};
    return false;
  } catch (const std::bad_alloc&) {
    error_ = {1001, std::string(vb::kCompileSource), "Out of memory", 0, ""};
    return false;
  } catch (const std::exception& failure) {
    const Error internal = Error::Internal(failure.what());
    error_ = {internal.Number(), std::string(vb::kCompileSource),
              internal.Description(), 0, ""};
    return false;
  }
  return Execute([&] { interpreter_->Load(std::move(*program)); });
}

std::vector<std::string> VBScriptEngine::Procedures() const {
  return interpreter_->ProcedureNames();
}

std::optional<Variant> VBScriptEngine::Run(std::string_view name,
                                           DispatchArgs& args) {
  bool found = true;
  Variant result;
  // Looking the name up is inside the guarded body too: even that can run
  // out of memory, and nothing may leave the engine but its error record.
  const bool ok = Execute([&] {
    const vb::Procedure* procedure = interpreter_->FindProcedure(name);
    found = procedure != nullptr;
    if (found) result = interpreter_->Call(*procedure, args);
  });
  if (!found) {
    RecordRuntimeError(
        35, "Sub or Function not defined: '" + std::string(name) + "'",
        std::string(vb::kRuntimeSource));
    error_.line = 0;
    error_.text.clear();
    return std::nullopt;
  }
  if (!ok) return std::nullopt;
  return result;
}

const ScriptError& VBScriptEngine::LastError() const { return error_; }

void VBScriptEngine::SetClock(std::function<double()> now) {
  context_.now = std::move(now);
}

bool VBScriptEngine::Execute(const std::function<void()>& body) {
  std::optional<vb::Interpreter::Clock::time_point> deadline;
  if (timeout_ms_ >= 0) {
    deadline =
        vb::Interpreter::Clock::now() + std::chrono::milliseconds(timeout_ms_);
  }
  interpreter_->BeginRun(deadline);
  const vb::RunDeadline run_deadline(
      deadline, [this] { return interpreter_->HeldBytes(); });
  try {
    body();
    return true;
  } catch (const vb::ScriptAborted&) {
    RecordRuntimeError(vb::kTimeoutNumber,
                       "The script ran longer than its time limit of " +
                           std::to_string(timeout_ms_) + " ms",
                       std::string(vb::kRuntimeSource));
  } catch (const Error& failure) {
    RecordRuntimeError(failure.Number(), failure.Description(),
                       failure.Source().empty()
                           ? std::string(vb::kRuntimeSource)
                           : failure.Source());
  } catch (const std::bad_alloc&) {
    RecordRuntimeError(7, vb::RuntimeMessage(7),
                       std::string(vb::kRuntimeSource));
  } catch (const std::exception& failure) {
    const Error internal = Error::Internal(failure.what());
    RecordRuntimeError(internal.Number(), internal.Description(),
                       std::string(vb::kRuntimeSource));
  }
  return false;
}

void VBScriptEngine::RecordRuntimeError(int32_t number, std::string description,
                                        std::string source) {
  error_ = {number, std::move(source), std::move(description),
            interpreter_->ErrorLine(), interpreter_->ErrorText()};
}

}  // namespace rz
