#include "records/scaled_value.h"

namespace iorder {

namespace {

constexpr double kTwoTo63 = 9223372036854775808.0;
constexpr double kScaleGuard = 0.05;
constexpr double kUnscaleGuard = 5e-12;
constexpr int kScaledPlaces = 10;

/// Appends one decimal digit to a number that is kept negative, so that the smallest 64-bit integer fits too.
bool AppendDigit(int64_t& negative, int digit) {
  return !__builtin_mul_overflow(negative, 10, &negative) &&
         !__builtin_sub_overflow(negative, digit, &negative);
}

}  // namespace

int64_t Truncate(double number) {
  const bool fits = number > -kTwoTo63 && number < kTwoTo63;
  return fits ? static_cast<int64_t>(number) : NoValue;
}

ScaledValue ToScaled(double number) {
  if (number == NoPrice) return NoValue;
  return Truncate(number > 0 ? number * kScale + kScaleGuard : number * kScale - kScaleGuard);
}

double FromScaled(ScaledValue value) {
  if (value == NoValue) return NoPrice;
  const double number = static_cast<double>(value);
  return number > 0 ? number / kScale + kUnscaleGuard : number / kScale - kUnscaleGuard;
}

std::optional<ScaledValue> ParseScaled(std::string_view text) {
  size_t at = 0;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;

  int64_t value = 0;
  int digits = 0;
  int places = -1;  // -1: no point yet
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '.' && places < 0) {
      places = 0;
      continue;
    }
    if (c < '0' || c > '9' || places == kScaledPlaces || !AppendDigit(value, c - '0')) return std::nullopt;
    ++digits;
    if (places >= 0) ++places;
  }
  if (digits == 0) return std::nullopt;
  for (int i = places < 0 ? 0 : places; i < kScaledPlaces; ++i) {
    if (!AppendDigit(value, 0)) return std::nullopt;
  }
  if (value == NoValue) return std::nullopt;  // it means "no value", with either sign
  return negative ? value : -value;
}

}  // namespace iorder
