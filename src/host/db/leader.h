// Leaders: a line or spline with an arrow head that points from a label to what it names.
#pragma once

#include "db/curves.h"

class KcDbLeader : public KcDbCurve {
    KCRX_DECLARE(KcDbLeader)
public:
    struct Data {
        KcDbObjectId dimStyle;
        bool hasArrowHead = true;
        bool isSplined = false;
        int annotationType = 3; ///< 0 text, 1 tolerance, 2 block, 3 none
        int hookLineDirection = 0;
        bool hasHookLine = false;
        double textHeight = 1.0, textWidth = 1.0;
        std::vector<KcGePoint3d> vertices; ///< world coordinates; the first one is the arrow's tip
        int color = 256;
        KcDbObjectId annotation;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        KcGeVector3d horizontal {1, 0, 0};
        KcGeVector3d blockOffset, annotationOffset;
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// Where the line ends that runs on below a text standing above it; nothing for leaders without one.
    std::optional<KcGePoint3d> hookLineEnd() const;

    size_t numVertices() const { return m_data.vertices.size(); }
    void appendVertex(KcGePoint3d point) { m_data.vertices.push_back(point); }
    void setVertexAt(size_t index, KcGePoint3d point) { m_data.vertices[index] = point; }
    void insertVertex(size_t index, KcGePoint3d point);
    /// eInvalidInput when only two vertices are left.
    Kcad::ErrorStatus removeLastVertex();

protected:
    /// The way over the vertices.
    KcGeCurve3d makeCurve() const override;
};
