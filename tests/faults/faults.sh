#!/bin/sh
# SPDX-License-Identifier: MIT
# What the program does when the machine lets it down: files that cannot be read or written, a full
# disk, a reader or a terminal that goes away, too little memory. Every run must end with status 0
# and a line that says what is wrong, and must leave other people's files alone.
#   faults.sh CASE PROGRAM LOST_TERMINAL SIZE_48 GONE_BETWEEN NO_THREADS THREADED
# Status 77: not on this machine.
# SIZE_48 is a library that makes every directory look as if it had 48 bytes, GONE_BETWEEN one that
# puts a link to "full" in the place of the directory "out" between two looks at it, NO_THREADS one
# that ends a process which starts a thread. THREADED is the program with as many threads as
# PLEXOR_TEST_THREADS says.
#
# Nothing here depends on time. Where something has to happen in the middle of a run, the program is
# held there: its reports are longer than a pipe, and nobody reads on until it has happened.
set -eu
case=$1
program=$2
lost_terminal=$3
size_48=$4
gone_between=$5
no_threads=$6
threaded=$7

work=$(mktemp -d "${TMPDIR:-/tmp}/plexor_faults_XXXXXX")
mounted=""
clean_up() {
    [ -z "$mounted" ] || umount "$mounted"
    chmod -R u+rwx "$work"
    rm -rf "$work"
}
trap clean_up EXIT
cd "$work"
# Readable for a user without privileges, too.
chmod 755 .
cp "$program" plexor
printf 'ann bob\nbob cat\ncat ann\n' >net.txt

fail() {
    echo "FAILED: $*"
    if [ -e out.txt ]; then tail -n 20 out.txt; fi
    exit 1
}
skip() {
    echo "SKIPPED: $*"
    exit 77
}
# Runs the program as $as_user under $limits. What it says goes to out.txt through a pipe, which no
# limit on files touches.
as_user=""
limits=:
# In a build that counts which lines are run, the files of the counts are under the same limits as
# the results: they would end up broken.
counts_aside() {
    export GCOV_PREFIX="$work/counts"
}
# For a fault that what counts them runs into itself.
not_where_lines_are_counted() {
    counts_aside
    ./plexor -h >/dev/null
    [ ! -e "$work/counts" ] || skip "this build counts the lines that are run"
}
run() {
    { status=0; ($limits; exec $as_user ./plexor "$@") 2>errors.txt || status=$?
      echo "$status" >status.txt; } |
        cat >out.txt
    ended_well
}
ended_well() {
    [ "$(cat status.txt)" = 0 ] || fail "exit status $(cat status.txt)"
    [ ! -s errors.txt ] || fail "standard error: $(cat errors.txt)"
}
says() {
    grep -qxF -- "$1" out.txt || fail "this line is missing: $1"
}
says_nothing_of() {
    if grep -F -- "$1" out.txt; then fail "this line is too much"; fi
}
ran_to_its_end() {
    # The help ends with the banner and an empty line.
    [ "$(tail -n 4 out.txt)" = "$(./plexor -h | tail -n 5)" ] || fail "no banner at the end"
}
# Under the address sanitizer a process needs terabytes of address space.
can_limit_memory() {
    (ulimit -v 100000 && ./plexor -h >/dev/null 2>&1) || skip "memory cannot be limited in this build"
}
# A strip of triangles on so many nodes and one more: as many reports of about 70 bytes, one
# community at k=3.
strip() {
    awk -v n="$1" 'BEGIN { for (i = 0; i < n; ++i) { print "n" i, "n" i + 1; print "n" i, "n" i + 2 } }'
}
# Runs the strip up to its clique search, does what is asked, and lets the run go on. A pipe and the
# buffers after it hold less than 2,000 reports.
in_mid_run() {
    strip 8000 >strip.txt
    { status=0; $as_user ./plexor -i strip.txt -o out 2>errors.txt || status=$?
      echo "$status" >status.txt; } |
        { head -c 3000 >beginning.txt; eval "$1"; cat >out.txt; }
    grep -q 'Locating cliques:' beginning.txt || fail "the search had not begun"
    ended_well
}
# Makes $as_user start a program without the privileges of root.
without_privileges() {
    [ "$(id -u)" -eq 0 ] || return 0
    counts_aside
    command -v setpriv >/dev/null || skip "root, and no setpriv to become somebody else"
    as_user="setpriv --reuid=65534 --regid=65534 --clear-groups"
    $as_user ./plexor -h >/dev/null 2>&1 || skip "root, and nobody else can run the program"
    chown 65534:65534 .
}

