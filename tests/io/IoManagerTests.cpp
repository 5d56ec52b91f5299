#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkSystem/vkLog.h>

#include <gtest/gtest.h>

using namespace vk::svg;

namespace {

// A driver that answers a fixed match level for one key and records calls.
class TestDriver : public vkCoreSvgIODriver {
public:
    TestDriver(std::string key, DriverMatch match, std::string name)
        : mKey(std::move(key)), mMatch(match), mName(std::move(name))
    {
    }

    int canLoad(const std::pair<vk::vkIoDevice*, std::string>& key, const LoadOptions& options) const override
    {
        ++asked;
        EXPECT_EQ(key.first, nullptr) << "drivers decide from the name alone";
        EXPECT_FALSE(options.ignoreUnsupported) << "capability queries get default options";
        return key.second == mKey ? static_cast<int>(mMatch) : 0;
    }
    int canSave(const std::string& key, const SaveOptions& options) const override
    {
        ++asked;
        EXPECT_EQ(options.precision, -1);
        return key == mKey ? static_cast<int>(mMatch) : 0;
    }
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName,
                 vk::vkProgressNotifierInterface*, const LoadOptions& options) override
    {
        return record("load file " + fileName, options.ignoreUnsupported, &root);
    }
    bool loadSvg(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice&, const std::string& name,
                 vk::vkProgressNotifierInterface*, const LoadOptions& options) override
    {
        return record("load device " + name, options.ignoreUnsupported, &root);
    }
    bool saveSvg(const ItemInterface&, const std::string& fileName, vk::vkProgressNotifierInterface*,
                 const SaveOptions& options) override
    {
        return record("save file " + fileName, options.prettyPrint);
    }
    bool saveSvg(const ItemInterface&, vk::vkIoDevice&, const std::string& name, vk::vkProgressNotifierInterface*,
                 const SaveOptions& options) override
    {
        return record("save device " + name, options.prettyPrint);
    }

    mutable int asked = 0;
    std::string lastCall;
    bool result = true;

private:
    bool record(const std::string& call, bool flag, ItemInterfacePointer<ItemInterface>* root = nullptr)
    {
        lastCall = call + (flag ? " +" : "");
        editMessages().assign({mName + ": " + call});
        if (root != nullptr)
            *root = std::make_shared<Node>();
        return result;
    }

    std::string mKey;
    DriverMatch mMatch;
    std::string mName;
};

class IoManager : public ::testing::Test {
protected:
    void SetUp() override { vkSvgIOManager::sThis = &manager; }
    void TearDown() override { vkSvgIOManager::sThis = nullptr; }
    vkSvgIOManager manager;
    const Document document;
};

} // namespace

TEST_F(IoManager, ChoosesTheFirstExactElseTheFirstPossibleAskingEveryDriver)
{
    TestDriver possibleA("svg", DriverMatch::Possible, "A");
    TestDriver possibleB("svg", DriverMatch::Possible, "B");
    TestDriver exact("svg", DriverMatch::Exact, "C");
    TestDriver other("png", DriverMatch::Exact, "D");
    for (auto* d : {&possibleA, &possibleB, &exact, &other})
        manager.registerDriver(d, true);

    std::list<std::string> messages{"old"};
    ItemInterfacePointer<ItemInterface> root;
    EXPECT_TRUE(vkSvgIOManager::get().loadSvg(root, "dir/picture.svg", nullptr, nullptr, &messages));
    EXPECT_EQ(exact.lastCall, "load file dir/picture.svg");
    EXPECT_EQ(messages, std::list<std::string>{"C: load file dir/picture.svg"}) << "earlier content is replaced";
    EXPECT_NE(root, nullptr);
    for (auto* d : {&possibleA, &possibleB, &exact, &other})
        EXPECT_EQ(d->asked, 1) << "every driver is asked, even after a match";

    manager.unregisterDriver(&exact);
    LoadOptions lenient;
    lenient.ignoreUnsupported = true;
    vk::vkIoDeviceMemory device("<svg/>");
    EXPECT_TRUE(manager.loadSvg(root, device, "svg", nullptr, &lenient, &messages));
    EXPECT_EQ(possibleA.lastCall, "load device svg +") << "the caller's options reach the driver";
    EXPECT_TRUE(possibleB.lastCall.empty());

    TestDriver front("svg", DriverMatch::Possible, "F");
    manager.registerDriver(&front, false);
    EXPECT_TRUE(manager.loadSvg(root, device, "svg", nullptr, nullptr, nullptr));
    EXPECT_EQ(front.lastCall, "load device svg") << "a driver put in front wins ties";
    manager.unregisterDriver(&front);
}

