#!/bin/sh
# slurm_test.sh KELTO DOCUMENT: starts a Slurm of one node in a folder of its own, and runs the
# recipe for job arrays on it. Needs root. Exit code 77: not tried.
set -eu
kelto=$1 document=$2
here=$(cd "$(dirname "$0")" && pwd)
fail() { echo "slurm_test: $*" >&2; exit 1; }
if [ "$(id -u)" -ne 0 ]; then
  echo "slurm_test: NOT TRIED: only root can start Slurm's daemons" >&2
  exit 77
fi
if ! grep -q ' /sys/fs/cgroup' /proc/mounts; then
  echo "slurm_test: NOT TRIED: Slurm needs the control groups, and /sys/fs/cgroup is not mounted" >&2
  exit 77
fi
for program in munged slurmctld slurmd sbatch; do
  command -v "$program" >/dev/null || fail "$program is missing; ./dev setup installs it"
done

folder=$(mktemp -d)
daemons=
stop() {
  # Only what was started here, the last one first.
  for daemon in $daemons; do kill "$daemon" 2>/dev/null || true; done
  for daemon in $daemons; do wait "$daemon" 2>/dev/null || true; done
  rm -rf "$folder"
}
trap stop EXIT
trap 'exit 1' INT TERM
chmod 755 "$folder"
mkdir "$folder/state" "$folder/spool" "$folder/munge"
dd if=/dev/urandom of="$folder/munge/key" bs=1024 count=1 2>/dev/null
chmod 400 "$folder/munge/key"
node=$(hostname -s)
# Ports that another test on this machine is unlikely to have, below those that the system gives to
# whoever asks for any.
port=$((20000 + $$ % 12000))
cat >"$folder/slurm.conf" <<END
ClusterName=test
SlurmctldHost=$node(127.0.0.1)
SlurmctldPort=$port
SlurmdPort=$((port + 1))
SlurmUser=root
AuthType=auth/munge
AuthInfo=socket=$folder/munge/socket
CredType=cred/munge
StateSaveLocation=$folder/state
SlurmdSpoolDir=$folder/spool
SlurmctldPidFile=$folder/slurmctld.pid
SlurmdPidFile=$folder/slurmd.pid
SlurmdParameters=config_overrides
SlurmctldLogFile=$folder/slurmctld.log
SlurmdLogFile=$folder/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
MailProg=/bin/true
ReturnToService=2
MpiDefault=none
SchedulerParameters=sched_interval=1,batch_sched_delay=1,bf_interval=1
NodeName=$node NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=all Nodes=$node Default=YES State=UP
END
export SLURM_CONF="$folder/slurm.conf"

# Each daemon is begun once the one it needs answers: one that asked too early would wait for long
# before it asks again.
start() {
  name=$1
  shift
  "$@" >"$folder/$name.out" 2>&1 &
  daemons="$! $daemons"
}
wait_for() {
  for _ in $(seq 600); do
    ! "$@" >/dev/null 2>&1 || return 0
    sleep 0.1
  done
  tail -n 20 "$folder"/*.out "$folder"/*.log "$folder/munge/log" >&2 2>/dev/null || true
  fail "waited a minute in vain for: $*"
}
controller_answers() { scontrol ping | grep -q UP; }
node_is_idle() { [ "$(sinfo -h -o %t)" = idle ]; }

start munged munged --foreground --force --key-file="$folder/munge/key" \
  --socket="$folder/munge/socket" --pid-file="$folder/munge/pid" --log-file="$folder/munge/log" \
  --seed-file="$folder/munge/seed"
wait_for munge -S "$folder/munge/socket" -n
start slurmctld slurmctld -D
wait_for controller_answers
start slurmd slurmd -D -N "$node"
wait_for node_is_idle
sh "$here/recipe_test.sh" "$kelto" "$document" Slurm
