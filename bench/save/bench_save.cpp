// Writing a large item tree into an XML save context, against the floor of
// libxml2's text writer emitting the same elements and attribute strings.
#include <svg/Items.h>
#include <svg/Writer.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkXml/XmlSaveContext.h>

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace vk::svg;
using V = Wm4::Vector2<float>;

namespace {

constexpr int kItems = 100000;

float coordinate(std::mt19937& random)
{
    // Two decimals, as drawings usually have, with the odd long fraction.
    return static_cast<float>(std::uniform_int_distribution<int>(-50000, 50000)(random)) / 100.0f;
}

std::shared_ptr<Path> makePath(std::mt19937& random)
{
    auto path = std::make_shared<Path>();
    auto& commands = path->editCommands();
    commands.emplace_back(PathCommandType::MoveTo, std::vector<float>{coordinate(random), coordinate(random)});
    for (int i = 0; i < 30; ++i) {
        switch (i % 4) {
        case 0:
            commands.emplace_back(PathCommandType::LineTo, std::vector<float>{coordinate(random), coordinate(random)});
            break;
        case 1:
            commands.emplace_back(PathCommandType::BezierCubicRel,
                                  std::vector<float>{coordinate(random), coordinate(random), coordinate(random),
                                                     coordinate(random), coordinate(random), coordinate(random)});
            break;
        case 2:
            commands.emplace_back(PathCommandType::EllipticalArc,
                                  std::vector<float>{10, 20, 30, 1, 0, coordinate(random), coordinate(random)});
            break;
        default:
            commands.emplace_back(PathCommandType::HLineToRel, std::vector<float>{coordinate(random)});
        }
    }
    commands.emplace_back(PathCommandType::ClosePath, std::vector<float>{});
    path->editRenderingProperties().editFill() = "#336699";
    return path;
}

// A document of groups holding every kind of item.
const Document& testDocument()
{
    static const Document document = [] {
        std::mt19937 random(7);
        Document doc;
        doc.editViewbox() = BoundingBox(V(0, 0), V(1000, 1000));
        std::shared_ptr<Node> group;
        for (int i = 0; i < kItems; ++i) {
            if (i % 50 == 0) {
                group = std::make_shared<Node>();
                group->editTransform() = Wm4::Matrix3<float>(1, 0, coordinate(random), 0, 1, coordinate(random), 0, 0, 1);
                doc.addChild(group, true);
                continue;
            }
            std::shared_ptr<ItemInterface> item;
            switch (i % 6) {
            case 0:
                item = std::make_shared<Rect>(V(coordinate(random), coordinate(random)), V(12.5f, 40.25f));
                break;
            case 1:
                item = std::make_shared<Circle>(V(coordinate(random), coordinate(random)), 7.75f);
                break;
            case 2:
                item = std::make_shared<Line>(V(coordinate(random), coordinate(random)),
                                              V(coordinate(random), coordinate(random)));
                break;
            case 3:
                item = std::make_shared<Text>(V(coordinate(random), 0), "label " + std::to_string(i));
                break;
            default:
                item = makePath(random);
            }
            item->editRenderingProperties().editStroke() = "black";
            item->editRenderingProperties().editStrokeWidth() = 0.5f;
            group->addChild(item, true);
        }
        return doc;
    }();
    return document;
}

void writeTree(const ItemInterface& item, vk::xml::XmlSaveContext& context, const SaveOptions& options,
               vk::vkIoDeviceMemory& device)
{
    if (!item.beginWriteAsXml(context, options))
        return;
    context.flushBufferToDevice(device, 8192);
    if (item.getType() == ItemType::Node || item.getType() == ItemType::Document)
        for (const auto& child : static_cast<const Node&>(item).getChildren())
            writeTree(*child, context, options, device);
    item.endWriteAsXml(context, options);
}

void BM_SaveTree(benchmark::State& state)
{
    const Document& document = testDocument();
    const SaveOptions options;
    std::size_t bytes = 0;
    for (auto _ : state) {
        vk::xml::XmlSaveContext context(false);
        vk::vkIoDeviceMemory device;
        writeTree(document, context, options, device);
        context.flushBufferToDevice(device, 0);
        bytes = device.getData().size();
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["output_MB"] = static_cast<double>(bytes) / 1e6;
    state.counters["items"] = kItems;
}

// The floor: the same elements, attributes and text, already formatted.
struct FlatElement {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;
    int closeAfter = 1; // elements to close after this one
};

std::vector<FlatElement> flatten(const Document& document)
{
    // Serialise once with the library and read the result back as flat
    // records, so that the floor writes exactly the same strings.
    vk::xml::XmlSaveContext context(false);
    vk::vkIoDeviceMemory device;
    writeTree(document, context, SaveOptions(), device);
    context.flushBufferToDevice(device, 0);
    const std::string& xml = device.getData();

    std::vector<FlatElement> out;
    std::size_t pos = 0;
    while ((pos = xml.find('<', pos)) != std::string::npos) {
        if (xml[pos + 1] == '/') {
            out.back().closeAfter++;
            pos = xml.find('>', pos);
            continue;
        }
        FlatElement element;
        element.closeAfter = 0;
        std::size_t end = xml.find_first_of(" />", pos + 1);
        element.name = xml.substr(pos + 1, end - pos - 1);
        pos = end;
        while (xml[pos] == ' ') {
            const std::size_t eq = xml.find('=', pos);
            const std::size_t close = xml.find('"', eq + 2);
            element.attributes.emplace_back(xml.substr(pos + 1, eq - pos - 1), xml.substr(eq + 2, close - eq - 2));
            pos = close + 1;
        }
        if (xml.compare(pos, 2, "/>") == 0) {
            element.closeAfter = 1;
            pos += 2;
        } else {
            const std::size_t textEnd = xml.find('<', pos + 1);
            element.text = xml.substr(pos + 1, textEnd - pos - 1);
            pos = textEnd;
        }
        out.push_back(std::move(element));
    }
    return out;
}

const std::vector<FlatElement>& flatElements()
{
    static const std::vector<FlatElement> elements = flatten(testDocument());
    return elements;
}

void BM_SaveFloorTextWriter(benchmark::State& state)
{
    const std::vector<FlatElement>& elements = flatElements();
    std::size_t bytes = 0;
    for (auto _ : state) {
        vk::xml::XmlSaveContext context(false);
        vk::vkIoDeviceMemory device;
        xmlTextWriterPtr writer = context.getWriter();
        for (const FlatElement& element : elements) {
            xmlTextWriterStartElement(writer, BAD_CAST element.name.c_str());
            for (const auto& [name, value] : element.attributes)
                xmlTextWriterWriteAttribute(writer, BAD_CAST name.c_str(), BAD_CAST value.c_str());
            context.flushBufferToDevice(device, 8192);
            if (!element.text.empty())
                xmlTextWriterWriteString(writer, BAD_CAST element.text.c_str());
            for (int i = 0; i < element.closeAfter; ++i)
                xmlTextWriterEndElement(writer);
        }
        context.flushBufferToDevice(device, 0);
        bytes = device.getData().size();
        benchmark::DoNotOptimize(bytes);
    }
    state.counters["output_MB"] = static_cast<double>(bytes) / 1e6;
}

} // namespace

BENCHMARK(BM_SaveTree)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveFloorTextWriter)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    // Built before timing starts, so that profilers see only the writing.
    flatElements();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
