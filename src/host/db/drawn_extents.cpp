// A sink that keeps nothing but the box of what is drawn into it.

#include "db/drawn_extents.h"

#include "db/block_reference.h"
#include "db/plane.h"
#include "gi/sink/world_draw.h"

namespace {

/// Curves are measured by chords; these stay within a thousandth of the radius.
constexpr double kChordShare = 1e-3;

class Box : public KcGiWorldDraw {
public:
    KcGeExtents3d box;

    std::optional<KcGeExtents2d> window() const override { return std::nullopt; }
    double pixel() const override { return 0.0; }
    void setColor(const KcGiColor&) override { }
    KcGiColor entityColor() const override { return {}; }
    void setLineWeight(int) override { }
    void setContinuous(bool) override { }
    using KcGiWorldDraw::stroke;
    void stroke(const KcGiPath& path, Stroke) override { add(path); }
    void fill(const KcGiPath& path) override { add(path); }
    void fill(const KcGiPath& path, const KcGiGradient&) override { add(path); }
    void mask(const KcGiPath& path) override { add(path); }
    void infiniteLine(KcGePoint3d, KcGeVector3d, bool) override { }
    void point(KcGePoint3d position, double) override { kcdbAddPoint(box, position); }
    void text(const KcGiTextRun& run) override
    {
        const KcGi::TextExtent ink = KcGi::textExtent(run.style, run.text, run.height);
        if (!ink.hasInk)
            return;
        for (const double x : { 0.0, ink.advance })
            for (const double y : { ink.bottom, ink.top })
                kcdbAddPoint(box, run.origin + run.along * x + run.up * y);
    }
    void entity(const KcDbEntity& entity) override { box.addExtents(entity.geomExtents()); }
    void block(KcDbObjectId definition, const KcGeMatrix3d& toCurrent) override
    {
        const KcGeExtents3d inside = KcDbBlockReference::definitionExtents(definition);
        if (!inside.isEmpty())
            box.addExtents(toCurrent.transformed(inside));
    }
    void pushClip(const KcGiPath&, bool) override { }
    void popClip() override { }
    void leftOut(const QString&) override { }

private:
    void add(const KcGiPath& path)
    {
        double size = 0.0;
        for (const KcGiPath::Element& element : path.elements())
            if (const auto* arc = std::get_if<KcGeEllipArc3d>(&element))
                size = std::max({ size, arc->u.length(), arc->v.length() });
        path.flatten(
            KcGeMatrix3d(), size > 0.0 ? size * kChordShare : kChordShare,
            [&](KcGePoint3d p, bool) { kcdbAddPoint(box, p); }, [](bool) {});
    }
};

} // namespace

KcGeExtents3d kcdbDrawnExtents(const KcDbEntity& entity)
{
    Box sink;
    entity.worldDraw(sink);
    return sink.box;
}
