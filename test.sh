#!/usr/bin/env bash
# Runs the tests, all or by stage: ./test.sh [STAGE...]; see ./test.sh --help.
# The last line is "N passed, N failed"; the exit status is not 0 when anything failed.
set -uo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1

# The longest first, of those that go side by side.
default_stages=(layers format scripts build browser install unit window documents npm headers seam)
more_stages=(browsers kills fuzz tidy)
passed=0
failed=0

help() {
    cat << 'EOF'
Usage: ./test.sh [STAGE...]       by default all stages but browsers, kills, tidy and fuzz
       ./test.sh --all            these, too
       ./test.sh --list           the names of the stages
       ./test.sh mutants ROOM...  plants small faults into rooms and tells which tests notice them;
                                  no gate, takes minutes a room; tools/mutants --help tells its options

  layers    no include goes up or sideways in the house; the check checks itself
  headers   every header compiles alone
  format    the code is laid out as .clang-format says
  scripts   the shell scripts parse, refuse nonsense and count failures
  build     everything compiles in build/ci, warnings are errors
  unit      all test programs of build/ci under the address and undefined-behaviour sanitizers
  window    the editor's window, driven by a pointer and a keyboard under an X server of its own
  install   the installed library, static and shared, serves a host outside the checkout
  seam      the core compiles for WebAssembly without exceptions, and draws
  browser   the editor's page in a headless Chromium, and every scenario there as it goes natively
  npm       the package for web pages, in an app and in a plain page
  browsers  the same in Firefox and WebKitGTK, as far as these go
  documents what is saved fits the schema, and engines render a folder of it
  kills     window and browser are killed 100 times each, or KALIM_KILLS, and lose nothing
  tidy      clang-tidy over the library and the command; slow
  fuzz      the fuzzer's targets over the inputs of the tree, and 30 seconds each, or KALIM_FUZZ_SECONDS,
            over new ones; needs clang and builds the library anew
EOF
}

# Runs a command of a stage, for so many seconds at most. Then, or when the tests are interrupted, it is
# ended with all that it has started.
patience=${KALIM_STAGE_PATIENCE-2700}
within() (
    timeout --kill-after=30 "$patience" "$@" &
    trap 'kill -TERM $! 2> /dev/null' INT TERM
    wait $!
)

# check NAME COMMAND...: one check; its output is shown when it fails.
check() {
    local name=$1 output
    shift
    if output=$(within "$@" 2>&1); then
        passed=$((passed + 1))
        echo "ok: $name${output:+ - ${output##*$'\n'}}"
    else
        failed=$((failed + 1))
        printf '%s\nFAILED: %s\n' "$output" "$name"
    fi
}

stage_layers() {
    check 'includes keep to the floors' tools/check-layers
    check 'the check of the floors finds what it should' tools/check-layers --self-test
    check 'every text is there in every language' tools/check-texts
}

stage_headers() {
    check 'every header compiles alone' tools/check-headers
}

stage_format() {
    check 'the layout is that of .clang-format' tools/format --check
}

stage_scripts() {
    local script
    for script in run.sh test.sh .ci/run fuzz/run tools/* tests/scripts/run tests/install/run tests/seam/run \
        tests/browser/run tests/window/* tests/documents/run examples/cluster/render-parallel \
        npm/tests/run; do
        [[ -d $script || $(head -n 1 "$script") != *bash ]] || check "$script parses" bash -n "$script"
    done
    check 'the scripts behave' tests/scripts/run
}

# Built at most once in a run.
build_status=
build_ci() {
    if [[ -z $build_status ]]; then
        within tools/compile ci
        build_status=$?
    fi
    return "$build_status"
}

stage_build() {
    if build_ci; then
        passed=$((passed + 1))
        echo 'ok: everything compiles'
    else
        failed=$((failed + 1))
        echo 'FAILED: everything compiles'
    fi
}

# The paths of all test programs that the build knows, whether they could be built or not.
test_programs() {
    ninja -C build/ci -t targets all 2> /dev/null | sed -n 's/^\([^ ]*\/tests-[^/ ]*\): CXX_EXECUTABLE_.*/\1/p'
}

