#pragma once

#include <string>

#include "work/report.h"

namespace voxa {

class Installation;
struct LineTest;

// What a person sends over the lines by hand. Both ask nobody.

/// Sets the controllers' clocks, by which they date transactions and judge times, to that of this computer.
/// test: of the same component, just made. A Refusal when not every controller answers: one that is passed
/// over would keep its wrong clock without a word. A Refusal with what the lines said when one fails.
void setClocks(Installation& installation, const Component& component, const LineTest& test);

/// Sends one command line as it is. A Refusal for an empty text and for more than one line. The Report is
/// broken when a controller did not take it, as its notice tells.
Report sendCommandLine(Installation& installation, const Component& component, const std::string& line);

}  // namespace voxa
