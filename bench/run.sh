#!/bin/sh
# Makes the big drawing, measures the program on it and prints one line per workload with the aim beside it.
#   bench/run.sh [--quick] [--peers]
#   --quick: a tenth of the drawing and one round; the aims are meant for the whole one
#   --peers: also times ezdxf on the same drawing (minutes)
set -u
cd "$(dirname "$0")/.." || exit 1
. cmake/prepare.sh

rounds=3
peers=no
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
    *)
        echo "bench/run.sh takes --quick and --peers" >&2
        exit 2
        ;;
    esac
done

build release build "drawing_bench vdlMain"
mkdir -p build/bench
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
