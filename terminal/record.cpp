#include "terminal/record.h"

#include <algorithm>
#include <utility>

#include "records/number_text.h"

namespace iorder {
namespace {

constexpr std::wstring_view kMcode = L"MCODE";
constexpr std::wstring_view kTimeFormat = L"TradeTimeFormat";

/// Writes texts with their length before them, so that they may hold anything.
class CPacker {
 public:
  void AddText(std::wstring_view text) {
    m_packed += ToDecimal(static_cast<int64_t>(text.size()));
    m_packed += L':';
    m_packed += text;
  }

  void AddValue(const Value& value) {
    static constexpr wchar_t kKinds[] = {L'-', L'i', L'l', L't'};
    m_packed += kKinds[value.index()];
    if (const int32_t* const int32 = std::get_if<int32_t>(&value)) {
      AddText(ToDecimal(*int32));
    } else if (const int64_t* const int64 = std::get_if<int64_t>(&value)) {
      AddText(ToDecimal(*int64));
    } else if (const std::wstring* const text = std::get_if<std::wstring>(&value)) {
      AddText(*text);
    } else {
      AddText({});
    }
  }

  std::wstring Take() { return std::move(m_packed); }

 private:
  std::wstring m_packed;
};

/// Reads what CPacker wrote; anything else ends the reading.
class CUnpacker {
 public:
  explicit CUnpacker(std::wstring_view packed) : m_rest(packed) {}

  bool Read(std::wstring_view& text) {
    size_t length = 0;
    size_t digits = 0;
    while (digits < m_rest.size() && m_rest[digits] >= L'0' && m_rest[digits] <= L'9' &&
           length <= m_rest.size()) {
      length = length * 10 + static_cast<size_t>(m_rest[digits++] - L'0');
    }
    if (digits == 0 || digits >= m_rest.size() || m_rest[digits] != L':' ||
        length > m_rest.size() - digits - 1) {
      return false;
    }
    text = m_rest.substr(digits + 1, length);
    m_rest.remove_prefix(digits + 1 + length);
    return true;
  }

  bool Read(Value& value) {
    if (m_rest.empty()) {
      return false;
    }
    const wchar_t kind = m_rest.front();
    m_rest.remove_prefix(1);
    std::wstring_view text;
    if (!Read(text)) {
      return false;
    }
    if (kind == L'i') {
      value = static_cast<int32_t>(Number(text));
    } else if (kind == L'l') {
      value = Number(text);
    } else if (kind == L't') {
      value = std::wstring(text);
    } else {
      value = std::monostate();
    }
    return true;
  }

 private:
  static int64_t Number(std::wstring_view text) {
    const bool negative = !text.empty() && text.front() == L'-';
    uint64_t value = 0;
    for (const wchar_t digit : text.substr(negative ? 1 : 0)) {
      value = value * 10 + static_cast<uint64_t>(digit - L'0');
    }
    return static_cast<int64_t>(negative ? 0 - value : value);
  }

  std::wstring_view m_rest;
};

}  // namespace

Value CRecord::Field(std::wstring_view name) const {
  const auto found = m_fields.find(name);
  return found != m_fields.end() ? found->second : Value();
}

void CRecord::SetField(std::wstring_view name, Value value) {
  const auto found = m_fields.find(name);
  if (found != m_fields.end()) {
    found->second = std::move(value);
  } else {
    m_fields.emplace(name, std::move(value));
  }
  NoteField(name);
}

void CRecord::RemoveField(std::wstring_view name) {
  const auto found = m_fields.find(name);
  if (found != m_fields.end()) {
    m_fields.erase(found);
    NoteField(name);
  }
}

void CRecord::NoteField(std::wstring_view name) {
  if (name == kMcode) {
    m_hasMcode = m_fields.contains(kMcode);
  } else if (name == kTimeFormat) {
    const Value format = Field(kTimeFormat);
    const int64_t* const int64 = std::get_if<int64_t>(&format);
    m_timeFormat = int64 != nullptr ? static_cast<int32_t>(*int64) : Int32Or(format, 0);
  }
}

Value CRecord::Number(int32_t id) const {
  for (const NumericField& number : m_numbers) {
    if (number.id == id) {
      return number.value;
    }
  }
  const auto found = m_otherNumbers.find(id);
  return found != m_otherNumbers.end() ? found->second : Value();
}

void CRecord::SetNumber(int32_t id, int64_t value) {
  for (NumericField& number : m_numbers) {
    if (number.id == id) {
      number.value = value;
      return;
    }
  }
  m_otherNumbers.erase(id);
  m_numbers.push_back({id, value});
}

void CRecord::SetNumber(int32_t id, Value value) {
  if (const int64_t* const int64 = std::get_if<int64_t>(&value)) {
    SetNumber(id, *int64);
    return;
  }
  RemoveNumber(id);
  m_otherNumbers[id] = std::move(value);
}

void CRecord::RemoveNumber(int32_t id) {
  std::erase_if(m_numbers, [id](const NumericField& number) { return number.id == id; });
  m_otherNumbers.erase(id);
}

std::vector<std::pair<int32_t, Value>> CRecord::Numbers() const {
  std::map<int32_t, Value> all = m_otherNumbers;
  for (const NumericField& number : m_numbers) {
    all[number.id] = number.value;
  }
  return {all.begin(), all.end()};
}

void CRecord::ClearFields() {
  m_fields.clear();
  m_numbers.clear();
  m_otherNumbers.clear();
  m_hasMcode = false;
  m_timeFormat = 0;
}

std::optional<size_t> FindChild(const std::vector<CRecord::Child>& children, std::wstring_view name) {
  const auto found = std::find_if(children.begin(), children.end(),
                                  [name](const CRecord::Child& child) { return child.name == name; });
  return found != children.end() ? std::optional(static_cast<size_t>(found - children.begin()))
                                 : std::nullopt;
}

std::wstring PackFields(const CRecord& record) {
  CPacker packer;
  packer.AddText(ToDecimal(static_cast<int64_t>(record.Fields().size())));
  for (const auto& [name, value] : record.Fields()) {
    packer.AddText(name);
    packer.AddValue(value);
  }
  for (const auto& [id, value] : record.Numbers()) {
    packer.AddValue(Value(id));
    packer.AddValue(value);
  }
  return packer.Take();
}

void UnpackFields(std::wstring_view packed, CRecord& record) {
  CUnpacker unpacker(packed);
  std::wstring_view text;
  if (!unpacker.Read(text)) {
    return;
  }
  size_t fieldCount = 0;
  for (const wchar_t digit : text) {
    fieldCount = fieldCount * 10 + static_cast<size_t>(digit - L'0');
  }
  Value value;
  for (; fieldCount > 0 && unpacker.Read(text) && unpacker.Read(value); --fieldCount) {
    record.SetField(text, value);
  }
  for (Value id; unpacker.Read(id) && unpacker.Read(value);) {
    record.SetNumber(Int32Or(id, 0), value);
  }
}

}  // namespace iorder
