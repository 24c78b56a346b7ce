#pragma once

#include <string>

#include "platform/runtime.h"

namespace iorder {

/// A new text that names a group of order strings: a GUID in its standard form, with braces.
std::wstring MakeGroupId(IRuntime& runtime);

}  // namespace iorder
