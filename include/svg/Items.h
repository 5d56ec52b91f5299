#ifndef VKSVG_ITEMS_H
#define VKSVG_ITEMS_H

#include <svg/BoundingBox.h>
#include <svg/Export.h>
#include <svg/Options.h>
#include <svg/PathCommand.h>
#include <svg/RenderingProperties.h>
#include <svg/UnitValue.h>

#include <wm4/Wm4Matrix3.h>
#include <wm4/Wm4Vector2.h>

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace vk::xml {
class XmlSaveContext;
}

namespace vk::svg {

/// The concrete class of an item. Code that walks a tree switches on it and
/// casts statically; values outside 0 to 7 are unknown items and skipped.
enum class ItemType : uint32_t {
    Document = 0, ///< written as "svg"
    Node = 1,     ///< "g"
    Line = 2,
    Rect = 3,
    Circle = 4,
    Path = 5,
    Text = 6,
    Image = 7,
};

/// The alignment of an image's preserveAspectRatio attribute; meet or slice
/// is not kept.
enum class PreserveAspectRatio : uint32_t {
    None = 0,
    XMinYMin = 1,
    XMidYMin = 2,
    XMaxYMin = 3,
    XMinYMid = 4,
    XMidYMid = 5,
    XMaxYMid = 6,
    XMinYMax = 7,
    XMidYMax = 8,
    XMaxYMax = 9,
};

/// The library's shared owning pointer to an item of class T: a
/// `std::shared_ptr<T>` in every respect, usable wherever one is expected.
template <class T> class ItemInterfacePointer : public std::shared_ptr<T> {
public:
    using std::shared_ptr<T>::shared_ptr;
    ItemInterfacePointer() noexcept = default;
    /// Takes over `pointer`, so that a plain shared pointer converts implicitly.
    ItemInterfacePointer(std::shared_ptr<T> pointer) noexcept : std::shared_ptr<T>(std::move(pointer)) {}
};

class Document;

/// The base of every item: its type, own transform, id and presentation
/// attributes, and the hooks through which it writes itself and reports its
/// extent.
///
/// Threads: items have no locks and share nothing but their children
/// (through shared pointers). Any number of threads may read one tree at once
/// (const calls: accessors, copies, writing, segmentation, bounding boxes);
/// a thread that changes a tree (edit accessors, addChild, assignment) must
/// be the only one using that tree. Different trees are independent.
class VKSVG_API ItemInterface {
public:
    virtual ~ItemInterface();

    /// Closes the element that beginWriteAsXml opened.
    virtual bool endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const;
    /// Sets `box` to the item's own extent under `matrix` (children are not
    /// included) and returns whether it has one.
    virtual bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const = 0;
    /// Starts the element and writes the item's own attributes.
    virtual bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const = 0;
    /// Writes what follows the common attributes; nothing by default.
    virtual bool beginWriteAsXmlImplPost(vk::xml::XmlSaveContext& context, const SaveOptions& options) const;

    /// Opens the element and writes all its attributes: the item's own, then
    /// "id", the presentation attributes, "transform", then the Post hook.
    bool beginWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const;

    /// The concrete class of the item, fixed at construction.
    ItemType getType() const { return mType; }

    ///@{
    /// The item's own transform, mapping its coordinates into its parent's.
    const std::optional<Wm4::Matrix3<float>>& getTransform() const { return mTransform; }
    std::optional<Wm4::Matrix3<float>>& editTransform() { return mTransform; }
    ///@}
    ///@{
    /// The SVG id attribute; unset when the item has none.
    const std::optional<std::string>& getId() const { return mId; }
    std::optional<std::string>& editId() { return mId; }
    ///@}
    ///@{
    /// The item's own presentation attributes, before any cascade from its parents.
    const RenderingProperties& getRenderingProperties() const { return mRenderingProperties; }
    RenderingProperties& editRenderingProperties() { return mRenderingProperties; }
    ///@}

protected:
    /// An item of the given class, with no transform, no id and no properties set.
    explicit ItemInterface(ItemType type);
    /// Copies the type, transform, id and properties.
    ItemInterface(const ItemInterface& other);
    /// Assigns everything but the type, which never changes.
    ItemInterface& operator=(const ItemInterface& other);

private:
    ItemType mType;
    std::optional<Wm4::Matrix3<float>> mTransform;
    std::optional<std::string> mId;
    RenderingProperties mRenderingProperties;
};

/// A group: an item that owns an ordered list of children.
class VKSVG_API Node : public ItemInterface {
public:
    /// The owning list of children.
    using Children = std::list<std::shared_ptr<ItemInterface>>;

    /// An empty group.
    Node();
    /// An empty group of the given type; Document uses it.
    explicit Node(ItemType type);
    ///@{
    /// Deep copy: every child is copied; null children, documents and items of
    /// unknown type are left out.
    Node(const Node& other);
    Node& operator=(const Node& other);
    ///@}

    ///@{
    /// The children in document order. Entries may be null and an item may sit
    /// under several parents; nothing checks for cycles, so never make one.
    const Children& getChildren() const { return mChildren; }
    Children& editChildren() { return mChildren; }
    ///@}

