#include <vkXml/XmlSaveContext.h>

#include <vkSystem/vkIoDevice.h>

namespace vk::xml {

XmlSaveContext::XmlSaveContext(bool prettyPrint) : mPrettyPrint(prettyPrint)
{
    mBuffer = xmlBufferCreate();
    if (mBuffer == nullptr)
        return;
    mWriter = xmlNewTextWriterMemory(mBuffer, 0);
    if (mWriter != nullptr && prettyPrint) {
        xmlTextWriterSetIndent(mWriter, 1);
        xmlTextWriterSetIndentString(mWriter, BAD_CAST "  ");
    }
}

XmlSaveContext::~XmlSaveContext()
{
    // The writer flushes into the buffer when freed, so it goes first.
    if (mWriter != nullptr)
        xmlFreeTextWriter(mWriter);
    if (mBuffer != nullptr)
        xmlBufferFree(mBuffer);
}

bool XmlSaveContext::flushWriter()
{
    // The writer keeps text in its own output buffer until flushed; only
    // then does it reach mBuffer.
    return mWriter != nullptr && xmlTextWriterFlush(mWriter) >= 0;
}

bool XmlSaveContext::flushBufferToDevice(vk::vkIoDevice& device, std::size_t threshold)
{
    const bool flushed = flushWriter();
    if (mBuffer == nullptr)
        return false;
    const int length = xmlBufferLength(mBuffer);
    if (length <= 0 || static_cast<std::size_t>(length) <= threshold)
        return flushed;
    const int64_t written = device.write(reinterpret_cast<const char*>(xmlBufferContent(mBuffer)), length);
    // Whatever happened, the text is gone from the buffer: keeping it would
    // only make the next flush repeat a partial write.
    xmlBufferEmpty(mBuffer);
    return flushed && written == static_cast<int64_t>(length);
}

std::size_t XmlSaveContext::getBufferedSize()
{
    flushWriter();
    if (mBuffer == nullptr)
        return 0;
    const int length = xmlBufferLength(mBuffer);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

std::string XmlSaveContext::getBufferedText()
{
    const std::size_t length = getBufferedSize();
    if (length == 0)
        return std::string();
    return std::string(reinterpret_cast<const char*>(xmlBufferContent(mBuffer)), length);
}

} // namespace vk::xml
