#include "results/results_store.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace ovaro {

int resultMethodIndex(std::string_view method) {
  for (std::size_t i = 0; i < kResultMethods.size(); ++i) {
    if (kResultMethods[i] == method) return static_cast<int>(i);
  }
  return -1;
}

void ResultsStore::store(StoredResult result) {
  const int index = resultMethodIndex(result.solution.method);
  if (index < 0) {
    throw std::invalid_argument("no result method is named \"" + result.solution.method + "\"");
  }
  results_[static_cast<std::size_t>(index)] = std::move(result);
}

const StoredResult* ResultsStore::find(std::string_view method) const {
  const int index = resultMethodIndex(method);
  if (index < 0) return nullptr;
  const std::optional<StoredResult>& slot = results_[static_cast<std::size_t>(index)];
  return slot ? &*slot : nullptr;
}

void ResultsStore::clear() {
  for (std::optional<StoredResult>& slot : results_) slot.reset();
  ran = RunFlags{};
  statistics.clear();
  comparison.reset();
}

}  // namespace ovaro
