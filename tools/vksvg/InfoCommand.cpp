#include "Cli.h"
#include "CommandLine.h"
#include "Json.h"
#include "LoadReport.h"
#include "Session.h"

#include <svg/Items.h>
#include <svg/TextSpace.h>
#include <svg/Writer.h>

#include <array>
#include <ostream>

namespace vksvg {

namespace {

using namespace vk::svg;

constexpr std::array<const char*, 8> kElementNames = {"svg", "g", "line", "rect", "circle", "path", "text", "image"};

const char* ElementName(ItemType type)
{
    const auto index = static_cast<std::size_t>(type);
    return index < kElementNames.size() ? kElementNames[index] : "unknown";
}

class Outline {
public:
    explicit Outline(std::ostream& out) : mOut(out) {}

    void item(const ItemInterface& item, int depth)
    {
        const auto index = static_cast<std::size_t>(item.getType());
        if (index < mCounts.size())
            ++mCounts[index];
        mOut << std::string(static_cast<std::size_t>(depth) * 2, ' ') << ElementName(item.getType());
        if (item.getId())
            quoted("id", *item.getId());
        geometry(item);
        if (item.getTransform())
            transform(*item.getTransform());
        mOut << '\n';
        if (const auto* node = dynamic_cast<const Node*>(&item))
            for (const auto& child : node->getChildren())
                if (child != nullptr)
                    this->item(*child, depth + 1);
    }

    void counts()
    {
        mOut << "Items:";
        const char* separator = " ";
        for (std::size_t i = 0; i < mCounts.size(); ++i) {
            if (mCounts[i] == 0)
                continue;
            mOut << separator << kElementNames[i] << ' ' << mCounts[i];
            separator = ", ";
        }
        if (separator[0] == ' ')
            mOut << " none";
        mOut << '\n';
    }

private:
    void number(const char* name, float value) { mOut << ' ' << name << '=' << floatToSvgNumber(value, mOptions); }
    void quoted(const char* name, const std::string& value) { mOut << ' ' << name << "=\"" << value << '"'; }

    void transform(const Wm4::Matrix3<float>& m)
    {
        mOut << " transform=matrix(";
        const float values[] = {m(0, 0), m(1, 0), m(0, 1), m(1, 1), m(0, 2), m(1, 2)};
        for (std::size_t i = 0; i < 6; ++i)
            mOut << (i > 0 ? " " : "") << floatToSvgNumber(values[i], mOptions);
        mOut << ')';
    }

    void geometry(const ItemInterface& item)
    {
        switch (item.getType()) {
        case ItemType::Document: {
            const auto& document = static_cast<const Document&>(item);
            if (document.getViewbox()) {
                const BoundingBox& box = *document.getViewbox();
                mOut << " viewBox=" << floatToSvgNumber(box.getMinPoint().X(), mOptions) << ','
                     << floatToSvgNumber(box.getMinPoint().Y(), mOptions) << ','
                     << floatToSvgNumber(box.getWidth(), mOptions) << ','
                     << floatToSvgNumber(box.getHeight(), mOptions);
            }
            if (document.getStyle())
                mOut << " style=" << document.getStyle()->size() << "B";
            break;
        }
        case ItemType::Line: {
            const auto& line = static_cast<const Line&>(item);
            number("x1", line.getStart().X());
            number("y1", line.getStart().Y());
            number("x2", line.getEnd().X());
            number("y2", line.getEnd().Y());
            break;
        }
        case ItemType::Rect: {
            const auto& rect = static_cast<const Rect&>(item);
            number("x", rect.getPosition().X());
            number("y", rect.getPosition().Y());
            number("width", rect.getSize().X());
            number("height", rect.getSize().Y());
            if (rect.getRadius().X() != 0.0f || rect.getRadius().Y() != 0.0f) {
                number("rx", rect.getRadius().X());
                number("ry", rect.getRadius().Y());
            }
            break;
        }
        case ItemType::Circle: {
            const auto& circle = static_cast<const Circle&>(item);
            number("cx", circle.getCenter().X());
            number("cy", circle.getCenter().Y());
            number("r", circle.getRadius());
            break;
        }
        case ItemType::Path:
            mOut << " commands=" << static_cast<const Path&>(item).getCommands().size();
            break;
        case ItemType::Text: {
            const auto& text = static_cast<const Text&>(item);
            number("x", text.getPosition().X());
            number("y", text.getPosition().Y());
            const bool preserve = text.getXmlSpacePreserve().value_or(false);
            quoted("content",
                   preserve ? ApplySvgXMLSpacePreserve(text.getContent()) : ApplySvgXMLSpaceDefault(text.getContent()));
            break;
        }
        case ItemType::Image: {
            const auto& image = static_cast<const Image&>(item);
            number("x", image.getPosition().X());
            number("y", image.getPosition().Y());
            number("width", image.getSize().X());
            number("height", image.getSize().Y());
            quoted("href", image.getHref());
            break;
        }
        default:
            break;
        }
    }

