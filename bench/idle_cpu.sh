#!/usr/bin/env bash
# The app's CPU while it sits on one place with nothing to do: starts the
# local service on a spare port, signs in through kestroctl (the service
# approves by itself), opens the app, goes to the place with its chord
# (1 Home, 2 Needs you, 3 Tasks, 4 Kest chat), waits for it to settle and
# counts the CPU the app takes over SECONDS, per thread when it takes any.
# With ANSWERING=1 a message to everyone is posted first, so the count is
# taken while teammates answer it (their orbs turn, the room reloads every
# 2 s) rather than at rest.
# Run under a display, e.g.:
#   xvfb-run -a -s "-screen 0 1440x900x24" scripts/headless-session bench/idle_cpu.sh 4 60
set -euo pipefail
cd "$(dirname "$0")/.."
place=${1:-4}
seconds=${2:-60}
build=build/default
port=8799
origin=http://127.0.0.1:$port

"$build/devservice/kestro-devservice" --auto-approve --port $port --reset >/tmp/kestro-idle-service.log 2>&1 &
service=$!
trap 'kill $service ${app:-} 2>/dev/null || true' EXIT
sleep 1
coproc sign { "$build/tools/kestroctl/kestroctl" --origin $origin sign-in --no-browser 2>/dev/null; }
read -r address <&"${sign[0]}"
curl -s -o /dev/null -w '%{redirect_url}\n' "$address" >&"${sign[1]}"
wait "$sign_PID"

"$build/kestro" --origin $origin >/tmp/kestro-idle-app.log 2>&1 &
app=$!
sleep 10
window=$(xdotool search --onlyvisible --pid $app | tail -1)
xdotool windowfocus --sync "$window" key "ctrl+shift+$place"
if [ "${ANSWERING:-0}" = 1 ]; then
  "$build/tools/kestroctl/kestroctl" --origin $origin call app postKestMessageAction \
    '{"text":"@all which launch should we do first, and why?"}' >/dev/null
fi
sleep 10

ticks() { for t in /proc/$app/task/*; do echo "$(basename "$t") $(cat "$t/comm" | tr ' ' _) $(awk '{print $14+$15}' "$t/stat")"; done | sort; }
before=$(ticks)
sleep "$seconds"
after=$(ticks)
hz=$(getconf CLK_TCK)
join <(echo "$before") <(echo "$after") | awk -v hz="$hz" -v s="$seconds" '
  { d = $5 - $3; total += d; if (d > 0) printf "  %-16s %5.2f%% of one core\n", $2, 100 * d / hz / s }
  END { printf "idle on place %s for %d s: %.2f%% of one core (goal: under 1%%)\n", "'"$place"'", s, 100 * total / hz / s }'
