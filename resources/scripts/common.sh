# Shared by ./run, ./test, ./package and bench/run: packages, builds, Wine prefixes, the virtual screen.
# The caller has set `root` to the project's folder and runs under `set -u`.

logs="$root/build/logs"
mkdir -p "$logs"
umask 022

say() { printf '%s\n' "$*"; }

# fail LINE [LOG]: says what went wrong, with the end of the log.
fail() {
    printf '%s\n' "$1" >&2
    if [ -n "${2:-}" ] && [ -f "$2" ]; then
        tail -n 40 "$2" >&2
        printf '(whole log: %s)\n' "${2#"$root"/}" >&2
    fi
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# What building, running and testing need on Debian 12: build, run, test.
packages="cmake ninja-build g++ g++-mingw-w64-i686-win32 googletest libgtest-dev libbenchmark-dev libcli11-dev
nlohmann-json3-dev libpng-dev python3 python3-markdown-it nsis
wine wine32:i386 fonts-vlgothic fonts-wine locales xvfb openbox
clang-format clang-tidy cppcheck python3-pytest python3-pytest-xdist python3-xlib python3-pil python3-pefile libasound2-plugins:i386
sox strace abcmidi midicsv python3-mido"

missing_packages() {
    # One query for all; a package that was never heard of has no line.
    local installed name
    installed=$(dpkg-query -W -f '${Package}:${Architecture}:${db:Status-Status}\n' 2>/dev/null \
        | sed -n 's/:installed$//p')
    for name in $packages; do
        case $name in
        *:*) ;;
        *) name="$name:" ;;
        esac
        case "
$installed" in
        *"
$name"*) ;;
        *) printf '%s ' "${name%:}" ;;
        esac
    done
}

# apt_install OPTION|PACKAGE…: never at the cost of a package that is there.
apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends --no-remove install "$@"
}

# The packages, one a line, that the same call would bring back to an older version.
downgrades_of() {
    LC_ALL=C apt-get -s --no-install-recommends --no-remove install "$@" 2>/dev/null \
        | sed -n '/DOWNGRADED:$/,/^[^ ]/s/^  *//p' | tr -s ' ' '\n'
}

# confirm QUESTION: asks whoever sits at the terminal, and takes only y for a yes. Without a terminal there is nobody
# to ask and nothing to wait for: yes.
confirm() {
    local answer
    [ -t 0 ] || return 0
    printf '%s [y/N] ' "$1" >/dev/tty
    read -r answer
    [ "$answer" = y ] || [ "$answer" = Y ]
}

# What is about to be done to the system, before it is done.
say_what_is_installed() {
    say "These packages are missing and will be installed with apt-get: $*"
    [ "$(id -u)" = 0 ] || say "sudo runs apt-get as root; it may ask for your password."
}

add_i386() {
    dpkg --print-foreign-architectures | grep -qx i386 && return 0
    say "Some are 32-bit: the architecture i386 will be added to dpkg (back: dpkg --remove-architecture i386)."
    as_root dpkg --add-architecture i386
}

# The 32-bit libraries must have the version of the 64-bit ones. Where updates reach one architecture only, the
# libraries concerned go back to the version of the release, which is there for both.
install_with_release_versions() {
    local preferences="$root/build/release.pref" older
    local options=(--allow-downgrades -o "Dir::Etc::Preferences=$preferences")
    printf 'Package: *\nPin: release n=bookworm\nPin-Priority: 1001\n' >"$preferences"
    older=$(downgrades_of "${options[@]}" "$@" | paste -sd ' ')
    say "They do not fit the versions that are installed."
    if [ -n "$older" ]; then
        say "With these packages brought back to the version of the Debian release they would: $older"
        if ! confirm "Bring them back to that older version?"; then
            fail "No package was changed. These are missing still: $*"
            return 1
        fi
    fi
    say "Installing again, with the versions of the release"
    apt_install "${options[@]}" "$@" >>"$log" 2>&1 && return 0
    fail "The packages could not be installed." "$log"
    return 1
}

# PREBUILT is set where packages and programs were brought in from outside: nothing is installed or built.
install_packages() {
    local -a missing
    local log="$logs/packages.log"
    [ -n "${PREBUILT:-}" ] && return 0
    read -ra missing <<<"$(missing_packages)"
    [ "${#missing[@]}" = 0 ] && return 0
    if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
        fail "Packages are missing, and there is no sudo to install them with: ${missing[*]}"
        return 1
    fi
    say_what_is_installed "${missing[@]}"
    : >"$log"
    case " ${missing[*]} " in
    *:i386*) add_i386 2>>"$log" ;;
    esac
    # A package source that is out of reach makes update fail while the others are good: install tells.
    as_root apt-get -q update >>"$log" 2>&1 || true
    apt_install "${missing[@]}" >>"$log" 2>&1 && return 0
    install_with_release_versions "${missing[@]}"
}

