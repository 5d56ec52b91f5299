#include <svg/PathBuilder.h>
#include <svg/Writer.h>

#include <wm4/Wm4Math.h>

#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

namespace vk::svg {

namespace {

using V2 = Wm4::Vector2<float>;

// What a number adds to the path data. The writer needs a separator before
// a number unless it starts with a minus sign, so count one. The text is the
// writer's own formatting with the default options, so that the choice
// between absolute and relative forms is made on the text that is finally
// written (with other precisions the saved lengths may differ slightly;
// the builder cannot know them).
std::size_t NumberCost(float value)
{
    const std::string text = floatToSvgNumber(value, SaveOptions());
    return text.size() + ((!text.empty() && text[0] == '-') ? 0 : 1);
}

// The builder never makes an empty polyline, but a host may.
const V2 kOrigin(0.0f, 0.0f);

} // namespace

// Primitives.

PathBuilder::PrimitiveInterface::~PrimitiveInterface() = default;

PathBuilder::Line::Line(const V2& a, const V2& b) : PrimitiveInterface(PrimitiveType::Line), mA(a), mB(b) {}

void PathBuilder::Line::writeAsPath(PathBuilder& builder) const { builder.writeLineTo(getEndPoint()); }

const V2& PathBuilder::Line::getStartPoint() const { return getReversed() ? mB : mA; }

const V2& PathBuilder::Line::getEndPoint() const { return getReversed() ? mA : mB; }

PathBuilder::SegmentList::SegmentList(const std::vector<V2>& points)
    : PrimitiveInterface(PrimitiveType::SegmentList), mPoints(points)
{
}

PathBuilder::SegmentList::SegmentList(std::vector<V2>&& points)
    : PrimitiveInterface(PrimitiveType::SegmentList), mPoints(std::move(points))
{
}

void PathBuilder::SegmentList::writeAsPath(PathBuilder& builder) const
{
    const std::size_t count = mPoints.size();
    if (count < 2)
        return;
    if (getReversed()) {
        for (std::size_t i = count - 1; i-- > 0;)
            builder.writeLineTo(mPoints[i]);
    } else {
        for (std::size_t i = 1; i < count; ++i)
            builder.writeLineTo(mPoints[i]);
    }
}

const V2& PathBuilder::SegmentList::getStartPoint() const
{
    if (mPoints.empty())
        return kOrigin;
    return getReversed() ? mPoints.back() : mPoints.front();
}

const V2& PathBuilder::SegmentList::getEndPoint() const
{
    if (mPoints.empty())
        return kOrigin;
    return getReversed() ? mPoints.front() : mPoints.back();
}

PathBuilder::Ellipse::Ellipse(const V2& center, const V2& radii, float startAngle, float endAngle)
    : PrimitiveInterface(PrimitiveType::Ellipse), mCenter(center), mRadii(radii), mStartAngle(startAngle),
      mEndAngle(endAngle), mFull(std::fabs(endAngle - startAngle) + 0.01f > Wm4::Math<float>::TWO_PI)
{
    if (mFull) {
        mStart = center + V2(radii.X(), 0.0f);
        mEnd = mStart;
    } else {
        mStart = center + V2(radii.X() * std::cos(startAngle), radii.Y() * std::sin(startAngle));
        mEnd = center + V2(radii.X() * std::cos(endAngle), radii.Y() * std::sin(endAngle));
    }
}

void PathBuilder::Ellipse::writeAsPath(PathBuilder& builder) const
{
    if (!mFull) {
        const bool largeArc = mEndAngle - mStartAngle > Wm4::Math<float>::PI;
        builder.writeEllipticalArc(mRadii, 0.0f, largeArc, !getReversed(), getEndPoint());
        return;
    }
    // One arc cannot end where it starts, so the ellipse takes two: a short
    // one to the top and a long one back.
    const float halfPi = Wm4::Math<float>::HALF_PI;
    const V2 top = mCenter + V2(mRadii.X() * std::cos(halfPi), mRadii.Y() * std::sin(halfPi));
    builder.writeEllipticalArc(mRadii, 0.0f, false, true, top);
    builder.writeEllipticalArc(mRadii, 0.0f, true, true, getStartPoint());
}

const V2& PathBuilder::Ellipse::getStartPoint() const { return getReversed() ? mEnd : mStart; }

const V2& PathBuilder::Ellipse::getEndPoint() const { return getReversed() ? mStart : mEnd; }

// The builder.

PathBuilder::PathBuilder() : mCurrentPoint(0.0f, 0.0f) {}

PathBuilder::~PathBuilder() = default;

PathBuilder::PathBuilder(PathBuilder&&) noexcept = default;

PathBuilder& PathBuilder::operator=(PathBuilder&&) noexcept = default;

void PathBuilder::startContour()
{
    if (mContourOpen)
        endContour(true);
    mContourOpen = true;
}

void PathBuilder::endContour(bool reorder)
{
    if (!mContourOpen)
        return;
    mContourOpen = false;
    if (mContour.empty())
        return;
    if (reorder)
        ReorderContourPath(mContour);
    // No move is written when the pen already rests on the contour's start,
    // even if the subpath began elsewhere: hosts rely on the compact output,
    // and a contour that must close on its own start begins with a move of
    // its own when it starts anywhere else.
    const V2 first = mContour.front()->getStartPoint();
    bool continuation = false;
    for (const auto& primitive : mContour) {
        writePrimitive(*primitive, continuation);
        continuation = true;
    }
    appendCommand(PathCommandType::ClosePath, {});
    mCurrentPoint = first;
    mHasCurrentPoint = true;
    mContour.clear();
}

void PathBuilder::cancelContour()
{
    if (!mContourOpen)
        return;
    mContourOpen = false;
    mContour.clear();
}

void PathBuilder::clearBuilder()
{
    mContour.clear();
    mContent.clear();
    mContourOpen = false;
    mPrimitiveInProgress = false;
    // Without commands there is nothing to be relative to, and no move may
    // be skipped.
    mHasCurrentPoint = false;
    mCurrentPoint = V2(0.0f, 0.0f);
}

bool PathBuilder::isEmpty() const { return mContent.empty() && mContour.empty(); }

ItemInterfacePointer<Path> PathBuilder::createPathItem(bool clear)
{
    if (isEmpty())
        return nullptr;
    auto path = std::make_shared<Path>();
    path->editCommands() = mContent;
    if (clear)
        clearBuilder();
    return path;
}

void PathBuilder::appendLine(const V2& a, const V2& b) { appendPrimitive(std::make_unique<Line>(a, b)); }

void PathBuilder::appendEllipse(const V2& center, const V2& radii, float startAngle, float endAngle)
{
    appendPrimitive(std::make_unique<Ellipse>(center, radii, startAngle, endAngle));
}

void PathBuilder::appendRect(const V2& origin, const V2& size)
{
    std::vector<V2> points{origin, origin + V2(size.X(), 0.0f), origin + size, origin + V2(0.0f, size.Y()), origin};
    appendPrimitive(std::make_unique<SegmentList>(std::move(points)));
}

void PathBuilder::appendSegmentListConst(const std::vector<V2>& points)
{
    if (points.size() < 2)
        return;
    appendPrimitive(std::make_unique<SegmentList>(points));
}

void PathBuilder::appendSegmentListMove(std::vector<V2>& points)
{
    if (points.size() < 2)
        return;
    appendPrimitive(std::make_unique<SegmentList>(std::move(points)));
    points.clear(); // taken over, whatever the moved-from state would be
}

void PathBuilder::appendPrimitive(std::unique_ptr<PrimitiveInterface> primitive)
{
    if (mContourOpen) {
        mContour.push_back(std::move(primitive));
        return;
    }
    writePrimitive(*primitive, false);
}

void PathBuilder::writePrimitive(const PrimitiveInterface& primitive, bool continuation)
{
    startPrimitive(continuation, primitive.getStartPoint());
    primitive.writeAsPath(*this);
    endPrimitive(primitive.getEndPoint());
}

void PathBuilder::startPrimitive(bool continuation, const V2& start)
{
    mPrimitiveInProgress = true;
    if (mHasCurrentPoint && mCurrentPoint == start)
        return;
    if (mHasCurrentPoint && continuation)
        writeLineTo(start);
    else
        writeMove(start);
}

void PathBuilder::endPrimitive(const V2& end)
{
    mCurrentPoint = end;
    mHasCurrentPoint = true;
    mPrimitiveInProgress = false;
}

void PathBuilder::writeMove(const V2& point)
{
    if (mHasCurrentPoint) {
        const V2 delta = point - mCurrentPoint;
        if (NumberCost(delta.X()) + NumberCost(delta.Y()) < NumberCost(point.X()) + NumberCost(point.Y())) {
            appendCommand(PathCommandType::MoveToRel, {delta.X(), delta.Y()});
            mCurrentPoint = point;
            return;
        }
    }
    appendCommand(PathCommandType::MoveTo, {point.X(), point.Y()});
    mCurrentPoint = point;
    mHasCurrentPoint = true;
}

void PathBuilder::writeLineTo(const V2& point)
{
    if (mHasCurrentPoint) {
        if (mCurrentPoint.X() == point.X()) {
            writeVLineTo(point.Y());
            return;
        }
        if (mCurrentPoint.Y() == point.Y()) {
            writeHLineTo(point.X());
            return;
        }
        const V2 delta = point - mCurrentPoint;
        if (NumberCost(delta.X()) + NumberCost(delta.Y()) < NumberCost(point.X()) + NumberCost(point.Y())) {
            appendCommand(PathCommandType::LineToRel, {delta.X(), delta.Y()});
            mCurrentPoint = point;
            return;
        }
    }
    appendCommand(PathCommandType::LineTo, {point.X(), point.Y()});
    mCurrentPoint = point;
    mHasCurrentPoint = true;
}

// Without a current point, path data starts from (0, 0): so does the line.
void PathBuilder::writeHLineTo(float x)
{
    if (mHasCurrentPoint) {
        const float delta = x - mCurrentPoint.X();
        if (NumberCost(delta) < NumberCost(x)) {
            appendCommand(PathCommandType::HLineToRel, {delta});
            mCurrentPoint.X() = x;
            return;
        }
    } else {
        mCurrentPoint = V2(0.0f, 0.0f);
    }
    appendCommand(PathCommandType::HLineTo, {x});
    mCurrentPoint.X() = x;
    mHasCurrentPoint = true;
}

void PathBuilder::writeVLineTo(float y)
{
    if (mHasCurrentPoint) {
        const float delta = y - mCurrentPoint.Y();
        if (NumberCost(delta) < NumberCost(y)) {
            appendCommand(PathCommandType::VLineToRel, {delta});
            mCurrentPoint.Y() = y;
            return;
        }
    } else {
        mCurrentPoint = V2(0.0f, 0.0f);
    }
    appendCommand(PathCommandType::VLineTo, {y});
    mCurrentPoint.Y() = y;
    mHasCurrentPoint = true;
}

void PathBuilder::writeEllipticalArc(const V2& radii, float rotation, bool largeArc, bool sweep, const V2& end)
{
    appendCommand(PathCommandType::EllipticalArc,
                  {radii.X(), radii.Y(), rotation, largeArc ? 1.0f : 0.0f, sweep ? 1.0f : 0.0f, end.X(), end.Y()});
    mCurrentPoint = end;
    mHasCurrentPoint = true;
}

void PathBuilder::appendCommand(PathCommandType type, std::vector<float>&& values)
{
    // A named vector picks the constructor that takes the values over.
    mContent.emplace_back(type, values);
}

void PathBuilder::ReorderContourPath(Contour& contour)
{
    if (contour.size() < 2)
        return;
    // Placed primitives are spliced to the back one by one, so the unplaced
    // ones always form the tail [waiting, end) in their original order.
    auto waiting = std::next(contour.begin());
    while (waiting != contour.end()) {
        const V2 end = std::prev(waiting)->get()->getEndPoint();
        float best = 3.4028235e38f;
        auto winner = contour.end();
        bool reverse = false;
        for (auto it = waiting; it != contour.end(); ++it) {
            const float ds = ((*it)->getStartPoint() - end).SquaredLength();
            const float de = ((*it)->getEndPoint() - end).SquaredLength();
            const float score = de < ds ? de : ds;
            if (score < best) {
                best = score;
                winner = it;
                reverse = ds > de;
            }
        }
        if (winner == contour.end()) {
            // Nothing nearer than the largest float (overflowing or NaN
            // distances): keep the list order rather than loop for ever.
            winner = waiting;
            const float ds = ((*winner)->getStartPoint() - end).SquaredLength();
            const float de = ((*winner)->getEndPoint() - end).SquaredLength();
            reverse = ds > de;
        }
        // The flag is read by the distances above, so set it only now.
        (*winner)->editReversed() = reverse;
        if (winner == waiting)
            ++waiting;
        else
            contour.splice(waiting, contour, winner);
    }
}

} // namespace vk::svg
