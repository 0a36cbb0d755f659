// Block definitions as the screen keeps them: stamps of small ones, lines of larger ones.
#pragma once

#include "gi/paint/display_list.h"
#include "gi/paint/thin_lines.h"

#include <deque>
#include <map>
#include <unordered_map>

/// An even place of a definition: scaled alike in both directions.
struct KcGiEvenPlace {
    QPointF origin; ///< pixels: where the definition's origin comes to lie
    float scale = 1.0; ///< pixels in a unit of the definition
    float turn = 0.0; ///< radians, counter-clockwise as seen
    bool mirrored = false;

    /// Nothing for transforms that shear or scale unevenly. `linear` leads to a y axis that points down.
    static std::optional<KcGiEvenPlace> of(const QTransform& linear, QPointF origin);
    /// From the definition to the device.
    QTransform transform() const;
};

/// One look of one definition: what of it depends on the reference is settled.
class KcGiSymbol {
public:
    /// `background` is what masks show.
    KcGiSymbol(const KcGiDevice::Placement& placement, QRgb background);

    double size() const { return m_size; } ///< of the longer side, units of the definition
    QRgb color() const { return m_color; }
    /// Forgets how it looks.
    void forget();
    /// Draws it at a place from what is kept of it. Makes what is missing by `draw`; false when that is none,
    /// or the definition is not one that can be kept.
    bool place(
        const KcGiEvenPlace& place, KcGiThinLines& lines, KcGiDevice& device,
        const KcGiDevice::DrawDefinition* draw);

    /// What it keeps, in bytes, roughly.
    size_t memory() const { return m_memory; }

private:
    struct Stamp {
        std::vector<QRgb> pixels; ///< premultiplied, row by row
        int width = 0, height = 0;
        QPoint offset; ///< from the definition's origin to the corner
        bool made = false;
    };
    bool
    placeStamp(const KcGiEvenPlace& place, const KcGiPixels& image, const KcGiDevice::DrawDefinition* draw);
    void make(Stamp& stamp, const QTransform& transform, const KcGiDevice::DrawDefinition& draw);

    QRectF m_box;
    QRgb m_background, m_color;
    double m_size = 0.0;
    bool m_mayBeKept, m_canBeKept; ///< by what the reference says, and by what was drawn as well
    std::vector<Stamp> m_small; ///< by size and side; how small ones are turned is not seen
    std::unordered_map<uint32_t, Stamp> m_stamps;
    std::map<int, std::unique_ptr<KcGiDisplayList>>
        m_lists; ///< by the power of two that the scale stays below
    size_t m_memory = 0;
};

/// All looks that are kept of a drawing's definitions.
class KcGiSymbols {
public:
    /// The number of the look of a placement; it holds until `clear`.
    uint32_t number(const KcGiDevice::Placement& placement);
    KcGiSymbol& operator[](uint32_t number) { return m_symbols[number]; }
    void clear(QRgb background);
    /// Forgets pictures and lines; the numbers go on to hold.
    void forget();
    size_t memory() const;

private:
    struct Key {
        const void* definition;
        const void* layer;
        const void* linetype;
        QRgb color;
        bool thinLines;
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct Hash {
        size_t operator()(const Key& key) const
        {
            return qHashMulti(0, key.definition, key.layer, key.linetype, key.color);
        }
    };
    std::unordered_map<Key, uint32_t, Hash> m_numbers;
    std::deque<KcGiSymbol> m_symbols;
    QRgb m_background = 0;
};
