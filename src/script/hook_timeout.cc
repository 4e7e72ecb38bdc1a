// Copyright 2026 The Veltmark authors.

#include "script/hook_timeout.h"

#include <charconv>
#include <cmath>
#include <string>

#include "core/error.h"
#include "core/text.h"

namespace rz {

int32_t HookTimeoutMilliseconds(std::string_view seconds, std::string_view file,
                                std::string_view key) {
  const std::string text = Trim(seconds);
  if (text.empty()) return kNoHookTimeout;
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] =
      std::from_chars(text.data(), end, value, std::chars_format::fixed);
  if (error != std::errc() || stop != end || !std::isfinite(value) ||
      value < 0 || value > kMaxHookTimeoutSeconds) {
    throw Error::BadSetting(
        file, key, seconds,
        "a number of seconds from 0 (no time limit) to " +
            std::to_string(static_cast<int>(kMaxHookTimeoutSeconds)));
  }
  if (value == 0) return kNoHookTimeout;
  const auto milliseconds = static_cast<int32_t>(std::llround(value * 1000));
  return milliseconds < 1 ? 1 : milliseconds;
}

}  // namespace rz
