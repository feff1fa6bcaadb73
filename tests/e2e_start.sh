#!/usr/bin/env bash
# End to end: the real program, started by the launcher on a simulated board
# under a virtual X server, must come up and show its main window.
#   e2e_start.sh LAUNCHER PROGRAM
set -uo pipefail
launcher=$1
program=$2

if [ -z "${E2E_INSIDE_X:-}" ]; then
  export E2E_INSIDE_X=1
  exec xvfb-run -a -s "-screen 0 1280x1024x24" "$0" "$@"
fi

unset QT_QPA_PLATFORM
"$launcher" "$program" &
pid=$!
title="ZV4280(v2/v3) TB 1.0.3"
for _ in $(seq 1 300); do
  if xwininfo -root -tree 2>/dev/null | grep -qF "\"$title\""; then
    found=yes
    break
  fi
  if ! kill -0 "$pid" 2>/dev/null; then
    wait "$pid"
    echo "e2e: the program ended early with status $?"
    exit 1
  fi
  sleep 0.1
done
if [ "${found:-no}" != yes ]; then
  echo "e2e: no window titled \"$title\" within 30 s"
  kill "$pid" 2>/dev/null
  exit 1
fi
echo "e2e: main window \"$title\" is up"
kill -TERM "$pid"   # the launcher passes it on to the program
wait "$pid"
exit 0