    std::ostream& mOut;
    SaveOptions mOptions;
    std::array<std::size_t, 8> mCounts{};
};

// The same outline as one JSON object per item (schema vksvg-info/1).
class JsonOutline {
public:
    json::Json item(const ItemInterface& item)
    {
        const auto index = static_cast<std::size_t>(item.getType());
        if (index < mCounts.size())
            ++mCounts[index];
        json::Json object;
        object["type"] = ElementName(item.getType());
        object["id"] = item.getId() ? json::Json(*item.getId()) : json::Json(nullptr);
        object["transform"] = nullptr;
        if (item.getTransform()) {
            const Wm4::Matrix3<float>& m = *item.getTransform();
            object["transform"] = {json::Number(m(0, 0)), json::Number(m(1, 0)), json::Number(m(0, 1)),
                                   json::Number(m(1, 1)), json::Number(m(0, 2)), json::Number(m(1, 2))};
        }
        geometry(item, object);
        if (const auto* node = dynamic_cast<const Node*>(&item)) {
            json::Json children = json::Json::array();
            for (const auto& child : node->getChildren())
                if (child != nullptr)
                    children.push_back(this->item(*child));
            object["children"] = std::move(children);
        }
        return object;
    }

    json::Json counts() const
    {
        json::Json counts = json::Json::object();
        for (std::size_t i = 0; i < mCounts.size(); ++i)
            counts[kElementNames[i]] = mCounts[i];
        return counts;
    }

private:
    static json::Json Point(const Wm4::Vector2<float>& p) { return {json::Number(p.X()), json::Number(p.Y())}; }

    static void geometry(const ItemInterface& item, json::Json& object)
    {
        using json::Number;
        switch (item.getType()) {
        case ItemType::Document: {
            const auto& document = static_cast<const Document&>(item);
            object["viewBox"] = nullptr;
            if (document.getViewbox()) {
                const BoundingBox& box = *document.getViewbox();
                object["viewBox"] = {Number(box.getMinPoint().X()), Number(box.getMinPoint().Y()),
                                     Number(box.getWidth()), Number(box.getHeight())};
            }
            object["styleBytes"] = document.getStyle() ? json::Json(document.getStyle()->size()) : json::Json(nullptr);
            break;
        }
        case ItemType::Line: {
            const auto& line = static_cast<const Line&>(item);
            object["x1"] = Number(line.getStart().X());
            object["y1"] = Number(line.getStart().Y());
            object["x2"] = Number(line.getEnd().X());
            object["y2"] = Number(line.getEnd().Y());
            break;
        }
        case ItemType::Rect: {
            const auto& rect = static_cast<const Rect&>(item);
            object["x"] = Number(rect.getPosition().X());
            object["y"] = Number(rect.getPosition().Y());
            object["width"] = Number(rect.getSize().X());
            object["height"] = Number(rect.getSize().Y());
            object["rx"] = Number(rect.getRadius().X());
            object["ry"] = Number(rect.getRadius().Y());
            break;
        }
        case ItemType::Circle: {
            const auto& circle = static_cast<const Circle&>(item);
            object["cx"] = Number(circle.getCenter().X());
            object["cy"] = Number(circle.getCenter().Y());
            object["r"] = Number(circle.getRadius());
            break;
        }
        case ItemType::Path:
            object["commands"] = static_cast<const Path&>(item).getCommands().size();
            break;
        case ItemType::Text: {
            const auto& text = static_cast<const Text&>(item);
            object["x"] = Number(text.getPosition().X());
            object["y"] = Number(text.getPosition().Y());
            const bool preserve = text.getXmlSpacePreserve().value_or(false);
            object["content"] =
                preserve ? ApplySvgXMLSpacePreserve(text.getContent()) : ApplySvgXMLSpaceDefault(text.getContent());
            break;
        }
        case ItemType::Image: {
            const auto& image = static_cast<const Image&>(item);
            object["x"] = Number(image.getPosition().X());
            object["y"] = Number(image.getPosition().Y());
            object["width"] = Number(image.getSize().X());
            object["height"] = Number(image.getSize().Y());
            object["href"] = image.getHref();
            break;
        }
        default:
            break;
        }
    }

    std::array<std::size_t, 8> mCounts{};
};

} // namespace

int runInfoCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("info"));
    std::vector<std::string> files;
    cli::LoadFlags loadFlags;
    bool asJson = false;
    parser.app().add_option("FILE", files, "The SVG document (\"-\" for standard input)");
    parser.flag("--json", asJson, "Print one JSON object (schema vksvg-info/1) instead of the outline");
    parser.loadFlags(loadFlags);
    if (const auto status = parser.parse(args, out, err))
        return *status;
    if (files.empty())
        return parser.usage("no input given", err);
    if (files.size() > 1)
        return parser.usage("info reads one file, not " + std::to_string(files.size()), err);
    const std::string& file = files.front();
    const LoadOptions options = loadFlags.options();

    DocumentSession session(err);
    ItemInterfacePointer<ItemInterface> root;
    io::LoadResult loaded;
    if (!LoadDocument(file, options, root, err, &loaded))
        return Failure;
    if (asJson) {
        JsonOutline outline;
        json::Json document{{"schema", "vksvg-info/1"},
                            {"file", io::DisplayName(file)},
                            {"profile", loadFlags.subset ? "subset" : "full"}};
        document["root"] = root != nullptr ? outline.item(*root) : json::Json(nullptr);
        document["counts"] = outline.counts();
        document["messages"] = json::Messages(loaded.diagnostics);
        out << json::Dump(document);
        return Success;
    }
    Outline outline(out);
    if (root != nullptr)
        outline.item(*root, 0);
    outline.counts();
    return Success;
}

} // namespace vksvg
