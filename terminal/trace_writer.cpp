#include "terminal/trace_writer.h"

#include <algorithm>
#include <charconv>

#include "terminal/input_error.h"
#include "terminal/local_time.h"

namespace iorder {
namespace {

constexpr size_t kFlushSize = 256 * 1024;

/// Appends the UTF-8 form of `text`, with what JSON wants escaped. It works in place: a trace takes no memory
/// per line.
/// Appends what stands for itself, from `begin` on, in one go; returns the index behind it.
size_t AppendPlainRun(std::wstring_view text, size_t begin, std::string& output) {
  const auto isPlain = [](wchar_t c) { return c >= 0x20 && c < 0x80 && c != L'"' && c != L'\\'; };
  const auto first = text.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto last = std::find_if_not(first, text.end(), isPlain);
  const size_t size = output.size();
  output.resize(size + static_cast<size_t>(last - first));
  std::transform(first, last, output.begin() + static_cast<std::ptrdiff_t>(size),
                 [](wchar_t c) { return static_cast<char>(c); });
  return static_cast<size_t>(last - text.begin());
}

void AppendText(std::wstring_view text, std::string& output) {
  static constexpr char kHex[] = "0123456789abcdef";
  output += '"';
  for (size_t i = 0; i < text.size(); ++i) {
    i = AppendPlainRun(text, i, output);
    if (i == text.size()) break;
    uint32_t code = static_cast<uint32_t>(text[i]);
    if constexpr (sizeof(wchar_t) == 2) {
      if (code >= 0xD800 && code < 0xDC00 && i + 1 < text.size()) {
        const uint32_t low = static_cast<uint32_t>(text[i + 1]);
        if (low >= 0xDC00 && low < 0xE000) {
          code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
          ++i;
        }
      }
    }
    if ((code >= 0xD800 && code < 0xE000) || code > 0x10FFFF) {
      code = 0xFFFD;
    }
    if (code == '"' || code == '\\') {
      output += '\\';
      output += static_cast<char>(code);
    } else if (code == '\n') {
      output += "\\n";
    } else if (code == '\r') {
      output += "\\r";
    } else if (code == '\t') {
      output += "\\t";
    } else if (code < 0x20) {
      output += "\\u00";
      output += kHex[code >> 4];
      output += kHex[code & 15];
    } else if (code < 0x80) {
      output += static_cast<char>(code);
    } else if (code < 0x800) {
      output += static_cast<char>(0xC0 | (code >> 6));
      output += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
      output += static_cast<char>(0xE0 | (code >> 12));
      output += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      output += static_cast<char>(0x80 | (code & 0x3F));
    } else {
      output += static_cast<char>(0xF0 | (code >> 18));
      output += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
      output += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
      output += static_cast<char>(0x80 | (code & 0x3F));
    }
  }
  output += '"';
}

void AppendNumber(int64_t number, std::string& output) {
  char digits[24];
  output.append(digits, std::to_chars(digits, digits + sizeof(digits), number).ptr);
}

void AppendKey(const char* key, std::string& output) {
  output += ", \"";
  output += key;
  output += "\": ";
}

void AppendText(const char* key, std::wstring_view text, std::string& output) {
  AppendKey(key, output);
  AppendText(text, output);
}

void AppendNumber(const char* key, int64_t number, std::string& output) {
  AppendKey(key, output);
  AppendNumber(number, output);
}

void AppendValue(const Value* value, std::string& output) {
  AppendKey("value", output);
  if (value == nullptr || std::holds_alternative<std::monostate>(*value)) {
    output += "null";
  } else if (const std::wstring* const text = std::get_if<std::wstring>(value)) {
    AppendText(*text, output);
  } else if (const int32_t* const int32 = std::get_if<int32_t>(value)) {
    output += "{\"int32\": ";
    AppendNumber(*int32, output);
    output += '}';
  } else {
    output += "{\"int64\": ";
    AppendNumber(std::get<int64_t>(*value), output);
    output += '}';
  }
}

void AppendCode(uint32_t code, std::string& output) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  AppendKey("code", output);
  output += "\"0x";
  for (int shift = 28; shift >= 0; shift -= 4) {
    output += kHex[(code >> shift) & 15];
  }
  output += '"';
}

void AppendMessage(const TraceEvent& event, std::string& output) {
  AppendText("topic", event.topic, output);
  AppendNumber("first", event.first, output);
  AppendNumber("second", event.second, output);
  AppendText("text", event.text, output);
  AppendValue(event.value, output);
}

const char* NameOf(TraceKind kind) {
  static constexpr const char* kNames[] = {"advertise", "subscribe", "unsubscribe", "open_record",
                                           "command",   "log",       "fault",       "message",
                                           "phase",     "update",    "replace",     "query"};
  return kNames[static_cast<size_t>(kind)];
}

void AppendMembers(const TraceEvent& event, std::string& output) {
  switch (event.kind) {
    case TraceKind::kAdvertise:
      AppendText("topic", event.topic, output);
      AppendNumber("value", event.first, output);
      break;
    case TraceKind::kSubscribe:
    case TraceKind::kUnsubscribe:
      AppendText("topic", event.topic, output);
      break;
    case TraceKind::kOpenRecord:
      AppendText("record", event.record, output);
      AppendNumber("handle", event.first, output);
      break;
    case TraceKind::kCommand:
    case TraceKind::kMessage:
      AppendMessage(event, output);
      break;
    case TraceKind::kLog:
      AppendText("text", event.text, output);
      break;
    case TraceKind::kFault:
      AppendCode(event.code, output);
      AppendText("text", event.text, output);
      break;
    case TraceKind::kPhase:
      AppendKey("phase", output);
      output += '[';
      AppendNumber(event.first, output);
      output += ", ";
      AppendNumber(event.second, output);
      output += ']';
      break;
    case TraceKind::kUpdate:
      AppendText("record", event.record, output);
      AppendNumber("originator", event.first, output);
      AppendText("payload", event.text, output);
      break;
    case TraceKind::kReplace:
      AppendText("record", event.record, output);
      AppendNumber("originator", event.first, output);
      break;
    case TraceKind::kQuery:
      AppendText("database", event.database, output);
      AppendText("table", event.table, output);
      AppendText("where", event.text, output);
      AppendNumber("rows", event.first, output);
      break;
  }
}

}  // namespace

void AppendTraceLine(const TraceEvent& event, std::string& output) {
  output += "{\"at\": \"";
  AppendDateTime(event.local, output);
  output += "\", \"thread\": ";
  AppendText(event.thread, output);
  output += ", \"event\": \"";
  output += NameOf(event.kind);
  output += '"';
  AppendMembers(event, output);
  output += "}\n";
}

CTraceWriter::CTraceWriter(const std::string& path, bool withInputs)
    : m_withInputs(withInputs), m_file(CreateOutputFile(path)) {
  m_buffer.reserve(kFlushSize + kFlushSize / 4);
}

void CTraceWriter::OnEvent(const TraceEvent& event) {
  AppendTraceLine(event, m_buffer);
  if (m_buffer.size() >= kFlushSize) {
    Flush();
  }
}

void CTraceWriter::Flush() {
  try {
    if (m_error.empty()) {
      m_file->Write(m_buffer);
    }
  } catch (const InputError& error) {
    m_error = error.what();  // a listener must not raise into the day
  }
  m_buffer.clear();
}

void CTraceWriter::Close() {
  Flush();
  if (!m_error.empty()) {
    throw InputError(m_error);
  }
  m_file->Close();
}

}  // namespace iorder
