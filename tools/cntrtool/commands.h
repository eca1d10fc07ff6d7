// Running the tool: one function per subcommand behind one entry point.
#ifndef CNTRTOOL_COMMANDS_H
#define CNTRTOOL_COMMANDS_H

#include <ostream>
#include <string>
#include <vector>

namespace cntrtool {

/// Runs the tool on the arguments after the program name, writing reports to `out` and
/// messages to `err`; returns the exit status (kExitOk, kExitProblems or kExitBadInput). Never
/// throws. `errIsTerminal` chooses how progress is shown.
int run(const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
        bool errIsTerminal);

}  // namespace cntrtool

#endif
