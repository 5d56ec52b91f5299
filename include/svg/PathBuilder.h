#ifndef VKSVG_PATHBUILDER_H
#define VKSVG_PATHBUILDER_H

#include <svg/Export.h>
#include <svg/Items.h>
#include <svg/PathCommand.h>

#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <list>
#include <memory>
#include <vector>

namespace vk::svg {

/// Assembles a Path item from lines, elliptical arcs, polylines and
/// rectangles instead of path text, writing compact path data: each move and
/// line takes the absolute or relative form by the length of its text,
/// repeated coordinates become horizontal and vertical lines, and a primitive
/// that starts where the previous one ended writes no move.
///
/// Primitives appended while a contour is open wait in the contour; closing
/// it writes them, optionally reordered so that each one starts where the
/// previous one ended, and closes the path. Outside a contour each primitive
/// is written at once.
///
/// Threads: a builder is one thread's object at a time; different builders
/// may run at once on any threads.
class VKSVG_API PathBuilder {
public:
    /// The concrete class of a primitive.
    enum class PrimitiveType : uint32_t {
        Line = 0,
        Ellipse = 1,
        SegmentList = 2,
    };

    /// A piece of a contour. Its start and end swap when it is reversed, and
    /// it then writes itself from its end back to its start.
    class VKSVG_API PrimitiveInterface {
    public:
        virtual ~PrimitiveInterface();

        /// Writes the primitive from its start point (which the caller has
        /// already reached) to its end point.
        virtual void writeAsPath(PathBuilder& builder) const = 0;
        /// Where the primitive starts, taking reversal into account.
        virtual const Wm4::Vector2<float>& getStartPoint() const = 0;
        /// Where the primitive ends, taking reversal into account.
        virtual const Wm4::Vector2<float>& getEndPoint() const = 0;

        /// Which concrete primitive this is.
        PrimitiveType getType() const { return mType; }
        ///@{
        /// Whether the primitive is written from its end back to its start.
        const bool& getReversed() const { return mReversed; }
        bool& editReversed() { return mReversed; }
        ///@}

    protected:
        /// A primitive of the given class, not reversed.
        explicit PrimitiveInterface(PrimitiveType type) : mType(type) {}
        ///@{
        /// Copies the type and the reversal.
        PrimitiveInterface(const PrimitiveInterface&) = default;
        PrimitiveInterface& operator=(const PrimitiveInterface&) = default;
        ///@}

    private:
        PrimitiveType mType;
        bool mReversed = false;
    };

    /// A straight line from a to b.
    class VKSVG_API Line : public PrimitiveInterface {
    public:
        /// A line from `a` to `b`.
        Line(const Wm4::Vector2<float>& a, const Wm4::Vector2<float>& b);

        void writeAsPath(PathBuilder& builder) const override;
        const Wm4::Vector2<float>& getStartPoint() const override;
        const Wm4::Vector2<float>& getEndPoint() const override;

        ///@{
        /// The start point when not reversed.
        const Wm4::Vector2<float>& getA() const { return mA; }
        Wm4::Vector2<float>& editA() { return mA; }
        ///@}
        ///@{
        /// The end point when not reversed.
        const Wm4::Vector2<float>& getB() const { return mB; }
        Wm4::Vector2<float>& editB() { return mB; }
        ///@}

    private:
        Wm4::Vector2<float> mA;
        Wm4::Vector2<float> mB;
    };

    /// A polyline through its points in order. An empty list starts and ends
    /// at (0, 0) and writes nothing; the builder never makes one.
    class VKSVG_API SegmentList : public PrimitiveInterface {
    public:
        ///@{
        /// A polyline through `points`, copied or moved in.
        explicit SegmentList(const std::vector<Wm4::Vector2<float>>& points);
        explicit SegmentList(std::vector<Wm4::Vector2<float>>&& points);
        ///@}

        void writeAsPath(PathBuilder& builder) const override;
        const Wm4::Vector2<float>& getStartPoint() const override;
        const Wm4::Vector2<float>& getEndPoint() const override;

        ///@{
        /// The points of the polyline, in order.
        const std::vector<Wm4::Vector2<float>>& getPoints() const { return mPoints; }
        std::vector<Wm4::Vector2<float>>& editPoints() { return mPoints; }
        ///@}

    private:
        std::vector<Wm4::Vector2<float>> mPoints;
    };

    /// An axis-aligned elliptical arc from startAngle to endAngle (radians),
    /// or the whole ellipse when the two are a full turn apart (within 0.01).
    /// The end points are worked out once, so the fields are read-only.
    class VKSVG_API Ellipse : public PrimitiveInterface {
    public:
        /// The arc of the ellipse around `center` with `radii` from `startAngle` to
        /// `endAngle` (radians).
        Ellipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float startAngle, float endAngle);

        void writeAsPath(PathBuilder& builder) const override;
        const Wm4::Vector2<float>& getStartPoint() const override;
        const Wm4::Vector2<float>& getEndPoint() const override;

        /// The centre of the ellipse.
        const Wm4::Vector2<float>& getCenter() const { return mCenter; }
        /// The radii along x and y.
        const Wm4::Vector2<float>& getRadii() const { return mRadii; }
        /// The start angle in radians.
        const float& getStartAngle() const { return mStartAngle; }
        /// The end angle in radians.
        const float& getEndAngle() const { return mEndAngle; }
        /// Whether the arc is the whole ellipse.
        const bool& getFull() const { return mFull; }

