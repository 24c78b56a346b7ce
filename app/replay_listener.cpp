#include "app/replay_listener.h"

#include <fmt/format.h>

#include <utility>

#include "platform/text.h"
#include "terminal/input_error.h"
#include "terminal/local_time.h"

namespace iorder {
namespace {

constexpr size_t kPiece = 1 << 16;

std::string FaultCode(uint32_t code) {
  return fmt::format("0x{:08X}", code);
}

}  // namespace

CHappeningListener::CHappeningListener(Tell tell)
    : m_tell(std::move(tell)),
      m_groupOrders([this](const Happening& happening) { m_tell(m_time, happening); }),
      m_reader([this](const Happening& happening) { Hand(happening); }) {}

void CHappeningListener::Hand(const Happening& happening) {
  const auto* order = std::get_if<OrderSent>(&happening);
  if (order == nullptr || !order->group) return m_tell(m_time, happening);
  OrderSent complete = *order;
  m_groupOrders.Complete(complete);
  m_tell(m_time, complete);
}

IGroupOrderWatch& CHappeningListener::GroupOrders(const DateTime& local) {
  m_time.clear();
  AppendDateTime(local, m_time);
  m_groupOrders.SetNow(ToLocalTime(local));
  return m_groupOrders;
}

void CHappeningListener::OnEvent(const TraceEvent& event) {
  const bool isRead =
      event.kind == TraceKind::kCommand || event.kind == TraceKind::kLog || event.kind == TraceKind::kFault;
  if (!isRead) return;
  m_time.clear();
  AppendDateTime(event.local, m_time);
  const std::string text = ToUtf8(event.text);
  if (event.kind == TraceKind::kCommand) {
    m_reader.OnCommand(ToUtf8(event.topic), text);
  } else if (event.kind == TraceKind::kLog) {
    m_reader.OnLog(text);
  } else {
    m_reader.OnFault(ToUtf8(event.thread), FaultCode(event.code), text);
  }
}

double CDayClock::Share() const {
  if (!m_end || *m_end <= m_start) return 0;
  return static_cast<double>(m_passed) / static_cast<double>((*m_end - m_start).count());
}

void CLogWriter::OnEvent(const TraceEvent& event) {
  if (event.kind != TraceKind::kLog || !m_error.empty()) return;
  AppendDateTime(event.local, m_text);
  m_text.append(" ").append(ToUtf8(event.text)).append("\n");
  if (m_text.size() < kPiece) return;
  try {
    m_file.Write(m_text);
  } catch (const InputError& error) {
    m_error = error.what();
  }
  m_text.clear();
}

void CLogWriter::Commit() {
  if (!m_error.empty()) throw InputError(m_error);
  m_file.Write(m_text);
  m_file.Commit();
}

}  // namespace iorder
