#include <vkXml/ParseXmlStream.h>
#include <vkXml/XmlSaxParserHandler.h>

#include <vkSystem/vkCancelInterface.h>
#include <vkSystem/vkIoDeviceMemory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using vk::xml::ParseXmlStream;
using vk::xml::XmlAttributeList;
using vk::xml::XmlSaxParserHandler;
using Events = std::vector<std::string>;

namespace {

// Records events as lines, merging adjacent text so that the record does not
// depend on how the parser splits it. Messages read "!severity text".
struct Recorder : XmlSaxParserHandler {
    bool startDocument() override { return record("start"); }
    bool endDocument() override { return record("end"); }
    int startElement(const char* name, const XmlAttributeList& attributes) override
    {
        std::string line = std::string("<") + name;
        for (const auto& a : attributes)
            line += " " + (a.prefix.empty() ? "" : a.prefix + ":") + a.localName + "=" + a.value;
        record(line + ">");
        const auto found = startResults.find(name);
        return found == startResults.end() ? Enter : found->second;
    }
    bool endElement(const char* name) override { return record(std::string("</") + name + ">"); }
    bool characters(const char* data, int length) override
    {
        if (events.empty() || events.back().rfind("text:", 0) != 0)
            events.emplace_back("text:");
        events.back().append(data, static_cast<std::size_t>(length));
        return events.back() != refuse;
    }
    bool parserMessage(const std::string& text, int severity) override
    {
        return record("!" + std::to_string(severity) + " " + text) && severity >= acceptFrom;
    }
    bool record(std::string event)
    {
        events.push_back(std::move(event));
        return events.back() != refuse;
    }

    Events events;
    std::map<std::string, int> startResults;
    std::string refuse; // the event that answers false
    int acceptFrom = Warning;
};

using Configure = void (*)(Recorder&);

Events parse(const std::string& document, Configure setup, bool& ok, std::size_t chunk = 0,
             const vk::vkCancelInterface* cancel = nullptr)
{
    Recorder recorder;
    if (setup != nullptr)
        setup(recorder);
    vk::vkIoDeviceMemory device(document);
    if (chunk > 0)
        device.setMaxReadChunk(chunk);
    ok = ParseXmlStream(device, recorder, cancel);
    return recorder.events;
}

// Event by event, where a message only has to start as expected; after a
// leading "...", only the end of the record is compared.
bool matches(const Events& got, const Events& expected)
{
    const bool tail = !expected.empty() && expected[0] == "...";
    const std::size_t count = expected.size() - (tail ? 1 : 0);
    if (got.size() < count || (!tail && got.size() != count))
        return false;
    return std::equal(
        expected.end() - count, expected.end(), got.end() - count,
        [](const std::string& e, const std::string& g) { return g == e || (e[0] == '!' && g.rfind(e, 0) == 0); });
}

std::string repeat(const std::string& text, int count)
{
    std::string out;
    for (int i = 0; i < count; ++i)
        out += text;
    return out;
}

struct CancelAfter : vk::vkCancelInterface {
    explicit CancelAfter(int allowedChecks) : allowed(allowedChecks) {}
    bool isCancelRequested() const override { return ++asked > allowed; }
    int allowed;
    mutable int asked = 0;
};

} // namespace

