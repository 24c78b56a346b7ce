#include "tests/support/good_host.h"

namespace iorder::test {

std::optional<int32_t> CGoodHost::Advertise(const std::wstring& topic, int32_t value) {
  events.push_back(L"advertise " + topic + L" " + std::to_wstring(value));
  return 1;
}

std::optional<int32_t> CGoodHost::Subscribe(const std::wstring& topic) {
  events.push_back(L"subscribe " + topic);
  return 1;
}

void CGoodHost::Unsubscribe(const std::wstring& topic) {
  events.push_back(L"unsubscribe " + topic);
}

std::optional<int32_t> CGoodHost::OpenRecord(const std::wstring& name) {
  events.push_back(L"open " + name);
  return openRecord ? openRecord(name) : 1;
}

Value CGoodHost::Command(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                         const Value&) {
  events.push_back(L"command " + topic + L" " + std::to_wstring(first) + L" " + std::to_wstring(second) +
                   L" " + text);
  return 1;
}

void CGoodHost::WriteLog(const std::wstring& text) {
  events.push_back(L"log " + text);
}

void CGoodHost::ReportFault(uint32_t code, const std::wstring& text) {
  events.push_back(L"fault " + std::to_wstring(code) + L" " + text);
}

}  // namespace iorder::test
