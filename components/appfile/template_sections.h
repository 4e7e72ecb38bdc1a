// Copyright 2026 The Veltmark authors.
//
// The values of the template's list keys and variable sections, read and
// written one key at a time: a RULE line, a VIEW line, the keys of a
// [FIELD] section. app_template.cc drives them over the file; the view
// catalogue's own rewrite (template_views.h) uses the VIEW form too.
//
// The readers never throw: they return false and say what is wrong in
// `problem`, and the caller raises error 75 naming the file and the line.

#ifndef RZ_APPFILE_TEMPLATE_SECTIONS_H_
#define RZ_APPFILE_TEMPLATE_SECTIONS_H_

#include <string>
#include <string_view>
#include <vector>

#include "core/ini_line.h"
#include "platform/app_file.h"
#include "platform/field_definition.h"

namespace rz {

// RULE = key letter, name, six texts, two numbers, separated by commas. A
// text that holds a comma or a double quote, or starts or ends with a
// space, is written in double quotes with each double quote doubled; the
// numbers in their shortest form.
std::string FormatRuleValue(const Rule& rule);
bool ParseRuleValue(std::string_view value, Rule& rule, std::string& problem);

// VIEW = number,name. The name is everything after the first comma.
std::string FormatViewValue(const ViewEntry& view);
bool ParseViewValue(std::string_view value, ViewEntry& view,
                    std::string& problem);

// The key lines of a variable's [FIELD] section, in writing order: NAME,
// TYPE, LENGTH, DECIMALS, then every other attribute that is set, in
// attribute order, with the seven limits after MAX. A limit is its method
// letter, followed directly by the value for "F" ("F12.3456").
std::vector<IniLine> FieldKeyLines(const FieldDefinition& field);

// Applies one key line of a [FIELD] section to `field`. Returns false with
// `problem` set for a value the key cannot take (a TYPE outside
// T P L N A R C, a LENGTH that is not a positive number); `known` tells
// whether the key is a field key at all (unknown keys change nothing).
bool ApplyFieldKey(const IniLine& line, FieldDefinition& field, bool& known,
                   std::string& problem);

}  // namespace rz

#endif  // RZ_APPFILE_TEMPLATE_SECTIONS_H_
