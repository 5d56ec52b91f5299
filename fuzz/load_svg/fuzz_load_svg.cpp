// Arbitrary bytes as an SVG document, loaded by the subset profile under
// both settings of ignoreUnsupported and by the full profile; whatever loads
// is saved again. A load or save may fail,
// but it must end in a result: an exception, a crash, a leak, undefined
// behaviour or a hang is a finding, and so is a loaded tree that cannot be
// written.
#include <svg/Items.h>
#include <svg/Library.h>
#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkIoDeviceMemory.h>

#include <cstddef>
#include <cstdint>
#include <list>
#include <string>

namespace {

struct Library {
    Library() { vk::svg::initializeVkSvg(); }
    ~Library() { vk::svg::terminateVkSvg(); }
};

void LoadAndSave(const std::string& bytes, bool lenient, vk::svg::LoadProfile profile)
{
    vk::vkIoDeviceMemory input(bytes);
    vk::svg::LoadOptions options;
    options.ignoreUnsupported = lenient;
    options.profile = profile;
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    std::list<std::string> messages;
    const bool loaded = vk::svg::vkSvgIOManager::get().loadSvg(root, input, "svg", nullptr, &options, &messages);
    if (!loaded) {
        // A failed load says why and hands out nothing.
        if (messages.empty() || root != nullptr)
            __builtin_trap();
        return;
    }
    if (messages.size() > 1024)
        __builtin_trap();
    if (root == nullptr)
        return;

    vk::vkIoDeviceMemory output;
    vk::svg::SaveOptions saveOptions;
    saveOptions.writeHeaderComments = false;
    saveOptions.prettyPrint = bytes.size() % 2 == 1;
    if (!vk::svg::vkSvgIOManager::get().saveSvg(*root, output, "svg", nullptr, &saveOptions, &messages))
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size)
{
    static Library library;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    LoadAndSave(bytes, false, vk::svg::LoadProfile::Subset);
    LoadAndSave(bytes, true, vk::svg::LoadProfile::Subset);
    LoadAndSave(bytes, false, vk::svg::LoadProfile::Full);
    return 0;
}
