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

MessageButtons MessageButtonsOfFlags(int32_t flags) {
  switch (flags & 7) {
    case 1:
    case 2:
    case 5:
      return MessageButtons::kOkCancel;
    case 3:
    case 4:
      return MessageButtons::kYesNo;
    default:
      return MessageButtons::kOk;
  }
}

MessageIcon MessageIconOfFlags(int32_t flags) {
  switch (flags & 0x70) {
    case 16:
      return MessageIcon::kCritical;
    case 32:
      return MessageIcon::kQuestion;
    case 48:
      return MessageIcon::kExclamation;
    case 64:
      return MessageIcon::kInformation;
    default:
      return MessageIcon::kNone;
  }
}

int16_t MessageAnswerCode(MessageAnswer answer) {
  switch (answer) {
    case MessageAnswer::kOk:
      return 1;
    case MessageAnswer::kCancel:
      return 2;
    case MessageAnswer::kYes:
      return 6;
    case MessageAnswer::kNo:
      return 7;
  }
  return 1;
}

}  // namespace rz
