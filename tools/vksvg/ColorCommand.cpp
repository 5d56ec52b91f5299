#include "Cli.h"

#include <svg/Color.h>

#include <ostream>

namespace vksvg {

int runColorCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err)
{
    if (args.empty()) {
        err << "Usage: vksvg color TEXT...\n";
        return UsageError;
    }
    int result = Success;
    for (const std::string& text : args) {
        Wm4::Vector4<unsigned char> rgba(0, 0, 0, 0);
        if (vk::svg::ParseSvgColor(text, rgba)) {
            out << text << ": " << int(rgba[0]) << ' ' << int(rgba[1]) << ' ' << int(rgba[2]) << ' ' << int(rgba[3])
                << '\n';
        } else {
            out << text << ": no colour\n";
            result = Failure;
        }
    }
    return result;
}

} // namespace vksvg
