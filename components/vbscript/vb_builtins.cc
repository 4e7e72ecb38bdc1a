// Copyright 2026 The Veltmark authors.

#include "vbscript/vb_builtins.h"

#include <string>
#include <unordered_map>

#include "core/error.h"
#include "platform/toolkit.h"
#include "vbscript/vb_lexer.h"

namespace rz::vb {
namespace {

// ---- arrays ----

Variant ArrayFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(VariantArray(args.begin(), args.end()));
}

// The array of dimension `dimension` (1-based) of a nested array.
const VariantArray& Dimension(const Variant& value, int32_t dimension) {
  if (!value.IsArray()) throw Error::TypeMismatch(value.TypeName());
  const VariantArray* items = &value.ToArray();
  for (int32_t level = 1; level < dimension; ++level) {
    if (items->empty() || !(*items)[0].IsArray()) {
      throw Error::SubscriptOutOfRange("dimension " +
                                       std::to_string(dimension));
    }
    items = &(*items)[0].ToArray();
  }
  return *items;
}

int32_t DimensionArg(const DispatchArgs& args) {
  const int32_t dimension = args.size() > 1 ? args[1].ToLong() : 1;
  if (dimension < 1) {
    throw Error::SubscriptOutOfRange("dimension " + std::to_string(dimension));
  }
  return dimension;
}

Variant UBoundFn(BuiltinContext&, DispatchArgs& args) {
  const VariantArray& items = Dimension(args[0], DimensionArg(args));
  return Variant(static_cast<int32_t>(items.size()) - 1);
}

Variant LBoundFn(BuiltinContext&, DispatchArgs& args) {
  Dimension(args[0], DimensionArg(args));
  return Variant(int32_t{0});
}

// ---- type tests ----

Variant IsEmptyFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(args[0].IsEmpty());
}
Variant IsNullFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(args[0].IsNull());
}
Variant IsArrayFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(args[0].IsArray());
}
Variant IsObjectFn(BuiltinContext&, DispatchArgs& args) {
  return Variant(args[0].IsObject());
}

Variant TypeNameFn(BuiltinContext&, DispatchArgs& args) {
  const Variant& value = args[0];
  if (value.IsObject()) {
    const std::shared_ptr<Dispatch> object =
        value == Variant(std::shared_ptr<Dispatch>()) ? nullptr
                                                      : value.ToObject();
    return object ? Variant(object->ClassName()) : Variant("Nothing");
  }
  return Variant(value.TypeName());
}

Variant VarTypeFn(BuiltinContext&, DispatchArgs& args) {
  static constexpr int16_t kCodes[] = {0, 1, 11, 2, 3, 5, 7, 8, 9, 8204};
  return Variant(kCodes[static_cast<int>(args[0].Type())]);
}

// ---- MsgBox ----

Variant MsgBoxFn(BuiltinContext& context, DispatchArgs& args) {
  const std::string prompt = args[0].IsNull() ? "" : args[0].ToString();
  const int32_t flags = ArgOr(args, 1, Variant(int32_t{0})).ToLong();
  const std::string title = ArgOr(args, 2, Variant("VBScript")).ToString();
  if (context.toolkit == nullptr) return Variant(int16_t{1});
  const MessageAnswer answer = context.toolkit->MessageBox(
      title, prompt, MessageIconOfFlags(flags), MessageButtonsOfFlags(flags));
  return Variant(MessageAnswerCode(answer));
}

std::vector<Builtin> BuildTable() {
  std::vector<Builtin> table = {
      {"ARRAY", 0, 1 << 16, ArrayFn}, {"UBOUND", 1, 2, UBoundFn},
      {"LBOUND", 1, 2, LBoundFn},     {"ISEMPTY", 1, 1, IsEmptyFn},
      {"ISNULL", 1, 1, IsNullFn},     {"ISARRAY", 1, 1, IsArrayFn},
      {"ISOBJECT", 1, 1, IsObjectFn}, {"TYPENAME", 1, 1, TypeNameFn},
      {"VARTYPE", 1, 1, VarTypeFn},   {"MSGBOX", 1, 5, MsgBoxFn},
  };
  AddTextBuiltins(&table);
  AddMathBuiltins(&table);
  AddDateBuiltins(&table);
  return table;
}

