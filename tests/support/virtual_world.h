#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/settings_file.h"
#include "platform/symbol_database.h"
#include "platform/virtual/virtual_runtime.h"
#include "platform/world.h"
#include "terminal/record_bus.h"
#include "tests/support/wrapped_bus.h"

namespace iorder::test {

/// No settings files at all: every key has its fallback.
class CNoSettings : public ISettingsFile {
 public:
  std::wstring ReadString(const std::wstring&, const std::wstring&, const std::wstring&,
                          const std::wstring& fallback, size_t) override {
    return fallback;
  }
};

/// A host without the database component.
class CNoDatabase : public ISymbolDatabaseComponent {
 public:
  std::unique_ptr<ISymbolDatabase> CreateDatabase(const std::wstring&, CDataBaseEventReceiver*) override {
    return nullptr;
  }
  std::unique_ptr<IRecordSet> CreateRecordSet() override { return nullptr; }
  std::unique_ptr<IRecordItem> CreateRecordItem() override { return nullptr; }
};

inline FieldChange Field(std::wstring name, Value value) {
  return {std::move(name), {.value = std::move(value)}};
}
inline NumberChange Number(int32_t id, Value value) {
  return {id, {.value = std::move(value)}};
}

/// A world in virtual time with the embedded record bus, which can be told to answer one call differently.
/// It begins on Monday 2024-03-04 at 08:40 in Taipei.
class CVirtualWorld {
 public:
  explicit CVirtualWorld(uint64_t seed = 0);

  /// Runs `main` on the host's thread; a run without errors is expected.
  void Run(const std::function<void()>& main);
  /// A thread that runs already.
  std::shared_ptr<IThread> Start(std::wstring name, std::function<void()> body);
  /// Milliseconds since the beginning.
  int64_t Elapsed() { return (runtime.Now() - m_begin).count(); }

  /// Makes the record, or changes it, and gives its handle.
  int32_t Record(const RecordChange& change);

  CVirtualRuntime runtime;
  CEmbeddedBus embeddedBus;
  CWrappedBus bus;
  CNoSettings settings;
  CNoDatabase database;
  World world;

 private:
  const TimePoint m_begin;
};

}  // namespace iorder::test
