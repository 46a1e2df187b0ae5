#!/usr/bin/env bash
# measure.sh - footprint benchmark of one command: memory, threads, idle CPU, wakeups, start-up time.
#
#   measure.sh [options] -- COMMAND [ARG...]
#
#   -n N       runs; each starts the command afresh (default 5)
#   -i SEC     idle time between "ready" and the memory sample (default 5)
#   -w SEC     length of the idle window for CPU and wakeups (default 60, 0 = none)
#   -c N       how many of the runs have the idle window (default 1)
#   -r HOW     what "ready" means:
#                stdout:REGEX  a line of the command's stdout matches (the command must flush it)
#                tray          a StatusNotifierItem or XEmbed icon registers (needs -T)
#                bus:REGEX     a line of `dbus-monitor --profile` on the session bus matches
#                quiet         the process tree stops using CPU for 0.5 s (default)
#   -t SEC     give up on "ready" after this long (default 20)
#   -x         run in a private Xvfb + session bus (+ tray host, with -T) made for this call
#   -T COMMAND tray host (trayhost.c built, and its options), started once in the session
#   -e K=V     extra environment for the command (repeatable)
#   -u NAME    remove NAME from the environment of the command (repeatable)
#   -s CMD     shell command run before every start (e.g. to reset a configuration)
#   -a CMD     shell command run when the program is ready, before it is measured; its output is shown,
#              $MEASURED_PID is the program; a run in which it fails does not count
#   -j FILE    append one JSON object per run
#   -N NAME    name used in the output (default: basename of the command)
#   -l         also list the shared objects mapped (last run)
#   -F REGEX   libraries to watch: if a foreign process maps the same file, a note is printed, since
#              that lowers PSS and USS, not RSS (default: libQt[56]Core|libgtk-[234])
#
# All figures are sums over the command's process tree. KiB = 1024 bytes.
#   RSS   resident; PSS shared pages divided by their users; USS private pages only (clean + dirty);
#   dirty private dirty = heap, relocations, buffers: what no other process can ever share
#   cpu   nanosecond run time of all threads (/proc/PID/task/*/schedstat), scaled to one minute
#   wakeups = voluntary context switches of all threads, scaled to one minute
# Needs: bash 5, awk, Linux >= 4.14; -x: Xvfb and dbus-daemon. Ends only processes that it started.
# Process ids come as lists of words, and the clean-up is called by a trap.
# shellcheck disable=SC2046,SC2086,SC2317
set -u
export LC_ALL=C
runs=5 settle=5 window=60 wruns=1 ready=quiet limit=20 private=0 tray='' json='' name='' libs=0 pre='' act=''
foreign='libQt[56]Core|libgtk-[234]'
addenv=() delenv=()
usage() { sed -n '2,/^# Process ids/{/^# Process ids/d;s/^# \{0,1\}//;p}' "$0"; exit "${1:-0}"; }
while getopts 'n:i:w:c:r:t:xT:e:u:s:a:j:N:lF:h' o; do
    case $o in
    n) runs=$OPTARG ;; i) settle=$OPTARG ;; w) window=$OPTARG ;; c) wruns=$OPTARG ;; r) ready=$OPTARG ;;
    t) limit=$OPTARG ;; x) private=1 ;; T) tray=$OPTARG ;; e) addenv+=("$OPTARG") ;; u) delenv+=(-u "$OPTARG") ;;
    s) pre=$OPTARG ;; a) act=$OPTARG ;; j) json=$OPTARG ;; N) name=$OPTARG ;; l) libs=1 ;; F) foreign=$OPTARG ;;
    h) usage 0 ;; *) usage 2 >&2 ;;
    esac
