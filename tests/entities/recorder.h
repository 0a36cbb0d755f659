// A sink that notes what is drawn into it, for tests of how entities draw.
#pragma once

#include "db/database.h"
#include "db/entity.h"
#include "gi/sink/world_draw.h"

namespace entities_test {

class Recorder : public KcGiWorldDraw {
public:
    struct Line {
        std::vector<KcGePoint3d> points;
        KcGiColor color;
        bool closed = false;
    };
    std::vector<KcGiTextRun> texts;
    std::vector<KcGiColor> textColors; ///< of `texts`, in their order
    std::vector<Line> strokes, fills, masks;
    std::vector<std::pair<KcDbObjectId, KcGeMatrix3d>> blocks;
    QStringList missing;
    bool plotting = false;
    /// Of the ink of texts (advance and height of capitals' ink) and of all lines and areas.
    KcGeExtents3d box;

    std::optional<KcGeExtents2d> window() const override { return std::nullopt; }
    double pixel() const override { return 0.0; }
    bool isPlotting() const override { return plotting; }
    void setColor(const KcGiColor& color) override { m_color = color; }
    KcGiColor entityColor() const override { return { 3, -1 }; }
    void setLineWeight(int) override { }
    void setContinuous(bool) override { }
    using KcGiWorldDraw::stroke;
    void stroke(const KcGiPath& path, Stroke) override { add(strokes, path); }
    void fill(const KcGiPath& path) override { add(fills, path); }
    void fill(const KcGiPath& path, const KcGiGradient&) override { add(fills, path); }
    void mask(const KcGiPath& path) override { add(masks, path); }
    void infiniteLine(KcGePoint3d, KcGeVector3d, bool) override { }
    void point(KcGePoint3d, double) override { }
    void text(const KcGiTextRun& run) override
    {
        texts.push_back(run);
        textColors.push_back(m_color);
        const KcGi::TextExtent ink = KcGi::textExtent(run.style, run.text, run.height);
        if (!ink.hasInk)
            return;
        for (const double x : { 0.0, ink.advance })
            for (const double y : { ink.bottom, ink.top })
                box.addPoint(run.origin + run.along * x + run.up * y);
    }
    void entity(const KcDbEntity& entity) override { entity.worldDraw(*this); }
    void block(KcDbObjectId id, const KcGeMatrix3d& place) override { blocks.emplace_back(id, place); }
    void pushClip(const KcGiPath&, bool) override { }
    void popClip() override { }
    void leftOut(const QString& what) override { missing.append(what); }

protected:
    KcGiColor m_color{ 3, -1 };

private:
    void add(std::vector<Line>& list, const KcGiPath& path)
    {
        path.flatten(
            KcGeMatrix3d(), 0.01,
            [&](KcGePoint3d p, bool begins) {
                if (begins)
                    list.push_back({ {}, m_color, false });
                list.back().points.push_back(p);
                box.addPoint(p);
            },
            [&](bool closed) { list.back().closed = closed; });
    }
};

template <class T> Recorder drawn(const T& entity)
{
    Recorder recorder;
    entity.worldDraw(recorder);
    return recorder;
}

} // namespace entities_test
