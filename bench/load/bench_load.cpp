// Loading a generated 10 MB drawing from memory, against the floor of a
// bare libxml2 SAX2 parse of the same bytes with empty callbacks; the full
// load-save round trip; and the full reading profile, on the same drawing
// and on a drawing that uses style sheets, classes and use, against the
// same drawing written out flat.
#include <svg/Items.h>
#include <svg/Library.h>
#include <svg/PathData.h>
#include <svg/vkSvgIOManager.h>

#include <vkSystem/vkIoDeviceMemory.h>
#include <vkXml/ParseXmlStream.h>
#include <vkXml/XmlSaxParserHandler.h>

#include "MemoryCounter.h"

#include <benchmark/benchmark.h>

#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <random>
#include <string>
#include <vector>

namespace {

struct Library {
    Library() { vk::svg::initializeVkSvg(); }
    ~Library() { vk::svg::terminateVkSvg(); }
};

// Groups with transforms, each holding paths of a few dozen commands,
// rectangles, circles and a text.
const std::string& Drawing()
{
    static const std::string drawing = [] {
        std::mt19937 random(42u);
        const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
        const auto num = [&]() {
            char text[32];
            std::snprintf(text, sizeof(text), "%d.%d", pick(-500, 500), pick(0, 99));
            return std::string(text);
        };
        std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1000 1000\">\n";
        for (int group = 0; out.size() < 10u * 1024u * 1024u; ++group) {
            out += "<g id=\"g" + std::to_string(group) + "\" transform=\"translate(" + num() + " " + num() +
                   ") rotate(" + std::to_string(pick(0, 359)) + ")\" fill=\"#" + std::to_string(pick(100000, 999999)) +
                   "\" stroke-width=\"1.5\">\n";
            for (int p = 0; p < 3; ++p) {
                out += "<path d=\"M" + num() + " " + num();
                const int commands = pick(20, 40);
                for (int c = 0; c < commands; ++c) {
                    switch (pick(0, 3)) {
                    case 0:
                        out += " L" + num() + " " + num();
                        break;
                    case 1:
                        out += " C" + num() + " " + num() + " " + num() + " " + num() + " " + num() + " " + num();
                        break;
                    case 2:
                        out += " h" + num();
                        break;
                    default:
                        out += " A" + num() + " " + num() + " 0 1 0 " + num() + " " + num();
                        break;
                    }
                }
                out += " Z\" stroke=\"black\"/>\n";
            }
            out += "<rect x=\"" + num() + "\" y=\"" + num() + "\" width=\"" + num() + "\" height=\"" + num() +
                   "\" rx=\"2\" fill-opacity=\"0.5\"/>\n";
            out += "<circle cx=\"" + num() + "\" cy=\"" + num() + "\" r=\"" + std::to_string(pick(1, 50)) +
                   "\" stroke=\"rgb(10,20,30)\"/>\n";
            out += "<text x=\"" + num() + "\" y=\"" + num() + "\" font-size=\"12\">Label " + std::to_string(group) +
                   "</text>\n</g>\n";
        }
        out += "</svg>\n";
        return out;
    }();
    return drawing;
}

// The same drawing with every path reduced to "M0 0": what the loader costs
// apart from path data, which the floor does not convert at all.
const std::string& DrawingWithoutPathData()
{
    static const std::string drawing = [] {
        const std::string& full = Drawing();
        std::string out;
        out.reserve(full.size() / 4);
        std::size_t pos = 0;
        for (std::size_t found; (found = full.find(" d=\"", pos)) != std::string::npos;) {
            out.append(full, pos, found + 4 - pos);
            out += "M0 0";
            pos = full.find('"', found + 4);
        }
        out.append(full, pos, std::string::npos);
        return out;
    }();
    return drawing;
}

const std::string& Select(const benchmark::State& state)
{
    return state.range(0) == 0 ? Drawing() : DrawingWithoutPathData();
}

// Every path's data, for timing the path conversion alone.
const std::vector<std::string>& PathData()
{
    static const std::vector<std::string> paths = [] {
        std::vector<std::string> out;
        const std::string& full = Drawing();
        for (std::size_t found = 0; (found = full.find(" d=\"", found)) != std::string::npos;) {
            const std::size_t end = full.find('"', found + 4);
            out.push_back(full.substr(found + 4, end - found - 4));
            found = end;
        }
        return out;
    }();
    return paths;
}

// glibc defers part of the work of freeing small blocks (merging them) until
// the next request of a larger block; making that request here keeps the
// untimed freeing of the previous tree out of the timed load.
void ReleaseFreedMemory()
{
    void* block = std::malloc(4096);
    benchmark::DoNotOptimize(block);
    std::free(block);
}

void Empty(void*) {}
// Counts elements and attributes, so that the floor can be seen to have
// parsed the whole drawing.
std::size_t sElements = 0;
std::size_t sAttributes = 0;
void EmptyStart(void*, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**, int attributes, int,
                const xmlChar**)
{
    ++sElements;
    sAttributes += static_cast<std::size_t>(attributes);
}
void EmptyEnd(void*, const xmlChar*, const xmlChar*, const xmlChar*) {}
void EmptyCharacters(void*, const xmlChar*, int) {}

// libxml2's push parser fed in the chunks the library reads, with the same
// options and every callback empty.
bool BareSaxParse(const std::string& text)
{
    xmlSAXHandler sax;
    std::memset(&sax, 0, sizeof(sax));
    sax.initialized = XML_SAX2_MAGIC;
    sax.startDocument = Empty;
    sax.endDocument = Empty;
    sax.startElementNs = EmptyStart;
    sax.endElementNs = EmptyEnd;
    sax.characters = EmptyCharacters;
    sax.ignorableWhitespace = EmptyCharacters;
    xmlParserCtxtPtr context = xmlCreatePushParserCtxt(&sax, nullptr, nullptr, 0, nullptr);
    xmlCtxtUseOptions(context, XML_PARSE_NOENT | XML_PARSE_NONET);
    constexpr std::size_t kChunk = 64 * 1024;
    for (std::size_t pos = 0; pos < text.size(); pos += kChunk)
        xmlParseChunk(context, text.data() + pos, static_cast<int>(std::min(kChunk, text.size() - pos)), 0);
    xmlParseChunk(context, nullptr, 0, 1);
    const bool ok = context->wellFormed != 0;
    xmlFreeParserCtxt(context);
    return ok;
}

void BM_LibxmlSaxFloor(benchmark::State& state)
{
    static Library library;
    const std::string& text = Select(state);
    for (auto _ : state) {
        sElements = 0;
        sAttributes = 0;
        if (!BareSaxParse(text)) {
            state.SkipWithError("the generated drawing is not well-formed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["elements"] = static_cast<double>(sElements);
    state.counters["attributes"] = static_cast<double>(sAttributes);
}
BENCHMARK(BM_LibxmlSaxFloor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// libvkXml's SAX layer with a handler that accepts everything: what every
// loader on top of it pays before it looks at an element.
void BM_XmlLayerOnly(benchmark::State& state)
{
    static Library library;
    const std::string& text = Select(state);
    vk::xml::XmlSaxParserHandler handler;
    for (auto _ : state) {
        state.PauseTiming();
        vk::vkIoDeviceMemory device(text);
        state.ResumeTiming();
        if (!vk::xml::ParseXmlStream(device, handler, nullptr)) {
            state.SkipWithError("the generated drawing is not well-formed");
            break;
        }
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK(BM_XmlLayerOnly)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// A drawing of layers whose paths take their paint from class rules and
// whose symbols are placed by use (argument 0), and the same drawing with
// every rule and use written out in place (argument 1).
const std::string& StyledDrawing(bool writtenOut)
{
    static const std::pair<std::string, std::string> drawings = [] {
        std::mt19937 random(7u);
        const auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
        const auto num = [&]() {
            char text[32];
            std::snprintf(text, sizeof(text), "%d.%d", pick(-500, 500), pick(0, 99));
            return std::string(text);
        };
        const auto pathData = [&]() {
            std::string d = "M" + num() + " " + num();
            for (int c = pick(10, 30); c > 0; --c)
                d += pick(0, 1) == 0
                         ? " L" + num() + " " + num()
                         : " C" + num() + " " + num() + " " + num() + " " + num() + " " + num() + " " + num();
            return d + " Z";
        };
        constexpr int kClasses = 50;
        constexpr int kSymbols = 20;
        std::vector<std::string> paints;
        std::string head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 1000 1000\">\n";
        std::string styled = head + "<style>\n";
        for (int c = 0; c < kClasses; ++c) {
            const std::string fill = "#" + std::to_string(pick(100000, 999999));
            const std::string stroke = "#" + std::to_string(pick(100000, 999999));
            styled += ".c" + std::to_string(c) + " { fill: " + fill + "; stroke: " + stroke + "; stroke-width: 1.5 }\n";
            paints.push_back(" fill=\"" + fill + "\" stroke=\"" + stroke + "\" stroke-width=\"1.5\"");
        }
        styled += "g.layer > path { stroke-linejoin: round }\n</style>\n<defs>\n";
        std::vector<std::string> symbols;
        for (int s = 0; s < kSymbols; ++s) {
            symbols.push_back(pathData());
            styled += "<path id=\"s" + std::to_string(s) + "\" d=\"" + symbols.back() + "\"/>\n";
        }
        styled += "</defs>\n";
        std::string flat = head;
        for (int group = 0; styled.size() < 10u * 1024u * 1024u; ++group) {
            const std::string transform = "translate(" + num() + " " + num() + ")";
            styled += "<g class=\"layer\" transform=\"" + transform + "\">\n";
            flat += "<g transform=\"" + transform + "\">\n";
            for (int p = 0; p < 3; ++p) {
                const int c = pick(0, kClasses - 1);
                const std::string d = pathData();
                styled += "<path class=\"c" + std::to_string(c) + "\" d=\"" + d + "\"/>\n";
                flat += "<path" + paints[c] + " stroke-linejoin=\"round\" d=\"" + d + "\"/>\n";
            }
            for (int u = 0; u < 2; ++u) {
                const int c = pick(0, kClasses - 1);
                const int s = pick(0, kSymbols - 1);
                const std::string x = num();
                const std::string y = num();
                styled += "<use href=\"#s" + std::to_string(s) + "\" x=\"" + x + "\" y=\"" + y + "\" class=\"c" +
                          std::to_string(c) + "\"/>\n";
                flat += "<g transform=\"translate(" + x + " " + y + ")\"" + paints[c] + "><path d=\"" + symbols[s] +
                        "\"/></g>\n";
            }
            styled += "</g>\n";
            flat += "</g>\n";
        }
        styled += "</svg>\n";
        flat += "</svg>\n";
        return std::make_pair(styled, flat);
    }();
    return writtenOut ? drawings.second : drawings.first;
}

void TimeLoads(benchmark::State& state, const std::string& text, vk::svg::LoadProfile profile)
{
    static Library library;
    vk::svg::LoadOptions options;
    options.profile = profile;
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    std::size_t peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        root.reset();
        ReleaseFreedMemory();
        vk::vkIoDeviceMemory device(text);
        const std::size_t before = LiveBytes();
        ResetPeakBytes();
        state.ResumeTiming();
        if (!vk::svg::vkSvgIOManager::get().loadSvg(root, device, "svg", nullptr, &options, nullptr)) {
            state.SkipWithError("the generated drawing does not load");
            break;
        }
        benchmark::DoNotOptimize(root);
        peak = PeakBytes() - before;
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["peak_MB"] = static_cast<double>(peak) / (1024.0 * 1024.0);
}

// Argument 0: the drawing; 1: the drawing without path data. Freeing the
// previous tree is left out of the timing.
void BM_Load(benchmark::State& state) { TimeLoads(state, Select(state), vk::svg::LoadProfile::Subset); }
BENCHMARK(BM_Load)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The same drawings under the full profile.
void BM_LoadFull(benchmark::State& state) { TimeLoads(state, Select(state), vk::svg::LoadProfile::Full); }
BENCHMARK(BM_LoadFull)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Argument 0: style sheet, classes and use; 1: the same written out flat.
void BM_LoadStyled(benchmark::State& state)
{
    TimeLoads(state, StyledDrawing(state.range(0) == 1), vk::svg::LoadProfile::Full);
}
BENCHMARK(BM_LoadStyled)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The share of the load that converts path data, through the same entry
// point the loader uses.
void BM_PathDataOnly(benchmark::State& state)
{
    const std::vector<std::string>& paths = PathData();
    std::size_t bytes = 0;
    for (const std::string& path : paths)
        bytes += path.size();
    std::vector<std::list<vk::svg::PathCommand>> commands(paths.size());
    for (auto _ : state) {
        state.PauseTiming();
        for (auto& list : commands)
            list.clear();
        ReleaseFreedMemory();
        state.ResumeTiming();
        for (std::size_t i = 0; i < paths.size(); ++i)
            vk::svg::ConvertPathStringToCommands(paths[i], commands[i], nullptr);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
    state.counters["paths"] = static_cast<double>(paths.size());
}
BENCHMARK(BM_PathDataOnly)->Unit(benchmark::kMillisecond);

void BM_LoadSave(benchmark::State& state)
{
    static Library library;
    const std::string& text = Drawing();
    std::size_t written = 0;
    vk::svg::ItemInterfacePointer<vk::svg::ItemInterface> root;
    for (auto _ : state) {
        state.PauseTiming();
        root.reset();
        ReleaseFreedMemory();
        vk::vkIoDeviceMemory input(text);
        state.ResumeTiming();
        vk::vkIoDeviceMemory output;
        if (!vk::svg::vkSvgIOManager::get().loadSvg(root, input, "svg", nullptr, nullptr, nullptr) ||
            !vk::svg::vkSvgIOManager::get().saveSvg(*root, output, "svg", nullptr, nullptr, nullptr)) {
            state.SkipWithError("the round trip failed");
            break;
        }
        written = output.getData().size();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
    state.counters["output_MB"] = static_cast<double>(written) / (1024.0 * 1024.0);
}
BENCHMARK(BM_LoadSave)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
