// Copyright 2026 The Veltmark authors.
//
// LanguageSwitch is the ScriptEngine the platform hands out: one object
// that speaks VBScript or JScript. Each language has its own engine
// (components/vbscript, components/jscript), made by a factory when the
// language is chosen; everything else is passed to the current one. A new
// LanguageSwitch speaks VBScript. Choosing another language makes a fresh
// engine of it (the added code and objects are discarded, as the interface
// says) and gives it the time limit set before; choosing the current one
// changes nothing. SetLanguage raises error 5 for a
// language other than "VBSCRIPT" and "JSCRIPT" (any case) and leaves the
// current engine in place. Not thread-safe.

#ifndef RZ_SCRIPT_LANGUAGE_SWITCH_H_
#define RZ_SCRIPT_LANGUAGE_SWITCH_H_

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/script_engine.h"

namespace rz {

class LanguageSwitch final : public ScriptEngine {
 public:
  using Factory = std::function<std::unique_ptr<ScriptEngine>()>;

  LanguageSwitch(Factory vbscript, Factory jscript);

  void SetLanguage(std::string_view language) override;
  std::string Language() const override { return language_; }
  void Reset() override { current_->Reset(); }
  void SetTimeout(int32_t milliseconds) override;
  void AddObject(std::string_view name, std::shared_ptr<Dispatch> object,
                 bool add_members) override {
    current_->AddObject(name, std::move(object), add_members);
  }
  bool AddCode(std::string_view code) override {
    return current_->AddCode(code);
  }
  std::vector<std::string> Procedures() const override {
    return current_->Procedures();
  }
  std::optional<Variant> Run(std::string_view name,
                             DispatchArgs& args) override {
    return current_->Run(name, args);
  }
  const ScriptError& LastError() const override {
    return current_->LastError();
  }

 private:
  Factory vbscript_;
  Factory jscript_;
  std::string language_;
  int32_t timeout_ = -1;
  std::unique_ptr<ScriptEngine> current_;
};

}  // namespace rz

#endif  // RZ_SCRIPT_LANGUAGE_SWITCH_H_
