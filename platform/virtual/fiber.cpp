#include "platform/virtual/fiber.h"

#include <cxxabi.h>
#include <sys/mman.h>

#include <boost/context/detail/fcontext.hpp>
#include <cassert>
#include <cstdlib>
#include <exception>
#include <utility>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define IORDER_ASAN 1
#endif
#if __has_feature(thread_sanitizer)
#define IORDER_TSAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define IORDER_ASAN 1
#endif
#if defined(__SANITIZE_THREAD__)
#define IORDER_TSAN 1
#endif

#if defined(IORDER_ASAN)
#include <sanitizer/asan_interface.h>
#include <sanitizer/common_interface_defs.h>
#endif
#if defined(IORDER_TSAN)
#include <sanitizer/tsan_interface.h>
#endif

namespace iorder {
namespace {

namespace context = boost::context::detail;

constexpr size_t kGuardSize = 4096;
#if defined(IORDER_ASAN) || defined(IORDER_TSAN)
constexpr size_t kStackSize = 1024 * 1024;
#else
constexpr size_t kStackSize = 256 * 1024;
#endif
constexpr size_t kMappingSize = kStackSize + kGuardSize;

}  // namespace

CFiberStack CFiberStack::Allocate() noexcept {
  void* mapping =
      mmap(nullptr, kMappingSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  CFiberStack stack;
  if (mapping == MAP_FAILED) return stack;
  stack.m_mapping = mapping;
  if (mprotect(mapping, kGuardSize, PROT_NONE) != 0) return {};
  return stack;
}

CFiberStack::~CFiberStack() {
  if (m_mapping != nullptr) munmap(m_mapping, kMappingSize);
}

CFiberStack::CFiberStack(CFiberStack&& other) noexcept : m_mapping(std::exchange(other.m_mapping, nullptr)) {}

CFiberStack& CFiberStack::operator=(CFiberStack&& other) noexcept {
  std::swap(m_mapping, other.m_mapping);
  return *this;
}

void* CFiberStack::Bottom() const noexcept {
  return static_cast<char*>(m_mapping) + kGuardSize;
}

void* CFiberStack::Top() const noexcept {
  return static_cast<char*>(m_mapping) + kMappingSize;
}

CFiberStack CFiberStackPool::Take() {
  if (m_free.empty()) return CFiberStack::Allocate();
  CFiberStack stack = std::move(m_free.back());
  m_free.pop_back();
  return stack;
}

void CFiberStackPool::Give(CFiberStack stack) {
#if defined(IORDER_ASAN)
  // What the ended fiber's frames left marked isn't true for the next one.
  __asan_unpoison_memory_region(stack.Bottom(), kStackSize);
#endif
  m_free.push_back(std::move(stack));
}

/// What a fiber tells the one that it switches to; it lies on the stack of the first.
struct CFiber::Passage {
  CFiber& from;
  CFiber& to;
};

struct CFiber::Trampoline {
  [[noreturn]] static void Begin(context::transfer_t transfer) {
    const Passage& passage = *static_cast<const Passage*>(transfer.data);
    CFiber& self = passage.to;
    self.Arrive(passage, transfer.fctx, nullptr);
    self.m_entry(self.m_argument);
    std::abort();  // an entry ends in LeaveTo
  }
};

CFiber::CFiber(CFiberStack stack, Entry entry, void* argument) noexcept
    : m_stack(std::move(stack)), m_entry(entry), m_argument(argument) {
  m_context = context::make_fcontext(m_stack.Top(), kStackSize,
                                     [](context::transfer_t transfer) { Trampoline::Begin(transfer); });
  m_stackBottom = m_stack.Bottom();
  m_stackSize = kStackSize;
#if defined(IORDER_TSAN)
  m_tsanFiber = __tsan_create_fiber(0);
#endif
}

CFiber::~CFiber() {
  TakeStack();
}

CFiberStack CFiber::TakeStack() noexcept {
#if defined(IORDER_TSAN)
  if (m_stack) __tsan_destroy_fiber(m_tsanFiber);
#endif
  return std::move(m_stack);
}

void CFiber::SwitchTo(CFiber& next) noexcept {
  Jump(next, false);
}

void CFiber::LeaveTo(CFiber& next) noexcept {
  Jump(next, true);
  std::abort();  // nobody comes back to a fiber that has ended
}

void CFiber::Jump(CFiber& next, [[maybe_unused]] bool isLast) noexcept {
  auto& exceptions = *reinterpret_cast<ExceptionState*>(abi::__cxa_get_globals());
  m_exceptions = exceptions;
  exceptions = next.m_exceptions;
  void* fakeStack = nullptr;
#if defined(IORDER_ASAN)
  __sanitizer_start_switch_fiber(isLast ? nullptr : &fakeStack, next.m_stackBottom, next.m_stackSize);
#endif
#if defined(IORDER_TSAN)
  if (!m_stack) m_tsanFiber = __tsan_get_current_fiber();
  __tsan_switch_to_fiber(next.m_tsanFiber, 0);
#endif
  Passage passage{*this, next};
  const context::transfer_t transfer =
      context::jump_fcontext(std::exchange(next.m_context, nullptr), &passage);
  Arrive(*static_cast<const Passage*>(transfer.data), transfer.fctx, fakeStack);
}

void CFiber::Arrive(const Passage& passage, void* fromContext, [[maybe_unused]] void* fakeStack) noexcept {
  CFiber& from = passage.from;
  from.m_context = fromContext;
#if defined(IORDER_ASAN)
  // The stack of the OS thread itself becomes known so.
  __sanitizer_finish_switch_fiber(fakeStack, &from.m_stackBottom, &from.m_stackSize);
#endif
}

}  // namespace iorder
