#!/bin/sh
# Makes the big drawing, measures the program on it and prints one line per workload with the aim beside it.
#   bench/run.sh [--quick] [--peers]
#   bench/run.sh --regions
#   --quick: a tenth of the drawing and one round; the aims are meant for the whole one
#   --peers: also times ezdxf on the same drawing (minutes)
#   --regions: closed regions among 1,000 to 1,000,000 segments instead, GEOS beside it up to 100,000 (minutes)
set -u
cd "$(dirname "$0")/.." || exit 1
. cmake/prepare.sh

rounds=3
peers=no
regions=no
drawing=build/bench/big.dxf
size=""
for argument in "$@"; do
    case "$argument" in
    --quick)
        rounds=1
        drawing=build/bench/quick.dxf
        size="--inserts 100000 --polylines 10000 --texts 2000"
        ;;
    --peers) peers=yes ;;
    --regions) regions=yes ;;
    *)
        echo "bench/run.sh takes --quick, --peers and --regions" >&2
        exit 2
        ;;
    esac
done

mkdir -p build/bench
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
build release build "drawing_bench vdlMain"
if [ ! -f "$drawing.truth.json" ] || [ bench/make_big_drawing.py -nt "$drawing.truth.json" ]; then
    echo "Writing $drawing" >&2
    python3 bench/make_big_drawing.py "$drawing" $size || exit 1
fi
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
