#!/usr/bin/env bash
# The installer of one Windows build, under Wine, silent as a script runs
# it: it installs per user, the program starts from each Start-menu entry
# and writes its queue beside itself, and the uninstaller leaves nothing
# but what the user chose to keep (first the settings and the queue kept,
# then, installed again, removed too).
#   installer_test.sh --run WINE_RUN --makensis MAKENSIS --strip STRIP
#     --program quorvex.exe --build EXE64|EXE32 --remote quorvex-remote.exe
#     --version VERSION --work FOLDER
set -euo pipefail
here=$(cd "$(dirname "$0")/../.." && pwd)
while (($#)); do
  case $1 in
    --run) run=$2 ;;
    --makensis) makensis=$2 ;;
    --strip) strip=$2 ;;
    --program) program=$2 ;;
    --build) build=$2 ;;
    --remote) remote=$2 ;;
    --version) version=$2 ;;
    --work) work=$2 ;;
    *) echo "installer_test.sh: unknown argument $1" >&2; exit 2 ;;
  esac
  shift 2
done

failures=0
fail() { echo "FAILED: $*" >&2; failures=$((failures + 1)); }
step() { echo "--- $*"; }
wine_() { "$run" "$@"; }
# A Windows path's place on this machine.
unix_path() { wine_ winepath -u "$1" 2>/dev/null | tr -d '\r'; }
# The value of an environment variable in the Windows of the prefix.
win_env() { wine_ cmd /c echo "%$1%" 2>/dev/null | tr -d '\r'; }
# A folder of the user's, where the installer finds it.
shell_folder() {
  wine_ reg query \
    'HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders' \
    /v "$1" 2>/dev/null | tr -d '\r' | sed -n "s/^ *$1 *REG_SZ *//p"
}
has_key() { wine_ reg query "$1" >/dev/null 2>&1; }
# Waits up to SECONDS for a condition (a command) to hold.
wait_for() {
  local seconds=$1
  shift
  for ((i = 0; i < seconds * 4; ++i)); do
    "$@" && return 0
    sleep 0.25
  done
  return 1
}
gone() { [[ ! -e $1 ]]; }
no_key() { ! has_key "$1"; }

uninstall_key='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Quorvex'
settings_key='HKCU\Software\VB and VBA Program Settings\Quorvex'

step "the installer of the $build build"
rm -rf "$work"
mkdir -p "$work"
"$strip" -o "$work/quorvex.exe" "$program"
sed 's/$/\r/' "$here/packaging/README-windows.txt" >"$work/README.txt"
"$makensis" -V2 -DVERSION="$version" -D"$build"="$work/quorvex.exe" \
  -DREADME="$work/README.txt" -DOUTFILE="$work/setup.exe" \
  "$here/packaging/quorvex.nsi"

inst_win="$(shell_folder 'Local AppData')\\Programs\\Quorvex"
inst=$(unix_path "$inst_win")
menu=$(unix_path "$(shell_folder Programs)\\Quorvex")
simulate=$(unix_path "$(win_env TEMP)\\quorvex-simulate")
[[ -n $inst && -n $menu && -n $simulate ]] || { echo "no folders from Wine" >&2; exit 1; }

# Whatever an earlier run left goes first.
clean() {
  rm -rf "$inst" "$menu" "$simulate"
  wine_ reg delete "$uninstall_key" /f >/dev/null 2>&1 || true
  wine_ reg delete "$settings_key" /f >/dev/null 2>&1 || true
}
clean

install() {
  step "silent install"
  wine_ "$(wine_ winepath -w "$work/setup.exe" 2>/dev/null | tr -d '\r')" /S
  for f in quorvex.exe README.txt Uninstall.exe; do
    [[ -f $inst/$f ]] || fail "$inst_win\\$f is missing"
  done
  cmp -s "$inst/quorvex.exe" "$work/quorvex.exe" ||
    fail "the installed quorvex.exe is not the $build build"
  for l in "Quorvex mail server" "Quorvex simulated room" "Read me" \
      "Uninstall Quorvex"; do
    [[ -f $menu/$l.lnk ]] || fail "Start menu entry \"$l\" is missing"
  done
  wine_ reg query "$uninstall_key" /v DisplayVersion 2>/dev/null |
    grep -q "$version" || fail "Add or Remove Programs has no version $version"
}

