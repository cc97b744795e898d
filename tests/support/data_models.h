// Models kept under tests/data/models/, read as the workbench reads them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "model/model_file.h"

namespace ovaro::testing {

inline Model dataModel(const std::string& name) {
  Model model;
  RecordingPrompter prompter;
  EXPECT_EQ(
      readModelFile(std::string(OVARO_SOURCE_DIR) + "/tests/data/models/" + name, model, prompter),
      1)
      << name;
  EXPECT_TRUE(prompter.messages().empty()) << name;
  return model;
}

}  // namespace ovaro::testing