# --- Input that cannot be read. ---

case_directory_as_input() {
    mkdir links
    run -i links
    says "ERROR: Something went wrong when trying to read from links"
    [ ! -e links_files ] || fail "a directory for results was made"
}

case_unreadable_input() {
    without_privileges
    chmod 000 net.txt
    run -i net.txt
    says "ERROR : File not found: 'net.txt' "
}

case_read_error() {
    [ -e /proc/self/mem ] || skip "no /proc/self/mem, whose first page cannot be read"
    run -i /proc/self/mem -o out
    says "ERROR: Something went wrong when trying to read from /proc/self/mem"
    [ ! -e out ] || fail "a directory for results was made"
}

case_input_from_a_pipe() {
    cat net.txt | { status=0; ./plexor -i /dev/stdin -o out >out.txt 2>errors.txt || status=$?
                    echo "$status" >status.txt; }
    ended_well
    ran_to_its_end
    tail -n 1 out/cliques | grep -qx '0: ann bob cat ' || fail "the clique is missing"
}

case_input_cut_off() {
    # The writer dies in the middle of the third line.
    mkfifo links
    printf 'ann bob\nbob cat\ncat' >links &
    run -i links -o out
    says "ERROR: Wrong line found in ' the file I was reading' :"
    says "cat"
    [ ! -e out ] || fail "a directory for results was made"
}

case_input_in_pieces() {
    # Lines that arrive in parts are whole lines.
    mkfifo links
    { printf 'ann b'; sleep 0; printf 'ob\nbob cat\nc'; sleep 0; printf 'at ann'; } >links &
    run -i links -o out
    ran_to_its_end
    tail -n 1 out/cliques | grep -qx '0: ann bob cat ' || fail "the clique is missing"
}

# --- Results that cannot be written. ---

# Every file of the whole run that is no longer than $1 bytes is the same; of every other one there
# is a line, and what there is of it is its beginning.
same_up_to() {
    (cd whole && find . -type f) | while read -r path; do
        size=$(wc -c <"whole/$path")
        if [ "$size" -le "$1" ]; then
            cmp "whole/$path" "out/$path" || fail "$path"
        else
            says " WARNING: could not write 'out/${path#./}'."
            cmp -n "$(wc -c <"out/$path")" "whole/$path" "out/$path" || fail "$path"
        fi
    done || exit 1
    [ "$(grep -c WARNING out.txt)" -eq "$(find whole -type f -size "+$1c" | wc -l)" ] ||
        fail "a warning too many"
}

case_file_size_limit() {
    strip 3000 >strip.txt
    run -i strip.txt -o whole
    # Blocks of 512 or of 1024 bytes, as the shell has it.
    echo foreign >foreign.txt
    counts_aside
    export GCOV_ERROR_FILE=/dev/null
    limits="ulimit -f 8"
    (trap '' XFSZ; $limits; head -c 100000 /dev/zero >block.txt) 2>/dev/null || true
    limit=$(wc -c <block.txt)
    run -i strip.txt -o out
    ran_to_its_end
    [ "$(grep -c WARNING out.txt)" -ge 4 ] || fail "hardly a warning"
    same_up_to "$limit"
    [ "$(cat foreign.txt)" = foreign ] || fail "another file was changed"
}

case_full_disk() {
    mkdir disk
    mount -t tmpfs -o size=256k plexor_faults disk 2>/dev/null || skip "no file system can be mounted"
    mounted=$work/disk
    strip 8000 >strip.txt
    run -i strip.txt -o disk/out
    says " WARNING: could not write 'disk/out/cliques'."
    [ "$(grep -c WARNING out.txt)" -ge 3 ] || fail "hardly a warning"
}

