#include "app/progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace iorder {
namespace {

constexpr double kSecondsBetween = 0.2;

}  // namespace

CProgress::CProgress(CStatusLine& line, std::string unit, double total)
    : m_line(line), m_unit(std::move(unit)), m_total(total) {}

void CProgress::Show(double count) {
  Show(count, m_total > 0 ? count / m_total : 0);
}

void CProgress::Show(double count, double share) {
  if (!m_line.IsWatched()) return;
  const double seconds = m_stopwatch.Seconds();
  if (seconds < m_next) return;
  m_next = seconds + kSecondsBetween;
  std::string text = fmt::format("{} {}, {}/s", CountText(count), m_unit, CountText(count / seconds));
  if (share > 0) {
    const double done = std::min(share, 1.0);
    text = fmt::format("{:3.0f} %  {}, {} left", done * 100, text, DurationText(seconds * (1 - done) / done));
  }
  m_line.Show(text);
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
