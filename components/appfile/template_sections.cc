// Copyright 2026 The Veltmark authors.

#include "appfile/template_sections.h"

#include <cmath>
#include <limits>

#include "appfile/app_template.h"
#include "core/error.h"
#include "core/text.h"

namespace rz {
namespace {

constexpr size_t kRuleFieldCount = 10;  // key, name, six texts, two numbers
constexpr std::string_view kTypeLetters = "TPLNARC";

enum class ValueKind { kText, kDecimal, kNumber };

ValueKind KindOf(FieldAttribute attribute) {
  switch (attribute) {
    case FieldAttribute::kMax:
    case FieldAttribute::kMin:
      return ValueKind::kDecimal;
    case FieldAttribute::kLength:
    case FieldAttribute::kDecimals:
    case FieldAttribute::kSample:
    case FieldAttribute::kLimitMethod:
    case FieldAttribute::kTargetMethod:
    case FieldAttribute::kExtra:
    case FieldAttribute::kLookup:
    case FieldAttribute::kCompData:
    case FieldAttribute::kKeyId:
    case FieldAttribute::kRange:
    case FieldAttribute::kPosition:
    case FieldAttribute::kSpare:
    case FieldAttribute::kAvg:
      return ValueKind::kNumber;
    default:
      return ValueKind::kText;
  }
}

std::string NumberText(double value) {
  return std::isfinite(value) ? ShortestNumberText(value) : "0";
}

bool NeedsQuotes(std::string_view text) {
  if (text.empty()) return false;
  return text.find_first_of(",\"") != std::string_view::npos ||
         text.front() == ' ' || text.back() == ' ';
}

std::string QuotedField(std::string_view text) {
  const std::string one_line = StoredText(Variant(text));
  if (!NeedsQuotes(one_line)) return one_line;
  return "\"" + Replace(one_line, "\"", "\"\"") + "\"";
}

size_t SkipSpaces(std::string_view text, size_t pos) {
  while (pos < text.size() && text[pos] == ' ') ++pos;
  return pos;
}

// Reads the quoted field starting at text[pos] == '"'; pos ends after the
// closing quote and any spaces.
bool ReadQuotedField(std::string_view text, size_t& pos, std::string& field,
                     std::string& problem) {
  ++pos;
  while (true) {
    if (pos >= text.size()) {
      problem = "a quoted rule text is not closed";
      return false;
    }
    if (text[pos] == '"') {
      if (pos + 1 < text.size() && text[pos + 1] == '"') {
        field += '"';
        pos += 2;
        continue;
      }
      pos = SkipSpaces(text, pos + 1);
      if (pos < text.size() && text[pos] != ',') {
        problem = "text follows a closing quote in a rule";
        return false;
      }
      return true;
    }
    field += text[pos++];
  }
}

// Splits a comma-separated value whose fields may be quoted.
bool SplitFields(std::string_view text, std::vector<std::string>& fields,
                 std::string& problem) {
  size_t pos = 0;
  while (true) {
    pos = SkipSpaces(text, pos);
    std::string field;
    if (pos < text.size() && text[pos] == '"') {
      if (!ReadQuotedField(text, pos, field, problem)) return false;
    } else {
      const size_t comma = std::min(text.find(',', pos), text.size());
      field = Trim(text.substr(pos, comma - pos));
      pos = comma;
    }
    fields.push_back(std::move(field));
    if (pos >= text.size()) return true;
    ++pos;  // the comma
  }
}

bool ReadRuleNumber(const std::string& text, double& number,
                    std::string& problem) {
  if (text.empty()) {
    number = 0;
    return true;
  }
  if (!IsNumericText(text)) {
    problem = "rule number '" + text + "' is not a number";
    return false;
  }
  number = LeadingNumber(text);
  return true;
}

// A number attribute: a whole number in the 16-bit range as an Integer,
// another number as a Double, anything else kept as text.
Variant NumberValue(const std::string& text, bool always_double) {
  if (!IsNumericText(text)) return Variant(text);
  const double number = LeadingNumber(text);
  if (!always_double && number == std::floor(number) &&
      number >= std::numeric_limits<int16_t>::min() &&
      number <= std::numeric_limits<int16_t>::max()) {
    return Variant(static_cast<int16_t>(number));
  }
  return Variant(number);
}

std::string LimitText(const Limit& limit) {
  if (limit.method.empty()) return "";
  size_t pos = 0;
  utf8::NextChar(limit.method, &pos);
  const std::string letter = UpperCase(limit.method.substr(0, pos));
  if (letter != "F") return letter;
  return letter + NumberText(limit.value);
}

bool ApplyLimit(LimitKind kind, const std::string& value,
                FieldDefinition& field, std::string& problem) {
  Limit limit{"", 0};
  if (!value.empty()) {
    size_t pos = 0;
    utf8::NextChar(value, &pos);
    limit.method = UpperCase(value.substr(0, pos));
    const std::string rest = Trim(std::string_view(value).substr(pos));
    try {
      limit.value = LeadingNumber(rest);
    } catch (const Error&) {
      problem = std::string(FieldDefinition::KeyOf(kind)) + " '" + value +
                "' is out of range";
      return false;
    }
  }
  field.SetLimit(kind, limit);
  return true;
}

// True for a number too large for a double ("1e999"): its leading number
// cannot be read.
bool BeyondDoubleRange(const std::string& value) {
  try {
    LeadingNumber(value);
  } catch (const Error&) {
    return true;
  }
  return false;
}

bool ApplyAttribute(FieldAttribute attribute, const std::string& value,
                    FieldDefinition& field, std::string& problem) {
  if (attribute == FieldAttribute::kType) {
    const std::string letter = UpperCase(value);
    if (letter.size() != 1 ||
        kTypeLetters.find(letter[0]) == std::string_view::npos) {
      problem = "TYPE '" + value + "' is not one of T P L N A R C";
      return false;
    }
    field.Set(attribute, Variant(letter));
    return true;
  }
  if (attribute == FieldAttribute::kLength &&
      (!IsNumericText(value) || LeadingNumber(value) <= 0)) {
    problem = "LENGTH '" + value + "' is not a positive number";
    return false;
  }
  if (KindOf(attribute) != ValueKind::kText && BeyondDoubleRange(value)) {
    problem = std::string(FieldDefinition::KeyOf(attribute)) + " '" + value +
              "' is out of range";
    return false;
  }
  switch (KindOf(attribute)) {
    case ValueKind::kText:
      field.Set(attribute, Variant(value));
      break;
    case ValueKind::kDecimal:
      field.Set(attribute, NumberValue(value, true));
      break;
    case ValueKind::kNumber:
      field.Set(attribute, NumberValue(value, false));
      break;
  }
  return true;
}

bool Writable(const Variant& value) {
  return !value.IsEmpty() && !value.IsObject() && !value.IsArray();
}

}  // namespace

std::string FormatRuleValue(const Rule& rule) {
  std::string text = QuotedField(rule.key) + "," + QuotedField(rule.name);
  for (const std::string& part : rule.attributes.texts) {
    text += "," + QuotedField(part);
  }
  for (double number : rule.attributes.numbers) {
    text += "," + NumberText(number);
  }
  return text;
}

bool ParseRuleValue(std::string_view value, Rule& rule, std::string& problem) {
  std::vector<std::string> fields;
  if (!SplitFields(value, fields, problem)) return false;
  if (fields.size() != kRuleFieldCount) {
    problem =
        "a RULE needs 10 fields (key, name, six texts, two numbers), "
        "found " +
        std::to_string(fields.size());
    return false;
  }
  if (utf8::CharacterCount(fields[0]) != 1) {
    problem = "the key of a rule must be one letter, found '" + fields[0] + "'";
    return false;
  }
  rule.key = fields[0];
  rule.name = fields[1];
  for (size_t i = 0; i < rule.attributes.texts.size(); ++i) {
    rule.attributes.texts[i] = fields[2 + i];
  }
  for (size_t i = 0; i < rule.attributes.numbers.size(); ++i) {
    if (!ReadRuleNumber(fields[8 + i], rule.attributes.numbers[i], problem)) {
      return false;
    }
  }
  return true;
}

std::string FormatViewValue(const ViewEntry& view) {
  return std::to_string(view.number) + "," + StoredText(Variant(view.name));
}

bool ParseViewValue(std::string_view value, ViewEntry& view,
                    std::string& problem) {
  const size_t comma = value.find(',');
  const std::string number =
      Trim(value.substr(0, std::min(comma, value.size())));
  bool digits = !number.empty() && number.size() <= 10;
  for (char c : number) digits = digits && c >= '0' && c <= '9';
  const double parsed = digits ? LeadingNumber(number) : 0;
  if (comma == std::string_view::npos || parsed < 1 ||
      parsed > std::numeric_limits<int32_t>::max()) {
    problem =
        "a VIEW must be a view number above 0, a comma and a name; "
        "found '" +
        std::string(value) + "'";
    return false;
  }
  view.number = static_cast<int32_t>(parsed);
  view.name = Trim(value.substr(comma + 1));
  return true;
}

std::vector<IniLine> FieldKeyLines(const FieldDefinition& field) {
  std::vector<IniLine> lines;
  auto add = [&](FieldAttribute attribute) {
    lines.push_back({std::string(FieldDefinition::KeyOf(attribute)),
                     StoredText(field.Get(attribute))});
  };
  // NAME, TYPE and LENGTH are written even when not set, so the reader
  // reports a variable defined without them instead of skipping it.
  add(FieldAttribute::kName);
  add(FieldAttribute::kType);
  add(FieldAttribute::kLength);
  for (int i = 0; i < kFieldAttributeCount; ++i) {
    const auto attribute = static_cast<FieldAttribute>(i);
    if (attribute == FieldAttribute::kName ||
        attribute == FieldAttribute::kType ||
        attribute == FieldAttribute::kLength) {
      continue;
    }
    if (Writable(field.Get(attribute))) add(attribute);
    if (attribute != FieldAttribute::kMax) continue;
    for (int k = 0; k < kLimitCount; ++k) {
      const auto limit = static_cast<LimitKind>(k);
      lines.push_back({std::string(FieldDefinition::KeyOf(limit)),
                       LimitText(field.GetLimit(limit))});
    }
  }
  return lines;
}

bool ApplyFieldKey(const IniLine& line, FieldDefinition& field, bool& known,
                   std::string& problem) {
  known = true;
  if (auto limit = FieldDefinition::LimitForKey(line.key)) {
    return ApplyLimit(*limit, line.value, field, problem);
  }
  if (auto attribute = FieldDefinition::AttributeForKey(line.key)) {
    return ApplyAttribute(*attribute, line.value, field, problem);
  }
  known = false;
  return true;
}

}  // namespace rz
