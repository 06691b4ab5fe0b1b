#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs in which nodes are given up, judged by check_output; and damaged runs that it must refuse.
#   invariants.sh CASE TOOLS FAKE_CLOCK_PROGRAM EXAMPLES
# TOOLS is a folder with check_output and make_core_network, EXAMPLES that of the example networks.
#
# The clock advances by a fixed step each time it is read, so that the same nodes are given up on
# every machine. At 2 seconds per reading and a limit of 1 all attempts end at the first look at the
# clock; at 1 second they end at the second one, after some hundred steps.
set -eu
case=$1
tools=$2
fake_clock_program=$3
examples=$4

work=$(mktemp -d "${TMPDIR:-/tmp}/plexor_invariants_XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work"
export LC_ALL=C

fail() {
    echo "FAILED: $*"
    exit 1
}
# run STEP SWITCHES: the network of the folder, into the directory out and the file out.txt.
run() {
    step=$1
    shift
    PLEXOR_FAKE_CLOCK_STEP=$step "$fake_clock_program" -i links.txt -o out "$@" >out.txt ||
        fail "exit status $?"
}
# The run is right, and has come to what the case is there for: a pattern of check_output's last
# line, which says how many cliques of which kind there are.
is_right() {
    "$tools/check_output" links.txt out out.txt >findings.txt || {
        cat findings.txt
        fail "the run is not right"
    }
    cat findings.txt
    tail -n 1 findings.txt | grep -qE -- "$1" || fail "not what this case is there for: $1"
}
given_up="in a core of [1-9].* [1-9][0-9]* approximated"
some_in_core=", [1-9][0-9]* of them in a core.* [1-9][0-9]* approximated"
some_dropped=" [1-9][0-9]* dropped"

# --- 60 nodes, 3^20 maximal cliques. ---

case_parts_at_the_first_look() {
    "$tools/make_core_network" parts 20 links.txt
    run 2000000 -t 1
    is_right "^0 exact cliques.* core of 60 nodes.* 20 approximated"
}
case_parts_at_the_first_look_directed() {
    "$tools/make_core_network" parts 20 links.txt
    run 2000000 -t 1 -D
    is_right "^0 exact cliques.* core of 60 nodes.* 20 approximated"
}
case_parts() {
    "$tools/make_core_network" parts 20 links.txt
    run 1000 -t 0.001
    is_right "$some_in_core"
}
case_parts_directed() {
    "$tools/make_core_network" parts 20 links.txt
    run 1000 -t 0.001 -D -k 15
    is_right "$some_in_core"
}

# --- 500 nodes, half of all pairs linked, in a network of 5,000. ---

case_dense_core() {
    "$tools/make_core_network" core 500 50 4500 links.txt
    run 1000000 -t 1 -k 130
    is_right "$some_in_core"
}
case_dense_core_directed() {
    "$tools/make_core_network" core 500 50 4500 links.txt
    run 2000000 -t 1 -k 4 -D
    is_right "$some_dropped"
}
# Percolation goes by overlaps of dropped cliques at every k.
case_small_core_directed() {
    "$tools/make_core_network" core 70 60 300 links.txt
    run 1000000 -t 1 -D
    is_right "$some_dropped"
}

# --- The examples. ---

case_faculty() {
    cp "$examples/uk-faculty.txt" links.txt
    run 2000000 -t 1
    is_right "$given_up"
}
case_faculty_directed() {
    cp "$examples/uk-faculty.txt" links.txt
    run 2000000 -t 1 -D
    is_right "$some_dropped"
}
case_airports() {
    cp "$examples/us-airports.txt" links.txt
    run 2000000 -t 1
    is_right "$given_up"
}
case_airports_directed() {
    cp "$examples/us-airports.txt" links.txt
    run 2000000 -t 1 -D
    is_right "$some_dropped"
}
# Nodes overrun, but all are done at last.
case_airports_tried_again() {
    cp "$examples/us-airports.txt" links.txt
    run 1000000 -t 1
    grep -q "^ Exceeded allowed time" out.txt || fail "no node has overrun"
    is_right "in a core of 0 nodes, 0 dropped; 0 approximated"
}

# --- Damaged runs. ---

# refused FINDING COMMAND...: what the command makes of a copy of the run, which is right, must be
# found out: just this finding must be among those of check_output.
refused() {
    finding=$1
    shift
    mkdir damaged
    cp -r links.txt out.txt out damaged
    (cd damaged && "$@")
    for copied in links.txt out.txt out; do
        diff -r "$copied" "damaged/$copied" >>damage.txt || true
    done
    [ -s damage.txt ] || fail "no damage: $*"
    status=0
    "$tools/check_output" damaged/links.txt damaged/out damaged/out.txt >findings.txt || status=$?
    [ "$status" = 1 ] || fail "status $status after: $*"
    grep -qxE -- "$finding" findings.txt || {
        cat findings.txt
        fail "not among the findings: $finding"
    }
    rm -r damaged damage.txt
}

# A small run: fourteen exact cliques, 0 to 13, and approximated ones up to 32; at k=3 there are
# five exact communities and an approximated one.
small_run() {
    "$tools/make_core_network" core 12 80 40 links.txt
    run 2000000 -t 1 "$@"
    is_right "^14 exact cliques.* 19 approximated"
}

case_damaged_cliques() {
    small_run
    refused "exact cliques: 0 is not a clique" sed -i "/^38 39$/d; /^39 38$/d" links.txt
    refused "exact cliques: 1 is not a clique" sed -i "s/^1: .*/1: 18 19 49 /" out/cliques
    refused "exact cliques: 1 has fewer than three nodes" sed -i "s/^1: .*/1: 18 19 /" out/cliques
    refused "exact cliques: 1 is not maximal: 21 extends it" \
        sed -i "s/^1: .*/1: 18 19 /" out/cliques
    refused "cliques inside others: 1 lies inside 2" sed -i "s/^1: .*/1: 20 22 23 /" out/cliques
    refused "cliques inside others: 31 lies inside 29" \
        sed -i "s/^-31: .*/-31: 26 25 30 /" out/cliques
    refused "triangles of done nodes: 18 19 21 lie in no clique of the list" \
        sed -i "s/^1: .*/1: 20 22 23 /" out/cliques
    refused "approximated cliques: 24 is not the neighbours .*" \
        sed -i "s/^-24: 10 /-24: /" out/cliques
    refused "approximated cliques: there are 19 and should be 0" \
        sed -i "s/^\( Exceeded.*no.\)[0-9]*,/\11,/" out.txt
}
case_damaged_clique_file() {
    small_run
    refused "clique file: not as many cliques as reported" sed -i "/^-32: /d" out/cliques
    refused "clique file: the number or sign of 14 is wrong" sed -i "s/^-14: /14: /" out/cliques
    refused "clique file: the number or sign of 13 is wrong" sed -i "s/^13: /-13: /" out/cliques
    refused "clique file: 1 is not ascending" sed -i "s/^1: .*/1: 19 18 21 /" out/cliques
    refused "clique file: the header is wrong about negative indices" sed -i "/^# Neg/d" out/cliques
    refused "clique file: the graph file has other links" sed -i "\$d" out/graph
    refused "clique file: exact cliques were dropped in an undirected run" \
        sed -i "s/^ Altogether 14/ Altogether 15/" out.txt
}
case_damaged_order() {
    cp "$examples/uk-faculty.txt" links.txt
    run 2000000 -t 1
    is_right "$some_in_core"
    refused "order of the exact cliques: 12 does not follow 11" \
        sed -i "s/^11: .*/11: 1 61 62 /; s/^12: .*/12: 1 45 38 /" out/cliques
}
# Of a, b, c and d each three have a neighbour more: every triangle is known without their clique.
case_damaged_list_of_done_nodes() {
    for link in "a b" "a c" "a d" "b c" "b d" "c d" "a e" "b e" "c e" "a f" "b f" "d f" "a g" \
        "c g" "d g" "b h" "c h" "d h"; do
        echo "$link"
    done >links.txt
    run 0 -t 1
    is_right "^5 exact cliques"
    forget="/: a b c d /d; s/^4:/$(sed -n 's/: a b c d $//p' out/cliques):/"
    refused "cliques of done nodes: one of 4 nodes or more is missing, .*" \
        sed -i "$forget; s/^\( Altogether\) 5/\1 4/" out/cliques out.txt
}
# The line is 21 18 19: the link from the first node to the last, turned round, closes a circle.
case_damaged_direction() {
    small_run -D
    refused "exact cliques: 1 is not a clique" sed -i "s/^21 19$/19 21/" links.txt
}

case_damaged_communities() {
    small_run
    cliques=out/k=3/communities_cliques
    refused "k=3: community 4 is not the union of its cliques" \
        sed -i "s/^4: [0-9]* /4: /" out/k=3/communities
    refused "k=3: community 4 is not the union of its cliques" \
        sed -i "s/^\(4: .*\)$/\149 /" out/k=3/communities
    refused "k=3: clique 3 is in no community" sed -i "s/^3: 3 $/3: 2 /" $cliques
    refused "k=3: clique 2 is listed twice" sed -i "s/^3: 3 $/3: 2 /" $cliques
    refused "k=3: community 3 has no cliques" sed -i "s/^3: 3 $/3: /" $cliques
    refused "k=3: community 3 has a clique that does not exist" \
        sed -i "s/^3: 3 $/3: 3 33 /" $cliques
    refused "k=3: clique 24 has the wrong sign" sed -i "s/ -24 / 24 /" $cliques
    refused "k=3: community 3 has the wrong sign" sed -i "s/^3: 3 $/3: 3 -24 /" $cliques
    refused "k=3: an exact community stands after approximated ones" \
        sed -i "s/^0:/-0:/" out/k=3/communities $cliques out/k=3/communities_links
    refused "k=3: the header is wrong about negative indices" \
        sed -i "/^# Neg/d" out/k=3/communities
    refused "k=3: the cliques of communities have another number than 5" \
        sed -i "s/^-5:/-6:/" $cliques
    refused "k=3: the communities are not in order" \
        sed -i "s/^1: 1 $/1: 2 /; s/^2: 2 $/2: 1 /" $cliques
    refused "k=5: clique 0 is too small" sed -i "s/^-1: /&0 /" out/k=5/communities_cliques
    refused "folders: there is none for 4" rm -r out/k=4
    refused "k=4: nobody knows the file k-cliques" touch out/k=4/k-cliques
}
case_damaged_percolation() {
    small_run
    refused "adjacent cliques: cliques 0 and 12 are adjacent and not in one community at k=3" \
        sed -i "s/^0: 0 12 $/0: 0 /" out/k=3/communities_cliques
    refused "adjacent cliques: a community is not connected at k=3" \
        sed -i "s/^0: 0 12 $/0: 0 1 12 /; s/^1: 1 $/1: /" out/k=3/communities_cliques
}
case_damaged_links() {
    small_run
    links=out/k=3/communities_links
    refused "k=3: the links of community 4 are not .*" sed -i "/^32 34$/d" $links
    refused "k=3: the links of community 4 are not .*" sed -i "s/^32 34$/34 32/" $links
    refused "k=3: the links of community 0 are not .*" sed -i "s/^39 38$/&\n39 41/" $links
    refused "k=3: the links of communities have another sign at community 5" \
        sed -i "s/^-5:/5:/" $links
    refused "k=3: the exact community 0 has a pair that is not linked" \
        sed -i "/^38 39$/d; /^39 38$/d" links.txt
}
case_damaged_statistics() {
    small_run
    graph="k=3: the graph of communities is not that of their common nodes"
    refused "$graph" sed -i "s/^2 -5 1$/2 -5 2/" out/k=3/graph_of_communities
    refused "$graph" sed -i "s/^2 -5 1$/2 5 1/" out/k=3/graph_of_communities
    refused "$graph" sed -i "/^2 -5 1$/d" out/k=3/graph_of_communities
    for part in merged exact appr; do
        for what in size degree membership; do
            name=${what}_distribution_$part
            refused "k=3: the $name is not that of the communities" \
                sed -i "s/^\([0-9]*\) \([0-9]*\)$/\1 1\2/" "out/k=3/$name"
        done
    done
    refused "k=3: the overlap_distribution_merged is not that of the communities" \
        sed -i "s/^1 1$/1 2/" out/k=3/overlap_distribution_merged
    refused "k=3: there is no size_distribution_appr" rm out/k=3/size_distribution_appr
    refused "k=3: there are distributions that do not belong here" \
        cp out/k=3/size_distribution_appr out/k=3/size_distribution
}

if ! grep -q "^case_$case()" "$0"; then
    echo "no case '$case'"
    exit 1
fi
"case_$case"
echo "passed"
