// Copyright 2026 The Veltmark authors.

#include "view/item_list.h"

#include "core/error.h"
#include "core/text.h"

namespace rz {

size_t ListIndex(const Variant& index, size_t count) {
  if (index.IsString() && !IsNumericText(index.ToString())) {
    throw Error::InvalidArgument("no item has the key '" + index.ToString() +
                                 "'");
  }
  if (!index.IsNumber() && !index.IsString()) {
    throw Error::InvalidArgument("position " + std::string(index.TypeName()));
  }
  int16_t position = 0;
  try {
    position = index.ToInteger();
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

}  // namespace rz
