#include "app/progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/console.h"

namespace iorder {
namespace {

constexpr double kSecondsBetween = 0.2;

void WriteToErrorStream(const std::string& text) {
  std::fputs(text.c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace

CProgress::CProgress(std::string unit, double total)
    : m_unit(std::move(unit)), m_total(total), m_watched(IsErrorStreamTerminal()) {}

CProgress::~CProgress() {
  Clear();
}

void CProgress::Show(double count) {
  Show(count, m_total > 0 ? count / m_total : 0);
}

void CProgress::Show(double count, double share) {
  if (!m_watched) return;
  const double seconds = m_stopwatch.Seconds();
  if (seconds < m_next) return;
  m_next = seconds + kSecondsBetween;
  m_shown = true;
  std::string line = fmt::format("{} {}, {}/s", CountText(count), m_unit, CountText(count / seconds));
  if (share > 0) {
    const double done = std::min(share, 1.0);
    line = fmt::format("{:3.0f} %  {}, {} left", done * 100, line, DurationText(seconds * (1 - done) / done));
  }
  WriteToErrorStream("\r\x1b[K" + line);
}

void CProgress::Clear() {
  if (m_shown) WriteToErrorStream("\r\x1b[K");
  m_shown = false;
}

std::string DurationText(double seconds) {
  const auto whole = static_cast<long long>(std::clamp(seconds, 0.0, 1e9) + 0.5);
  if (whole < 60) return fmt::format("{} s", whole);
  if (whole < 3600) return fmt::format("{} min {:02} s", whole / 60, whole % 60);
  return fmt::format("{} h {:02} min", whole / 3600, whole / 60 % 60);
}

std::string CountText(double count) {
  if (count < 1000) return fmt::format("{:.0f}", count);
  if (count < 1e6) return fmt::format("{:.1f} k", count / 1e3);
  return fmt::format("{:.2f} M", count / 1e6);
}

}  // namespace iorder
