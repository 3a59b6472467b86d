# The transcript of the visit, written to the terminal and to a file that the wait functions read.

results=build/run
transcript=$results/transcript.txt
# Output of the desktop's programs, shown only after a failure.
mutterings=/tmp/mutterings
# The timeout of all waits, in seconds.
patience=20

tell() { # WHO WHAT
  local now=$EPOCHREALTIME line
  printf -v line '%(%H:%M:%S)T.%s  %-9s %s' "${now%.*}" "${now:(-6):3}" "$1" "$2"
  printf '%s\n' "$line" >>"$transcript"
  printf '%s\n' "$line"
}

# Adds each line of standard input to the transcript.
retell() { # WHO
  local line
  while IFS= read -r line; do tell "$1" "$line"; done
}

fail() { # WHAT
  tell "FAILED" "$1"
  if [ -n "${agent:-}" ] && has_ended "$agent"; then tell "FAILED" "the agent has ended"; fi
  if [ -n "${DISPLAY:-}" ] && import -silent -window root "$results/failed.png"; then
    tell "picture" "$results/failed.png shows the screen at the time of the failure"
  fi
  retell "desktop" <"$mutterings"
  exit 1
}

# Repeats a command until it succeeds.
wait_for() { # WHAT COMMAND...
  local what=$1 deadline=$((SECONDS + patience))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || fail "timed out after $patience seconds waiting for $what"
    sleep 0.05
  done
}

has_lines() { # COUNT TEXT
  [ "$(grep --count --fixed-strings -- "$2" "$transcript")" -ge "$1" ]
}

# Waits until the transcript has COUNT lines of WHO that begin with BEGINNING.
wait_for_line() { # WHO BEGINNING [COUNT]
  local text
  printf -v text '  %-9s %s' "$1" "$2"
  wait_for "the line '$1  $2'" has_lines "${3:-1}" "$text"
}

wait_for_end() { # WHAT PID
  wait_for "$1 to end" has_ended "$2"
  wait "$2" || fail "$1 ended with status $?"
  tell "visit" "$1 ended with status 0"
}

has_ended() { ! kill -0 "$1" 2>/dev/null; }