TEST(ParseXmlStream, DeliversEventsAndFailsCleanly)
{
    const std::string secret = testing::TempDir() + "vkxml-secret." + std::to_string(::getpid());
    std::ofstream(secret) << "SECRET-MARKER";
    const std::string xxe = "<!ENTITY x SYSTEM \"file://" + secret + "\">";
    const std::string big = "<!ENTITY big \"<a/>" + std::string(10000, 't') + "\">";
    // Were the parse to go on silently after a stop inside entity content, it
    // would copy the huge entity again for every later reference, at the top
    // or in an entity between.
    const std::string huge = "<!ENTITY big \"<a/>" + std::string(500000, 't') + "\">";
    const std::string hugeReferences = repeat("&big;", 20000);
    const Configure stopAtA = [](Recorder& r) { r.startResults["a"] = 2; };
    std::string laughs = "<!ENTITY l0 \"lol\">";
    for (int i = 1; i <= 9; ++i)
        laughs += "<!ENTITY l" + std::to_string(i) + " \"" + repeat("&l" + std::to_string(i - 1) + ";", 10) + "\">";

    struct Case {
        const char* name;
        std::string document;
        Configure setup;
        bool ok;
        Events expected;
    };
    // clang-format off
    const Case cases[] = {
        {"elements, attributes, blanks", "<svg w=\"1\" h='2'>\n <g>hi</g><r e=\"\"/></svg>", nullptr, true,
         {"start", "<svg w=1 h=2>", "text:\n ", "<g>", "text:hi", "</g>", "<r e=>", "</r>", "</svg>", "end"}},
        {"namespaces first, then attributes in order", "<s:a b='1' xmlns:s='http://s' xmlns='http://d' s:c='2'/>",
         nullptr, true, {"start", "<s:a xmlns:s=http://s xmlns=http://d b=1 s:c=2>", "</s:a>", "end"}},
        {"references, entity markup, CDATA",
         "<!DOCTYPE r [<!ENTITY co \"AC\"><!ENTITY mk \"<b k='&co;'>x</b>\">]>"
         "<r a=\"&co; &amp;&#x41;\">&co;&lt;&#233;&mk;<![CDATA[<y>&]]></r>", nullptr, true,
         {"start", "<r a=AC &A>", "text:AC<\xC3\xA9", "<b k=AC>", "text:x", "</b>", "text:<y>&", "</r>", "end"}},
        {"ISO-8859-1 arrives as UTF-8", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><r a=\"\xE9\">\xFF</r>",
         nullptr, true, {"start", "<r a=\xC3\xA9>", "text:\xC3\xBF", "</r>", "end"}},
        {"external DTD not loaded",
         "<!DOCTYPE svg PUBLIC \"-//W3C//DTD SVG 1.1//EN\" \"http://www.w3.org/Graphics/SVG/1.1/DTD/svg11.dtd\"><svg/>",
         nullptr, true, {"start", "<svg>", "</svg>", "end"}},
        {"skip hides everything inside, siblings follow",
         "<!DOCTYPE r [<!ENTITY e \"<b>in</b>\">]><r><b x=\"1\"><c>t<b/>&e;</c>u</b><d/>v&e;</r>",
         [](Recorder& r) { r.startResults["b"] = XmlSaxParserHandler::SkipElement; }, true,
         {"start", "<r>", "<b x=1>", "<d>", "</d>", "text:v", "<b>", "</r>", "end"}},
        {"startElement Stop", "<r><a/><b/><c/></r>", [](Recorder& r) { r.startResults["b"] = 2; }, false,
         {"start", "<r>", "<a>", "</a>", "<b>"}},
        {"Stop inside entity content", "<!DOCTYPE r [" + huge + "]><r>" + hugeReferences + "</r>", stopAtA, false,
         {"start", "<r>", "<a>"}},
        {"Stop inside nested entity content",
         "<!DOCTYPE r [" + huge + "<!ENTITY m \"" + hugeReferences + "\">]><r>&m;</r>", stopAtA, false,
         {"start", "<r>", "<a>"}},
        {"endElement false", "<r><a/><b/></r>", [](Recorder& r) { r.refuse = "</a>"; }, false,
         {"start", "<r>", "<a>", "</a>"}},
        {"characters false", "<r>one<b/></r>", [](Recorder& r) { r.refuse = "text:one"; }, false,
         {"start", "<r>", "text:one"}},
        {"endDocument false", "<r/>", [](Recorder& r) { r.refuse = "end"; }, false, {"start", "<r>", "</r>", "end"}},
        {"warning accepted", "<r xmlns=\"rel\"/>", nullptr, true,
         {"start", "!4 xmlns: URI rel is not absolute (line 1, column ", "<r xmlns=rel>", "</r>", "end"}},
        {"warning refused", "<r xmlns=\"rel\"/>", [](Recorder& r) { r.acceptFrom = 5; }, false,
         {"start", "!4 xmlns: URI rel is not absolute"}},
        {"recoverable error accepted", "<p:r/>", [](Recorder& r) { r.acceptFrom = 2; }, true,
         {"start", "!2 Namespace prefix p on r is not defined", "<p:r>", "</p:r>", "end"}},
        {"recoverable error refused", "<p:r/>", nullptr, false, {"start", "!2 Namespace prefix p on r"}},
        {"mismatched tags, even if accepted", "<a>\n<b></a>", [](Recorder& r) { r.acceptFrom = 1; }, false,
         {"...", "<b>", "!1 Opening and ending tag mismatch: b line 2 and a (line 2, column 8)"}},
        {"truncated", "<a><b>", nullptr, false, {"...", "<b>", "!1 "}},
        {"empty", "", nullptr, false, {"!1 Document is empty"}},
        {"billion laughs", "<!DOCTYPE r [" + laughs + "]><r>&l9;</r>", nullptr, false,
         {"...", "!1 Detected an entity reference loop"}},
        {"quadratic blow-up", "<!DOCTYPE r [" + big + "]><r>" + repeat("&big;", 10000) + "</r>", nullptr, false,
         {"...", "!1 Maximum entity amplification factor exceeded"}},
        {"10,000 levels", repeat("<a>", 10000) + repeat("</a>", 10000), nullptr, false,
         {"...", "<a>", "!1 Excessive depth in document: 256"}},
        {"XXE", "<!DOCTYPE r [" + xxe + "]><r>&x;</r>", nullptr, false, {"start", "<r>", "!1 Entity 'x' not defined"}},
        {"XXE, error accepted", "<!DOCTYPE r SYSTEM \"file://" + secret + "\" [" + xxe + "]><r a='&x;'>&x;</r>",
         [](Recorder& r) { r.acceptFrom = 2; }, true,
         {"start", "!2 Entity 'x' not defined", "<r a=>", "!2 ", "</r>", "end"}},
        {"XXE through a parameter entity", "<!DOCTYPE r [<!ENTITY % x SYSTEM \"file://" + secret + "\"> %x;]><r/>",
         nullptr, false, {"start", "!1 PEReference: %x; not found"}},
    };
    // clang-format on
    for (const Case& c : cases) {
        bool ok = false;
        const auto start = std::chrono::steady_clock::now();
        const Events events = parse(c.document, c.setup, ok);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3)) << c.name;
        EXPECT_EQ(ok, c.ok) << c.name;
        EXPECT_TRUE(matches(events, c.expected)) << c.name << ": " << testing::PrintToString(events).substr(0, 900);
        EXPECT_TRUE(std::none_of(events.begin(), events.end(),
                                 [](const std::string& e) { return e.find("SECRET") != std::string::npos; }));
        // Short reads split the input anywhere; the events must not change.
        if (c.document.size() > 5000)
            continue;
        for (std::size_t chunk : {1u, 7u})
            EXPECT_EQ(parse(c.document, c.setup, ok, chunk), events) << c.name << ", chunk " << chunk;
    }
    std::remove(secret.c_str());
}

