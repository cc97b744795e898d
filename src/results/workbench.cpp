#include "results/workbench.h"

#include "numeric/matrix_ops.h"

namespace ovaro {

Workbench::Workbench(Prompter& p, Progress& g) : prompter(p), progress(g) {
  resetToDefaults();
}

void Workbench::resetToDefaults() {
  clearModel(model);
  shell = ShellPreferences{};
  eps = macheps();
}

}  // namespace ovaro
