// Copyright 2026 The Veltmark authors.

#include "support/fake_script_engine.h"

#include "core/error.h"
#include "core/text.h"

namespace rz {

FakeScriptEngine::FakeScriptEngine(std::shared_ptr<FakeScriptLog> log)
    : log_(std::move(log)) {
  ++log_->engines_made;
}

std::string FakeScriptEngine::LanguageName() const {
  return language_ == "JSCRIPT" ? "JScript" : "VBScript";
}

void FakeScriptEngine::SetLanguage(std::string_view language) {
  const std::string upper = UpperCase(language);
  if (upper != "VBSCRIPT" && upper != "JSCRIPT") {
    throw Error::InvalidArgument(language);
  }
  log_->languages.push_back(upper);
  if (upper != language_) Reset();
  language_ = upper;
}

void FakeScriptEngine::Reset() {
  procedures_.clear();
  objects_.clear();
  counts_.clear();
  lines_added_ = 0;
  error_ = ScriptError();
}

void FakeScriptEngine::SetTimeout(int32_t milliseconds) {
  log_->timeouts.push_back(milliseconds);
}

void FakeScriptEngine::AddObject(std::string_view name,
                                 std::shared_ptr<Dispatch> object, bool) {
  if (!object) throw Error::ObjectNotSet(name);
  objects_.emplace_back(name);
  log_->objects.emplace_back(name);
}

bool FakeScriptEngine::AddCode(std::string_view code) {
  log_->code.emplace_back(code);
  std::vector<Procedure> found;
  int32_t line = lines_added_;
  for (const std::string& raw : Split(code, '\n')) {
    ++line;
    std::string text = raw;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    if (text.find("SYNTAX ERROR") != std::string::npos) {
      error_ = {1002, LanguageName() + " compilation error", "Syntax error",
                line, text};
      return false;
    }
    const std::string trimmed = Trim(text);
    if (!StartsWithIgnoreCase(trimmed, "Function ")) continue;
    const size_t equals = trimmed.find('=');
    if (equals == std::string::npos) continue;
    found.push_back({Trim(trimmed.substr(9, equals - 9)),
                     Trim(trimmed.substr(equals + 1)), line, text});
  }
  lines_added_ = line;
  procedures_.insert(procedures_.end(), found.begin(), found.end());
  return true;
}

std::vector<std::string> FakeScriptEngine::Procedures() const {
  std::vector<std::string> names;
  for (const Procedure& procedure : procedures_) {
    names.push_back(procedure.name);
  }
  return names;
}

std::optional<Variant> FakeScriptEngine::Run(std::string_view name,
                                             DispatchArgs& args) {
  log_->runs.emplace_back(name);
  for (const Procedure& procedure : procedures_) {
    if (!EqualsIgnoreCase(procedure.name, name)) continue;
    const std::string& body = procedure.body;
    if (body == "FAIL") {
      error_ = {13, LanguageName() + " runtime error", "Type mismatch",
                procedure.line, procedure.text};
      return std::nullopt;
    }
    if (body == "ARG") return args.empty() ? Variant() : args[0];
    if (body == "OBJECTS") {
      std::string joined;
      for (const std::string& object : objects_) {
        joined += (joined.empty() ? "" : ",") + object;
      }
      return Variant(joined);
    }
    if (body == "COUNT") return Variant(++counts_[procedure.name]);
    if (body.size() >= 2 && body.front() == '"' && body.back() == '"') {
      return Variant(body.substr(1, body.size() - 2));
    }
    return Variant();
  }
  error_ = {5, LanguageName() + " runtime error",
            "Invalid procedure call or argument", 0, ""};
  return std::nullopt;
}

}  // namespace rz