stage_unit() {
    local program programs=() counts results=build/ci/results.txt
    build_ci || echo 'The build failed: what it still made is tested, the rest counts as failed.'
    for program in $(test_programs); do
        # After a failed build an old program may still lie there.
        [[ $build_status == 0 ]] || ninja -C build/ci "$program" > /dev/null 2>&1 ||
            rm -f "build/ci/$program"
        programs+=("build/ci/$program")
    done
    if [[ ${#programs[@]} == 0 ]]; then
        failed=$((failed + 1))
        echo 'FAILED: there is no test program'
        return
    fi
    within tools/run-tests build/ci/results "${programs[@]}" > "$results"
    sed '$d' "$results"
    read -r -a counts < <(tail -n 1 "$results")
    passed=$((passed + counts[0]))
    failed=$((failed + counts[2]))
}

# count_of SCRIPT [ARGUMENT...]: runs a script of tests and takes over the counts of its last line.
count_of() {
    local output counts
    output=$(within "$@")
    [[ $output != *$'\n'* ]] || printf '%s\n' "${output%$'\n'*}"
    read -r -a counts <<< "${output##*$'\n'}"
    if [[ ${counts[*]} == *passed,*failed ]]; then
        passed=$((passed + counts[0]))
        failed=$((failed + counts[2]))
    else
        failed=$((failed + 1))
        echo "FAILED: $1 broke off: ${counts[*]}"
    fi
}

stage_window() {
    check 'the command compiles' tools/compile ci kalimkit
    count_of tests/window/run
    count_of tests/window/desk
    count_of tests/window/howto
    count_of tests/window/kill
}

stage_documents() {
    check 'the command compiles' tools/compile ci kalimkit
    count_of tests/documents/run
}

stage_kills() {
    local -x KALIM_KILLS=${KALIM_KILLS-100} KALIM_FILES=killing
    local patience=$((patience + 20 * KALIM_KILLS))
    check 'the command compiles' tools/compile ci kalimkit
    check 'the page compiles' tools/compile wasm
    count_of tests/window/kill "$KALIM_KILLS"
    count_of tests/browser/run chromium
}

stage_fuzz() {
    check 'the targets bear what they have met before' fuzz/run --replay
    local target minutes
    minutes=$(awk -v seconds="${KALIM_FUZZ_SECONDS-30}" 'BEGIN { print seconds / 60 }')
    for target in $(fuzz/run --list); do
        check "nothing is found in $target" fuzz/run "$target" "$minutes"
    done
}

stage_install() {
    count_of tests/install/run
}

stage_seam() {
    check 'the core compiles for WebAssembly' tools/compile wasm
    check 'it draws a tool there' tests/seam/run
}

compile_for_browser() {
    check 'the native player compiles' tools/compile ci kalimkit
    check 'the page compiles' tools/compile wasm
    check 'the page is small' tools/web-size build/wasm/page 299.4
}

stage_browser() {
    compile_for_browser
    count_of tests/browser/run chromium
}

stage_npm() {
    check 'the package compiles' tools/compile wasm kalim-page
    count_of npm/tests/run
}

stage_browsers() {
    compile_for_browser
    count_of tests/browser/run firefox webkit
}

stage_tidy() {
    build_ci > /dev/null 2>&1
    check 'clang-tidy has no remark' tools/tidy
}

# What a stage needs installed.
groups_of() {
    case $1 in
        headers | build | unit | install) echo native ;;
        layers | format) echo checks ;;
        seam) echo seam ;;
        browser) echo native browser ;;
        npm) echo npm ;;
        documents) echo native documents ;;
        window) echo native window ;;
        kills) echo native window browser ;;
        browsers) echo native browsers ;;
        tidy) echo native tidy ;;
        fuzz) echo fuzz web ;;
    esac
}

# Runs a stage; its counts are added to those of the file `counts`.
run_stage() {
    local begun=$SECONDS
    echo "== $1"
    # shellcheck disable=SC2046 # a list of words
    if tools/setup $(groups_of "$1"); then
        "stage_$1"
    else
        failed=$((failed + 1))
        echo "FAILED: $1 needs packages that are not there"
    fi
    echo "-- $1 took $((SECONDS - begun)) s"
    echo "$passed $failed" >> "$counts"
}

# Runs stages side by side, as many at a time as there are processors, and shows what each has said when
# it has ended. Each is a process group of its own, to be ended as one.
side_by_side() {
    local stage
    set -m
    for stage in "$@"; do
        while (($(jobs -pr | wc -l) >= $(nproc))); do wait -n; done
        (
            passed=0 failed=0
            run_stage "$stage" > "$logs/$stage" 2>&1
            flock "$logs" cat "$logs/$stage"
        ) < /dev/null &
    done
    wait
    set +m
}

end_stages() {
    local group
    for group in $(jobs -p); do kill -TERM -- "-$group" 2> /dev/null; done
    exit 130
}

main() {
    local stage stages=("$@") alone=() known=" ${default_stages[*]} ${more_stages[*]} "
    case ${1-} in
        -h | --help) help && return ;;
        --all) stages=("${default_stages[@]}" "${more_stages[@]}") ;;
        --list) printf '%s\n' $known && return ;;
        mutants)
            shift
            tools/setup native mutants && tools/mutants "$@"
            return
            ;;
        '') stages=("${default_stages[@]}") ;;
    esac
    for stage in "${stages[@]}"; do
        if [[ $known != *" $stage "* ]]; then
            echo "test.sh: there is no stage $stage; ./test.sh --list names them" >&2
            return 2
        fi
    done
    logs=$(mktemp -d)
    counts=$logs/counts
    trap 'rm -rf "$logs"' EXIT
    trap end_stages INT TERM
    # What takes all processors or no time goes alone; installing packages, too.
    local groups=() together=()
    for stage in "${stages[@]}"; do
        # shellcheck disable=SC2207 # a list of words
        groups+=($(groups_of "$stage"))
        case $stage in
            layers | format | scripts | build) alone+=("$stage") ;;
            *) together+=("$stage") ;;
        esac
    done
    [[ ${#groups[@]} == 0 ]] || tools/setup $(printf '%s\n' "${groups[@]}" | sort -u) || true
    for stage in "${alone[@]}"; do
        passed=0 failed=0
        run_stage "$stage"
    done
    if [[ ${#together[@]} == 1 ]]; then
        passed=0 failed=0
        run_stage "${together[0]}"
    else
        side_by_side "${together[@]}"
    fi
    # A stage that was killed has left no counts.
    touch "$counts"
    awk -v stages="${#stages[@]}" '{ passed += $1; failed += $2 }
        END {
            failed += stages - NR
            print passed + 0 " passed, " failed + 0 " failed"
            exit failed > 0
        }' "$counts"
}

main "$@"
