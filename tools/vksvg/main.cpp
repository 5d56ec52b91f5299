#include "Cli.h"

#include <svg/Version.h>
#include <vkSystem/vkSoftwareVersion.h>

#include <iostream>

int main(int argc, char** argv)
{
    vk::SetSoftwareVersionForStream("vksvg", vkSvg::Version::GetDescStringMajorMinorReleaseRevision(false, false));
    std::vector<std::string> args(argv + 1, argv + argc);
    return vksvg::runCli(args, std::cout, std::cerr);
}
