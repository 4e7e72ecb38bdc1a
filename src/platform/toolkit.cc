// Copyright 2026 The Veltmark authors.

#include "platform/toolkit.h"

namespace rz {

bool IsAnswerOf(MessageAnswer answer, MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::kOk:
      return answer == MessageAnswer::kOk;
    case MessageButtons::kOkCancel:
      return answer == MessageAnswer::kOk || answer == MessageAnswer::kCancel;
    case MessageButtons::kYesNo:
      return answer == MessageAnswer::kYes || answer == MessageAnswer::kNo;
  }
  return false;
}

std::string_view AnswerName(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::kOk:
      return "OK";
    case MessageAnswer::kCancel:
      return "Cancel";
    case MessageAnswer::kYes:
      return "Yes";
    case MessageAnswer::kNo:
      return "No";
  }
  return "";
}

}  // namespace rz