case_full_device() {
    [ -e /dev/full ] || skip "no /dev/full"
    in_mid_run 'ln -s /dev/full out/cliques'
    says " WARNING: could not write 'out/cliques'."
    [ "$(grep -c WARNING out.txt)" -eq 1 ] || fail "a warning too many"
    ran_to_its_end
    tail -n 2 out/k=3/size_distribution | grep -qx '8001 1' || fail "the other files are not there"
}

case_directory_in_the_way_of_a_file() {
    in_mid_run 'mkdir out/cliques; echo foreign >out/cliques/foreign.txt'
    says " WARNING: could not write 'out/cliques'."
    ran_to_its_end
    [ "$(cat out/cliques/foreign.txt)" = foreign ] || fail "another file was changed"
}

case_file_in_the_way_of_a_directory() {
    in_mid_run 'echo foreign >out/k=3'
    says_nothing_of WARNING
    ran_to_its_end
    [ "$(cat out/k=31)" = foreign ] || fail "the file was not moved aside"
    [ -s out/k=3/communities ] || fail "no communities"
}

case_results_removed_in_mid_run() {
    in_mid_run 'rm -r out'
    says_nothing_of WARNING
    ran_to_its_end
    [ -s out/cliques ] && [ -s out/k=3/communities ] || fail "the later results are not there"
}

case_results_made_read_only() {
    without_privileges
    in_mid_run 'chmod 555 out'
    says " WARNING: could not write 'out/cliques'."
    says "ERROR: Make_dir() called with out/k=3 and "
    says "Permission denied."
}

case_no_right_to_make_the_directory() {
    without_privileges
    mkdir closed
    cp net.txt closed
    chmod 555 closed
    run -i closed/net.txt
    says "ERROR: Make_dir() called with closed/net.txt_files and "
    says "Permission denied."
}

# --- Other people's files. ---

refusal="ERROR: the output directory already exists and it is non-empty."
replaced="ERROR: another directory has taken the place of the output directory."
# A directory of somebody else, with a file of every name that a run uses.
foreign_directory() {
    mkdir -p "$1/k=3"
    for file in input_params.txt graph cliques k=3/communities k=3/size_distribution; do
        echo "foreign $file" >"$1/$file"
    done
    cp -R "$1" "$1.before"
}
is_as_before() {
    diff -r "$1.before" "$1" || fail "somebody else's files were changed"
}

case_link_in_mid_run() {
    foreign_directory foreign
    in_mid_run 'mv out moved; ln -s foreign out'
    says "$replaced"
    says_nothing_of WARNING
    is_as_before foreign
    [ ! -e moved/cliques ] || fail "the run went on"
}

case_link_to_an_empty_directory_in_mid_run() {
    mkdir foreign
    in_mid_run 'mv out moved; ln -s foreign out'
    says "$replaced"
    [ -z "$(ls foreign)" ] || fail "the link was followed"
}

case_other_directory_in_mid_run() {
    foreign_directory foreign
    in_mid_run 'mv out moved; cp -R foreign out'
    says "$replaced"
    diff -r foreign out || fail "somebody else's files were changed"
}

case_link_above_in_mid_run() {
    foreign_directory foreign/out
    mkdir above
    strip 8000 >strip.txt
    { status=0; ./plexor -i strip.txt -o above/out 2>errors.txt || status=$?
      echo "$status" >status.txt; } |
        { head -c 3000 >beginning.txt; mv above moved; ln -s foreign above; cat >out.txt; }
    ended_well
    says "$replaced"
    is_as_before foreign/out
}

case_link_in_place_of_a_file() {
    echo foreign >foreign.txt
    in_mid_run 'ln -s ../foreign.txt out/cliques'
    says " WARNING: could not write 'out/cliques'."
    [ "$(grep -c WARNING out.txt)" -eq 1 ] || fail "a warning too many"
    ran_to_its_end
    [ "$(cat foreign.txt)" = foreign ] || fail "the link was followed"
    [ -s out/k=3/communities ] || fail "the other files are not there"
}

case_link_to_nowhere_in_place_of_a_file() {
    in_mid_run 'ln -s ../new.txt out/cliques'
    says " WARNING: could not write 'out/cliques'."
    ran_to_its_end
    [ ! -e new.txt ] || fail "the link was followed"
}

