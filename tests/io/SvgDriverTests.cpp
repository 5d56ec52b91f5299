// The built-in SVG driver: its key, files and devices, the message list
// limits, the document frame it writes and how it flushes.
#include <svg/Items.h>
#include <svg/vkSvgDriver.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkSystem/vkSoftwareVersion.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <unistd.h>

using namespace vk::svg;

namespace {

const Wm4::Vector2<float> kZero(0.0f, 0.0f);

// A device that records the size of every write and can throw on reads.
class RecordingDevice : public vk::vkIoDevice {
public:
    int64_t read(char*, int64_t) override { throw std::runtime_error("device gave up"); }
    int64_t write(const char* data, int64_t size) override
    {
        writes.push_back(size);
        text.append(data, static_cast<std::size_t>(size));
        return size;
    }
    bool isOpen() const override { return true; }
    std::vector<int64_t> writes;
    std::string text;
};

// An item whose writer throws, as a host's own item might.
class ThrowingItem : public ItemInterface {
public:
    ThrowingItem() : ItemInterface(ItemType::Rect) {}
    bool computeEstimatedBoundingVolume(BoundingBox&, const Wm4::Matrix3<float>&) const override { return false; }
    bool beginWriteAsXmlImplPre(vk::xml::XmlSaveContext&, const SaveOptions&) const override
    {
        throw std::runtime_error("writer gave up");
    }
};

bool Load(vkSvgDriver& driver, const std::string& text, ItemInterfacePointer<ItemInterface>& root, bool lenient = false)
{
    vk::vkIoDeviceMemory device(text);
    LoadOptions options;
    options.ignoreUnsupported = lenient;
    return driver.loadSvg(root, device, "svg", nullptr, options);
}

} // namespace

TEST(SvgDriver, ClaimsExactlyTheKeySvg)
{
    const vkSvgDriver driver;
    vk::vkIoDeviceMemory device;
    for (const char* key : {"svg", "SVG", "svgz", "", " svg", "svg ", "png", "picture.svg"}) {
        const int expected = std::string(key) == "svg" ? 2 : 0;
        EXPECT_EQ(driver.canLoad({nullptr, key}, LoadOptions()), expected) << key;
        EXPECT_EQ(driver.canLoad({&device, key}, LoadOptions{true}), expected) << key;
        EXPECT_EQ(driver.canSave(key, SaveOptions()), expected) << key;
    }
}

TEST(SvgDriver, SavesAndLoadsFiles)
{
    vkSvgDriver driver;
    ItemInterfacePointer<ItemInterface> root;
    EXPECT_FALSE(driver.loadSvg(root, "/nonexistent/dir/picture.svg", nullptr, LoadOptions()));
    EXPECT_EQ(driver.getMessages(), std::list<std::string>{"Fail to open file"});
    EXPECT_EQ(root, nullptr);
    Document document;
    EXPECT_FALSE(driver.saveSvg(document, "/nonexistent/dir/picture.svg", nullptr, SaveOptions()));
    EXPECT_EQ(driver.getMessages(), std::list<std::string>{"Fail to open file"});

    document.editViewbox() = BoundingBox(kZero, Wm4::Vector2<float>(10, 20));
    document.addChild(std::make_shared<Circle>(Wm4::Vector2<float>(1, 2), 3.0f), true);
    const std::string path = ::testing::TempDir() + "/vksvg_" + std::to_string(::getpid()) + "_file.svg";
    ASSERT_TRUE(driver.saveSvg(document, path, nullptr, SaveOptions()));
    ASSERT_TRUE(driver.loadSvg(root, path, nullptr, LoadOptions()));
    EXPECT_TRUE(driver.getMessages().empty());
    ASSERT_EQ(root->getType(), ItemType::Document);
    const auto& loaded = static_cast<const Document&>(*root);
    EXPECT_EQ(loaded.getViewbox()->getMaxPoint(), Wm4::Vector2<float>(10, 20));
    ASSERT_EQ(loaded.getChildren().size(), 1u);
    EXPECT_EQ(static_cast<const Circle&>(*loaded.getChildren().front()).getRadius(), 3.0f);
    std::remove(path.c_str());
}

// One driver for every request: each starts with an empty list.
TEST(SvgDriver, LongMessagesAreCutTo1024Characters)
{
    const std::string prefix = "Found unsupported tag in svg : \"";
    vkSvgDriver driver;
    ItemInterfacePointer<ItemInterface> root;
    for (const std::size_t length : {44u, 1023u, 1024u, 1025u, 2000u}) {
        const std::string name(length - prefix.size() - 1, 'n');
        const std::string full = prefix + name + "\"";
        ASSERT_EQ(full.size(), length);
        EXPECT_FALSE(Load(driver, "<" + name + "/>", root));
        ASSERT_EQ(driver.getMessages().size(), 1u);
        EXPECT_EQ(driver.getMessages().front(), length <= 1024 ? full : full.substr(0, 1020) + " ...") << length;
    }
    EXPECT_TRUE(Load(driver, "<svg/>", root));
    EXPECT_TRUE(driver.getMessages().empty());
}

