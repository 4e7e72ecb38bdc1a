// Copyright 2026 The Veltmark authors.
//
// Platform is the one factory through which the engine reaches everything
// outside itself: it creates each component by role. The engine includes
// only src/platform headers; a host (apps/) wires real components into a
// Platform, tests wire fakes (tests/support).
//
// Objects the engine hands to a host or a script by reference are
// shared_ptr; objects the engine keeps to itself are unique_ptr.

#ifndef RZ_PLATFORM_PLATFORM_H_
#define RZ_PLATFORM_PLATFORM_H_

#include <memory>

namespace rz {

class AppFile;
class InputFileReader;
class Repository;
class ScriptEngine;
class Toolkit;
class TraceSink;

class Platform {
 public:
  virtual ~Platform() = default;

  // A new, closed application-file object ("RZaccess").
  virtual std::shared_ptr<AppFile> CreateAppFile() = 0;

  // A new, empty result repository ("RzRep").
  virtual std::shared_ptr<Repository> CreateRepository() = 0;

  // A new input-file reader ("RZCOMsrv.RZCOMsrvClass").
  virtual std::shared_ptr<InputFileReader> CreateInputFileReader() = 0;

  // A new script engine, or null when none can be created.
  virtual std::unique_ptr<ScriptEngine> CreateScriptEngine() = 0;

  // The running trace sink, or null when none is running. Called once per
  // trace record while a sink has been found before; never throws.
  virtual std::unique_ptr<TraceSink> FindTraceSink() noexcept = 0;

  // The user interface the engine shows messages and dialogs through.
  virtual Toolkit& UserInterface() = 0;

  // The current local date-time as a day count (see core/date_time.h).
  // Tests pin it.
  virtual double Now() = 0;
};

}  // namespace rz

#endif  // RZ_PLATFORM_PLATFORM_H_
