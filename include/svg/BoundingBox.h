#ifndef VKSVG_BOUNDINGBOX_H
#define VKSVG_BOUNDINGBOX_H

#include <svg/Export.h>

#include <wm4/Wm4Vector2.h>

namespace vk::svg {

/// Axis-aligned 2D box, used for viewBoxes and bounding-box estimation.
///
/// Threads: a plain value with no shared state; one box may be read from
/// several threads at once, but not read while another thread changes it.
class VKSVG_API BoundingBox {
public:
    /// The invalid box (1, 1)-(-1, -1). Small finite corners rather than
    /// infinities: expanding and margins rely on these exact values.
    BoundingBox();
    /// The box from `minPoint` to `maxPoint`, taken as given (valid or not).
    BoundingBox(const Wm4::Vector2<float>& minPoint, const Wm4::Vector2<float>& maxPoint);

    /// True when max >= min on both axes; a NaN anywhere makes the box invalid.
    bool isValid() const;

    /// An invalid box becomes a copy of `other`, valid or not. A valid box
    /// merges with `other`'s corners without asking whether `other` is valid,
    /// so callers holding possibly invalid boxes test isValid first.
    void expandToContain(const BoundingBox& other);
    /// An invalid box collapses onto `point`; a valid one grows to include it.
    void expandToContain(const Wm4::Vector2<float>& point);

    /// Moves min down and max up by `margin`; a negative margin shrinks the box.
    void addMargin(const Wm4::Vector2<float>& margin);
    /// Moves both corners by `offset`.
    void translate(const Wm4::Vector2<float>& offset);

    /// The minimum corner.
    Wm4::Vector2<float> getMinPoint() const;
    /// The maximum corner.
    Wm4::Vector2<float> getMaxPoint() const;
    /// max - min, negative for an invalid box.
    Wm4::Vector2<float> getSize() const;
    /// The middle of the two corners.
    Wm4::Vector2<float> getCenterPoint() const;
    /// max.x - min.x, negative for an invalid box.
    float getWidth() const;
    /// max.y - min.y, negative for an invalid box.
    float getHeight() const;

private:
    Wm4::Vector2<float> mMinPoint;
    Wm4::Vector2<float> mMaxPoint;
};

///@{
/// Exact comparison of the corner coordinates, component by component.
VKSVG_API bool operator==(const BoundingBox& a, const BoundingBox& b);
VKSVG_API bool operator!=(const BoundingBox& a, const BoundingBox& b);
///@}

} // namespace vk::svg

#endif
