// Copyright 2026 The Veltmark authors.
//
// The view catalogue's save: the template file as stored, with its
// catalogue lines (DEFAULT and VIEW of the [VIEWS] section) replaced and
// every other byte left as it was, so comments, unknown keys, spacing and
// line ends made by hand or by another installation survive a save.
// Pure: works on the file's bytes (Windows-1252) and never throws.

#ifndef RZ_APPFILE_TEMPLATE_VIEWS_H_
#define RZ_APPFILE_TEMPLATE_VIEWS_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/app_file.h"

namespace rz {

// Returns `bytes` with the catalogue replaced: every DEFAULT and VIEW line
// of every [VIEWS] section is removed, and the new lines (DEFAULT, then one
// VIEW per entry in order) take the place of the first one removed, or
// follow the first [VIEWS] header when it had none. A template without a
// [VIEWS] section gets one before its first [FIELD] section, or at the
// end. New lines end like the file's first line (CR LF when it has none).
std::string ReplaceViewCatalogue(std::string_view bytes,
                                 const std::vector<ViewEntry>& views,
                                 int32_t default_view);

}  // namespace rz

#endif  // RZ_APPFILE_TEMPLATE_VIEWS_H_
