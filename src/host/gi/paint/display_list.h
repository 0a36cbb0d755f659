// What a definition draws, kept as plane lines and areas to be drawn again under other transforms.
#pragma once

#include "gi/paint/device.h"

class KcGiDisplayList : public KcGiDevice {
public:
    /// Keeps what is drawn at a scale of so many units to a pixel of the finest picture it is meant for.
    explicit KcGiDisplayList(double sagitta)
        : m_sagitta(sagitta)
    {
    }

    /// False when something was drawn that cannot be repeated (clips, gradients, wide lines), or too much.
    bool isWhole() const { return m_isWhole; }
    size_t size() const { return m_points.size(); }
    /// Draws everything in its order. `run(points, count, color)` gets each run of thin lines, transformed;
    /// two equal points are a dot. All else goes to the device.
    template <class Run> void replay(const QTransform& transform, KcGiDevice& device, Run run) const;

    double sagitta() const override { return m_sagitta; }
    void stroke(const QPainterPath& path, const Pen& pen) override;
    void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) override;
    void fill(const QPainterPath& path, QRgb color) override;
    void fill(const QPainterPath&, const QBrush&) override { m_isWhole = false; }
    void mask(const QPainterPath& path) override;
    void dot(QPointF at, QRgb color) override;
    void text(const KcGiTextRun& run, const QTransform& transform, QRgb color) override;
    void pushClip(const QPainterPath&) override { m_isWhole = false; }
    void popClip() override { }

private:
    enum class Kind { Run, Area, Mask, Text };
    struct Item {
        Kind kind = Kind::Run;
        QRgb color = 0;
        uint32_t first = 0, count = 0; ///< points of a run; else `first` is the number of the area or text
    };
    struct Text {
        KcGiTextRun run;
        QTransform transform;
    };
    bool takes(const Pen& pen);
    void beginRun(QRgb color) { m_items.push_back({ Kind::Run, color, uint32_t(m_points.size()), 0 }); }
    void addPoint(QPointF point);

    double m_sagitta;
    bool m_isWhole = true;
    std::vector<Item> m_items;
    std::vector<QPointF> m_points;
    std::vector<QPainterPath> m_areas;
    std::vector<Text> m_texts;
};

template <class Run>
void KcGiDisplayList::replay(const QTransform& transform, KcGiDevice& device, Run run) const
{
    static thread_local std::vector<QPointF> points;
    const double a = transform.m11(), b = transform.m12(), c = transform.m21(), d = transform.m22(),
                 x = transform.dx(), y = transform.dy();
    for (const Item& item : m_items) {
        switch (item.kind) {
        case Kind::Run:
            points.resize(item.count);
            for (uint32_t i = 0; i < item.count; ++i) {
                const QPointF p = m_points[item.first + i];
                points[i] = { a * p.x() + c * p.y() + x, b * p.x() + d * p.y() + y };
            }
            run(points.data(), points.size(), item.color);
            break;
        case Kind::Area:
            device.fill(transform.map(m_areas[item.first]), item.color);
            break;
        case Kind::Mask:
            device.mask(transform.map(m_areas[item.first]));
            break;
        case Kind::Text:
            device.text(m_texts[item.first].run, m_texts[item.first].transform * transform, item.color);
            break;
        }
    }
}
