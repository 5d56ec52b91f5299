#include <svg/PathCommand.h>

#include <utility>

namespace vk::svg {

PathCommand::PathCommand(PathCommandType commandType, std::vector<float>& commandValues)
    : type(commandType), values(std::move(commandValues))
{
    // A moved-from vector is empty in practice; make it so by contract.
    commandValues.clear();
}

PathCommand::PathCommand(PathCommandType commandType, std::vector<float>&& commandValues)
    : type(commandType), values(commandValues)
{
}

PathCommand::PathCommand(PathCommandType commandType, const std::vector<float>& commandValues)
    : type(commandType), values(commandValues)
{
}

} // namespace vk::svg
