#include "model/example_table.h"

namespace ovaro {

namespace {

constexpr ExampleEntry kExamples[] = {
    {3600, "track1.ovi", "track1 - One-state output-gap tracking", "Ovaro team", "Generic",
     "Regular, constant weights", "Deterministic", "Stabilisation"},
    {3604, "infl2.ovi", "infl2 - Inflation and output with moving targets", "Ovaro team", "Generic",
     "Regular, time-varying desired paths", "Deterministic", "Monetary and fiscal policy"},
    {3608, "learn1.ovi", "learn1 - Uncertain policy multiplier", "Ovaro team", "Generic",
     "Regular, constant weights", "Parameter uncertainty", "Learning and caution"},
};

}  // namespace

std::span<const ExampleEntry> exampleTable() {
  return kExamples;
}

const ExampleEntry& defaultExample() {
  return kExamples[0];
}

}  // namespace ovaro