std::unordered_map<std::string, Variant> BuildConstants() {
  std::unordered_map<std::string, Variant> constants = {
      {"VBCRLF", Variant("\r\n")},
      {"VBCR", Variant("\r")},
      {"VBLF", Variant("\n")},
      {"VBNEWLINE", Variant("\r\n")},
      {"VBTAB", Variant("\t")},
      {"VBNULLSTRING", Variant("")},
      {"VBNULLCHAR", Variant(std::string(1, '\0'))},
      {"VBBACK", Variant("\b")},
      {"VBFORMFEED", Variant("\f")},
      {"VBVERTICALTAB", Variant("\v")},
      {"VBOBJECTERROR", Variant(static_cast<int32_t>(0x80040000))},
  };
  static constexpr std::pair<const char*, int16_t> kNumbers[] = {
      {"VBTRUE", -1},
      {"VBFALSE", 0},
      {"VBUSEDEFAULT", -2},
      {"VBBINARYCOMPARE", 0},
      {"VBTEXTCOMPARE", 1},
      {"VBOKONLY", 0},
      {"VBOKCANCEL", 1},
      {"VBABORTRETRYIGNORE", 2},
      {"VBYESNOCANCEL", 3},
      {"VBYESNO", 4},
      {"VBRETRYCANCEL", 5},
      {"VBCRITICAL", 16},
      {"VBQUESTION", 32},
      {"VBEXCLAMATION", 48},
      {"VBINFORMATION", 64},
      {"VBDEFAULTBUTTON1", 0},
      {"VBDEFAULTBUTTON2", 256},
      {"VBDEFAULTBUTTON3", 512},
      {"VBOK", 1},
      {"VBCANCEL", 2},
      {"VBABORT", 3},
      {"VBRETRY", 4},
      {"VBIGNORE", 5},
      {"VBYES", 6},
      {"VBNO", 7},
      {"VBUSESYSTEMDAYOFWEEK", 0},
      {"VBSUNDAY", 1},
      {"VBMONDAY", 2},
      {"VBTUESDAY", 3},
      {"VBWEDNESDAY", 4},
      {"VBTHURSDAY", 5},
      {"VBFRIDAY", 6},
      {"VBSATURDAY", 7},
      {"VBFIRSTJAN1", 1},
      {"VBGENERALDATE", 0},
      {"VBLONGDATE", 1},
      {"VBSHORTDATE", 2},
      {"VBLONGTIME", 3},
      {"VBSHORTTIME", 4},
      {"VBEMPTY", 0},
      {"VBNULL", 1},
      {"VBINTEGER", 2},
      {"VBLONG", 3},
      {"VBSINGLE", 4},
      {"VBDOUBLE", 5},
      {"VBCURRENCY", 6},
      {"VBDATE", 7},
      {"VBSTRING", 8},
      {"VBOBJECT", 9},
      {"VBERROR", 10},
      {"VBBOOLEAN", 11},
      {"VBVARIANT", 12},
      {"VBDATAOBJECT", 13},
      {"VBBYTE", 17},
      {"VBARRAY", 8192},
  };
  for (const auto& [name, value] : kNumbers) {
    constants.emplace(name, Variant(value));
  }
  return constants;
}

}  // namespace

const Builtin* FindBuiltin(std::string_view key) {
  static const auto* index = [] {
    static const std::vector<Builtin> table = BuildTable();
    auto* map = new std::unordered_map<std::string_view, const Builtin*>();
    for (const Builtin& builtin : table) map->emplace(builtin.key, &builtin);
    return map;
  }();
  const auto found = index->find(key);
  return found == index->end() ? nullptr : found->second;
}

const Variant* FindConstant(std::string_view key) {
  static const auto* constants =
      new std::unordered_map<std::string, Variant>(BuildConstants());
  const auto found = constants->find(std::string(key));
  return found == constants->end() ? nullptr : &found->second;
}

const Variant& ArgOr(const DispatchArgs& args, size_t index,
                     const Variant& fallback) {
  if (index >= args.size() || args[index].IsEmpty()) return fallback;
  return args[index];
}

bool AnyNull(const DispatchArgs& args, size_t count) {
  for (size_t i = 0; i < count && i < args.size(); ++i) {
    if (args[i].IsNull()) return true;
  }
  return false;
}

double ToDateSerial(const Variant& value) {
  if (value.IsString()) {
    double serial = 0;
    if (ParseDateText(value.ToString(), &serial)) return serial;
  }
  if (value.IsNull()) throw Error::InvalidUseOfNull();
  return value.ToDate();
}

}  // namespace rz::vb
