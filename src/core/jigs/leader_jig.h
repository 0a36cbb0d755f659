// Drawing the path of a label's leader, vertex by vertex.
#pragma once

#include "ed/jig.h"

class KcDbLeader;

/// The leader through these points, world coordinates, without arrow head; null for less than two. What the
/// jig shows and what a label is built with.
std::unique_ptr<KcDbLeader> leaderThrough(const std::vector<KcGePoint3d>& points);

class MLeaderJig {
public:
    /// Offers the keywords that switch names only (N) and the leader option (L) while the path is drawn.
    void SetIsKeyWord(bool on) { m_offersKeywords = on; }
    /// 0: the label shows names only.
    void SetDimType(int type);
    int GetDimType() const { return m_type; }
    void SetLeaderOption(int option) { m_option = option; }
    int GetLeaderOption() const { return m_option; }

    /// Asks for the start and the further points until Enter; two at least, world coordinates, the start
    /// first. Picks closer together than a label's vertices may be are one. False, leaving `points` alone,
    /// when the user cancels.
    bool CreateLeader(std::vector<KcGePoint3d>& points);
    /// The same from a start that is known.
    bool CreateLeader(KcGePoint3d start, std::vector<KcGePoint3d>& points);

private:
    QString options(bool canUndo) const;
    bool handle(const QString& keyword);

    bool m_offersKeywords = false;
    int m_type = 1;
    int m_countingType = 1; ///< what the type goes back to when names only is switched off
    int m_option = 0;
};
