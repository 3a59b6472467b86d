# The transcript of the scripted session, written to the terminal and to a file that the wait functions read.

results=build/run
transcript=$results/transcript.txt
# Output of the desktop's programs, shown only after a failure.
desktop_output=/tmp/desktop_output
# The timeout of all waits, in seconds.
wait_limit=20

log_line() { # WHO WHAT
  local now=$EPOCHREALTIME line
  printf -v line '%(%H:%M:%S)T.%s  %-9s %s' "${now%.*}" "${now:(-6):3}" "$1" "$2"
  printf '%s\n' "$line" >>"$transcript"
  printf '%s\n' "$line"
}

# Adds each line of standard input to the transcript.
log_lines() { # WHO
  local line
  while IFS= read -r line; do log_line "$1" "$line"; done
}

fail() { # WHAT
  log_line "FAILED" "$1"
  if [ -n "${agent:-}" ] && has_ended "$agent"; then log_line "FAILED" "the agent has ended"; fi
  if [ -n "${DISPLAY:-}" ] && import -silent -window root "$results/failed.png"; then
    log_line "picture" "$results/failed.png shows the screen at the time of the failure"
  fi
  log_lines "desktop" <"$desktop_output"
  exit 1
}

# Repeats a command until it succeeds.
wait_for() { # WHAT COMMAND...
  local what=$1 deadline=$((SECONDS + wait_limit))
  shift
  until "$@"; do
    [ "$SECONDS" -lt "$deadline" ] || fail "timed out after $wait_limit seconds waiting for $what"
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
  log_line "visit" "$1 ended with status 0"
}

has_ended() { ! kill -0 "$1" 2>/dev/null; }
