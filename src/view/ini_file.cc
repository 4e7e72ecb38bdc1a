// Copyright 2026 The Veltmark authors.

#include "view/ini_file.h"

#include "core/error.h"
#include "core/ini_line.h"
#include "core/text.h"
#include "platform/file_system.h"
#include "view/item_list.h"

namespace rz {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// The 0-based index of the 1-based position `index` among `count` lines.
// Unlike the view lists, a document may hold more lines than a 16-bit
// position reaches, so positions are 32-bit.
size_t LinePosition(const Variant& index, size_t count) {
  if (index.IsString() && !IsNumericText(index.ToString())) {
    throw Error::InvalidArgument("no line has the key '" + index.ToString() +
                                 "'");
  }
  if (!index.IsNumber() && !index.IsString()) {
    throw Error::InvalidArgument("position " + std::string(index.TypeName()));
  }
  int32_t position = 0;
  try {
    position = index.ToLong();
  } catch (const Error&) {
    throw Error::InvalidArgument("position " + index.ToString() +
                                 " is outside 1.." + std::to_string(count));
  }
  if (position < 1 || static_cast<size_t>(position) > count) {
    throw Error::InvalidArgument("position " + std::to_string(position) +
                                 " is outside 1.." + std::to_string(count));
  }
  return static_cast<size_t>(position - 1);
}

const DispatchTable<INIline>& LineTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<INIline>;
    t->Property(
         "Group",
         [](INIline& l, DispatchArgs&) -> Variant { return l.Group(); },
         [](INIline& l, const Variant& v, DispatchArgs&) {
           l.SetGroup(v.ToString());
         })
        .Property(
            "Section",
            [](INIline& l, DispatchArgs&) -> Variant { return l.Section(); },
            [](INIline& l, const Variant& v, DispatchArgs&) {
              l.SetSection(v.ToString());
            })
        .Property(
            "Value",
            [](INIline& l, DispatchArgs&) -> Variant { return l.Value(); },
            [](INIline& l, const Variant& v, DispatchArgs&) {
              l.SetValue(v.ToString());
            });
    return t;
  }();
  return *table;
}

const DispatchTable<INIlines>& LinesTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<INIlines>;
    t->Method(
         "Add",
         [](INIlines& l, DispatchArgs& a) -> Variant {
           return std::shared_ptr<Dispatch>(
               l.Add(a[0].ToString(), a[1].ToString(), a[2].ToString()));
         },
         3, 3)
        .Method("Clear", [](INIlines& l, DispatchArgs&) {
          l.Clear();
          return Variant();
        });
    AddListAccess(*t);
    return t;
  }();
  return *table;
}

// True for an object reference that holds no object ("Nothing").
bool IsNothing(const Variant& v) {
  if (!v.IsObject()) return false;
  try {
    v.ToObject();
  } catch (const Error&) {
    return true;
  }
  return false;
}

// Reads the lines property, which hands out the collection by reference.
Variant GetLines(INIfile& f, DispatchArgs&) {
  return std::shared_ptr<Dispatch>(f.INIlines());
}

// Writes the lines property: an object that is not a line collection is a
// type mismatch; Nothing drops the collection.
void PutLines(INIfile& f, const Variant& v, DispatchArgs&) {
  if (IsNothing(v)) {
    f.SetINIlines(nullptr);
    return;
  }
  const std::shared_ptr<Dispatch> object = v.ToObject();
  auto lines = std::dynamic_pointer_cast<INIlines>(object);
  if (lines == nullptr) {
    throw Error::TypeMismatchFor(object->ClassName(), "INIlines");
  }
  f.SetINIlines(std::move(lines));
}

