#include "platform/status_line.h"

#include <cstdio>

#include "platform/console.h"

namespace iorder {
namespace {

/// Back to the beginning of the line, which is erased.
constexpr std::string_view kErase = "\r\x1b[K";

void WriteOut(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

}  // namespace

CStatusLine::CStatusLine() : m_watched(IsErrorStreamTerminal()) {}

CStatusLine::~CStatusLine() {
  Clear();
}

void CStatusLine::Show(std::string_view text) {
  if (!m_watched) return;
  const std::lock_guard lock(m_mutex);
  WriteOut(kErase);
  WriteOut(text);
  m_shown = true;
}

void CStatusLine::Clear() {
  const std::lock_guard lock(m_mutex);
  ClearLocked();
}

void CStatusLine::Above(const std::function<void()>& print) {
  const std::lock_guard lock(m_mutex);
  ClearLocked();
  print();
}

void CStatusLine::ClearLocked() {
  if (m_shown) WriteOut(kErase);
  m_shown = false;
}

}  // namespace iorder
