#!/bin/sh
# Counts the plants of the example plan, saves it with the table, and plots its sheet.
#   examples/run.sh [OUT]      OUT: folder of the results, from the repository root; out/ by default
set -u
cd "$(dirname "$0")/.." || exit 1

out=${1:-out}
program=build/bin/verdelis
result=$out/planting-plan-counted.dxf

if [ ! -x "$program" ]; then
    echo "$program is missing: build it first with ./verdelis" >&2
    exit 1
fi
mkdir -p "$out" || exit 1

"$program" run examples/planting-plan.dxf -s examples/count-plants.scr -o "$result" --root "$out/root"
status=$?
if [ "$status" -eq 0 ]; then
    QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen} \
        "$program" plot "$result" "$out/planting-plan.pdf" --layout LS-01 --root "$out/root" || exit 1
    echo "The plan with its plant table lies in $result, its sheet in $out/planting-plan.pdf;"
    echo "the settings used lie in $out/root."
else
    echo "The count ended with status $status; the messages above say why." >&2
fi
exit "$status"
