#include "tests/reference/reference_fixture.h"

#include "platform/settings_file.h"
#include "platform/symbol_database.h"

namespace iorder::testing {

class CRecordingHost::NoDatabase : public ISymbolDatabaseComponent {
 public:
  std::unique_ptr<ISymbolDatabase> CreateDatabase(const std::wstring&, CDataBaseEventReceiver*) override {
    return nullptr;
  }
  std::unique_ptr<IRecordSet> CreateRecordSet() override { return nullptr; }
  std::unique_ptr<IRecordItem> CreateRecordItem() override { return nullptr; }
};

class CRecordingHost::NoSettings : public ISettingsFile {
 public:
  std::wstring ReadString(const std::wstring&, const std::wstring&, const std::wstring&,
                          const std::wstring& fallback, size_t) override {
    return fallback;
  }
};

CRecordingHost::CRecordingHost(CVirtualRuntime& runtime, CEmbeddedBus& bus)
    : m_bus(bus), m_database(std::make_unique<NoDatabase>()), m_settings(std::make_unique<NoSettings>()) {
  m_world = std::make_unique<World>(World{runtime, bus, *m_database, *m_settings, L"C:\\Host\\Host.exe"});
}

CRecordingHost::~CRecordingHost() = default;

std::unique_ptr<CBaseData> CRecordingHost::OpenRecord(const std::wstring& name,
                                                      CBaseDataEventReceiver* receiver) {
  return CBaseData::OpenByHandle(*m_world, m_bus.Open(name), receiver);
}

Value CRecordingHost::SendHostEvent(const std::wstring& topic, int32_t first, int32_t second,
                                    const std::wstring& text, const Value& value) {
  requests.push_back({topic, first, second, text, value});
  if (!answer) return {};
  const int64_t* reference = std::get_if<int64_t>(&value);
  void* document = reference != nullptr ? m_world->runtime.ResolveReference(*reference) : nullptr;
  return answer(requests.back(), static_cast<AnswerDocument*>(document));
}

FieldChange Field(const std::wstring& name, const Value& value) {
  FieldChange change;
  change.name = name;
  change.value.value = value;
  return change;
}

void ReferenceTest::SetField(const std::wstring& record, const std::wstring& name, const Value& value) {
  RecordChange change;
  change.name = record;
  change.fields = {Field(name, value)};
  m_bus.Apply(change);
}

}  // namespace iorder::testing