    /// Adds a child at the end or the front; null is ignored. A Document can
    /// never be a child: for it this member does not exist.
    ///@{
    template <class T,
              std::enable_if_t<std::is_base_of_v<ItemInterface, T> && !std::is_base_of_v<Document, T>, int> = 0>
    void addChild(const ItemInterfacePointer<T>& child, bool atEnd)
    {
        insertChild(child, atEnd);
    }
    template <class T,
              std::enable_if_t<std::is_base_of_v<ItemInterface, T> && !std::is_base_of_v<Document, T>, int> = 0>
    void addChild(const std::shared_ptr<T>& child, bool atEnd)
    {
        insertChild(child, atEnd);
    }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

    /// Starts an element of the given name: "g" for a group, "svg" for a document.
    bool beginWriteAsXmlNodeWithName(vk::xml::XmlSaveContext& context, const char* name) const;

private:
    void insertChild(std::shared_ptr<ItemInterface> child, bool atEnd);
    void copyChildrenFrom(const Node& other);

    Children mChildren;
};

/// The root of a drawing: a group with an optional viewBox and style sheet.
class VKSVG_API Document : public Node {
public:
    /// An empty document: no children, no viewBox, no style sheet.
    Document();
    ///@{
    /// Deep copy of the children as for Node, then viewBox and style sheet.
    Document(const Document& other);
    Document& operator=(const Document& other);
    ///@}

    ///@{
    /// The minimum corner is the viewBox origin, the maximum corner the origin
    /// plus width and height.
    const std::optional<BoundingBox>& getViewbox() const { return mViewbox; }
    std::optional<BoundingBox>& editViewbox() { return mViewbox; }
    ///@}
    ///@{
    /// The text of the embedded style sheet.
    const std::optional<std::string>& getStyle() const { return mStyle; }
    std::optional<std::string>& editStyle() { return mStyle; }
    ///@}

    /// Sets the viewBox to the estimated extent of the content, whatever it
    /// is: an empty document gets the invalid default box.
    void computeEstimatedViewboxFromContent();

    bool endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;
    bool beginWriteAsXmlImplPost(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    std::optional<BoundingBox> mViewbox;
    std::optional<std::string> mStyle;
};

/// A straight line from a start to an end point.
class VKSVG_API Line : public ItemInterface {
public:
    /// A line from `start` to `end`.
    Line(const Wm4::Vector2<float>& start, const Wm4::Vector2<float>& end);
    ///@{
    /// Copies every field.
    Line(const Line& other) = default;
    Line& operator=(const Line& other) = default;
    ///@}

    ///@{
    /// The start point (x1, y1).
    const Wm4::Vector2<float>& getStart() const { return mStart; }
    Wm4::Vector2<float>& editStart() { return mStart; }
    ///@}
    ///@{
    /// The end point (x2, y2).
    const Wm4::Vector2<float>& getEnd() const { return mEnd; }
    Wm4::Vector2<float>& editEnd() { return mEnd; }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    Wm4::Vector2<float> mStart;
    Wm4::Vector2<float> mEnd;
};

/// An axis-aligned rectangle (in its own coordinates).
class VKSVG_API Rect : public ItemInterface {
public:
    /// The corner radii start at (0, 0).
    Rect(const Wm4::Vector2<float>& position, const Wm4::Vector2<float>& size);
    ///@{
    /// Copies every field.
    Rect(const Rect& other) = default;
    Rect& operator=(const Rect& other) = default;
    ///@}

    ///@{
    /// The corner (x, y) that the size extends from.
    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    Wm4::Vector2<float>& editPosition() { return mPosition; }
    ///@}
    ///@{
    /// The width and height, stored as given (a negative size is not corrected).
    const Wm4::Vector2<float>& getSize() const { return mSize; }
    Wm4::Vector2<float>& editSize() { return mSize; }
    ///@}
    ///@{
    /// The corner radii (rx, ry); kept and written, but segmentation ignores them.
    const Wm4::Vector2<float>& getRadius() const { return mRadius; }
    Wm4::Vector2<float>& editRadius() { return mRadius; }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    Wm4::Vector2<float> mPosition;
    Wm4::Vector2<float> mSize;
    Wm4::Vector2<float> mRadius;
};

/// A circle given by centre and radius.
class VKSVG_API Circle : public ItemInterface {
public:
    /// A circle around `center`; the radius is stored as given.
    Circle(const Wm4::Vector2<float>& center, float radius);
    ///@{
    /// Copies every field.
    Circle(const Circle& other) = default;
    Circle& operator=(const Circle& other) = default;
    ///@}

    ///@{
    /// The centre (cx, cy).
    const Wm4::Vector2<float>& getCenter() const { return mCenter; }
    Wm4::Vector2<float>& editCenter() { return mCenter; }
    ///@}
    ///@{
    /// The radius r, stored as given.
    const float& getRadius() const { return mRadius; }
    float& editRadius() { return mRadius; }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    Wm4::Vector2<float> mCenter;
    float mRadius;
};

/// A path: its drawing commands as written in path data, relative commands
/// and implicit repetitions split apart but otherwise unchanged.
class VKSVG_API Path : public ItemInterface {
public:
    /// The kind of a path command.
    using CommandType = PathCommandType;
    /// One path command with its numbers.
    using Command = PathCommand;

