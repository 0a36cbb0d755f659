// Pictures for the screen: a view of a space, again and again. What is large is drawn, what is small is
// placed from pictures kept of it, what is tiny is a mark.
#pragma once

#include "gi/paint/scene.h"

#include <QImage>

class KcGiScreen {
public:
    explicit KcGiScreen(KcDbDatabase& database);
    ~KcGiScreen();
    KcGiScreen(const KcGiScreen&) = delete;
    KcGiScreen& operator=(const KcGiScreen&) = delete;

    struct View {
        KcDbObjectId space;
        KcGePoint2d center; ///< drawing units
        double height = 1.0; ///< drawing units over the height of the picture
        QRgb background = 0xff000000;
        double pixelsPerMillimetre = 0.0; ///< for line weights; 0: thin lines
    };
    /// Fills the picture (Format_RGB32). False when it was cancelled; the picture is unfinished then.
    bool paint(QImage& image, const View& view, const std::function<bool()>& cancelled = {});
    /// Draws these entities over a picture, in one colour where one is given.
    void
    overlay(QImage& image, const View& view, const std::vector<KcDbObjectId>& ids, std::optional<QRgb> color);
    /// The same for entities that are in no drawing.
    void overlay(
        QImage& image, const View& view, const std::vector<const KcDbEntity*>& entities,
        std::optional<QRgb> color);
    /// What could not be drawn of the last picture.
    const std::map<QString, size_t>& leftOut() const { return m_leftOut; }

    /// From world coordinates to the pixels of a picture of that size.
    static KcGeMatrix3d toPixels(const View& view, QSize size);

private:
    struct Kept;
    class Device;
    void drawOver(
        QImage& image, const View& view, std::optional<QRgb> color,
        const std::function<void(KcGiScene&)>& draw);
    KcGiSceneOptions optionsFor(const QImage& image, const View& view) const;

    KcDbDatabase& m_database;
    std::unique_ptr<Kept> m_kept;
    std::map<QString, size_t> m_leftOut;
};
