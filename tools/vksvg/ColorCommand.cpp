#include "Cli.h"
#include "CommandLine.h"
#include "Json.h"

#include <svg/Color.h>

#include <ostream>

namespace vksvg {

int runColorCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    cli::Parser parser(*findCommand("color"));
    std::vector<std::string> texts;
    bool asJson = false;
    parser.app().add_option("TEXT", texts, "SVG colours: names, #rgb, #rrggbb, rgb(...), rgba(...)");
    parser.flag("--json", asJson, "Print one JSON object (schema vksvg-color/1) instead of lines");
    if (const auto status = parser.parse(args, out, err))
        return *status;
    if (texts.empty())
        return parser.usage("no colour given", err);

    int result = Success;
    json::Json colors = json::Json::array();
    for (const std::string& text : texts) {
        Wm4::Vector4<unsigned char> rgba(0, 0, 0, 0);
        const bool valid = vk::svg::ParseSvgColor(text, rgba);
        if (!valid)
            result = Failure;
        if (asJson) {
            json::Json color{{"text", text}, {"valid", valid}, {"rgba", nullptr}};
            if (valid)
                color["rgba"] = {int(rgba[0]), int(rgba[1]), int(rgba[2]), int(rgba[3])};
            colors.push_back(std::move(color));
        } else if (valid) {
            out << text << ": " << int(rgba[0]) << ' ' << int(rgba[1]) << ' ' << int(rgba[2]) << ' ' << int(rgba[3])
                << '\n';
        } else {
            out << text << ": no colour\n";
        }
    }
    if (asJson)
        out << json::Dump({{"schema", "vksvg-color/1"}, {"colors", colors}});
    return result;
}

} // namespace vksvg
