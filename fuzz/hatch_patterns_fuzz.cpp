// Reads any bytes as a hatch pattern file. What it defines must be drawable within bounds, and every fault must
// name a line of the file.

#include "db/hatch_patterns.h"

#include <cmath>
#include <cstdlib>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const KcDbPatternFile file = kcdbParsePatternFile(bytes, QStringLiteral("fuzzed.pat"));
    const int lines = int(bytes.count('\n')) + 1;
    for (const KcDbPatternFinding& finding : file.findings)
        require(finding.line >= 0 && finding.line <= lines && !finding.text.isEmpty());
    std::vector<KcGeSegment2d> square;
    const KcGePoint2d corners[] = { { 0, 0 }, { 9, 0 }, { 9, 9 }, { 0, 9 } };
    for (int i = 0; i < 4; ++i)
        square.push_back(KcGeSegment2d::line(corners[i], corners[(i + 1) % 4]));
    const KcGeFillArea area({ square });
    KcGeHatchLimits limits;
    limits.mostSpans = 200;
    size_t drawn = 0;
    for (const KcDbHatchPattern& pattern : file.patterns) {
        require(!pattern.name.isEmpty());
        for (const KcGeHatchFamily& family : pattern.families) {
            size_t spans = 0;
            kcgeHatchLines(area, KcGeHatchStyle::Normal, family, limits, [&](KcGePoint2d a, KcGePoint2d b) {
                ++spans;
                require(std::isfinite(a.x + a.y + b.x + b.y));
            });
            // The estimate goes by lengths; each line may have a cut dash at both ends more.
            require(spans <= limits.mostSpans * 4 + 200);
            if (++drawn > 200)
                return 0;
        }
    }
    return 0;
}
