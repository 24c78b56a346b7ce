#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace iorder {

enum class JsonKind : int32_t {
  kNull = 0,
  kBoolean = 1,
  kInt32 = 2,
  kInt64 = 3,
  kDouble = 4,
  kString = 5,
  kArray = 6,
  kObject = 7,
};

/// One value of the settings that the host stores as JSON text. It owns all that lies in it.
class JsonValue {
 public:
  using Array = std::vector<JsonValue>;
  /// A member may be absent (null pointer): it was looked up before it was there.
  using Object = std::map<std::wstring, std::unique_ptr<JsonValue>, std::less<>>;
  /// The payloads in the order of their kinds.
  using Payload = std::variant<std::monostate, bool, int32_t, int64_t, double, std::wstring, Array, Object>;

  JsonValue() = default;
  explicit JsonValue(Payload payload) : m_payload(std::move(payload)) {}
  JsonValue(JsonValue&&) = default;
  JsonValue& operator=(JsonValue&&) = default;
  JsonValue(const JsonValue&) = delete;
  JsonValue& operator=(const JsonValue&) = delete;
  ~JsonValue() = default;

  JsonKind Kind() const { return static_cast<JsonKind>(m_payload.index()); }
  /// The payload if it is a `T`, else none.
  template <class T>
  const T* As() const {
    return std::get_if<T>(&m_payload);
  }

  /// The string of a string, "" for every other kind, numbers too.
  const std::wstring& Text() const;
  /// The member of that name; one that isn't there is entered as absent. None for every kind but an object.
  JsonValue* Member(std::wstring_view key);

 private:
  Payload m_payload;
};

static_assert(std::is_nothrow_move_constructible_v<JsonValue>);

/// Objects and arrays nested deeper fail: reading and deleting stay within the stack of a fiber.
inline constexpr int kMaxJsonValueDepth = 256;

/// Reads the value that `text` begins with, behind white space (all characters up to 0x20). Gives the number
/// of characters that it took, or 0 if there is no value; then `out` is null. In one pass, whatever the text.
///
/// It takes more than JSON: commas that are missing or trail, stray characters in front of a key, literals in
/// any case, a plus sign, a string that isn't closed; of equal keys the last one stays. And less: a number
/// must be followed by some character, only a capital E begins an exponent, and most escapes give a
/// backslash. A number is the narrowest kind that its spelling asks for: with an exponent 64 bits, truncated;
/// with a point a double; below ten digits 32 bits, else 64. The digits of an
/// integer stop at 9223372036854775807, before its sign is looked at; a power that doesn't fit is NoValue.
int64_t ParseJsonValue(JsonValue& out, std::wstring_view text);

}  // namespace iorder
