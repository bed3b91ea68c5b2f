#include "enumerations.h"

#include <string>

#include "platform/error.h"

namespace voxa::automation {

ComCommandsEnum commandOf(::ComCommandsEnum command) {
  if (command < ::CmReadDate || command > ::CmDisconnect) {
    throw Error(err::invalidArgument, "There is no controller operation " + std::to_string(command));
  }
  return static_cast<ComCommandsEnum>(command);
}

ComponentType componentOf(::ComponentType component) {
  if (component < ::CTActiveStations || component > ::CTStation) {
    throw Error(err::invalidArgument, "There is no component type " + std::to_string(component));
  }
  return static_cast<ComponentType>(component);
}

}  // namespace voxa::automation
