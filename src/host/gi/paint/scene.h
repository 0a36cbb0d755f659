// Drawing a database: walks a space in its draw order, resolves layers, colours, line types and weights,
// follows block references, and hands plane geometry to a device.
#pragma once

#include "db/database.h"
#include "gi/paint/device.h"

#include <QRectF>

#include <map>
#include <set>

class KcDbBlockTableRecord;
class KcDbViewport;

struct KcGiSceneOptions {
    KcGeMatrix3d toDevice; ///< from world coordinates; the device's y axis points down
    std::optional<QRectF> area; ///< the part of the device that is seen; none: everything counts (extents)
    QRgb background = 0xffffffff; ///< colour 7 is drawn black on light ones and white on dark ones
    bool plotting = false; ///< layers that are not plotted are left out
    double unitsPerMillimetre = 0.0; ///< device units, for line weights; 0: all lines are thin
    std::optional<QRgb>
        oneColor; ///< for marks: everything in this colour, areas as outlines under a veil of it
    /// Asked now and then; true stops the drawing where it is.
    std::function<bool()> cancelled;
    /// Told how many of how many entities of the space are drawn.
    std::function<void(size_t, size_t)> progress;
};

class KcGiScene : public KcGiWorldDraw {
public:
    KcGiScene(KcDbDatabase& database, KcGiDevice& device, const KcGiSceneOptions& options);
    ~KcGiScene() override;

    /// Everything visible in a space. False when it was cancelled.
    bool drawSpace(KcDbObjectId block);
    /// These entities of one block, in its drawing order. False when it was cancelled.
    bool draw(std::vector<KcDbObjectId> ids);
    /// An entity that is in no drawing, as if it lay in the current space.
    void draw(const KcDbEntity& entity);

    /// What was left out, a sentence each, with how often.
    const std::map<QString, size_t>& leftOutThings() const { return m_leftOut; }

    // KcGiWorldDraw
    std::optional<KcGeExtents2d> window() const override { return m_context.window; }
    double pixel() const override { return m_context.pixel; }
    bool isPlotting() const override { return m_options.plotting; }
    void setColor(const KcGiColor& color) override;
    KcGiColor entityColor() const override;
    void setLineWeight(int hundredths) override;
    void setContinuous(bool on) override { m_traits.continuous = on; }
    using KcGiWorldDraw::stroke;
    void stroke(const KcGiPath& path, Stroke options) override;
    void fill(const KcGiPath& path) override;
    void fill(const KcGiPath& path, const KcGiGradient& gradient) override;
    void mask(const KcGiPath& path) override;
    void infiniteLine(KcGePoint3d base, KcGeVector3d direction, bool bothWays) override;
    void point(KcGePoint3d position, double turn) override;
    void text(const KcGiTextRun& run) override;
    void entity(const KcDbEntity& entity) override;
    void block(KcDbObjectId definition, const KcGeMatrix3d& toCurrent) override;
    void pushClip(const KcGiPath& area, bool inverted) override;
    void popClip() override;
    void leftOut(const QString& what) override { ++m_leftOut[what]; }

private:
    struct Layer {
        KcGiColor color{ 7, -1 };
        QRgb rgb = 0;
        const void* id = nullptr;
        bool isZero = false; ///< the layer "0"
        KcDbObjectId linetype;
        int lineWeight = -3;
        int alpha = 255;
        bool off = false, frozen = false, plottable = true;
    };
    /// A line type in drawing units at scale 1; empty: no gaps.
    struct Pattern {
        std::vector<double> dashes;
        double length = 0.0;
    };
    /// What a definition draws.
    struct Contents {
        std::vector<KcDbObjectId> ids; ///< in drawing order
        bool hasNoEnds = false; ///< holds lines without ends, so that its box says nothing
    };
    /// How the lines of the entity that draws look.
    struct Traits {
        QRgb color = 0xff000000;
        const Pattern* pattern = nullptr; ///< null: no gaps
        double patternScale = 1.0;
        double width = 0.0; ///< device units
        bool continuous = false;
    };
    /// Where drawing happens: the space, or a block definition under its transform.
    struct Context {
        KcGeMatrix3d matrix; ///< to the device
        std::optional<KcGeExtents2d> window;
        double pixel = 0.0;
        bool allSeen = false; ///< nothing of the definition lies outside the window
        // What ByBlock and the layer "0" mean.
        QRgb blockColor = 0;
        const Pattern* blockPattern = nullptr;
        int blockLineWeight = -3;
        int blockAlpha = 255;
        const Layer* blockLayer = nullptr;
        // What a viewport of a layout says.
        double patternFactor = 1.0;
        const std::set<const Layer*>* frozenLayers = nullptr;
    };

    const Layer& layer(KcDbObjectId id);
    const Pattern* pattern(KcDbObjectId linetype);
    QRgb resolve(const KcGiColor& color, const Layer& layer) const;
    double penWidth(int hundredths, const Layer& layer) const;
    int lineWeightOf(int hundredths, const Layer& layer) const;
    int alphaOf(const KcDbEntity& entity, const Layer& layer) const;
    void enter(const KcGeMatrix3d& toDevice);
    void drawOne(const KcDbEntity& entity);
    bool placed(
        KcDbObjectId definition, const KcGeMatrix3d& matrix, const KcGeExtents3d& box,
        const KcGeExtents3d& seen);
    void drawDefinition(
        KcDbObjectId definition, const Contents& inside, const KcGeMatrix3d& matrix, bool allSeen = false);
    bool drawAll(const std::vector<KcDbObjectId>& ids);
    const Contents& contents(const KcDbBlockTableRecord& definition);
    int inheritedWeight() const;
    void drawModel(const KcDbViewport& viewport);
    QPainterPath plane(const KcGiPath& path) const;
    void markArea(const KcGiPath& path);
    void dash(const KcGiPath& path, Stroke options);
    bool isStopped();

    KcDbDatabase& m_database;
    KcGiDevice& m_device;
    KcGiSceneOptions m_options;
    Context m_context;
    Traits m_traits;
    const KcDbEntity* m_entity = nullptr; ///< that draws
    const Layer* m_layer = nullptr; ///< its layer
    std::unordered_map<const void*, Layer> m_layers;
    std::unordered_map<const void*, Pattern> m_patterns;
    std::unordered_map<const void*, Contents> m_contents; ///< by definition
    KcDbObjectId m_byLayerLinetype, m_byBlockLinetype;
    std::vector<KcDbObjectId> m_definitions; ///< being drawn, outermost first
    std::map<QString, size_t> m_leftOut;
    double m_linetypeScale = 1.0;
    bool m_paperLinetypes = true; ///< line types look the same in every viewport
    size_t m_visits = 0;
    bool m_stopped = false;
};
