// Copyright 2026 The Veltmark authors.
//
// The time limit of hooks and the security script as a site sets it: a
// number of seconds, from the template's HOOKTIMEOUT key in [GENERAL] or
// from a host program's option (`rzselect --hook-timeout`). Scripts run
// without a time limit unless one is set; 0 seconds also means none.
//
// HookTimeoutMilliseconds raises error 5 (Error::BadSetting, naming the
// file and the key, or the option) for a text that is not a plain decimal
// number of seconds from 0 to kMaxHookTimeoutSeconds. Stateless.

#ifndef RZ_SCRIPT_HOOK_TIMEOUT_H_
#define RZ_SCRIPT_HOOK_TIMEOUT_H_

#include <cstdint>
#include <string_view>

namespace rz {

// The template key.
inline constexpr std::string_view kHookTimeoutKey = "HOOKTIMEOUT";
// The longest time limit a site may set: one day.
inline constexpr double kMaxHookTimeoutSeconds = 86400;
// The engines' value for "no time limit".
inline constexpr int32_t kNoHookTimeout = -1;

// The limit in milliseconds (at least 1 for any positive number of
// seconds), or kNoHookTimeout for "" and for 0. `file` and `key` name the
// setting in errors (`file` "" for an option).
int32_t HookTimeoutMilliseconds(std::string_view seconds, std::string_view file,
                                std::string_view key);

}  // namespace rz

#endif  // RZ_SCRIPT_HOOK_TIMEOUT_H_
