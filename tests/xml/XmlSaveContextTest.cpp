#include <vkXml/XmlSaveContext.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <string>

using vk::vkIoDeviceMemory;
using vk::xml::XmlSaveContext;

namespace {

const xmlChar* x(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

// Writes <svg a=".."><g><rect/></g><text>..</text></svg>; given a device,
// flushes to it with `threshold` after every step.
void writeSample(XmlSaveContext& context, vkIoDeviceMemory* device = nullptr, std::size_t threshold = 0)
{
    xmlTextWriterPtr w = context.getWriter();
    ASSERT_NE(w, nullptr);
    const auto step = [&](int result) {
        EXPECT_GE(result, 0);
        if (device != nullptr) {
            EXPECT_TRUE(context.flushBufferToDevice(*device, threshold));
        }
    };
    step(xmlTextWriterStartDocument(w, "1.0", "utf-8", nullptr));
    step(xmlTextWriterStartElement(w, x("svg")));
    step(xmlTextWriterWriteAttribute(w, x("a"), x("1 & \"2\" <")));
    step(xmlTextWriterStartElement(w, x("g")));
    step(xmlTextWriterStartElement(w, x("rect")));
    step(xmlTextWriterEndElement(w));
    step(xmlTextWriterEndElement(w));
    step(xmlTextWriterStartElement(w, x("text")));
    step(xmlTextWriterWriteString(w, x("x & y \xC3\xA9")));
    step(xmlTextWriterEndDocument(w));
}

} // namespace

TEST(XmlSaveContext, WritesCompactOrIndentedText)
{
    const std::string svg = "<svg a=\"1 &amp; &quot;2&quot; &lt;\">";
    for (bool pretty : {false, true}) {
        XmlSaveContext context(pretty);
        writeSample(context);
        const std::string text = context.getBufferedText();
        EXPECT_EQ(text.rfind("<?xml version=\"1.0\" encoding=", 0), 0u) << text;
        EXPECT_EQ(text.substr(text.find("<svg")),
                  pretty ? svg + "\n  <g>\n    <rect/>\n  </g>\n  <text>x &amp; y \xC3\xA9</text>\n</svg>\n"
                         : svg + "<g><rect/></g><text>x &amp; y \xC3\xA9</text></svg>\n");
        EXPECT_EQ(context.getBufferedSize(), text.size());
    }
}

TEST(XmlSaveContext, FlushesMoveTheBufferOnceItExceedsTheThreshold)
{
    XmlSaveContext reference(true);
    writeSample(reference);
    const std::string whole = reference.getBufferedText();

    for (std::size_t threshold : {std::size_t(0), std::size_t(1), std::size_t(60), whole.size() - 1, whole.size()}) {
        XmlSaveContext context(true);
        vkIoDeviceMemory device;
        writeSample(context, &device, threshold);
        // Repeated flushes add up to the text, less what is still buffered.
        EXPECT_EQ(device.getData() + context.getBufferedText(), whole) << threshold;
        EXPECT_LE(context.getBufferedSize(), threshold) << threshold;
        EXPECT_EQ(device.getData().empty(), threshold >= whole.size()) << threshold;
        EXPECT_TRUE(context.flushBufferToDevice(device, 0));
        EXPECT_EQ(device.getData(), whole);
        EXPECT_EQ(context.getBufferedSize(), 0u);
    }
}

TEST(XmlSaveContext, AFullDeviceFailsTheFlushAndTheTextIsDropped)
{
    XmlSaveContext context(false);
    writeSample(context);
    vkIoDeviceMemory device;
    device.setWriteCapacity(3);
    EXPECT_FALSE(context.flushBufferToDevice(device, 0));
    EXPECT_EQ(context.getBufferedSize(), 0u);
    xmlTextWriterWriteComment(context.getWriter(), x("more"));
    EXPECT_FALSE(context.flushBufferToDevice(device, 0));
    EXPECT_EQ(context.getBufferedSize(), 0u);
    EXPECT_TRUE(device.getData().empty());
}
