#pragma once

#include <rapidjson/document.h>

#include <string>

namespace iorder {

class IRecordBus;
class IRuntime;
class ISettingsFile;
class ISymbolDatabaseComponent;

/// The document that a "GLACETTE.REQUEST" is answered in: the engine makes it, the host fills it in through
/// the reference that travels with the request (IRuntime::MakeReference of an AnswerDocument*).
using AnswerDocument = rapidjson::Document;

/// Everything that the engine asks of the world, but for the events, whose sinks the host connects itself.
/// All of it must outlive the engine.
struct World {
  IRuntime& runtime;
  IRecordBus& bus;
  ISymbolDatabaseComponent& database;
  ISettingsFile& settings;
  /// Path of the host's executable, with backslashes: its folder is where the settings files lie.
  std::wstring hostExecutable;
};

}  // namespace iorder