case_link_in_place_of_a_directory_of_k() {
    foreign_directory foreign
    in_mid_run 'ln -s ../foreign out/k=3'
    [ "$(grep -c "^ WARNING: could not write 'out/k=3/" out.txt)" -eq 8 ] || fail "warnings"
    ran_to_its_end
    is_as_before foreign
    [ -s out/cliques ] || fail "the other files are not there"
}

case_pipe_in_place_of_a_file() {
    in_mid_run 'mkfifo out/cliques'
    says " WARNING: could not write 'out/cliques'."
    ran_to_its_end
    [ -p out/cliques ] || fail "the pipe is gone"
}

case_files_in_place_of_files() {
    in_mid_run 'mkdir out/k=3; echo foreign >out/cliques; echo foreign >out/k=3/communities'
    says " WARNING: could not write 'out/cliques'."
    says " WARNING: could not write 'out/k=3/communities'."
    [ "$(grep -c WARNING out.txt)" -eq 2 ] || fail "a warning too many"
    ran_to_its_end
    [ "$(cat out/cliques out/k=3/communities)" = "foreign
foreign" ] || fail "somebody else's files were changed"
}

case_link_to_nowhere_where_a_file_is_moved() {
    in_mid_run 'echo foreign >out/k=3; ln -s nowhere out/k=31'
    says_nothing_of WARNING
    ran_to_its_end
    [ "$(cat out/k=32)" = foreign ] || fail "the file was not moved aside"
    [ "$(readlink out/k=31)" = nowhere ] || fail "the link was replaced"
}

case_directory_that_counts_as_empty() {
    (LD_PRELOAD=$size_48 ./plexor -h >/dev/null 2>&1) || skip "no preloading in this build"
    as_user="env LD_PRELOAD=$size_48"
    mkdir out other
    echo foreign >out/graph
    run -i net.txt -o out
    says " WARNING: could not write 'out/graph'."
    [ "$(grep -c WARNING out.txt)" -eq 1 ] || fail "a warning too many"
    ran_to_its_end
    [ "$(cat out/graph)" = foreign ] || fail "somebody else's file was changed"
    echo foreign >other/input_params.txt
    run -i net.txt -o other
    says " WARNING: could not write 'other/input_params.txt'."
    ran_to_its_end
    [ "$(cat other/input_params.txt)" = foreign ] || fail "somebody else's file was changed"
}

# What has one thread can be counted on to have one.
case_one_thread() {
    (LD_PRELOAD=$no_threads ./plexor -h >/dev/null 2>&1) || skip "no preloading in this build"
    as_user="env LD_PRELOAD=$no_threads"
    strip 20 >strip.txt
    for switches in "" "-D" "-t 10" "-D -t 10" "-k 3"; do
        # shellcheck disable=SC2086
        run -i strip.txt $switches -o "with $switches"
        ran_to_its_end
    done
}

# A path that has gone is no empty directory: what comes in its place is looked at.
case_directory_replaced_between_two_looks() {
    (LD_PRELOAD=$gone_between ./plexor -h >/dev/null 2>&1) || skip "no preloading in this build"
    as_user="env LD_PRELOAD=$gone_between"
    mkdir full
    echo mine >full/letter
    run -i net.txt -o out
    [ -L out ] || fail "the directory was not replaced"
    says "$refusal"
    [ "$(ls -A full)" = letter ] || fail "new files beside somebody else's: $(ls -A full)"
}

case_two_runs_at_once() {
    printf 'cat dog\ndog eel\neel cat\neel fox\n' >other.txt
    ./plexor -i net.txt -o whole_1 >/dev/null
    ./plexor -i other.txt -o whole_2 >/dev/null
    # The headers name the input; each file tells whose it is.
    for turn in $(seq $((75 * ${PLEXOR_TEST_ROUNDS:-1}))); do
        rm -rf here
        case $((turn % 3)) in
        0) mkdir -p here/out ;;
        1) mkdir here ;;
        esac
        ./plexor -i net.txt -o here/out >1.txt 2>errors.txt &
        ./plexor -i other.txt -o here/out >2.txt 2>>errors.txt
        wait $!
        echo 0 >status.txt
        ended_well
        winner=1
        grep -qxF "$refusal" 2.txt || winner=2
        mv $winner.txt out.txt
        ran_to_its_end
        says_nothing_of WARNING
        mv $((3 - winner)).txt out.txt
        says "$refusal"
        diff -r whole_$winner here/out || fail "turn $turn: the results of two runs are mixed"
    done
}