# build PRESET TARGET…: configures once and builds quietly. One build of a preset at a time: suites that run side by
# side wait for each other.
build() {
    mkdir -p "$root/build"
    (
        flock 8
        build_alone "$@" 8>&-
    ) 8>"$root/build/.$1.lock"
}

build_alone() {
    local preset=$1 log="$logs/build-$1.log"
    [ -n "${PREBUILT:-}" ] && return 0
    shift
    if [ ! -f "$root/build/$preset/build.ninja" ]; then
        if ! (cd "$root" && cmake --preset "$preset") >"$log" 2>&1; then
            fail "Configuring $preset failed." "$log"
            return 1
        fi
    fi
    if ! cmake --build "$root/build/$preset" --target "$@" >"$log" 2>&1; then
        fail "Building $* ($preset) failed." "$log"
        return 1
    fi
}

# Everything that a user gets, in build/windows/sound-editor. The samples are built by the native sndtool.
build_product() {
    build native sndtool && build windows product
}

# Wine, quiet and without the parts that a small program has no use for.
export WINEARCH=win32 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'

# A ready prefix that is only ever copied. Made again when Wine or the settings in it change; a change of the
# steps below raises the number at the end of the stamp.
wine_template() {
    local template="$root/build/wine-template" fonts="$root/resources/scripts/wine-fonts.reg"
    local log="$logs/wine-template.log" stamp
    stamp="$(wine --version 2>/dev/null) $(cksum <"$fonts") 2"
    (
        flock 9
        if [ "$(cat "$template/stamp" 2>/dev/null)" = "$stamp" ]; then
            # Copies share files with it: what was written since would be in all of them.
            [ -z "$(find "$template" -newer "$template/stamp" -type f -print -quit)" ] && exit 0
        fi
        say "Preparing Wine (once)"
        rm -rf "$template" "$template.new"
        export WINEPREFIX="$template.new"
        unset DISPLAY
        {
            timeout 180 wine wineboot -i && timeout 60 wineserver -w &&
                timeout 60 wine regedit /S "$fonts" && timeout 60 wineserver -w
        } >"$log" 2>&1 </dev/null 9>&- || {
            fail "Wine could not be prepared." "$log"
            exit 1
        }
        # Wine's own interface font is not found where its package puts it.
        cp /usr/share/wine/fonts/tahoma*.ttf "$WINEPREFIX/drive_c/windows/Fonts/" 2>/dev/null
        # The user's folders point into the home directory; copies keep to themselves.
        find "$WINEPREFIX/drive_c/users" -type l | while read -r link; do rm "$link" && mkdir "$link"; done
        printf '%s\n' "$stamp" >"$WINEPREFIX/stamp"
        mv "$WINEPREFIX" "$template"
    ) 9>"$root/build/.wine-template.lock"
}

# new_prefix FOLDER: a fresh copy of the template.
new_prefix() {
    wine_template || return 1
    rm -rf "$1"
    "$root/resources/scripts/copy_prefix" "$root/build/wine-template" "$1"
}

# What the link software's set-up program leaves behind: the registry entry and the folders. For `wine`'s
# current prefix.
link_software_entry() {
    local folder="$WINEPREFIX/drive_c/Program Files/PC Ferry"
    mkdir -p "$folder/userdata/sound" "$folder/pcferry/cache/System/sound"
    wine reg add 'HKCU\Software\QMT\Corvane-e\PC' /v InstallDir /d 'C:\Program Files\PC Ferry' /f \
        >"$logs/registry.log" 2>&1 </dev/null
}

# Whether the display in DISPLAY answers.
display_usable() {
    [ -n "${DISPLAY:-}" ] && timeout 5 /usr/bin/python3 -c 'from Xlib.display import Display; Display()' \
        >/dev/null 2>&1
}

# A virtual screen with a window manager; sets DISPLAY and remembers what to end.
screen_pids=""
start_screen() {
    local pipe="$root/build/.display.$BASHPID" number=""
    rm -f "$pipe"
    mkfifo "$pipe" || return 1
    Xvfb -displayfd 7 -screen 0 1920x1200x24 -nolisten tcp 7>"$pipe" >"$logs/xvfb.log" 2>&1 &
    screen_pids="$!"
    read -r -t 20 number <"$pipe"
    rm -f "$pipe"
    if [ -z "$number" ]; then
        fail "The virtual screen did not start." "$logs/xvfb.log"
        return 1
    fi
    export DISPLAY=":$number"
    openbox --sm-disable >"$logs/openbox.log" 2>&1 &
    screen_pids="$! $screen_pids"
}

stop_screen() {
    # shellcheck disable=SC2086
    [ -n "$screen_pids" ] && kill $screen_pids 2>/dev/null
    # shellcheck disable=SC2086
    [ -n "$screen_pids" ] && wait $screen_pids 2>/dev/null
    screen_pids=""
}
