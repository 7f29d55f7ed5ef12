# Whole test programs, each run once. Sourced after common.sh, within a Wine session.

# run_whole_programs FOLDER: every test program of the folder, one after the other, all tests of
# each in one process: much faster than a process a test. What a failed program says is shown.
# Only the closing line tells that one has passed, since a crash can leave the status of a success.
run_whole_programs() {
    local program output failed=0
    output=$(mktemp)
    for program in "$1"/*_tests.exe; do
        timeout 900 "$root/scripts/lib/run-test" "$program" >"$output" 2>&1 || true
        if grep -aq 'all tests of this program passed' "$output"; then
            say "$(basename "$program" .exe): $(grep -a '^\[  PASSED' "$output")"
        else
            grep -avE '^(\[( RUN  |       OK|-----)|\s*$)' "$output" || true
            say "$(basename "$program" .exe): FAILED"
            failed=1
        fi
    done
    rm -f "$output"
    return $failed
}
