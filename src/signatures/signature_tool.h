#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace quarnel {

// The command line of quarnel-signatures: `compile SOURCE_DIR OUT_DIR` and `show FILE`, both on
// ordinary folders of the system that it runs on. `arguments` are without the program's name.
// Returns the exit code: 0, 1 for an error (each one line on `errors`), 2 for a bad call.
int RunSignatureTool(const std::vector<std::string>& arguments, std::ostream& out,
                     std::ostream& errors);

}  // namespace quarnel
