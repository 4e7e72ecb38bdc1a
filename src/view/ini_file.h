// Copyright 2026 The Veltmark authors.
//
// The INI document: INIfile loads a line-oriented file of "[GROUP]" headers
// and "KEY = value" lines into an ordered list of INIline objects (the
// INIlines collection), lets the caller change, add and remove lines, and
// writes the document back in the engine's layout. The wizard's view import
// uses it to read another application's file, rewrite values and save it.
// All three classes are Dispatch objects under their own names; scripts
// reach their members by name without regard to case.
//
// Ownership: an INIfile holds its INIlines by shared_ptr and lends it out;
// the collection holds its lines by shared_ptr, so a line handed to a caller
// stays the same object while it is in the document. Not thread-safe.
//
// Loading (LoadFile): the lines are cleared first. A missing file leaves the
// document empty without an error. Otherwise the bytes are read whole and
// decoded from Windows-1252, and each line is parsed with ParseIniLine
// (core/ini_line.h): a header becomes (header, "", ""), and later key lines
// carry it as their Group; a key line becomes (current group, KEY, value);
// anything else (blank, comment, text without "=") becomes an all-empty
// line. A line ends at LF, with or without a CR before it (SplitIniLines
// of core/ini_line.h: files edited where lines end with LF alone read like
// CR LF ones); a lone CR inside a line stays in it and the line rule makes
// it a space. Text after the last line end is not read, as the engine has
// always done (a file whose last line lacks its line end loses that line).
// A file that exists
// but cannot be read raises the file error of platform/file_system.h naming the
// path, with the source "INIfile.LoadFile"; the document is then empty.
//
// Saving (SaveFile): every line gives one output line ended by CR LF. With
// g = Group trimmed and upper-cased, s = Section trimmed, v = Value trimmed:
// s not empty gives a key line (FormatIniKeyLine with LeadingSpaces and
// EqualPos; s upper-cased when UcaseSection is set); s empty and g not empty
// gives the header g; otherwise an empty line (a value without a key has
// nothing to belong to and is dropped). The text is encoded as Windows-1252
// (characters without a form there become "?") and written in one piece to
// a temporary file that is then renamed over the target, so a failed save
// leaves the old file as it was. A file that cannot be written is not an
// error for a script, as it never was: SaveFile returns false (the Dispatch
// member returns nothing) and the document is unchanged.
//
// Positions: Item and Remove take a 1-based position (a number or a text
// holding one, up to the 32-bit Count); anything else raises error 5 and
// changes nothing.

#ifndef RZ_VIEW_INI_FILE_H_
#define RZ_VIEW_INI_FILE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dispatch.h"
#include "core/variant.h"

namespace rz {

// One line of the document. For a key line Group is the header of its group
// ("" before the first header), Section the upper-case key and Value the
// value; for a header line Group is the header and the others are empty;
// for any other line all three are empty.
class INIline : public Dispatch {
 public:
  INIline() = default;
  INIline(std::string group, std::string section, std::string value)
      : group_(std::move(group)),
        section_(std::move(section)),
        value_(std::move(value)) {}

  const std::string& Group() const { return group_; }
  void SetGroup(std::string value) { group_ = std::move(value); }
  const std::string& Section() const { return section_; }
  void SetSection(std::string value) { section_ = std::move(value); }
  const std::string& Value() const { return value_; }
  void SetValue(std::string value) { value_ = std::move(value); }

  std::string_view ClassName() const override { return "INIline"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::string group_;
  std::string section_;
  std::string value_;
};

// The ordered, 1-based lines of a document; reached by position only.
class INIlines : public Dispatch {
 public:
  // Appends a line holding the three texts as given and returns it.
  std::shared_ptr<INIline> Add(std::string group, std::string section,
                               std::string value);
  void Clear() { lines_.clear(); }
  // Raises error 5 for a position outside 1..Count.
  std::shared_ptr<INIline> Item(const Variant& index) const;
  int32_t Count() const { return static_cast<int32_t>(lines_.size()); }
  // Raises error 5 for a position outside 1..Count and removes nothing.
  void Remove(const Variant& index);
  const std::vector<std::shared_ptr<INIline>>& Lines() const { return lines_; }

  std::string_view ClassName() const override { return "INIlines"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;
  VariantArray Enumerate() override;

 private:
  std::vector<std::shared_ptr<INIline>> lines_;
};

class INIfile : public Dispatch {
 public:
  static constexpr int32_t kDefaultLeadingSpaces = 3;
  static constexpr int32_t kDefaultEqualPos = 17;

  // The document's lines, created empty on the first read.
  std::shared_ptr<::rz::INIlines> INIlines();
  // Lends the document another collection; null means a fresh empty one is
  // created on the next read.
  void SetINIlines(std::shared_ptr<::rz::INIlines> lines) {
    lines_ = std::move(lines);
  }

  // Whether keys are written in upper case. The flag is read as
  // UcaseSection and written as UcaseSecton, the two names scripts know.
  bool UcaseSection() const { return ucase_section_; }
  void SetUcaseSecton(bool value) { ucase_section_ = value; }

  // Spaces written before each key.
  int32_t LeadingSpaces() const { return leading_spaces_; }
  void SetLeadingSpaces(int32_t value) { leading_spaces_ = value; }

  // The 1-based column of the "=" on a key line whose key fits before it.
  int32_t EqualPos() const { return equal_pos_; }
  void SetEqualPos(int32_t value) { equal_pos_ = value; }

  // Replaces the lines with the file's content (see the file comment).
  void LoadFile(std::string_view path);

  // Writes the lines to the file; false when it could not be written, in
  // which case an existing file is left as it was.
  bool SaveFile(std::string_view path);

  // The document's text in the engine's layout, UTF-8, each line ended by
  // CR LF: what SaveFile writes before encoding.
  std::string Render();

  std::string_view ClassName() const override { return "INIfile"; }
  Variant Invoke(std::string_view name, InvokeKind kind,
                 DispatchArgs& args) override;
  std::vector<std::string> MemberNames() const override;

 private:
  std::string RenderLine(const INIline& line) const;

  std::shared_ptr<::rz::INIlines> lines_;
  bool ucase_section_ = false;
  int32_t leading_spaces_ = kDefaultLeadingSpaces;
  int32_t equal_pos_ = kDefaultEqualPos;
};

}  // namespace rz

#endif  // RZ_VIEW_INI_FILE_H_
