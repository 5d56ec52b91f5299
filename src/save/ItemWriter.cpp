#include <svg/Items.h>
#include <svg/Writer.h>

#include "save/WriterFailure.h"

#include <vkXml/XmlSaveContext.h>

namespace vk::svg {

namespace {

constexpr const char kSvgNamespace[] = "http://www.w3.org/2000/svg";

} // namespace

bool ItemInterface::beginWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (!beginWriteAsXmlImplPre(context, options))
        return false;
    if (mId && !Helpers::writeAttributeString(context, options, "id", *mId))
        return false;
    if (!mRenderingProperties.writeAttributes(context, options))
        return false;
    if (mTransform && !Helpers::writeAttributeTransform(context, options, "transform", *mTransform))
        return false;
    return beginWriteAsXmlImplPost(context, options);
}

bool ItemInterface::beginWriteAsXmlImplPost(vk::xml::XmlSaveContext&, const SaveOptions&) const { return true; }

bool ItemInterface::endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions&) const
{
    if (xmlTextWriterEndElement(context.getWriter()) < 0)
        return impl::Fail(context, WriteErrorElementEnd, "Generic end element failed");
    return true;
}

bool Node::beginWriteAsXmlNodeWithName(vk::xml::XmlSaveContext& context, const char* name) const
{
    if (xmlTextWriterStartElement(context.getWriter(), BAD_CAST name) < 0)
        return impl::Fail(context, WriteErrorElementStart, "Node failed begin");
    return true;
}

bool Node::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions&) const
{
    return beginWriteAsXmlNodeWithName(context, "g");
}

bool Document::beginWriteAsXmlImplPre(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    if (!beginWriteAsXmlNodeWithName(context, "svg"))
        return false;
    if (!Helpers::writeAttributeString(context, options, "xmlns", kSvgNamespace))
        return false;
    if (mViewbox && mViewbox->isValid()) {
        const Wm4::Vector2<float> origin = mViewbox->getMinPoint();
        return Helpers::writeAttributeBox(context, options, "viewBox", origin.X(), origin.Y(), mViewbox->getWidth(),
                                          mViewbox->getHeight());
    }
    return true;
}

bool Document::beginWriteAsXmlImplPost(vk::xml::XmlSaveContext& context, const SaveOptions&) const
{
    if (!mStyle || mStyle->empty())
        return true;
    xmlTextWriterPtr writer = context.getWriter();
    if (xmlTextWriterStartElement(writer, BAD_CAST "style") < 0)
        return impl::Fail(context, WriteErrorElementStart, "Node failed begin");
    // The comment markers keep the sheet valid both as XML and as CSS.
    if (xmlTextWriterWriteRaw(writer, BAD_CAST "\n/* <![CDATA[ */") < 0 ||
        xmlTextWriterWriteRaw(writer, BAD_CAST mStyle->c_str()) < 0 ||
        xmlTextWriterWriteRaw(writer, BAD_CAST "\n/* ]]> */") < 0)
        return impl::Fail(context, WriteErrorElementEnd, "Style content failed write");
    // The begin message on an end failure is deliberate: it is what hosts
    // have always seen for a broken style element.
    if (xmlTextWriterEndElement(writer) < 0)
        return impl::Fail(context, WriteErrorElementEnd, "Node failed begin");
    return true;
}

bool Document::endWriteAsXml(vk::xml::XmlSaveContext& context, const SaveOptions& options) const
{
    return ItemInterface::endWriteAsXml(context, options);
}

} // namespace vk::svg
