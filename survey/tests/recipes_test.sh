#!/usr/bin/env bash
# The scripts of docs/survey.md run as they are shown, the one for several machines with two ssh servers of its own.
set -euo pipefail
# shellcheck source=tests/lib.sh
. "$SOURCE_DIR/tests/lib.sh"
tools "$KBSURVEY"
scripts_of survey.md 10

fresh_folder() {
  cd "$scratch"
  rm -rf folder
  mkdir -p folder/scenes
  cd folder
  cp "$SOURCE_DIR"/samples/{town,damaged,version}.kb scenes
  cp "$SOURCE_DIR/samples/index.kb" $'scenes/a\n\e\xe2\x80\xaeb.kb'
}
verdicts() { sed -n 's/^\(3\|4\) files: \([^;(]*\).*/\2/p' "$1"; }
all='1 OK, 2 ERR, 1 without verdict '

fresh_folder
recipe 0 1
same "script 1" "some files have no verdict" "$(tail -n 1 "$scratch/out")"
grep '<title>' survey.html >/dev/null || fail "script 1: no page"
recipe 0 2
rm "scenes/version.kb"
recipe 0 2
same "script 2, again" '1 OK, 2 ERR, 0 without verdict' "$(verdicts survey.txt)"
recipe 0 4
awk '/^```text$/ { out = 1; next } /^```/ { out = 0 } out' "$SOURCE_DIR/docs/survey.md" >"$scratch/texts"
same "line that is shown" "$(grep '^ERR' "$scratch/texts")" "$(grep damaged "$scratch/out")"
grep '"repairs":\[0,1,2,' survey.html >/dev/null || fail "script 4: a page without its answers"
recipe 1 5
grep 'failures="2"' survey.xml >/dev/null || fail "script 5: no JUnit report"
cp "$SOURCE_DIR/samples/figure.kb" scenes
recipe 0 6
same "script 6, nothing new" "" "$(grep scenes "$scratch/out")"
rm scenes/figure.kb
mv scenes/town.kb ok.kb
mv scenes/damaged.kb scenes/town.kb
mv ok.kb scenes/damaged.kb
recipe 0 6
same "script 6" "$(grep -v '^ERR' "$scratch/texts")" "$(grep scenes "$scratch/out")"
mv scenes/damaged.kb ok.kb
mv scenes/town.kb scenes/damaged.kb
mv ok.kb scenes/town.kb
recipe 0 7
same "script 7" $'scenes/a\\x0a\\x1b\\xe2\\x80\\xaeb.kb\nscenes/damaged.kb' "$(cat "$scratch/out")"

# Whatever is moved away is there afterwards, also files of one name, and those of a second time. A folder that cannot be
# read, here because its path is too long for the system, stays, and so do the files in it.
mkdir -p scenes/x/same scenes/y
for place in x y x/same; do cat "$SOURCE_DIR/samples/damaged.kb" - >"scenes/$place/same.kb" <<<"$place"; done
(cd scenes && for _ in $(seq 20); do mkdir "$(printf 'd%0249d' 0)" && cd d0*; done && : >deep)
contents() { find . -type f ! -name '*.list' -execdir sha256sum {} \; | cut -d ' ' -f 1 | sort; }
kept=$(contents)
recipe 0 3
same "what script 3 has kept" "$kept" "$(contents)"
same "left by script 3" "scenes/town.kb" "$(find scenes -name '*.kb')"
same "told by script 3" "1" "$(grep -c '^kbsurvey: scenes/d0.*: folder cannot be read: File name too long\.$' "$scratch/err")"
cat "$SOURCE_DIR/samples/damaged.kb" - >scenes/x/same.kb <<<"another"
kept=$(contents)
recipe 0 3
same "what script 3 has kept, again" "$kept" "$(contents)"
same "the second one" scenes/x/same.kb "$(cd quarantine && find . -name same.kb | grep '/x/same.kb' | sed 's|^\./||')"

# --- Slurm: its variables are set as it sets them ---

fresh_folder
for task in $(seq 2 16) 3; do # one is requeued
  SLURM_ARRAY_TASK_ID=$task SLURM_ARRAY_TASK_COUNT=16 SLURM_CPUS_PER_TASK=2 recipe 0 9
done
recipe 1 10 # one has not run
SLURM_ARRAY_TASK_ID=1 SLURM_ARRAY_TASK_COUNT=16 SLURM_CPUS_PER_TASK=2 recipe 0 9
recipe 0 10
same "parts of an array" "$all" "$(verdicts "$scratch/out")"

# --- Two machines ---

start_server() { # NAME PORT
  cat >"$scratch/$1.conf" <<END
ListenAddress 127.0.0.1:$2
HostKey $scratch/key
PidFile $scratch/$1.pid
AuthorizedKeysFile $scratch/key.pub
StrictModes no
UsePAM no
PasswordAuthentication no
SetEnv PATH=$tools:/usr/bin:/bin
END
  /usr/sbin/sshd -f "$scratch/$1.conf" -E "$scratch/$1.log" || return
  cat >>"$scratch/ssh_config" <<END
Host $1
  HostName 127.0.0.1
  Port $2
  IdentityFile $scratch/key
  StrictHostKeyChecking no
  UserKnownHostsFile $scratch/known
  LogLevel ERROR
END
  for _ in $(seq 50); do
    ssh "$1" true 2>/dev/null && return
    sleep 0.1
  done
  cat "$scratch/$1.log" >&2
  return 1
}
stop_servers() {
  local file
  for file in "$scratch"/{first,second}.pid; do [ ! -e "$file" ] || kill "$(cat "$file")" || :; done
}

if [ -x /usr/sbin/sshd ] && [ "$(id -u)" -eq 0 ] && has ssh-keygen && parallel --version 2>/dev/null | grep -w GNU >/dev/null; then
  mkdir -p /run/sshd
  ssh-keygen -q -t ed25519 -N '' -f "$scratch/key"
  printf '#!/bin/sh\nexec %s -F %s "$@"\n' "$(command -v ssh)" "$scratch/ssh_config" >"$tools/ssh"
  chmod +x "$tools/ssh"
  trap 'stop_servers; finish' EXIT
  port=$((20000 + $$ % 10000))
  export PARALLEL_HOME=$scratch/parallel
  if start_server first "$port" && start_server second "$((port + 1))"; then
    fresh_folder
    recipe 0 8
    same "two machines" "$all" "$(verdicts "$scratch/out")"
    same "machines that have worked" $'first\nsecond' "$(awk 'NR > 1 { print $2 }' parts.log | sort -u)"
    kill "$(cat "$scratch/second.pid")"
    rm -f "$scratch/second.pid"
    recipe 1 8
    same "with a machine down" "parts are missing" "$(tail -n 1 "$scratch/err")"
  else
    fail "no ssh server on the loopback address"
  fi
else
  notice "two machines: this needs sshd, GNU parallel and root"
fi
