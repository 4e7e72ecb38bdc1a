// Copyright 2026 The Veltmark authors.
//
// FakeScriptEngine stands in for the script engines in tests of the script
// host. It understands a tiny line language, the same in both languages:
//   Function NAME = "TEXT"    a procedure answering TEXT
//   Function NAME = ARG       answering its first argument as text
//   Function NAME = OBJECTS   answering the added object names, joined by ","
//   Function NAME = COUNT     answering how often it ran in this engine
//   Function NAME = FAIL      failing with error 13 "Type mismatch" there
// and a line holding "SYNTAX ERROR" makes AddCode fail with error 1002
// "Syntax error" on that line. Other lines are ignored. Sources are
// "<Language> compilation error" / "<Language> runtime error" with
// "VBScript" or "JScript". Every engine made reports what happened to it
// into a shared FakeScriptLog.

#ifndef RZ_SUPPORT_FAKE_SCRIPT_ENGINE_H_
#define RZ_SUPPORT_FAKE_SCRIPT_ENGINE_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/script_engine.h"

namespace rz {

struct FakeScriptLog {
  int engines_made = 0;
  std::vector<std::string> languages;  // every SetLanguage, in order
  std::vector<std::string> code;       // every AddCode text
  std::vector<std::string> objects;    // every AddObject name
  std::vector<int32_t> timeouts;
  std::vector<std::string> runs;  // procedure names Run was called with
};

class FakeScriptEngine : public ScriptEngine {
 public:
  explicit FakeScriptEngine(std::shared_ptr<FakeScriptLog> log);

  void SetLanguage(std::string_view language) override;
  std::string Language() const override { return language_; }
  void Reset() override;
  void SetTimeout(int32_t milliseconds) override;
  void AddObject(std::string_view name, std::shared_ptr<Dispatch> object,
                 bool add_members) override;
  bool AddCode(std::string_view code) override;
  std::vector<std::string> Procedures() const override;
  std::optional<Variant> Run(std::string_view name,
                             DispatchArgs& args) override;
  const ScriptError& LastError() const override { return error_; }

 private:
  struct Procedure {
    std::string name;
    std::string body;
    int32_t line = 0;
    std::string text;
  };
  std::string LanguageName() const;

  std::shared_ptr<FakeScriptLog> log_;
  std::string language_ = "VBSCRIPT";
  std::vector<Procedure> procedures_;
  std::vector<std::string> objects_;
  std::map<std::string, int> counts_;
  int32_t lines_added_ = 0;
  ScriptError error_;
};

}  // namespace rz

#endif  // RZ_SUPPORT_FAKE_SCRIPT_ENGINE_H_
