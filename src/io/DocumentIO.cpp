#include <svg/DocumentIO.h>

#include "io/DocumentRequests.h"
#include "io/RequestMessages.h"

#include <iterator>

namespace vk::svg {

namespace {

// One request's messages, collected apart and handed over at the end, so
// that the driver's limits apply to this request alone and whatever the
// caller's lists held stays.
class Collected {
public:
    Collected(std::list<std::string>* messages, std::vector<Diagnostic>* diagnostics)
        : mOutMessages(messages), mOutDiagnostics(diagnostics),
          mRequest(mMessages, diagnostics != nullptr ? &mDiagnostics : nullptr)
    {
    }
    Collected(const Collected&) = delete;
    Collected& operator=(const Collected&) = delete;

    impl::RequestMessages& request() { return mRequest; }

    // Hands the messages over and passes the request's result through.
    bool finish(bool result)
    {
        if (mOutMessages != nullptr)
            mOutMessages->splice(mOutMessages->end(), mMessages);
        if (mOutDiagnostics != nullptr)
            mOutDiagnostics->insert(mOutDiagnostics->end(), std::make_move_iterator(mDiagnostics.begin()),
                                    std::make_move_iterator(mDiagnostics.end()));
        return result;
    }

private:
    std::list<std::string>* mOutMessages;
    std::vector<Diagnostic>* mOutDiagnostics;
    std::list<std::string> mMessages;
    std::list<Diagnostic> mDiagnostics;
    impl::RequestMessages mRequest;
};

} // namespace

bool LoadSvgDocument(ItemInterfacePointer<ItemInterface>& root, const std::string& fileName, const LoadOptions& options,
                     std::list<std::string>* messages, std::vector<Diagnostic>* diagnostics)
{
    Collected collected(messages, diagnostics);
    // The name says nothing here: whatever it is called, the file is read
    // as SVG.
    return collected.finish(
        impl::LoadFromFile(fileName, collected.request(), [&](vk::vkIoDevice& stream, const std::string&) {
            return impl::LoadFromDevice(root, stream, options, collected.request());
        }));
}

bool LoadSvgDocument(ItemInterfacePointer<ItemInterface>& root, vk::vkIoDevice& device, const LoadOptions& options,
                     std::list<std::string>* messages, std::vector<Diagnostic>* diagnostics)
{
    Collected collected(messages, diagnostics);
    return collected.finish(impl::LoadFromDevice(root, device, options, collected.request()));
}

bool SaveSvgDocument(const ItemInterface& root, const std::string& fileName, const SaveOptions& options,
                     std::list<std::string>* messages, std::vector<Diagnostic>* diagnostics)
{
    Collected collected(messages, diagnostics);
    return collected.finish(
        impl::SaveToFile(fileName, collected.request(), [&](vk::vkIoDevice& stream, const std::string&) {
            return impl::SaveToDevice(root, stream, options, collected.request());
        }));
}

bool SaveSvgDocument(const ItemInterface& root, vk::vkIoDevice& device, const SaveOptions& options,
                     std::list<std::string>* messages, std::vector<Diagnostic>* diagnostics)
{
    Collected collected(messages, diagnostics);
    return collected.finish(impl::SaveToDevice(root, device, options, collected.request()));
}

} // namespace vk::svg
