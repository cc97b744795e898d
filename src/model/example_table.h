// The example library: model files shipped beside the program, named by a fixed table that the
// Examples menu and browser read. Each row holds the command id of its menu entry, the bare file
// name (looked up in the working directory) and a one-line description ("stem - title"), with the
// cascade headings under which the menu lists it.
#pragma once

#include <span>
#include <string_view>

namespace ovaro {

struct ExampleEntry {
  int commandId;                 // 3600..3836 in steps of 4
  std::string_view fileName;     // e.g. "track1.ovi"
  std::string_view description;  // e.g. "track1 - One-state output-gap tracking"
  std::string_view author;
  std::string_view country;
  std::string_view functionalForm;
  std::string_view stochasticTerms;
  std::string_view subject;
};

std::span<const ExampleEntry> exampleTable();
// The example that `make run` and first-time users start from.
const ExampleEntry& defaultExample();

}  // namespace ovaro
