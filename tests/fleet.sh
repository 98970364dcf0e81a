#!/usr/bin/env bash
# Checks the example program "fleet", whose path is the first argument: what it refuses, and that it runs and stops.
set -euo pipefail

fleet="$1"
[[ -x "$fleet" ]] || { echo "no program: $fleet" >&2; exit 1; }
folder="$(mktemp -d)"
server=
failures=0

cleanup()
{
    [[ -z "$server" ]] || kill "$server" || true
    rm -rf "$folder"
}
trap cleanup EXIT

failed()
{
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# refuses TEXT ARGUMENT...: fleet ends with 2, with TEXT on standard error and nothing on standard output.
refuses()
{
    local text="$1" code=0
    shift
    timeout 10 "$fleet" "$@" > "$folder/out" 2> "$folder/err" || code=$?
    [[ $code == 2 ]] || failed "fleet $*: exit code $code instead of 2"
    grep -qF -- "$text" "$folder/err" || failed "fleet $*: '$text' is not in: $(cat "$folder/err")"
    [[ ! -s "$folder/out" ]] || failed "fleet $*: writes to standard output"
}

# refuses_list TEXT LINE...: the same of a device list of these lines.
refuses_list()
{
    local text="$1"
    shift
    printf '%s\n' "$@" > "$folder/list.csv"
    refuses "$text" --devices "$folder/list.csv"
}

# serve FRAME...: starts a device server at $port. It lets user "ann" with password "key" log in, answers each connection's first request with the next of
# these frames, with Perl's escapes, and closes it. Where a frame is DENIED, that is what it says to the login.
serve()
{
    [[ -z "$server" ]] || kill "$server" || true
    rm -f "$folder/port"
    mkfifo "$folder/port"
    perl -MIO::Socket::INET - "$@" > "$folder/port" << 'END' &
my @frames = map { eval "qq($_)" } @ARGV;
my $listener = IO::Socket::INET->new(Listen => 1, LocalAddr => '127.0.0.1') or die "no port: $@";
$SIG{PIPE} = 'IGNORE';
STDOUT->autoflush;
print $listener->sockport, "\n";
for (my $i = 0; my $connection = $listener->accept; ++$i)
{
    my $frame = $frames[$i % @frames];
    $connection->autoflush;
    next if <$connection> ne "LOGIN ann key\n";
    print $connection $frame eq 'DENIED' ? "DENIED\n" : "OK 7\n";
    next if $frame eq 'DENIED' || (<$connection> // '') !~ /^READ (wrong|[0-9])\n$/;
    print $connection $frame;
}
END
    server=$!
    read -r port < "$folder/port" || failed "no device that gives wrong answers"
}

# shows PATTERN: the last run wrote a line that matches.
shows()
{
    grep -qE -- "$1" "$folder/out" || failed "no line matches '$1'"
}

refuses --unknown --unknown
refuses --seconds --seconds 0
refuses --no-simulate --simulate --no-simulate
refuses "$folder/missing.csv" --devices "$folder/missing.csv"
refuses "$folder: " --devices "$folder"

refuses "1 to 64 characters" --format ''
refuses "1 to 64 characters" --format "$(printf 'H%.0s' {1..65})"
refuses "1 to 64 characters" --format $'HH\nmm'
refuses "the date stands in the order" --format 'MM/yyyy'

refuses "the name of a file is missing" --log "$folder/"
refuses "--log-size" --log "$folder/log" --log-size 0
refuses "a log command begins with -log" --log-command '-level 5'

refuses_list "list.csv: names no device" '# nothing' ''
refuses_list "list.csv:3: expected 6 fields" '# id, address, port, period, user, password' '' 'a, 127.0.0.1, 0, 1000'
refuses_list "list.csv:1: empty id" ' , 127.0.0.1, 0, 1000, ann, key'
refuses_list "list.csv:1: the id has blanks or more than 64" 'a b, 127.0.0.1, 0, 1000, ann, key'
refuses_list "list.csv:1: the user has blanks or more than 64" "a, 127.0.0.1, 0, 1000, $(printf 'u%.0s' {1..65}), key"
refuses_list "list.csv:1: empty password" 'a, 127.0.0.1, 0, 1000, ann,'
refuses_list "list.csv:2: id 'a'" 'a, 127.0.0.1, 0, 1000, ann, key' 'a, 127.0.0.1, 0, 1000, ann, key'
refuses_list "list.csv:1: '127.0.0'" 'a, 127.0.0, 0, 1000, ann, key'
refuses_list "list.csv:1: '65536'" 'a, 127.0.0.1, 65536, 1000, ann, key'
refuses_list "list.csv:1: '-1'" 'a, 127.0.0.1, 80, -1, ann, key'
refuses_list "list.csv:1: '1s'" 'a, 127.0.0.1, 80, 1s, ann, key'
printf 'a, 127.0.0.1, 80, 1000, ann, key\nb, ::1, 0, 1000, ann, key\n' > "$folder/list.csv"
refuses "list.csv:2: port 0" --devices "$folder/list.csv" --no-simulate

timeout 10 "$fleet" --help > "$folder/out" || failed "--help: exit code $?"
shows '--devices FILE'

# The rehearsal of daylight saving. The dates and times are those of the C runtime, for the same rules.
timeout 10 "$fleet" --dst-rehearsal > "$folder/out" 2>&1 || failed "--dst-rehearsal: exit code $?"
zone='STD-1DST,M3.5.0/2,M10.5.0/3'
changes=()
for month in 03 10; do
    year="$(date +%Y)"
    for day in {25..31}; do
        [[ "$(date -d "$year-$month-$day" +%w)" == 0 ]] && changes+=("$year-$month-$day")
    done
done
shows "begins ${changes[0]} 02:00:00 and ends ${changes[1]} 03:00:00"
for change in "${changes[@]}"; do
    for time in 00:59:59 01:00:00; do
        shows "\] $change $time  $(TZ="$zone" date -d "$change $time UTC" '+%F %T  \%:z')$"
    done
done
[[ "$(grep -cE '  [+-][0-9]{2}:[0-9]{2}$' "$folder/out")" == 4 ]] || failed "--dst-rehearsal: not four local times"

# The program without its module.
mkdir "$folder/alone"
cp "$fleet" "$folder/alone"
code=0
timeout 10 "$folder/alone/fleet" --seconds 1 > "$folder/out" 2>&1 || code=$?
[[ $code == 1 ]] || failed "without its module: exit code $code"
shows '^fleet: the module Stats\.so'

# Devices that share a login, one whose password is wrong, and the slow one and the one that drops its connection at the built-in list's places.
ann="0, 200, $(printf 'ann%.0s' {1..21})a, fleet"  # as long as a user may be
printf '%s\n' "first, 127.0.0.1, $ann" "second, 127.0.0.1, $ann" "slow, 127.0.0.2, $ann" 'fourth, 127.0.0.1, 0, 200, bob, guess' \
    "fifth, 127.0.0.1, $ann" "drops, 127.0.0.3, $ann" > "$folder/list.csv"
timeout 30 "$fleet" --devices "$folder/list.csv" --seconds 5 > "$folder/out" 2>&1 || failed "a run of 5 seconds: exit code $?"
shows 'info .*\] first +-?[0-9]+\.[0-9]{2} C '
shows 'warn .*\] drops +no answer'
shows '\] drops +connected again'
shows '\] +slow +[0-9]+ +64 +Timeout$'
shows '\] +second +[0-9]+ +[0-9]+ +200 '
shows 'Closing report:'
last="$(sed -n '/Closing report/q; s/.*\] first .* ms  //p' "$folder/out" | tail -n 1)"
[[ "$last" =~ ^[0-9]{4}(-[0-9]{2}){2}\ [0-9]{2}(:[0-9]{2}){2}$ ]] || failed "a reading is stamped '$last'"
(($(date +%s) - $(date -d "$last" +%s) < 10)) || failed "a reading is stamped '$last', now is $(date)"
sed -n '/Closing report/,$p' "$folder/out" | grep -qE "\] first .*  $last$" || failed "the closing report does not show $last"
[[ "$(grep -oP 'info clients .*\] ann.* logged in at 127\.0\.0\.\K.(?=:[0-9]+, user 1$)' "$folder/out" | sort | xargs)" == '1 2 3' ]] ||
    failed "not one login at each address"
[[ "$(grep -cE 'info clients .*\] (second|fifth) shares the login of ann.* at 127\.0\.0\.1:[0-9]+$' "$folder/out")" == 2 ]] ||
    failed "not two that share a login"
shows 'info clients .*\] connection to 127\.0\.0\.3:[0-9]+ lost$'
shows 'info clients .*\] ann.* logged in again at 127\.0\.0\.3:[0-9]+, user 1$'
(($(grep -cE 'warn .*\] fourth +login refused: Component error: password not valid!$' "$folder/out") > 10)) ||
    failed "a refused login is not told at each poll"
shows '\] +4 Fleet::TcpClient$'
shows '\] +5 Fleet::TcpSensor$'
shows '\] +6 Fleet::Stats$'
shows '\] size +1048576$'
shows '\] free +1048576$'
shows '\] most in use +[1-9][0-9]*$'
shows 'the packet pool is full again'

# The log files hold each line once, over several of them; commands come from the command line and from standard input.
{
    sleep 1
    printf '%s\n' '-logmodule readings off' 'unknown' '-logmodule "no such" off'
    sleep 1
    printf '%s' '-logthread off'
} | timeout 30 "$fleet" --devices "$folder/list.csv" --seconds 4 --log "$folder/log/of fleet" --log-size 1 --log-files 0 \
    --log-command '-logtime off' --log-command '-logmodule simulator off' > "$folder/out" 2>&1 || failed "a run with log files: exit code $?"
shows "'unknown' is no log command"
diff <(grep -v '^logfil*ter ' "$folder/out" | sort) <(cat "$folder/log/of fleet_"* | sort) > "$folder/diff" ||
    failed "the log files differ from the output: $(head -n 20 "$folder/diff")"
(($(find "$folder/log" -name "of fleet_$(date +%Y)-*_*" | wc -l) >= 3)) || failed "log files: $(ls "$folder/log")"
[[ "$(sed -n '/is no log command/,$p' "$folder/out" | grep -c ' ms  ')" == 0 ]] || failed "the module readings is not off"
shows '^\[ info readings [0-9]+ \] first '
shows '^\[ info fleet \]fleet: all .* the packet pool is full'
shows '\] readings +[1-9][0-9]*$'
timeout 30 "$fleet" --devices "$folder/list.csv" --seconds 1 --log "$folder/log/of fleet" --log-size 1 --log-files 2 > "$folder/out" 2>&1 ||
    failed "a second run with log files: exit code $?"
grep -qF 'packet pool is full' "$(find "$folder/log" -type f -printf '%T@ %p\n' | sort -n | tail -n 1 | cut -d ' ' -f 2-)" ||
    failed "the newest log file does not hold the last line"

# Wrong answers: each is told, ends its connection, and leaves nothing behind in the pool.
serve '\0\2' '\377\377' '\0\4\0001 C' '\0\4\0031 C' '\0\5\3oneC' '\0\5\3nanC' '\0\5\0031. C' '\0\3\0011\a' '\0\5\0031' \
    '\0\5\0031.5V'
echo "wrong, 127.0.0.1, $port, 50, ann, key" > "$folder/list.csv"
timeout 30 "$fleet" --devices "$folder/list.csv" --seconds 3 --format 'dd/MM/yy h:mm:ss tt' > "$folder/out" 2>&1 ||
    failed "wrong answers: exit code $?"
shows 'warn .*\] wrong +a frame of 4 bytes$'
shows 'warn .*\] wrong +a frame of 65537 bytes$'
shows 'warn .*\] wrong +a frame whose value has 0 of 3 bytes$'
shows 'warn .*\] wrong +a frame whose value has 3 of 3 bytes$'
shows 'warn .*\] wrong +a frame whose value is no number$'
shows 'warn .*\] wrong +a frame whose unit is not printable$'
shows 'warn .*\] wrong +no answer: the device closed the connection$'
shows 'info .*\] wrong +1\.50 V .* ms  [0-9]{2}/[0-9]{2}/[0-9]{2} 1?[0-9]:[0-9]{2}:[0-9]{2} [AP]M$'
grep 'info .* ms  ' "$folder/out" | grep -v ' wrong  *1\.50 V ' && failed "wrong answers pass for readings"
shows 'the packet pool is full again'

# More devices on one connection than are told of its loss, and a server that drops it after each answer and refuses every third login.
serve DENIED '\0\5\0031.5V' '\0\5\0031.5V'
printf "%s, 127.0.0.1, $port, 50, ann, key\n" {0..9} > "$folder/list.csv"
timeout 30 "$fleet" --devices "$folder/list.csv" --seconds 3 > "$folder/out" 2>&1 || failed "a shared connection that drops: exit code $?"
shows 'info .*\] [0-9] +1\.50 V '
shows '\] 9 shares the login of ann'
shows 'warn .*\] [0-9] +login refused: Component error: password not valid!$'
logins="$(grep -c ' ann logged in' "$folder/out")"
losses="$(grep -c " connection to 127.0.0.1:$port lost$" "$folder/out")"
((losses > 1 && losses <= logins)) || failed "$losses losses of $logins logins are told"
shows 'all component objects are released'

printf 'first, 127.0.0.1, 0, 200, ann, fleet\n' > "$folder/list.csv"
widest="$(printf 'hm%.0s' {1..32})"  # no template gives longer stamps
for signal in INT TERM; do
    : > "$folder/out"  # the last run's readings would pass for this one's
    "$fleet" --devices "$folder/list.csv" --format "$widest" > "$folder/out" 2>&1 &
    pid=$!
    for ((i = 0; i < 200; ++i)); do
        grep -q ' ms  ' "$folder/out" && break
        sleep 0.05
    done
    code=0
    kill -"$signal" "$pid" || failed "it has ended before SIG$signal"
    timeout 15 tail --pid="$pid" -f /dev/null || { failed "SIG$signal does not end it" && kill -KILL "$pid"; }
    wait "$pid" || code=$?
    [[ $code == 0 ]] || failed "SIG$signal: exit code $code"
    shows "SIG$signal, stopping"
    shows ' ms  [0-9]{64,128}$'
done

if ((failures)); then
    echo "fleet: $failures checks failed; the last run wrote:" >&2
    cat "$folder/out" >&2
    exit 1
fi
echo "fleet: all checks passed"
