# The Wine prefix of this tree and a session on it. Sourced after common.sh, never run.

# The code page is 1252 only with this LC_ALL; mscoree and mshtml only cost time.
export WINEPREFIX=${WINEPREFIX:-$root/build/prefix}
export WINEDEBUG=${WINEDEBUG:--all} LC_ALL=C.UTF-8 WINEDLLOVERRIDES="mscoree,mshtml="

wine_program=/usr/bin/wine
wineserver_program=/usr/lib/wine/wineserver64

# A crash must end the process with its code, at once and without a dialog: a test that
# crashes must never count as passed.
wine_prefix_make() {
    [ -f "$WINEPREFIX/.complete" ] && return
    say "making the Wine prefix"
    rm -rf "$WINEPREFIX"
    mkdir -p "$WINEPREFIX"
    (
        unset DISPLAY
        "$wine_program" wineboot -i
        local debugger='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
        "$wine_program" reg add "$debugger" /v Debugger /t REG_SZ /d false /f
        "$wine_program" reg add "$debugger" /v Auto /t REG_SZ /d 1 /f
        "$wine_program" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
        "$wineserver_program" -w
    ) >"$root/build/prefix.log" 2>&1 || fail "the Wine prefix could not be made, see build/prefix.log"
    touch "$WINEPREFIX/.complete"
}

# wine_session_start: an X server and a Wine server that live until this script ends, and one idle
# program. The platform's own background programs start with the first program and end with the last;
# started by a test they would keep the test's output open long after it has ended. One session at a
# time has the prefix; programs that were started by hand end with its beginning.
wine_session_start() {
    exec {prefix_lock}>"$WINEPREFIX.lock"
    flock --nonblock "$prefix_lock" || { say "waiting for the Wine prefix"; flock "$prefix_lock"; }
    wine_prefix_make
    "$wineserver_program" -k 2>/dev/null && "$wineserver_program" -w

    trap wine_session_end EXIT
    exec {display_pipe}<> <(:)
    Xvfb -displayfd "$display_pipe" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 {prefix_lock}>&- &
    xvfb_pid=$!
    read -r -t 30 -u "$display_pipe" display_number || fail "the X server did not start"
    export DISPLAY=:$display_number

    "$wineserver_program" -f -p >/dev/null 2>&1 {prefix_lock}>&- &
    wineserver_pid=$!
    { tail --pid=$$ -f /dev/null | "$wine_program" cmd; } >/dev/null 2>&1 {prefix_lock}>&- &
    "$wine_program" cmd /c exit </dev/null >/dev/null 2>&1
}

# Asked to end, the Wine server ends all programs and writes the registry to disk; killed, it would
# lose that and leave the programs behind.
wine_session_end() {
    "$wineserver_program" -k 2>/dev/null || true
    wait "$wineserver_pid" 2>/dev/null || true
    kill "$xvfb_pid" 2>/dev/null || true
}
