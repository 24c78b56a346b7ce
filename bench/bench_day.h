#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "engine/intelligent_order.h"
#include "platform/world_runtime.h"
#include "terminal/day.h"
#include "terminal/embedded_terminal.h"

namespace iorder {

/// A folder for made days that goes with the object.
class CBenchFolder {
 public:
  CBenchFolder();
  ~CBenchFolder();
  CBenchFolder(const CBenchFolder&) = delete;
  CBenchFolder& operator=(const CBenchFolder&) = delete;

  std::string PathOf(const std::string& name) const { return m_path + "/" + name; }

 private:
  std::string m_path;
};

/// Makes a day with these many strikes and ticks from 08:45 on, `minutes` long, and returns its path.
std::string MakeBenchDay(const CBenchFolder& folder, const std::string& name, int strikes, int64_t ticks,
                         int minutes);

/// The command that buys, at once, the calls of a chain that opened within a band, at a fixed price.
std::string BenchCommand(const std::string& chain, double price, int64_t cash);

/// Runs a day in virtual time with everything on: engine, terminal, a trace whose lines are made and counted.
/// `atEnd` is called on the thread "host" just before phase 4. Returns the bytes of the trace.
size_t RunBenchDay(const Day& day, const std::function<void(IWorldRuntime&, CEmbeddedTerminal&)>& atEnd = {});

}  // namespace iorder