    /// A path without commands.
    Path();
    ///@{
    /// Copies every field.
    Path(const Path& other) = default;
    Path& operator=(const Path& other) = default;
    ///@}

    ///@{
    /// The drawing commands in drawing order.
    const std::list<Command>& getCommands() const { return mCommands; }
    std::list<Command>& editCommands() { return mCommands; }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    std::list<Command> mCommands;
};

/// A run of text at a position, with its font attributes.
class VKSVG_API Text : public ItemInterface {
public:
    /// Text with the given position and content and no font attribute set.
    Text(const Wm4::Vector2<float>& position, const std::string& content);
    ///@{
    /// Copies every field.
    Text(const Text& other) = default;
    Text& operator=(const Text& other) = default;
    ///@}

    ///@{
    /// The anchor point (x, y) of the text.
    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    Wm4::Vector2<float>& editPosition() { return mPosition; }
    ///@}
    ///@{
    /// The character data exactly as read (UTF-8); see ApplySvgXMLSpaceDefault.
    const std::string& getContent() const { return mContent; }
    std::string& editContent() { return mContent; }
    ///@}
    ///@{
    /// True for xml:space="preserve", false for "default".
    const std::optional<bool>& getXmlSpacePreserve() const { return mXmlSpacePreserve; }
    std::optional<bool>& editXmlSpacePreserve() { return mXmlSpacePreserve; }
    ///@}
    ///@{
    /// The font-family text as written.
    const std::optional<std::string>& getFontFamily() const { return mFontFamily; }
    std::optional<std::string>& editFontFamily() { return mFontFamily; }
    ///@}
    ///@{
    /// The textLength attribute with its unit.
    const std::optional<UnitValue>& getTextLength() const { return mTextLength; }
    std::optional<UnitValue>& editTextLength() { return mTextLength; }
    ///@}
    ///@{
    /// True when font-weight is "bold"; false writes nothing.
    const std::optional<bool>& getBold() const { return mBold; }
    std::optional<bool>& editBold() { return mBold; }
    ///@}
    ///@{
    /// True when font-style is "italic"; false writes nothing.
    const std::optional<bool>& getItalic() const { return mItalic; }
    std::optional<bool>& editItalic() { return mItalic; }
    ///@}
    ///@{
    /// True when text-decoration is "underline"; false writes nothing.
    const std::optional<bool>& getUnderline() const { return mUnderline; }
    std::optional<bool>& editUnderline() { return mUnderline; }
    ///@}
    ///@{
    /// The font-size as a plain number.
    const std::optional<float>& getFontSize() const { return mFontSize; }
    std::optional<float>& editFontSize() { return mFontSize; }
    ///@}

    /// Writes the character content before closing the element.
    bool endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;
    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    Wm4::Vector2<float> mPosition;
    std::string mContent;
    std::optional<bool> mXmlSpacePreserve;
    std::optional<std::string> mFontFamily;
    std::optional<UnitValue> mTextLength;
    std::optional<bool> mBold;
    std::optional<bool> mItalic;
    std::optional<bool> mUnderline;
    std::optional<float> mFontSize;
};

/// A referenced raster image placed in a viewport.
class VKSVG_API Image : public ItemInterface {
public:
    /// At (0, 0) with size (0, 0), no reference and no aspect-ratio rule.
    Image();
    ///@{
    /// Copies every field.
    Image(const Image& other) = default;
    Image& operator=(const Image& other) = default;
    ///@}

    ///@{
    /// The corner (x, y) of the image's viewport.
    const Wm4::Vector2<float>& getPosition() const { return mPosition; }
    Wm4::Vector2<float>& editPosition() { return mPosition; }
    ///@}
    ///@{
    /// The width and height of the image's viewport.
    const Wm4::Vector2<float>& getSize() const { return mSize; }
    Wm4::Vector2<float>& editSize() { return mSize; }
    ///@}
    ///@{
    /// The reference to the image data (a file name or data URI), as written.
    const std::string& getHref() const { return mHref; }
    std::string& editHref() { return mHref; }
    ///@}
    ///@{
    /// The alignment of the preserveAspectRatio attribute; unset when absent.
    const std::optional<PreserveAspectRatio>& getPreserveAspectRatio() const { return mPreserveAspectRatio; }
    std::optional<PreserveAspectRatio>& editPreserveAspectRatio() { return mPreserveAspectRatio; }
    ///@}

    bool computeEstimatedBoundingVolume(BoundingBox& box, const Wm4::Matrix3<float>& matrix) const override;
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const override;

private:
    Wm4::Vector2<float> mPosition;
    Wm4::Vector2<float> mSize;
    std::string mHref;
    std::optional<PreserveAspectRatio> mPreserveAspectRatio;
};

} // namespace vk::svg

#endif
