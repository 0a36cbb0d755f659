// Smooth curves of space that segments and curves are pieces of: ellipses and B-splines. What costs time to
// find out (lengths, boxes) is worked out once for each and shared by all its pieces.
#pragma once

#include "ge/box_tree.h"
#include "ge/ellipse.h"
#include "ge/spline.h"

#include <memory>
#include <mutex>
#include <optional>
#include <vector>

/// A curve given by a point for every value of a parameter, in one or more stretches without a break in any
/// derivative. Immutable; may be used by several threads. Lengths in drawing units.
class KcGeCarrier3d {
public:
    virtual ~KcGeCarrier3d() = default;
    KcGeCarrier3d(const KcGeCarrier3d&) = delete;
    KcGeCarrier3d& operator=(const KcGeCarrier3d&) = delete;

    /// A whole ellipse, the sweep left out of account; the parameter is the anomaly, of which any value will
    /// do. Null when a value is not finite.
    static std::shared_ptr<const KcGeCarrier3d> ellipse(const KcGeEllipArc3d& arc);
    /// The parameter is the knot value. Null when the curve is not valid.
    static std::shared_ptr<const KcGeCarrier3d> spline(KcGeNurbsCurve3d curve);

    struct Jet {
        KcGePoint3d point;
        KcGeVector3d first, second; ///< derivatives after the parameter
    };
    virtual Jet at(double u) const = 0;
    virtual KcGePoint3d pointAt(double u) const = 0;
    virtual KcGeVector3d firstAt(double u) const = 0;

    virtual const KcGeEllipArc3d* asEllipse() const { return nullptr; }
    virtual const KcGeNurbsCurve3d* asSpline() const { return nullptr; }
    /// The parameter's step after which the curve repeats itself; 0 when it does not.
    virtual double period() const { return 0.0; }
    /// The values at which the stretches meet, ends included: of a curve with a period, those of one turn.
    const std::vector<double>& breaks() const { return m_breaks; }

    /// Signed length from one parameter to another, 1e-9 of the whole or better.
    double lengthBetween(double from, double to) const;
    /// The parameter that lies a signed length behind another one; the curve's end when the length leads
    /// beyond it.
    double paramAtLength(double from, double length) const;
    /// The parameter in [low, high] whose point is nearest.
    double closest(KcGePoint3d point, double low, double high) const;
    /// The parameters inside [low, high] at which the curve turns back in a direction, ascending.
    std::vector<double> turningParams(KcGeVector3d direction, double low, double high) const;
    /// The box of a stretch, not wider than the curve by more than the tolerance.
    virtual KcGeExtents3d extents(double low, double high) const = 0;
    /// Points from one parameter to the other, both included, whose chords stay within `sagitta` of the
    /// curve.
    virtual std::vector<KcGePoint3d> chords(double from, double to, double sagitta) const = 0;
    /// The image under an affine transform, with the same parameters; null when it is not finite.
    virtual std::shared_ptr<const KcGeCarrier3d> transformed(const KcGeMatrix3d& matrix) const = 0;

protected:
    KcGeCarrier3d() = default;
    /// Points of the rule of quadrature.
    static constexpr int kRulePoints = 8;
    /// The lengths of the derivative at parameters of one stretch.
    virtual void speedsAt(const double (&params)[kRulePoints], double (&speeds)[kRulePoints]) const;
    std::vector<double> m_breaks;

private:
    /// The start of a stretch over which a quadrature of fixed order is as good as doubles allow.
    struct Leaf {
        double param = 0.0;
        double length = 0.0; ///< from the first break
        double startSpeed = 0.0, endSpeed = 0.0;
    };
    struct Table {
        std::vector<Leaf> leaves; ///< and one behind the last, for the end
        KcGeBoxTree boxes; ///< of the leaves
    };
    const Table& table() const;
    void addLeaves(Table& table, double low, double high, double length, double accuracy, int depth) const;
    double quadrature(double low, double high) const;
    /// Whole periods, and the leaf that holds what is left of a parameter.
    struct Place {
        double turns = 0.0, param = 0.0;
        size_t leaf = 0;
    };
    Place placeOf(double u) const;
    double lengthInLeaf(size_t leaf, double from, double to) const;
    /// The parameter at a length from `low`, where the way to `high` in the same leaf has the length `span`.
    double paramInLeaf(size_t leaf, double low, double high, double span, double wanted) const;
    void closestInLeaf(KcGePoint3d point, double low, double high, double& best, double& param) const;

    mutable std::once_flag m_once;
    mutable std::unique_ptr<const Table> m_table;
};