# Starts a Start-menu entry and waits for the main window.
start_entry() {
  wine_ start "$(wine_ winepath -w "$menu/$1.lnk" 2>/dev/null | tr -d '\r')"
  wine_ "$remote" show QuorvexMain >/dev/null 2>&1 ||
    fail "\"$1\" did not bring up the main window"
}
# lblExit, and the window gone.
exit_program() {
  wine_ "$remote" close QuorvexMain >/dev/null 2>&1 ||
    fail "the program did not close"
}

install
step "the simulated room from its entry"
start_entry "Quorvex simulated room"
# It serves a room of its own: its transcript appears in its folder.
wait_for 30 test -s "$simulate/room.txt" ||
  fail "the simulated room wrote no room.txt (was --simulate passed?)"
exit_program
# The plain program from its entry, without the client: it reads the
# pending queue from Quorvex.INI beside itself as it starts (and removes
# the file), and writes it there again as it leaves, with its settings.
run_plain() {
  start_entry "Quorvex mail server"
  wait_for 30 gone "$inst/Quorvex.INI" ||
    fail "the program did not read its queue from Quorvex.INI"
  exit_program
  wait_for 10 test -f "$inst/Quorvex.INI" ||
    fail "no Quorvex.INI beside the installed program"
  grep -q 'ann-1' "$inst/Quorvex.INI" 2>/dev/null ||
    fail "the queue was not written back to Quorvex.INI"
  # Its log beside the queue: the start and the exit of this run.
  tail -n 2 "$inst/Quorvex.log" 2>/dev/null | grep -q $'\tstarted\t-\tprogram' ||
    fail "no start in Quorvex.log beside the installed program"
  tail -n 1 "$inst/Quorvex.log" 2>/dev/null | grep -q $'\tstopped\t-\tprogram' ||
    fail "no exit in Quorvex.log beside the installed program"
  has_key "$settings_key" || fail "no settings in the registry"
}
step "the program from its entry, without the client"
printf '[Quorvex]\r\nTotalPending=1\r\nPending 0=ann-1\r\n' >"$inst/Quorvex.INI"
run_plain

step "silent uninstall, keeping the settings (the default)"
wine_ "$(wine_ winepath -w "$inst/Uninstall.exe" 2>/dev/null | tr -d '\r')" /S
# The uninstaller runs on as a copy of itself: its work ends with the
# Start-menu folder, the program files and its registration gone.
wait_for 60 gone "$inst/Uninstall.exe" || fail "Uninstall.exe is still there"
wait_for 30 no_key "$uninstall_key" || fail "still in Add or Remove Programs"
wait_for 10 gone "$menu" || fail "the Start-menu folder is still there"
for f in quorvex.exe README.txt; do
  [[ ! -e $inst/$f ]] || fail "$f is still there"
done
kept=$(cd "$inst" 2>/dev/null && ls -A | tr '\n' ' ')
[[ $kept == "Quorvex.INI Quorvex.log " ]] ||
  fail "the folder holds \"$kept\", not only Quorvex.INI and Quorvex.log"
has_key "$settings_key" || fail "the settings were removed, not kept"
[[ -d $simulate ]] || fail "the simulated room's folder was removed, not kept"

install
[[ -f $inst/Quorvex.INI ]] || fail "installing again removed the kept queue"
step "the program again, with the queue it kept"
run_plain

step "silent uninstall, removing the settings"
wine_ "$(wine_ winepath -w "$inst/Uninstall.exe" 2>/dev/null | tr -d '\r')" \
  /S /REMOVESETTINGS
wait_for 60 gone "$inst" || fail "the program's folder is still there: $(ls -A "$inst")"
wait_for 30 no_key "$uninstall_key" || fail "still in Add or Remove Programs"
gone "$menu" || fail "the Start-menu folder is still there"
no_key "$settings_key" || fail "the settings are still in the registry"
gone "$simulate" || fail "the simulated room's folder is still there"

clean
if ((failures)); then
  echo "installer test: $failures failures" >&2
  exit 1
fi
echo "installer test: the $build build installs, starts and uninstalls"