# Both want the same name, and a file has it. One run's step between seeing the file and moving it
# aside can be long, so that it moves the other's directory instead. Whatever happens, the file is
# there as it was, and results are whole and unmixed wherever a run says that it came to its end.
case_two_runs_at_once_past_a_file() {
    printf 'cat dog\ndog eel\neel cat\neel fox\n' >other.txt
    ./plexor -i net.txt -o whole_1 >/dev/null
    ./plexor -i other.txt -o whole_2 >/dev/null
    for turn in $(seq $((40 * ${PLEXOR_TEST_ROUNDS:-1}))); do
        rm -rf here
        mkdir here
        echo mine >here/out
        ./plexor -i net.txt -o here/out >1.txt 2>errors.txt &
        ./plexor -i other.txt -o here/out >2.txt 2>>errors.txt
        wait $!
        echo 0 >status.txt
        ended_well
        [ "$(cat here/out1)" = mine ] || fail "turn $turn: the file is not where it was moved to"
        n_whole=0
        for number in 1 2; do
            mv $number.txt out.txt
            if grep -q '^ERROR' out.txt; then continue; fi
            ran_to_its_end
            says_nothing_of WARNING
            n_whole=$((n_whole + 1))
            diff -r whole_$number here/out >/dev/null || diff -r whole_$number here/out2 ||
                fail "turn $turn: a run's results are not what they should be"
        done
        [ $n_whole -ge 1 ] || fail "turn $turn: neither run has written its results"
    done
}

# A new directory that its owner may not list cannot be seen to be empty: nothing goes into it. One
# that is there and can be listed serves.
case_umask_without_owner_read() {
    not_where_lines_are_counted
    without_privileges
    mkdir empty
    [ -z "$as_user" ] || chown 65534:65534 empty
    limits="umask 0444"
    run -i net.txt -o out
    says "ERROR: List_dir() -> scandir() called on out and"
    says "Permission denied."
    chmod u+r out
    [ -z "$(ls -A out)" ] || fail "files in a directory that was not looked at: $(ls -A out)"
    run -i net.txt -o empty
    ran_to_its_end
    says_nothing_of WARNING
    limits=:
    chmod -R u+rwX empty
    run -i net.txt -o whole
    diff -r whole empty || fail "other results"
}

case_killed_run_and_another() {
    strip 8000 >strip.txt
    mkfifo reports
    ./plexor -i strip.txt -o out >reports 2>errors.txt &
    exec 3<reports
    head -c 3000 <&3 >beginning.txt
    kill -9 $!
    wait $! || true
    exec 3<&-
    [ -e out/input_params.txt ] || fail "the run had not begun to write"
    cp -R out out.before
    run -i net.txt -o out
    says "$refusal"
    is_as_before out
    rm -r out
    run -i net.txt -o out
    ran_to_its_end
    same_results net.txt
}

# --- Reports that nobody takes. ---

same_results() {
    ./plexor -i "$1" -o whole >/dev/null
    diff -r whole out || fail "the results differ"
}

case_standard_output_closed() {
    strip 3000 >strip.txt
    status=0
    ./plexor -i strip.txt -o out >&- 2>errors.txt || status=$?
    echo "$status" >status.txt
    ended_well
    same_results strip.txt
}

case_all_standard_files_closed() {
    strip 3000 >strip.txt
    status=0
    ./plexor -i strip.txt -o out <&- >&- 2>&- || status=$?
    echo "$status" >status.txt
    : >errors.txt
    ended_well
    same_results strip.txt
}

case_standard_output_full() {
    [ -e /dev/full ] || skip "no /dev/full"
    status=0
    ./plexor -i net.txt -o out >/dev/full 2>errors.txt || status=$?
    echo "$status" >status.txt
    ended_well
    same_results net.txt
}

