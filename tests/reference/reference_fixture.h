#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/virtual/virtual_runtime.h"
#include "records/base_data.h"
#include "records/host_gateway.h"
#include "terminal/record_bus.h"

namespace iorder::testing {

/// What a host was asked for in a request.
struct Request {
  std::wstring topic;
  int32_t first = 0;
  int32_t second = 0;
  std::wstring text;
  Value value;
};

/// A host on a bus in memory that notes what it is told.
class CRecordingHost : public IHostGateway {
 public:
  CRecordingHost(CVirtualRuntime& runtime, CEmbeddedBus& bus);
  ~CRecordingHost() override;

  World& GetWorld() override { return *m_world; }
  void WriteLog(const std::wstring& text) override { log.push_back(text); }
  std::unique_ptr<CBaseData> OpenRecord(const std::wstring& name, CBaseDataEventReceiver* receiver) override;
  Value SendHostEvent(const std::wstring& topic, int32_t first, int32_t second, const std::wstring& text,
                      const Value& value) override;
  void FireSubscribe(const std::wstring& topic) override { subscriptions.push_back(L"+" + topic); }
  void FireUnsubscribe(const std::wstring& topic) override { subscriptions.push_back(L"-" + topic); }

  std::vector<std::wstring> log;
  std::vector<std::wstring> subscriptions;  ///< "+NAME" and "-NAME", in order
  std::vector<Request> requests;
  /// Answers a request; the document is the one that the request refers to, or none if its reference doesn't
  /// resolve.
  std::function<Value(const Request& request, AnswerDocument* document)> answer;

 private:
  class NoDatabase;
  class NoSettings;

  CEmbeddedBus& m_bus;
  std::unique_ptr<NoDatabase> m_database;
  std::unique_ptr<NoSettings> m_settings;
  std::unique_ptr<World> m_world;
};

/// A field of a record and the value that it takes.
FieldChange Field(const std::wstring& name, const Value& value);

/// A virtual runtime, a bus and a host. The body of a test runs as a thread of the runtime.
class ReferenceTest : public ::testing::Test {
 protected:
  void Run(const std::function<void()>& body) { EXPECT_EQ(m_runtime.Run(body), std::vector<std::string>()); }
  CVirtualRuntime& Runtime() { return m_runtime; }
  /// Sets one field of a record.
  void SetField(const std::wstring& record, const std::wstring& name, const Value& value);

  CVirtualRuntime m_runtime{{.start = {2024, 3, 1, 4, 8, 40, 0, 0}}};
  CEmbeddedBus m_bus{m_runtime, false};
  CRecordingHost m_host{m_runtime, m_bus};
};

}  // namespace iorder::testing
