# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Follows docs/authors.md word for word. To be sourced at the root of the sources, with messages.sh and
# loopback_domain.sh.
#
# In the page, a line "<!-- run -->" before a block of commands says that it is run, "<!-- run: bare -->" that it is run
# on a bare system only, where packages can be installed. A block right behind is what the commands write.

tutorial=$PWD/docs/authors.md
tutorial_step='' # the one that runs
tutorial_examples=$PWD/examples/thermostat

# tutorial_steps <folder> <bare|installed>: writes the commands of each step to NN.sh, and what they write to NN.out.
tutorial_steps() {
    awk -v folder="$1" -v place="$2" '
        in_block && /^```/ { in_block = 0; closed = NR; next }
        in_block { if (file) print > file; next }
        /^<!-- run -->$/ || (place == "bare" && /^<!-- run: bare -->$/) { marked = NR; next }
        /^```/ {
            in_block = 1
            file = ""
            if (marked == NR - 1) file = sprintf("%s/%02d.sh", folder, ++step)
            else if (runs && closed == NR - 1) file = sprintf("%s/%02d.out", folder, step)
            runs = (marked == NR - 1)
            next
        }
        { runs = runs && closed != NR - 1 }' "$tutorial"
}

# tutorial_code <folder>: writes each block of code that the page shows to a file.
tutorial_code() {
    awk -v folder="$1" '
        /^```(cpp|idl)$/ { file = sprintf("%s/%02d.code", folder, ++block); next }
        /^```/ { file = ""; next }
        file { print > file }' "$tutorial"
}

# What the page shows of the example is what stands there.
shows_the_example() {
    local folder=$1 block example
    example=$(cat "$tutorial_examples"/*.{idl,cpp})
    tutorial_code "$folder"
    for block in "$folder"/*.code; do
        [[ $example == *"$(<"$block")"* ]] || { complain "the page shows what is not in the example:" && cat "$block" && return 1; }
    done
}

# as_typed <port> <file of the page's configuration> <configuration of this run's own domain>: the commands with what must
# be this run's own.
as_typed() {
    sed "s#127\.0\.0\.1:8080#127.0.0.1:$1#g; s#file://$2#file://$3#"
}

# follow_tutorial <folder> <bare|installed> <folder of the installed examples> [sed script]: runs the steps in this shell, in
# the current folder; ends the script when one fails. The last line tells how many commands there were, and how long
# they took.
follow_tutorial() {
    local folder=$1 examples=$3 page_examples=/usr/share/doc/zorb-dev/examples step commands=0 text began=$SECONDS
    reserve_domain || exit 1
    mkdir "$folder/steps"
    tutorial_steps "$folder/steps" "$2"
    # shellcheck disable=SC2154 # from loopback_domain.sh
    tutorial_port=$((28000 + domain)) # nobody else has the domain, so nobody else has the port either
    export ZORBCTL_URL=http://127.0.0.1:$tutorial_port no_proxy='*'
    for step in "$folder"/steps/*.sh; do
        text=$(as_typed "$tutorial_port" "$page_examples/cyclonedds-loopback.xml" "$folder/cyclonedds.xml" <"$step" |
            sed "s#$page_examples#$examples#g; ${4:-}")
        tutorial_step=$step
        # The configuration may be there only from the first step on.
        [[ $text != *cyclonedds.xml* ]] || sed "s/<Domain Id=\"any\">/<Domain Id=\"$domain\">/" \
            "$examples/cyclonedds-loopback.xml" >"$folder/cyclonedds.xml"
        eval "$text" >"$step.stdout" 2>"$step.stderr"
        [[ ! -e ${step%.sh}.out ]] || diff "${step%.sh}.out" <(echo "$(<"$step.stdout")")
        commands=$((commands + $(wc -l <"$step")))
    done
    tutorial_step=''
    echo "the tutorial: $commands commands in $((SECONDS - began)) s"
}

# Ends what the tutorial has left running, and shows the step that it has failed at. To be called when the script exits.
stop_tutorial() {
    local job
    for job in $(jobs -p); do
        kill "$job" 2>/dev/null || true
    done
    wait
    [[ -n $tutorial_step ]] || return 0
    complain "the tutorial fails at this step:"
    cat "$tutorial_step" "$tutorial_step.stdout" "$tutorial_step.stderr" >&2
}
