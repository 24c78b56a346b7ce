#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "records/json_document.h"

namespace iorder {

/// Writes one JSON object member by member; names and texts in UTF-8.
class CObjectWriter {
 public:
  CObjectWriter() : m_writer(m_buffer) { Begin(); }

  /// An object within a list.
  void Begin() { m_writer.StartObject(); }
  void Begin(std::string_view name) {
    Name(name);
    Begin();
  }
  void End() { m_writer.EndObject(); }
  void BeginList(std::string_view name) {
    Name(name);
    m_writer.StartArray();
  }
  void EndList() { m_writer.EndArray(); }

  void Text(std::string_view name, std::string_view text) {
    Name(name);
    Item(text);
  }
  /// A text within a list.
  void Item(std::string_view text) {
    m_writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }
  void Number(std::string_view name, int64_t number) {
    Name(name);
    m_writer.Int64(number);
  }
  /// Null for none, and for what isn't finite.
  void Double(std::string_view name, std::optional<double> number) {
    Name(name);
    if (number) {
      m_writer.Double(*number);
    } else {
      m_writer.Null();
    }
  }
  /// A number by the digits that it is spelled with.
  void Digits(std::string_view name, std::string_view digits) {
    Name(name);
    m_writer.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
  }
  void Flag(std::string_view name, bool flag) {
    Name(name);
    m_writer.Bool(flag);
  }
  void Null(std::string_view name) {
    Name(name);
    m_writer.Null();
  }

  /// Ends the object and gives its text; the last call.
  std::string Close() {
    End();
    return {m_buffer.GetString(), m_buffer.GetSize()};
  }

 private:
  void Name(std::string_view name) {
    m_writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
  }

  rapidjson::StringBuffer m_buffer;
  CJsonWriter m_writer;
};

}  // namespace iorder
