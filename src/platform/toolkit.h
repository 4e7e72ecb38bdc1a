// Copyright 2026 The Veltmark authors.
//
// Toolkit is everything the engine and the dialog models need from a user
// interface: message boxes, an input box, an open-file dialog, processing
// pending events, the screen size, a busy pointer, and showing dialog
// models (modally, or modelessly for the progress window). The models in
// src/ui hold all behaviour; a toolkit only draws them and forwards the
// user's actions. Implementations: HeadlessToolkit (tests and batch use),
// the command line's own, and the Qt toolkit (components/qt).
//
// Sizes and positions are in twips (1/1440 inch); a toolkit converts to its
// own units. Calls come from the host's thread only. A toolkit raises
// nothing for a user's choice (cancel is an answer); it may raise rz::Error
// when it cannot show anything at all.

#ifndef RZ_PLATFORM_TOOLKIT_H_
#define RZ_PLATFORM_TOOLKIT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace rz {

enum class MessageIcon {
  kNone,
  kExclamation,
  kQuestion,
  kInformation,
  kCritical
};
enum class MessageButtons { kOk, kOkCancel, kYesNo };
enum class MessageAnswer { kOk, kCancel, kYes, kNo };

// True when `answer` is one of the buttons of `buttons`.
bool IsAnswerOf(MessageAnswer answer, MessageButtons buttons);
// "OK", "Cancel", "Yes", "No".
std::string_view AnswerName(MessageAnswer answer);

// The message-box flags scripts pass (MsgBox prompt, flags, title): the
// buttons in the low three bits (0 OK; 1 OK/Cancel, and 2 and 5, whose
// buttons a toolkit here does not offer; 3 and 4 Yes/No; 6 and 7 OK), the
// icon in 0x70 (16 critical, 32 question, 48 exclamation, 64
// information); and the number a script gets back (1 OK, 2 Cancel, 6 Yes,
// 7 No).
MessageButtons MessageButtonsOfFlags(int32_t flags);
MessageIcon MessageIconOfFlags(int32_t flags);
int16_t MessageAnswerCode(MessageAnswer answer);

struct TwipSize {
  int32_t width = 0;
  int32_t height = 0;
  bool operator==(const TwipSize&) const = default;
};

// The base of every dialog model a toolkit can show (the wizard, the
// parameter dialog, the progress window, ...). A toolkit recognises the
// concrete model it draws by its type; this base only names it.
class DialogModel {
 public:
  virtual ~DialogModel() = default;

  // The dialog's name ("frmSelect", "frmInputDialog", "frmSplash").
  virtual std::string_view Name() const = 0;

  // Asked when the user closes the window from its frame: false keeps it
  // open (the progress window refuses while a run goes on). The program
  // closes a dialog through Toolkit::Close whatever this says.
  virtual bool AllowsUserClose() const { return true; }
};

class Toolkit {
 public:
  virtual ~Toolkit() = default;

  // Shows a message and waits for the answer, which is one of `buttons`.
  // Closing the box without a button answers Cancel for kOkCancel, No for
  // kYesNo and OK for kOk.
  virtual MessageAnswer MessageBox(std::string_view title,
                                   std::string_view text, MessageIcon icon,
                                   MessageButtons buttons) = 0;

  // Asks for a text; the empty text when the user cancels.
  virtual std::string InputBox(std::string_view prompt, std::string_view title,
                               std::string_view default_text) = 0;

  // Asks for a file to open, starting in `folder`. `filter` lists
  // "description|pattern" pairs joined by "|" ("Applications
  // (*.rzt)|*.rzt|All files (*.*)|*.*"). nullopt when cancelled.
  virtual std::optional<std::string> OpenFileDialog(
      std::string_view title, std::string_view folder,
      std::string_view filter) = 0;

  // Processes pending user-interface events once (the run yields after
  // each progress update).
  virtual void DoEvents() = 0;

  // The size of the screen.
  virtual TwipSize ScreenSize() const = 0;

  // Shows `model` and returns when it is closed (by the model through
  // Close, or by the user when the model allows it).
  virtual void ShowModal(DialogModel& model) = 0;
  // Shows `model` and returns at once; it stays up until Close.
  virtual void ShowModeless(DialogModel& model) = 0;
  // Closes a shown model; does nothing when it is not shown.
  virtual void Close(DialogModel& model) = 0;

  // The busy (hourglass) pointer on or off.
  virtual void SetBusy(bool busy) = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_TOOLKIT_H_