case_reader_goes_away() {
    strip 8000 >strip.txt
    { status=0; ./plexor -i strip.txt -o out 2>errors.txt || status=$?; echo "$status" >status.txt; } |
        head -n 1 >/dev/null
    ended_well
    same_results strip.txt
}

case_terminal_goes_away() {
    [ -e /dev/pts/ptmx ] || skip "no pseudo-terminals"
    strip 8000 >strip.txt
    "$lost_terminal" ./plexor -i strip.txt -o out || fail "exit status $?"
    same_results strip.txt
}

# --- Too little memory. ---

case_too_little_memory() {
    counts_aside
    can_limit_memory
    strip 300000 >strip.txt
    reached=0
    # From too little for the links to too little for the communities.
    for kilobytes in 12000 16000 20000 28000 36000 44000 52000 60000 70000 80000; do
        rm -rf out
        limits="ulimit -v $kilobytes"
        run -i strip.txt -o out
        if grep -q '^ERROR' out.txt; then
            says "ERROR: not enough memory for this network. Try a weight threshold (-w, -W), a time limit for the clique search (-t), or a machine with more memory."
            [ "$(tail -n 1 out.txt)" = "$(grep '^ERROR' out.txt)" ] || fail "it is not the last line"
            reached=$((reached + 1))
        else
            ran_to_its_end
        fi
    done
    [ "$reached" -ge 3 ] || fail "the limits were hardly reached"
}

# Where the program starts at all (the loader has room for its libraries), it says what is wrong.
case_too_little_memory_to_begin() {
    not_where_lines_are_counted
    can_limit_memory
    reached=0
    for kilobytes in $(seq 5000 100 9000); do
        rm -rf out
        status=0
        (ulimit -v "$kilobytes"; exec ./plexor -i net.txt -o out) >out.txt 2>errors.txt || status=$?
        if [ "$status" = 127 ] && grep -q "error while loading shared libraries" errors.txt; then
            continue
        fi
        [ "$status" = 0 ] || fail "exit status $status in $kilobytes kB"
        [ ! -s errors.txt ] || fail "standard error in $kilobytes kB: $(cat errors.txt)"
        if grep -q "^ERROR: not enough memory" out.txt; then
            reached=$((reached + 1))
        else
            ran_to_its_end
        fi
    done
    [ "$reached" -ge 1 ] || fail "the limits were not reached"
}
case_too_little_memory_with_a_time_limit() {
    counts_aside
    can_limit_memory
    strip 300000 >strip.txt
    limits="ulimit -v 20000"
    run -i strip.txt -o out -t 100
    says "ERROR: not enough memory for this network. Try a weight threshold (-w, -W) or a machine with more memory."
}

# 3 ** 12 cliques, found by three threads: what fails is one of these, or their lists being put
# together.
case_too_little_memory_for_a_search_on_several_threads() {
    counts_aside
    can_limit_memory
    awk 'BEGIN { for (a = 0; a < 36; ++a) for (b = a + 1; b < 36; ++b)
                     if (int(a / 3) != int(b / 3)) print "n" a, "n" b }' >groups.txt
    cp "$threaded" plexor
    export PLEXOR_TEST_THREADS=3
    reached=0
    for kilobytes in 16000 20000 24000 28000 32000 36000 40000; do
        rm -rf out
        limits="ulimit -v $kilobytes"
        run -i groups.txt -o out -k 13
        if grep -q '^ERROR' out.txt; then
            says "ERROR: not enough memory for this network. Try a weight threshold (-w, -W), a time limit for the clique search (-t), or a machine with more memory."
            says_nothing_of "Writing cliques to disk"
            reached=$((reached + 1))
        fi
    done
    [ "$reached" -ge 3 ] || fail "the limits were hardly reached"
    limits=:
    rm -rf out
    run -i groups.txt -o out -k 13
    ran_to_its_end
}

if [ "$case" = "" ] || ! command -v "case_$case" >/dev/null; then
    echo "no case '$case'"
    exit 1
fi
"case_$case"
echo "passed"
