#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "terminal/output_file.h"
#include "terminal/terminal_listener.h"

namespace iorder {

/// Appends one trace line, with its line end.
void AppendTraceLine(const TraceEvent& event, std::string& output);

/// Writes the trace of a day, packed if the name ends in ".gz" or ".zst". One thread at a time, as a listener
/// is called.
class CTraceWriter : public ITerminalListener {
 public:
  /// What can't be created is an InputError.
  CTraceWriter(const std::string& path, bool withInputs);

  void OnEvent(const TraceEvent& event) override;
  bool WantsInputs() const override { return m_withInputs; }

  /// Writes what is left. What went wrong while the day ran is an InputError here.
  void Close();

 private:
  void Flush();

  const bool m_withInputs;
  std::unique_ptr<IOutputFile> m_file;
  std::string m_buffer;
  std::string m_error;
};

/// Keeps the trace of a day in memory, as its text.
class CTraceText : public ITerminalListener {
 public:
  explicit CTraceText(bool withInputs = false) : m_withInputs(withInputs) {}

  void OnEvent(const TraceEvent& event) override { AppendTraceLine(event, m_text); }
  bool WantsInputs() const override { return m_withInputs; }
  const std::string& Text() const { return m_text; }

 private:
  const bool m_withInputs;
  std::string m_text;
};

}  // namespace iorder
