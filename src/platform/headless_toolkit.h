// Copyright 2026 The Veltmark authors.
//
// HeadlessToolkit is a Toolkit without a screen, for tests and batch runs.
// Answers come from queues filled beforehand, one queue per kind of
// question, taken in order. When a queue is empty the answer is the
// default: a message box answers its first button (OK, or Yes for Yes/No),
// an input box the empty text (as if cancelled), an open-file dialog none.
// A queued message answer that is not one of the box's buttons raises
// error 5: the script of answers does not fit what was asked.
//
// Everything shown is logged in order (ShownEntry). ShowModal calls the
// modal handler, when one is set, so a test can act on the model as a user
// would (press its buttons) before the call returns; ShowModeless keeps the
// model shown until Close. Counters record DoEvents calls and busy-pointer
// switches. The screen size is settable (1920 x 1080 pixels at 15 twips a
// pixel by default).
//
// Not thread-safe. Models passed to ShowModeless must outlive their Close
// or the toolkit, whichever comes first; the toolkit never deletes them.

#ifndef RZ_PLATFORM_HEADLESS_TOOLKIT_H_
#define RZ_PLATFORM_HEADLESS_TOOLKIT_H_

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/toolkit.h"

namespace rz {

class HeadlessToolkit : public Toolkit {
 public:
  enum class ShownKind {
    kMessageBox,
    kInputBox,
    kOpenFileDialog,
    kModal,
    kModeless,
    kClose,
  };

  // One logged event. Message box: title, text, icon, buttons, answer (its
  // name). Input box: title, text = prompt, detail = default text, answer.
  // Open-file dialog: title, text = folder, detail = filter, answer = the
  // path ("" when none). Dialog models: title = the model's Name().
  struct ShownEntry {
    ShownKind kind = ShownKind::kMessageBox;
    std::string title;
    std::string text;
    MessageIcon icon = MessageIcon::kNone;
    MessageButtons buttons = MessageButtons::kOk;
    std::string detail;
    std::string answer;
  };

  using ModalHandler = std::function<void(DialogModel& model)>;

  static constexpr TwipSize kDefaultScreen = {1920 * 15, 1080 * 15};

  // Scripted answers, used in the order queued.
  void QueueMessageAnswer(MessageAnswer answer);
  void QueueInputAnswer(std::string answer);
  void QueueFileAnswer(std::optional<std::string> path);
  // The answers not used yet.
  size_t PendingAnswers() const;

  // Called by ShowModal with the model; empty = ShowModal returns at once.
  void SetModalHandler(ModalHandler handler);

  void SetScreenSize(TwipSize size) { screen_size_ = size; }

  const std::vector<ShownEntry>& Log() const { return log_; }
  // The logged entries of one kind, in order.
  std::vector<ShownEntry> LogOf(ShownKind kind) const;
  void ClearLog() { log_.clear(); }

  int DoEventsCount() const { return do_events_count_; }
  // How often the busy pointer was switched on, and whether it is on now.
  int BusyCount() const { return busy_count_; }
  bool Busy() const { return busy_; }
  // True while `model` is shown (modally inside ShowModal, or modelessly
  // until Close).
  bool IsShown(const DialogModel& model) const;

  // Toolkit.
  MessageAnswer MessageBox(std::string_view title, std::string_view text,
                           MessageIcon icon, MessageButtons buttons) override;
  std::string InputBox(std::string_view prompt, std::string_view title,
                       std::string_view default_text) override;
  std::optional<std::string> OpenFileDialog(std::string_view title,
                                            std::string_view folder,
                                            std::string_view filter) override;
  void DoEvents() override { ++do_events_count_; }
  TwipSize ScreenSize() const override { return screen_size_; }
  void ShowModal(DialogModel& model) override;
  void ShowModeless(DialogModel& model) override;
  void Close(DialogModel& model) override;
  void SetBusy(bool busy) override;

 private:
  void LogModel(ShownKind kind, const DialogModel& model);

  std::deque<MessageAnswer> message_answers_;
  std::deque<std::string> input_answers_;
  std::deque<std::optional<std::string>> file_answers_;
  ModalHandler modal_handler_;
  TwipSize screen_size_ = kDefaultScreen;
  std::vector<ShownEntry> log_;
  std::vector<const DialogModel*> shown_;
  int do_events_count_ = 0;
  int busy_count_ = 0;
  bool busy_ = false;
};

}  // namespace rz

#endif  // RZ_PLATFORM_HEADLESS_TOOLKIT_H_
