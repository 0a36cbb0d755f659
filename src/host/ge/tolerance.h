// The one geometric tolerance. Looser and tighter values are named multiples of it, named for their purpose.
#pragma once

/// Tolerance of comparisons: points in drawing units, vectors as the length of the difference of directions.
struct KcGeTol {
    double equalPoint = 1e-5;
    double equalVector = 1e-9;
};

/// Home of the tolerance that every geometric function uses unless it is handed another.
struct KcGeContext {
    static constexpr KcGeTol gTol {};

    /// Two picks of a label's leader that lie closer than this are one vertex.
    static constexpr double kLabelVertex = 1e4 * gTol.equalPoint;
    /// Ends of curves that lie closer than this are joined.
    static constexpr double kJoinedEnds = 1e3 * gTol.equalPoint;
    /// A last vertex that lies closer than this to the first one closes the outline.
    static constexpr double kClosingVertex = 1e2 * gTol.equalPoint;
};
