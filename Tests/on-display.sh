#!/usr/bin/env bash
# usage: on-display.sh xvfb|weston|eglfs PROGRAM [ARGUMENT...]
# Runs a program on a display of its own, where OpenGL renders each window on a thread, as on the screens of most
# users. The program's status is the status of the script; 125 means that there was no display.
#   xvfb     an X server with a window manager
#   weston   a Wayland compositor
#   eglfs    full screen without a window system
set -euo pipefail

kind=${1:?usage: on-display.sh xvfb|weston|eglfs PROGRAM [ARGUMENT...]}
shift
folder=$(mktemp -d)
# Programs that run at the same time share neither settings nor temporary files.
export HOME=$folder/home TMPDIR=$folder/tmp XDG_RUNTIME_DIR=$folder
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME
mkdir "$HOME" "$TMPDIR"
started=()

say() { printf 'on-display: %s\n' "$*" >&2; }

# shellcheck disable=SC2317 # called at the end
stop() {
    local process
    for process in "${started[@]}"; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    rm -rf "$folder"
}
trap stop EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# start NAME COMMAND...: starts a server in the background, which logs to a file with its name.
start() {
    local log=$folder/$1.log
    shift
    "$@" >"$log" 2>&1 &
    started+=("$!")
}

# await NAME COMMAND...: waits until a command succeeds. Ends the script when that takes too long.
await() {
    local name=$1 end=$((SECONDS + 30))
    shift
    until "$@" 2>/dev/null; do
        if ((SECONDS > end)) || ! kill -0 "${started[-1]}" 2>/dev/null; then
            say "$name does not start:"
            cat "$folder/$name.log" >&2
            exit 125
        fi
        sleep 0.05
    done
}

start_x_server() {
    # The server selects a free display and writes its number.
    start Xvfb Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp -noreset 3>"$folder/number"
    await Xvfb test -s "$folder/number"
    DISPLAY=:$(<"$folder/number")
    export DISPLAY
    unset WAYLAND_DISPLAY
}

# The desktop of a user has a window manager: it places, stacks and activates windows.
start_window_manager() {
    start openbox openbox --sm-disable --startup "touch $folder/managed"
    await openbox test -e "$folder/managed"
}

# The compositor's own headless mode has no keyboard and no pointer, which no user's display lacks. Therefore its
# screen is a window of the X server.
start_compositor() {
    export WAYLAND_DISPLAY=wayland-test
    start weston env -u WAYLAND_DISPLAY weston --backend=x11-backend.so --use-pixman --socket="$WAYLAND_DISPLAY" \
        --width=1400 --height=1000 --idle-time=0 --no-config
    await weston test -S "$folder/$WAYLAND_DISPLAY"
}

case $kind in
    xvfb)
        start_x_server
        start_window_manager
        platform=xcb
        ;;
    weston)
        start_x_server
        start_window_manager
        start_compositor
        platform=wayland
        ;;
    eglfs)
        start_x_server
        platform=eglfs
        # A window of the X server takes the place of the screen.
        export QT_QPA_EGLFS_INTEGRATION=eglfs_x11 EGLFS_X11_SIZE=${EGLFS_X11_SIZE:-390x844}
        ;;
    *)
        say "there is no display $kind"
        exit 125
        ;;
esac

unset QT_QUICK_BACKEND QT_SCREEN_SCALE_FACTORS QT_SCALE_FACTOR_ROUNDING_POLICY
export QT_QPA_PLATFORM=$platform QSG_RENDER_LOOP=threaded QSG_RHI_BACKEND=opengl LIBGL_ALWAYS_SOFTWARE=1
status=0
"$@" || status=$?
exit "$status"
