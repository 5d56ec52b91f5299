#include <svg/Items.h>
#include <svg/Writer.h>

#include "save/WriterFailure.h"

#include <vkSystem/vkStringUtils.h>
#include <vkXml/XmlSaveContext.h>

#include <climits>

namespace vk::svg {

namespace {

bool startElement(vk::xml::XmlSaveContext& context, const char* name, const char* failure)
{
    if (xmlTextWriterStartElement(context.getWriter(), BAD_CAST name) < 0)
        return impl::Fail(context, WriteErrorElementStart, failure);
    return true;
}

// Geometry that defaults to 0 is left out at 0; NaN compares unequal and so
// is written.
bool writeIfNonZero(vk::xml::XmlSaveContext& context, const SaveOptions& options, const char* name, float value)
{
    return value == 0.0f || Helpers::writeAttributeFloatValue(context, options, name, value);
}

bool writeIfTrue(vk::xml::XmlSaveContext& context, const SaveOptions& options, const std::optional<bool>& flag,
                 const char* name, const char* value)
{
    return !(flag && *flag) || Helpers::writeAttributeString(context, options, name, value);
}

const char* aspectRatioKeyword(PreserveAspectRatio value)
{
    static const char* const keywords[] = {"xMinYMin", "xMidYMin", "xMaxYMin", "xMinYMid", "xMidYMid",
                                           "xMaxYMid", "xMinYMax", "xMidYMax", "xMaxYMax"};
    const auto index = static_cast<uint32_t>(value);
    return index >= 1 && index <= 9 ? keywords[index - 1] : "none";
}

} // namespace

bool Line::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    return startElement(context, "line", "Line failed begin") && writeIfNonZero(context, options, "x1", mStart.X()) &&
           writeIfNonZero(context, options, "y1", mStart.Y()) && writeIfNonZero(context, options, "x2", mEnd.X()) &&
           writeIfNonZero(context, options, "y2", mEnd.Y());
}

bool Rect::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    return startElement(context, "rect", "Rect failed begin") && writeIfNonZero(context, options, "x", mPosition.X()) &&
           writeIfNonZero(context, options, "y", mPosition.Y()) &&
           Helpers::writeAttributeFloatValue(context, options, "width", mSize.X()) &&
           Helpers::writeAttributeFloatValue(context, options, "height", mSize.Y()) &&
           writeIfNonZero(context, options, "rx", mRadius.X()) && writeIfNonZero(context, options, "ry", mRadius.Y());
}

bool Circle::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    // The radius comes before the centre; readers have long relied on it.
    return startElement(context, "circle", "Circle failed begin") &&
           Helpers::writeAttributeFloatValue(context, options, "r", mRadius) &&
           writeIfNonZero(context, options, "cx", mCenter.X()) && writeIfNonZero(context, options, "cy", mCenter.Y());
}

bool Image::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (!(startElement(context, "image", "Image failed begin") &&
          writeIfNonZero(context, options, "x", mPosition.X()) &&
          writeIfNonZero(context, options, "y", mPosition.Y()) &&
          Helpers::writeAttributeFloatValue(context, options, "width", mSize.X()) &&
          Helpers::writeAttributeFloatValue(context, options, "height", mSize.Y()) &&
          Helpers::writeAttributeString(context, options, "href", mHref)))
        return false;
    // None is never written, so it does not survive a save.
    if (mPreserveAspectRatio && *mPreserveAspectRatio != PreserveAspectRatio::None)
        return Helpers::writeAttributeString(context, options, "preserveAspectRatio",
                                             aspectRatioKeyword(*mPreserveAspectRatio));
    return true;
}

bool Text::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (!(startElement(context, "text", "Text failed begin") && writeIfNonZero(context, options, "x", mPosition.X()) &&
          writeIfNonZero(context, options, "y", mPosition.Y())))
        return false;
    if (mFontFamily && !Helpers::writeAttributeString(context, options, "font-family", *mFontFamily))
        return false;
    if (!(writeIfTrue(context, options, mBold, "font-weight", "bold") &&
          writeIfTrue(context, options, mItalic, "font-style", "italic") &&
          writeIfTrue(context, options, mUnderline, "text-decoration", "underline")))
        return false;
    if (mFontSize && !Helpers::writeAttributeFloatValue(context, options, "font-size", *mFontSize))
        return false;
    if (mTextLength && !Helpers::writeAttributeUnitValue(context, options, "textLength", *mTextLength))
        return false;
    if (mXmlSpacePreserve)
        return Helpers::writeAttributeString(context, options, "xml:space",
                                             *mXmlSpacePreserve ? "preserve" : "default");
    return true;
}

bool Text::endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (mContent.size() > static_cast<std::size_t>(INT_MAX))
        return impl::Fail(context, WriteErrorElementEnd, "Text content was too long");
    if (!vk::vkStringUtils::IsUtf8String(mContent))
        return impl::Fail(context, WriteErrorElementEnd, "Text content was not utf8");
    if (xmlTextWriterWriteString(context.getWriter(), BAD_CAST mContent.c_str()) < 0)
        return impl::Fail(context, WriteErrorElementEnd, "Text failed write content");
    return ItemInterface::endWriteAsXml(context, options);
}

} // namespace vk::svg
