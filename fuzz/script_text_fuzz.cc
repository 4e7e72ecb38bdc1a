// Copyright 2026 The Veltmark authors.
//
// Feeds arbitrary script files to the script loader. The input is cut at
// each byte 0x1E into up to four files that may include one another:
//   app/line.rzt.rzx   the application's own hook file (loaded directly)
//   app/RZscript.rzx   the application folder's hook file
//   app/lib/c.rzx      a file in a folder below the application
//   sys/RZscript.rzx   the system folder's hook file
// A piece that is not there removes its file. The first file is loaded
// with its includes, the three hook files are joined, and the language is
// chosen and lines are taken from both texts. Any input must end in a text
// or an rz::Error; never a crash, a sanitizer report or a hang.
//
// An include name may be any path: the loader reads only regular files
// below the two folders (app/ and sys/), so names of devices, /proc files
// or climbs with ".." exercise its refusals and every run stays
// deterministic.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/error.h"
#include "fuzz_files.h"
#include "script/script_text.h"

namespace {

constexpr char kSeparator = '\x1e';

// The files the pieces become, in input order.
const std::array<std::string, 4>& PiecePaths() {
  static const std::array<std::string, 4> paths = {
      rz::fuzz::PathIn("app/line.rzt.rzx"),
      rz::fuzz::PathIn("app/RZscript.rzx"),
      rz::fuzz::PathIn("app/lib/c.rzx"),
      rz::fuzz::PathIn("sys/RZscript.rzx"),
  };
  return paths;
}

void TakeLines(const std::string& text) {
  for (int32_t line = 0; line <= 3; ++line) rz::ScriptLine(text, line);
  try {
    rz::ChooseLanguage(text);
  } catch (const rz::Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view input = rz::fuzz::AsText(data, size);
  const std::vector<std::string_view> pieces =
      rz::fuzz::SplitPieces(input, kSeparator);
  const std::array<std::string, 4>& paths = PiecePaths();
  for (size_t i = 0; i < paths.size(); ++i) {
    if (i < pieces.size()) {
      rz::fuzz::WriteFile(paths[i], pieces[i]);
    } else {
      rz::fuzz::RemoveFile(paths[i]);
    }
  }
  try {
    TakeLines(rz::LoadScriptText(
        paths[0], {rz::fuzz::PathIn("app"), rz::fuzz::PathIn("sys")}));
  } catch (const rz::Error&) {
  }
  rz::HookScriptFiles files;
  files.system_folder = rz::fuzz::PathIn("sys");
  files.application_folder = rz::fuzz::PathIn("app") + "/";
  files.filename = rz::fuzz::PathIn("app/line.rzt");
  try {
    TakeLines(rz::JoinHookScript(files));
  } catch (const rz::Error&) {
  }
  return 0;
}
