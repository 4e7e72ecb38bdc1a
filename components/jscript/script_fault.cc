// Copyright 2026 The Veltmark authors.

#include "jscript/script_fault.h"

#include <charconv>

namespace rz {
namespace {

constexpr std::string_view kChunkPrefix = "code";

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// A phrase of Duktape's message and the JScript fault it stands for.
struct MessageRule {
  std::string_view phrase;
  int32_t number;
  std::string_view description;
};

constexpr MessageRule kCompileRules[] = {
    {"unterminated string", 1015, "Unterminated string constant"},
    {"unterminated comment", 1016, "Unterminated comment"},
    {"regexp", 5017, "Syntax error in regular expression"},
    {"invalid break", 1019, "Can't have 'break' outside of loop"},
    {"invalid continue", 1020, "Can't have 'continue' outside of loop"},
    {"invalid return", 1018, "'return' statement outside of function"},
    {"recursion limit", kOutOfStackNumber, "Out of stack space"},
    {"stack depth limit", kOutOfStackNumber, "Out of stack space"},
    {"alloc failed", 7, "Out of memory"},
};

constexpr MessageRule kRangeRules[] = {
    {"callstack limit", kOutOfStackNumber, "Out of stack space"},
    {"C stack depth limit", kOutOfStackNumber, "Out of stack space"},
    {"valstack limit", kOutOfStackNumber, "Out of stack space"},
    {"recursion limit", kOutOfStackNumber, "Out of stack space"},
    {"execution timeout", kTimeoutErrorNumber, "Script timed out"},
};

constexpr MessageRule kTypeRules[] = {
    {"not callable", 5002, "Function expected"},
    {"cannot read property", 5007, "Object expected"},
    {"cannot write property", 5007, "Object expected"},
    {"invalid base value", 5007, "Object expected"},
    {"not object coercible", 5007, "Object expected"},
    {"not constructable", 5002, "Function expected"},
};

template <size_t N>
const MessageRule* FindRule(const MessageRule (&rules)[N],
                            std::string_view message) {
  for (const MessageRule& rule : rules) {
    if (Contains(message, rule.phrase)) return &rule;
  }
  return nullptr;
}

JsFault FromRule(const MessageRule& rule) {
  return {rule.number, std::string(rule.description)};
}

// "identifier 'foo' undefined" -> "'foo' is undefined".
JsFault UndefinedIdentifier(std::string_view message) {
  const size_t open = message.find('\'');
  const size_t close = open == std::string_view::npos
                           ? std::string_view::npos
                           : message.find('\'', open + 1);
  if (close == std::string_view::npos) return {5009, "Undefined identifier"};
  return {5009, std::string(message.substr(open, close - open + 1)) +
                    " is undefined"};
}

JsFault ClassifyCompileError(std::string_view message) {
  if (const MessageRule* rule = FindRule(kCompileRules, message)) {
    return FromRule(*rule);
  }
  return {1002, "Syntax error"};
}

JsFault WithDetail(int32_t number, std::string_view text,
                   std::string_view message) {
  if (message.empty()) return {number, std::string(text)};
  return {number, std::string(text) + ": " + std::string(message)};
}

JsFault ClassifyRuntimeError(std::string_view name, std::string_view message) {
  if (Contains(message, "alloc failed")) return {7, "Out of memory"};
  if (name == "ReferenceError") return UndefinedIdentifier(message);
  if (name == "TypeError") {
    if (const MessageRule* rule = FindRule(kTypeRules, message)) {
      return FromRule(*rule);
    }
    return WithDetail(13, "Type mismatch", message);
  }
  if (name == "RangeError") {
    if (const MessageRule* rule = FindRule(kRangeRules, message)) {
      return FromRule(*rule);
    }
    return WithDetail(5, "Invalid procedure call or argument", message);
  }
  if (name == "SyntaxError") return ClassifyCompileError(message);
  if (name == "URIError") {
    return {5025, "The URI to be decoded is not a valid encoding"};
  }
  if (message.empty()) return {5022, "Exception thrown and not caught"};
  return {5022, std::string(message)};
}

// Reads property `key` of the object at `index` as text; "" when it is
// not a string.
std::string StringProperty(duk_context* ctx, duk_idx_t index, const char* key) {
  duk_get_prop_string(ctx, index, key);
  std::string text;
  if (duk_is_string(ctx, -1)) {
    duk_size_t length = 0;
    const char* data = duk_get_lstring(ctx, -1, &length);
    text.assign(data, length);
  }
  duk_pop(ctx);
  return text;
}

int ChunkIndexOf(std::string_view file_name) {
  if (file_name.substr(0, kChunkPrefix.size()) != kChunkPrefix) return -1;
  const std::string_view digits = file_name.substr(kChunkPrefix.size());
  int number = 0;
  const auto [end, ec] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (ec != std::errc() || end != digits.data() + digits.size() || number < 1) {
    return -1;
  }
  return number - 1;
}

FaultPlace PlaceOfErrorObject(duk_context* ctx, duk_idx_t index) {
  const int chunk = ChunkIndexOf(StringProperty(ctx, index, "fileName"));
  if (chunk >= 0) {
    duk_get_prop_string(ctx, index, "lineNumber");
    const int32_t line = duk_is_number(ctx, -1) ? duk_get_int(ctx, -1) : 0;
    duk_pop(ctx);
    if (line > 0) return {chunk, line};
  }
  return PlaceInStack(StringProperty(ctx, index, "stack"));
}

struct DescribeRequest {
  FaultPhase phase;
  ThrownValue* out;
};

ThrownValue DescribeErrorObject(duk_context* ctx, duk_idx_t index,
                                FaultPhase phase) {
  ThrownValue thrown;
  thrown.place = PlaceOfErrorObject(ctx, index);
  const std::string message = StringProperty(ctx, index, "message");
  duk_get_prop_string(ctx, index, "number");
  if (duk_is_number(ctx, -1)) {
    thrown.fault.number = duk_get_int(ctx, -1);
    thrown.fault.description = StringProperty(ctx, index, "description");
    if (thrown.fault.description.empty()) thrown.fault.description = message;
  } else {
    thrown.fault =
        ClassifyError(StringProperty(ctx, index, "name"), message, phase);
  }
  duk_pop(ctx);
  return thrown;
}

duk_ret_t DescribeUnprotected(duk_context* ctx, void* udata) {
  DescribeRequest& request = *static_cast<DescribeRequest*>(udata);
  if (duk_is_object(ctx, 0)) {
    *request.out = DescribeErrorObject(ctx, 0, request.phase);
  } else {
    request.out->fault = {5022, duk_safe_to_string(ctx, 0)};
  }
  return 0;
}

}  // namespace

JsFault ClassifyError(std::string_view name, std::string_view message,
                      FaultPhase phase) {
  if (phase == FaultPhase::kCompile) return ClassifyCompileError(message);
  return ClassifyRuntimeError(name, message);
}

void ThrowFault(duk_context* ctx, int32_t number,
                std::string_view description) {
  duk_push_error_object(ctx, DUK_ERR_ERROR, "%.*s",
                        static_cast<int>(description.size()),
                        description.data());
  // Own properties, defined directly: Error.prototype has accessors of
  // these names.
  constexpr duk_uint_t kOwnData = DUK_DEFPROP_HAVE_VALUE |
                                  DUK_DEFPROP_SET_WRITABLE |
                                  DUK_DEFPROP_SET_CONFIGURABLE;
  duk_push_string(ctx, "number");
  duk_push_int(ctx, number);
  duk_def_prop(ctx, -3, kOwnData);
  duk_push_string(ctx, "description");
  duk_push_lstring(ctx, description.data(), description.size());
  duk_def_prop(ctx, -3, kOwnData);
  duk_throw(ctx);
  // duk_throw does not return; this keeps [[noreturn]] honest for the
  // compiler, which cannot see that.
  std::terminate();
}

std::string ChunkName(int index) {
  return std::string(kChunkPrefix) + std::to_string(index + 1);
}

FaultPlace PlaceInStack(std::string_view stack) {
  const std::string opening = "(" + std::string(kChunkPrefix);
  for (size_t at = stack.find(opening); at != std::string_view::npos;
       at = stack.find(opening, at + 1)) {
    const size_t colon = stack.find(':', at);
    const size_t close = stack.find(')', at);
    if (colon == std::string_view::npos || close == std::string_view::npos ||
        colon > close) {
      continue;
    }
    const int chunk = ChunkIndexOf(stack.substr(at + 1, colon - at - 1));
    int32_t line = 0;
    const std::string_view digits = stack.substr(colon + 1, close - colon - 1);
    const auto [end, ec] =
        std::from_chars(digits.data(), digits.data() + digits.size(), line);
    if (chunk >= 0 && ec == std::errc() &&
        end == digits.data() + digits.size() && line > 0) {
      return {chunk, line};
    }
  }
  return {};
}

ThrownValue DescribeThrown(duk_context* ctx, FaultPhase phase) {
  ThrownValue thrown;
  thrown.fault = {5022, "Exception thrown and not caught"};
  DescribeRequest request{phase, &thrown};
  duk_dup_top(ctx);
  if (duk_safe_call(ctx, DescribeUnprotected, &request, 1, 1) !=
      DUK_EXEC_SUCCESS) {
    thrown.place = {};
  }
  duk_pop(ctx);
  return thrown;
}

}  // namespace rz
