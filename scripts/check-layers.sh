#!/usr/bin/env bash
# Checks the one direction of dependency between the source layers: a file under src/LAYER may
# include project headers of its own layer and of the layers below it, never of one above.
# Also keeps Qt out of everything below src/ui/. Prints each offending include; exit 1 if any.
set -euo pipefail
cd "$(dirname "$0")/.."
layers=(numeric model io solve stoch results ui app)
rank() { local i; for i in "${!layers[@]}"; do [ "${layers[$i]}" = "$1" ] && { echo "$i"; return; }; done; echo -1; }
bad=0
for dir in "${layers[@]}"; do
  own=$(rank "$dir")
  while IFS=: read -r file line text; do
    target=$(sed -E 's/^#include "([a-z_]+)\/.*/\1/' <<<"$text")
    r=$(rank "$target")
    if [ "$r" -gt "$own" ]; then
      echo "$file:$line: $dir must not include $target ($text)"
      bad=1
    fi
  done < <(grep -rnE '^#include "[a-z_]+/' "src/$dir" --include='*.h' --include='*.cpp' || true)
  if [ "$own" -lt "$(rank ui)" ] && grep -rnE '^#include <Q' "src/$dir" >/dev/null; then
    grep -rnE '^#include <Q' "src/$dir" | sed 's/$/  (no Qt below src\/ui)/'
    bad=1
  fi
done
exit $bad
