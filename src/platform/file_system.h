// Copyright 2026 The Veltmark authors.
//
// The file services every part of the engine shares: path helpers, the
// file-exists test, the writable-folder test FolerReadOnly, whole-file
// reads and atomic whole-file writes, quiet deletion, copying and the
// system folder.
//
// Paths: "/" and "\" are both separators when a path is read (files made on
// Windows installations name folders with "\"); every path these helpers
// build or return is written with "/". Texts are UTF-8 inside and
// Windows-1252 on disk ("8-bit text"); the ...TextFile functions convert,
// the ...BinaryFile functions move bytes unchanged.
//
// Errors: the read, write and copy functions raise rz::Error naming the
// path: 52 for a name no file can have (an embedded NUL, too long), 53 for
// a missing file, 70 for a permission problem, 76 for a missing folder, 75
// for any other failure. The tests (FileExists, FolerReadOnly,
// DeleteFileQuietly, FindFileIgnoringExtensionCase) never throw.
// Nothing here keeps state; the functions may be used from any thread.

#ifndef RZ_PLATFORM_FILE_SYSTEM_H_
#define RZ_PLATFORM_FILE_SYSTEM_H_

#include <optional>
#include <string>
#include <string_view>

#include "core/error.h"
#include "platform/platform.h"

namespace rz {

// The path with every "\" turned into "/".
std::string NormalizePath(std::string_view path);

// True when the path names an existing file or folder. Never throws; the
// empty path and unreadable places give false.
bool FileExists(std::string_view path);

// True when a file cannot be written in `folder` (the system's own name for
// the test). The empty path gives true at once, without a trace. Otherwise
// a "/" is appended when the path ends in no separator, and the file
// "dummy.$$$" is created (or overwritten) there, given the line "$$$",
// closed and deleted. When all of that succeeds the result is false and the
// trace reads "Result=False"; when any step fails (also for a missing
// folder) the result is true and the trace reads "Result=True" (writer
// kWriterModule, procedure "FolerReadOnly"). A "dummy.$$$" that was created
// is removed even when a later step fails.
bool FolerReadOnly(Platform& platform, std::string_view folder);

// The whole file, decoded from Windows-1252 to UTF-8; "" for an empty
// file. Raises the file errors above.
std::string ReadTextFile(std::string_view path);

// The whole file as bytes. Raises the file errors above.
std::string ReadBinaryFile(std::string_view path);

// Replaces the file at `path` (or creates it) with `utf8_text` encoded as
// Windows-1252 (characters without a Windows-1252 form become "?").
// Atomic as WriteBinaryFileAtomically.
void WriteTextFileAtomically(std::string_view path, std::string_view utf8_text);

// A name beside `path` no other writer in this or another process uses:
// path + tag + "-<pid>-<n>". Recovery of an application removes a
// ".tmp" one of one of its files once process <pid> has ended
// (application_replace.h).
std::string TemporaryNameFor(const std::string& path,
                             std::string_view tag = ".tmp");

// Replaces the file at `path` (or creates it) with `bytes`: writes them to
// path + ".tmp-<pid>-<n>" in the same folder, flushes them to the disk and
// renames that over the target, so a reader sees the old or the new file,
// never a part. A replaced file's permission bits are kept. On any failure
// the temporary file is removed, an existing file is left untouched, and
// the error names `path`. A symbolic link at `path` is replaced by the file
// itself, not followed.
void WriteBinaryFileAtomically(std::string_view path, std::string_view bytes);

// The error for an open or read of an existing file `path` that failed
// with the system's `error_number`: 53 missing, 76 a missing folder, 70
// not permitted, 52 a name too long, 75 the rest.
Error FileReadError(int error_number, std::string_view path);

// The error for a create, write or rename of `path` that failed with the
// system's `error_number`: a missing name means a missing folder (76),
// EACCES, EPERM and EROFS are 70, a name too long 52, the rest 75.
Error FileWriteError(int error_number, std::string_view path);

// Flushes the entries of `folder` ("" is the working folder) to the disk,
// so that renames and deletions in it survive a power loss; best effort,
// never throws.
void FlushFolder(std::string_view folder);

// Deletes the file; true when it was deleted. Never throws; a folder or a
// missing file gives false.
bool DeleteFileQuietly(std::string_view path);

// Copies the bytes of `from` to `to` with WriteBinaryFileAtomically. Raises
// the file errors above, naming `from` when it cannot be read and `to` when
// it cannot be written.
void CopyFileAtomically(std::string_view from, std::string_view to);

// The system folder: $VELTMARK_SYSTEM_DIR when set and not empty, else
// "/etc/veltmark", with "/" separators and without its final separator
// ("/" alone stays "/").
std::string SystemFolder();

// `path` made absolute (against the working folder) with "/" separators and
// without "." and ".." parts, for telling whether two paths name the same
// place; links are not followed. Never throws.
std::string ComparablePath(std::string_view path);

// The path up to and including its last separator; "" when it has none.
// "a\b\c.v3" -> "a/b/".
std::string ParentFolder(std::string_view path);

// The path without the extension of its last part (from that part's last
// "." on). A part that starts with its only "." (".profile") has no
// extension. "a/app.rza" -> "a/app"; "a.b/app" -> "a.b/app".
std::string WithoutExtension(std::string_view path);

// The extension of the path's last part, "." included ("" when none), by
// the rule of WithoutExtension.
std::string ExtensionOf(std::string_view path);

// `name` in `folder`: "folder/name", with no separator added when the
// folder is empty or already ends in one.
std::string JoinPath(std::string_view folder, std::string_view name);

// True when the extension of `path` equals `extension` ("." included)
// without regard to case: ExtensionEqualsIgnoreCase("app.V3", ".v3").
bool ExtensionEqualsIgnoreCase(std::string_view path,
                               std::string_view extension);

// The existing file or folder whose path equals `path` except, perhaps, for
// the letter case of its extension: view files are written as base + ".V3"
// and looked for as ".v3", and both must reach the same file. The exact
// name wins; among several others the first in byte order is taken.
// nullopt when there is none. Never throws.
std::optional<std::string> FindFileIgnoringExtensionCase(std::string_view path);

}  // namespace rz

#endif  // RZ_PLATFORM_FILE_SYSTEM_H_