TEST(ParseXmlStream, CancelLeavesOneMessage)
{
    const std::string document = "<r><a>1</a><b>2</b><c>3</c></r>";
    bool ok = false;
    const Events complete = parse(document, nullptr, ok);
    for (int allowed = 0; allowed < 10; ++allowed) {
        CancelAfter cancel(allowed);
        Events events = parse(document, nullptr, ok, 4, &cancel);
        EXPECT_FALSE(ok);
        ASSERT_EQ(events.back(), "!2 XML parsing cancelled") << allowed;
        events.pop_back();
        EXPECT_TRUE(std::equal(events.begin(), events.end(), complete.begin())) << allowed;
        EXPECT_EQ(events.empty(), allowed == 0);
        EXPECT_LT(events.size(), complete.size() - 1);
    }
}

TEST(ParseXmlStream, DeviceFailuresAndHandlerExceptionsEndTheParse)
{
    struct Failing : vk::vkIoDevice {
        int64_t read(char* data, int64_t) override
        {
            setErrorString("disk on fire");
            return served++ ? -1 : static_cast<int64_t>(std::string("<r><a>").copy(data, 6));
        }
        int64_t write(const char*, int64_t) override { return -1; }
        bool isOpen() const override { return true; }
        int served = 0;
    } device;
    Recorder recorder;
    EXPECT_FALSE(ParseXmlStream(device, recorder, nullptr));
    EXPECT_EQ(recorder.events, (Events{"start", "<r>", "<a>", "!2 Cannot read the XML input: disk on fire"}));

    struct Throwing : Recorder {
        bool characters(const char*, int) override { throw std::runtime_error("broken"); }
    };
    for (const std::string document : {"<r>t<a/></r>", "<!DOCTYPE r [<!ENTITY e \"t\">]><r>&e;</r>"}) {
        Throwing handler;
        vk::vkIoDeviceMemory memory(document);
        EXPECT_THROW(ParseXmlStream(memory, handler, nullptr), std::runtime_error);
        EXPECT_EQ(handler.events.back(), "<r>");
    }
}

TEST(ParseXmlStream, EncodingErrorsReachTheHandlerNotStandardError)
{
    // 0x82 0x20 is no Shift_JIS character: libxml2 reports it through its
    // generic channel, which would print it.
    testing::internal::CaptureStderr();
    bool ok = true;
    const Events events =
        parse(std::string("<?xml version=\"1.0\" encoding=\"Shift_JIS\"?><a>\x82\x20</a>"), nullptr, ok);
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(ok);
    EXPECT_EQ(printed, "");
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back(), "!1 The XML document is not well-formed: input conversion failed due to input error, "
                             "bytes 0x82 0x20 0x3C 0x2F");
}
