#!/bin/sh
# Makes the big drawing, measures the program on it and prints one line per workload with the aim beside it.
#   bench/run.sh [--quick] [--peers]
#   bench/run.sh --regions
#   bench/run.sh --window [--quick]
#   bench/run.sh --curves [--quick]
#   --quick: a tenth of the drawing and one round; the aims are meant for the whole one
#   --peers: also times ezdxf on the same drawing (minutes)
#   --window: start, opening, panning and the crosshair in the window instead
#   --regions: closed regions among 1,000 to 1,000,000 segments instead, GEOS beside it up to 100,000 (minutes)
#   --curves: points along curves, intersections, parallels and the index of boxes instead
set -u
cd "$(dirname "$0")/.." || exit 1
. cmake/prepare.sh

rounds=3
symbols=200000
peers=no
regions=no
window=no
curves=no
quick=""
drawing=build/bench/big.dxf
size=""
for argument in "$@"; do
    case "$argument" in
    --quick)
        rounds=1
        quick=--quick
        symbols=20000
        drawing=build/bench/quick.dxf
        size="--inserts 100000 --polylines 10000 --texts 2000"
        ;;
    --peers) peers=yes ;;
    --regions) regions=yes ;;
    --window) window=yes ;;
    --curves) curves=yes ;;
    *)
        echo "bench/run.sh takes --quick, --peers, --regions, --window and --curves" >&2
        exit 2
        ;;
    esac
done

mkdir -p build/bench
if [ $curves = yes ]; then
    build release build "curves_bench geometry_bench index_bench"
    for measured in curves_bench geometry_bench index_bench; do
        build/bin/$measured $quick || exit 1
    done
    exit 0
fi
if [ $regions = yes ]; then
    build release build regions_bench
    for beds in 420 4200 42000 420000; do
        plan=build/bench/beds$beds
        [ -f $plan.truth ] || python3 bench/make_linework.py -n $beds --seed 1 $plan >&2 || exit 1
        [ $beds -lt 420000 ] && build/bin/regions_bench --peer-alone $plan
        build/bin/regions_bench $plan
    done
    exit 0
fi
make_drawing() { # FILE OPTIONS
    if [ ! -f "$1.truth.json" ] || [ bench/make_big_drawing.py -nt "$1.truth.json" ]; then
        echo "Writing $1" >&2
        python3 bench/make_big_drawing.py "$@" || exit 1
    fi
}
if [ $window = yes ]; then
    build release build "window_bench vdlMain"
    make_drawing "$drawing" $size
    make_drawing build/bench/symbols$symbols.dxf --inserts $symbols --polylines 0 --texts 0
    build/bin/window_bench --start examples/planting-plan.dxf || exit 1
    for shown in build/bench/symbols$symbols.dxf "$drawing"; do
        echo "$shown"
        build/bin/window_bench "$shown" || exit 1
    done
    exit 0
fi
build release build "drawing_bench vdlMain"
make_drawing "$drawing" $size
build/bin/drawing_bench "$drawing" "$rounds" || exit 1

[ $peers = yes ] || exit 0
/usr/bin/python3 - "$drawing" <<'END'
import sys, time
try:
    import ezdxf
except ImportError:
    print('%-42s %s' % ('ezdxf: load', 'not installed'))
    sys.exit()
start = time.perf_counter()
ezdxf.readfile(sys.argv[1])
print('%-42s %.1f s' % ('ezdxf: load', time.perf_counter() - start))
END
