#pragma once

#include <gtest/gtest.h>

#include <string_view>

#include "records/json_document.h"

namespace iorder::testing {

/// The document of a JSON text that a test writes down.
inline rapidjson::Document Json(std::string_view text) {
  rapidjson::Document document;
  EXPECT_FALSE(ParseJson(std::string(text), document)) << text;
  return document;
}

}  // namespace iorder::testing
