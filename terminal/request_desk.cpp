#include "terminal/request_desk.h"

#include "platform/world.h"
#include "records/json_document.h"

namespace iorder {
namespace {

// The form of the request that carries a document to be filled in.
constexpr int32_t kDocumentFirst = 1;
constexpr int32_t kDocumentSecond = 64;

}  // namespace

CRequestDesk::CRequestDesk(IWorldRuntime& runtime, CEmbeddedBus& bus, CBusThread& busThread)
    : m_runtime(runtime), m_bus(bus), m_busThread(busThread), m_section(runtime, "requests") {}

void CRequestDesk::Set(const RequestAction& request) {
  CLockGuard guard(m_section);
  m_requests[request.product] = request;
}

Value CRequestDesk::Answer(const std::wstring& product, int32_t first, int32_t second, const Value& value) {
  RequestAction request;
  {
    CLockGuard guard(m_section);
    const auto found = m_requests.find(product);
    if (found == m_requests.end()) {
      return {};
    }
    request = found->second;
  }
  if (request.load) {
    Load(*request.load);
  }
  if (first == kDocumentFirst && second == kDocumentSecond && !request.document.empty()) {
    FillIn(request.document, value);
  }
  return request.reply;
}

void CRequestDesk::Load(const RecordAction& load) {
  m_bus.Apply(load.change);
  if (load.firing) {
    // The engine waits in its own event now: the update is the bus thread's.
    m_busThread.Post(m_runtime.Now(),
                     [this, name = load.change.name, firing = *load.firing] { m_bus.Fire(name, firing); });
  }
}

void CRequestDesk::FillIn(const std::string& document, const Value& reference) {
  const int64_t* const number = std::get_if<int64_t>(&reference);
  void* const object = number != nullptr ? m_runtime.ResolveReference(*number) : nullptr;
  if (object != nullptr) ParseJson(document, *static_cast<AnswerDocument*>(object));
}

}  // namespace iorder
