#pragma once

#include <string>
#include <vector>

#include "work/report.h"

namespace voxa {

class Installation;

// What a person sends over the lines by hand. Both ask nobody.

/// Sets the controllers' clocks, by which they date transactions and judge times, to that of this computer.
/// silent: those that a test of the same component, just made, does not know to answer. They are passed over
/// and keep their clocks, which the caller has asked about and tells. A Refusal with what the lines said when
/// one fails.
void setClocks(Installation& installation, const Component& component,
               const std::vector<Report::Controller>& silent);

/// Sends one command line as it is. A Refusal for an empty text and for more than one line. The Report is
/// broken when a controller did not take it, as its notice tells.
Report sendCommandLine(Installation& installation, const Component& component, const std::string& line);

}  // namespace voxa
