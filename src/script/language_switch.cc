// Copyright 2026 The Veltmark authors.

#include "script/language_switch.h"

#include <utility>

#include "core/error.h"
#include "core/text.h"

namespace rz {

LanguageSwitch::LanguageSwitch(Factory vbscript, Factory jscript)
    : vbscript_(std::move(vbscript)), jscript_(std::move(jscript)) {
  SetLanguage(kLanguageVBScript);
}

void LanguageSwitch::SetLanguage(std::string_view language) {
  const std::string upper = UpperCase(language);
  if (current_ && upper == language_) return;  // no change: keep all
  std::unique_ptr<ScriptEngine> engine;
  if (upper == kLanguageVBScript) {
    engine = vbscript_();
  } else if (upper == kLanguageJScript) {
    engine = jscript_();
  } else {
    throw Error::InvalidArgument("script language " + std::string(language) +
                                 " (VBSCRIPT or JSCRIPT)");
  }
  engine->SetLanguage(upper);
  engine->SetTimeout(timeout_);
  current_ = std::move(engine);
  language_ = upper;
}

void LanguageSwitch::SetTimeout(int32_t milliseconds) {
  timeout_ = milliseconds;
  current_->SetTimeout(milliseconds);
}

}  // namespace rz
