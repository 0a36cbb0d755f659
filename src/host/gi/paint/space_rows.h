// A space as the screen walks it: a short row for each entity, in drawing order. What is quickly placed is
// told apart from what has to be asked.
#pragma once

#include "db/database.h"
#include "gi/paint/symbols.h"

#include <unordered_map>

class KcGiSpaceRows : private KcDbListener {
public:
    explicit KcGiSpaceRows(KcDbDatabase& database);
    ~KcGiSpaceRows() override;
    KcGiSpaceRows(const KcGiSpaceRows&) = delete;
    KcGiSpaceRows& operator=(const KcGiSpaceRows&) = delete;

    struct Row {
        static constexpr uint32_t kAsk = ~uint32_t(0); ///< symbol of rows whose entity draws itself
        KcDbObjectId id;
        float left, bottom, right, top; ///< of its box, world coordinates, rounded outwards
        double x, y; ///< of a symbol, world coordinates
        float scale, turn;
        uint32_t symbol;
        bool mirrored;
    };
    struct Look {
        KcDbObjectId space;
        QRgb background = 0;
        double unitsPerMillimetre = 0.0; ///< 0: all lines are thin
        friend bool operator==(const Look&, const Look&) = default;
    };
    /// The rows of a space. What is kept of definitions is thrown away when one of them, a layer or the look
    /// has changed; changes in the space change its rows only.
    const std::vector<Row>& rows(const Look& look, KcGiSymbols& symbols);

private:
    void objectCreated(const KcDbObject& object) override { note(object); }
    void objectModified(const KcDbObject& object) override { note(object); }
    void objectErased(const KcDbObject& object, bool) override { note(object); }
    void note(const KcDbObject& object);
    class Maker;
    void build(KcGiSymbols& symbols);
    void refresh(KcGiSymbols& symbols);

    KcDbDatabase& m_database;
    Look m_look;
    bool m_isBuilt = false; ///< false: everything is to be found out
    bool m_isSorted = false; ///< the space has a table of drawing order
    bool m_picturesHold = true; ///< false: definitions look different, but lie where they were
    std::vector<Row> m_rows;
    std::unordered_map<KcDbObjectId, size_t> m_places; ///< of rows; filled when the first change needs it
    std::vector<KcDbObjectId> m_changed;
};
