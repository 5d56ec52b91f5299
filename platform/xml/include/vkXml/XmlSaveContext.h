#ifndef VKXML_XMLSAVECONTEXT_H
#define VKXML_XMLSAVECONTEXT_H

#include <vkXml/Export.h>

#include <libxml/xmlwriter.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vk {
class vkIoDevice;
}

namespace vk::xml {

// A libxml2 text writer that writes into a memory buffer, which the owner
// moves to a device from time to time, and the error code of the writers
// that use it (0 while all is well).
class VKXML_API XmlSaveContext {
public:
    // prettyPrint indents nested elements by two blanks per level.
    explicit XmlSaveContext(bool prettyPrint);
    ~XmlSaveContext();
    XmlSaveContext(const XmlSaveContext&) = delete;
    XmlSaveContext& operator=(const XmlSaveContext&) = delete;

    // The writer; null only if libxml2 could not allocate it.
    xmlTextWriterPtr getWriter() const { return mWriter; }

    int32_t getErrorCode() const { return mErrorCode; }
    void setErrorCode(int32_t code) { mErrorCode = code; }

    bool getPrettyPrint() const { return mPrettyPrint; }

    // Moves the buffered text to the device once the buffer holds more than
    // `threshold` bytes; with 0, whatever it holds. Returns false when the
    // device failed to take all of it (the text is then dropped from the
    // buffer) or the writer could not be flushed.
    bool flushBufferToDevice(vk::vkIoDevice& device, std::size_t threshold);

    // Bytes written by the writer and not yet moved to a device.
    std::size_t getBufferedSize();
    // The buffered text itself, mainly for tests.
    std::string getBufferedText();

private:
    bool flushWriter();

    xmlBufferPtr mBuffer = nullptr;
    xmlTextWriterPtr mWriter = nullptr;
    int32_t mErrorCode = 0;
    bool mPrettyPrint = false;
};

} // namespace vk::xml

#endif