// Device keys are the name as given, file keys the extension.
TEST_F(IoManager, DeviceKeysAreTheNameAsGivenFileKeysTheExtension)
{
    TestDriver svg("svg", DriverMatch::Exact, "S");
    manager.registerDriver(&svg, true);
    vk::vkIoDeviceMemory device;
    EXPECT_TRUE(manager.saveSvg(document, device, "svg", nullptr, nullptr, nullptr));
    std::list<std::string> messages;
    EXPECT_FALSE(manager.saveSvg(document, device, "picture.svg", nullptr, nullptr, &messages));
    EXPECT_EQ(messages, std::list<std::string>{"No driver available to save 'picture.svg'"});
    SaveOptions pretty;
    pretty.prettyPrint = true;
    EXPECT_TRUE(manager.saveSvg(document, "out/a.b.svg", nullptr, &pretty, nullptr));
    EXPECT_EQ(svg.lastCall, "save file out/a.b.svg +");

    // Without a driver, loads fail silently and saves say why.
    messages = {"kept"};
    ItemInterfacePointer<ItemInterface> root;
    EXPECT_FALSE(manager.loadSvg(root, "picture.txt", nullptr, nullptr, &messages));
    EXPECT_EQ(messages, std::list<std::string>{"kept"});
    EXPECT_EQ(root, nullptr);
    EXPECT_FALSE(manager.saveSvg(document, "picture.png", nullptr, nullptr, &messages));
    EXPECT_EQ(messages, (std::list<std::string>{"kept", "No driver available to save 'png'"}));
    EXPECT_FALSE(manager.saveSvg(document, "picture.png", nullptr, nullptr, nullptr));

    // A failing driver's result and messages come back as they are.
    svg.result = false;
    EXPECT_FALSE(manager.loadSvg(root, "x.svg", nullptr, nullptr, &messages));
    EXPECT_EQ(messages, std::list<std::string>{"S: load file x.svg"});
}

TEST_F(IoManager, DoubleRegistrationAndUnknownUnregistrationAreLogged)
{
    std::vector<vk::vkLog::Entry> entries;
    auto log = std::make_shared<vk::vkLog>();
    log->setSink([&entries](const vk::vkLog::Entry& e) { entries.push_back(e); });
    vk::vkLog::setInstance(log);

    TestDriver driver("svg", DriverMatch::Exact, "S");
    manager.registerDriver(nullptr, true);
    manager.registerDriver(&driver, true);
    manager.registerDriver(&driver, false);
    EXPECT_EQ(manager.getDrivers().size(), 1u);
    manager.unregisterDriver(&driver);
    manager.unregisterDriver(&driver);
    manager.unregisterDriver(nullptr);
    EXPECT_TRUE(manager.getDrivers().empty());

    log->setLevelEnabled(2, false);
    manager.unregisterDriver(&driver); // level 2 switched off: not written
    vk::vkLog::setInstance(nullptr);

    // The driver is named by its mangled type name.
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].text, "Weird error, driver N2vk3svg17vkCoreSvgIODriverE is already registered");
    EXPECT_EQ(entries[1].text, "Weird error, driver N2vk3svg17vkCoreSvgIODriverE has already been unregistered");
    for (const auto& entry : entries) {
        EXPECT_EQ(entry.category, "driver");
        EXPECT_EQ(entry.level, 2);
    }
}