const DispatchTable<INIfile>& FileTable() {
  static const auto* table = [] {
    auto* t = new DispatchTable<INIfile>;
    t->Property("INIlines", GetLines, PutLines)
        .Property("UcaseSection",
                  [](INIfile& f, DispatchArgs&) -> Variant {
                    return f.UcaseSection();
                  })
        .WriteOnly("UcaseSecton",
                   [](INIfile& f, const Variant& v, DispatchArgs&) {
                     f.SetUcaseSecton(v.ToBool());
                   })
        .Property(
            "LeadingSpaces",
            [](INIfile& f, DispatchArgs&) -> Variant {
              return f.LeadingSpaces();
            },
            [](INIfile& f, const Variant& v, DispatchArgs&) {
              f.SetLeadingSpaces(v.ToLong());
            })
        .Property(
            "EqualPos",
            [](INIfile& f, DispatchArgs&) -> Variant { return f.EqualPos(); },
            [](INIfile& f, const Variant& v, DispatchArgs&) {
              f.SetEqualPos(v.ToLong());
            })
        .Method(
            "LoadFile",
            [](INIfile& f, DispatchArgs& a) {
              f.LoadFile(a[0].ToString());
              return Variant();
            },
            1, 1)
        .Method(
            "SaveFile",
            [](INIfile& f, DispatchArgs& a) {
              f.SaveFile(a[0].ToString());
              return Variant();
            },
            1, 1);
    return t;
  }();
  return *table;
}

}  // namespace

Variant INIline::Invoke(std::string_view name, InvokeKind kind,
                        DispatchArgs& args) {
  return LineTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> INIline::MemberNames() const {
  return LineTable().Names();
}

std::shared_ptr<INIline> INIlines::Add(std::string group, std::string section,
                                       std::string value) {
  auto line = std::make_shared<INIline>(std::move(group), std::move(section),
                                        std::move(value));
  lines_.push_back(line);
  return line;
}

std::shared_ptr<INIline> INIlines::Item(const Variant& index) const {
  return lines_[LinePosition(index, lines_.size())];
}

void INIlines::Remove(const Variant& index) {
  lines_.erase(lines_.begin() +
               static_cast<std::ptrdiff_t>(LinePosition(index, lines_.size())));
}

Variant INIlines::Invoke(std::string_view name, InvokeKind kind,
                         DispatchArgs& args) {
  return LinesTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> INIlines::MemberNames() const {
  return LinesTable().Names();
}

VariantArray INIlines::Enumerate() {
  return VariantArray(lines_.begin(), lines_.end());
}

std::shared_ptr<::rz::INIlines> INIfile::INIlines() {
  if (lines_ == nullptr) lines_ = std::make_shared<::rz::INIlines>();
  return lines_;
}

void INIfile::LoadFile(std::string_view path) {
  ::rz::INIlines& lines = *INIlines();
  lines.Clear();
  if (!FileExists(path)) return;
  std::string text;
  try {
    text = ReadTextFile(path);
  } catch (const Error& error) {
    throw error.WithSource("INIfile.LoadFile");
  }
  std::string group;
  for (std::string_view raw : SplitIniLines(text)) {
    IniLine parsed = ParseIniLine(raw);
    if (IsIniHeader(parsed)) {
      group = parsed.key;
      lines.Add(group, "", "");
    } else if (!parsed.key.empty()) {
      lines.Add(group, std::move(parsed.key), std::move(parsed.value));
    } else {
      lines.Add("", "", "");
    }
  }
}

std::string INIfile::RenderLine(const INIline& line) const {
  const std::string section = Trim(line.Section());
  if (!section.empty()) {
    return FormatIniKeyLine(ucase_section_ ? UpperCase(section) : section,
                            Trim(line.Value()), leading_spaces_, equal_pos_);
  }
  return UpperCase(Trim(line.Group()));
}

std::string INIfile::Render() {
  std::string text;
  for (const auto& line : INIlines()->Lines()) {
    text += RenderLine(*line);
    text += kLineEnd;
  }
  return text;
}

bool INIfile::SaveFile(std::string_view path) {
  const std::string text = Render();
  try {
    WriteTextFileAtomically(path, text);
  } catch (const Error&) {
    // A file that cannot be written is not an error for the caller; the
    // old file, if any, is untouched.
    return false;
  }
  return true;
}

Variant INIfile::Invoke(std::string_view name, InvokeKind kind,
                        DispatchArgs& args) {
  return FileTable().Invoke(*this, name, kind, args);
}

std::vector<std::string> INIfile::MemberNames() const {
  return FileTable().Names();
}

}  // namespace rz
