#pragma once

#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "output/cell.h"

namespace voxa::cli {

class Command;
class Session;

// The commands that every thing of an installation has. argument: how the help calls its name ("PROGRAM").
// thing: "daily program". footer: examples.

/// show NAME: a field a line, or a JSON object with --json. print: shows the thing of that name.
Command* addShowCommand(Command& group, Session& session, const std::string& argument,
                        const std::string& thing, const std::string& footer,
                        std::function<void(const std::string& name, bool json)> print);
/// rename NAME NEW.
Command* addRenameCommand(Command& group, Session& session, const std::string& argument,
                          const std::string& thing, const std::string& footer,
                          std::function<void(const std::string& name, const std::string& newName)> rename);
/// delete NAME [moveTo OTHER]. moveTo: its names as an option; moveHelp: what it says. remove: opens the
/// installation as it needs it, deletes the thing, and tells what became of what used it; moveTo is "" when
/// it was not given.
Command* addDeleteCommand(Command& group, const std::string& argument, const std::string& thing,
                          const std::string& moveTo, const std::string& moveHelp, const std::string& footer,
                          std::function<void(const std::string& name, const std::string& moveTo)> remove);

/// Texts one below the other for a person, with what programs get.
[[nodiscard]] Cell eachBelow(const std::vector<std::string>& texts,
                             const nlohmann::ordered_json& forPrograms);

}  // namespace voxa::cli
