// The base of everything that has a length: the host's curve operations, answered by geometry.
#pragma once

#include "db/entity.h"
#include "ge/curve.h"

/// Parameters are those of `KcGeCurve3d`. Points, vectors and distances are in world coordinates and drawing
/// units.
///
/// The operations return eOk, or, with their results untouched: eDegenerateGeometry when the entity's values
/// make no curve (too few vertices, no number, a radius below 0, a mesh), eNotApplicable when this kind of
/// curve has no answer (the end of a line without ends), eInvalidInput when the value asked about lies
/// outside the curve.
class KcDbCurve : public KcDbEntity {
public:
    static const KcRxClass* desc();

    /// The curve as geometry; empty when the values make none. What asks many questions of one curve asks for
    /// this once. (Asking the entity again and again is not much worse, while nothing else is asked in
    /// between: the last conversion is kept as long as the values stay the same.)
    KcGeCurve3d curve() const;

    Kcad::ErrorStatus getStartParam(double& param) const;
    Kcad::ErrorStatus getEndParam(double& param) const;
    Kcad::ErrorStatus getStartPoint(KcGePoint3d& point) const;
    Kcad::ErrorStatus getEndPoint(KcGePoint3d& point) const;
    Kcad::ErrorStatus getPointAtParam(double param, KcGePoint3d& point) const;
    Kcad::ErrorStatus getPointAtDist(double distance, KcGePoint3d& point) const;
    Kcad::ErrorStatus getParamAtDist(double distance, double& param) const;
    Kcad::ErrorStatus getDistAtParam(double param, double& distance) const;
    /// eInvalidInput also when the point lies off the curve by more than the tolerance.
    Kcad::ErrorStatus getParamAtPoint(KcGePoint3d point, double& param) const;
    Kcad::ErrorStatus getDistAtPoint(KcGePoint3d point, double& distance) const;
    Kcad::ErrorStatus getFirstDeriv(double param, KcGeVector3d& derivative) const;
    Kcad::ErrorStatus getFirstDeriv(KcGePoint3d point, KcGeVector3d& derivative) const;
    Kcad::ErrorStatus getSecondDeriv(double param, KcGeVector3d& derivative) const;
    Kcad::ErrorStatus getSecondDeriv(KcGePoint3d point, KcGeVector3d& derivative) const;
    /// With `extend`, open curves go on beyond their ends as `KcGeCurve3d::closestExtended` says.
    Kcad::ErrorStatus getClosestPointTo(KcGePoint3d point, KcGePoint3d& onCurve, bool extend = false) const;
    /// Not negative; an open curve is closed by a line. eNotApplicable for curves that lie in no plane.
    Kcad::ErrorStatus getArea(double& area) const;

    /// A polyline: as marked. Any other curve: when its ends meet.
    virtual bool isClosed() const { return curve().isClosed(); }
    bool isPlanar() const { return curve().isPlanar(); }

    using Curves = std::vector<std::unique_ptr<KcDbCurve>>;
    // New curves belong to no drawing and take layer, colour and line type from this one. A part of a
    // polyline in space comes as a spline of degree 1, for such a polyline's vertices must be in a drawing.
    // Widths that vary along a polyline are lost.

    /// The parts between parameters, in the curve's order; a closed curve falls into as many as there are
    /// parameters. eInvalidInput when one lies outside the curve.
    Kcad::ErrorStatus getSplitCurves(const std::vector<double>& params, Curves& parts) const;
    /// The same at points, each of which must lie on the curve within the tolerance. A point where the curve
    /// meets itself cuts one of the branches.
    Kcad::ErrorStatus getSplitCurves(const std::vector<KcGePoint3d>& points, Curves& parts) const;
    /// The pieces of a polyline as lines and arcs. eNotApplicable for other kinds.
    Kcad::ErrorStatus explode(Curves& pieces) const;
    /// The parallels at a signed distance, seen against the curve's normal (`offsetCurve`): negative distances
    /// lead to the left of the curve's direction, so that positive ones make arcs and circles larger; of a
    /// line, with or without ends, negative ones lead to the right. There may be several parallels, or none,
    /// which is no failure. eNotApplicable for curves of no plane, eInvalidInput when the distance is no finite
    /// number.
    Kcad::ErrorStatus getOffsetCurves(double distance, Curves& curves) const;
    /// The same points from end to start. eNotApplicable for circles, arcs and rays, which have one direction
    /// only.
    virtual Kcad::ErrorStatus reverseCurve() { return Kcad::eNotApplicable; }

protected:
    KcDbCurve() = default;
    KcDbCurve(const KcDbCurve&) = default;
    /// The conversion itself; empty when the values make no curve.
    virtual KcGeCurve3d makeCurve() const { return {}; }
    /// True when another curve of the same class has the same values, as far as the object alone tells.
    virtual bool hasValuesOf(const KcDbCurve&) const { return false; }

private:
    template <class Value, class Answer> Kcad::ErrorStatus answer(Value& value, Answer ask) const;
    KcDbCurve::Curves entitiesOf(const std::vector<KcGeCurve3d>& curves) const;
};

/// The curve as an entity: a line, ray, infinite line, circle, arc, ellipse, spline, or a lightweight
/// polyline where it is a chain of lines and arcs in a plane; a spline of degree 1 for a polyline in space.
/// Null for an empty curve, and for chains that hold pieces of other kinds: explode those. It belongs to no
/// drawing and has default properties.
std::unique_ptr<KcDbCurve> kcdbCurveFrom(const KcGeCurve3d& curve);

/// Inside a class of curves with plain values: the conversion to geometry.
#define KCDB_CURVE(Class)                                                                                    \
protected:                                                                                                   \
    KcGeCurve3d makeCurve() const override;                                                                  \
    bool hasValuesOf(const KcDbCurve& other) const override                                                  \
    {                                                                                                        \
        return m_data == static_cast<const Class&>(other).m_data;                                            \
    }                                                                                                        \
                                                                                                             \
public:
