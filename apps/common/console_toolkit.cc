// Copyright 2026 The Veltmark authors.

#include "common/console_toolkit.h"

#include <unistd.h>

#include "core/error.h"
#include "core/text.h"
#include "ui/input_dialog_form.h"
#include "ui/splash_model.h"

namespace rz {
namespace {

std::string_view IconWord(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::kExclamation:
      return "Warning";
    case MessageIcon::kQuestion:
      return "Question";
    case MessageIcon::kInformation:
      return "Information";
    case MessageIcon::kCritical:
      return "Error";
    case MessageIcon::kNone:
      break;
  }
  return "";
}

MessageAnswer CancellingAnswer(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::kOkCancel:
      return MessageAnswer::kCancel;
    case MessageButtons::kYesNo:
      return MessageAnswer::kNo;
    case MessageButtons::kOk:
      break;
  }
  return MessageAnswer::kOk;
}

// Text with its CR LF line breaks as the terminal's line feeds.
std::string TerminalText(std::string_view text) {
  return Replace(text, "\r\n", "\n");
}

}  // namespace

ConsoleToolkit::ConsoleToolkit(std::FILE* in, std::FILE* out, bool interactive)
    : in_(in), out_(out), interactive_(interactive) {}

ConsoleToolkit::ConsoleToolkit()
    : ConsoleToolkit(stdin, stderr,
                     isatty(STDIN_FILENO) && isatty(STDERR_FILENO)) {}

MessageAnswer ConsoleToolkit::MessageBox(std::string_view title,
                                         std::string_view text,
                                         MessageIcon icon,
                                         MessageButtons buttons) {
  std::string line = std::string(title);
  const std::string_view word = IconWord(icon);
  if (!word.empty()) line += " (" + std::string(word) + ")";
  std::fprintf(out_, "%s: %s\n", line.c_str(), TerminalText(text).c_str());
  if (buttons == MessageButtons::kOk) return MessageAnswer::kOk;
  if (!interactive_) return CancellingAnswer(buttons);
  const bool yes_no = buttons == MessageButtons::kYesNo;
  std::fprintf(out_, "%s ", yes_no ? "[y/N]" : "[o(k)/C(ancel)]");
  std::fflush(out_);
  const std::string answer = UpperCase(Trim(ReadLine().value_or("")));
  if (yes_no) {
    return answer == "Y" || answer == "YES" ? MessageAnswer::kYes
                                            : MessageAnswer::kNo;
  }
  return answer == "O" || answer == "OK" ? MessageAnswer::kOk
                                         : MessageAnswer::kCancel;
}

std::string ConsoleToolkit::InputBox(std::string_view prompt,
                                     std::string_view title,
                                     std::string_view default_text) {
  std::fprintf(out_, "%s: %s\n", std::string(title).c_str(),
               TerminalText(prompt).c_str());
  if (!interactive_) return "";
  std::fprintf(out_, "[%s] ", std::string(default_text).c_str());
  std::fflush(out_);
  std::optional<std::string> line = ReadLine();
  if (!line) return "";
  return line->empty() ? std::string(default_text) : *line;
}

std::optional<std::string> ConsoleToolkit::OpenFileDialog(
    std::string_view title, std::string_view folder, std::string_view filter) {
  (void)filter;
  if (!interactive_) return std::nullopt;
  std::fprintf(out_, "%s (in %s): ", std::string(title).c_str(),
               std::string(folder).c_str());
  std::fflush(out_);
  std::optional<std::string> line = ReadLine();
  if (!line || Trim(*line).empty()) return std::nullopt;
  return Trim(*line);
}

TwipSize ConsoleToolkit::ScreenSize() const {
  // A terminal has no screen in twips; dialogs are centred on a common
  // 1920 x 1080 screen at 15 twips per pixel.
  return {1920 * 15, 1080 * 15};
}

void ConsoleToolkit::ShowModal(DialogModel& model) {
  if (auto* question = dynamic_cast<InputDialogForm*>(&model)) {
    Ask(*question);
    return;
  }
  throw Error::InvalidArgument("the dialog '" + std::string(model.Name()) +
                               "' needs a windowing toolkit; the command "
                               "line cannot show it");
}

// The run-time question: its prompt, then the answer typed on the
// terminal (an empty line or the end of input answers nothing).
void ConsoleToolkit::Ask(InputDialogForm& question) {
  if (!interactive_) {
    throw Error::InvalidArgument(
        "a run-time question needs a person at the terminal: " +
        TerminalText(question.lblPrompt()));
  }
  ClearProgress();
  std::fprintf(out_, "%s\n%s\n> ", question.Caption().c_str(),
               TerminalText(question.lblPrompt()).c_str());
  std::fflush(out_);
  question.cboInputText() = Trim(ReadLine().value_or(""));
  question.Ok();
}

void ConsoleToolkit::ShowModeless(DialogModel& model) {
  if (!show_progress_) return;
  if (auto* splash = dynamic_cast<SplashModel*>(&model)) progress_ = splash;
}

void ConsoleToolkit::Close(DialogModel& model) {
  if (&model != progress_) return;
  ClearProgress();
  progress_ = nullptr;
}

// Redraws the progress line at most ten times a second: the last line of
// the window's message and, when known, how far the run has come.
void ConsoleToolkit::DoEvents() {
  if (progress_ == nullptr) return;
  const auto now = std::chrono::steady_clock::now();
  if (progress_drawn_ && now - last_drawn_ < std::chrono::milliseconds(100)) {
    return;
  }
  last_drawn_ = now;
  const std::string& message = progress_->Message();
  const size_t line_start = message.rfind('\n');
  std::string line = line_start == std::string::npos
                         ? message
                         : message.substr(line_start + 1);
  if (progress_->Total() > 1) {
    line += "  " + std::to_string(progress_->Position()) + "/" +
            std::to_string(progress_->Total());
  }
  std::fprintf(out_, "\r\033[K%s", line.c_str());
  std::fflush(out_);
  progress_drawn_ = true;
}

void ConsoleToolkit::ClearProgress() {
  if (!progress_drawn_) return;
  std::fprintf(out_, "\r\033[K");
  std::fflush(out_);
  progress_drawn_ = false;
}

std::optional<std::string> ConsoleToolkit::ReadLine() {
  std::string line;
  int c;
  while ((c = std::fgetc(in_)) != EOF && c != '\n') {
    line += static_cast<char>(c);
  }
  if (c == EOF && line.empty()) return std::nullopt;
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace rz
