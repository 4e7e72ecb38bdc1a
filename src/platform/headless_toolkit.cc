// Copyright 2026 The Veltmark authors.

#include "platform/headless_toolkit.h"

#include <algorithm>
#include <utility>

#include "core/error.h"

namespace rz {
namespace {

MessageAnswer FirstButton(MessageButtons buttons) {
  return buttons == MessageButtons::kYesNo ? MessageAnswer::kYes
                                           : MessageAnswer::kOk;
}

}  // namespace

void HeadlessToolkit::QueueMessageAnswer(MessageAnswer answer) {
  message_answers_.push_back(answer);
}

void HeadlessToolkit::QueueInputAnswer(std::string answer) {
  input_answers_.push_back(std::move(answer));
}

void HeadlessToolkit::QueueFileAnswer(std::optional<std::string> path) {
  file_answers_.push_back(std::move(path));
}

size_t HeadlessToolkit::PendingAnswers() const {
  return message_answers_.size() + input_answers_.size() + file_answers_.size();
}

void HeadlessToolkit::SetModalHandler(ModalHandler handler) {
  modal_handler_ = std::move(handler);
}

std::vector<HeadlessToolkit::ShownEntry> HeadlessToolkit::LogOf(
    ShownKind kind) const {
  std::vector<ShownEntry> entries;
  for (const ShownEntry& entry : log_) {
    if (entry.kind == kind) entries.push_back(entry);
  }
  return entries;
}

bool HeadlessToolkit::IsShown(const DialogModel& model) const {
  return std::find(shown_.begin(), shown_.end(), &model) != shown_.end();
}

MessageAnswer HeadlessToolkit::MessageBox(std::string_view title,
                                          std::string_view text,
                                          MessageIcon icon,
                                          MessageButtons buttons) {
  MessageAnswer answer = FirstButton(buttons);
  if (!message_answers_.empty()) {
    answer = message_answers_.front();
    if (!IsAnswerOf(answer, buttons)) {
      throw Error::InvalidArgument(
          "the queued answer " + std::string(AnswerName(answer)) +
          " is not a button of the message '" + std::string(text) + "'");
    }
    message_answers_.pop_front();
  }
  ShownEntry entry;
  entry.kind = ShownKind::kMessageBox;
  entry.title = title;
  entry.text = text;
  entry.icon = icon;
  entry.buttons = buttons;
  entry.answer = AnswerName(answer);
  log_.push_back(std::move(entry));
  return answer;
}

std::string HeadlessToolkit::InputBox(std::string_view prompt,
                                      std::string_view title,
                                      std::string_view default_text) {
  std::string answer;
  if (!input_answers_.empty()) {
    answer = std::move(input_answers_.front());
    input_answers_.pop_front();
  }
  ShownEntry entry;
  entry.kind = ShownKind::kInputBox;
  entry.title = title;
  entry.text = prompt;
  entry.detail = default_text;
  entry.answer = answer;
  log_.push_back(std::move(entry));
  return answer;
}

std::optional<std::string> HeadlessToolkit::OpenFileDialog(
    std::string_view title, std::string_view folder, std::string_view filter) {
  std::optional<std::string> answer;
  if (!file_answers_.empty()) {
    answer = std::move(file_answers_.front());
    file_answers_.pop_front();
  }
  ShownEntry entry;
  entry.kind = ShownKind::kOpenFileDialog;
  entry.title = title;
  entry.text = folder;
  entry.detail = filter;
  entry.answer = answer.value_or("");
  log_.push_back(std::move(entry));
  return answer;
}

void HeadlessToolkit::ShowModal(DialogModel& model) {
  LogModel(ShownKind::kModal, model);
  shown_.push_back(&model);
  if (modal_handler_) {
    // A copy: the handler may replace itself while it runs.
    ModalHandler handler = modal_handler_;
    try {
      handler(model);
    } catch (...) {
      shown_.erase(std::remove(shown_.begin(), shown_.end(), &model),
                   shown_.end());
      throw;
    }
  }
  // Returning from a modal show means the dialog is closed.
  shown_.erase(std::remove(shown_.begin(), shown_.end(), &model), shown_.end());
}

void HeadlessToolkit::ShowModeless(DialogModel& model) {
  LogModel(ShownKind::kModeless, model);
  if (!IsShown(model)) shown_.push_back(&model);
}

void HeadlessToolkit::Close(DialogModel& model) {
  auto it = std::find(shown_.begin(), shown_.end(), &model);
  if (it == shown_.end()) return;
  shown_.erase(it);
  LogModel(ShownKind::kClose, model);
}

void HeadlessToolkit::SetBusy(bool busy) {
  if (busy && !busy_) ++busy_count_;
  busy_ = busy;
}

void HeadlessToolkit::LogModel(ShownKind kind, const DialogModel& model) {
  ShownEntry entry;
  entry.kind = kind;
  entry.title = model.Name();
  log_.push_back(std::move(entry));
}

}  // namespace rz