    private:
        Wm4::Vector2<float> mCenter;
        Wm4::Vector2<float> mRadii;
        float mStartAngle;
        float mEndAngle;
        bool mFull;
        Wm4::Vector2<float> mStart; // at angle 0 for a full ellipse
        Wm4::Vector2<float> mEnd;
    };

    /// The owned primitives of one contour, in order.
    using Contour = std::list<std::unique_ptr<PrimitiveInterface>>;

    /// An empty builder: no commands, no contour, no current point.
    PathBuilder();
    ~PathBuilder();
    /// The builder owns its primitives: it can be moved but not copied.
    ///@{
    PathBuilder(const PathBuilder&) = delete;
    PathBuilder& operator=(const PathBuilder&) = delete;
    PathBuilder(PathBuilder&&) noexcept;
    PathBuilder& operator=(PathBuilder&&) noexcept;
    ///@}

    /// @name Contour control
    ///@{

    /// Opens a contour, first ending (with reordering) one that is open.
    void startContour();
    /// Writes the open contour, reordered when asked, and closes the path.
    /// An empty contour writes nothing. Its first primitive is written like
    /// any other, so no move is written when the pen already rests on its
    /// start; its first point is the current point afterwards.
    void endContour(bool reorder);
    /// Drops the open contour without writing anything.
    void cancelContour();
    /// Forgets everything: commands, the open contour and the current point.
    void clearBuilder();
    /// No commands written and no primitive waiting in a contour.
    bool isEmpty() const;
    /// The commands written so far.
    const std::list<PathCommand>& getContent() const { return mContent; }
    /// A new Path holding the written commands, or null when the builder is
    /// empty. Primitives still waiting in an open contour are not included.
    ItemInterfacePointer<Path> createPathItem(bool clear);

    /// Whether a contour is open, between startContour and endContour.
    bool isContourOpen() const { return mContourOpen; }
    /// The primitives waiting in the open contour.
    const Contour& getContour() const { return mContour; }
    /// Between startPrimitive and endPrimitive.
    bool isPrimitiveInProgress() const { return mPrimitiveInProgress; }
    /// Whether a command has been written since the builder was last cleared.
    bool hasCurrentPoint() const { return mHasCurrentPoint; }
    /// Where the pen rests; meaningful only when hasCurrentPoint().
    const Wm4::Vector2<float>& getCurrentPoint() const { return mCurrentPoint; }
    ///@}

    /// @name Appending
    /// Into the open contour, or written at once when none is open.
    ///@{

    /// A line from `a` to `b`.
    void appendLine(const Wm4::Vector2<float>& a, const Wm4::Vector2<float>& b);
    /// An axis-aligned elliptical arc, or the whole ellipse; see Ellipse.
    void appendEllipse(const Wm4::Vector2<float>& center, const Wm4::Vector2<float>& radii, float startAngle,
                       float endAngle);
    /// The closed polyline origin, +(w, 0), +(w, h), +(0, h), origin.
    void appendRect(const Wm4::Vector2<float>& origin, const Wm4::Vector2<float>& size);
    /// Polylines of fewer than two points are ignored. The first copies the
    /// points, the second takes the vector over (and leaves it alone when
    /// ignoring it).
    void appendSegmentListConst(const std::vector<Wm4::Vector2<float>>& points);
    /// As appendSegmentListConst, but taking the vector over.
    void appendSegmentListMove(std::vector<Wm4::Vector2<float>>& points);
    ///@}

    /// @name Writing
    /// Each writer appends one command (or none) and makes its end
    /// point the current point.
    ///@{

    /// Reaches `start`: nothing when the current point is exactly there, a
    /// line when continuing a contour, a move otherwise.
    void startPrimitive(bool continuation, const Wm4::Vector2<float>& start);
    /// Makes `end` the current point after a primitive has written itself.
    void endPrimitive(const Wm4::Vector2<float>& end);
    /// A move to `point`, absolute or relative, whichever is shorter.
    void writeMove(const Wm4::Vector2<float>& point);
    /// Becomes a vertical or horizontal line when a coordinate repeats exactly.
    void writeLineTo(const Wm4::Vector2<float>& point);
    /// A horizontal line to `x`, absolute or relative, whichever is shorter.
    void writeHLineTo(float x);
    /// A vertical line to `y`, absolute or relative, whichever is shorter.
    void writeVLineTo(float y);
    /// Always absolute: arcs are rare enough that their size does not matter.
    void writeEllipticalArc(const Wm4::Vector2<float>& radii, float rotation, bool largeArc, bool sweep,
                            const Wm4::Vector2<float>& end);
    ///@}

    /// Greedy chaining: the first primitive stays first; then, again and
    /// again, the waiting primitive with an end nearest to the end of the
    /// last placed one follows it, reversed when its end is the nearer one.
    /// Of equally near candidates the earlier one wins.
    static void ReorderContourPath(Contour& contour);

private:
    void appendPrimitive(std::unique_ptr<PrimitiveInterface> primitive);
    void writePrimitive(const PrimitiveInterface& primitive, bool continuation);
    void appendCommand(PathCommandType type, std::vector<float>&& values);

    Contour mContour;
    Wm4::Vector2<float> mCurrentPoint;
    bool mHasCurrentPoint = false;
    std::list<PathCommand> mContent;
    bool mContourOpen = false;
    bool mPrimitiveInProgress = false;
};

} // namespace vk::svg

#endif