TEST(SvgDriver, KeepsTheLatest1024Messages)
{
    std::string document = "<svg xmlns=\"http://www.w3.org/2000/svg\">";
    for (int i = 0; i < 1100; ++i)
        document += "<u" + std::to_string(i) + "/>";
    document += "</svg>";
    vkSvgDriver driver;
    ItemInterfacePointer<ItemInterface> root;
    ASSERT_TRUE(Load(driver, document, root, true));
    ASSERT_EQ(driver.getMessages().size(), 1024u);
    EXPECT_EQ(driver.getMessages().front(), "Ignore unsupported tag in svg : \"u76\"");
    EXPECT_EQ(driver.getMessages().back(), "Ignore unsupported tag in svg : \"u1099\"");

    driver.editMessages().clear();
    for (int i = 0; i < 1030; ++i)
        driver.addMessage(std::to_string(i));
    EXPECT_EQ(driver.getMessages().size(), 1024u);
    EXPECT_EQ(driver.getMessages().front(), "6");
}

// The declaration, the header comments unless switched off, then the tree
// depth first, null children skipped.
TEST(SvgDriver, WritesTheDeclarationTheHeaderCommentsAndTheTree)
{
    Document document;
    auto group = std::make_shared<Node>();
    group->editId() = "g";
    group->addChild(std::make_shared<Rect>(kZero, Wm4::Vector2<float>(1, 2)), true);
    group->addChild(std::make_shared<Node>(), true);
    document.addChild(group, true);
    document.editChildren().push_back(nullptr);
    document.addChild(std::make_shared<Line>(kZero, Wm4::Vector2<float>(3, 0)), true);
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const std::string tree = "<svg xmlns=\"http://www.w3.org/2000/svg\"><g id=\"g\"><rect width=\"1\" "
                             "height=\"2\"/><g/></g><line x2=\"3\"/></svg>\n";

    vkSvgDriver driver;
    SaveOptions bare;
    bare.writeHeaderComments = false;
    vk::vkIoDeviceMemory compact;
    ASSERT_TRUE(driver.saveSvg(document, compact, "svg", nullptr, bare));
    EXPECT_EQ(compact.getData(), declaration + tree);

    vk::vkIoDeviceMemory device;
    ASSERT_TRUE(driver.saveSvg(document, device, "svg", nullptr, SaveOptions()));
    const std::string text = device.getData();
    const std::string head =
        declaration + "<!--Exporter : " + vk::GetSoftwareVersionForStream().toString() + "--><!--Datetime : ";
    const std::string tail = "Z-->" + tree;
    ASSERT_EQ(text.size(), head.size() + 19 + tail.size()) << text;
    EXPECT_EQ(text.substr(0, head.size()), head);
    EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
    // Such as 2026-11-21T09:30:00, in UTC.
    std::string stamp = text.substr(head.size(), 19);
    for (char& c : stamp)
        c = c >= '0' && c <= '9' ? '9' : c;
    EXPECT_EQ(stamp, "9999-99-99T99:99:99") << text;
}

TEST(SvgDriver, FlushesOnceMoreThan8192BytesWait)
{
    Document document;
    for (int i = 0; i < 2000; ++i)
        document.addChild(std::make_shared<Rect>(Wm4::Vector2<float>(float(i), 1.5f), Wm4::Vector2<float>(2, 3)), true);
    vkSvgDriver driver;
    RecordingDevice device;
    ASSERT_TRUE(driver.saveSvg(document, device, "svg", nullptr, SaveOptions()));
    ASSERT_GT(device.writes.size(), 3u);
    for (std::size_t i = 0; i + 1 < device.writes.size(); ++i) {
        EXPECT_GT(device.writes[i], 8192) << i;
        EXPECT_LT(device.writes[i], 8192 + 100) << "flushed after each element start";
    }
    EXPECT_EQ(device.text.substr(device.text.size() - 7), "</svg>\n");
}

TEST(SvgDriver, ADeviceThatRefusesTextFailsTheSave)
{
    Document document;
    for (int i = 0; i < 1000; ++i)
        document.addChild(std::make_shared<Circle>(Wm4::Vector2<float>(1, 2), 3.0f), true);
    vkSvgDriver driver;
    vk::vkIoDeviceMemory device;
    device.setWriteCapacity(100);
    EXPECT_FALSE(driver.saveSvg(document, device, "svg", nullptr, SaveOptions()));
    EXPECT_EQ(driver.getMessages(), std::list<std::string>{"Fail to write to device: Memory device is full"});

    // The stream buffers a small document until it is closed.
    if (std::FILE* full = std::fopen("/dev/full", "w")) {
        std::fclose(full);
        EXPECT_FALSE(driver.saveSvg(Document(), "/dev/full", nullptr, SaveOptions()));
        ASSERT_EQ(driver.getMessages().size(), 1u);
        EXPECT_EQ(driver.getMessages().front().rfind("Fail to write to device", 0), 0u) << driver.getMessages().front();
    }
}

// Exceptions end in failure with their text, writer failures without a message.
TEST(SvgDriver, ExceptionsEndInFailureWithTheirText)
{
    vkSvgDriver driver;
    RecordingDevice device;
    ItemInterfacePointer<ItemInterface> root;
    EXPECT_FALSE(driver.loadSvg(root, device, "svg", nullptr, LoadOptions()));
    EXPECT_EQ(driver.getMessages(), std::list<std::string>{"Fail to load: device gave up"});
    EXPECT_EQ(root, nullptr);

    Document document;
    document.addChild(std::make_shared<Text>(kZero, "caf\xe9"), true);
    EXPECT_FALSE(driver.saveSvg(document, device, "svg", nullptr, SaveOptions()));
    EXPECT_TRUE(driver.getMessages().empty());
    document.editChildren().front() = std::make_shared<ThrowingItem>();
    EXPECT_FALSE(driver.saveSvg(document, device, "svg", nullptr, SaveOptions()));
    EXPECT_EQ(driver.getMessages(), std::list<std::string>{"Fail to save: writer gave up"});
}