done
shift $((OPTIND - 1))
[ $# -gt 0 ] || usage 2 >&2
[ -n "$name" ] || name=$(basename "$1")
tmp=$(mktemp -d "${TMPDIR:-/tmp}/measure.XXXXXX")
mkfifo "$tmp/nap" || exit; exec 5<>"$tmp/nap"
own=() pid='' buspid=''

us() { local t=${EPOCHREALTIME/./}; echo "$t"; }
tree() { # PID -> the PIDs of its tree
    local p=$1 c k
    [ -d "/proc/$p" ] || return
    echo "$p"
    for c in /proc/"$p"/task/*/children; do
        k=; read -r k <"$c" 2>/dev/null
        for k in $k; do tree "$k"; done
    done 2>/dev/null
}
end_tree() {
    local all p i
    [ -n "${1:-}" ] && [ -d "/proc/$1" ] || return 0
    all=$(tree "$1")
    kill -TERM $all 2>/dev/null
    for i in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do
        p=; for k in $all; do [ -d "/proc/$k" ] && ! grep -q '^State:.Z' "/proc/$k/status" 2>/dev/null && p=1; done
        [ -z "$p" ] && break
        sleep 0.1
    done
    [ -n "$p" ] && kill -KILL $all 2>/dev/null
    wait "$1" 2>/dev/null
    return 0
}
cleanup() {
    trap - EXIT INT TERM
    end_tree "$pid"
    [ -n "$buspid" ] && kill -TERM $(helpers) 2>/dev/null
    local i; for ((i = ${#own[@]} - 1; i >= 0; i--)); do end_tree "${own[i]}"; done
    rm -rf "$tmp"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

cpu_ns() { # PIDs -> ns on CPU of all live threads
    local p f a s=0
    for p; do for f in /proc/"$p"/task/*/schedstat; do a=0; read -r a _ <"$f"; s=$((s + a)); done; done 2>/dev/null
    echo "$s"
}
threads_of() { # PIDs -> one line per thread: TID cpu-ns voluntary nonvoluntary
    local p t a
    for p; do for t in /proc/"$p"/task/*; do
        a=; read -r a _ <"$t/schedstat" && awk -v t="${t##*/}" -v a="$a" '/^voluntary/{v=$2} /^nonvol/{n=$2} END{print t, a, v+0, n+0}' "$t/status"
    done; done 2>/dev/null
}
mem() { # PIDs -> RSS PSS USS dirty pss_anon pss_file pss_shmem (KiB)
    local p; for p; do cat "/proc/$p/smaps_rollup" 2>/dev/null; done | awk '
        /^Rss:/{r+=$2} /^Pss:/{p+=$2} /^Private_Clean:/{c+=$2} /^Private_Dirty:/{d+=$2}
        /^Pss_Anon:/{a+=$2} /^Pss_File:/{f+=$2} /^Pss_Shmem:/{s+=$2}
        END{print r+0, p+0, c+d, d+0, a+0, f+0, s+0}'
}
helpers() { # processes that the private bus activated (they carry its marker; some detach themselves)
    local e p
    for e in /proc/[0-9]*/environ; do
        p=${e#/proc/}; p=${p%/environ}
        [ "$p" != "$buspid" ] && grep -qzxF "MEASURE_BUS=$tmp" "$e" 2>/dev/null && echo "$p"
    done
}
sos() { local p; for p; do cat "/proc/$p/maps" 2>/dev/null; done | awk '$6 ~ /\.so(\.|$)/ && !s[$6]++{print $6}' | sort; }

if [ "$private" = 1 ]; then
    export XDG_RUNTIME_DIR="$tmp/run" HOME="${MEASURE_HOME:-$tmp/home}"
    mkdir -p "$XDG_RUNTIME_DIR" "$HOME"; chmod 700 "$XDG_RUNTIME_DIR"
    mkfifo "$tmp/dpy"
    Xvfb -displayfd 6 -screen 0 1280x800x24 -nolisten tcp -noreset 6>"$tmp/dpy" >"$tmp/xvfb.log" 2>&1 &
    own+=($!)
    read -r d <"$tmp/dpy"; export DISPLAY=":$d"
    unset WAYLAND_DISPLAY DBUS_STARTER_ADDRESS
    mkfifo "$tmp/adr"
    MEASURE_BUS="$tmp" dbus-daemon --session --nofork --nopidfile --nosyslog --address="unix:path=$XDG_RUNTIME_DIR/bus" --print-address=6 6>"$tmp/adr" 2>"$tmp/bus.log" &
    buspid=$!; own+=("$buspid")
    read -r DBUS_SESSION_BUS_ADDRESS <"$tmp/adr"; export DBUS_SESSION_BUS_ADDRESS
fi
if [ -n "$tray" ]; then
    mkfifo "$tmp/tray"
    $tray >"$tmp/tray" 2>"$tmp/tray.log" &
    own+=($!)
    exec 8<"$tmp/tray"
    read -r -t 5 _ <&8 || { echo "measure.sh: the tray host did not start" >&2; exit 1; }
fi

res="$tmp/res"; : >"$res"
for ((run = 1; run <= runs; run++)); do
    [ -n "$pre" ] && bash -c "$pre" >/dev/null 2>&1
    rm -f "$tmp/out"; mkfifo "$tmp/out"
    [ -n "$tray" ] && while read -r -t 0.01 _ <&8; do :; done
    mon=
    if [[ $ready == bus:* ]]; then
        rm -f "$tmp/mon"; mkfifo "$tmp/mon"
        dbus-monitor --session --profile >"$tmp/mon" 2>/dev/null & mon=$!; own+=("$mon")
        exec 9<"$tmp/mon"; read -r -t 2 _ <&9; sleep 0.2
    fi
    drain=
    t0=${EPOCHREALTIME/./}
    if [ ${#addenv[@]} -gt 0 ] || [ ${#delenv[@]} -gt 0 ]; then
        env ${delenv[@]+"${delenv[@]}"} ${addenv[@]+"${addenv[@]}"} "$@" >"$tmp/out" 2>"$tmp/err" </dev/null &
    else
        "$@" >"$tmp/out" 2>"$tmp/err" </dev/null &
    fi
    pid=$!
    exec 7<"$tmp/out"
    t1='' end=$((t0 + limit * 1000000))
    case $ready in
    stdout:*)
        while left=$((end - ${EPOCHREALTIME/./})); [ "$left" -gt 0 ]; do
            IFS= read -r -t "$((left / 1000000)).$(printf %06d $((left % 1000000)))" line <&7 || break
            [[ $line =~ ${ready#stdout:} ]] && { t1=${EPOCHREALTIME/./}; break; }
        done
        cat <&7 >/dev/null & drain=$! ;;
    tray)
        cat <&7 >/dev/null & drain=$!
        while left=$((end - ${EPOCHREALTIME/./})); [ "$left" -gt 0 ]; do
            read -r -t "$((left / 1000000)).$(printf %06d $((left % 1000000)))" stamp what _ <&8 || break
            case $what in SNI | XEMBED) t1=${stamp/./}; break ;; esac
        done ;;
    bus:*)
        cat <&7 >/dev/null & drain=$!
        while left=$((end - ${EPOCHREALTIME/./})); [ "$left" -gt 0 ]; do
            read -r -t "$((left / 1000000)).$(printf %06d $((left % 1000000)))" line <&9 || break
            [[ $line =~ ${ready#bus:} ]] && { t1=${EPOCHREALTIME/./}; break; }
        done ;;
    quiet)
        cat <&7 >/dev/null & drain=$!
        last=0 lastbusy=$t0
        while now=${EPOCHREALTIME/./}; [ "$now" -lt "$end" ]; do
            [ -d "/proc/$pid" ] || break
            c=$(cpu_ns $(tree "$pid"))
            [ $((c - last)) -gt 1000000 ] && { last=$c; lastbusy=$now; }
            [ $((now - lastbusy)) -gt 500000 ] && { t1=$lastbusy; break; }
            read -r -t 0.02 -u 5 _
        done ;;
    *) echo "measure.sh: unknown -r $ready" >&2; exit 2 ;;
    esac
    startup=-1; [ -n "$t1" ] && startup=$((t1 - t0))
    startcpu=$(cpu_ns $(tree "$pid"))
    if [ -n "$act" ] && ! MEASURED_PID=$pid bash -c "$act"; then
        echo "measure.sh: $name: the command after the start failed" >&2
        exec 7<&-; end_tree "$pid"; pid=
        [ -n "$drain" ] && { kill "$drain" 2>/dev/null; wait "$drain" 2>/dev/null; }
        continue
    fi
    sleep "$settle"
    if [ ! -d "/proc/$pid" ] || grep -q '^State:.Z' "/proc/$pid/status" 2>/dev/null; then
        echo "measure.sh: $name ended early: $(head -c 300 "$tmp/err")" >&2
        exec 7<&-; pid=; continue
    fi
    pids=$(tree "$pid")
    read -r rss pss uss dirty pa pf ps <<<"$(mem $pids)"
    nproc=$(wc -w <<<"$pids")
    thr=0; for p in $pids; do for k in /proc/"$p"/task/*; do thr=$((thr + 1)); done; done
    nso=$(sos $pids | wc -l)
    nfor=0 # foreign processes that map the very same files (device and inode)
    for p in $pids; do cat "/proc/$p/maps" 2>/dev/null; done | awk -v r="$foreign" '$6 ~ r && !s[$5]++{print $4 " " $5 " "}' >"$tmp/keys"
    [ -s "$tmp/keys" ] && for m in /proc/[0-9]*/maps; do
        p=${m#/proc/}; p=${p%/maps}
        case " ${pids//$'\n'/ } " in *" $p "*) continue ;; esac
        grep -qF -f "$tmp/keys" "$m" 2>/dev/null && nfor=$((nfor + 1))
    done
    hp=0
    if [ -n "$buspid" ]; then
        h=$(helpers)
        [ -n "$h" ] && read -r _ hp _ <<<"$(mem $h)"
    fi
    [ "$libs" = 1 ] && [ "$run" = "$runs" ] && sos $pids >"$tmp/libs"
    cpum=-1 vol=-1 nvol=-1
    if [ "$window" != 0 ] && [ "$run" -le "$wruns" ]; then
        threads_of $(tree "$pid") >"$tmp/th0"; w0=${EPOCHREALTIME/./}
        sleep "$window"
        w1=${EPOCHREALTIME/./}; threads_of $(tree "$pid") >"$tmp/th1"
        # threads that ended inside the window are left out; new ones count in full
        read -r cpum vol nvol <<<"$(awk -v w=$((w1 - w0)) 'NR == FNR{a[$1]=$2; v[$1]=$3; n[$1]=$4; next}
            {A+=$2-a[$1]; V+=$3-v[$1]; N+=$4-n[$1]} END{k=60e6/w; printf "%.3f %.1f %.1f\n", A/1e6*k, V*k, N*k}' "$tmp/th0" "$tmp/th1")"
    fi
    echo "$startup $rss $pss $uss $dirty $thr $nproc $nso $cpum $vol $nvol $startcpu $hp $nfor" >>"$res"
    [ -n "$json" ] && printf '{"name":"%s","run":%d,"startup_us":%d,"startup_cpu_us":%d,"rss_kib":%d,"pss_kib":%d,"uss_kib":%d,"dirty_kib":%d,"pss_anon_kib":%d,"pss_file_kib":%d,"pss_shmem_kib":%d,"threads":%d,"processes":%d,"shared_objects":%d,"cpu_ms_per_min":%s,"wakeups_per_min":%s,"preempted_per_min":%s,"bus_helpers_pss_kib":%d,"foreign_sharers":%d}\n' \
        "$name" "$run" "$startup" $((startcpu / 1000)) "$rss" "$pss" "$uss" "$dirty" "$pa" "$pf" "$ps" "$thr" "$nproc" "$nso" "$cpum" "$vol" "$nvol" "$hp" "$nfor" >>"$json"
    exec 7<&-
    end_tree "$pid"; pid=
    [ -n "$drain" ] && { kill "$drain" 2>/dev/null; wait "$drain" 2>/dev/null; }
    [ -n "$mon" ] && { exec 9<&-; kill "$mon" 2>/dev/null; wait "$mon" 2>/dev/null; }
done

[ -s "$res" ] || { echo "$name: no run succeeded" >&2; exit 1; }
med() { # FIELD SCALE UNIT LABEL: median (min-max, n) of the values that are not -1
    awk -v f="$1" '$f != -1{print $f}' "$res" | sort -n | awk -v k="$2" -v u="$3" -v l="$4" '
        {v[NR]=$1*k} END{ if(!NR){exit} m=(NR%2)?v[(NR+1)/2]:(v[NR/2]+v[NR/2+1])/2;
        printf "  %-28s %10.2f %-8s min %.2f  max %.2f  n=%d\n", l, m, u, v[1], v[NR], NR}'
}
echo "$name"
med 3 1 KiB "PSS"
med 4 1 KiB "USS"
med 2 1 KiB "RSS"
med 5 1 KiB "private dirty"
med 6 1 "" "threads"
med 7 1 "" "processes"
med 8 1 "" "shared objects"
med 1 0.001 ms "start-up (exec to ready)"
med 12 0.000001 ms "CPU used until ready"
med 9 1 ms/min "CPU when idle"
med 10 1 /min "wakeups when idle"
med 11 1 /min "preemptions when idle"
[ -n "$buspid" ] && med 13 1 KiB "PSS of bus-activated helpers"
awk '$14 > 0{n++} END{if(n) print "  note: foreign processes shared libraries in " n " run(s); PSS and USS are too low there"}' "$res"
[ "$libs" = 1 ] && [ -f "$tmp/libs" ] && { echo "  shared objects:"; sed 's/^/    /' "$tmp/libs"; }
exit 0
